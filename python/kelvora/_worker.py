# SPDX-License-Identifier: MIT
"""The task of a worker process: clustering one recording."""

from __future__ import annotations

import dataclasses
import multiprocessing.connection
from typing import Any

import numpy as np
from numpy.typing import NDArray

from kelvora._errors import RecordingError
from kelvora._kelvora import ROW_DTYPE, TRACK_DTYPE, cluster_recording


# No `__eq__`: comparing arrays does not give a single bool.
@dataclasses.dataclass(eq=False)
class ClusteredRecording:
    """
    The clusters of one recording.

    Attributes
    ----------
    path : str
        Path of the recording, as given.
    rows : numpy.ndarray
        A row for each cluster: ``timestamp``, the end of its window; ``x``, ``y``, ``width`` and
        ``height`` of the box around it, pixels; ``start_time`` and ``duration``, -1 and 0 unless
        clusters are found in space and time; ``events``, the number of its events, -1 for the
        grid, which does not label events. Times are in microseconds.

        With tracking, ``track_id`` (0 for none), ``vx`` and ``vy`` in pixels per second, and
        ``state``: 'confirmed', 'tentative', 'hidden' or 'none'. Hidden objects have separate rows
        with the predicted box, after the clusters of their window.
    error : RecordingError or None
        Why the recording was not clustered completely. The rows end before the defect.
    windows : int
        Number of windows with events.
    dropped, clamped, skipped_words : int
        Number of events off the sensor, corrected times, and words of unknown type.
    remark : str
        Any other information for the user, or an empty string.
    """

    path: str
    rows: NDArray[np.void]
    error: RecordingError | None
    windows: int
    dropped: int
    clamped: int
    skipped_words: int
    remark: str


def row_type(with_tracks: bool) -> np.dtype[np.void]:
    """Data type of the rows of a recording."""
    return np.dtype(ROW_DTYPE.descr + TRACK_DTYPE.descr) if with_tracks else ROW_DTYPE


def joined(rows: NDArray[np.void], tracks: NDArray[np.void] | None) -> NDArray[np.void]:
    """Combine rows with the columns of their tracks."""
    table = np.zeros(len(rows), row_type(tracks is not None))
    for part in (rows,) if tracks is None else (rows, tracks):
        for name in part.dtype.names or ():
            table[name] = part[name]
    return table


def nothing_found(path: str, options: dict[str, Any], error: RecordingError) -> ClusteredRecording:
    """The result for a recording that failed without any rows."""
    rows = np.zeros(0, row_type(bool(options.get("tracking"))))
    return ClusteredRecording(
        path, rows, error, windows=0, dropped=0, clamped=0, skipped_words=0, remark=""
    )


def failed(path: str, options: dict[str, Any], problem: str, remedy: str) -> ClusteredRecording:
    """The result for a recording that could not be clustered."""
    return nothing_found(path, options, RecordingError(path, problem, "", remedy))


def cluster(path: str, options: dict[str, Any]) -> ClusteredRecording:
    """Cluster one recording. Errors are part of the result."""
    try:
        found = cluster_recording(path, options)
    except RecordingError as error:
        return nothing_found(path, options, error)
    except Exception as error:  # Must not affect other recordings.
        problem = f"could not be clustered ({type(error).__name__}: {error})"
        return failed(path, options, problem, "change the options, or use fewer workers")
    return ClusteredRecording(path, joined(found.pop("rows"), found.pop("tracks")), **found)


def serve(file_descriptor: int) -> None:
    """Cluster the recordings received from a connection, until it is closed."""
    connection = multiprocessing.connection.Connection(file_descriptor)
    while True:
        try:
            task = connection.recv()
        except EOFError:
            return
        connection.send(cluster(*task))
