# SPDX-License-Identifier: MIT
"""Clustering many recordings."""

import contextlib
import csv
import io
import os
import pathlib
import re
import signal
import subprocess
import sys
import threading

import numpy as np
import pytest

import kelvora
from recordings import DATA, damaged_copy, needs_data, run_tool, simulate, write_records
from waiting import wait_until

SENSOR = (320, 240)


@pytest.fixture(scope="module")
def scenes(tmp_path_factory):
    directory = tmp_path_factory.mktemp("scenes")
    names = ["a.raw", "b.bin", "c.evt2.raw", "d.csv", "e.raw"]
    return [simulate(directory / name, seed=seed) for seed, name in enumerate(names)]


@pytest.fixture(scope="module")
def dask_client():
    distributed = pytest.importorskip("distributed")
    dask = pytest.importorskip("dask")
    settings = {
        # When a worker dies, its task is not given to another one.
        "distributed.scheduler.allowed-failures": 0,
        "distributed.comm.timeouts.connect": "300s",
        "distributed.comm.timeouts.tcp": "300s",
    }
    with dask.config.set(settings):
        cluster = distributed.LocalCluster(n_workers=2, processes=True, dashboard_address=None)
        with cluster, distributed.Client(cluster) as client:
            yield client


def assert_same(left, right):
    assert [found.path for found in left] == [found.path for found in right]
    for one, other in zip(left, right):
        assert one.rows.dtype == other.rows.dtype
        assert one.rows.tobytes() == other.rows.tobytes()
        assert str(one.error) == str(other.error)
        counts = ("windows", "dropped", "clamped", "skipped_words", "remark")
        assert [getattr(one, name) for name in counts] == [getattr(other, name) for name in counts]


def reader_of(pipe):
    """The process that has opened a pipe for reading only, if there is one.

    A process that has just been forked still has this one's descriptors, which can write, too.
    """
    for link in pathlib.Path("/proc").glob("[0-9]*/fd/*"):
        with contextlib.suppress(OSError):
            process, descriptor = link.parts[2], link.parts[4]
            if os.readlink(link) != str(pipe):
                continue
            details = pathlib.Path(f"/proc/{process}/fdinfo/{descriptor}").read_text()
            flags = int(re.search(r"^flags:\s*(\d+)", details, re.MULTILINE)[1], base=8)
            if flags & os.O_ACCMODE == os.O_RDONLY:
                return int(process)
    return None


def wait_until_opened(pipe):
    """Open a pipe for writing once a process reads it; return this end and the process."""

    def open_for_writing():
        with contextlib.suppress(OSError):
            return [os.open(pipe, os.O_WRONLY | os.O_NONBLOCK)]

    [writer] = wait_until(open_for_writing)
    # The reader's open() may not have returned yet.
    return writer, wait_until(lambda: reader_of(pipe))


@contextlib.contextmanager
def killed_readers(pipe):
    """Kill every process that reads a pipe. Gives the list of killed processes."""
    os.mkfifo(pipe)
    writer = os.open(pipe, os.O_RDWR)
    is_over = threading.Event()
    killed = []

    def kill():
        while not is_over.wait(0.02):
            process = reader_of(pipe)
            if process is not None and process not in killed:
                killed.append(process)
                os.kill(process, signal.SIGKILL)

    thread = threading.Thread(target=kill)
    thread.start()
    try:
        yield killed
    finally:
        is_over.set()
        thread.join()
        os.close(writer)


OPTIONS = [
    ({}, []),
    (
        {"window_us": 4000, "polarity": "on", "cell_width": 8},
        ["--window", "4ms", "--polarity", "on", "--cell-width", "8"],
    ),
    (
        {"count_every_event": True, "polarity": "separate"},
        ["--count-every-event", "--polarity", "separate"],
    ),
    (
        {"tracking": True, "min_hits": 2, "max_distance": 12.5},
        ["--track", "--min-hits", "2", "--max-distance", "12.5"],
    ),
    (
        {"method": "density", "eps": 7.5, "from_us": 20_000},
        ["--method", "density", "--eps", "7.5", "--from", "20ms"],
    ),
    (
        {"method": "density", "dim": 3, "jobs": 2, "tracking": True, "to_us": 100_000},
        ["--method", "density", "--dim", "3", "--jobs", "2", "--track", "--to", "100ms"],
    ),
]


@pytest.mark.parametrize("options, arguments", OPTIONS)
def test_rows_are_the_same_as_in_the_tool(scenes, options, arguments):
    (found,) = kelvora.cluster_recordings(scenes[:1], **options)
    table = list(csv.DictReader(io.StringIO(run_tool("cluster", scenes[0], "-q", *arguments))))
    assert found.error is None
    assert len(found.rows) == len(table) > 0
    columns = {
        "timestamp": "timestamp_us",
        "start_time": "start_time_us",
        "duration": "duration_us",
    }
    for name in found.rows.dtype.names:
        column = [row[columns.get(name, name)] for row in table]
        if name in ("vx", "vy"):
            assert [f"{value:.1f}" for value in found.rows[name]] == column
        else:
            assert np.array_equal(found.rows[name], np.array(column, found.rows.dtype[name]))


@pytest.mark.parametrize(
    "options", [{}, {"method": "density", "dim": 3, "jobs": 2, "tracking": True}]
)
def test_rows_are_the_same_for_any_number_of_workers(scenes, options):
    one, two, eight = (
        kelvora.cluster_recordings(scenes, workers=n, sensor=SENSOR, **options) for n in (1, 2, 8)
    )
    assert all(len(found.rows) > 0 and found.error is None for found in one)
    assert_same(two, one)
    assert_same(eight, one)


def test_centroid_method_divides_every_window(scenes):
    (found,) = kelvora.cluster_recordings(scenes[:1], method="centroid", k=5)
    assert found.windows == 20
    assert len(found.rows) == 20 * 5


def test_failures_leave_the_others_alone(scenes, tmp_path):
    damaged = damaged_copy(scenes[1], tmp_path / "damaged.bin")
    paths = [scenes[0], tmp_path / "missing.raw", damaged, scenes[1]]
    first, missing, cut, last = kelvora.cluster_recordings(
        paths, sensor=SENSOR, tracking=True, workers=2
    )
    assert first.error is None and last.error is None
    assert missing.path == str(paths[1])
    assert isinstance(missing.error, kelvora.RecordingError)
    assert len(missing.rows) == 0 and missing.rows.dtype == first.rows.dtype
    assert cut.error.file == str(damaged)
    # The truncated event belongs to the last window.
    whole = last.rows["timestamp"] < last.rows["timestamp"].max()
    assert np.array_equal(cut.rows[: np.count_nonzero(whole)], last.rows[whole])


def test_corrected_events_are_counted(tmp_path):
    events = [(1000, 7, 5, 1), (900, 7, 5, 0), (1001, 320, 5, 1)]
    (found,) = kelvora.cluster_recordings(
        [write_records(tmp_path / "a.bin", events)], sensor=SENSOR
    )
    assert (found.windows, found.dropped, found.clamped, found.skipped_words) == (1, 1, 1, 0)


def test_unknown_sensor_size_is_reported_with_a_remedy(scenes):
    (found,) = kelvora.cluster_recordings([scenes[1]])
    assert "sensor=(WIDTH, HEIGHT)" in str(found.error)


def test_all_remarks_are_returned(scenes):
    (found,) = kelvora.cluster_recordings(
        scenes[:1], method="centroid", k=900_000, to_us=10_000_000
    )
    few_events, early_end = found.remark.split("; ")
    assert few_events.startswith("windows without clusters")
    assert early_end == "the recording ends within the requested time range"


def test_no_recordings_give_no_results():
    assert kelvora.cluster_recordings([]) == []


@pytest.mark.parametrize(
    "error, text, options",
    [
        (TypeError, "cell_with; did you mean cell_width", {"cell_with": 5}),
        (ValueError, "did you mean density", {"method": "dbscan"}),
        (ValueError, "us_per_pixel needs dim 3", {"method": "density", "us_per_pixel": 500.0}),
        (ValueError, "at most max_cluster_size", {"min_cluster_size": 9, "max_cluster_size": 8}),
        (ValueError, "max_missed needs tracking", {"max_missed": 3}),
        (TypeError, "help", {"help": True}),
        (TypeError, "window", {"window": "10ms"}),
        (TypeError, "clusters", {"method": "centroid", "clusters": 3}),
        (ValueError, "method", {"method": "optics"}),
        (ValueError, "cell_width must be a whole number from 1 to 65536, not '0'", {"cell_width": 0}),
        (ValueError, "eps must", {"method": "density", "eps": -1.0}),
        (ValueError, "k is required with method centroid", {"method": "centroid"}),
        (ValueError, "window_us must be longer than 0", {"window_us": 0}),
        (ValueError, "window", {"window_us": -1}),
        (ValueError, "to_us must be later than from_us", {"from_us": 5, "to_us": 5}),
        (ValueError, "workers", {"workers": 0}),
        (ValueError, "eps must be .* not 'nan'", {"method": "density", "eps": float("nan")}),
        (ValueError, "tol must be", {"method": "centroid", "k": 2, "tol": float("inf")}),
        (ValueError, "max_distance must", {"tracking": True, "max_distance": float("nan")}),
        (ValueError, "'grid', 'density', 'centroid', not 'optics'", {"method": "optics"}),
        (ValueError, "polarity must be one of", {"polarity": "both"}),
        (TypeError, "eps is not a parameter of the method 'grid'", {"eps": 3}),
        (TypeError, "k is not a parameter", {"method": "density", "k": 3}),
        (TypeError, "cell_width is not a parameter", {"method": "centroid", "k": 2, "cell_width": 3}),
        (TypeError, "window_us must be an integer, not 10.5", {"window_us": 10.5}),
        (TypeError, "workers must be an integer, not 1.5", {"workers": 1.5}),
        (TypeError, "sensor must be a pair of integers", {"sensor": 640}),
        (TypeError, "sensor must be a pair of integers", {"sensor": (640,)}),
        (TypeError, "sensor must be a pair of integers", {"sensor": "640x480"}),
        (ValueError, "sensor must be a pair of integers from 1 to", {"sensor": (10**30, 480)}),
        (TypeError, "columns must be a string, not 5", {"columns": 5}),
        (TypeError, "input_format must be a string, not b'evt3'", {"input_format": b"evt3"}),
        (TypeError, "time_unit must be a string, not 1.5", {"time_unit": 1.5}),
        (UnicodeEncodeError, "surrogates", {"columns": "\ud800"}),
        (UnicodeEncodeError, "surrogates", {"polarity": "\ud800"}),
        (TypeError, "count_every_event must be True or False, not 2.5", {"count_every_event": 2.5}),
        (TypeError, "tracking must be True or False, not 1", {"tracking": 1}),
        (TypeError, "tracking must be True or False, not 'no'", {"tracking": "no"}),
    ],
)
def test_bad_options_are_refused_before_any_work(error, text, options):
    with pytest.raises(error, match=text):
        kelvora.cluster_recordings(["missing.raw"], **options)


def test_paths_with_null_characters_are_refused():
    with pytest.raises(ValueError, match="null"):
        kelvora.cluster_recordings(["a", "b\0"])


def test_results_compare_without_an_error(scenes):
    first, second = kelvora.cluster_recordings([scenes[0]] * 2, sensor=SENSOR)
    assert first == first
    assert first != second


def test_a_single_path_is_refused_as_list_of_paths():
    with pytest.raises(TypeError, match="paths"):
        kelvora.cluster_recordings("abc.raw")


def test_worker_that_dies_fails_its_recording_alone(scenes, tmp_path):
    pipe = tmp_path / "pipe"
    paths = [scenes[0], pipe, *scenes[1:]]
    with killed_readers(pipe) as killed:
        found = kelvora.cluster_recordings(paths, sensor=SENSOR, workers=2)
    assert len(killed) == 1
    assert "signal 9" in str(found[1].error)
    assert str(pipe) in str(found[1].error)
    del found[1]
    assert_same(found, kelvora.cluster_recordings(scenes, sensor=SENSOR, workers=1))


@pytest.mark.parametrize("from_standard_input", [True, False])
def test_ctrl_c_ends_all_processes(tmp_path, from_standard_input):
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    # Without the guard that multiprocessing needs.
    program = f"import kelvora\nkelvora.cluster_recordings([{str(pipe)!r}], sensor=(9, 9))\n"
    script = tmp_path / "program.py"
    script.write_text(program)
    arguments = [sys.executable, "-"] if from_standard_input else [sys.executable, str(script)]
    with subprocess.Popen(
        arguments, stdin=subprocess.PIPE, stderr=subprocess.PIPE, text=True
    ) as process:
        if from_standard_input:
            process.stdin.write(program)
        process.stdin.close()
        writer, worker = wait_until_opened(pipe)
        process.send_signal(signal.SIGINT)
        assert "KeyboardInterrupt" in process.stderr.read()
    assert worker != process.pid
    assert not pathlib.Path(f"/proc/{worker}").exists()
    os.close(writer)


def test_dask_gives_the_same(scenes, tmp_path, dask_client):
    paths = [*scenes, damaged_copy(scenes[0], tmp_path / "damaged.raw"), tmp_path / "missing.raw"]
    options = {"sensor": SENSOR, "tracking": True}
    assert_same(
        kelvora.cluster_recordings(paths, dask_client, **options),
        kelvora.cluster_recordings(paths, workers=1, **options),
    )


def test_dask_worker_that_dies_fails_its_recording_alone(scenes, tmp_path, dask_client):
    pipe = tmp_path / "pipe"
    with killed_readers(pipe) as killed:
        found = kelvora.cluster_recordings(
            [scenes[0], pipe, *scenes[1:]], dask_client, sensor=SENSOR
        )
    assert killed
    assert "KilledWorker" in str(found[1].error)
    del found[1]
    assert_same(found, kelvora.cluster_recordings(scenes, sensor=SENSOR, workers=1))


def test_workers_cannot_be_given_with_a_client(dask_client):
    with pytest.raises(TypeError, match="workers"):
        kelvora.cluster_recordings([], dask_client, workers=2)


@needs_data
def test_dask_gives_the_rows_of_a_single_process_for_real_recordings(tmp_path, dask_client):
    recordings = sorted(DATA.glob("*.events.bin"))
    assert recordings
    corrupt = damaged_copy(recordings[0], tmp_path / "corrupt.bin")
    paths = [*recordings, corrupt]
    end = None if os.environ.get("KELVORA_LONG_TESTS") == "1" else 50_000
    for options in (
        {"method": "grid", "tracking": True},
        {"method": "density", "window_us": 5000, "capacity": 5000},
    ):
        options |= {"sensor": (1280, 720), "to_us": end}
        found = kelvora.cluster_recordings(paths, dask_client, **options)
        assert_same(found, kelvora.cluster_recordings(paths, workers=1, **options))
        assert all(one.error is None and one.windows > 0 for one in found[:-1])
        if end is None:
            assert found[-1].error is not None
