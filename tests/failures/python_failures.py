#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""
Uses the Python package while calls fail: allocations, starts of threads, and calls of the system.

Each use must give the right result or raise an exception. The same objects must then give the right
result. The library that makes calls fail must have been loaded before the interpreter.
"""

from __future__ import annotations

import argparse
import ctypes
import dataclasses
import gc
import os
import pathlib
import random
import sys
import tempfile
import time
import zlib
from typing import Any, Callable

import numpy as np

import kelvora
from failing_program import KINDS, UNHARMED, Plan, choose_plans
from kelvora._worker import cluster

_SHIM = ctypes.CDLL(None)
_SHIM.kelvora_failures_calls.restype = ctypes.c_long
_SHIM.kelvora_failures_failed.restype = ctypes.c_long

_MOST_PROBLEMS = 20
_LEAK = 4096  # bytes; caches of the interpreter grow, too


@dataclasses.dataclass(frozen=True)
class Scenario:
    """A use of the package."""

    name: str
    make: Callable[[], Any]
    use: Callable[[Any], Any]
    recover: Callable[[Any], Any] = lambda made: None


def _plain(result: Any) -> Any:
    """Something that can be compared."""
    if isinstance(result, np.ndarray):
        return result.tolist()
    if isinstance(result, (list, tuple)):
        return [_plain(part) for part in result]
    return result


# A scene that is simulated once.
_EVENTS, _ = kelvora.simulate(sensor=(64, 48), duration_us=20_000, seed=5)
_COLUMNS = {name: _EVENTS[name].copy() for name in "xytp"}
_POINTS = np.stack([_EVENTS["x"], _EVENTS["y"]], axis=1).astype(float)[:300]


def _clusterer(kind: type, **options: Any) -> Callable[[], Any]:
    def make() -> Any:
        clusterer = kind(64, 48, **options)
        _begin(clusterer)
        return clusterer

    return make


def _begin(clusterer: Any) -> None:
    """Forget all events, and end a first window."""
    clusterer.reset()
    clusterer.process(_EVENTS)
    clusterer.generate(1)


def _process_grid(clusterer: Any) -> Any:
    clusterer.process(_EVENTS)
    active = clusterer.active_map()
    return clusterer.generate(20_000), active


def _process_points(clusterer: Any) -> Any:
    clusterer.process(_EVENTS)
    rows = clusterer.generate(20_000)
    return rows, clusterer.points(), clusterer.labels()


def _process_columns(clusterer: Any) -> Any:
    clusterer.process(**_COLUMNS)
    return clusterer.generate(20_000)


def _tracker() -> Any:
    tracker = kelvora.Tracker()
    for window in range(4):
        tracker.update(_rows(window))
    return tracker


def _rows(window: int) -> Any:
    clusterer = kelvora.GridClusterer(64, 48)
    events = _EVENTS.copy()
    events["x"] = np.minimum(events["x"] + window, 63)
    clusterer.process(events)
    return clusterer.generate(10_000 * (window + 1))


_FOURTH_ROWS = _rows(4)


def _read(path: pathlib.Path) -> Callable[[Any], Any]:
    def read(_: Any) -> Any:
        reader = kelvora.read(path, sensor=(64, 48), chunk_events=500)
        return list(reader), reader.format

    return read


def _cluster(path: pathlib.Path, **options: Any) -> Callable[[Any], Any]:
    def run(_: Any) -> Any:
        found = cluster(str(path), {"sensor": (64, 48), **options})
        if found.error is not None:
            raise found.error
        return found.rows

    return run


class _Target:
    """A file that is replaced."""

    old = b"the recording of last week"

    def __init__(self, path: pathlib.Path) -> None:
        self.path = path
        path.write_bytes(self.old)

    def write(self) -> int:
        """Write events; returns a checksum of the file."""
        kelvora.write(self.path, _EVENTS, sensor=(64, 48))
        return self.checksum()

    def checksum(self) -> int:
        return zlib.crc32(self.path.read_bytes())

    def is_untouched(self) -> bool:
        return self.path.read_bytes() == self.old


def _write(path: pathlib.Path) -> Scenario:
    right = _Target(path).write()

    def check(target: _Target) -> None:
        if not target.is_untouched() and target.checksum() != right:
            raise SystemExit(f"{path} is neither the old file nor the right one")
        for part in path.parent.glob(f"*{path.name}.*"):
            part.unlink()

    return Scenario(f"write-{path.suffix[1:]}", lambda: _Target(path), _Target.write, check)


def _nothing() -> None:
    return None


def scenarios(directory: pathlib.Path) -> list[Scenario]:
    """The uses of the package. They read recordings in a directory."""
    table = np.stack([_EVENTS[name] for name in "txyp"], axis=1)
    text = directory / "scene.csv"
    np.savetxt(text, table, fmt="%d", header="t_us x y p")
    records = directory / "scene.bin"
    layout = [("t", "<u8"), ("x", "<u2"), ("y", "<u2"), ("p", "u1"), ("padding", "u1", 3)]
    content = np.zeros(len(table), layout)
    for name in "txyp":
        content[name] = _EVENTS[name]
    content.tofile(records)
    density, centroid = kelvora.DensityClusterer, kelvora.CentroidClusterer
    return [
        Scenario("grid", _clusterer(kelvora.GridClusterer), _process_grid, _begin),
        Scenario("grid-columns", _clusterer(kelvora.GridClusterer), _process_columns, _begin),
        Scenario("density-2d", _clusterer(density, dim=2), _process_points, _begin),
        Scenario("density-3d", _clusterer(density, dim=3), _process_points, _begin),
        Scenario("density-threads", _clusterer(density, jobs=3), _process_points, _begin),
        # With a single centroid, the random first one does not matter.
        Scenario("centroid", _clusterer(centroid, k=1, dim=3), _process_points, _begin),
        Scenario(
            "construction", _nothing, lambda _: _process_points(density(64, 48, capacity=100))
        ),
        Scenario("tracker", _tracker, lambda tracker: tracker.update(_FOURTH_ROWS)),
        Scenario("tracks", _tracker, lambda tracker: tracker.tracks()),
        Scenario("dbscan", _nothing, lambda _: kelvora.dbscan(_POINTS, 2.0, 4)),
        Scenario("kmeans", _nothing, lambda _: kelvora.kmeans(_POINTS, 1)),
        Scenario("read-text", _nothing, _read(text)),
        Scenario("read-records", _nothing, _read(records)),
        _write(directory / "written.raw"),
        _write(directory / "written.csv"),
        Scenario(
            "simulate", _nothing, lambda _: kelvora.simulate(sensor=(32, 24), duration_us=10_000)
        ),
        Scenario("cluster", _nothing, _cluster(text, tracking=True)),
        Scenario("cluster-density", _nothing, _cluster(records, method="density")),
    ]


class Uses:
    """Uses the package many times in the same way, and collects what goes wrong."""

    def __init__(self, scenario: Scenario) -> None:
        self.scenario = scenario
        self.problems: list[str] = []
        self.failing_runs = 0
        scenario.use(scenario.make())  # Imports and caches are not part of the use.
        self.right = self._use(scenario.make(), UNHARMED)
        self.calls = {
            kind: _SHIM.kelvora_failures_calls(i) for i, kind in enumerate(KINDS)
        }

    def run(self, plans: list[Plan], announce: Callable[[Plan], None]) -> None:
        """Use the package once for each plan."""
        for plan in plans:
            announce(plan)
            made = self.scenario.make()
            found, error = None, None
            try:
                found = self._use(made, plan)
            except (MemoryError, OSError, RuntimeError, kelvora.RecordingError) as raised:
                error = raised
            except Exception as raised:  # Is reported.
                error = raised
                self.problems.append(f"{self.scenario.name}, {plan}: {raised!r}")
            has_failed = _SHIM.kelvora_failures_failed() > 0
            self.failing_runs += has_failed
            if error is not None and (plan.is_harmless or not has_failed):
                self.problems.append(f"{self.scenario.name}, {plan}: raised {error!r}")
            if error is not None:
                self.scenario.recover(made)
                found = self._use(made, UNHARMED)
            if found != self.right:
                when = "after an exception" if error is not None else "in spite of a failure"
                self.problems.append(f"{self.scenario.name}, {plan}: another result {when}")
            if len(self.problems) > _MOST_PROBLEMS:
                return

    def _use(self, made: Any, plan: Plan) -> Any:
        text = str(plan).encode()
        if not _SHIM.kelvora_failures_begin(text):
            raise SystemExit(f"{plan} is not a plan")
        try:
            result = self.scenario.use(made)
        finally:
            _SHIM.kelvora_failures_end()
        return _plain(result)


class _MemoryInfo(ctypes.Structure):
    """The counts of mallinfo2."""

    _fields_ = [
        (name, ctypes.c_size_t)
        for name in (
            "arena ordblks smblks hblks hblkhd usmblks fsmblks uordblks fordblks keepcost"
        ).split()
    ]


def memory_in_use() -> int:
    """Allocated bytes, without objects that the interpreter has not freed yet."""
    gc.collect()
    _SHIM.mallinfo2.restype = _MemoryInfo
    info = _SHIM.mallinfo2()
    return int(info.uordblks + info.hblkhd)


def open_files() -> int:
    """The number of descriptors in use."""
    gc.collect()
    return len(os.listdir("/proc/self/fd"))


def run_scenario(scenario: Scenario, options: argparse.Namespace, announce: Any) -> Uses:
    """Run a scenario, and look for leaks."""
    uses = Uses(scenario)
    open_before = open_files()
    generator = random.Random(f"{options.seed} {scenario.name}")
    plans = choose_plans(uses.calls, options.runs, generator)
    uses.run(plans, announce)
    if not options.sanitized and not uses.problems:
        uses.run(plans, announce)
        before = memory_in_use()
        uses.run(plans, announce)
        growth = memory_in_use() - before
        if growth > _LEAK:
            uses.problems.append(f"{scenario.name}: {growth} bytes were not freed")
    if open_files() > open_before:
        uses.problems.append(f"{scenario.name}: a file was left open")
    return uses


def run_in_process(scenario: Scenario, options: argparse.Namespace) -> tuple[int, list[str]]:
    """Run a scenario in a copy of this process, which may crash."""
    out, into = os.pipe()
    sys.stdout.flush()
    process = os.fork()
    if process == 0:
        os.close(out)
        with os.fdopen(into, "w", buffering=1) as report:
            uses = run_scenario(scenario, options, lambda plan: print(f"plan {plan}", file=report))
            for problem in uses.problems:
                print("problem", " ".join(problem.split()), file=report)
            print("done", uses.failing_runs, file=report)
        os._exit(0)
    os.close(into)
    with os.fdopen(out) as report:
        lines = report.read().splitlines()
    status = os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])
    problems = [line.removeprefix("problem ") for line in lines if line.startswith("problem ")]
    if status != 0 or not lines or not lines[-1].startswith("done "):
        return 0, [*problems, f"{scenario.name}: ended with {status} after {lines[-1:]}"]
    return int(lines[-1].split()[1]), problems


def main() -> int:
    """Run the scenarios and print what went wrong."""
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runs", type=int, default=60, help="failures of each use [60]")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="", help="run only uses whose name begins so")
    parser.add_argument("--sanitized", action="store_true", help="look for no leaks")
    options = parser.parse_args()

    start = time.monotonic()
    failing_runs = 0
    problems = 0
    with tempfile.TemporaryDirectory() as name:
        for scenario in scenarios(pathlib.Path(name)):
            if scenario.name.startswith(options.only):
                failed, found = run_in_process(scenario, options)
                print(f"{scenario.name}: {failed} failing runs, {len(found)} problems", flush=True)
                print(*(f"  {problem}\n" for problem in found), sep="", end="", flush=True)
                failing_runs += failed
                problems += len(found)
    print(f"{failing_runs} failing runs in {time.monotonic() - start:.0f} s, {problems} problems")
    return 1 if problems or not failing_runs else 0


if __name__ == "__main__":
    sys.exit(main())
