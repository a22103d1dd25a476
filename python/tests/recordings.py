# SPDX-License-Identifier: MIT
"""Recordings for tests: simulated, written by tests, or real ones."""

import os
import pathlib
import subprocess

import numpy as np
import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOL = os.environ.get("KELVORA_PROGRAM", "kelvora")
DATA = pathlib.Path(os.environ.get("KELVORA_TEST_DATA", ROOT.parent / "shared/data"))
RECORD = np.dtype([("t", "<u8"), ("x", "<u2"), ("y", "<u2"), ("p", "u1"), ("padding", "u1", 3)])

needs_data = pytest.mark.skipif(
    not DATA.is_dir(), reason=f"no recordings in {DATA}; set KELVORA_TEST_DATA to their directory"
)


def run_tool(*arguments):
    """Run the tool and return its standard output."""
    command = [TOOL, *map(str, arguments)]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def simulate(path, *, seed=7, duration="200ms", sensor="320x240"):
    """A recording of a simulated scene, in the format given by its name."""
    run_tool("simulate", "-o", path, "--seed", seed, "--duration", duration, "--sensor", sensor)
    return path


def write_records(path, events):
    """A recording of events given as rows (t, x, y, p)."""
    records = np.zeros(len(events), RECORD)
    for name, column in zip("txyp", np.transpose(events)):
        records[name] = column
    records.tofile(path)
    return path


def damaged_copy(path, copy):
    """A copy of a recording whose last event is truncated."""
    copy.write_bytes(path.read_bytes()[:-5])
    return copy


def rows_of(events):
    return np.stack([events[name] for name in "txyp"], axis=1).tolist()
