# SPDX-License-Identifier: MIT
"""The type stubs and docstrings match the extension module."""

import ast
import inspect
import os
import pathlib
import re
import subprocess
import sys
import typing

import pytest

import kelvora
from kelvora import _kelvora, _recordings

PACKAGE = pathlib.Path(kelvora.__file__).parent
STUB_TEXT = (PACKAGE / "_kelvora.pyi").read_text()
STUB = ast.parse(STUB_TEXT)


def stub_functions():
    """The definitions in the stub, by name."""
    for node in STUB.body:
        if isinstance(node, ast.FunctionDef):
            yield node.name, node
        elif isinstance(node, ast.ClassDef):
            for inner in node.body:
                is_property = isinstance(inner, ast.FunctionDef) and inner.decorator_list
                if isinstance(inner, ast.FunctionDef) and not is_property:
                    if inner.name == "__init__":
                        yield node.name, inner
                    elif not inner.name.startswith("_"):
                        yield f"{node.name}.{inner.name}", inner


FUNCTIONS = dict(stub_functions())


def value_of(default):
    return None if default is None else ast.literal_eval(default)


def parameters(definition):
    """Names and defaults without self: positional and keyword-only parameters."""
    arguments = definition.args
    positional = [argument.arg for argument in arguments.posonlyargs + arguments.args]
    defaults = [ast.Expr] * (len(positional) - len(arguments.defaults)) + list(
        map(value_of, arguments.defaults)
    )
    keywords = [
        (argument.arg, value_of(default))
        for argument, default in zip(arguments.kwonlyargs, arguments.kw_defaults)
    ]
    return [pair for pair in zip(positional, defaults) if pair[0] != "self"], keywords


def parsed(signature):
    """The definition for a signature such as name(a, b=1)."""
    name, rest = signature.split(" -> ")[0].split("(", 1)
    return ast.parse(f"def {name.split('.')[-1].strip() or 'f'}({rest}: ...").body[0]


def member(name):
    found = _kelvora
    for part in name.split("."):
        found = getattr(found, part)
    return found


def runtime_signature(name):
    """The signature in the error of a call with wrong arguments."""
    with pytest.raises(TypeError) as caught:
        member(name)(*[object()] * 40)
    line = next(line for line in str(caught.value).splitlines() if line.strip().startswith("1. "))
    return line.strip()[3:]


# Their keywords are read from the table of parameters.
CLUSTERERS = {
    "GridClusterer": ["Grid method"],
    "DensityClusterer": ["Density and centroid methods", "Density method"],
    "CentroidClusterer": ["Density and centroid methods", "Centroid method"],
}


@pytest.mark.parametrize("name", [name for name in FUNCTIONS if name not in CLUSTERERS])
def test_stub_has_the_parameters_of_the_module(name):
    assert parameters(parsed(runtime_signature(name))) == parameters(FUNCTIONS[name])


@pytest.mark.parametrize("name, groups", CLUSTERERS.items())
def test_stub_of_a_clusterer_has_the_parameters_and_defaults_of_the_table(name, groups):
    positional, keywords = parameters(FUNCTIONS[name])
    assert [first for first, _ in positional][:2] == ["width", "height"]
    wanted = {
        row["name"]: row["default"]
        for row in _kelvora.parameters()
        if row["group"] in groups or row["name"] == "polarity"
    }
    if name == "CentroidClusterer":
        assert positional[2][0] == "k"
        del wanted["k"]
    assert dict(keywords) == wanted


@pytest.mark.parametrize("name", CLUSTERERS)
def test_docstring_of_a_clusterer_describes_each_parameter(name):
    text = inspect.getdoc(member(name))
    names, keywords = parameters(FUNCTIONS[name])
    described = re.findall(r"^([a-z_, ]+) : ", text, re.MULTILINE)
    described = {word.strip() for line in described for word in line.split(",")}
    assert described == {parameter for parameter, _ in names + keywords}


@pytest.mark.parametrize("name", FUNCTIONS)
def test_docstring_begins_with_the_signature_of_the_stub(name):
    signature = inspect.getdoc(member(name)).splitlines()[0]
    assert signature.startswith(name.split(".")[-1] + "(")
    assert parameters(parsed(signature)) == parameters(FUNCTIONS[name])


def names_in(words):
    """The quoted names in a text such as 'a', 'b' or 'c'."""
    return re.findall(r"'([a-z0-9]+)'", words)


def test_formats_are_the_same_as_in_the_module():
    with pytest.raises(ValueError) as caught:
        kelvora.read("a", input_format="")
    formats = names_in(str(caught.value))
    assert "evt3" in formats
    assert names_in(_kelvora.RecordingReader.format.__doc__) == formats
    assert list(typing.get_args(_recordings.Format)) == formats
    assert "{" + str(formats)[1:-1] + "}" in kelvora.read.__doc__


def test_methods_are_the_same_as_in_the_module():
    (row,) = [row for row in _kelvora.parameters() if row["name"] == "method"]
    assert "_Method = Literal" + str(row["words"]).replace("'", '"') in STUB_TEXT


def run(*arguments, cwd):
    environment = {**os.environ, "MYPYPATH": str(PACKAGE.parent)}
    environment["PYTHONPATH"] = str(PACKAGE.parent)
    return subprocess.run(
        [sys.executable, *arguments], env=environment, cwd=cwd, capture_output=True, text=True
    )


def test_mypy_finds_the_stubs_complete(tmp_path):
    pytest.importorskip("mypy")
    allowed = pathlib.Path(__file__).with_name("stubtest_allowlist.txt")
    result = run(
        "-m",
        "mypy.stubtest",
        "kelvora",
        "--allowlist",
        allowed,
        "--ignore-unused-allowlist",
        cwd=tmp_path,
    )
    assert result.returncode == 0, result.stdout + result.stderr


def test_mypy_finds_no_fault_with_the_package_and_with_its_use(tmp_path):
    pytest.importorskip("mypy")
    user = tmp_path / "user.py"
    user.write_text(
        "import numpy as np\n"
        "import kelvora\n"
        "clusterer = kelvora.DensityClusterer(640, 480, eps=5, dim=3, polarity='on')\n"
        "clusterer.process(x=[1], y=[2], t=[3.0], p=[True], time_unit='s')\n"
        "rows = clusterer.generate(10)\n"
        "ids = kelvora.Tracker().update(rows)\n"
        "labels = kelvora.dbscan(np.zeros((3, 2)), 1.0, 2)\n"
        "reveal_type(labels)\n"
        "clusterer.generate('now')\n"
    )
    result = run("-m", "mypy", "--strict", user, cwd=tmp_path)
    errors = [line for line in result.stdout.splitlines() if ": error:" in line]
    assert len(errors) == 1 and "user.py:9" in errors[0], result.stdout + result.stderr
    assert "signedinteger" in result.stdout
