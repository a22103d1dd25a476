# SPDX-License-Identifier: MIT
"""The Python snippets of README and documentation run, one page at a time."""

import contextlib
import io
import runpy
import sys

import pytest

from recordings import ROOT, run_tool

sys.path.insert(0, str(ROOT / "tests/documentation"))

from snippets import snippets_of  # noqa: E402

PAGES = {
    str(page.relative_to(ROOT)): [
        snippet for snippet in snippets_of(page) if snippet.language == "python"
    ]
    for page in [ROOT / "README.md", *sorted((ROOT / "docs").glob("**/*.md"))]
}


@pytest.fixture
def beside_a_recording(tmp_path, monkeypatch):
    run_tool("simulate", "-o", tmp_path / "recording.raw", "--duration", "300ms")
    monkeypatch.chdir(tmp_path)


@pytest.mark.parametrize("page", [page for page, snippets in PAGES.items() if snippets])
def test_snippets_run(page, beside_a_recording):
    session = {"__name__": "__main__"}
    for snippet in PAGES[page]:
        if snippet.reason:
            continue
        code = compile("\n" * snippet.line + snippet.text, ROOT / page, "exec")
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            exec(code, session)
        claims = [
            line.removeprefix("#> ") for line in snippet.text.splitlines() if line.startswith("#> ")
        ]
        if claims:
            assert output.getvalue().splitlines() == claims, snippet.place


def test_the_page_of_parameters_is_printed_from_their_table():
    make_parameters = runpy.run_path(str(ROOT / "docs/make_parameters"))
    assert (ROOT / "docs/parameters.md").read_text() == make_parameters["page"]()


def test_readme_and_the_page_on_python_have_snippets():
    assert PAGES["README.md"]
    assert PAGES["docs/python.md"]
