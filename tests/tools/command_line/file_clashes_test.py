# SPDX-License-Identifier: MIT
"""Outputs that clash with another file of the command are refused."""

import os
import shutil
import unittest
from typing import Callable

from file_cases import OUTPUTS, SCORE, SIMULATE, FileTest, Output, add_test
from program_runner import quoted


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

if __name__ == "__main__":
    unittest.main()
