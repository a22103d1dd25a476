# SPDX-License-Identifier: MIT
"""Tracking objects."""

import numpy as np
import pytest

import kelvora

ROW = [("timestamp", "i8"), ("x", "f4"), ("y", "f4"), ("width", "f4"), ("height", "f4")]


def rows(timestamp, *corners):
    return np.array([(timestamp, x, y, 20, 20) for x, y in corners], ROW)


def test_follows_two_objects():
    tracker = kelvora.Tracker()
    for i in range(5):
        ids = tracker.update(rows(i * 10_000, (50 + 2 * i, 50), (200 - i, 100)))
        assert ids.tolist() == [1, 2]
    tracks = tracker.tracks()
    assert tracks["id"].tolist() == [1, 2]
    assert tracks["cluster"].tolist() == [0, 1]
    assert tracks["hits"].tolist() == [5, 5]
    assert tracks["confirmed"].all()
    assert not tracks["hidden"].any()
    np.testing.assert_allclose(tracks["vx"], [200, -100], rtol=1e-3)
    assert tracks["timestamp"].tolist() == [40_000, 40_000]


def test_a_track_survives_windows_without_it():
    tracker = kelvora.Tracker(min_hits=2, max_missed=2)
    for i in range(3):
        tracker.update(rows(i, (50, 50)))
    assert len(tracker.update(rows(0))) == 0
    assert tracker.tracks()["missed"].tolist() == [1]
    assert tracker.update(rows(5, (50, 50))).tolist() == [1]
    for _ in range(3):
        tracker.update(rows(0))
    assert len(tracker.tracks()) == 0


def test_reset_ends_tracks_and_uses_no_number_again():
    tracker = kelvora.Tracker()
    tracker.update(rows(0, (50, 50)))
    tracker.reset()
    assert len(tracker.tracks()) == 0
    assert tracker.update(rows(1, (50, 50))).tolist() == [2]


def test_takes_the_result_of_a_clusterer():
    clusterer = kelvora.GridClusterer(320, 240)
    x, y = (axis.ravel() for axis in np.meshgrid(np.arange(100, 120), np.arange(50, 70)))
    tracker = kelvora.Tracker()
    for start in [0, 10_000]:
        clusterer.process(x=x, y=y, t=start + np.arange(400), p=x % 2)
        assert tracker.update(clusterer.generate(start + 10_000)).tolist() == [1]


def test_maps_fields_by_name():
    shuffled = np.zeros(
        1,
        [
            ("height", "f8"),
            ("y", "i4"),
            ("other", "f4"),
            ("timestamp", "u4"),
            ("x", "f8"),
            ("width", "u1"),
        ],
    )
    shuffled[0] = (24.0, 60, 7.0, 500, 50.5, 12)
    tracker = kelvora.Tracker()
    tracker.update(shuffled)
    assert tracker.tracks()[["timestamp", "x", "y", "width", "height"]].tolist() == [
        (500, 50.5, 60.0, 12.0, 24.0)
    ]


def test_refuses_times_that_go_back_and_changes_nothing():
    tracker = kelvora.Tracker()
    tracker.update(rows(1000, (50, 50)))
    with pytest.raises(ValueError, match="timestamp"):
        tracker.update(rows(999, (50, 50)))
    assert tracker.tracks()["hits"].tolist() == [1]


@pytest.mark.parametrize(
    "clusters, error, message",
    [
        (np.zeros((2, 5)), TypeError, "named fields"),
        (np.zeros(2, ROW[:-1]), ValueError, "no field 'height'"),
        (np.zeros(2, [("timestamp", "f8")] + ROW[1:]), TypeError, "field 'timestamp'"),
        (np.zeros(2, ROW[:1] + [("x", "U3")] + ROW[2:]), TypeError, "field 'x'"),
        (np.array([(-1, 0, 0, 1, 1)], ROW), ValueError, "negative"),
    ],
)
def test_refuses_arrays_that_are_not_clusters(clusters, error, message):
    with pytest.raises(error, match=message):
        kelvora.Tracker().update(clusters)


@pytest.mark.parametrize(
    "options",
    [
        dict(max_distance=-1.0),
        dict(max_size_change=float("nan")),
        dict(max_missed=-1),
        dict(min_hits=0),
    ],
)
def test_refuses_wrong_parameters(options):
    with pytest.raises(ValueError, match=next(iter(options))):
        kelvora.Tracker(**options)


def test_equal_tracks_have_equal_bytes():
    tracker = kelvora.Tracker()
    tracker.update(rows(0, *[(90 * i, 50) for i in range(40)]))
    tracks = tracker.tracks()
    plain = np.zeros(len(tracks), tracks.dtype)
    for name in tracks.dtype.names:
        plain[name] = tracks[name]
    assert tracks.tobytes() == plain.tobytes()
