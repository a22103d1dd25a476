# SPDX-License-Identifier: MIT
"""Shared by the tests of files: samples, the outputs of all commands, and tests made from tables."""

import atexit
import functools
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
from dataclasses import dataclass
from typing import Callable

from program_runner import TOOL, ProgramTest

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

@functools.cache
def samples() -> pathlib.Path:
    """Make a recording, its truth, and its clusters. Return their directory."""
    directory = pathlib.Path(tempfile.mkdtemp())
    atexit.register(shutil.rmtree, directory)
    for command in (
        "simulate -o scene.raw --truth truth.csv --sensor 160x120 --duration 200ms",
        "simulate -o scene.bin --sensor 160x120 --duration 200ms",
        "cluster scene.raw -o clusters.csv",
    ):
        subprocess.run([TOOL, *command.split()], cwd=directory, check=True, capture_output=True)
    shutil.copy(directory / "scene.raw", directory / "scene.png")
    return directory


class FileTest(ProgramTest):
    """The directory of each test has the samples."""

    def setUp(self) -> None:
        super().setUp()
        for file in samples().iterdir():
            shutil.copy(file, self.directory)
        os.mkdir(self.directory / "inner")

    def link(self, name: str, target: str) -> None:
        """Make a symbolic link."""
        os.symlink(target, self.directory / name)


def add_test(group: type, name: str, check: Callable[..., None], *arguments: object) -> None:
    """Add a test to a group."""
    method = "test_" + re.sub(r"\W+", "_", name).strip("_")
    assert not hasattr(group, method), method
    setattr(group, method, lambda self: check(self, *arguments))
