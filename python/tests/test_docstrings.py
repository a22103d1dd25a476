# SPDX-License-Identifier: MIT
"""The docstrings: every public name has one, and its examples run."""

import doctest
import inspect

import pytest

import kelvora


def public_members():
    """Names and objects of the package, and of its classes."""
    for name in kelvora.__all__:
        member = getattr(kelvora, name)
        if inspect.ismodule(member) or not (inspect.isclass(member) or callable(member)):
            continue
        yield name, member
        if inspect.isclass(member) and member.__module__.startswith("kelvora"):
            for inner, value in vars(member).items():
                if not inner.startswith("_"):
                    yield f"{name}.{inner}", value


MEMBERS = dict(public_members())


@pytest.mark.parametrize("name", MEMBERS)
def test_public_member_is_documented(name):
    assert (MEMBERS[name].__doc__ or "").strip()


@pytest.mark.parametrize(
    "name", [name for name, member in MEMBERS.items() if ">>>" in (member.__doc__ or "")]
)
def test_examples_run(name):
    examples = doctest.DocTestParser().get_doctest(MEMBERS[name].__doc__, {}, name, None, None)
    result = doctest.DocTestRunner(optionflags=doctest.NORMALIZE_WHITESPACE).run(examples)
    assert result.attempted > 0
    assert result.failed == 0
