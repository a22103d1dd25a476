# SPDX-License-Identifier: MIT
"""The package as a whole."""

import pathlib
import re

import kelvora

ROOT = pathlib.Path(__file__).resolve().parents[2]


def test_version_is_the_version_of_the_library():
    cmake = (ROOT / "CMakeLists.txt").read_text()
    assert kelvora.__version__ == re.search(r"VERSION (\d+\.\d+\.\d+)", cmake)[1]


def test_all_names_exist():
    assert all(hasattr(kelvora, name) for name in kelvora.__all__)


def test_public_classes_have_the_module_where_users_find_them():
    for name in ["GridClusterer", "DensityClusterer", "CentroidClusterer", "Tracker"]:
        assert f"{getattr(kelvora, name).__module__}.{name}" == f"kelvora.{name}"
    assert repr(kelvora.Tracker()).startswith("<kelvora.Tracker object")
