#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the density clustering, with one job, with scikit-learn's DBSCAN on random scenes.

Both must find the same core points in the same clusters, and the same noise. A border point, which may be a
neighbour of several clusters, must belong to one of them. Exits with 1 if any scene differs.

Needs python3-sklearn. Usage: benchmarks/compare_scikit_learn.py [build/release/benchmarks/cluster_points]
"""

import subprocess
import sys

import numpy as np
from sklearn.cluster import DBSCAN
from sklearn.neighbors import NearestNeighbors

SCENES = 50
NOISE = -1


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


def our_labels(program, points, eps, min_pts):
    kind = f"{points.shape[1]}{'f' if points.dtype == np.float32 else 'd'}"
    run = subprocess.run([program, kind, repr(float(eps)), str(min_pts), "1"],
                         input=points.tobytes(), stdout=subprocess.PIPE, check=True)
    return np.array(run.stdout.split(), dtype=int)


def same_partition(a, b):
    """Whether two labellings of the same points differ in nothing but the names of the labels."""
    pairs = len(set(zip(a, b)))
    return pairs == len(set(a)) == len(set(b))


def differences(points, eps, ours, theirs):
    """What differs, as list of words, and the number of border points that went to another cluster."""
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


def compare(program, seed):
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
    ours = our_labels(program, points, eps, min_pts)
    found, moved = differences(exact, eps, ours, theirs)
    border = np.sum(theirs.labels_ != NOISE) - len(theirs.core_sample_indices_)
    print(f"{seed:5}  {make.__name__:8} {dim}  {precision.__name__:8} {n:6} {eps:8.3f} {min_pts:7} "
          f"{theirs.labels_.max() + 1:8} {len(theirs.core_sample_indices_):6} {border:6} {moved:5} "
          f"{np.sum(theirs.labels_ == NOISE):5}  {'differs: ' + ', '.join(found) if found else 'same'}")
    return not found


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else "build/release/benchmarks/cluster_points"
    print("scene  kind    dim  type     points      eps min_pts clusters   core border moved noise  result")
    same = sum(compare(program, seed) for seed in range(SCENES))
    print(f"{same} of {SCENES} scenes are the same (moved: border points in another of their clusters)")
    return 0 if same == SCENES else 1


if __name__ == "__main__":
    sys.exit(main())
