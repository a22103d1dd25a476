# SPDX-License-Identifier: MIT
"""Runs the snippets of Markdown pages and headers. Each is run, or gives a reason why not.

- ``cpp`` with a main function is a program, compiled with warnings as errors, and run. Without, it
  is the body of a main function, behind the declarations that its mark gives.
- ``cmake`` contains the lines of a project after ``project``, to build the page's first program,
  main.cpp.
- ``sh`` runs line by line until one fails, in a directory with a recording, ``recording.raw``, and
  with the tool on the path. All snippets share the directory, in their order.
- ``python`` is run by the tests of the Python package.
"""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
from typing import Any

from snippets import RUN_ELSEWHERE, PageError, Snippet, snippets_of

FRAGMENT = """#include <cstdio>
#include <iostream>
#include <kelvora/kelvora.hpp>
#include <vector>

int main() {{
{declarations}
#line {line} "{page}"
{text}
}}
"""

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(page LANGUAGES CXX)
"""

OWN_LINES = """find_package(kelvora CONFIG REQUIRED)
add_executable({name} {name}.cpp)
target_link_libraries({name} PRIVATE kelvora::kelvora)
{options}"""

WARNINGS = "target_compile_options({name} PRIVATE -Wall -Wextra -Werror)\n"


def run(command: list[str], place: str, **options: Any) -> None:
    """Run a command; its output is shown if it fails."""
    result = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    if result.returncode != 0:
        output = result.stdout + result.stderr
        raise PageError(f"{place}: {command[0]} ended with {result.returncode}\n{output}")


def source_of(snippet: Snippet) -> str:
    """Turn a snippet into a whole program. Compilers then report the page's lines."""
    if snippet.is_program:
        return f'#line {snippet.line + 1} "{snippet.page}"\n{snippet.text}'
    return FRAGMENT.format(
        declarations=snippet.declarations,
        line=snippet.line + 1,
        page=snippet.page,
        text=snippet.text,
    )


def write_project(
    directory: pathlib.Path, programs: list[Snippet], lines: list[Snippet]
) -> list[str]:
    """Write a project that builds the snippets, and return the names of its programs."""
    project = PROJECT
    names = []
    for number, snippet in enumerate(programs):
        name = f"{snippet.page.stem}_{snippet.line}"
        (directory / f"{name}.cpp").write_text(source_of(snippet), encoding="utf-8")
        options = WARNINGS.format(name=name) if snippet.is_program else ""
        project += OWN_LINES.format(name=name, options=options)
        names.append(name)
        if number == 0 and lines:
            shutil.copy(directory / f"{name}.cpp", directory / "main.cpp")
    project += "".join(snippet.text for snippet in lines)
    (directory / "CMakeLists.txt").write_text(project, encoding="utf-8")
    return names


def run_programs(
    directory: pathlib.Path, pages: str, snippets: list[Snippet], cmake: list[str]
) -> None:
    """Compile the C++ snippets with the pages' lines for CMake, and run them."""
    # Whole programs first: the page's lines are for one.
    programs = sorted((s for s in snippets if s.language == "cpp"), key=lambda s: not s.is_program)
    lines = [snippet for snippet in snippets if snippet.language == "cmake"]
    if lines and not (programs and programs[0].is_program):
        raise PageError(f"{lines[0].place}: lines for CMake, but no program in the page")
    if not programs:
        return
    names = write_project(directory, programs, lines)
    build = directory / "build"
    run([*cmake, "-S", str(directory), "-B", str(build)], pages)
    run(["cmake", "--build", str(build), "--parallel", "2"], pages)
    for name, snippet in zip(names, programs):
        run([str(build / name)], snippet.place)


def run_shell(directory: pathlib.Path, snippets: list[Snippet], tool: pathlib.Path) -> None:
    """Run the snippets for the shell."""
    commands = [snippet for snippet in snippets if snippet.language == "sh"]
    if not commands:
        return
    environment = dict(os.environ, PATH=f"{tool.parent}:{os.environ['PATH']}")
    recording = ["kelvora", "simulate", "--output", "recording.raw", "--duration", "300ms"]
    run(recording, "the recording", cwd=directory, env=environment)
    bash = ["bash", "-euo", "pipefail", "-c"]
    for snippet in commands:
        run([*bash, snippet.text], snippet.place, cwd=directory, env=environment)


def fate_of(snippet: Snippet) -> str:
    """Describe how a snippet is handled."""
    if snippet.reason:
        return f"not run: {snippet.reason}"
    if snippet.language in RUN_ELSEWHERE:
        return "run by the tests of the Python package"
    return "run"


def main() -> int:
    """Run the pages given on the command line."""
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("pages", type=pathlib.Path, nargs="+")
    parser.add_argument("--directory", type=pathlib.Path, required=True, help="is emptied first")
    parser.add_argument("--tool", type=pathlib.Path, required=True)
    parser.add_argument(
        "--cmake", nargs=argparse.REMAINDER, required=True, help="and options to configure with"
    )
    arguments = parser.parse_args()
    shutil.rmtree(arguments.directory, ignore_errors=True)
    arguments.directory.mkdir(parents=True)
    try:
        snippets = [snippet for page in arguments.pages for snippet in snippets_of(page)]
        for snippet in snippets:
            print(f"{snippet.place}: {snippet.language}, {fate_of(snippet)}")
        to_run = [snippet for snippet in snippets if not snippet.reason]
        pages = ", ".join(str(page) for page in arguments.pages)
        run_programs(arguments.directory, pages, to_run, arguments.cmake)
        run_shell(arguments.directory, to_run, arguments.tool)
    except PageError as error:
        print(error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
