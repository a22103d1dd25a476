# SPDX-License-Identifier: MIT
import os
from collections.abc import Mapping
from typing import Any, Literal

import numpy as np
from numpy.typing import ArrayLike, NDArray

__version__: str

#: Events as the library holds them: x, y, p and t, in 16 bytes.
EVENT_DTYPE: np.dtype[np.void]

#: Rows of clusters.
ROW_DTYPE: np.dtype[np.void]

#: The columns that tracking adds to rows.
TRACK_DTYPE: np.dtype[np.void]

_Dim = Literal[2, 3]
_Method = Literal["grid", "density", "centroid"]
_Polarity = Literal["all", "on", "off"]
_Precision = Literal["float", "double"]
_TimeUnit = Literal["s", "ms", "us", "ns"]

class GridClusterer:
    def __init__(
        self,
        width: int,
        height: int,
        *,
        cell_width: int = 5,
        cell_height: int = 5,
        min_cluster_size: int = 15,
        max_cluster_size: int = 10000,
        activation_threshold: int = 2,
        count_every_event: bool = False,
        polarity: Literal["all", "on", "off", "separate"] = "all",
    ) -> None: ...
    def process(
        self,
        events: NDArray[np.void] | None = None,
        *,
        x: ArrayLike | None = None,
        y: ArrayLike | None = None,
        t: ArrayLike | None = None,
        p: ArrayLike | None = None,
        time_unit: _TimeUnit | None = None,
    ) -> None: ...
    def generate(self, timestamp: int) -> NDArray[np.void]: ...
    def active_map(self) -> NDArray[np.uint8]: ...
    def reset(self) -> None: ...
    @property
    def dropped(self) -> int: ...
    @property
    def clamped(self) -> int: ...

class DensityClusterer:
    def __init__(
        self,
        width: int,
        height: int,
        *,
        eps: float = 10.0,
        min_pts: int = 10,
        jobs: int = 1,
        dim: _Dim = 2,
        scale_x: float = 1.0,
        scale_y: float = 1.0,
        us_per_pixel: float = 1000.0,
        scale_time: float | None = None,
        capacity: int | None = None,
        time_length_us: int | None = None,
        precision: _Precision = "float",
        keep_zero_boxes: bool = False,
        polarity: _Polarity = "all",
    ) -> None: ...
    def process(
        self,
        events: NDArray[np.void] | None = None,
        *,
        x: ArrayLike | None = None,
        y: ArrayLike | None = None,
        t: ArrayLike | None = None,
        p: ArrayLike | None = None,
        time_unit: _TimeUnit | None = None,
    ) -> None: ...
    def generate(self, timestamp: int) -> NDArray[np.void]: ...
    def points(self) -> list[NDArray[np.float64]]: ...
    def labels(self) -> NDArray[np.int64]: ...
    def reset(self) -> None: ...
    @property
    def dropped(self) -> int: ...
    @property
    def clamped(self) -> int: ...

class CentroidClusterer:
    def __init__(
        self,
        width: int,
        height: int,
        k: int,
        *,
        max_iter: int = 50,
        tol: float = 1.0,
        dim: _Dim = 2,
        scale_x: float = 1.0,
        scale_y: float = 1.0,
        us_per_pixel: float = 1000.0,
        scale_time: float | None = None,
        capacity: int | None = None,
        time_length_us: int | None = None,
        precision: _Precision = "float",
        keep_zero_boxes: bool = False,
        polarity: _Polarity = "all",
    ) -> None: ...
    def process(
        self,
        events: NDArray[np.void] | None = None,
        *,
        x: ArrayLike | None = None,
        y: ArrayLike | None = None,
        t: ArrayLike | None = None,
        p: ArrayLike | None = None,
        time_unit: _TimeUnit | None = None,
    ) -> None: ...
    def generate(self, timestamp: int) -> NDArray[np.void]: ...
    def points(self) -> list[NDArray[np.float64]]: ...
    def labels(self) -> NDArray[np.int64]: ...
    def centroids(self) -> NDArray[np.float64]: ...
    def sizes(self) -> NDArray[np.int64]: ...
    def reset(self) -> None: ...
    @property
    def dropped(self) -> int: ...
    @property
    def clamped(self) -> int: ...

class Tracker:
    def __init__(
        self,
        *,
        max_distance: float = 20.0,
        max_size_change: float = 15.0,
        max_missed: int = 10,
        min_hits: int = 3,
    ) -> None: ...
    def update(self, clusters: NDArray[np.void]) -> NDArray[np.int64]: ...
    def tracks(self) -> NDArray[np.void]: ...
    def reset(self) -> None: ...

def dbscan(points: ArrayLike, eps: float, min_pts: int, jobs: int = 1) -> NDArray[np.int64]: ...
def kmeans(
    points: ArrayLike, k: int, *, max_iter: int = 100, tol: float = 1e-4
) -> tuple[NDArray[np.int64], NDArray[np.floating[Any]]]: ...

_Path = str | bytes | os.PathLike[str] | os.PathLike[bytes]

class RecordingReader:
    def __iter__(self) -> RecordingReader: ...
    def __next__(self) -> NDArray[np.void]: ...
    @property
    def format(self) -> str: ...
    @property
    def sensor(self) -> tuple[int, int] | None: ...
    @property
    def dropped(self) -> int: ...
    @property
    def clamped(self) -> int: ...
    @property
    def skipped_words(self) -> int: ...

def open_recording(
    path: _Path,
    *,
    sensor: tuple[int, int] | None,
    input_format: str | None,
    columns: str | None,
    time_unit: str | None,
    chunk_events: int,
    clean: bool,
) -> RecordingReader: ...
def write_recording(
    path: _Path,
    events: NDArray[np.void],
    *,
    sensor: tuple[int, int] | None,
    output_format: str | None,
    time_unit: _TimeUnit | None,
    overwrite: bool,
) -> None: ...
def simulate(
    *,
    sensor: tuple[int, int] = (640, 480),
    duration_us: int = 2_000_000,
    truth_interval_us: int = 10_000,
    seed: int = 7,
    discs: int | None = None,
    bars: int | None = None,
    polygons: int | None = None,
    lights: int = 1,
    light_frequency_hz: float = 100.0,
    noise_rate_hz: float = 0.1,
    hot_pixels: int = 4,
    hot_pixel_rate_hz: float = 500.0,
    contrast_threshold: float = 0.2,
    threshold_spread: float = 0.03,
) -> tuple[NDArray[np.void], NDArray[np.void]]: ...
def parameters() -> list[dict[str, Any]]: ...
def check_clustering(keywords: Mapping[str, Any]) -> None: ...
def cluster_recording(path: _Path, keywords: Mapping[str, Any]) -> dict[str, Any]: ...
