# SPDX-License-Identifier: MIT
"""Exceptions."""

import re


# Of `cluster_recordings`, where they differ from the options of the tool in more than dashes.
_KEYWORDS = {
    "window": "window_us",
    "from": "from_us",
    "to": "to_us",
    "time_length": "time_length_us",
    "clusters": "k",
    "track": "tracking",
}


class RecordingError(Exception):
    """
    A recording that cannot be read, or not to its end.

    The message is one line that says which file, what is wrong, where, and what to do.

    Attributes
    ----------
    file : str
        Path of the recording, as it was given.
    problem : str
        What is wrong, as the rest of a sentence that begins with the file.
    place : str
        Byte or line; empty if the whole file is meant.
    remedy : str
        What to do about it.
    """

    def __init__(self, file: str, problem: str, place: str, remedy: str) -> None:
        # Exceptions are sent from process to process by these arguments.
        super().__init__(file, problem, place, remedy)
        self.file = file
        self.problem = problem
        self.place = place
        self.remedy = in_python(remedy)

    def __str__(self) -> str:
        return ", ".join(
            part for part in (f"{self.file}: {self.problem}", self.place, self.remedy) if part
        )


def in_python(text: str) -> str:
    """Name keyword arguments where a text names options of the command line."""

    def keyword(match: re.Match[str]) -> str:
        name = match[1].replace("-", "_")
        return _KEYWORDS.get(name, name)

    return re.sub(r"--([a-z][a-z-]*[a-z])", keyword, text)
