#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""
Runs the commands of the tool while calls fail: allocations, and calls of the system.

After each run, checks that the program has ended with a documented status and at most one line, and
that each output is either as before or complete. The same command without failures must then work.
"""

from __future__ import annotations

import argparse
import pathlib
import random
import re
import shutil
import sys
import tempfile
import time
from collections.abc import Iterator

from failing_program import (
    SANITIZER_STATUS,
    UNHARMED,
    FailingProgram,
    Outcome,
    Plan,
    choose_plans,
)
from tool_scenarios import DAMAGED, INPUTS, SCENARIOS, Scenario

Files = dict[str, bytes]

_SUMMARY = re.compile(r"kelvora: \d+ clusters in \d+ windows")

_REPEAT_EVERY = 10  # runs; a run that leaves other files is always repeated
_MOST_PROBLEMS = 20

# Without these calls, an unfinished file can neither be renamed nor removed.
_LEAVE_UNFINISHED = ("allocation", "rename", "link", "remove")


def read_files(directory: pathlib.Path) -> Files:
    """The content of all files of a directory."""
    return {
        str(path.relative_to(directory)): path.read_bytes()
        for path in sorted(directory.rglob("*"))
        if path.is_file()
    }


def write_files(directory: pathlib.Path, files: Files) -> None:
    """Make a directory that holds these files."""
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir()
    for name, content in files.items():
        path = directory / name
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(content)


def output_of(name: str) -> str:
    """The output of which this file is an incomplete version; otherwise the name."""
    return name.partition(".partial")[0]


def is_unfinished(name: str) -> bool:
    """Whether this is a file that has not got its name yet."""
    return pathlib.Path(name).name.startswith(".") and ".unfinished-" in name


class ScenarioRuns:
    """Runs one command many times, and collects what goes wrong."""

    def __init__(
        self,
        program: FailingProgram,
        scenario: Scenario,
        directory: pathlib.Path,
        inputs: pathlib.Path,
    ) -> None:
        self.program = program
        self.scenario = scenario
        self.directory = directory / "run"
        self.inputs = inputs
        self.input_files = read_files(inputs)
        self.arguments = scenario.command(inputs)
        self.problems: list[str] = []
        self.failing_runs = 0
        self.repeated_runs = 0

    def run(self, count: int, generator: random.Random, first_allocations: int) -> None:
        """Run the command about `count` times with failures."""
        self.right = self._run({}, UNHARMED)
        files = read_files(self.directory)
        self.expected = {name: files[name] for name in files if output_of(name) == name}
        # Of a command that cannot succeed, the whole output is what can be written.
        self.whole = {output_of(name): content for name, content in files.items()}
        self._check(UNHARMED, {}, self._run({}, UNHARMED))
        count = max(1, round(count * self.scenario.share))
        plans = choose_plans(self.right.calls, count, generator, first_allocations)
        for i, plan in enumerate(plans):
            # Half of the runs replace files.
            before = {name: b"old " * 200 for name in self.whole} if i % 2 else {}
            self._run_and_check(plan, before, i % _REPEAT_EVERY == 0)
            if len(self.problems) > _MOST_PROBLEMS:
                return
        if read_files(self.inputs) != self.input_files:
            self.problems.append(f"{self.scenario.name}: a file that is only read was changed")

    def _run(self, before: Files, plan: Plan) -> Outcome:
        write_files(self.directory, before)
        return self.program.run(plan, self.directory, self.arguments)

    def _run_and_check(self, plan: Plan, before: Files, is_repeated: bool) -> None:
        outcome = self._run(before, plan)
        self.failing_runs += outcome.failed > 0
        self._check(plan, before, outcome)
        left = read_files(self.directory).keys() - self.whole.keys()
        if left or is_repeated:
            self.repeated_runs += 1
            again = self.program.run(UNHARMED, self.directory, self.arguments)
            self._note(plan, self._problems_of_repetition(again))

    def _check(self, plan: Plan, before: Files, outcome: Outcome) -> None:
        self._note(plan, self._problems_of(plan, before, outcome), outcome)

    def _note(self, plan: Plan, problems: Iterator[str], outcome: Outcome | None = None) -> None:
        for problem in problems:
            text = f"{self.scenario.name}, {plan}: {problem}"
            if outcome is not None:
                text += f"\n    status {outcome.status}, standard error: {outcome.errors[-3000:]!r}"
            self.problems.append(f"{text}\n    {self.program.command(plan, self.arguments)}")

    def _problems_of_repetition(self, outcome: Outcome) -> Iterator[str]:
        files = read_files(self.directory)
        if outcome.status != self.right.status or not self._is_right_output(outcome.output):
            yield f"without failures, it then ended with {outcome.status}: {outcome.errors!r}"
        for name in self.expected:
            if not self._is_right(name, files):
                yield f"without failures, it then wrote another {name}"

    def _problems_of(self, plan: Plan, before: Files, outcome: Outcome) -> Iterator[str]:
        if outcome.status < 0:
            yield f"was ended by signal {-outcome.status}"
            return
        if outcome.status == SANITIZER_STATUS:
            yield "a sanitizer found an error"
            return
        is_unharmed = outcome.failed == 0 or plan.is_harmless
        if outcome.status != self.right.status and (is_unharmed or outcome.status != 1):
            yield f"ended with {outcome.status} instead of {self.right.status}"
        # To measure the memory, a file of the system is written. It may fail.
        is_lossy = plan.kind in ("close", "sync") and not self.scenario.is_measured
        if is_lossy and outcome.failed and outcome.status == 0:
            yield "succeeded although bytes may be lost"
        if outcome.left_open:
            yield f"left {outcome.left_open} files open"
        yield from self._problems_of_output(plan, outcome)
        yield from self._problems_of_errors(plan, outcome)
        yield from self._problems_of_files(plan, before, outcome)

    def _problems_of_output(self, plan: Plan, outcome: Outcome) -> Iterator[str]:
        if outcome.status == 0 or outcome.failed == 0:
            if not self._is_right_output(outcome.output):
                yield "standard output is not the right one"
        elif not self._is_beginning(plan, outcome.output, self.right.output):
            yield "standard output is not the beginning of the right one"

    def _problems_of_errors(self, plan: Plan, outcome: Outcome) -> Iterator[str]:
        if outcome.errors == self.right.errors and outcome.status == self.right.status:
            return
        if plan.kind == "write" and self.right.errors.startswith(outcome.errors):
            return  # Standard error itself may have failed.
        if outcome.status == 0 and self.scenario.comparable(
            outcome.errors
        ) != self.scenario.comparable(self.right.errors):
            yield "standard error is not the right one"
        lines = outcome.errors.decode(errors="replace").splitlines(keepends=True)
        if any(not line.startswith("kelvora: ") or not line.endswith("\n") for line in lines):
            yield "a line on standard error does not begin with 'kelvora: '"
        reasons = [line for line in lines if not _SUMMARY.match(line)]
        if outcome.status == 1 and len(reasons) != 1 and plan.kind != "write":
            yield f"there are {len(reasons)} lines with the reason"

    def _problems_of_files(self, plan: Plan, before: Files, outcome: Outcome) -> Iterator[str]:
        files = read_files(self.directory)
        for name in self.whole:
            if outcome.status == self.right.status == 0:
                if not self._is_right(name, files):
                    yield f"{name} is not the right one"
            elif files.get(name) != before.get(name) and not self._is_right(name, files):
                yield f"{name} is neither the old one nor the right one"
        for name in files.keys() - self.whole.keys():
            if output_of(name) in self.whole and outcome.status != 0:
                if not self._is_beginning(plan, files[name], self.whole[output_of(name)]):
                    yield f"{name} is not the beginning of the right one"
            elif not (is_unfinished(name) and plan.kind in _LEAVE_UNFINISHED):
                yield f"{name} was left behind"

    def _is_right(self, name: str, files: Files) -> bool:
        comparable = self.scenario.comparable
        right = self.expected.get(name)
        return right is not None and name in files and comparable(files[name]) == comparable(right)

    def _is_right_output(self, output: bytes) -> bool:
        comparable = self.scenario.comparable
        return comparable(output) == comparable(self.right.output)

    def _is_beginning(self, plan: Plan, content: bytes, whole: bytes) -> bool:
        # Up to a place that cannot be read, the results are as if the recording ended there.
        scenario = self.scenario
        is_comparable = not scenario.is_random and not scenario.is_measured
        return plan.kind == "read" or not is_comparable or whole.startswith(content)


def make_inputs(
    program: FailingProgram, directory: pathlib.Path, commands: dict[str, str]
) -> pathlib.Path:
    """The files that commands read, in a new directory."""
    inputs = directory / "inputs"
    inputs.mkdir()
    for arguments in commands.values():
        outcome = program.run(UNHARMED, inputs, arguments.split())
        if outcome.status != 0:
            raise SystemExit(f"{arguments}: {outcome.errors.decode()}")
    whole = inputs / "scene.evt3.raw"
    if whole.exists():
        (inputs / DAMAGED).write_bytes(whole.read_bytes()[:-1])
    return inputs


def main() -> int:
    """Run the scenarios and print what went wrong."""
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--shim", type=pathlib.Path, required=True)
    parser.add_argument("--runtime", type=pathlib.Path, help="runtime of the sanitizers")
    parser.add_argument("--program", type=pathlib.Path, required=True)
    parser.add_argument("--runs", type=int, default=60, help="runs of each command [60]")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="", help="run only commands whose name begins so")
    options = parser.parse_args()

    start = time.monotonic()
    scenarios = [one for one in SCENARIOS if one.name.startswith(options.only)]
    problems = 0
    failing_runs = 0
    with tempfile.TemporaryDirectory() as name, FailingProgram(
        options.shim, options.runtime, options.program
    ) as program:
        directory = pathlib.Path(name)
        is_any_read = any("@" in one.arguments for one in scenarios)
        inputs = make_inputs(program, directory, INPUTS if is_any_read else {})
        # Every command declares all options first.
        start_up = program.run(UNHARMED, inputs, ["--version"]).calls["allocation"]
        for scenario in scenarios:
            scenario_start = time.monotonic()
            runs = ScenarioRuns(program, scenario, directory, inputs)
            runs.run(options.runs, random.Random(f"{options.seed} {scenario.name}"), start_up)
            print(
                f"{scenario.name}: {runs.failing_runs} failing runs, {runs.repeated_runs} "
                f"repetitions, {len(runs.problems)} problems, "
                f"{time.monotonic() - scenario_start:.1f} s",
                flush=True,
            )
            print(*(f"  {problem}\n" for problem in runs.problems), sep="", end="", flush=True)
            problems += len(runs.problems)
            failing_runs += runs.failing_runs
    print(f"{failing_runs} failing runs in {time.monotonic() - start:.0f} s, {problems} problems")
    if not failing_runs:
        print("no call failed: was the shim loaded?")
    return 1 if problems or not failing_runs else 0


if __name__ == "__main__":
    sys.exit(main())
