# SPDX-License-Identifier: MIT
"""Exceptions."""


class RecordingError(Exception):
    """
    Raised for a recording that cannot be read, or only in part.

    The message is one line with the file, the problem, its place, and a remedy.

    Attributes
    ----------
    file : str
        Path of the recording, as given.
    problem : str
        The problem, as a sentence whose subject is the file.
    place : str
        Byte or line; empty for the whole file.
    remedy : str
        How to fix the problem.
    """

    def __init__(self, file: str, problem: str, place: str, remedy: str) -> None:
        # Exceptions are pickled with these arguments.
        super().__init__(file, problem, place, remedy)
        self.file = file
        self.problem = problem
        self.place = place
        self.remedy = remedy

    def __str__(self) -> str:
        return ", ".join(
            part for part in (f"{self.file}: {self.problem}", self.place, self.remedy) if part
        )
