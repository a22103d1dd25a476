#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the speed of density and centroid clustering with packages in Debian: scikit-learn's DBSCAN and KMeans, and
OpenCV's kmeans. All get the same points, in turn, several times; figures are medians, of wall-clock
times for DBSCAN, which may use two threads, and of processor times for k-means, which uses one.

Before anything is timed, the results must agree:

- DBSCAN: the same core points in the same clusters and the same noise with one job. With two jobs, which join clusters
  through border points and need one neighbour more, no cluster may be split and the noise must be the same.
- k-means: started from the centroids at which Kelvora has converged, the others must stay there: the same labels for
  999 of 1,000 points, and the same inertia within 1e-4, because all compute in single precision.

The time of an iteration of k-means comes from the difference between a run of 2 iterations and one of 11, or of as
many as the others do before they converge. These runs start from vertical stripes with equally many points.

Exits with 1 if any do not agree.

Usage: benchmarks/compare_peers.py [options] [RECORDING...]

RECORDINGs are files of 16-byte records, of which the first events are taken. Without any, scenes are simulated.

Needs python3-sklearn, and python3-matplotlib for --chart.
"""

import argparse
import json
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import numpy as np
from sklearn.cluster import DBSCAN, KMeans
from threadpoolctl import threadpool_limits

NOISE = -1
MIN_PTS = 10
# Just below the radius of the library: scikit-learn counts points at exactly this distance as neighbours.
DENSITY_SETTINGS = [("2D, eps 3", 2, 3.0), ("2D, eps 5", 2, 5.0), ("3D, eps 5", 3, 5.0)]
JUST_BELOW = 1 - 1e-6
CLUSTER_NUMBERS = [8, 32, 128]
FEW_ITERATIONS, MANY_ITERATIONS = 2, 12
RECORD = np.dtype([("timestamp", "<u8"), ("x", "<u2"), ("y", "<u2"), ("polarity", "u1"), ("padding", "u1", 3)])


class Program:
    """Kelvora and OpenCV: a program that clusters the points it gets."""

    def __init__(self, path):
        self.path = path

    def run(self, points, method, *parameters, runs=1):
        """Returns the lines that it writes, and the seconds of the last run, by the wall clock and the processor."""
        command = [self.path, method, f"{points.shape[1]}f", *map(str, parameters), str(runs)]
        result = subprocess.run(command, input=points.tobytes(), capture_output=True, check=True)
        return result.stdout.splitlines(), [float(field) for field in result.stderr.split()[-2:]]

    def density(self, points, eps, jobs, min_pts=MIN_PTS, runs=1):
        lines, seconds = self.run(points, "density", repr(eps), min_pts, jobs, runs=runs)
        return np.array(lines, dtype=int), seconds[0]

    def centroid(self, points, k, iterations, tol="nan", runs=1):
        lines, seconds = self.run(points, "centroid", k, iterations, tol, runs=runs)
        return split_centroids(lines, k), seconds[1]

    def opencv(self, points, k, first_iterations, iterations, jobs=1, runs=1):
        lines, seconds = self.run(points, "opencv", k, first_iterations, iterations, jobs, runs=runs)
        return split_centroids(lines, k), seconds[1]


def split_centroids(lines, k):
    """Labels and centroids."""
    centroids = np.array([line.split()[:-1] for line in lines[:k]], dtype=np.float32)
    return np.array(lines[k:], dtype=int), centroids


def read_points(path, count, dim):
    """The first events of a recording, as pixels and milliseconds."""
    records = np.fromfile(path, dtype=RECORD, count=count)
    milliseconds = (records["timestamp"] - records["timestamp"][0]) / 1000
    columns = [records["x"], records["y"], milliseconds][:dim]
    return np.ascontiguousarray(np.stack(columns, axis=1), dtype=np.float32)


def simulate(kelvora, folder):
    """Scenes of the default simulation on two sensors. Returns their paths by name."""
    scenes = {}
    for sensor in ["640x480", "1280x720"]:
        path = pathlib.Path(folder) / f"{sensor}.bin"
        subprocess.run([kelvora, "simulate", "--sensor", sensor, "--duration", "300ms", "--output", path],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        scenes[f"simulated {sensor}"] = path
    return scenes


def seconds_of(call, clock=time.perf_counter):
    start = clock()
    call()
    return clock() - start


def medians(rounds, contenders):
    """Lets each contender run in turn, `rounds` times. Returns the median seconds of each."""
    times = {name: [] for name in contenders}
    for _ in range(rounds):
        for name, contender in contenders.items():
            times[name].append(contender())
    return {name: statistics.median(values) for name, values in times.items()}


def same_partition(a, b):
    return len(set(zip(a, b))) == len(set(a)) == len(set(b))


def dbscan(points, eps, min_pts=MIN_PTS, jobs=1):
    return DBSCAN(eps=eps * JUST_BELOW, min_samples=min_pts, algorithm="kd_tree", n_jobs=jobs).fit(points)


def check_density(program, points, eps):
    """The difference in words, or an empty string."""
    theirs = dbscan(points, eps)
    ours, _ = program.density(points, eps, jobs=1)
    core = theirs.core_sample_indices_
    if not np.array_equal(ours == NOISE, theirs.labels_ == NOISE):
        return "one job differs in noise"
    if not same_partition(ours[core], theirs.labels_[core]):
        return "one job differs"
    strict = dbscan(points, eps, MIN_PTS + 1)
    joined, _ = program.density(points, eps, jobs=2)
    clustered = strict.labels_ != NOISE
    core = strict.core_sample_indices_
    pairs = len(set(zip(strict.labels_[core], joined[core])))
    if not np.array_equal(joined != NOISE, clustered) or pairs != strict.labels_.max() + 1:
        return "two jobs differ"
    return ""


def compare_density(program, points, eps, rounds):
    return medians(rounds, {
        "kelvora, 1 job": lambda: program.density(points, eps, 1, runs=3)[1],
        "kelvora, 2 jobs": lambda: program.density(points, eps, 2, runs=3)[1],
        "scikit-learn, 1 job": lambda: seconds_of(lambda: dbscan(points, eps)),
        "scikit-learn, 2 jobs": lambda: seconds_of(lambda: dbscan(points, eps, jobs=2)),
    })


def inertia(points, labels, centroids):
    return ((points.astype(float) - centroids[labels].astype(float)) ** 2).sum()


def kmeans(points, centroids, iterations):
    return KMeans(n_clusters=len(centroids), init=centroids, n_init=1, algorithm="lloyd", tol=0,
                  max_iter=iterations).fit(points)


def check_kmeans(program, points, k):
    """The difference in words, or an empty string."""
    (labels, centroids), _ = program.centroid(points, k, 1000, "1e-300")
    theirs = kmeans(points, centroids, FEW_ITERATIONS)
    ours = inertia(points, labels, centroids)
    if np.mean(theirs.labels_ != labels) > 1e-3 or abs(theirs.inertia_ / ours - 1) > 1e-4:
        return "scikit-learn differs"
    # OpenCV starts from another run, which converges elsewhere: only check that nothing moves.
    (resting, rested), _ = program.opencv(points, k, 1000, FEW_ITERATIONS)
    nearest = kmeans(points, rested, FEW_ITERATIONS)
    if np.mean(nearest.labels_ != resting) > 1e-3:
        return "OpenCV differs"
    return ""


def compare_kmeans(program, points, k, rounds):
    """Seconds per iteration of each."""
    by_x = points[np.argsort(points[:, 0], kind="stable")]
    stripe_of = np.arange(len(points)) * k // len(points)
    stripes = np.array([by_x[stripe_of == i].mean(axis=0) for i in range(k)])
    many = kmeans(points, stripes, MANY_ITERATIONS).n_iter_ - 1
    (_, before_last), _ = program.opencv(points, k, 0, many - 1)
    (_, last), _ = program.opencv(points, k, 0, many)
    assert many > FEW_ITERATIONS and not np.array_equal(before_last, last), "the stripes are too close to the clusters"

    def per_iteration(run):
        return lambda: (run(many) - run(FEW_ITERATIONS)) / (many - FEW_ITERATIONS)

    with threadpool_limits(1):
        return medians(rounds, {
            "kelvora": per_iteration(lambda n: program.centroid(points, k, n, runs=3)[1]),
            "OpenCV": per_iteration(lambda n: program.opencv(points, k, 0, n, runs=3)[1]),
            "scikit-learn": per_iteration(lambda n: seconds_of(lambda: kmeans(points, stripes, n), time.process_time)),
        })


def print_row(scene, points, setting, figures, reference, disagreement):
    cells = "  ".join(f"{name} {1000 * seconds:.2f} ms" for name, seconds in figures.items())
    best_peer = min(seconds for name, seconds in figures.items() if not name.startswith("kelvora"))
    print(f"{scene}, {points:,} events, {setting}: {cells}  ({best_peer / figures[reference]:.1f} times as fast as the "
          f"fastest peer) {disagreement or 'agree'}", flush=True)


def compare(program, scenes, sizes, rounds):
    """All figures, as a list of dictionaries."""
    rows = []

    def add(kind, scene, points, setting, figures, reference, disagreement):
        print_row(scene, len(points), setting, figures, reference, disagreement)
        rows.append({"kind": kind, "scene": scene, "events": len(points), "setting": setting,
                     "seconds": figures, "disagreement": disagreement})

    for scene, path in scenes.items():
        for size in sizes:
            for setting, dim, eps in DENSITY_SETTINGS:
                points = read_points(path, size, dim)
                disagreement = check_density(program, points, eps)
                figures = compare_density(program, points, eps, rounds)
                add("density", scene, points, setting, figures, "kelvora, 2 jobs", disagreement)
            points = read_points(path, size, 2)
            for k in CLUSTER_NUMBERS:
                disagreement = check_kmeans(program, points, k)
                figures = compare_kmeans(program, points, k, rounds)
                add("centroid", scene, points, f"k = {k}", figures, "kelvora", disagreement)
    return rows


def draw_chart(rows, path):
    """Bars for the first scene with the most events: times of each contender, on a logarithmic axis."""
    import matplotlib
    matplotlib.use("agg")
    import matplotlib.pyplot as plt
    plt.rcParams["svg.hashsalt"] = "kelvora"
    most = max(row["events"] for row in rows)
    scene = rows[0]["scene"]
    colours = {"kelvora": "#1f6fb2", "kelvora, 1 job": "#7fb2dc", "kelvora, 2 jobs": "#1f6fb2",
               "scikit-learn": "#e08e0b", "scikit-learn, 1 job": "#f3c77c", "scikit-learn, 2 jobs": "#e08e0b",
               "OpenCV": "#6a9a3b"}
    figure, axes = plt.subplots(1, 2, figsize=(9, 3.2))
    for axis, kind, title in zip(axes, ["density", "centroid"], ["DBSCAN", "k-means, one iteration"]):
        chosen = [row for row in rows if row["kind"] == kind and row["scene"] == scene and row["events"] == most]
        names = list(chosen[0]["seconds"])
        for i, name in enumerate(names):
            places = [place + 0.8 * i / len(names) for place in range(len(chosen))]
            axis.bar(places, [1000 * row["seconds"][name] for row in chosen], 0.8 / len(names), align="edge",
                     color=colours[name], label=name)
        axis.set_xticks([place + 0.4 for place in range(len(chosen))], [row["setting"] for row in chosen])
        axis.set(title=f"{title}, {most:,} events", ylabel="ms (logarithmic)", yscale="log")
        axis.grid(axis="y", alpha=0.3)
        axis.set_axisbelow(True)
        axis.spines[["top", "right"]].set_visible(False)
        axis.legend(fontsize="small", frameon=False)
        axis.set_ylim(top=axis.get_ylim()[1] * 8)
    figure.tight_layout()
    figure.savefig(path, metadata={"Date": None})


def parse_arguments():
    parser = argparse.ArgumentParser(description="Times kelvora against scikit-learn and OpenCV on the same points.")
    parser.add_argument("recordings", nargs="*", metavar="RECORDING", help="files of 16-byte records")
    parser.add_argument("--build", default="build/release", help="directory of the build [build/release]")
    parser.add_argument("--events", type=int, nargs="+", default=[10_000, 50_000], help="[10000 50000]")
    parser.add_argument("--rounds", type=int, default=5, help="times that each one runs [5]")
    parser.add_argument("--json", help="file for the figures")
    parser.add_argument("--chart", help="file for a chart of the first scene (SVG)")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    build = pathlib.Path(arguments.build)
    program = Program(build / "benchmarks" / "cluster_points")
    with tempfile.TemporaryDirectory() as folder:
        scenes = {pathlib.Path(path).name.split(".")[0]: path for path in arguments.recordings}
        scenes = scenes or simulate(build / "tools" / "command_line" / "kelvora", folder)
        rows = compare(program, scenes, arguments.events, arguments.rounds)
    if arguments.json:
        pathlib.Path(arguments.json).write_text(json.dumps(rows, indent=2) + "\n")
    if arguments.chart:
        draw_chart(rows, arguments.chart)
    return 1 if any(row["disagreement"] for row in rows) else 0


if __name__ == "__main__":
    sys.exit(main())
