# SPDX-License-Identifier: MIT
"""Several threads, and leaks of memory and references."""

import gc
import sys
import tracemalloc
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import kelvora
from waiting import releases_the_gil

WIDTH, HEIGHT = 320, 240


def random_events(count, seed=0):
    random = np.random.default_rng(seed)
    events = np.zeros(count, kelvora.EVENT_DTYPE)
    events["x"] = random.integers(0, WIDTH, count)
    events["y"] = random.integers(0, HEIGHT, count)
    events["p"] = random.integers(0, 2, count)
    events["t"] = np.arange(count)
    return events


def test_feeding_events_releases_the_gil():
    clusterer = kelvora.GridClusterer(WIDTH, HEIGHT)
    events = random_events(2_000_000)
    assert releases_the_gil(lambda: clusterer.process(events))


def test_generating_clusters_releases_the_gil():
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, eps=3)
    events = random_events(100_000)
    assert releases_the_gil(
        lambda: clusterer.generate(0), prepare=lambda: clusterer.process(events)
    )


@pytest.mark.parametrize(
    "cluster",
    [lambda points: kelvora.dbscan(points, 3.0, 10), lambda points: kelvora.kmeans(points, 50)],
    ids=["dbscan", "kmeans"],
)
def test_clustering_points_releases_the_gil(cluster):
    points = np.random.default_rng(1).uniform(0, 300, (100_000, 2))
    assert releases_the_gil(lambda: cluster(points))


def test_pure_python_does_not_release_the_gil():
    assert not releases_the_gil(lambda: sum(range(1000)))


def test_one_object_serves_many_threads_one_at_a_time():
    parts = [random_events(20_000, seed) for seed in range(16)]
    alone = kelvora.GridClusterer(WIDTH, HEIGHT, count_every_event=True)
    for part in parts:
        alone.process(part)
    shared = kelvora.GridClusterer(WIDTH, HEIGHT, count_every_event=True)
    with ThreadPoolExecutor(8) as pool:
        list(pool.map(shared.process, parts))
    assert np.array_equal(shared.active_map(), alone.active_map())


def test_all_operations_may_run_at_the_same_time():
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
