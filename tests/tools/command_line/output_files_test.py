# SPDX-License-Identifier: MIT
"""An output is either complete, or the old file stays as it was."""

import os
import subprocess
import unittest

from file_cases import OUTPUTS, FileTest, Output, add_test
from program_runner import TOOL, Outcome, quoted


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

if __name__ == "__main__":
    unittest.main()
