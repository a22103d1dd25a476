# SPDX-License-Identifier: MIT
"""Standard streams that are full, closed, or not read."""

import os
import signal
import unittest

from file_cases import SCORE, SIMULATE, FileTest, add_test

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
    ("simulate -o a.raw --lights 1000", 2),
    ("cluster scene.raw -o scene.raw", 2),
    ("cluster", 2),
    ("clutser", 2),
    ("cluster scene.raw --widnow 10ms", 2),
    ("", 2),
]


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

if __name__ == "__main__":
    unittest.main()
