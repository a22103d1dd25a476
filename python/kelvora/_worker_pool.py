# SPDX-License-Identifier: MIT
"""Worker processes on this machine."""

from __future__ import annotations

import concurrent.futures
import json
import multiprocessing
import signal
import subprocess
import sys
import threading
from typing import Any

from kelvora._worker import ClusteredRecording, failed

# Finds modules in the same places as the parent.
_PROGRAM = """\
import json, sys
sys.path[:] = json.loads(sys.argv[2])
from kelvora._worker import serve
serve(int(sys.argv[1]))
"""


class WorkerProcess:
    """
    A process that clusters one recording after another.

    Starts a new interpreter instead of using `multiprocessing`: it does not import the user's main
    module, which would need a guard for that, and does not fork threads.
    """

    def __init__(self) -> None:
        self._connection, its_connection = multiprocessing.Pipe()
        descriptor = its_connection.fileno()
        # In a separate session, Ctrl-C does not reach the process: the parent ends it.
        self._process = subprocess.Popen(
            [sys.executable, "-c", _PROGRAM, str(descriptor), json.dumps(sys.path)],
            stdin=subprocess.DEVNULL,
            pass_fds=[descriptor],
            start_new_session=True,
        )
        its_connection.close()

    def cluster(self, path: str, options: dict[str, Any]) -> ClusteredRecording | None:
        """Cluster a recording; None if the process ended before it was done."""
        try:
            self._connection.send((path, options))
            found: ClusteredRecording = self._connection.recv()
            return found
        except (EOFError, OSError):
            return None

    def kill(self) -> None:
        self._process.kill()

    def end(self) -> str:
        """Wait for the end of the process, and return its status or signal as text."""
        self._connection.close()
        status = self._process.wait()
        if status >= 0:
            return f"status {status}"
        return f"signal {-status} ({signal.strsignal(-status)})"


class WorkerPool:
    """Worker processes, each started when it is first needed."""

    def __init__(self, workers: int) -> None:
        self._workers = workers
        self._lock = threading.Lock()
        self._all: set[WorkerProcess] = set()
        self._idle: list[WorkerProcess] = []
        self._is_cancelled = False

    def map(self, paths: list[str], options: dict[str, Any]) -> list[ClusteredRecording]:
        """Cluster recordings, then end all processes. Results are in the order of the paths."""
        try:
            with concurrent.futures.ThreadPoolExecutor(self._workers) as threads:
                futures: list[concurrent.futures.Future[ClusteredRecording]] = []
                try:
                    for path in paths:
                        futures.append(threads.submit(self._cluster, path, options))
                    # A signal that arrives just before this thread sleeps does not wake it, so it
                    # checks for Ctrl-C regularly.
                    while concurrent.futures.wait(futures, timeout=0.2).not_done:
                        pass
                    return [future.result() for future in futures]
                except BaseException:
                    for future in futures:
                        future.cancel()
                    self._cancel()
                    raise
        finally:
            for worker in self._idle:
                worker.end()

    def _cluster(self, path: str, options: dict[str, Any]) -> ClusteredRecording:
        try:
            worker = self._take()
        except OSError as error:
            problem = f"could not be clustered: no worker process can be started ({error})"
            return failed(path, options, problem, "use fewer workers")
        found = worker.cluster(path, options)
        with self._lock:
            if found is None:
                self._all.remove(worker)
            else:
                self._idle.append(worker)
        if found is not None:
            return found
        problem = f"could not be clustered: the worker process ended with {worker.end()}"
        return failed(path, options, problem, "use fewer workers if memory was short")

    def _take(self) -> WorkerProcess:
        with self._lock:
            if self._is_cancelled:
                raise concurrent.futures.CancelledError
            if self._idle:
                return self._idle.pop()
            worker = WorkerProcess()
            self._all.add(worker)
            return worker

    def _cancel(self) -> None:
        with self._lock:
            self._is_cancelled = True
            for worker in self._all:
                worker.kill()
