# SPDX-License-Identifier: MIT
"""Signals end the program in good order."""

import contextlib
import os
import pathlib
import re
import signal
import subprocess
import unittest

from file_cases import SCORE, FileTest, add_test
from program_runner import Outcome, is_waiting, unread_bytes, wait_until

SIGNALS = {
    signal.SIGINT: (130, "interrupted by Ctrl-C"),
    signal.SIGTERM: (143, "ended by SIGTERM"),
    signal.SIGHUP: (129, "ended by SIGHUP"),
}


class ASignal(FileTest):
    """Ends the program in good order at any time. The moments are states that can be observed."""

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

    def full_pipe(self, name: str) -> int:
        """Make a named pipe that takes nothing more until its content is read."""
        os.mkfifo(self.directory / name)
        pipe = os.open(self.directory / name, os.O_RDWR | os.O_NONBLOCK)
        self.addCleanup(os.close, pipe)
        with contextlib.suppress(BlockingIOError):
            while True:
                os.write(pipe, bytes(4096))
        return pipe

    def test_ctrl_c_while_frames_are_compared(self) -> None:
        """A score of some frames would look like a score of all."""
        boxes = [f"10000,{number},0,0,9,9\n" for number in range(200)]
        header = "timestamp_us,id,x,y,width,height\n"
        self.write("truth.csv", (header + "".join(boxes) + "20000,0,0,0,9,9\n").encode())
        self.write("clusters.csv", (header + "".join(boxes) + "15000,0,0,0,9,9\n").encode())
        # The warning of the different intervals comes just before the first frame, which would end
        # the program because it has too many pairs of boxes.
        errors = self.full_pipe("errors")
        process = self.start(f"{SCORE} --max-memory 1 --json a.csv", "2>errors")
        wait_until(lambda: self.is_caught(process, signal.SIGINT) and is_waiting(process))
        process.send_signal(signal.SIGINT)
        os.read(errors, 1 << 20)
        outcome = self.outcome(process)
        self.assertEqual((outcome.status, outcome.output), (130, b""))
        self.assertIn(b"interrupted by Ctrl-C", os.read(errors, 1 << 20))
        self.assertFalse([name for name in self.contents() if "a.csv" in name])

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
