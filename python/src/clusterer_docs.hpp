// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Docstrings of the members shared by all clusterers.

namespace kelvora::python {

inline constexpr const char* kProcessDoc =
    R"(process(events=None, *, x=None, y=None, t=None, p=None, time_unit=None)

Feed the next events.

Parameters
----------
events : numpy.ndarray
    One-dimensional structured array with a field for each of column (``x``), row (``y``), time
    (``t``, ``ts``, ``timestamp`` or ``time``) and polarity (``p``, ``on``, ``pol`` or
    ``polarity``). Fields are found by these names, in any order, and may have any integer or
    floating-point type; other fields are ignored.
x, y, t, p : array_like
    Four arrays of equal length, as an alternative to `events`.
time_unit : {'s', 'ms', 'us', 'ns'}, optional
    Unit of the times. Microseconds by default for integers; required for other types. Times are
    rounded to whole microseconds.

Raises
------
TypeError, ValueError
    For ambiguous or invalid input: missing, ambiguous or non-numeric fields, fractions of pixels,
    undefined or negative times, ``float32`` times beyond 2.4 hours, which are coarser than a
    millisecond, and polarities other than 0 and 1, -1 and 1, or bool. No event is processed then.

Notes
-----
Events off the sensor are ignored and counted in `dropped`. A time earlier than the previous
event's, also from call to call, is raised to the previous time and counted in `clamped`: call
`reset` between recordings.

The GIL is released while events are processed. Several threads may use the same object, which
serves one of them at a time. The array must not be modified during the call.

The fastest types are 16-bit positions, 8-bit polarities and 64-bit microseconds, in any memory
layout.

Examples
--------
>>> import numpy as np
>>> import kelvora
>>> events = np.array([(7, 5, 1.25, True)], [('x', 'u2'), ('y', 'u2'), ('t', 'f8'), ('on', '?')])
>>> clusterer = kelvora.GridClusterer(640, 480)
>>> clusterer.process(events, time_unit='s')
>>> clusterer.process(x=[7, 8], y=[5, 5], t=[1250010, 1250020], p=[-1, 1])
)";

inline constexpr const char* kGenerateDoc =
    R"(generate(timestamp)

Cluster the events since the last call.

Parameters
----------
timestamp : int
    Stored with each cluster, microseconds. Usually the end of the time window.

Returns
-------
numpy.ndarray
    A row for each cluster: ``timestamp``; ``x``, ``y``, ``width`` and ``height`` of the box
    around it, pixels; ``start_time`` and ``duration``, microseconds; ``events``, the number of
    its events. Start times are -1 and durations 0 unless clusters are found in space and time.
    Numbers of events are -1 for the grid, which does not label events.
)";

inline constexpr const char* kResetDoc =
    R"(reset()

Discard all events and clusters and reset the counters, as in a new object.
)";

inline constexpr const char* kDroppedDoc =
    "Number of events ignored because they were off the sensor.";

inline constexpr const char* kClampedDoc =
    "Number of events whose time went back and was raised to the previous event's time.";

}  // namespace kelvora::python
