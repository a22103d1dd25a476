# SPDX-License-Identifier: MIT
"""Simulated scenes."""

import csv
import os
import signal
import threading

import numpy as np
import pytest

import kelvora
from recordings import run_tool
from waiting import no_forced_thread_switches, releases_the_gil

SMALL = {"sensor": (160, 120), "duration_us": 100_000}


def test_same_arguments_give_the_same_events():
    events, truth = kelvora.simulate(**SMALL)
    again, truth_again = kelvora.simulate(**SMALL)
    other, _ = kelvora.simulate(seed=8, **SMALL)
    assert events.dtype == kelvora.EVENT_DTYPE
    assert np.array_equal(events, again)
    assert np.array_equal(truth, truth_again)
    assert not np.array_equal(events, other)
    assert np.all(np.diff(events["t"]) >= 0)
    assert events["x"].max() < 160 and events["y"].max() < 120 and events["t"][-1] < 100_000


def test_scene_is_the_same_as_in_the_tool(tmp_path):
    options = {
        "discs": 2,
        "bars": 1,
        "polygons": 0,
        "lights": 2,
        "light_frequency_hz": 50.5,
        "noise_rate_hz": 0.7,
    }
    options |= {
        "hot_pixels": 3,
        "hot_pixel_rate_hz": 900.0,
        "contrast_threshold": 0.25,
        "threshold_spread": 0.05,
    }
    events, truth = kelvora.simulate(
        sensor=(320, 200), duration_us=90_000, truth_interval_us=20_000, seed=3, **options
    )

    arguments = [
        "--sensor",
        "320x200",
        "--duration",
        "90ms",
        "--truth-interval",
        "20ms",
        "--seed",
        3,
    ]
    for name, value in options.items():
        arguments += ["--" + name.removesuffix("_hz").replace("_", "-"), value]
    run_tool("simulate", "-o", tmp_path / "a.bin", "--truth", tmp_path / "truth.csv", *arguments)

    assert np.array_equal(next(kelvora.read(tmp_path / "a.bin")), events)
    with open(tmp_path / "truth.csv", newline="") as file:
        rows = list(csv.reader(file))[1:]
    assert len(rows) == len(truth) == 4 * 5
    for row, (time_us, id_, kind, x, y, width, height, visibility, moving, speed) in zip(
        rows, truth.tolist()
    ):
        assert row[:3] == [str(time_us), str(id_), kind]
        numbers = [float(field) for field in row[3:]]
        assert numbers[:6] == pytest.approx([x, y, width, height, visibility, moving], abs=0.0051)
        assert numbers[6] == pytest.approx(speed, abs=0.051)


def test_equal_events_have_equal_bytes():
    # The bytes between the polarity and the time are padding.
    events, _ = kelvora.simulate(sensor=(320, 240), duration_us=50_000)
    plain = np.zeros(len(events), kelvora.EVENT_DTYPE)
    for name in events.dtype.names:
        plain[name] = events[name]
    assert events.tobytes() == plain.tobytes()


def test_kinds_compare_with_text():
    _, truth = kelvora.simulate(discs=1, bars=1, polygons=1, lights=1, **SMALL)
    first = truth[truth["timestamp"] == truth["timestamp"][0]]
    assert first["kind"].tolist() == ["light", "disc", "bar", "polygon"]
    assert np.count_nonzero(truth["kind"] == "polygon") == 10


@pytest.mark.parametrize(
    "error, options",
    [
        (ValueError, {"sensor": (15, 120)}),
        (ValueError, {"duration_us": 0}),
        (ValueError, {"truth_interval_us": 99}),
        (ValueError, {"discs": 101}),
        (ValueError, {"noise_rate_hz": float("nan")}),
        (TypeError, {"seed": -1}),
        (TypeError, {"seed": 1.5}),
        (TypeError, {"sensor": 640}),
        (TypeError, {"stars": 3}),
    ],
)
def test_bad_arguments_are_refused(error, options):
    with pytest.raises(
        error, match="width" if "sensor" in options and error is ValueError else next(iter(options))
    ):
        kelvora.simulate(**options)


def test_simulation_releases_the_gil():
    # In a single step: the GIL is released between steps in any case.
    assert releases_the_gil(
        lambda: kelvora.simulate(duration_us=100_000, truth_interval_us=1_000_000)
    )


def test_ctrl_c_ends_a_simulation():
    is_blocked = threading.Lock()
    is_blocked.acquire()

    def interrupt():
        with is_blocked:
            os.kill(os.getpid(), signal.SIGINT)

    thread = threading.Thread(target=interrupt)
    # The thread goes on once the simulation has released the GIL, not earlier.
    with no_forced_thread_switches():
        thread.start()
        is_blocked.release()
        with pytest.raises(KeyboardInterrupt):
            kelvora.simulate(duration_us=10**15, sensor=(64, 64))
    thread.join()
