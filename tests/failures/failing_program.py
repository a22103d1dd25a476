# SPDX-License-Identifier: MIT
"""Runs a program whose calls fail as planned."""

from __future__ import annotations

import dataclasses
import os
import pathlib
import random
import struct
import subprocess

KINDS = (
    "allocation",
    "thread",
    "open",
    "read",
    "write",
    "close",
    "sync",
    "rename",
    "link",
    "remove",
    "truncate",
    "mkdir",
)

EINTR = 4
EINVAL = 22

# The modes in which the calls of a kind are made to fail. EINTR: a signal arrived. EINVAL: the file
# system does not know this way of renaming.
MODES = {
    "allocation": ("once", "on"),
    "thread": ("once", "on"),
    "open": ("once", "on", f"once:{EINTR}"),
    "read": ("once", "on", "short", f"once:{EINTR}"),
    "write": ("once", "on", "short", "full", f"once:{EINTR}"),
    "close": ("once", "on"),
    "sync": ("once", "on"),
    "rename": ("once", "on", f"on:{EINVAL}"),
    "link": ("once", "on"),
    "remove": ("once", "on"),
    "truncate": ("once", "on"),
    "mkdir": ("once", "on"),
}

# The exit status of a program in which a sanitizer has found an error or a leak.
SANITIZER_STATUS = 23


@dataclasses.dataclass(frozen=True)
class Plan:
    """Which call fails, and how."""

    kind: str = ""
    mode: str = ""
    number: int = 0

    @property
    def is_harmless(self) -> bool:
        """Whether a program has to carry on as if nothing had happened."""
        return self.mode == "short" or self.mode.endswith(f":{EINTR}")

    def __str__(self) -> str:
        if not self.kind:
            return "count"
        mode, _, error = self.mode.partition(":")
        return f"{self.kind}:{mode}:{self.number}" + (f":{error}" if error else "")


UNHARMED = Plan()


@dataclasses.dataclass(frozen=True)
class Outcome:
    """The end of a run."""

    status: int  # negative: the number of a signal
    failed: int  # calls that failed
    left_open: int  # files that were still open at the end
    calls: dict[str, int]
    output: bytes
    errors: bytes


def environment(shim: pathlib.Path, runtime: pathlib.Path | None, leaks: bool = True) -> dict:
    """The variables that load the shim, in front of the runtime of sanitizers if there is one."""
    preloaded = [str(shim)] + ([str(runtime)] if runtime else [])
    return {
        "LD_PRELOAD": ":".join(preloaded),
        "ASAN_OPTIONS": "verify_asan_link_order=0:allocator_may_return_null=1:"
        f"exitcode={SANITIZER_STATUS}:detect_leaks={int(leaks)}",
        "UBSAN_OPTIONS": f"print_stacktrace=1:exitcode={SANITIZER_STATUS}",
    }


class FailingProgram:
    """
    A program that is loaded once and run many times.

    Each run is a copy of the loaded process, so that it takes as long as the program itself.
    """

    def __init__(
        self, shim: pathlib.Path, runtime: pathlib.Path | None, program: pathlib.Path
    ) -> None:
        request_out, self._requests = os.pipe()
        self._answers, answer_in = os.pipe()
        self._variables = environment(shim, runtime)
        self._program = program
        self._process = subprocess.Popen(
            [program],
            env={
                **os.environ,
                **self._variables,
                "KELVORA_FAILURES_SERVER": f"{request_out},{answer_in}",
            },
            pass_fds=(request_out, answer_in),
            stdin=subprocess.DEVNULL,
        )
        os.close(request_out)
        os.close(answer_in)

    def __enter__(self) -> FailingProgram:
        return self

    def __exit__(self, *_: object) -> None:
        os.close(self._requests)
        os.close(self._answers)
        self._process.wait()

    def run(self, plan: Plan, directory: pathlib.Path, arguments: list[str]) -> Outcome:
        """Run the program in a directory. Its output goes to files beside the directory."""
        output, errors = directory.with_name("stdout"), directory.with_name("stderr")
        texts = [str(plan), str(directory), str(output), str(errors), *arguments]
        request = b"".join(os.fsencode(text) + b"\0" for text in texts)
        os.write(self._requests, struct.pack("=I", len(request)) + request)
        answer = struct.Struct(f"={3 + len(KINDS)}q")
        numbers = os.read(self._answers, answer.size)
        if len(numbers) != answer.size:
            raise RuntimeError("the program that is run many times has died")
        status, failed, left_open, *calls = answer.unpack(numbers)
        return Outcome(
            os.waitstatus_to_exitcode(status),
            failed,
            left_open,
            dict(zip(KINDS, calls)),
            output.read_bytes(),
            errors.read_bytes(),
        )

    def command(self, plan: Plan, arguments: list[str]) -> str:
        """A line for the shell that repeats a run."""
        variables = {**self._variables, "KELVORA_FAILURES": str(plan)}
        words = [f"{name}={value}" for name, value in variables.items()]
        return " ".join([*words, str(self._program), *arguments])


def choose_plans(
    calls: dict[str, int], count: int, generator: random.Random, first_allocations: int = 0
) -> list[Plan]:
    """
    Choose `count` failures of a run that makes these calls.

    Half of them are failures of system calls, if there are so many. They are spread evenly over the
    time of the run. Of the first allocations, only a few fail.
    """
    pairs = [(kind, mode) for kind in KINDS if calls[kind] for mode in MODES[kind]]
    system = [pair for pair in pairs if pair[0] != "allocation"]
    plans = _spread(system, calls, (count + 1) // 2, generator)
    rest = count - len(plans)
    first = min(first_allocations, calls["allocation"])
    modes = MODES["allocation"]
    for i, mode in enumerate(modes):
        share = (rest + i) // len(modes)
        early = share if first == calls["allocation"] else share // 4
        numbers = _numbers(first, early, generator)
        late = _numbers(calls["allocation"] - first, share - early, generator)
        numbers += [first + number for number in late]
        plans += [Plan("allocation", mode, number) for number in numbers]
    return plans


def _spread(
    pairs: list[tuple[str, str]], calls: dict[str, int], count: int, generator: random.Random
) -> list[Plan]:
    """Share failures among kinds and modes. A kind with few calls leaves its rest to the others."""
    plans: list[Plan] = []
    if count < len(pairs):
        pairs = generator.sample(pairs, count)
    by_calls = sorted(pairs, key=lambda pair: calls[pair[0]])
    for i, (kind, mode) in enumerate(by_calls):
        share = (count - len(plans)) // (len(by_calls) - i)
        plans += [Plan(kind, mode, number) for number in _numbers(calls[kind], share, generator)]
    return plans


def _numbers(last: int, count: int, generator: random.Random) -> list[int]:
    if count >= last:
        return list(range(1, last + 1))
    # One number from each of `count` equal stretches.
    cuts = [i * last // max(count, 1) for i in range(count + 1)]
    return [generator.randint(low + 1, high) for low, high in zip(cuts, cuts[1:])]
