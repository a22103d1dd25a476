# SPDX-License-Identifier: MIT
"""Promises of the program about files: nothing is lost, and no failure is hidden."""

import atexit
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import unittest
from dataclasses import dataclass
from typing import Callable

from program_runner import TOOL, Outcome, ProgramTest, is_waiting, quoted, unread_bytes, wait_until

SAMPLES = pathlib.Path(tempfile.mkdtemp())
atexit.register(shutil.rmtree, SAMPLES)

SCORE = "score --truth truth.csv --clusters clusters.csv"
SIMULATE = "simulate --format records --sensor 64x48 --duration 50ms"


@dataclass
class Output:
    """An output of a command. Its path is appended to the command."""

    command: str
    option: str
    ending: str
    inputs: tuple[tuple[str, str], ...] = ()  # name in messages, file

    @property
    def name(self) -> str:
        """The name of its tests."""
        return f"{self.command.split()[0]} {self.option}"


def cluster(option: str, ending: str = ".csv", options: str = "") -> Output:
    """An output of the command cluster."""
    recording = f"scene{'.png' if ending == '.png' else '.raw'}"
    inputs = (("the recording", recording),)
    return Output(f"cluster -q {recording} {options}", option, ending, inputs)


OUTPUTS = [
    cluster("--output"),
    cluster("--points", options="--method density"),
    cluster("--centroids", options="--method centroid --clusters 4"),
    cluster("--tracks", options="--track"),
    cluster("--overview", ".png"),
    cluster("--plot3d", ".png"),
    Output("bench scene.raw --methods grid", "--json", ".json", (("the recording", "scene.raw"),)),
    Output(SCORE, "--json", ".json", (("--truth", "truth.csv"), ("--clusters", "clusters.csv"))),
    Output(SIMULATE, "--output", ".bin"),
    Output(f"{SIMULATE} -o a.bin", "--truth", ".csv"),
]

# Commands that print to standard output.
PRINTING = [
    "info scene.raw",
    "info --json scene.raw",
    "cluster -q scene.raw",
    "cluster -q scene.raw --format jsonl",
    "cluster -q scene.raw --method density -o a.csv --points -",
    SCORE,
    f"{SCORE} --json -",
    "bench scene.raw --methods grid",
    "bench scene.raw --methods grid --json -",
    f"{SIMULATE} -o -",
    f"{SIMULATE} -o a.bin --truth -",
    "--help",
    "--version",
    "cluster --help",
]

# Command lines that fail, and their status.
FAILING = [
    ("info missing.raw", 1),
    ("cluster missing.raw", 1),
    ("bench missing.raw", 1),
    ("score --truth missing.csv --clusters clusters.csv", 1),
    ("simulate -o missing/a.raw", 1),
    ("simulate -o a.raw --lights 1000", 1),
    ("cluster scene.raw -o scene.raw", 2),
    ("cluster", 2),
    ("clutser", 2),
    ("cluster scene.raw --widnow 10ms", 2),
    ("", 2),
]

SIGNALS = {
    signal.SIGINT: (130, "interrupted by Ctrl-C"),
    signal.SIGTERM: (143, "ended by SIGTERM"),
    signal.SIGHUP: (129, "ended by SIGHUP"),
}


class FileTest(ProgramTest):
    """Each directory has a recording, its truth, and its clusters."""

    def setUp(self) -> None:
        super().setUp()
        for file in SAMPLES.iterdir():
            shutil.copy(file, self.directory)
        os.mkdir(self.directory / "inner")

    def link(self, name: str, target: str) -> None:
        """Make a symbolic link."""
        os.symlink(target, self.directory / name)


def setUpModule() -> None:
    """Make the samples."""
    for command in (
        "simulate -o scene.raw --truth truth.csv --sensor 160x120 --duration 200ms",
        "simulate -o scene.bin --sensor 160x120 --duration 200ms",
        "cluster scene.raw -o clusters.csv",
    ):
        subprocess.run([TOOL, *command.split()], cwd=SAMPLES, check=True, capture_output=True)
    shutil.copy(SAMPLES / "scene.raw", SAMPLES / "scene.png")


def add_test(group: type, name: str, check: Callable[..., None], *arguments: object) -> None:
    """Add a test to a group."""
    method = "test_" + re.sub(r"\W+", "_", name).strip("_")
    assert not hasattr(group, method), method
    setattr(group, method, lambda self: check(self, *arguments))


# Ways to name a file. Each prepares the directory and returns the path.
def hard_link(test: FileTest, file: str, ending: str) -> str:
    """Another name of the same file."""
    os.link(test.directory / file, test.directory / f"hard{ending}")
    return f"hard{ending}"


def symbolic_link(test: FileTest, file: str, ending: str) -> str:
    """A link to the file."""
    test.link(f"soft{ending}", file)
    return f"soft{ending}"


def link_to_link(test: FileTest, file: str, ending: str) -> str:
    """A link to a link."""
    test.link(f"first{ending}", f"second{ending}")
    test.link(f"second{ending}", str(test.directory / file))
    return f"first{ending}"


def linked_directory(test: FileTest, file: str, _: str) -> str:
    """A path through a link to the directory."""
    test.link("here", ".")
    return f"here/{file}"


WAYS: dict[str, Callable[[FileTest, str, str], str]] = {
    "the same path": lambda test, file, ending: file,
    "an absolute path": lambda test, file, ending: str(test.directory / file),
    "a path with dots": lambda test, file, ending: f"./inner/../{file}",
    "a hard link": hard_link,
    "a symbolic link": symbolic_link,
    "a link to a link": link_to_link,
    "a linked directory": linked_directory,
}


class AnOutputThatIsAnInput(FileTest):
    """Is refused under any path."""

    def check_way(self, output: Output, name: str, file: str, way: str) -> None:
        """An output names an input in some way."""
        path = WAYS[way](self, file, output.ending)
        before = self.contents()
        outcome = self.run_tool(f"{output.command} {output.option} {quoted(path)}")
        self.assert_one_line(outcome, 2, output.option, name)
        self.assertEqual(self.contents(), before)

    def check_stream(self, command: str, redirection: str, name: str) -> None:
        """A standard stream leads to an input."""
        before = self.contents()
        outcome = self.run_tool(command, redirection)
        self.assertEqual(outcome.status, 2, outcome)
        if not redirection.startswith("2"):
            self.assert_one_line(outcome, 2, "standard output", name)
            self.assertEqual(self.contents(), before)

    def test_a_frame(self) -> None:
        """The picture of a window would replace the recording."""
        shutil.copy(self.directory / "scene.raw", self.directory / "inner/frame_000001.png")
        before = self.contents()
        outcome = self.run_tool("cluster -q inner/frame_000001.png --frames inner/../inner")
        self.assert_one_line(outcome, 2, "the recording", "--frames")
        self.assertEqual(self.contents(), before)

    def test_standard_input(self) -> None:
        """The recording comes from standard input."""
        before = self.contents()
        outcome = self.run_tool("cluster -q /dev/stdin -o scene.raw", "<scene.raw")
        self.assert_one_line(outcome, 2, "--output", "the recording")
        self.assertEqual(self.contents(), before)


for _output in OUTPUTS:
    for _input, _file in _output.inputs:
        for _way in WAYS:
            add_test(
                AnOutputThatIsAnInput,
                f"{_output.name} is {_input} by {_way}",
                AnOutputThatIsAnInput.check_way,
                _output,
                _input,
                _file,
                _way,
            )
for _command in ("info", "info --json", "cluster -q", "bench --methods grid"):
    add_test(
        AnOutputThatIsAnInput,
        f"{_command} to its recording",
        AnOutputThatIsAnInput.check_stream,
        f"{_command} scene.raw",
        ">>scene.raw",
        "the recording",
    )
add_test(
    AnOutputThatIsAnInput,
    "score to its truth",
    AnOutputThatIsAnInput.check_stream,
    SCORE,
    ">>truth.csv",
    "--truth",
)
add_test(
    AnOutputThatIsAnInput,
    "messages to the recording",
    AnOutputThatIsAnInput.check_stream,
    "cluster scene.raw",
    "2>>scene.raw",
    "the recording",
)


class TwoOutputsInOneFile(FileTest):
    """Are refused, unless the file is a device."""

    POINTS = "cluster -q scene.raw --method density"
    REFUSED = {
        "the same path": (f"{POINTS} -o a.csv --points a.csv", "--points", "--output"),
        "dots": (f"{POINTS} -o a.csv --points ./inner/../a.csv", "--points", "--output"),
        "an absolute path": (f"{POINTS} -o a.csv --points $PWD/a.csv", "--points", "--output"),
        "a dangling link": (f"{POINTS} -o a.csv --points dangling.csv", "--points", "--output"),
        "a linked directory": (f"{POINTS} -o a.csv --points here/a.csv", "--points", "--output"),
        "a hard link": (f"{POINTS} -o old.csv --points hard.csv", "--points", "--output"),
        "a pipe": (f"{POINTS} -o pipe --points pipe", "--points", "--output"),
        "standard output": (f"{POINTS} -o - --points -", "--points", "--output"),
        "its device": (f"{POINTS} -o - --points /dev/stdout", "--points", "--output"),
        "centroids": (
            "cluster -q scene.raw --method centroid --clusters 4 -o a.csv --centroids a.csv",
            "--centroids",
            "--output",
        ),
        "tracks": ("cluster -q scene.raw --track -o a.csv --tracks a.csv", "--tracks", "--output"),
        "pictures": (
            "cluster -q scene.raw --overview a.png --plot3d a.png",
            "--plot3d",
            "--overview",
        ),
        "a frame": (
            "cluster -q scene.raw --overview new/frame_000001.png --frames new",
            "--overview",
            "--frames",
        ),
        "the directory of frames": (
            "cluster -q scene.raw -o new --frames new/",
            "--frames",
            "--output",
        ),
        "simulate": (f"{SIMULATE} -o a.bin --truth a.bin", "--truth", "--output"),
        "simulate to standard output": (f"{SIMULATE} -o - --truth -", "--truth", "--output"),
        "a redirected output": (
            "cluster -q scene.raw -o a.csv >a.csv",
            "standard output",
            "--output",
        ),
        "an appended output": ("bench scene.raw --json old.csv >>old.csv", "the table", "--json"),
        "the table of score": (f"{SCORE} --json /dev/stdout >a.json", "the table", "--json"),
    }

    def setUp(self) -> None:
        super().setUp()
        self.write("old.csv")
        os.link(self.directory / "old.csv", self.directory / "hard.csv")
        self.link("dangling.csv", "a.csv")
        self.link("here", ".")
        os.mkfifo(self.directory / "pipe")

    def check_refused(self, command: str, *names: str) -> None:
        """Two outputs are refused before anything is written."""
        outcome = self.run_tool(command)
        self.assert_one_line(outcome, 2, *names)
        self.assertEqual(self.content("old.csv"), b"old")
        self.assertFalse((self.directory / "new").exists())
        self.assertEqual(self.contents().get("a.csv", b""), b"")

    def test_messages(self) -> None:
        """Messages would be mixed with rows."""
        outcome = self.run_tool("cluster scene.raw -o old.csv", "2>>old.csv")
        self.assertEqual(outcome.status, 2)
        self.assertTrue(self.content("old.csv").startswith(b"oldkelvora: standard error: "))

    def test_a_device_is_shared(self) -> None:
        """Several outputs may be thrown away."""
        outcome = self.run_tool(f"{self.POINTS} -o /dev/null --points /dev/null")
        self.assertEqual((outcome.status, outcome.errors), (0, ""))

    def test_standard_streams_may_be_the_same(self) -> None:
        """Users redirect both to one file."""
        outcome = self.run_tool("cluster scene.raw", ">both 2>&1")
        self.assertEqual(outcome.status, 0)
        self.assertIn(b"kelvora: ", self.content("both"))


for _name, _arguments in TwoOutputsInOneFile.REFUSED.items():
    add_test(TwoOutputsInOneFile, _name, TwoOutputsInOneFile.check_refused, *_arguments)


class AFailedOutput(FileTest):
    """Leaves the old file as it was."""

    def check_full(self, output: Output) -> None:
        """The device is full."""
        self.link(f"full{output.ending}", "/dev/full")
        outcome = self.run_tool(f"{output.command} {output.option} full{output.ending}")
        self.assert_one_line(outcome, 1, f"full{output.ending}: ", "No space left on device")

    def check_limit(self, output: Output) -> None:
        """The file would exceed the limit on sizes."""
        file = f"old{output.ending}"
        self.write(file)
        outcome = self.run_with_limit(f"{output.command} {output.option} {file}", 100)
        self.assert_one_line(outcome, 1, f"{file}: ", "File too large", f"{file}.partial")
        self.assertEqual(self.content(file), b"old")
        self.assertEqual(len(self.content(f"{file}.partial")), 100)
        self.assertFalse(any("unfinished" in name for name in self.contents()))

    def check_existing(self, output: Output) -> None:
        """An existing file must not be overwritten."""
        file = f"old{output.ending}"
        self.write(file)
        before = self.contents()
        outcome = self.run_tool(f"{output.command} {output.option} {file} --no-overwrite")
        self.assert_one_line(outcome, 1, f"{file}: exists already")
        self.assertEqual(self.contents(), before)

    def check_permissions(self, output: Output, mode: int, is_file: bool) -> None:
        """The file or its directory is read-only."""
        file = f"inner/old{output.ending}"
        self.write(file)
        os.chmod(self.directory, 0o777)
        os.chmod(self.directory / (file if is_file else "inner"), mode)
        command = f"{output.command} {output.option} {file}"
        if os.geteuid() == 0:
            user = "setpriv --reuid=65534 --regid=65534 --clear-groups"
            if self.run_as(f"{user} {quoted(TOOL)} --version").status != 0:
                self.skipTest("root may write everything, and other users cannot run the program")
            outcome = self.run_as(f"{user} {quoted(TOOL)} {command}")
        else:
            outcome = self.run_tool(command)
        self.assert_one_line(outcome, 1, f"{file}: ", "Permission denied")
        self.assertEqual(self.content(file), b"old")

    def run_as(self, command: str) -> Outcome:
        """Run a command of the shell."""
        result = subprocess.run(
            ["sh", "-c", command], cwd=self.directory, capture_output=True, check=False
        )
        return Outcome(result.returncode, result.stdout, result.stderr.decode())

    def test_a_full_disk(self) -> None:
        """The disk is full after some rows."""
        os.mkdir(self.directory / "disk")
        mount = "mount -t tmpfs -o size=8k none disk 2>/dev/null || exit 77"
        script = f"""{mount}; echo old >disk/a.csv
            {quoted(TOOL)} cluster -q scene.raw --window 1ms -o disk/a.csv; echo $?
            cat disk/a.csv; ls -A disk"""
        result = subprocess.run(
            ["unshare", "--mount", "--map-root-user", "sh", "-c", script],
            cwd=self.directory,
            capture_output=True,
            check=False,
        )
        if result.returncode != 0:
            self.skipTest("this user must not mount a small disk")
        outcome = Outcome(int(result.stdout[:1]), b"", result.stderr.decode())
        self.assert_one_line(outcome, 1, "No space left on device", "a.csv.partial")
        self.assertEqual(result.stdout, b"1\nold\na.csv\na.csv.partial\n")

    def test_a_damaged_recording(self) -> None:
        """The rows before the defect are kept, but not as if they were all."""
        whole = self.run_tool("cluster -q scene.bin --sensor 160x120").output
        self.write("damaged.bin", self.content("scene.bin")[: -16 * 2000 - 5])
        self.write("a.csv")
        outcome = self.run_tool("cluster -q damaged.bin --sensor 160x120 -o a.csv")
        self.assert_one_line(outcome, 1, "ends in the middle of a record", "a.csv.partial")
        self.assertEqual(self.content("a.csv"), b"old")
        rows = self.content("a.csv.partial").splitlines()
        self.assertGreater(len(rows), 10)
        self.assertEqual(rows[: len(rows) // 2], whole.splitlines()[: len(rows) // 2])

    def test_a_partial_file_is_never_overwritten(self) -> None:
        """The partial file of an earlier run remains."""
        for _ in range(2):
            self.run_with_limit("cluster -q scene.raw -o a.csv", 100)
        self.write("damaged.bin", self.content("scene.bin")[:-5])
        self.run_tool("cluster -q damaged.bin --sensor 160x120 -o a.csv")
        self.assertEqual(len(self.content("a.csv.partial")), 100)
        self.assertEqual(len(self.content("a.csv.partial.2")), 100)
        self.assertGreater(len(self.content("a.csv.partial.3")), 100)

    def test_frames_exist(self) -> None:
        """Frames of another run must not be overwritten."""
        self.write("inner/frame_000007.png")
        outcome = self.run_tool("cluster -q scene.raw --frames inner --no-overwrite")
        self.assert_one_line(outcome, 1, "inner: has frames already")
        self.assertEqual(os.listdir(self.directory / "inner"), ["frame_000007.png"])

    def test_the_directory_of_frames_is_a_file(self) -> None:
        """A file cannot hold frames."""
        outcome = self.run_tool("cluster -q scene.raw --frames truth.csv")
        self.assert_one_line(outcome, 1, "truth.csv: cannot be created")

    def test_devices_may_always_be_written(self) -> None:
        """A device is not overwritten."""
        outcome = self.run_tool("cluster -q scene.raw -o /dev/null --no-overwrite")
        self.assertEqual((outcome.status, outcome.errors), (0, ""))


for _output in OUTPUTS:
    _name = _output.name
    add_test(AFailedOutput, f"full {_name}", AFailedOutput.check_full, _output)
    add_test(AFailedOutput, f"limit {_name}", AFailedOutput.check_limit, _output)
    add_test(AFailedOutput, f"no overwrite {_name}", AFailedOutput.check_existing, _output)
    add_test(
        AFailedOutput,
        f"read only file {_name}",
        AFailedOutput.check_permissions,
        _output,
        0o444,
        True,
    )
    add_test(
        AFailedOutput,
        f"read only directory {_name}",
        AFailedOutput.check_permissions,
        _output,
        0o555,
        False,
    )


class ACompleteOutput(FileTest):
    """Takes the place of the old file."""

    def check_new(self, output: Output) -> None:
        """A new file has the permissions that the user wants, and nothing else remains."""
        file = f"new{output.ending}"
        before = set(self.contents())
        outcome = self.run_tool(
            f"{output.command} {output.option} {file}", preexec_fn=lambda: os.umask(0o027)
        )
        self.assertEqual((outcome.status, outcome.errors), (0, ""))
        self.assertLessEqual(set(self.contents()) - before, {file, "a.bin"})
        self.assertEqual((self.directory / file).stat().st_mode & 0o777, 0o640)

    def test_behind_a_link(self) -> None:
        """The link stays."""
        self.write("old.csv")
        self.link("link.csv", "old.csv")
        self.assertEqual(self.run_tool("cluster -q scene.raw -o link.csv").status, 0)
        self.assertEqual(os.readlink(self.directory / "link.csv"), "old.csv")
        self.assertEqual(self.content("old.csv"), self.content("clusters.csv"))

    def test_behind_a_dangling_link(self) -> None:
        """The missing file is made, in its directory."""
        self.link("link.csv", "inner/new.csv")
        self.assertEqual(self.run_tool("cluster -q scene.raw -o link.csv").status, 0)
        self.assertTrue((self.directory / "link.csv").is_symlink())
        self.assertEqual(self.content("inner/new.csv"), self.content("clusters.csv"))

    def test_other_names_keep_the_old_content(self) -> None:
        """A hard link is a copy from now on."""
        self.write("old.csv")
        os.link(self.directory / "old.csv", self.directory / "hard.csv")
        self.assertEqual(self.run_tool("cluster -q scene.raw -o old.csv").status, 0)
        self.assertEqual(self.content("old.csv"), self.content("clusters.csv"))
        self.assertEqual(self.content("hard.csv"), b"old")

    def test_permissions_stay(self) -> None:
        """A private file remains private."""
        self.write("old.csv")
        os.chmod(self.directory / "old.csv", 0o600)
        self.assertEqual(self.run_tool("cluster -q scene.raw -o old.csv").status, 0)
        self.assertEqual((self.directory / "old.csv").stat().st_mode & 0o777, 0o600)


for _output in OUTPUTS:
    add_test(ACompleteOutput, f"new {_output.name}", ACompleteOutput.check_new, _output)


class AStandardStream(FileTest):
    """Is checked if it is needed, and does no harm if not."""

    def check_output(self, command: str, redirection: str, problem: str) -> None:
        """Standard output cannot be written."""
        self.assert_one_line(self.run_tool(command, redirection), 1, "standard output", problem)

    def check_reader(self, command: str) -> None:
        """Nobody reads standard output."""
        reading, writing = os.pipe()
        os.close(reading)
        outcome = self.run_tool(command, stdout=writing)
        os.close(writing)
        self.assertEqual((outcome.status, outcome.errors), (-signal.SIGPIPE, ""))

    def check_errors(self, command: str, status: int, redirection: str) -> None:
        """Messages cannot be written, but the status is right."""
        self.assertEqual(self.run_tool(command, redirection).status, status)

    def test_closed_streams_do_not_get_into_files(self) -> None:
        """No file may get the number of a stream."""
        for redirection in ("<&-", ">&-", "2>&-", "<&- >&- 2>&-"):
            outcome = self.run_tool("cluster scene.raw -o a.csv", redirection)
            self.assertEqual(outcome.status, 0, redirection)
            self.assertEqual(self.content("a.csv"), self.content("clusters.csv"))

    def test_closed_input_is_no_recording(self) -> None:
        """A recording from standard input is missing."""
        outcome = self.run_tool("cluster -q /dev/stdin", "<&-")
        self.assertEqual(outcome.status, 1)

    def test_other_outputs_stay_if_nobody_reads(self) -> None:
        """Points that nobody reads end the program."""
        reading, writing = os.pipe()
        os.close(reading)
        self.write("a.csv")
        command = "cluster -q scene.raw --method density -o a.csv --points -"
        outcome = self.run_tool(command, stdout=writing)
        os.close(writing)
        self.assertEqual(outcome.status, -signal.SIGPIPE)
        self.assertEqual(self.content("a.csv"), b"old")


for _command in PRINTING:
    add_test(
        AStandardStream,
        f"full output of {_command}",
        AStandardStream.check_output,
        _command,
        ">/dev/full",
        "No space left on device",
    )
    add_test(
        AStandardStream,
        f"closed output of {_command}",
        AStandardStream.check_output,
        _command,
        ">&-",
        "Bad file descriptor",
    )
    add_test(
        AStandardStream, f"unread output of {_command}", AStandardStream.check_reader, _command
    )
for _command, _status in FAILING:
    for _kind, _redirection in {"full": "2>/dev/full", "closed": "2>&-"}.items():
        add_test(
            AStandardStream,
            f"{_kind} errors of {_command}",
            AStandardStream.check_errors,
            _command,
            _status,
            _redirection,
        )


class ASignal(FileTest):
    """Ends the program in good order, wherever it is. The moments are states that can be observed."""

    def start_reading(self, options: str, content: bytes) -> subprocess.Popen:
        """Start to cluster a pipe, and wait until the program has read this content."""
        os.mkfifo(self.directory / "pipe")
        process = self.start(f"cluster -q pipe --sensor 160x120 {options}")
        self.pipe = os.open(self.directory / "pipe", os.O_WRONLY)
        self.addCleanup(self.close_pipe)
        sent = 0
        while sent < len(content):
            sent += os.write(self.pipe, content[sent : sent + 4096])
        # The program has read everything: if it waits again, it waits for more.
        wait_until(lambda: unread_bytes(self.pipe) == 0 and is_waiting(process))
        return process

    def close_pipe(self) -> None:
        """End the content of the pipe."""
        if self.pipe is not None:
            os.close(self.pipe)
            self.pipe = None

    def half(self) -> bytes:
        """The first half of the recording, in whole events."""
        content = self.content("scene.bin")
        return content[: len(content) // 32 * 16]

    def check_old(self, outcome: Outcome, number: signal.Signals) -> None:
        """Nothing had been computed."""
        status, text = SIGNALS[number]
        self.assert_one_line(outcome, status, text)
        self.assertEqual(self.content("a.csv"), b"old")
        self.assertFalse([name for name in self.contents() if name.startswith((".", "a.csv."))])

    def check_rows(self, outcome: Outcome, number: signal.Signals, name: str = "a.csv") -> bytes:
        """Some results had been computed. Return them."""
        status, text = SIGNALS[number]
        if number == signal.SIGINT:
            self.assert_one_line(outcome, status, text)
            self.assertNotIn(f"{name}.partial", self.contents())
        else:
            self.assert_one_line(outcome, status, text, f"{name}.partial")
            self.assertEqual(self.content(name), b"old")
            name += ".partial"
        self.assertFalse([name for name in self.contents() if name.startswith(".")])
        return self.content(name)

    def while_opening(self, number: signal.Signals) -> None:
        """The recording is a pipe that nobody writes."""
        self.write("a.csv")
        os.mkfifo(self.directory / "pipe")
        process = self.start("cluster -q pipe -o a.csv")
        wait_until(lambda: is_waiting(process))
        process.send_signal(number)
        self.check_old(self.outcome(process), number)

    def while_waiting_for_the_beginning(self, number: signal.Signals) -> None:
        """The format is not known yet."""
        self.write("a.csv")
        process = self.start_reading("-o a.csv", self.half()[:160])
        process.send_signal(number)
        self.check_old(self.outcome(process), number)

    def while_waiting_for_events(self, number: signal.Signals) -> None:
        """The clusters of some windows have been written."""
        self.write("a.csv")
        process = self.start_reading("-o a.csv", self.half())
        process.send_signal(number)
        rows = self.check_rows(self.outcome(process), number)
        self.assertTrue(self.content("clusters.csv").startswith(rows))
        self.assertGreater(rows.count(b"\n"), 10)

    def while_writing(self, number: signal.Signals) -> None:
        """Nobody reads the rows at the moment."""
        self.write("a.csv")
        command = "cluster -q scene.raw --method density --window 1ms --points a.csv"
        process = self.start(command, pipesize=4096)
        wait_until(lambda: unread_bytes(process.stdout.fileno()) > 0 and is_waiting(process))
        process.send_signal(number)
        if number != signal.SIGINT:
            # Must end although the pipe remains full.
            process.wait()
        points = self.check_rows(self.outcome(process), number)
        self.assertTrue(points.startswith(b"timestamp_us,cluster,event_time_us,x,y,polarity\n"))

    def start_simulation(self) -> subprocess.Popen:
        """Start a long simulation, and wait until it has written events."""
        self.write("a.bin")
        process = self.start("simulate --sensor 64x48 --duration 36000s -o a.bin --truth a.csv")
        wait_until(
            lambda: [f for f in self.directory.glob(".a.bin.unfinished-*") if f.stat().st_size]
        )
        return process

    def while_simulating(self, number: signal.Signals) -> None:
        """A recording has been written in part."""
        self.write("a.csv")
        process = self.start_simulation()
        process.send_signal(number)
        outcome = self.outcome(process)
        truth = self.check_rows(outcome, number)
        self.assertTrue(truth.startswith(b"timestamp_us,id,kind,"))
        events = self.check_rows(outcome, number, "a.bin")
        self.assertGreater(len(events), 100_000)
        self.assertEqual(len(events) % 16, 0)

    def while_scoring(self, number: signal.Signals) -> None:
        """The truth is a pipe that nobody writes."""
        self.write("a.csv")
        os.mkfifo(self.directory / "pipe")
        process = self.start("score --truth pipe --clusters clusters.csv --json a.csv")
        wait_until(lambda: is_waiting(process))
        process.send_signal(number)
        self.check_old(self.outcome(process), number)

    def with_pictures_and_tracks(self, number: signal.Signals) -> None:
        """Results that are only known at the end are written, too."""
        for name in ("a.csv", "a.png"):
            self.write(name)
        options = "--track -o /dev/null --tracks a.csv --overview a.png --frames frames"
        process = self.start_reading(options, self.half())
        process.send_signal(number)
        outcome = self.outcome(process)
        self.assertGreater(self.check_rows(outcome, number).count(b"\n"), 1)
        self.assert_whole_picture(self.check_rows(outcome, number, "a.png"))
        self.check_frames()

    def assert_whole_picture(self, content: bytes) -> None:
        """Check the beginning and the end of a picture."""
        self.assertTrue(content.startswith(b"\x89PNG\r\n\x1a\n"))
        self.assertEqual(content[-8:-4], b"IEND")

    def check_frames(self) -> None:
        """Check that each frame is complete."""
        frames = sorted((self.directory / "frames").glob("*.png"))
        self.assertGreater(len(frames), 2)
        for frame in frames:
            self.assert_whole_picture(frame.read_bytes())

    def test_kill_while_waiting_for_events(self) -> None:
        """The old file is whole, and the name of the new one tells its state."""
        self.write("a.csv")
        process = self.start_reading("-o a.csv --frames frames", self.half())
        process.kill()
        self.assertEqual(self.outcome(process).status, -signal.SIGKILL)
        self.assertEqual(self.content("a.csv"), b"old")
        rows = self.content(f".a.csv.unfinished-{process.pid}")
        self.assertTrue(self.content("clusters.csv").startswith(rows))
        self.check_frames()

    def test_kill_while_simulating(self) -> None:
        """The old recording is whole."""
        process = self.start_simulation()
        process.kill()
        self.assertEqual(self.outcome(process).status, -signal.SIGKILL)
        self.assertEqual(self.content("a.bin"), b"old")
        self.assertIn(f".a.bin.unfinished-{process.pid}", self.contents())

    def test_a_second_one_ends_the_program_at_once(self) -> None:
        """The user need not wait."""
        process = self.start("cluster -q scene.raw --window 1ms", pipesize=4096)
        wait_until(lambda: unread_bytes(process.stdout.fileno()) > 0 and is_waiting(process))
        process.send_signal(signal.SIGINT)
        wait_until(lambda: not self.is_caught(process, signal.SIGINT))
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(), -signal.SIGINT)

    @staticmethod
    def is_caught(process: subprocess.Popen, number: signal.Signals) -> bool:
        """Whether a process has a handler for a signal."""
        status = pathlib.Path(f"/proc/{process.pid}/status").read_text(encoding="utf-8")
        mask = int(re.search(r"SigCgt:\s*([0-9a-f]+)", status)[1], 16)
        return bool(mask >> (number - 1) & 1)

    def test_hang_up_is_ignored_with_nohup(self) -> None:
        """The user has logged out on purpose."""
        os.mkfifo(self.directory / "pipe")
        process = self.start(
            "cluster -q pipe --sensor 160x120 -o a.csv",
            preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN),
        )
        self.pipe = os.open(self.directory / "pipe", os.O_WRONLY)
        process.send_signal(signal.SIGHUP)
        os.write(self.pipe, self.half()[:4096])
        self.close_pipe()
        self.assertEqual(self.outcome(process).status, 0)

    def test_a_file_that_appears_meanwhile_is_not_overwritten(self) -> None:
        """Another program may write the same file."""
        process = self.start_reading("-o a.csv --no-overwrite", self.half())
        self.write("a.csv", b"of another program")
        self.close_pipe()
        outcome = self.outcome(process)
        self.assert_one_line(outcome, 1, "a.csv: exists already", "a.csv.partial")
        self.assertEqual(self.content("a.csv"), b"of another program")


for _moment in (
    ASignal.while_opening,
    ASignal.while_waiting_for_the_beginning,
    ASignal.while_waiting_for_events,
    ASignal.while_writing,
    ASignal.while_simulating,
    ASignal.while_scoring,
    ASignal.with_pictures_and_tracks,
):
    for _number in SIGNALS:
        add_test(ASignal, f"{_number.name} {_moment.__name__}", _moment, _number)


if __name__ == "__main__":
    unittest.main()
