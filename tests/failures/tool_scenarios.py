# SPDX-License-Identifier: MIT
"""Commands of the tool to run with failures."""

from __future__ import annotations

import dataclasses
import pathlib
import re

_NUMBER = re.compile(rb" *[0-9.e+-]+ *")
_FIGURE = re.compile(rb" *(?:[0-9.e+-]+|null) *")


@dataclasses.dataclass(frozen=True)
class Scenario:
    """A command. Recordings and tables are read from a directory in which nothing is written."""

    name: str
    arguments: str
    # Numbers in the output differ from run to run because they depend on random numbers.
    is_random: bool = False
    # Numbers are times, and the memory, which is missing if it cannot be measured.
    is_measured: bool = False
    # The share of the usual number of runs.
    share: float = 1

    def command(self, inputs: pathlib.Path) -> list[str]:
        """The arguments, with the paths of the files to read."""
        return [word.replace("@", f"{inputs}/") for word in self.arguments.split()]

    def comparable(self, content: bytes) -> bytes:
        """What has to be the same in each run."""
        if self.is_measured:
            return _FIGURE.sub(b"#", content)
        return _NUMBER.sub(b"#", content) if self.is_random else content


_SCENE = "--sensor 64x48 --duration 30ms --discs 2 --bars 1 --polygons 1 --seed 5"

# Files that the commands read, each with the arguments that make it.
INPUTS = {
    "scene.evt3.raw": f"simulate -o scene.evt3.raw --truth truth.csv {_SCENE}",
    "scene.evt2.raw": f"simulate -o scene.evt2.raw {_SCENE}",
    "scene.csv": f"simulate -o scene.csv {_SCENE}",
    "scene.bin": f"simulate -o scene.bin {_SCENE}",
    # Longer than the buffers for reading.
    "long.csv": "simulate -o long.csv --sensor 320x240 --duration 60ms --noise-rate 5 --seed 5",
    "clusters.csv": "cluster scene.csv -q --track -o clusters.csv",
}
DAMAGED = "damaged.evt3.raw"  # a copy of scene.evt3.raw without its last byte

_PICTURES = "--frames frames --overview overview.png --plot3d plot.png"

_DENSITY = "cluster @scene.csv -o clusters.csv --method density --points points.csv"
_CENTROID = "cluster @scene.csv -o clusters.csv --method centroid --clusters 3"
_SCORE = "score --truth @truth.csv --clusters @clusters.csv"
_BENCH = "bench @scene.csv --methods"

SCENARIOS = [
    Scenario("help", "--help"),
    Scenario("version", "--version"),
    Scenario("help-cluster", "cluster --help"),
    Scenario("usage-option", "cluster @scene.csv --windw 10ms"),
    Scenario("usage-value", "cluster @scene.csv --window 10"),
    Scenario("usage-command", "clutser"),
    Scenario("info-evt3", "info @scene.evt3.raw"),
    Scenario("info-evt2-json", "info --json @scene.evt2.raw"),
    Scenario("info-text", "info @scene.csv"),
    Scenario("info-records", "info --sensor 64x48 @scene.bin"),
    Scenario("info-long", "info @long.csv"),
    Scenario("info-damaged", f"info @{DAMAGED}"),
    Scenario("info-missing", "info @missing.raw"),
    Scenario("cluster-stdout", "cluster @scene.evt3.raw"),
    Scenario("cluster-grid", "cluster @scene.csv -o clusters.csv --polarity separate"),
    Scenario("cluster-long", "cluster @long.csv -o clusters.csv"),
    Scenario("cluster-jsonl", "cluster @scene.csv -o clusters.jsonl --format jsonl --track"),
    Scenario("cluster-tracks", "cluster @scene.csv -o clusters.csv --track --tracks tracks.csv"),
    Scenario("cluster-mot", "cluster @scene.csv -q -o clusters.txt --format mot --track --min-hits 1"),
    Scenario("cluster-density-2d", _DENSITY),
    Scenario("cluster-density-3d", f"{_DENSITY} --dim 3 {_PICTURES}", share=0.2),
    Scenario("cluster-density-threads", f"{_DENSITY} --jobs 3"),
    Scenario("cluster-centroid", f"{_CENTROID} --centroids centroids.csv", is_random=True),
    Scenario("cluster-pictures", f"cluster @scene.csv -o clusters.csv --track {_PICTURES}", share=0.2),
    Scenario("cluster-damaged", f"cluster @{DAMAGED} -o clusters.csv"),
    Scenario("simulate-evt3", f"simulate -o scene.raw --truth truth.csv {_SCENE}"),
    Scenario("simulate-evt2", f"simulate -o scene.evt2 {_SCENE}"),
    Scenario("simulate-text", f"simulate -o scene.csv --truth truth.csv {_SCENE}"),
    Scenario("simulate-records", f"simulate -o scene.bin {_SCENE}"),
    Scenario("simulate-stdout", f"simulate -o - --format text {_SCENE}"),
    Scenario("score", _SCORE),
    Scenario("score-json", f"{_SCORE} --json score.json"),
    Scenario("score-json-stdout", f"{_SCORE} --json -"),
    Scenario("bench-json", f"{_BENCH} grid,density2d --json bench.json", is_measured=True),
    Scenario("bench-json-stdout", f"{_BENCH} grid,centroid3d --json -", is_measured=True),
]
