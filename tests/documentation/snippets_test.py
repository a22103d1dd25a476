# SPDX-License-Identifier: MIT
"""No part of a page is skipped silently."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

from snippets import PageError, Snippet, snippets_of

HERE = pathlib.Path(__file__).resolve().parent
HEADERS = sorted((HERE.parents[1] / "include/kelvora").glob("*.hpp"))


def fenced(language: str, text: str, mark: str = "") -> str:
    """Write a block of a page."""
    return f"Words.\n\n{mark}```{language}\n{text}\n```\n"


class PageTest(unittest.TestCase):
    """Pages are written to a temporary directory."""

    def setUp(self) -> None:
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.page = pathlib.Path(directory.name) / "page.md"

    def snippets(self, text: str) -> list[Snippet]:
        """Find the snippets of a page with this text."""
        self.page.write_text(text, encoding="utf-8")
        return snippets_of(self.page)

    def run_page(self, text: str) -> subprocess.CompletedProcess[str]:
        """Run a page that needs neither a compiler nor the tool."""
        self.page.write_text(text, encoding="utf-8")
        tool = self.page.parent / "kelvora"
        tool.write_text("#!/bin/sh\nexit 0\n", encoding="utf-8")
        tool.chmod(0o755)
        command = [sys.executable, "-B", str(HERE / "run_page.py"), str(self.page)]
        command += ["--directory", str(self.page.parent / "work"), "--tool", str(tool)]
        return subprocess.run(
            [*command, "--cmake", "cmake"], capture_output=True, text=True, check=False
        )


class SnippetsTest(PageTest):
    """Tests of finding snippets in a page."""

    def test_finds_language_text_and_line(self) -> None:
        (snippet,) = self.snippets(fenced("sh", "one\n\ntwo"))
        self.assertEqual((snippet.language, snippet.text, snippet.line), ("sh", "one\n\ntwo\n", 3))

    def test_removes_the_indent_of_lists(self) -> None:
        (snippet,) = self.snippets("- Words.\n\n  ```sh\n  one\n    two\n  ```\n")
        self.assertEqual(snippet.text, "one\n  two\n")

    def test_distinguishes_programs_from_fragments(self) -> None:
        program, fragment = fenced("cpp", "int main() {}"), fenced("cpp", "f(); // int main()")
        found = self.snippets(program + fragment)
        self.assertEqual([snippet.is_program for snippet in found], [True, False])

    def test_reads_marks(self) -> None:
        found = self.snippets(
            fenced("cpp", "f(i);", "<!-- snippet: with int i = 0; -->\n")
            + fenced("sh", "sudo", "<!-- snippet: not run: changes the system -->\n")
            + fenced("sh", "true")
        )
        self.assertEqual([snippet.declarations for snippet in found], ["int i = 0;", "", ""])
        self.assertEqual([snippet.reason for snippet in found], ["", "changes the system", ""])

    def test_refuses_to_leave_out_snippets_without_a_reason(self) -> None:
        for mark in ("not run", "not run:", "skip", "with"):
            with self.subTest(mark), self.assertRaisesRegex(PageError, "page.md:4: .* understood"):
                self.snippets(fenced("sh", "true", f"<!-- snippet: {mark} -->\n"))

    def test_refuses_a_mark_that_stands_alone(self) -> None:
        with self.assertRaisesRegex(PageError, "must follow"):
            self.snippets("<!-- snippet: not run: no -->\n\n" + fenced("sh", "true"))

    def test_refuses_unknown_and_missing_languages(self) -> None:
        for language in ("c++", "bash", ""):
            with self.subTest(language), self.assertRaisesRegex(PageError, "page.md:3: the"):
                self.snippets(fenced(language, "true"))

    def test_leaves_text_and_directives_alone(self) -> None:
        page = fenced("text", "x") + fenced("{toctree}", "x") + fenced("{tool-help} a", "x")
        self.assertEqual(self.snippets(page), [])


class HeaderTest(PageTest):
    """Tests of finding snippets in a header."""

    def snippets(self, text: str) -> list[Snippet]:
        self.page = self.page.with_suffix(".hpp")
        return super().snippets(text)

    def test_finds_text_and_line_of_code_in_comments(self) -> None:
        (snippet,) = self.snippets(
            "/// A class.\n///\n/// \\code{.cpp}\n"
            "/// if (a) {\n///     f();\n///\n/// }\n/// \\endcode\n"
        )
        self.assertEqual(snippet.text, "if (a) {\n    f();\n\n}\n")
        self.assertEqual((snippet.language, snippet.line), ("cpp", 3))

    def test_refuses_code_of_another_language_or_without_end(self) -> None:
        for text in ("/// \\code\n/// f();\n/// \\endcode\n", "/// \\code{.cpp}\n/// f();\n"):
            with self.subTest(text), self.assertRaisesRegex(PageError, "page.hpp: a .code block"):
                self.snippets(text)

    def test_every_public_header_has_a_short_example(self) -> None:
        self.assertTrue(HEADERS)
        for header in HEADERS:
            with self.subTest(header.name):
                (snippet,) = snippets_of(header)
                self.assertIn(snippet.text.count("\n"), range(5, 13))


class RunPageTest(PageTest):
    """Tests of running snippets."""

    def test_runs_commands_of_a_page_in_one_directory(self) -> None:
        result = self.run_page(fenced("sh", "touch there") + fenced("sh", "test -e there"))
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_fails_with_any_line_of_a_command(self) -> None:
        result = self.run_page(fenced("sh", "false\ntrue"))
        self.assertEqual(result.returncode, 1)
        self.assertIn("page.md:3: bash ended with 1", result.stderr)

    def test_says_which_snippets_are_not_run_and_why(self) -> None:
        result = self.run_page(fenced("sh", "false", "<!-- snippet: not run: it fails -->\n"))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("page.md:4: sh, not run: it fails", result.stdout)

    def test_fails_for_lines_for_cmake_without_a_program(self) -> None:
        result = self.run_page(fenced("cmake", "find_package(kelvora)"))
        self.assertEqual(result.returncode, 1)
        self.assertIn("no program in the page", result.stderr)


if __name__ == "__main__":
    unittest.main()
