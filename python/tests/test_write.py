# SPDX-License-Identifier: MIT
"""Writing recordings. An existing file is replaced by a complete one, or not at all."""

import _thread
import os
import pathlib
import resource
import signal
import subprocess
import sys
import threading

import numpy as np
import pytest

import kelvora
from recordings import RECORD, TOOL, write_records
from waiting import LIMIT, wait_until

SIZE = (320, 240)


@pytest.fixture(scope="module")
def scene():
    return kelvora.simulate(sensor=SIZE, duration_us=50_000)[0]


@pytest.fixture
def old(tmp_path):
    """An existing file."""
    path = tmp_path / "a.bin"
    path.write_bytes(b"old")
    return path


def endless(count=10**8):
    """Many events in little memory."""
    return np.broadcast_to(np.zeros(1, kelvora.EVENT_DTYPE), count)


def events_of(path):
    return np.concatenate(list(kelvora.read(path)))


def unfinished(directory):
    """Whether an unfinished file in the directory has some content."""
    return [file for file in directory.glob(".*.unfinished-*") if file.stat().st_size]


def start(program, *arguments, **options):
    """Start a Python program that uses the package."""
    return subprocess.Popen(
        [sys.executable, "-c", "import sys, numpy, kelvora\n" + program, *map(str, arguments)],
        stderr=subprocess.PIPE,
        text=True,
        **options,
    )


WRITE_ENDLESSLY = """
events = numpy.broadcast_to(numpy.zeros(1, kelvora.EVENT_DTYPE), 10**8)
try:
    kelvora.write(sys.argv[1], events)
except kelvora.RecordingError as error:
    print(error, file=sys.stderr)
except KeyboardInterrupt:
    print("interrupted", file=sys.stderr)
"""


@pytest.mark.parametrize(
    "name, output_format",
    [("a.bin", "records"), ("a.csv", "text"), ("a.evt2", "evt2"), ("a.raw", "evt3")],
)
def test_every_format_is_read_back(tmp_path, scene, name, output_format):
    kelvora.write(tmp_path / name, scene, sensor=SIZE)
    reader = kelvora.read(tmp_path / name)
    assert reader.format == output_format
    assert np.array_equal(np.concatenate(list(reader)), scene)
    kelvora.write(tmp_path / "b", scene, sensor=SIZE, output_format=output_format)
    assert (tmp_path / "b").read_bytes() == (tmp_path / name).read_bytes()


def test_events_of_any_layout_are_written(tmp_path, scene):
    other = np.zeros(len(scene), [("p", "?"), ("time", "f8"), ("y", ">i4"), ("x", "u1")])
    other["p"], other["time"], other["y"] = scene["p"], scene["t"] * 1e-6, scene["y"]
    kelvora.write(tmp_path / "a.raw", other, sensor=SIZE, time_unit="s")
    events = events_of(tmp_path / "a.raw")
    assert np.array_equal(events["t"], scene["t"])
    assert np.array_equal(events["y"], scene["y"])
    assert not events["x"].any()


def test_the_sensor_is_needed_if_the_format_states_it(tmp_path, scene):
    with pytest.raises(ValueError, match="sensor must be given"):
        kelvora.write(tmp_path / "a.raw", scene)
    kelvora.write(tmp_path / "a.bin", scene)
    assert len(events_of(tmp_path / "a.bin")) == len(scene)


@pytest.mark.parametrize(
    "arguments, error, message",
    [
        ({"output_format": "hdf5"}, ValueError, "output_format must be 'records', 'text', 'evt2'"),
        ({"sensor": 5}, TypeError, "sensor must be a pair"),
        ({"sensor": (0, 5)}, ValueError, "sensor|width"),
        ({"events": np.zeros(1, [("x", "u2")])}, ValueError, "exactly one field called 'y'"),
        ({"events": "events"}, TypeError, ""),
    ],
)
def test_wrong_arguments_write_nothing(old, arguments, error, message):
    arguments = {"events": np.zeros(1, kelvora.EVENT_DTYPE), **arguments}
    with pytest.raises(error, match=message):
        kelvora.write(old, **arguments)
    assert [file.read_bytes() for file in old.parent.iterdir()] == [b"old"]


@pytest.mark.parametrize("field, value", [("x", 65536), ("p", 5), ("t", -1)])
def test_wrong_events_write_nothing(old, field, value):
    events = np.zeros(1000, [("x", "i4"), ("y", "i4"), ("p", "i4"), ("t", "i8")])
    events[field][-1] = value
    with pytest.raises(ValueError):
        kelvora.write(old, events)
    assert [file.read_bytes() for file in old.parent.iterdir()] == [b"old"]


def test_null_characters_in_a_path_are_refused(scene):
    with pytest.raises(ValueError, match="null"):
        kelvora.write("a\0b", scene)


def test_an_existing_file_is_replaced_unless_refused(old, scene):
    with pytest.raises(kelvora.RecordingError, match="exists already"):
        kelvora.write(old, scene, overwrite=False)
    assert old.read_bytes() == b"old"
    kelvora.write(old, scene)
    assert len(events_of(old)) == len(scene)
    assert list(old.parent.iterdir()) == [old]


def test_a_file_can_be_written_from_its_own_events(tmp_path):
    path = write_records(tmp_path / "a.bin", [(1, 2, 3, 1), (2, 3, 4, 0)])
    kelvora.write(path, np.memmap(path, RECORD, mode="r"))
    assert events_of(path)["t"].tolist() == [1, 2]


def test_a_symbolic_link_stays(old, scene):
    link = old.with_name("link.bin")
    link.symlink_to(old.name)
    kelvora.write(link, scene)
    assert link.is_symlink()
    assert len(events_of(old)) == len(scene)


def test_other_names_keep_the_old_content(old, scene):
    os.link(old, old.with_name("hard.bin"))
    kelvora.write(old, scene)
    assert old.with_name("hard.bin").read_bytes() == b"old"


def test_permissions_stay(old, scene):
    old.chmod(0o600)
    kelvora.write(old, scene)
    assert old.stat().st_mode & 0o777 == 0o600


@pytest.mark.skipif(os.geteuid() == 0, reason="root may write everything")
@pytest.mark.parametrize("is_file", [True, False])
def test_read_only_files_and_directories_are_refused(old, scene, is_file):
    path = old if is_file else old.parent
    path.chmod(0o555)
    with pytest.raises(kelvora.RecordingError, match="Permission denied"):
        kelvora.write(old, scene)
    path.chmod(0o755)
    assert old.read_bytes() == b"old"


@pytest.mark.parametrize(
    "path, problem",
    [
        ("/dev/full", "cannot be written .No space left on device."),
        ("/nowhere/a.bin", "cannot be created .No such file or directory."),
        ("/", "cannot be created .Is a directory."),
    ],
)
def test_paths_that_cannot_be_written_are_refused(scene, path, problem):
    with pytest.raises(kelvora.RecordingError, match=problem):
        kelvora.write(path, scene, output_format="records")


def test_events_that_the_format_cannot_hold_leave_the_old_file(old):
    events = np.zeros(3, kelvora.EVENT_DTYPE)
    events["x"] = [1, 2, 3000]
    with pytest.raises(kelvora.RecordingError, match="3000"):
        kelvora.write(old, events, sensor=SIZE, output_format="evt2")
    assert old.read_bytes() == b"old"
    assert events_of(old.with_name("a.bin.partial"))["x"].tolist() == [1, 2]


def test_a_limit_on_the_size_of_files_leaves_the_old_file(old):
    process = start(
        WRITE_ENDLESSLY,
        old,
        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (10**6, 10**6)),
    )
    _, errors = process.communicate(timeout=LIMIT)
    assert "a.bin: cannot be written (File too large)" in errors
    assert old.read_bytes() == b"old"
    assert old.with_name("a.bin.partial").stat().st_size == 10**6


def test_ctrl_c_leaves_the_old_file(old):
    def interrupt():
        wait_until(lambda: unfinished(old.parent))
        _thread.interrupt_main()

    thread = threading.Thread(target=interrupt)
    thread.start()
    with pytest.raises(KeyboardInterrupt):
        kelvora.write(old, endless())
    thread.join()
    assert old.read_bytes() == b"old"
    assert old.with_name("a.bin.partial").stat().st_size > 0
    assert len(list(old.parent.iterdir())) == 2


@pytest.mark.parametrize("number", [signal.SIGKILL, signal.SIGTERM, signal.SIGHUP])
def test_signals_leave_the_old_file(old, number):
    process = start(WRITE_ENDLESSLY, old)
    wait_until(lambda: unfinished(old.parent))
    process.send_signal(number)
    process.communicate(timeout=LIMIT)
    assert process.returncode == -number
    assert old.read_bytes() == b"old"


def test_ctrl_c_ends_the_wait_for_the_reader_of_a_pipe(tmp_path):
    os.mkfifo(tmp_path / "a.bin")
    process = start(WRITE_ENDLESSLY.replace("10**8", "1"), tmp_path / "a.bin")

    def is_opening():
        name = pathlib.Path(f"/proc/{process.pid}/wchan").read_text()
        return "fifo" in name or "partner" in name

    wait_until(is_opening)
    process.send_signal(signal.SIGINT)
    assert process.communicate(timeout=LIMIT)[1] == "interrupted\n"


@pytest.mark.parametrize(
    "redirection, problem",
    [(">/dev/full", "No space left on device"), (">&-", "Bad file descriptor")],
)
def test_standard_output_that_cannot_be_written_is_an_error(redirection, problem):
    program = "import kelvora; kelvora.write('-', kelvora.simulate(duration_us=10_000)[0], {})"
    program = program.format("output_format='records'")
    command = ["sh", "-c", f'"$0" -c "$1" {redirection}', sys.executable, program]
    result = subprocess.run(command, stderr=subprocess.PIPE, text=True, timeout=LIMIT, check=False)
    assert "standard output: cannot be written" in result.stderr
    assert problem in result.stderr


def test_the_tool_reads_written_recordings(tmp_path, scene):
    kelvora.write(tmp_path / "a.raw", scene, sensor=SIZE)
    result = subprocess.run(
        [TOOL, "info", tmp_path / "a.raw"], capture_output=True, text=True, check=True
    )
    assert f"events         {len(scene)}\n" in result.stdout
