# SPDX-License-Identifier: MIT
"""Damaged and hostile files: every command ends soon, with little memory, and with a line to read.

A file may cost 64 MB of memory and 32 bytes per byte, and a second of processor time and a
microsecond per byte, or is refused with a line that names the option which allows it. Time may be
ten times as much here, as machines differ. Nothing depends on the time of a clock on the wall.
"""

import os
import resource
import subprocess

import numpy as np
import pytest

from recordings import RECORD, TOOL

# Clustering them in square time would take much longer than allowed.
HOT_EVENTS = 100_000
BLOCK_EVENTS = 60_000
MEGABYTE = 1_000_000
IS_SANITIZED = "LD_PRELOAD" in os.environ
TIME_FACTOR = 100 if IS_SANITIZED else 10
RANDOM = np.random.default_rng(1)


# Formats


def evt3(events, *, geometry="640x480", header=None):
    """An EVT3 recording of events (t, x, y, p), each with all of its words."""
    t, x, y, p = (np.asarray(column, dtype=np.uint32) for column in np.transpose(events))
    words = np.empty((len(t), 4), dtype="<u2")
    words[:, 0] = 0x8000 | (t >> 12) & 0xFFF
    words[:, 1] = 0x6000 | t & 0xFFF
    words[:, 2] = y & 0x7FF
    words[:, 3] = 0x2000 | (p & 1) << 11 | x & 0x7FF
    return (evt3_header(geometry) if header is None else header) + words.tobytes()


def evt3_header(geometry="640x480"):
    return f"% evt 3.0\n% geometry {geometry}\n% end\n".encode()


def evt3_words(*words, times=1):
    return np.tile(np.array(words, dtype="<u2"), times).tobytes()


def evt2(events, *, geometry="640x480"):
    """An EVT2 recording of events, each with the upper part of its time."""
    t, x, y, p = (np.asarray(column, dtype=np.uint32) for column in np.transpose(events))
    words = np.empty((len(t), 2), dtype="<u4")
    words[:, 0] = 0x8 << 28 | t >> 6
    words[:, 1] = (p & 1) << 28 | (t & 0x3F) << 22 | (x & 0x7FF) << 11 | y & 0x7FF
    return evt2_header(geometry) + words.tobytes()


def evt2_header(geometry="640x480"):
    return f"% evt 2.0\n% geometry {geometry}\n% end\n".encode()


def records(events):
    table = np.zeros(len(events), RECORD)
    for name, column in zip("txyp", np.transpose(np.asarray(events, dtype=np.uint64))):
        table[name] = column
    return table.tobytes()


def text(events, *, size="640 480"):
    lines = [size, *(f"{t} {x} {y} {p}" for t, x, y, p in events)]
    return "\n".join(lines).encode() + b"\n"


# Events


def hot_pixel(count=HOT_EVENTS):
    times = np.arange(count) * 10_000 // count
    return np.stack([times, np.full(count, 300), np.full(count, 200), np.arange(count) % 2], axis=1)


def block(side, count=BLOCK_EVENTS):
    events = hot_pixel(count)
    events[:, 1] += RANDOM.integers(side, size=count)
    events[:, 2] += RANDOM.integers(side, size=count)
    return events


def standing_clock(count):
    events = block(200, count)
    events[:, 0] = 5000
    return events


def two_hot_pixels():
    events = hot_pixel()
    events[::2, 1] += 9
    return events


def separate_windows(count=100_000):
    events = hot_pixel(count)
    events[:, 0] = np.arange(count, dtype=np.int64) * 10_000 % 2**24
    events[:, 0].sort()
    return events


def checkerboard():
    """As many clusters as possible in several windows, to be tracked."""
    x, y = np.meshgrid(np.arange(0, 620, 20), np.arange(0, 460, 20))
    places = np.stack([x.ravel(), y.ravel()], axis=1).repeat(2, axis=0)
    places[1::2, 0] += 1
    windows = [np.column_stack([np.full(len(places), time), places, np.ones(len(places), int)])
               for time in range(1000, 200_000, 10_000)]
    return np.concatenate(windows)


BACKWARDS = hot_pixel()[::-1]
FAR_JUMPS = [(0 if i % 2 else 2**62, i % 640, i % 480, 1) for i in range(40_000)]
OFF_SENSOR = [(i, 2000, 2000, 1) for i in range(40_000)]

# Recordings: content, and further options to read it.

SIZE = ["--sensor", "640x480"]
AS_TEXT = ["--input-format", "text", *SIZE]

RECORDINGS = {
    "huge-geometry.evt3.raw": (evt3([(1, 5, 5, 1)], geometry="65535x65535"), []),
    "huge-geometry.evt2.raw": (evt2([(1, 5, 5, 1)], geometry="65535x65535"), []),
    "huge-format.raw": (b"% format EVT3;height=65535;width=65535\n% end\n" + evt3_words(0x8000), []),
    "huge-size.txt": (text([(1, 65534, 65534, 1)], size="65535 65535"), []),
    "wide-geometry.raw": (evt3([(1, 5, 5, 1)], geometry="65535x1"), []),
    "impossible-geometry.raw": (evt3([(1, 5, 5, 1)], geometry="99999999999999999999x1"), SIZE),
    "standing-clock.evt3.raw": (evt3(standing_clock(125_000)), []),
    "standing-clock-short.raw": (
        evt3_header() + evt3_words(0x8000, 0x6001, 0x0005) + evt3_words(0x2005, times=500_000), []),
    "standing-clock-vectors.raw": (
        evt3_header() + evt3_words(0x8000, 0x6001)
        + evt3_words(0x0005, 0x3005, 0x4FFF, 0x4FFF, 0x4FFF, times=100_000), []),
    "standing-clock.evt2.raw": (
        evt2_header() + np.full(250_000, 0x10000000 | 300 << 11 | 200, "<u4").tobytes(), []),
    "standing-clock.bin": (records(standing_clock(62_500)), SIZE),
    "standing-clock.txt": (text([(7, 300, 200, 1)] * 80_000), []),
    "hot-pixel.evt3.raw": (evt3(hot_pixel()), []),
    "hot-pixel.evt2.raw": (evt2(hot_pixel()), []),
    "hot-pixel.bin": (records(hot_pixel()), SIZE),
    "hot-pixel.txt": (text(hot_pixel()), []),
    "two-hot-pixels.raw": (evt3(two_hot_pixels()), []),
    "block-4.raw": (evt3(block(4)), []),
    "block-8.raw": (evt3(block(8)), []),
    "block-16.raw": (evt3(block(16)), []),
    "block-40.raw": (evt3(block(40)), []),
    "checkerboard.raw": (evt2(checkerboard()), []),
    "many-windows.raw": (evt2(separate_windows(), geometry="2000x2000"), []),
    "endless-header.raw": (b"% evt 3.0\n" + b"% comment\n" * 100_000, SIZE),
    "endless-header-line.raw": (b"% evt 3.0\n% " + b"a" * MEGABYTE, SIZE),
    "header-alone.raw": (b"% evt 3.0\n% geometry 640x480\n% end\n", []),
    "endless-comments.txt": (b"# comment\n" * 100_000, AS_TEXT),
    "endless-line.txt": (b"1" * MEGABYTE, AS_TEXT),
    "endless-line-of-letters.txt": (b"a" * MEGABYTE, AS_TEXT),
    "million-columns.txt": (b"1 " * MEGABYTE, AS_TEXT),
    "many-columns.txt": (b"1 2 3 1\n" + b"1 " * 30_000 + b"\n", AS_TEXT),
    "empty-lines.txt": (b"\n" * MEGABYTE, AS_TEXT),
    "zeros.bin": (bytes(MEGABYTE), SIZE),
    "zeros.evt3.raw": (evt3_header() + bytes(MEGABYTE), []),
    "noise.bin": (RANDOM.bytes(MEGABYTE // 16 * 16), SIZE),
    "noise.evt3.raw": (evt3_header() + RANDOM.bytes(MEGABYTE), []),
    "noise.evt2.raw": (evt2_header() + RANDOM.bytes(MEGABYTE), []),
    "noise.txt": (RANDOM.bytes(MEGABYTE // 10), AS_TEXT),
    "unknown-words.raw": (evt3_header() + evt3_words(0xE123, 0x1FFF, times=250_000), []),
    "triggers.raw": (evt3_header() + evt3_words(0x8001, 0x6001, 0xA001, times=150_000), []),
    "truncated-header.raw": (evt3_header()[:15], SIZE),
    "truncated-word.evt3.raw": (evt3(hot_pixel(1000))[:-1], []),
    "truncated-word.evt2.raw": (evt2(hot_pixel(1000))[:-3], []),
    "truncated-record.bin": (records(hot_pixel(1000))[:-7], SIZE),
    "truncated-line.txt": (text(hot_pixel(1000))[:-4], []),
    "empty.raw": (b"", SIZE),
    "single-byte.raw": (b"%", SIZE),
    "backwards.evt2.raw": (evt2(BACKWARDS), []),
    "far-jumps.bin": (records(FAR_JUMPS), SIZE),
    "far-jumps.txt": (text(FAR_JUMPS), []),
    "latest-time.txt": (b"9223372036854775807 1 1 1\n9223372036854775808 1 1 1\n", AS_TEXT),
    "strange-numbers.txt": (b"1e300 nan -1 inf\n", AS_TEXT),
    "largest-fields.bin": (b"\xff" * 160_000, SIZE),
    "off-sensor.raw": (evt3(OFF_SENSOR), []),
}

# Tables: the truth, and the clusters.

HEADER = "timestamp_us,id,x,y,width,height\n"
TRACKS = "timestamp_us,x,y,width,height,track_id\n"
IDS = int(os.environ.get("KELVORA_TEST_IDS", 100_000))


def truth_of(count, place="{0},0,10,10"):
    return HEADER + "".join(f"1000,{i},{place.format(20 * i)}\n" for i in range(1, count + 1))


def tracks_of(count, place="{0},0,10,10"):
    return TRACKS + "".join(f"1000,{place.format(20 * i)},{i}\n" for i in range(1, count + 1))


SOME_TRUTH = truth_of(3)
SOME_TRACKS = tracks_of(3)
NESTED = '{"timestamp_us": 1, "x": ' + "[" * 30_000 + "]" * 30_000 + "}\n"
MANY_NAMES = "timestamp_us,id,x,y,width,height," + ",".join(f"c{i}" for i in range(9000)) + "\n"

TABLES = {
    "many-ids": (truth_of(IDS), tracks_of(IDS)),
    "many-times": (HEADER + "".join(f"{i},{i},0,0,9,9\n" for i in range(IDS)),
                   TRACKS + "".join(f"{i},0,0,9,9,{i + 1}\n" for i in range(IDS))),
    "same-place": (truth_of(3000, "0,0,9,9"), tracks_of(3000, "0,0,9,9")),
    "stacked": (truth_of(3000, "0,{0},9,9"), tracks_of(3000, "0,{0},9,9")),
    "chain": (HEADER + "".join(f"1,{i},{3 * i},0,10,10\n" for i in range(3000)),
              TRACKS + "".join(f"1,{3 * i},0,10,10,{i + 1}\n" for i in range(3000))),
    "deep-json-clusters": (SOME_TRUTH, NESTED),
    "deep-json-truth": (NESTED, SOME_TRACKS),
    "unclosed-json": (SOME_TRUTH, '{"timestamp_us": ' + "[" * 60_000),
    "many-members": (SOME_TRUTH,
                     ("{" + ", ".join(f'"m{i}": {i}' for i in range(4000)) + "}\n") * 20),
    "many-columns": (MANY_NAMES + ("1,1,0,0,9,9" + ",0" * 9000 + "\n") * 20, SOME_TRACKS),
    "million-columns": (HEADER[:-1] + ",c" * MEGABYTE + "\n", SOME_TRACKS),
    "endless-line": ("a" * MEGABYTE, SOME_TRACKS),
    "endless-row": (HEADER + "1" * MEGABYTE, SOME_TRACKS),
    "empty": ("", SOME_TRACKS),
    "header-alone": (HEADER, TRACKS),
    "blank-lines": (HEADER + "\n" * MEGABYTE, SOME_TRACKS),
    "truncated-row": (SOME_TRUTH[:-8], SOME_TRACKS),
    "strange-numbers": (HEADER + "1,1,1e999,nan,-inf,0x1\n", SOME_TRACKS),
    "largest-numbers": (HEADER + "18446744073709551615,1,1e308,1e308,1e308,1e308\n",
                        TRACKS + "18446744073709551615,1e308,1e308,1e308,1e308,1\n"),
}


# Running


class Outcome:
    def __init__(self, status, errors, seconds):
        self.status = status
        self.errors = errors
        self.seconds = seconds


def run(arguments, size):
    """Run the tool with the memory and the time that input of this size may cost."""
    memory = 64 * MEGABYTE + 32 * size
    seconds = TIME_FACTOR * (1 + size / 1e6)

    def limit():
        if not IS_SANITIZED:
            resource.setrlimit(resource.RLIMIT_DATA, (memory, memory))
        resource.setrlimit(resource.RLIMIT_CPU, (int(seconds) + 1, int(seconds) + 1))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    process = subprocess.run([TOOL, *map(str, arguments)], preexec_fn=limit, check=False,
                             stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, text=True, errors="replace")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    used = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
    assert used <= seconds
    return Outcome(process.returncode, process.stderr.splitlines(), used)


def expect_one_line(outcome):
    """It ends well, or with a single line that explains why not."""
    assert outcome.status in (0, 1, 2), outcome.errors
    assert len(outcome.errors) == (0 if outcome.status == 0 else 1), outcome.errors
    for line in outcome.errors:
        assert line.startswith("kelvora: ")
        assert "alloc" not in line
        assert len(line) < 500


CLUSTER = ["-q", "-o", "/dev/null"]
COMMANDS = {
    "info": ["info"],
    "grid": ["cluster", *CLUSTER],
    "tracks": ["cluster", *CLUSTER, "--track", "--count-every-event"],
    "density": ["cluster", *CLUSTER, "--method", "density"],
    "density-3d": ["cluster", *CLUSTER, "--method", "density", "--dim", "3"],
    "two-jobs": ["cluster", *CLUSTER, "--method", "density", "--jobs", "2"],
    "centroid": ["cluster", *CLUSTER, "--method", "centroid", "--clusters", "5", "--max-iter", "5"],
    "overview": ["cluster", *CLUSTER, "--method", "density", "--overview", "sheet.png"],
}


@pytest.fixture(autouse=True)
def in_a_directory(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)


def write(path, content):
    path.write_bytes(content if isinstance(content, bytes) else content.encode())
    return path


@pytest.mark.parametrize("command", COMMANDS)
@pytest.mark.parametrize("name", RECORDINGS)
def test_a_recording_costs_no_more_than_it_may(name, command, tmp_path):
    content, options = RECORDINGS[name]
    path = write(tmp_path / name, content)
    arguments = COMMANDS[command]
    expect_one_line(run([*arguments[:1], path, *options, *arguments[1:]], len(content)))


@pytest.mark.parametrize("name", TABLES)
def test_tables_cost_no_more_than_they_may(name, tmp_path):
    truth, clusters = TABLES[name]
    write(tmp_path / "truth", truth)
    write(tmp_path / "clusters", clusters)
    expect_one_line(run(["score", "--truth", "truth", "--clusters", "clusters"],
                        len(truth) + len(clusters)))


def test_there_are_enough_files():
    assert len(RECORDINGS) + len(TABLES) >= 48


# What allows more


def refusal(path, *arguments):
    outcome = run(["cluster", path, *CLUSTER, *arguments], path.stat().st_size)
    assert outcome.status == 1
    return outcome.errors[0]


def test_max_memory_allows_a_large_grid(tmp_path):
    path = write(tmp_path / "a.raw", evt3([(1, 5, 5, 1)], geometry="9000x9000"))
    assert "--max-memory" in refusal(path)
    command = [TOOL, "cluster", path, *CLUSTER, "--max-memory", "200"]
    assert subprocess.run(command, check=False).returncode == 0


@pytest.mark.parametrize("option", [("--max-memory", "500"), ("--max-window-events", "500000")])
def test_options_allow_full_windows(tmp_path, option):
    path = write(tmp_path / "a.raw", *RECORDINGS["standing-clock-short.raw"][:1])
    assert "--max-window-events" in refusal(path, "--method", "density")
    command = [TOOL, "cluster", path, *CLUSTER, "--method", "density", *option]
    assert subprocess.run(command, check=False).returncode == 0


def test_max_window_events_refuses_fuller_windows(tmp_path):
    path = write(tmp_path / "a.raw", evt3(hot_pixel(1001)))
    assert "1000 events" in refusal(path, "--max-window-events", "1000")


def test_max_memory_allows_crowded_tables(tmp_path):
    truth, clusters = (write(tmp_path / name, table)
                       for name, table in zip("tc", TABLES["chain"]))
    command = [TOOL, "score", "--truth", truth, "--clusters", clusters]
    refused = subprocess.run(command, check=False, capture_output=True, text=True)
    assert refused.returncode == 1
    assert "--max-memory" in refused.stderr
    allowed = subprocess.run([*command, "--max-memory", "1000"], check=False, capture_output=True)
    assert allowed.returncode == 0
