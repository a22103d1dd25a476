# SPDX-License-Identifier: MIT
"""Points alone: dbscan and kmeans."""

import pathlib
import sys

import numpy as np
import pytest

import kelvora

BENCHMARKS = pathlib.Path(__file__).resolve().parents[2] / "benchmarks"


def blobs(count=300, dim=2, dtype="f4", seed=0):
    random = np.random.default_rng(seed)
    centres = np.array([[0.0, 0.0, 0.0], [50.0, 0.0, 20.0], [0.0, 80.0, 40.0]])[:, :dim]
    which = np.arange(count) % 3
    return (centres[which] + random.normal(size=(count, dim))).astype(dtype), which


def same_partition(a, b):
    return len(set(zip(a.tolist(), b.tolist()))) == len(set(a.tolist())) == len(set(b.tolist()))


@pytest.mark.parametrize("dim", [2, 3])
@pytest.mark.parametrize("dtype", ["f4", "f8", ">f8", "f2", "i4", "u2"])
@pytest.mark.parametrize("jobs", [1, 2, -1])
def test_dbscan_separates_blobs_and_noise(dim, dtype, jobs):
    points, which = blobs(dim=dim)
    points = np.vstack([points + 100, np.full((1, dim), 60000)]).astype(dtype)
    labels = kelvora.dbscan(points, eps=8.0, min_pts=5, jobs=jobs)
    assert labels.dtype == np.int64
    assert labels[-1] == -1
    assert (
        labels[:-1].tolist() == which.tolist()
    ), "clusters are numbered in the order of their points"


def test_dbscan_leaves_out_points_at_exactly_the_radius():
    points = np.array([[0.0, 0.0], [3.0, 4.0]])
    assert kelvora.dbscan(points, 5.0, 2).tolist() == [-1, -1]
    assert kelvora.dbscan(points, 5.001, 2).tolist() == [0, 0]


def test_dbscan_treats_points_that_are_not_finite_as_noise():
    points, _ = blobs()
    points[7] = np.nan
    labels = kelvora.dbscan(points, 8.0, 5)
    assert labels[7] == -1
    assert (labels == -1).sum() == 1


def test_points_may_have_any_memory_layout():
    points, which = blobs(dim=3, dtype="f8")
    for same in [
        np.asfortranarray(points),
        np.repeat(points, 2, axis=0)[::2],
        points[::-1][::-1],
        points.tolist(),
    ]:
        assert kelvora.dbscan(same, 8.0, 5).tolist() == which.tolist()
    before = points.copy()
    kelvora.kmeans(points, 3)
    assert np.array_equal(points, before)


@pytest.mark.parametrize("dim", [2, 3])
@pytest.mark.parametrize("dtype", ["f4", "f8", "i4"])
def test_kmeans_finds_blobs(dim, dtype):
    points, which = blobs(dim=dim)
    points = points.astype(dtype)
    labels, centroids = kelvora.kmeans(points, 3)
    assert same_partition(labels, which)
    assert centroids.shape == (3, dim)
    assert centroids.dtype == ("f4" if dtype == "f4" else "f8")
    for cluster in range(3):
        np.testing.assert_allclose(
            centroids[cluster], points[labels == cluster].mean(axis=0), rtol=1e-4, atol=1e-3
        )


def test_no_points_are_no_clusters():
    labels = kelvora.dbscan(np.zeros((0, 2)), 1.0, 1)
    assert labels.shape == (0,)


@pytest.mark.parametrize(
    "points", [np.zeros(3), np.zeros((3, 4)), np.zeros((3, 1)), np.zeros((2, 2, 2)), 1.0]
)
def test_refuses_other_shapes(points):
    for cluster in [lambda: kelvora.dbscan(points, 1.0, 1), lambda: kelvora.kmeans(points, 1)]:
        with pytest.raises(ValueError, match="shape"):
            cluster()


@pytest.mark.parametrize(
    "points",
    [
        np.zeros((3, 2), bool),
        np.zeros((3, 2), complex),
        [["a", "b"]],
        np.ma.masked_array(np.zeros((3, 2)), False),
    ],
)
def test_refuses_arrays_that_are_not_numeric(points):
    for cluster in [lambda: kelvora.dbscan(points, 1.0, 1), lambda: kelvora.kmeans(points, 1)]:
        with pytest.raises(TypeError, match="points"):
            cluster()


@pytest.mark.parametrize(
    "changes",
    [
        dict(eps=0.0),
        dict(eps=float("nan")),
        dict(min_pts=0),
        dict(min_pts=2**30),
        dict(jobs=0),
        dict(jobs=256),
        dict(jobs=-2),
    ],
)
def test_dbscan_refuses_wrong_parameters(changes):
    with pytest.raises(ValueError, match=next(iter(changes))):
        kelvora.dbscan(np.zeros((3, 2)), **{"eps": 1.0, "min_pts": 2, **changes})


@pytest.mark.parametrize(
    "changes, message",
    [
        (dict(k=0), "k must"),
        (dict(k=4), "fewer points"),
        (dict(max_iter=0), "max_iter"),
        (dict(tol=0.0), "tol"),
    ],
)
def test_kmeans_refuses_wrong_parameters(changes, message):
    with pytest.raises(ValueError, match=message):
        kelvora.kmeans(np.zeros((3, 2)), **{"k": 1, **changes})


def test_kmeans_refuses_points_that_are_not_finite():
    with pytest.raises(ValueError, match="finite"):
        kelvora.kmeans([[0.0, 0.0], [0.0, np.inf]], 1)


def test_dbscan_finds_the_partitions_of_scikit_learn(monkeypatch):
    pytest.importorskip("sklearn")
    monkeypatch.syspath_prepend(BENCHMARKS)
    monkeypatch.delitem(sys.modules, "compare_scikit_learn", raising=False)
    import compare_scikit_learn

    found = []

    def differences(points, eps, ours, theirs):
        found.append(
            same_partition(ours, theirs.labels_)
            and np.array_equal(ours == -1, theirs.labels_ == -1)
        )
        return [], 0

    monkeypatch.setattr(compare_scikit_learn, "differences", differences)
    monkeypatch.setattr(
        compare_scikit_learn,
        "cluster_points",
        lambda program, method, points, eps, min_pts, jobs: kelvora.dbscan(
            points, float(eps), min_pts, jobs
        ),
    )
    for seed in range(compare_scikit_learn.DENSITY_SCENES):
        compare_scikit_learn.compare_density(None, seed)
    assert found == [True] * 50
