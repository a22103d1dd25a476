#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
r"""Speed of event input from Python, and the overhead of Python over the library.

- Intake: millions of events per second of processor time in `process`, for several layouts and
  methods.
- Threads: throughput of two threads with two clusterers, relative to one.
- dbscan: its time relative to the C++ program `cluster_points` on the same points.

Usage: PYTHONPATH=build/release/python \
           python/benchmarks/process_benchmark.py [--program PATH] [--rounds N]

Runs with one and with two threads alternate; medians are printed. Run it on an idle machine.
"""

import argparse
import hashlib
import statistics
import subprocess
import threading
import time

import numpy as np

import kelvora

WIDTH, HEIGHT = 640, 480
EVENTS = 4_000_000
LAYOUTS = {
    "library, 16 bytes": kelvora.EVENT_DTYPE,
    "records, 16 bytes": np.dtype(
        dict(
            names=["t", "x", "y", "p"],
            formats=["u8", "u2", "u2", "u1"],
            offsets=[0, 8, 10, 12],
            itemsize=16,
        )
    ),
    "packed, 13 bytes": np.dtype([("x", "u2"), ("y", "u2"), ("t", "u8"), ("p", "u1")]),
    "all int64": np.dtype([("x", "i8"), ("y", "i8"), ("t", "i8"), ("p", "i8")]),
    "all float64": np.dtype([("x", "f8"), ("y", "f8"), ("t", "f8"), ("p", "f8")]),
    "big-endian": np.dtype([("x", ">u2"), ("y", ">u2"), ("t", ">u8"), ("p", "u1")]),
}
METHODS = {
    "grid": lambda: kelvora.GridClusterer(WIDTH, HEIGHT),
    "density 2D": lambda: kelvora.DensityClusterer(WIDTH, HEIGHT, capacity=EVENTS),
    "density 3D": lambda: kelvora.DensityClusterer(WIDTH, HEIGHT, dim=3, capacity=EVENTS),
}
DBSCAN_SCENES = [(20_000, 3.0), (100_000, 1.5), (400_000, 1.0)]
MIN_PTS = 10


def random_events(dtype, count=EVENTS):
    random = np.random.default_rng(1)
    events = np.zeros(count, dtype)
    events["x"] = random.integers(0, WIDTH, count)
    events["y"] = random.integers(0, HEIGHT, count)
    events["p"] = random.integers(0, 2, count)
    events["t"] = np.sort(random.integers(0, 1_000_000, count))
    return events


def intake_rate(make, events, rounds):
    """Millions of events per second of processor time."""
    times = []
    for _ in range(rounds):
        clusterer = make()
        start = time.thread_time()
        clusterer.process(events, time_unit="us")
        times.append(time.thread_time() - start)
    return len(events) / statistics.median(times) / 1e6


def wall_seconds(works):
    """Run each task in a separate thread."""
    threads = [threading.Thread(target=work) for work in works]
    start = time.perf_counter()
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return time.perf_counter() - start


def thread_gain(make_work, rounds):
    """Throughput of two threads relative to one."""
    gains = []
    for _ in range(rounds):
        works = [make_work(), make_work()]
        gains.append(2 * wall_seconds(works[:1]) / wall_seconds(works))
    return statistics.median(gains)


def make_intake(events, repeats=4):
    clusterer = METHODS["grid"]()

    def work():
        for _ in range(repeats):
            clusterer.process(events)

    return work


def make_hashing(data=bytes(100_000_000)):
    """Work that needs neither the GIL nor shared resources."""
    return lambda: hashlib.sha256(data)


def program_seconds(program, points, eps, rounds):
    """Processor seconds of the library alone: median of all runs except the first."""
    run = subprocess.run(
        [program, "density", "2f", repr(eps), str(MIN_PTS), "1", str(rounds + 1)],
        input=points.tobytes(),
        capture_output=True,
        check=True,
    )
    return statistics.median(float(line.split()[1]) for line in run.stderr.splitlines()[1:])


def python_seconds(points, eps, rounds):
    times = []
    for _ in range(rounds + 1):
        start = time.thread_time()
        kelvora.dbscan(points, eps, MIN_PTS)
        times.append(time.thread_time() - start)
    return statistics.median(times[1:])


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument(
        "--program", default="build/release/benchmarks/cluster_points", help="the C++ program"
    )
    parser.add_argument("--rounds", type=int, default=7)
    arguments = parser.parse_args()

    print(
        f"process, million events per second of processor time\n{'':20}"
        + "".join(f"{m:>12}" for m in METHODS)
    )
    for name, dtype in LAYOUTS.items():
        events = random_events(dtype)
        rates = [intake_rate(make, events, arguments.rounds) for make in METHODS.values()]
        print(f"{name:20}" + "".join(f"{rate:12.1f}" for rate in rates))

    gain = thread_gain(lambda: make_intake(random_events(kelvora.EVENT_DTYPE)), arguments.rounds)
    possible = thread_gain(make_hashing, arguments.rounds)
    print(
        f"\ntwo threads on two grids process {gain:.2f} times the events of one "
        f"(and hash {possible:.2f} times the bytes, which is the limit of the machine)"
    )

    print("\ndbscan, one job\n  points   eps   library ms   Python ms   ratio")
    for count, eps in DBSCAN_SCENES:
        points = np.random.default_rng(count).uniform(0, 600, (count, 2)).astype(np.float32)
        library = program_seconds(arguments.program, points, eps, arguments.rounds)
        python = python_seconds(points, eps, arguments.rounds)
        print(
            f"{count:8} {eps:5.1f} {1e3 * library:12.1f} {1e3 * python:11.1f} "
            f"{python / library:7.3f}"
        )


if __name__ == "__main__":
    main()
