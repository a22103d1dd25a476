# SPDX-License-Identifier: MIT
"""The clusterers: results, timing and rejected input."""

import numpy as np
import pytest

import kelvora

WIDTH, HEIGHT = 320, 240
FIELDS = ["timestamp", "x", "y", "width", "height", "start_time", "duration", "events"]
EPOCH = 1_600_000_000_000_000


def clusterers(**options):
    return [
        kelvora.GridClusterer(WIDTH, HEIGHT, **options),
        kelvora.DensityClusterer(WIDTH, HEIGHT, **options),
        kelvora.DensityClusterer(WIDTH, HEIGHT, dim=3, **options),
        kelvora.CentroidClusterer(WIDTH, HEIGHT, k=1, **options),
    ]


def square(x, y, t=0, side=20):
    """Events at all pixels of a square, one per microsecond, alternately on and off."""
    rows, columns = np.mgrid[:side, :side]
    events = np.zeros(side * side, kelvora.EVENT_DTYPE)
    events["x"] = x + columns.ravel()
    events["y"] = y + rows.ravel()
    events["t"] = t + np.arange(len(events))
    events["p"] = np.arange(len(events)) % 2
    return events


def boxes(rows):
    return sorted(rows[["x", "y", "width", "height"]].tolist())


def test_rows_have_64_bit_times():
    for clusterer in clusterers():
        clusterer.process(square(100, 50))
        rows = clusterer.generate(EPOCH)
        assert list(rows.dtype.names) == FIELDS
        assert all(rows.dtype[name] == np.int64 for name in ["timestamp", "start_time", "duration"])
        assert rows["timestamp"].tolist() == [EPOCH]


def test_finds_two_squares():
    expected = {
        "GridClusterer": [(50.0, 50.0, 25.0, 25.0), (200.0, 100.0, 25.0, 25.0)],
        "DensityClusterer": [(50.0, 50.0, 19.0, 19.0), (200.0, 100.0, 19.0, 19.0)],
        "CentroidClusterer": [(50.0, 50.0, 19.0, 19.0), (200.0, 100.0, 19.0, 19.0)],
    }
    for clusterer in clusterers()[:3] + [kelvora.CentroidClusterer(WIDTH, HEIGHT, 2)]:
        clusterer.process(square(50, 50))
        clusterer.process(square(200, 100, t=500))
        assert boxes(clusterer.generate(1000)) == expected[type(clusterer).__name__]


def test_each_generate_takes_the_events_since_the_last():
    for clusterer in clusterers():
        clusterer.process(square(50, 50))
        clusterer.generate(1000)
        clusterer.process(square(200, 100, t=1000))
        rows = clusterer.generate(2000)
        assert rows["x"].tolist() == [200.0]
        assert len(clusterer.generate(3000)) == 0


@pytest.mark.parametrize("precision", ["float", "double"])
@pytest.mark.parametrize("origin", [0, 2**31, EPOCH, 2**53 - 10_000])
def test_times_are_exact_wherever_they_begin(origin, precision):
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, dim=3, precision=precision)
    for start in [origin, origin + 5000]:
        clusterer.process(square(50, 50, t=start + 7))
        rows = clusterer.generate(start + 1000)
        assert rows["start_time"].tolist() == [start + 7]
        assert rows["duration"].tolist() == [399]
        assert clusterer.points()[0][:, 2].tolist() == [
            start + 7 + i for i in range(400)
        ] or sorted(clusterer.points()[0][:, 2].tolist()) == [start + 7 + i for i in range(400)]


def test_start_times_are_unknown_in_the_plane():
    for clusterer in clusterers()[:2]:
        clusterer.process(square(50, 50))
        assert clusterer.generate(1000)["start_time"].tolist() == [-1]


def test_refuses_slices_too_long_for_space_and_time_and_takes_none_of_them():
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, dim=3)
    clusterer.process(square(50, 50, t=EPOCH))
    with pytest.raises(ValueError, match="call generate\\(\\) in between"):
        clusterer.process(square(200, 100, t=EPOCH + 2_000_000_000))
    rows = clusterer.generate(EPOCH)
    assert boxes(rows) == [(50.0, 50.0, 19.0, 19.0)]
    clusterer.process(square(200, 100, t=EPOCH + 2_000_000_000))
    assert clusterer.generate(EPOCH)["start_time"].tolist() == [EPOCH + 2_000_000_000]


def test_long_slices_are_fine_in_the_plane():
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT)
    clusterer.process(square(50, 50, t=0))
    clusterer.process(square(50, 50, t=EPOCH))
    assert len(clusterer.points()) == 0
    assert len(clusterer.generate(0)) == 1
    assert len(clusterer.points()[0]) == 800


def test_times_that_go_back_are_raised_and_counted():
    events = square(50, 50, t=EPOCH)
    events["t"][100] -= 1000
    events["t"][300] = 0
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, dim=3)
    clusterer.process(events)
    assert clusterer.clamped == 2
    clusterer.process(square(50, 50, t=5))
    assert clusterer.clamped == 402
    rows = clusterer.generate(EPOCH)
    assert (rows["start_time"][0], rows["duration"][0]) == (EPOCH, 399)
    clusterer.process(square(50, 50, t=EPOCH + 100)[:200])
    assert clusterer.clamped == 602
    assert clusterer.generate(EPOCH)["start_time"].tolist() == [EPOCH + 399]


def test_all_events_of_an_array_with_mixed_times_are_clustered():
    # The library itself would discard all events before a time that goes back.
    events = square(50, 50, t=1000)
    events["t"][200:] -= 500
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT)
    clusterer.process(events)
    clusterer.generate(0)
    assert len(clusterer.points()[0]) == 400


def test_reset_forgets_events_clusters_times_and_counts():
    for clusterer in clusterers():
        clusterer.process(square(50, 50, t=EPOCH))
        clusterer.process(square(310, 50, t=0))
        assert clusterer.dropped > 0
        assert clusterer.clamped > 0
        clusterer.reset()
        assert clusterer.dropped == clusterer.clamped == 0
        assert len(clusterer.generate(0)) == 0
        clusterer.process(square(50, 50, t=10))
        assert clusterer.clamped == 0
        assert len(clusterer.generate(0)) == 1


def test_polarity_is_filtered_for_each_object_alone():
    events = square(50, 50)
    events["p"][:200] = 0
    events["p"][200:] = 1
    expected = {"all": (50.0, 19.0), "off": (50.0, 9.0), "on": (60.0, 9.0)}
    for polarity, (y, height) in expected.items():
        clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, polarity=polarity)
        clusterer.process(events)
        rows = clusterer.generate(0)
        assert (rows["y"][0], rows["height"][0]) == (y, height)
    for polarity, count in {"on": 200, "off": 200, "all": 400}.items():
        grid = kelvora.GridClusterer(WIDTH, HEIGHT, polarity=polarity)
        grid.process(events)
        assert grid.active_map().sum() == count


def test_a_grid_can_require_both_polarities():
    for polarity, found in {"separate": 0, "all": 1}.items():
        clusterer = kelvora.GridClusterer(WIDTH, HEIGHT, polarity=polarity)
        events = square(50, 50)
        events["p"] = 1
        clusterer.process(events)
        assert len(clusterer.generate(0)) == found


def test_active_map_counts_events():
    clusterer = kelvora.GridClusterer(WIDTH, HEIGHT, count_every_event=True)
    clusterer.process(x=[5] * 300 + [7], y=[9] * 301, t=np.arange(301), p=[1] * 301)
    active = clusterer.active_map()
    assert active.shape == (HEIGHT, WIDTH)
    assert (active[9, 5], active[9, 7], active.astype(int).sum()) == (255, 1, 256)
    clusterer.generate(0)
    assert not clusterer.active_map().any()
    assert active.any(), "it is a copy"


def test_points_are_the_events_of_each_row():
    for jobs in [1, 2]:
        clusterer = kelvora.DensityClusterer(
            WIDTH, HEIGHT, jobs=jobs, scale_x=0.3, scale_y=0.7, eps=3
        )
        clusterer.process(square(200, 100))
        clusterer.process(square(50, 50, side=30, t=500))
        rows, points = clusterer.generate(0), clusterer.points()
        assert sorted(map(len, points)) == [400, 900]
        for row, of_row in zip(rows, points):
            assert of_row.shape[1] == 2
            np.testing.assert_allclose(of_row.min(axis=0), [row["x"], row["y"]], atol=1e-4)
            assert np.array_equal(of_row, np.floor(of_row)), "whole pixels"


def test_labels_are_the_rows_of_events_in_order_of_arrival():
    for clusterer in [
        kelvora.DensityClusterer(WIDTH, HEIGHT, min_pts=3, eps=3, jobs=2, polarity="on"),
        kelvora.CentroidClusterer(WIDTH, HEIGHT, 2, dim=3, polarity="on"),
    ]:
        events = np.concatenate([square(50, 50, side=30), square(200, 100, side=20, t=2000)])
        events = events[np.random.default_rng(3).permutation(len(events))]
        events["t"] = np.arange(len(events))
        events["p"][::3] = 0
        assert clusterer.labels().tolist() == []
        clusterer.process(events[:700])
        clusterer.process(events[700:])
        rows, labels, points = clusterer.generate(0), clusterer.labels(), clusterer.points()
        taken = events[events["p"] == 1]
        assert len(labels) == len(taken) and labels.max() == len(rows) - 1 == 1
        for row, of_row in enumerate(points):
            members = taken[labels == row]
            assert np.array_equal(of_row[:, 0], members["x"])
            assert np.array_equal(of_row[:, 1], members["y"])
        is_first = taken["x"] < 150
        assert len(set(labels[is_first])) == len(set(labels[~is_first])) == 1


def test_labels_of_noise_and_of_events_that_are_not_clustered_are_minus_one():
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, min_pts=3, eps=3, capacity=4)
    clusterer.process(x=[9, 9, 9, 9, 90], y=[9, 9, 9, 9, 9], t=[0, 1, 2, 3, 4], p=[1, 1, 1, 1, 1])
    clusterer.generate(0)
    assert clusterer.labels().tolist() == [-1, 0, 0, 0, -1]
    clusterer.generate(0)
    assert clusterer.labels().tolist() == []


def test_several_jobs_report_clusters_in_the_same_order_in_every_run():
    random = np.random.default_rng(1)
    squares = [square(x, y, side=8) for x in range(5, 300, 40) for y in range(5, 220, 40)]
    events = np.concatenate([squares[i] for i in random.permutation(len(squares))])
    events["t"] = np.arange(len(events))
    runs = []
    for _ in range(5):
        clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, jobs=4, eps=4)
        clusterer.process(events)
        runs.append(
            (clusterer.generate(0).tobytes(), [len(points) for points in clusterer.points()])
        )
    assert len(runs[0][1]) == len(squares)
    assert all(run == runs[0] for run in runs)


def test_centroids_sizes_and_points_agree():
    clusterer = kelvora.CentroidClusterer(WIDTH, HEIGHT, 2, dim=3)
    clusterer.process(square(50, 50, t=EPOCH))
    clusterer.process(square(200, 100, side=30, t=EPOCH + 1000))
    rows = clusterer.generate(0)
    centroids, sizes, points = clusterer.centroids(), clusterer.sizes(), clusterer.points()
    assert sorted(sizes.tolist()) == [400, 900]
    for row, centroid, size, of_row in zip(rows, centroids, sizes, points):
        assert len(of_row) == size
        np.testing.assert_allclose(centroid[:2], of_row.mean(axis=0)[:2], atol=1e-2)
        np.testing.assert_allclose(centroid[2] - EPOCH, (of_row[:, 2] - EPOCH).mean(), atol=1)
        assert row["start_time"] == of_row[:, 2].min()


def test_fewer_events_than_centroids_make_no_clusters():
    clusterer = kelvora.CentroidClusterer(WIDTH, HEIGHT, 3)
    clusterer.process(square(50, 50))
    assert len(clusterer.generate(0)) == len(clusterer.sizes()) == len(clusterer.points()) == 3
    clusterer.process(square(50, 50)[:2])
    assert len(clusterer.generate(0)) == 0
    assert len(clusterer.sizes()) == len(clusterer.points()) == 0
    assert clusterer.centroids().shape == (0, 2)


def test_only_the_newest_events_are_clustered_if_capacity_is_bounded():
    clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, capacity=400)
    clusterer.process(square(50, 50))
    clusterer.process(square(200, 100, t=500))
    assert boxes(clusterer.generate(0)) == [(200.0, 100.0, 19.0, 19.0)]


def test_results_do_not_depend_on_how_events_are_cut():
    random = np.random.default_rng(3)
    events = np.sort(np.concatenate([square(x, x, t=x * 3) for x in range(0, 200, 25)]), order="t")
    cuts = np.sort(random.integers(0, len(events), 20))
    for make in [
        lambda: kelvora.GridClusterer(WIDTH, HEIGHT),
        lambda: kelvora.DensityClusterer(WIDTH, HEIGHT, dim=3),
    ]:
        whole, parts = make(), make()
        whole.process(events)
        for part in np.split(events, cuts):
            parts.process(part)
        rows = whole.generate(0)
        assert len(rows) > 0
        assert rows.tobytes() == parts.generate(0).tobytes()


@pytest.mark.parametrize(
    "options, message",
    [
        (dict(width=0), "from 1 to 65536"),
        (dict(height=65537), "from 1 to 65536"),
        (dict(cell_width=0), "cell_width"),
        (dict(cell_height=-5), "cell_height"),
        (dict(min_cluster_size=-1), "min_cluster_size"),
        (dict(max_cluster_size=2**31), "max_cluster_size"),
        (dict(activation_threshold=65536), "activation_threshold"),
        (dict(polarity="both"), "polarity must be"),
    ],
)
def test_grid_refuses_wrong_parameters(options, message):
    with pytest.raises(ValueError, match=message):
        kelvora.GridClusterer(**{"width": WIDTH, "height": HEIGHT, **options})


WRONG_OF_POINTS = [
    (dict(dim=4), "dim"),
    (dict(scale_x=0.0), "scale_x"),
    (dict(scale_y=float("nan")), "scale_y"),
    (dict(us_per_pixel=0.0), "us_per_pixel"),
    (dict(us_per_pixel=-1.0), "us_per_pixel"),
    (dict(capacity=0), "capacity"),
    (dict(time_length_us=0), "time_length_us"),
    (dict(precision="half"), "precision"),
    (dict(polarity="separate"), "polarity separate needs method grid"),
]


@pytest.mark.parametrize(
    "options, message",
    WRONG_OF_POINTS
    + [
        (dict(eps=0.0), "eps"),
        (dict(eps=float("inf")), "eps"),
        (dict(min_pts=0), "min_pts"),
        (dict(jobs=256), "jobs"),
    ],
)
def test_density_refuses_wrong_parameters(options, message):
    with pytest.raises(ValueError, match=message):
        kelvora.DensityClusterer(WIDTH, HEIGHT, **options)


@pytest.mark.parametrize(
    "options, message",
    WRONG_OF_POINTS
    + [
        (dict(k=0), "k must be"),
        (dict(k=1_000_001), "k must be"),
        (dict(max_iter=0), "max_iter"),
        (dict(tol=0), "tol"),
    ],
)
def test_centroid_refuses_wrong_parameters(options, message):
    with pytest.raises(ValueError, match=message):
        kelvora.CentroidClusterer(**{"width": WIDTH, "height": HEIGHT, "k": 2, **options})


def test_refuses_negative_timestamps():
    for clusterer in clusterers():
        with pytest.raises(ValueError, match="timestamp"):
            clusterer.generate(-1)


def test_unknown_keywords_are_refused_with_a_suggestion():
    with pytest.raises(TypeError, match="there is no parameter epss; did you mean eps\\?"):
        kelvora.DensityClusterer(WIDTH, HEIGHT, epss=3)
    with pytest.raises(TypeError, match="cell_width is not a parameter of the method 'density'"):
        kelvora.DensityClusterer(WIDTH, HEIGHT, cell_width=3)
    with pytest.raises(TypeError, match="a clusterer has no parameter window_us"):
        kelvora.GridClusterer(WIDTH, HEIGHT, window_us=3)


def test_events_in_one_column_get_a_thin_box_unless_zero_boxes_are_kept():
    column = dict(x=[7] * 40, y=np.arange(40), t=np.arange(40), p=[1] * 40)
    for keep, box in {False: (7.0, 0.0, 1.0, 39.0), True: (0.0, 0.0, 0.0, 0.0)}.items():
        clusterer = kelvora.DensityClusterer(WIDTH, HEIGHT, keep_zero_boxes=keep)
        clusterer.process(**column)
        rows = clusterer.generate(0)
        assert boxes(rows) == [box]
        assert rows["events"].tolist() == [40]


def test_the_grid_reports_no_number_of_events():
    clusterer = kelvora.GridClusterer(WIDTH, HEIGHT)
    clusterer.process(square(50, 50))
    assert clusterer.generate(0)["events"].tolist() == [-1]


@pytest.mark.parametrize("number", [10**30, -(10**30), 10**400, -(10**400)])
def test_integers_of_any_size_are_refused_as_out_of_range(number):
    with pytest.raises(ValueError, match="jobs must be a whole number from -1 to 255, not "):
        kelvora.DensityClusterer(WIDTH, HEIGHT, jobs=number)
    with pytest.raises(ValueError, match="time_length_us must be a whole number from 0 to "):
        kelvora.DensityClusterer(WIDTH, HEIGHT, time_length_us=number)


def test_an_error_of_an_integer_type_reaches_the_caller():
    class Broken:
        def __index__(self):
            raise ZeroDivisionError

    with pytest.raises(ZeroDivisionError):
        kelvora.DensityClusterer(WIDTH, HEIGHT, jobs=Broken())


def test_flags_are_bools_of_python_or_numpy():
    for flag in (True, np.True_):
        kelvora.GridClusterer(WIDTH, HEIGHT, count_every_event=flag)
    for wrong in (1, 2.5, "True", np.int8(1), [True]):
        with pytest.raises(TypeError, match="count_every_event must be True or False, not "):
            kelvora.GridClusterer(WIDTH, HEIGHT, count_every_event=wrong)
