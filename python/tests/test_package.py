# SPDX-License-Identifier: MIT
"""The package as a whole."""

import pathlib
import re

import kelvora

ROOT = pathlib.Path(__file__).resolve().parents[2]


def test_version_is_that_of_the_library():
    cmake = (ROOT / "CMakeLists.txt").read_text()
    assert kelvora.__version__ == re.search(r"VERSION (\d+\.\d+\.\d+)", cmake)[1]


def test_all_names_exist():
    assert all(hasattr(kelvora, name) for name in kelvora.__all__)
