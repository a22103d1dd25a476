# SPDX-License-Identifier: MIT
"""Clustering many recordings, on this machine or on many."""

from __future__ import annotations

import os
from typing import TYPE_CHECKING, Any, Iterable, Literal

from kelvora._kelvora import check_clustering
from kelvora._recordings import Format, TimeUnit, file_name, integer, sensor_size
from kelvora._worker import ClusteredRecording, cluster, failed
from kelvora._worker_pool import WorkerPool

if TYPE_CHECKING:
    from kelvora._kelvora import _Method


def cluster_recordings(
    paths: Iterable[str | os.PathLike[str]],
    client: Any = None,
    *,
    workers: int | None = None,
    method: _Method = "grid",
    window_us: int = 10_000,
    from_us: int = 0,
    to_us: int | None = None,
    polarity: Literal["all", "on", "off", "separate"] = "all",
    tracking: bool = False,
    max_window_events: int | None = None,
    max_memory: int | None = None,
    sensor: tuple[int, int] | None = None,
    input_format: Format | None = None,
    columns: str | None = None,
    time_unit: TimeUnit | None = None,
    **parameters: object,
) -> list[ClusteredRecording]:
    """
    Find the clusters of recordings, window by window, with several recordings in parallel.

    The rows are the same as from ``kelvora cluster`` with the same options. They do not depend on
    the number of workers, except for the centroid method, which is random.

    Parameters
    ----------
    paths : iterable of path_like
        The recordings, in any supported format.
    client : distributed.Client, optional
        Client of a Dask cluster to run on. Its workers need this package and access to the
        recordings under the same paths. Without a client, processes on this machine do the work.
    workers : int, optional
        Number of processes on this machine. By default, one per processor.
    method : str
        Clustering method: ``'grid'``, or another one that ``kelvora cluster --help`` lists.
    window_us : int
        Length of a window, microseconds. Windows begin at multiples of it.
    from_us, to_us : int, optional
        Part of each recording to cluster, microseconds after its first event, `to_us` excluded.
    polarity : {'all', 'on', 'off', 'separate'}
        Events to cluster. 'separate', for the grid only, uses all, but requires both polarities in
        a cell.
    tracking : bool
        Track objects from window to window, which adds columns and rows.
    max_window_events : int, optional
        Refuse a recording with more events in a window. By default, as many are allowed as fit
        into `max_memory`.
    max_memory : int, optional
        Memory for the counts of the grid and the events of a window, megabytes. By default, a
        recording may take 32, and 32 bytes per byte.
    sensor : tuple of int, optional
        Width and height in pixels, if the recordings do not state them.
    input_format, columns, time_unit : str, optional
        As for `read`.
    **parameters
        Parameters of the method, as for `GridClusterer`, `DensityClusterer` or `CentroidClusterer`,
        and of the `Tracker`, with the same defaults.

    Returns
    -------
    list of ClusteredRecording
        One per path, in the same order. If a recording fails, even because its worker process dies,
        its ``error`` has the reason. The other recordings are not affected.

    Raises
    ------
    TypeError, ValueError
        For unknown parameters, parameters of another method, and invalid values, before any
        recording is opened.

    Notes
    -----
    Ctrl-C ends the processes at once, and cancels tasks that a Dask cluster has not started.

    Examples
    --------
    >>> import pathlib, tempfile
    >>> import numpy as np
    >>> import kelvora
    >>> events, _ = kelvora.simulate(duration_us=100_000)
    >>> path = pathlib.Path(tempfile.mkdtemp(), "events.csv")
    >>> table = np.stack([events[name] for name in "txyp"], axis=1)
    >>> np.savetxt(path, table, fmt="%d", header="t_us x y p")
    >>> good, bad = kelvora.cluster_recordings([path, "missing.raw"], sensor=(640, 480))
    >>> good.windows, int(good.rows["timestamp"].max())
    (10, 100000)
    >>> print(bad.error.problem)
    cannot be opened (No such file or directory)
    """
    options = _options(
        method=method,
        window_us=window_us,
        from_us=from_us,
        to_us=to_us,
        polarity=polarity,
        tracking=tracking,
        max_window_events=max_window_events,
        max_memory=max_memory,
        sensor=sensor,
        input_format=input_format,
        columns=columns,
        time_unit=time_unit,
        **parameters,
    )
    if isinstance(paths, (str, bytes)):
        raise TypeError("paths must be several paths: give [path] for a single one")
    names = [file_name(path) for path in paths]
    if client is not None:
        if workers is not None:
            raise TypeError("workers must not be given with a client, which has its own")
        return _on_dask(client, names, options)
    if workers is None:
        workers = len(os.sched_getaffinity(0))
    workers = integer("workers", workers)
    if workers < 1:
        raise ValueError("workers must be at least 1")
    return WorkerPool(workers).map(names, options)


def _options(**keywords: object) -> dict[str, Any]:
    """Check keywords and convert them to plain values, which can be sent to other processes."""
    options = {name: _plain(name, value) for name, value in keywords.items() if value is not None}
    check_clustering(options)
    return options


def _plain(name: str, value: Any) -> Any:
    if name == "sensor":
        return sensor_size(value)
    return value.item() if hasattr(value, "item") else value


def _on_dask(client: Any, paths: list[str], options: dict[str, Any]) -> list[ClusteredRecording]:
    if client.asynchronous:
        raise TypeError("client must not be asynchronous")
    futures = [_submit(client, path, options) for path in paths]
    try:
        found = [_result(future, path, options) for future, path in zip(futures, paths)]
        # When a worker dies, its other tasks fail, too: run each of them again, alone.
        for i, (path, future) in enumerate(zip(paths, futures)):
            if future.status == "error":
                futures[i] = _submit(client, path, options)
                found[i] = _result(futures[i], path, options)
        return found
    except BaseException:
        client.cancel(futures)
        raise


def _submit(client: Any, path: str, options: dict[str, Any]) -> Any:
    return client.submit(cluster, path, options, pure=False)


def _result(future: Any, path: str, options: dict[str, Any]) -> ClusteredRecording:
    try:
        found: ClusteredRecording = future.result()
        return found
    except Exception as error:
        problem = f"could not be clustered ({type(error).__name__}: {error})"
        return failed(path, options, problem, "see the log of the worker")
