#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the density clustering, with one job, with scikit-learn's DBSCAN, and the clustering around centroids with
its KMeans, on random scenes.

Density: both must find the same core points in the same clusters, and the same noise. A border point, which may be a
neighbour of several clusters, must belong to one of them.

Centroids: ours start from a point drawn at random, which is found by replaying the run from one point after the other
until the clusters and centroids are ours to the last bit. KMeans, started from the same centroids, must get the same
inertia after as many iterations, within 1e-5 of it.

Exits with 1 if any scene differs.

Needs python3-sklearn. Usage: benchmarks/compare_scikit_learn.py [build/release/benchmarks/cluster_points]
"""

import subprocess
import sys

import numpy as np
from sklearn.cluster import DBSCAN, KMeans
from sklearn.neighbors import NearestNeighbors

DENSITY_SCENES = 50
CENTROID_SCENES = 20
NOISE = -1
LARGEST_DIFFERENCE = 1e-5


def blobs(random, n, dim):
    centres = random.uniform(0, 300, (random.integers(2, 9), dim))
    spread = random.uniform(2, 12, len(centres))
    which = random.integers(0, len(centres), n)
    return centres[which] + random.normal(size=(n, dim)) * spread[which, None]


def lines(random, n, dim):
    ends = random.uniform(0, 300, (random.integers(2, 7), 2, dim))
    which = random.integers(0, len(ends), n)
    along = random.uniform(0, 1, (n, 1))
    return ends[which, 0] * along + ends[which, 1] * (1 - along) + random.normal(size=(n, dim))


def noise(random, n, dim):
    return random.uniform(0, 20 * n ** (1 / dim), (n, dim)) / 4


def mixture(random, n, dim):
    parts = n // 3
    return np.vstack([blobs(random, parts, dim), lines(random, parts, dim),
                      random.uniform(-50, 350, (n - 2 * parts, dim))])


def events(random, n, dim):
    """Whole pixels, many of them several times, and times in steps of 0.25."""
    points = np.floor(mixture(random, n, dim) / 4)
    if dim == 3:
        points[:, 2] += random.integers(0, 4, n) / 4
    return points


KINDS = [blobs, lines, noise, mixture, events]


def radius_off_the_lattice(points, wanted):
    """A radius close to the wanted one at which no two points are: "closer than" and "not farther than" agree."""
    reach = NearestNeighbors(radius=1.02 * wanted, algorithm="kd_tree").fit(points)
    distances = np.concatenate(reach.radius_neighbors()[0])
    near = np.unique(np.concatenate([[0.98 * wanted, 1.02 * wanted], distances[distances > 0.98 * wanted]]))
    widest = np.argmax(np.diff(near))
    assert near[widest + 1] - near[widest] > 2e-6 * wanted, "distances are too dense to be told apart in float"
    return (near[widest] + near[widest + 1]) / 2


def cluster_points(program, method, points, *parameters):
    """The lines that our program writes."""
    kind = f"{points.shape[1]}{'f' if points.dtype == np.float32 else 'd'}"
    run = subprocess.run([program, method, kind, *map(str, parameters)],
                         input=points.tobytes(), stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    return run.stdout.splitlines()


def same_partition(a, b):
    """Whether two labellings of the same points differ in nothing but the names of the labels."""
    pairs = len(set(zip(a, b)))
    return pairs == len(set(a)) == len(set(b))


def differences(points, eps, ours, theirs):
    """The differences, as a list of words, and the number of border points that went to another cluster."""
    found = []
    if len(ours) != len(points):
        return ["number of points"], 0
    if not np.array_equal(ours == NOISE, theirs.labels_ == NOISE):
        found.append("noise")
    is_core = np.zeros(len(points), dtype=bool)
    is_core[theirs.core_sample_indices_] = True
    if not same_partition(ours[is_core], theirs.labels_[is_core]):
        found.append("core points")
    border = np.flatnonzero(~is_core & (theirs.labels_ != NOISE))
    name = dict(zip(theirs.labels_[is_core], ours[is_core]))
    moved = sum(name[theirs.labels_[i]] != ours[i] for i in border)
    if len(border):
        cores = NearestNeighbors(radius=eps, algorithm="kd_tree").fit(points[is_core])
        neighbours = cores.radius_neighbors(points[border], return_distance=False)
        if not all(ours[i] in ours[is_core][near] for i, near in zip(border, neighbours)):
            found.append("border points")
    return found, moved


def compare_density(program, seed):
    """Compares one scene and prints a row about it. Returns whether it is the same."""
    random = np.random.default_rng(seed)
    make, dim = KINDS[seed % 5], 2 + seed // 5 % 2
    precision = [np.float32, np.float64][seed // 10 % 2]
    n, min_pts = int(random.integers(200, 5001)), int(random.integers(3, 13))
    points = make(random, n, dim).astype(precision)
    exact = points.astype(np.float64)
    # About as far as a point's min_pts-th neighbour, so that there are core, border and noise points.
    neighbours = NearestNeighbors(n_neighbors=min_pts).fit(exact).kneighbors()[0]
    eps = radius_off_the_lattice(exact, max(1.1, np.quantile(neighbours[:, -1], random.uniform(0.3, 0.8))))
    theirs = DBSCAN(eps=eps, min_samples=min_pts, algorithm="kd_tree", n_jobs=1).fit(exact)
    ours = np.array(cluster_points(program, "density", points, repr(float(eps)), min_pts, 1), dtype=int)
    found, moved = differences(exact, eps, ours, theirs)
    border = np.sum(theirs.labels_ != NOISE) - len(theirs.core_sample_indices_)
    print(f"{seed:5}  {make.__name__:8} {dim}  {precision.__name__:8} {n:6} {eps:8.3f} {min_pts:7} "
          f"{theirs.labels_.max() + 1:8} {len(theirs.core_sample_indices_):6} {border:6} {moved:5} "
          f"{np.sum(theirs.labels_ == NOISE):5}  {'differs: ' + ', '.join(found) if found else 'same'}")
    return not found


def furthest_point_sample(points, first, k):
    """k points far apart, from point number `first` on, as our clustering chooses them."""
    chosen = [first]
    distances = np.full(len(points), np.inf, dtype=np.float32)
    while len(chosen) < k:
        squares = (points - points[chosen[-1]]) ** 2
        distances = np.minimum(distances, np.sqrt(squares.sum(axis=1, dtype=np.float64)).astype(np.float32))
        chosen.append(np.argmax(distances))
    return points[chosen]


def replay(points, seeds, iterations):
    """The labels and centroids of our clustering from these seeds, or None if a cluster gets empty."""
    centroids = seeds
    for _ in range(iterations):
        squared_distances = np.zeros((len(points), len(seeds)), dtype=points.dtype)
        for axis in range(points.shape[1]):
            squared_distances += (points[:, None, axis] - centroids[None, :, axis]) ** 2
        labels = squared_distances.argmin(axis=1)
        sums = np.zeros_like(seeds)
        np.add.at(sums, labels, points)
        sizes = np.bincount(labels, minlength=len(seeds))
        if not sizes.all():
            return None
        centroids = sums / sizes[:, None].astype(points.dtype)
    return labels, centroids


def find_seeds(points, labels, centroids, iterations):
    """The centroids that our run started from, or None if no point leads to its result."""
    near_first = np.argsort(((points - centroids[0]) ** 2).sum(axis=1))
    for first in near_first:
        seeds = furthest_point_sample(points, first, len(centroids))
        replayed = replay(points, seeds, iterations)
        if replayed and np.array_equal(replayed[0], labels) and np.array_equal(replayed[1], centroids):
            return seeds
    return None


def inertia(points, centroids):
    """Sum of the squared distances of all points to their nearest centroids."""
    return ((points[:, None] - centroids[None]) ** 2).sum(axis=2).min(axis=1).sum()


def compare_centroids(program, seed):
    """Compares one scene and prints a row about it. Returns the relative difference in inertia."""
    random = np.random.default_rng(1000 + seed)
    make, dim = KINDS[seed % 4], 2 + seed // 4 % 2
    precision = [np.float32, np.float64][seed // 8 % 2]
    n, k, iterations = int(random.integers(1000, 3001)), int(random.integers(5, 13)), int(random.integers(1, 31))
    points = make(random, n, dim).astype(precision)
    lines = cluster_points(program, "centroid", points, k, iterations, "nan")
    labels = np.array(lines[k:], dtype=int)
    centroids = np.array([line.split()[:dim] for line in lines[:k]], dtype=precision)
    sizes = np.array([line.split()[dim] for line in lines[:k]], dtype=int)
    assert np.array_equal(sizes, np.bincount(labels, minlength=k)), "the sizes differ from the clusters"
    exact = points.astype(np.float64)
    ours, theirs, difference = inertia(exact, centroids.astype(np.float64)), np.nan, np.inf
    seeds = find_seeds(points, labels, centroids, iterations)
    if seeds is not None:
        means = KMeans(n_clusters=k, init=seeds.astype(np.float64), n_init=1, algorithm="lloyd", tol=0,
                       max_iter=iterations).fit(exact)
        theirs = inertia(exact, means.cluster_centers_)
        difference = abs(ours - theirs) / theirs
    print(f"{seed:5}  {make.__name__:8} {dim}  {precision.__name__:8} {n:6} {k:3} {iterations:10} {sizes.min():8} "
          f"{ours:16.4f} {theirs:16.4f}  {'no seeds found' if seeds is None else f'{difference:.1e}'}")
    return difference


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else "build/release/benchmarks/cluster_points"
    print("scene  kind    dim  type     points      eps min_pts clusters   core border moved noise  result")
    same = sum(compare_density(program, seed) for seed in range(DENSITY_SCENES))
    print(f"{same} of {DENSITY_SCENES} scenes are the same (moved: border points in another of their clusters)\n")
    print("scene  kind    dim  type     points   k iterations smallest      our inertia    their inertia  difference")
    relative = np.array([compare_centroids(program, seed) for seed in range(CENTROID_SCENES)])
    close = np.sum(relative <= LARGEST_DIFFERENCE)
    print(f"{close} of {CENTROID_SCENES} scenes have the same inertia (largest relative difference "
          f"{relative.max():.1e})")
    return 0 if same == DENSITY_SCENES and close == CENTROID_SCENES else 1


if __name__ == "__main__":
    sys.exit(main())
