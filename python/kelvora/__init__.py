# SPDX-License-Identifier: MIT
"""Finds clusters of activity in the output of event cameras."""

from kelvora._cluster_recordings import cluster_recordings
from kelvora._errors import RecordingError
from kelvora._kelvora import (
    EVENT_DTYPE,
    CentroidClusterer,
    DensityClusterer,
    GridClusterer,
    RecordingReader,
    Tracker,
    __version__,
    dbscan,
    kmeans,
    simulate,
)
from kelvora._recordings import read, write
from kelvora._worker import ClusteredRecording

__all__ = [
    "EVENT_DTYPE",
    "CentroidClusterer",
    "ClusteredRecording",
    "DensityClusterer",
    "GridClusterer",
    "RecordingError",
    "RecordingReader",
    "Tracker",
    "__version__",
    "cluster_recordings",
    "dbscan",
    "kmeans",
    "read",
    "simulate",
    "write",
]
