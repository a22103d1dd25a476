# SPDX-License-Identifier: MIT
"""Finds the snippets of a Markdown page or a header.

In a page, a snippet is a fenced block that names its language. A comment in the line before it may
give instructions::

    <!-- snippet: with DECLARATIONS -->      C++ in front of a snippet that is no whole program
    <!-- snippet: not run: REASON -->        the one way to leave a snippet out

In a header, a snippet is a ``\\code{.cpp}`` block of a Doxygen comment, and always run.
"""

import dataclasses
import pathlib
import re
from collections.abc import Iterator

RUN = frozenset({"cpp", "cmake", "sh"})
RUN_ELSEWHERE = frozenset({"python"})  # by python/tests
NO_CODE = frozenset({"text", "csv", "json"})

_CODE = re.compile(
    r"^ */// \\code\{\.cpp\}\n(?P<lines>.*?)^ */// \\endcode$", re.MULTILINE | re.DOTALL
)
_COMMENT = re.compile(r"^ */// ?", re.MULTILINE)
_FENCE = re.compile(r"^(?P<indent> *)```(?P<language>\S*)\s*(?P<argument>.*)$")
_MARK = re.compile(r"^\s*<!-- snippet: (?P<mark>.*?) -->\s*$")
_NOT_RUN = re.compile(r"not run: (?P<reason>\S.*)")
_WITH = re.compile(r"with (?P<declarations>\S.*)")


class PageError(Exception):
    """An error in a page, with its place."""


@dataclasses.dataclass(frozen=True)
class Snippet:
    """A block of code in a page."""

    page: pathlib.Path
    line: int
    language: str
    text: str
    declarations: str = ""
    reason: str = ""

    @property
    def place(self) -> str:
        """File and line, in the format of compilers."""
        return f"{self.page}:{self.line}"

    @property
    def is_program(self) -> bool:
        """Whether it is C++ with a main function."""
        has_main = re.search(r"^int main\(", self.text, re.MULTILINE) is not None
        return self.language == "cpp" and has_main


def _read_mark(mark: str, place: str) -> tuple[str, str]:
    if not mark:
        return "", ""
    if match := _NOT_RUN.fullmatch(mark):
        return "", match["reason"]
    if match := _WITH.fullmatch(mark):
        return match["declarations"], ""
    known = "'with DECLARATIONS' or 'not run: REASON'"
    raise PageError(f"{place}: 'snippet: {mark}' is not understood: write {known}")


def _blocks(page: pathlib.Path) -> Iterator[tuple[int, str, str, str]]:
    """Give line, language, text and mark of each fenced block."""
    mark = ""
    opening = None
    lines: list[str] = []
    for number, line in enumerate(page.read_text(encoding="utf-8").splitlines(), start=1):
        fence = _FENCE.match(line)
        if opening is None and fence is None:
            found = _MARK.match(line)
            if mark and not found:
                raise PageError(f"{page}:{number}: a snippet must follow its mark at once")
            mark = found["mark"] if found else ""
        elif opening is None:
            opening, lines = (number, fence), []
        elif fence and not fence["language"]:
            first, begin = opening
            indent = len(begin["indent"])
            yield first, begin["language"], "\n".join(text[indent:] for text in lines) + "\n", mark
            opening, mark = None, ""
        else:
            lines.append(line)
    if opening or mark:
        raise PageError(f"{page}: ends within a snippet")


def _header_snippets(header: pathlib.Path) -> list[Snippet]:
    text = header.read_text(encoding="utf-8")
    found = list(_CODE.finditer(text))
    if len(found) != text.count("\\code"):
        raise PageError(f"{header}: a \\code block is not C++, or does not end")
    return [
        Snippet(
            header,
            text.count("\n", 0, match.start()) + 1,
            "cpp",
            _COMMENT.sub("", match["lines"]),
        )
        for match in found
    ]


def snippets_of(page: pathlib.Path) -> list[Snippet]:
    """Find the snippets of a page or a header that are code.

    Raises
    ------
    PageError
        For a block without or of an unknown language, and for a mark that is not understood.
    """
    if page.suffix == ".hpp":
        return _header_snippets(page)
    found = []
    for line, language, text, mark in _blocks(page):
        place = f"{page}:{line}"
        declarations, reason = _read_mark(mark, place)
        if language in RUN or language in RUN_ELSEWHERE:
            found.append(Snippet(page, line, language, text, declarations, reason))
        elif language not in NO_CODE and not re.fullmatch(r"\{[\w-]+\}", language):
            known = ", ".join(sorted(RUN | RUN_ELSEWHERE | NO_CODE))
            raise PageError(f"{place}: the language '{language}' is none of {known}")
    return found
