// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Docstrings of what all clusterers have in common.

namespace kelvora::python {

inline constexpr const char* kProcessDoc =
    R"(process(events=None, *, x=None, y=None, t=None, p=None, time_unit=None)

Take the next events.

Parameters
----------
events : numpy.ndarray
    One-dimensional structured array with a field for each of column (``x``), row (``y``), time
    (``t``, ``ts``, ``timestamp`` or ``time``) and polarity (``p``, ``on``, ``pol`` or
    ``polarity``). Fields are found by these names, in any order, and may have any integer or
    floating-point type; other fields are ignored.
x, y, t, p : array_like
    The same as four arrays of equal length, instead of `events`.
time_unit : {'s', 'ms', 'us', 'ns'}, optional
    Unit of the times. Microseconds if they are integers; must be given if they are not. Times are
    rounded to whole microseconds.

Raises
------
TypeError, ValueError
    For what cannot be mapped without doubt: missing, ambiguous or non-numeric fields, fractions
    of pixels, undefined or negative times, ``float32`` times beyond 2.4 hours, which are coarser
    than a millisecond, polarities other than 0 and 1, -1 and 1, or bool.
    None of the events is taken then.

Notes
-----
Events off the sensor are left out, and counted in `dropped`. A time that goes back, also from
call to call, is raised to that of the event before, and counted in `clamped`: use `reset`
between recordings.

The GIL is released while events are taken. Several threads may use one object: it serves one
of them at a time. The array must not change meanwhile.

Fastest are 16-bit positions, 8-bit polarities and 64-bit microseconds, however they lie in
memory.

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
    Stored with each cluster, microseconds: the end of the window of time, as a rule.

Returns
-------
numpy.ndarray
    A row for each cluster: ``timestamp``; ``x``, ``y``, ``width`` and ``height`` of the box
    around it, pixels; ``start_time`` and ``duration``, microseconds. Start times are -1 unless
    clusters are found in space and time.
)";

inline constexpr const char* kResetDoc =
    R"(reset()

Forget all events and clusters, and count from 0 again: as a new object.
)";

inline constexpr const char* kDroppedDoc =
    "Number of events left out since they were off the sensor.";

inline constexpr const char* kClampedDoc =
    "Number of events whose time went back, and was raised to that of the event before.";

}  // namespace kelvora::python
