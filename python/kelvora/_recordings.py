# SPDX-License-Identifier: MIT
"""Reading recordings."""

from __future__ import annotations

import operator
import os
from typing import Any, Literal

from kelvora._kelvora import RecordingReader, open_recording

Format = Literal["records", "text", "evt2", "evt3"]
TimeUnit = Literal["s", "ms", "us", "ns"]


def read(
    path: str | bytes | os.PathLike[str] | os.PathLike[bytes],
    *,
    sensor: tuple[int, int] | None = None,
    input_format: Format | None = None,
    columns: str | None = None,
    time_unit: TimeUnit | None = None,
    chunk_events: int = 262_144,
    clean: bool = True,
) -> RecordingReader:
    """
    Read a recording, chunk by chunk.

    Memory does not grow with the length of the recording.

    Parameters
    ----------
    path : path_like
        A file of any format, which is recognised by its content, or a pipe.
    sensor : tuple of int, optional
        Width and height in pixels, if the recording does not state them.
    input_format : {'records', 'text', 'evt2', 'evt3'}, optional
        Format of the recording, if it cannot be detected.
    columns : str, optional
        Order of the columns of a text recording, such as 'xypt'. By default taken from its header
        line, otherwise 'txyp'.
    time_unit : {'s', 'ms', 'us', 'ns'}, optional
        Unit of the times of a text recording. By default, seconds if they have a decimal point,
        otherwise microseconds.
    chunk_events : int
        Events per chunk; the last one may have fewer. A chunk from a pipe contains the events that
        have arrived.
    clean : bool
        Drop events off the sensor, and correct times that go back or are far ahead of their
        neighbours. The reader counts both. Otherwise, events are returned as recorded.

    Returns
    -------
    RecordingReader
        Iterator over the chunks: arrays of the type `EVENT_DTYPE` with the fields ``x`` and
        ``y``, pixels; ``p``, 0 or 1; and ``t``, microseconds. Its attributes are ``format``;
        ``sensor``, None if unknown; and, for the chunks so far, ``dropped``, ``clamped`` and
        ``skipped_words``.

    Raises
    ------
    RecordingError
        If the recording cannot be opened. At a defect, the iterator raises after returning all
        events before it.
    TypeError, ValueError
        For arguments of a wrong type or with an invalid value.

    Examples
    --------
    >>> import pathlib, tempfile
    >>> import kelvora
    >>> path = pathlib.Path(tempfile.mkdtemp(), "events.csv")
    >>> _ = path.write_text("x,y,p,t_us\\n7,5,1,1250010\\n8,5,0,1250020\\n900,5,0,1250030\\n")
    >>> reader = kelvora.read(path, sensor=(640, 480))
    >>> for events in reader:
    ...     events["t"].tolist()
    [1250010, 1250020]
    >>> reader.format, reader.dropped
    ('text', 1)
    """
    if "\0" in os.fsdecode(path):
        raise ValueError("path must not hold a null character")
    return open_recording(
        path,
        sensor=None if sensor is None else sensor_size(sensor),
        input_format=input_format,
        columns=columns,
        time_unit=time_unit,
        chunk_events=integer("chunk_events", chunk_events),
        clean=clean,
    )


def sensor_size(sensor: Any) -> tuple[int, int]:
    """Width and height, if they are a pair of integers."""
    try:
        width, height = map(operator.index, sensor)
    except (TypeError, ValueError):
        raise TypeError(
            f"sensor must be a pair of integers such as (640, 480), not {sensor!r}"
        ) from None
    return width, height


def integer(keyword: str, value: Any) -> int:
    """The value of a keyword, if it is an integer of any type."""
    try:
        return operator.index(value)
    except TypeError:
        raise TypeError(f"{keyword} must be an integer, not {value!r}") from None
