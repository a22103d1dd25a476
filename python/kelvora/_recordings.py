# SPDX-License-Identifier: MIT
"""Reading and writing recordings."""

from __future__ import annotations

import operator
import os
from typing import TYPE_CHECKING, Any, Literal

from kelvora._kelvora import RecordingReader, open_recording, write_recording

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

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
    return open_recording(
        file_name(path),
        sensor=None if sensor is None else sensor_size(sensor),
        input_format=input_format,
        columns=columns,
        time_unit=time_unit,
        chunk_events=integer("chunk_events", chunk_events),
        clean=clean,
    )


def write(
    path: str | bytes | os.PathLike[str] | os.PathLike[bytes],
    events: NDArray[np.void],
    *,
    sensor: tuple[int, int] | None = None,
    output_format: Format | None = None,
    time_unit: TimeUnit | None = None,
    overwrite: bool = True,
) -> None:
    """
    Write events to a recording, exactly as they are.

    Parameters
    ----------
    path : path_like
        The file. It gets its name when it is complete; an existing file of that name stays as it is
        until then. '-' is standard output.
    events : numpy.ndarray
        Structured array of events, as for `GridClusterer.process`.
    sensor : tuple of int, optional
        Width and height in pixels, which the recording states. Only the format 'records' can do
        without.
    output_format : {'records', 'text', 'evt2', 'evt3'}, optional
        By default, the format that the name of the file suggests.
    time_unit : {'s', 'ms', 'us', 'ns'}, optional
        Unit of the times of the array, as for `GridClusterer.process`.
    overwrite : bool
        Replace an existing file.

    Raises
    ------
    RecordingError
        If the file cannot be written, exists and must not be replaced, or if the format cannot
        hold an event.
    TypeError, ValueError
        For arguments of a wrong type or with an invalid value. Nothing is written then.

    Notes
    -----
    After an error or Ctrl-C, the events so far are kept as ``PATH.partial``.

    Examples
    --------
    >>> import pathlib, tempfile
    >>> import kelvora
    >>> events, _ = kelvora.simulate(sensor=(160, 120), duration_us=50_000)
    >>> path = pathlib.Path(tempfile.mkdtemp(), "scene.raw")
    >>> kelvora.write(path, events, sensor=(160, 120))
    >>> reader = kelvora.read(path)
    >>> sum(len(chunk) for chunk in reader) == len(events), reader.format
    (True, 'evt3')
    >>> try:
    ...     kelvora.write(path, events, sensor=(160, 120), overwrite=False)
    ... except kelvora.RecordingError as error:
    ...     print(error.problem)
    exists already
    """
    write_recording(
        file_name(path),
        events,
        sensor=None if sensor is None else sensor_size(sensor),
        output_format=output_format,
        time_unit=time_unit,
        overwrite=overwrite,
    )


def file_name(path: str | bytes | os.PathLike[str] | os.PathLike[bytes]) -> str:
    """The path as a string, if a file can have it."""
    name = os.fsdecode(path)
    if "\0" in name:
        raise ValueError(f"a path must not contain a null character, as in {name!r}")
    return name


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
