# SPDX-License-Identifier: MIT
"""Clusterers, `cluster_recordings` and the command-line tool find the same rows."""

import csv
import io
import os

import numpy as np
import pytest

import kelvora
from recordings import run_tool, simulate

WINDOW = 10_000
# Sanitizers take many times longer, and few windows reach all code.
WINDOWS = 15 if "KELVORA_FEWER_ROUNDS" in os.environ else 30
VARIANTS = [
    {"method": "grid"},
    {"method": "density", "dim": 2, "jobs": 1},
    {"method": "density", "dim": 2, "jobs": 2},
    {"method": "density", "dim": 3, "jobs": 1},
    {"method": "density", "dim": 3, "jobs": 2},
    # With a single centroid, the random first one does not matter.
    {"method": "centroid", "k": 1, "dim": 2},
    {"method": "centroid", "k": 1, "dim": 3},
]
CLUSTERERS = {
    "grid": kelvora.GridClusterer,
    "density": kelvora.DensityClusterer,
    "centroid": kelvora.CentroidClusterer,
}
TOOL_NAMES = {"k": "clusters"}


@pytest.fixture(scope="module")
def scene(tmp_path_factory):
    path = tmp_path_factory.mktemp("scene") / "scene.raw"
    return simulate(path, seed=7, duration=f"{WINDOWS * WINDOW}us", sensor="640x480")


@pytest.fixture(scope="module")
def windows(scene):
    """The ends of the windows, and their events."""
    events = np.concatenate(list(kelvora.read(scene)))
    ends = range(WINDOW, (WINDOWS + 1) * WINDOW, WINDOW)
    cuts = np.searchsorted(events["t"], ends)
    return [(end, part) for end, part in zip(ends, np.split(events, cuts)) if len(part)]


def track_fields(rows, tracker):
    """Rows of one window with their tracks, followed by the hidden objects."""
    if tracker is None:
        return [list(row) for row in rows.tolist()]
    tracker.update(rows)
    columns = [[0, 0.0, 0.0, "none"] for _ in rows]
    hidden = []
    for track in tracker.tracks():
        seen = [int(track["id"]), float(track["vx"]), float(track["vy"])]
        if track["cluster"] >= 0:
            state = "confirmed" if track["confirmed"] else "tentative"
            columns[track["cluster"]] = [*seen, state]
        elif track["confirmed"] and track["hidden"]:
            box = [track[name].item() for name in ("timestamp", "x", "y", "width", "height")]
            hidden.append([*box, -1, 0, 0, *seen, "hidden"])
    return [list(row) + column for row, column in zip(rows.tolist(), columns)] + hidden


def rows_of_clusterer(windows, options, tracking):
    options = dict(options)
    clusterer = CLUSTERERS[options.pop("method")](640, 480, **options)
    tracker = kelvora.Tracker() if tracking else None
    rows = []
    for end, events in windows:
        clusterer.process(events)
        rows += track_fields(clusterer.generate(end), tracker)
    return rows


def written(rows):
    """Rows as the tool writes them."""

    def text(value, is_velocity):
        if isinstance(value, float):
            return f"{value:.1f}" if is_velocity else f"{np.float32(value):.9g}"
        return str(value)

    return [[text(value, i in (9, 10)) for i, value in enumerate(row)] for row in rows]


def rows_of_tool(scene, options, tracking):
    arguments = ["--track"] if tracking else []
    for name, value in options.items():
        arguments += ["--" + TOOL_NAMES.get(name, name).replace("_", "-"), str(value)]
    table = csv.reader(io.StringIO(run_tool("cluster", "-q", scene, *arguments)))
    next(table)
    # Numbers have as many digits as they need.
    return [
        [
            f"{np.float32(value):.9g}" if 1 <= i <= 4 else value
            for i, value in enumerate(row)
        ]
        for row in table
    ]


@pytest.mark.parametrize("tracking", [False, True])
@pytest.mark.parametrize("options", VARIANTS, ids=str)
def test_all_interfaces_find_the_same_rows(scene, windows, options, tracking):
    fed = rows_of_clusterer(windows, options, tracking)
    assert len(fed) >= len(windows)
    (found,) = kelvora.cluster_recordings([scene], workers=1, tracking=tracking, **options)
    assert found.error is None
    assert found.rows.tolist() == [tuple(row) for row in fed]
    assert rows_of_tool(scene, options, tracking) == written(fed)


@pytest.mark.parametrize("options", [one for one in VARIANTS if one.get("dim") == 3], ids=str)
def test_times_are_exact(windows, options):
    options = dict(options)
    clusterer = CLUSTERERS[options.pop("method")](640, 480, **options)
    count = 0
    for end, events in windows:
        clusterer.process(events)
        rows = clusterer.generate(end)
        for row, points in zip(rows, clusterer.points()):
            times = points[:, 2]
            assert row["start_time"] == times.min()
            assert row["duration"] == times.max() - times.min()
            assert row["events"] == len(points)
            assert np.isin(times, events["t"]).all()
            count += 1
    assert count >= len(windows)
