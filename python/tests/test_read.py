# SPDX-License-Identifier: MIT
"""Reading recordings."""

import contextlib
import os
import pathlib
import pickle
import select
import signal
import subprocess
import sys
import threading

import numpy as np
import pytest

import kelvora
from recordings import DATA, damaged_copy, needs_data, rows_of, simulate, write_records
from waiting import LIMIT, wait_until

THREE = [(1000, 7, 5, 1), (1001, 8, 6, 0), (1005, 9, 5, 1)]


def is_asleep(process):
    """Whether the main thread of a process waits for something."""
    return "\nState:\tS" in pathlib.Path(f"/proc/{process}/status").read_text()


def read_all(path, **options):
    return np.concatenate([np.zeros(0, kelvora.EVENT_DTYPE), *kelvora.read(path, **options)])


@pytest.fixture(scope="module")
def scene():
    return kelvora.simulate(sensor=(320, 240), duration_us=200_000)[0]


@pytest.mark.parametrize(
    "name, input_format",
    [("a.bin", "records"), ("a.csv", "text"), ("a.evt2.raw", "evt2"), ("a.raw", "evt3")],
)
def test_every_format_gives_the_same_events(tmp_path, scene, name, input_format):
    reader = kelvora.read(simulate(tmp_path / name), chunk_events=len(scene))
    events = next(reader)
    assert reader.format == input_format
    assert reader.sensor == (None if input_format == "records" else (320, 240))
    assert (reader.dropped, reader.clamped, reader.skipped_words) == (0, 0, 0)
    assert events.dtype == kelvora.EVENT_DTYPE
    assert np.array_equal(events, scene)
    assert list(reader) == []


@pytest.mark.parametrize("chunk_events", [1000, 16_384, 20_000, 10**12])
def test_chunks_have_the_requested_size(tmp_path, scene, chunk_events):
    chunks = list(kelvora.read(simulate(tmp_path / "a.bin"), chunk_events=chunk_events))
    assert all(len(chunk) == chunk_events for chunk in chunks[:-1])
    assert 1 <= len(chunks[-1]) <= chunk_events
    assert np.array_equal(np.concatenate(chunks), scene)


def test_single_events_can_be_read(tmp_path):
    path = write_records(tmp_path / "a.bin", THREE)
    assert [rows_of(chunk) for chunk in kelvora.read(path, chunk_events=1)] == [
        [list(e)] for e in THREE
    ]


def test_iterator_stays_at_the_end(tmp_path):
    reader = kelvora.read(write_records(tmp_path / "a.bin", THREE))
    assert iter(reader) is reader
    assert len(next(reader)) == 3
    for _ in range(2):
        with pytest.raises(StopIteration):
            next(reader)


def test_events_are_corrected_and_counted(tmp_path):
    events = [
        *THREE,
        (900, 1, 1, 0),
        (9_000_000, 2, 2, 1),
        (1010, 640, 3, 1),
        (1010, 3, 480, 1),
        (1010, 4, 4, 1),
    ]
    path = write_records(tmp_path / "a.bin", events)
    reader = kelvora.read(path, sensor=(640, 480))
    kept = [*THREE, (1005, 1, 1, 0), (1005, 2, 2, 1), (1010, 4, 4, 1)]
    assert rows_of(next(reader)) == [list(event) for event in kept]
    assert (reader.sensor, reader.dropped, reader.clamped) == ((640, 480), 2, 2)

    reader = kelvora.read(path, sensor=(640, 480), clean=False)
    assert rows_of(next(reader)) == [list(event) for event in events]
    assert (reader.dropped, reader.clamped) == (0, 0)


def test_times_are_corrected_without_a_sensor_size(tmp_path):
    reader = kelvora.read(write_records(tmp_path / "a.bin", [*THREE, (3, 65_535, 65_535, 1)]))
    assert rows_of(next(reader))[-1] == [1005, 65_535, 65_535, 1]
    assert (reader.sensor, reader.dropped, reader.clamped) == (None, 0, 1)


def test_missing_information_can_be_given(tmp_path):
    path = tmp_path / "a.txt"
    path.write_text("7 5 1 0.5\n8 5 0 1.5\n")
    assert rows_of(read_all(path, columns="xypt", time_unit="ms")) == [
        [500, 7, 5, 1],
        [1500, 8, 5, 0],
    ]
    assert kelvora.read(path, columns="xypt", sensor=(9, 9), input_format="text").sensor == (9, 9)


@pytest.mark.parametrize("chunk_events", [1, 2, 1000])
def test_events_before_a_defect_come_first(tmp_path, chunk_events):
    path = damaged_copy(
        write_records(tmp_path / "whole.bin", [*THREE, THREE[-1]]), tmp_path / "a.bin"
    )
    reader = kelvora.read(path, chunk_events=chunk_events)
    found = []
    with pytest.raises(kelvora.RecordingError) as first:
        for events in reader:
            found += rows_of(events)
    assert found == [list(event) for event in THREE]
    with pytest.raises(kelvora.RecordingError) as again:
        next(reader)
    assert str(again.value) == str(first.value)
    error = first.value
    assert error.file == str(path)
    assert error.place == "byte 59"
    assert error.problem and "48" in error.remedy
    assert str(error) == f"{path}: {error.problem}, {error.place}, {error.remedy}"


def test_error_survives_pickling(tmp_path):
    with pytest.raises(kelvora.RecordingError) as caught:
        kelvora.read(tmp_path / "missing.raw")
    copy = pickle.loads(pickle.dumps(caught.value))
    assert isinstance(copy, kelvora.RecordingError)
    assert (str(copy), vars(copy)) == (str(caught.value), vars(caught.value))


@pytest.mark.parametrize("content", [b"", b"\x93NUMPY and more", b"\0" * 15])
def test_other_files_are_refused(tmp_path, content):
    path = tmp_path / "a"
    path.write_bytes(content)
    with pytest.raises(kelvora.RecordingError) as caught:
        read_all(path)
    assert str(path) in str(caught.value)
    assert "\n" not in str(caught.value)


def test_remedies_name_keywords_instead_of_options(tmp_path):
    path = tmp_path / "a.txt"
    path.write_text("0.5 1 2 1\n0.6 70000 2 1\n")
    with pytest.raises(kelvora.RecordingError) as caught:
        read_all(path)
    assert "columns" in caught.value.remedy
    assert "--" not in str(caught.value)


@pytest.mark.parametrize(
    "error, options",
    [
        (ValueError, {"chunk_events": 0}),
        (ValueError, {"sensor": (0, 480)}),
        (ValueError, {"sensor": (640, 65_537)}),
        (ValueError, {"input_format": "hdf5"}),
        (ValueError, {"columns": "xyp"}),
        (ValueError, {"time_unit": "min"}),
        (TypeError, {"sensor": 640}),
        (TypeError, {"chunk_events": 1.5}),
        (TypeError, {"no_such": 1}),
    ],
)
def test_bad_arguments_are_refused(tmp_path, error, options):
    path = write_records(tmp_path / "a.bin", THREE)
    with pytest.raises(error):
        kelvora.read(path, **options)


def test_path_may_have_any_type_and_any_bytes(tmp_path):
    name = os.fsencode(tmp_path) + b"/caf\xe9.bin"
    write_records(name, THREE)
    for path in (name, os.fsdecode(name)):
        assert rows_of(read_all(path)) == [list(event) for event in THREE]
    os.truncate(name, 0)
    with pytest.raises(kelvora.RecordingError) as caught:
        kelvora.read(name)
    assert os.fsencode(caught.value.file) == name


def test_pipe_gives_events_as_they_arrive_while_other_threads_run(tmp_path):
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    go_on = threading.Event()
    source = write_records(tmp_path / "a.bin", THREE * 4096).read_bytes()

    # If reading held the GIL, neither thread could continue.
    def write():
        with open(pipe, "wb", buffering=0) as out:
            out.write(source)
            go_on.wait(LIMIT)
            out.write(source[:16])

    writer = threading.Thread(target=write)
    writer.start()
    reader = kelvora.read(pipe, clean=False)
    first = []
    while len(first) < 3 * 4096:
        first += rows_of(next(reader))
    go_on.set()
    assert len(first) == 3 * 4096
    assert sum(len(chunk) for chunk in reader) == 1
    writer.join()


def test_threads_share_a_reader(tmp_path, scene):
    reader = kelvora.read(simulate(tmp_path / "a.bin"), chunk_events=500)
    chunks = []
    threads = [threading.Thread(target=lambda: chunks.extend(reader)) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    events = np.concatenate(chunks)
    assert len(events) == len(scene)
    order = ["t", "x", "y", "p"]
    assert np.array_equal(np.sort(events, order=order), np.sort(scene, order=order))


def test_clusterers_accept_chunks(tmp_path, scene):
    from_file, at_once = (kelvora.GridClusterer(320, 240) for _ in range(2))
    for events in kelvora.read(simulate(tmp_path / "a.raw"), chunk_events=777):
        from_file.process(events)
    at_once.process(scene)
    rows = at_once.generate(200_000)
    assert len(rows) > 0
    assert np.array_equal(from_file.generate(200_000), rows)


@needs_data
def test_real_recordings_are_read_as_they_are():
    recordings = sorted(DATA.glob("*.events.bin"))
    assert recordings
    for path in recordings:
        expected = np.fromfile(
            path, [("t", "<i8"), ("x", "<u2"), ("y", "<u2"), ("p", "u1"), ("", "V3")]
        )
        events = read_all(path)
        assert all(np.array_equal(events[name], expected[name]) for name in "txyp"), path


def test_equal_events_have_equal_bytes(tmp_path):
    # The bytes between the polarity and the time are padding.
    path = tmp_path / "a.txt"
    path.write_text("".join(f"{i} {i % 99} {i % 77} {i % 2}\n" for i in range(50_000)))
    for chunk in kelvora.read(path, columns="txyp", chunk_events=777):
        plain = np.zeros(len(chunk), kelvora.EVENT_DTYPE)
        for name in chunk.dtype.names:
            plain[name] = chunk[name]
        assert chunk.tobytes() == plain.tobytes()


@pytest.mark.parametrize("has_writer", [False, True])
def test_ctrl_c_ends_the_wait_for_a_pipe(tmp_path, has_writer):
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    # One exception, however many signals arrive. The program ends when no more are sent.
    program = """if True:
        import signal, sys, kelvora

        def interrupt(*_):
            global is_interrupted
            if not is_interrupted:
                is_interrupted = True
                raise KeyboardInterrupt

        is_interrupted = False
        signal.signal(signal.SIGINT, interrupt)
        try:
            print(0, flush=True)
            for events in kelvora.read(sys.argv[1], input_format="records"):
                print(len(events), flush=True)
        except KeyboardInterrupt:
            print("interrupted", flush=True)
        sys.stdin.read()
    """
    events = THREE * 2000 if has_writer else []
    command = [sys.executable, "-c", program, pipe]
    with contextlib.ExitStack() as stack:
        process = stack.enter_context(
            subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        )
        stack.callback(process.kill)
        count = int(process.stdout.readline())
        if has_writer:
            writer = stack.enter_context(open(pipe, "wb", buffering=0))
            writer.write(write_records(tmp_path / "a.bin", events).read_bytes())
        while count < len(events):
            count += int(process.stdout.readline())
        wait_until(lambda: is_asleep(process.pid))

        def ends_by_signal():
            process.send_signal(signal.SIGINT)
            return select.select([process.stdout], [], [], 0.2)[0]

        wait_until(ends_by_signal)
        assert process.stdout.readline() == "interrupted\n"
        process.stdin.close()
        assert process.wait(LIMIT) == 0


@pytest.mark.parametrize("path", ["a\0b", b"a\0b"])
def test_null_characters_in_a_path_are_refused(path):
    with pytest.raises(ValueError, match="null"):
        kelvora.read(path)


@pytest.mark.parametrize("path", [None, 3, [b"a"]])
def test_invalid_paths_are_refused(path):
    with pytest.raises(TypeError, match="PathLike"):
        kelvora.read(path)


@pytest.mark.parametrize("sensor", [640, (640,), "640x480", (640.0, 480)])
def test_invalid_sensors_are_refused(tmp_path, sensor):
    path = write_records(tmp_path / "a.bin", THREE)
    with pytest.raises(TypeError, match="sensor must be a pair of integers"):
        kelvora.read(path, sensor=sensor)
