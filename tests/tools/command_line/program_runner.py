# SPDX-License-Identifier: MIT
"""Runs the program for tests, and waits for it without assumptions about the speed of the machine."""

import fcntl
import os
import pathlib
import resource
import shlex
import subprocess
import tempfile
import termios
import time
import unittest
from dataclasses import dataclass
from typing import Any, Callable

TOOL = os.environ["KELVORA_PROGRAM"]

# Seconds. Only ends a test that would hang.
LIMIT = 300


@dataclass
class Outcome:
    """How a run of the program ended."""

    status: int
    output: bytes
    errors: str


def wait_until(condition: Callable[[], Any]) -> None:
    """Wait for a condition to be true."""
    end = time.monotonic() + LIMIT
    while not condition():
        assert time.monotonic() < end, "the condition did not become true"
        time.sleep(0.002)


def is_waiting(process: subprocess.Popen) -> bool:
    """Whether a process waits for a file, a pipe or a signal."""
    state = pathlib.Path(f"/proc/{process.pid}/stat").read_text(encoding="utf-8")
    return state.rpartition(")")[2].split()[0] == "S"


def unread_bytes(pipe: int) -> int:
    """Count the bytes in a pipe that nobody has read yet."""
    return int.from_bytes(fcntl.ioctl(pipe, termios.FIONREAD, bytes(4)), "little")


class ProgramTest(unittest.TestCase):
    """Each test runs the program in a new directory."""

    def setUp(self) -> None:
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def start(self, arguments: str, redirection: str = "", **options: Any) -> subprocess.Popen:
        """Start the program from a shell, which can redirect its streams."""
        script = f'exec "$0" {arguments} {redirection}'
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, **options}
        process = subprocess.Popen(
            ["sh", "-c", script, TOOL], cwd=self.directory, stderr=subprocess.PIPE, **options
        )
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process: subprocess.Popen) -> None:
        """Make sure that a process has ended."""
        process.kill()
        process.communicate()

    @staticmethod
    def outcome(process: subprocess.Popen) -> Outcome:
        """Wait for the end of a process."""
        output, errors = process.communicate(timeout=LIMIT)
        return Outcome(process.returncode, output or b"", errors.decode())

    def run_tool(self, arguments: str, redirection: str = "", **options: Any) -> Outcome:
        """Run the program to its end."""
        return self.outcome(self.start(arguments, redirection, **options))

    def run_with_limit(self, arguments: str, size: int) -> Outcome:
        """Run the program with a limit on the size of files."""

        def limit() -> None:
            resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))

        return self.run_tool(arguments, preexec_fn=limit)

    def contents(self) -> dict[str, bytes]:
        """Read all files of the directory."""
        files = sorted(path for path in self.directory.rglob("*") if path.is_file())
        return {str(path.relative_to(self.directory)): path.read_bytes() for path in files}

    def content(self, name: str) -> bytes:
        """Read a file of the directory."""
        return (self.directory / name).read_bytes()

    def write(self, name: str, content: bytes = b"old") -> None:
        """Write a file to the directory."""
        (self.directory / name).write_bytes(content)

    def assert_one_line(self, outcome: Outcome, status: int, *parts: str) -> None:
        """Check the status, and that the only message has these parts."""
        self.assertEqual(outcome.status, status, outcome)
        lines = outcome.errors.splitlines()
        self.assertEqual(len(lines), 1, outcome)
        self.assertTrue(lines[0].startswith("kelvora: "), outcome)
        for part in parts:
            self.assertIn(part, lines[0])


def quoted(path: object) -> str:
    """Quote a path for the shell."""
    return shlex.quote(str(path))
