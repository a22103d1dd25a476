# SPDX-License-Identifier: MIT
"""Several threads, and what is left behind in memory."""

import gc
import sys
import threading
import time
import tracemalloc
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import kelvora

WIDTH, HEIGHT = 320, 240


def random_events(count, seed=0):
    random = np.random.default_rng(seed)
    events = np.zeros(count, kelvora.EVENT_DTYPE)
    events["x"] = random.integers(0, WIDTH, count)
    events["y"] = random.integers(0, HEIGHT, count)
    events["p"] = random.integers(0, 2, count)
    events["t"] = np.arange(count)
    return events


def turns_meanwhile(work):
    """How often this thread gets to run Python while another one does the work."""
    span = []

    def call():
        span.append(time.perf_counter())
        work()
        span.append(time.perf_counter())

    thread = threading.Thread(target=call)
    turns = []
    thread.start()
    while thread.is_alive():
        time.sleep(0.001)
        turns.append(time.perf_counter())
    return sum(span[0] < turn < span[1] for turn in turns)


def process(clusterer, events):
    return lambda: clusterer.process(events)


@pytest.mark.parametrize(
    "work",
    [
        process(
            kelvora.GridClusterer(WIDTH, HEIGHT), np.broadcast_to(random_events(1), 30_000_000)
        ),
        lambda: kelvora.dbscan(np.random.default_rng(1).uniform(0, 300, (400_000, 2)), 3.0, 10),
        lambda: kelvora.kmeans(np.random.default_rng(1).uniform(0, 300, (400_000, 2)), 50),
    ],
    ids=["process", "dbscan", "kmeans"],
)
def test_other_threads_run_meanwhile(work):
    assert turns_meanwhile(work) > 10


def test_other_threads_run_while_clusters_are_generated():
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, eps=3)
    clusterer.process(random_events(300_000))
    assert turns_meanwhile(lambda: clusterer.generate(0)) > 10


def test_one_object_serves_many_threads_one_at_a_time():
    parts = [random_events(20_000, seed) for seed in range(16)]
    alone = kelvora.GridClusterer(WIDTH, HEIGHT, count_every_event=True)
    for part in parts:
        alone.process(part)
    shared = kelvora.GridClusterer(WIDTH, HEIGHT, count_every_event=True)
    with ThreadPoolExecutor(8) as pool:
        list(pool.map(shared.process, parts))
    assert np.array_equal(shared.active_map(), alone.active_map())


def test_all_operations_may_meet():
    events = random_events(2_000)
    clusterer = kelvora.CentroidClusterer(WIDTH, HEIGHT, 4, dim=3)
    tracker = kelvora.Tracker()
    operations = [
        lambda: clusterer.process(events),
        lambda: clusterer.generate(7),
        clusterer.points,
        clusterer.centroids,
        clusterer.sizes,
        lambda: clusterer.dropped,
        lambda: clusterer.clamped,
        clusterer.reset,
        lambda: tracker.update(clusterer.generate(7)),
        tracker.tracks,
    ]
    with ThreadPoolExecutor(8) as pool:
        futures = [pool.submit(operations[i % len(operations)]) for i in range(3000)]
    assert all(future.exception() is None for future in futures)


def test_no_references_are_left():
    events = random_events(1000)
    swapped = events.astype([("x", ">u2"), ("y", ">u2"), ("p", ">i4"), ("t", ">i8")])
    points = np.random.default_rng(0).uniform(0, 100, (200, 2))
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT)
    objects = [events, swapped, points, events.dtype, kelvora.EVENT_DTYPE]
    before = [sys.getrefcount(thing) for thing in objects]
    for _ in range(100):
        clusterer.process(events)
        clusterer.process(swapped)
        clusterer.process(x=events["x"], y=events["y"], t=events["t"], p=events["p"])
        clusterer.generate(0)
        clusterer.points()
        kelvora.dbscan(points, 5.0, 3)
        kelvora.kmeans(points, 3)
        with pytest.raises(ValueError):
            clusterer.process(events[["x", "y"]])
        with pytest.raises(ValueError):
            kelvora.dbscan(points, -1.0, 3)
    gc.collect()
    assert [sys.getrefcount(thing) for thing in objects] == before


def test_memory_does_not_grow():
    events = random_events(5_000)
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, dim=3)
    tracker = kelvora.Tracker()

    def window():
        clusterer.process(events)
        tracker.update(clusterer.generate(0))
        tracker.tracks()
        clusterer.points()
        clusterer.reset()

    window()
    tracemalloc.start()
    window()
    before = tracemalloc.take_snapshot()
    for _ in range(50):
        window()
    gc.collect()
    grown = sum(
        entry.size_diff
        for entry in tracemalloc.take_snapshot().compare_to(before, "filename")
        if "tracemalloc" not in entry.traceback[0].filename
    )
    tracemalloc.stop()
    assert grown < 120_000, "less than the points of a single window"
