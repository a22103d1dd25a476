# SPDX-License-Identifier: MIT
"""Event arrays of any layout, compared with plain NumPy: read correctly or rejected."""

import itertools

import numpy as np
import pytest

import kelvora

WIDTH, HEIGHT = 200, 150

# Types of positions, times and polarities. Fields without another name use the key.
LAYOUTS = {
    "library": dict(
        names=["x", "y", "p", "t"],
        formats=["u2", "u2", "u1", "i8"],
        offsets=[0, 2, 4, 8],
        itemsize=16,
    ),
    "records": dict(
        names=["t", "x", "y", "p"],
        formats=["u8", "u2", "u2", "u1"],
        offsets=[0, 8, 10, 12],
        itemsize=16,
    ),
    "packed": [("x", "u2"), ("y", "u2"), ("t", "u8"), ("pol", "u1")],
    "wide": [("timestamp", "i8"), ("polarity", "i8"), ("y", "i8"), ("x", "i8")],
    "double": [("x", "f8"), ("y", "f8"), ("ts", "f8"), ("p", "f8")],
    "float_places": [("p", "f4"), ("y", "f4"), ("x", "f4"), ("time", "f8")],
    "float_times": [("x", "u2"), ("y", "u2"), ("p", "i1"), ("t", "f4")],
    "big_endian": [("x", ">u2"), ("y", ">u2"), ("on", ">i2"), ("t", ">i8")],
    "short_times": [("on", "i1"), ("ts", "u4"), ("x", "i2"), ("y", "i2")],
    "small": [("y", "u1"), ("x", "u1"), ("p", "u2"), ("t", "i4")],
    "with_others": [
        ("id", "i8"),
        ("y", "u4"),
        ("value", "f8", (2,)),
        ("x", "i4"),
        ("p", "i4"),
        ("t", "u8"),
    ],
    "aligned": np.dtype([("p", "i1"), ("t", "i8"), ("x", "i2"), ("y", "u2")], align=True),
    "half": [("x", "f2"), ("y", "f2"), ("p", "f2"), ("t", "g")],
}
ROLES = {
    "x": "x",
    "y": "y",
    "t": "t",
    "ts": "t",
    "timestamp": "t",
    "time": "t",
    "p": "p",
    "on": "p",
    "pol": "p",
    "polarity": "p",
}
CODINGS = ["zero and one", "minus and plus", "bool"]
MICROSECONDS = {"s": 1e6, "ms": 1e3, "us": 1.0, "ns": 1e-3}


def dtype_of(layout, coding):
    """The layout, with bool as the type of the polarity if it is coded as bool."""
    dtype = np.dtype(LAYOUTS[layout])
    if coding != "bool":
        return dtype
    names = list(dtype.names)
    formats = [np.dtype("?") if ROLES.get(name) == "p" else dtype.fields[name][0] for name in names]
    offsets = [dtype.fields[name][1] for name in names]
    return np.dtype(dict(names=names, formats=formats, offsets=offsets, itemsize=dtype.itemsize))


def name_of(dtype, role):
    return next(name for name in dtype.names if ROLES.get(name) == role)


def make_events(dtype, coding, unit, count=700):
    """Random events in time order, some of them off the sensor."""
    random = np.random.default_rng(sum(map(ord, str(dtype) + coding + unit)))
    events = np.zeros(count, dtype)
    for name in dtype.names:  # unused fields must not matter
        events[name] = 77 if dtype[name].shape == () and dtype[name].kind != "b" else 1
    events["x"] = random.integers(0, WIDTH + 20, count)
    events["y"] = random.integers(0, HEIGHT + 20, count)
    on = random.integers(0, 2, count)
    with np.errstate(invalid="ignore"):
        codes = np.where(on == 1, 1, -1) if coding == "minus and plus" else on
        events[name_of(dtype, "p")] = codes.astype(dtype[name_of(dtype, "p")])
    longest = {"s": 40, "ms": 40_000, "us": 40_000_000, "ns": 1_900_000_000}[unit]
    times = np.sort(random.uniform(0, longest, count))
    name = name_of(dtype, "t")
    events[name] = times if dtype[name].kind == "f" else times.astype("i8")
    return events, on


def model(events, on, unit):
    """Columns x, y, microseconds and polarity of the events on the sensor, in order."""
    times = events[name_of(events.dtype, "t")].astype("f8") * MICROSECONDS[unit]
    if unit == "ns":
        times = events[name_of(events.dtype, "t")].astype("f8") / 1000
    whole = np.floor(times)
    whole += times - whole >= 0.5
    table = np.stack([events["x"].astype("f8"), events["y"].astype("f8"), whole, on], axis=1)
    table = table[(table[:, 0] < WIDTH) & (table[:, 1] < HEIGHT)]
    return table[np.lexsort(table.T)]


def read_back(events, time_unit, **arrays):
    """The same columns as seen by the library, from one cluster per polarity."""
    tables = []
    for on, polarity in enumerate(["off", "on"]):
        clusterer = kelvora.DensityClusterer(
            WIDTH,
            HEIGHT,
            dim=3,
            precision="double",
            us_per_pixel=1.0,
            eps=1e9,
            min_pts=1,
            polarity=polarity,
        )
        clusterer.process(events, time_unit=time_unit, **arrays)
        assert len(clusterer.generate(0)) == 1
        points = clusterer.points()[0]
        tables.append(np.column_stack([points, np.full(len(points), on)]))
    table = np.vstack(tables)
    return table[np.lexsort(table.T)]


@pytest.mark.parametrize("layout, coding, unit", itertools.product(LAYOUTS, CODINGS, MICROSECONDS))
def test_reads_every_layout_coding_and_unit(layout, coding, unit):
    dtype = dtype_of(layout, coding)
    events, on = make_events(dtype, coding, unit)
    if coding == "minus and plus" and dtype[name_of(dtype, "p")].kind == "u":
        with pytest.raises(ValueError, match="polarity of event .* is (255|65535)"):
            kelvora.GridClusterer(WIDTH, HEIGHT).process(events, time_unit=unit)
        return
    expected = model(events, on, unit)
    assert len(expected) > 500
    np.testing.assert_array_equal(read_back(events, unit), expected)


@pytest.mark.parametrize("layout, coding, unit", itertools.product(LAYOUTS, CODINGS, MICROSECONDS))
def test_reads_four_arrays_like_fields(layout, coding, unit):
    dtype = dtype_of(layout, coding)
    if coding == "minus and plus" and dtype[name_of(dtype, "p")].kind == "u":
        return
    events, on = make_events(dtype, coding, unit)
    arrays = {role: events[name_of(dtype, role)] for role in "xytp"}
    np.testing.assert_array_equal(read_back(None, unit, **arrays), model(events, on, unit))


@pytest.mark.parametrize("layout", LAYOUTS)
def test_times_are_microseconds_unless_they_have_fractions(layout):
    events, on = make_events(np.dtype(LAYOUTS[layout]), "zero and one", "us")
    if events.dtype[name_of(events.dtype, "t")].kind == "f":
        with pytest.raises(ValueError, match="state their unit"):
            kelvora.GridClusterer(WIDTH, HEIGHT).process(events)
    else:
        np.testing.assert_array_equal(read_back(events, None), model(events, on, "us"))


@pytest.mark.parametrize("layout", LAYOUTS)
@pytest.mark.parametrize("step", [2, 7])
def test_reads_strided_arrays(layout, step):
    events, on = make_events(np.dtype(LAYOUTS[layout]), "zero and one", "us", 700 * step)
    expected = model(events[::step], on[::step], "us")
    np.testing.assert_array_equal(read_back(events[::step], "us"), expected)


def test_reads_backwards():
    x = np.arange(100, dtype="u2")
    read = read_back(None, None, x=x[::-1], y=x[::-1], t=np.arange(100, dtype="u8"), p=x % 2 == 0)
    assert np.array_equal(read[np.lexsort(read.T[2:3]), 0], x[::-1])


def test_reads_record_arrays_lists_and_read_only_arrays():
    events, on = make_events(np.dtype(LAYOUTS["packed"]), "zero and one", "us")
    expected = model(events, on, "us")
    np.testing.assert_array_equal(read_back(events.view(np.recarray), None), expected)
    events.flags.writeable = False
    np.testing.assert_array_equal(read_back(events, None), expected)
    arrays = {role: events[name_of(events.dtype, role)].tolist() for role in "xytp"}
    np.testing.assert_array_equal(read_back(None, None, **arrays), expected)


def test_rounds_times_to_the_nearest_microsecond():
    for unit, times in {
        "ns": [499, 500, 1499, 1500, 2500],
        "s": [0.4e-6, 0.6e-6, 1.4e-6, 1.6e-6, 2.6e-6],
    }.items():
        x = np.arange(5)
        read = read_back(None, unit, x=x, y=x, t=times, p=[0, 1, 0, 1, 0])
        assert sorted(read[:, 2]) == [0, 1, 1, 2, 3]


def plain(count=3, **changes):
    values = dict(
        x=np.arange(count), y=np.arange(count), t=np.arange(count), p=np.arange(count) % 2
    )
    values.update(changes)
    return values


def structured(**fields):
    events = np.zeros(3, [(name, np.asarray(values).dtype) for name, values in fields.items()])
    for name, values in fields.items():
        events[name] = values
    return events


REFUSED_VALUES = [
    (dict(x=[0, 1.5, 2]), "x of event 1 is 1.5"),
    (dict(y=[0, np.nan, 2]), "y of event 1 is nan"),
    (dict(y=[0, np.inf, 2]), "y of event 1 is inf"),
    (dict(t=[0, -1, 2]), "time of event 1 is -1"),
    (dict(t=[0, np.nan, 2], time_unit="us"), "time of event 1 is nan"),
    (dict(t=[0, -0.5, 2], time_unit="s"), "time of event 1 is -0.5"),
    (dict(t=[0, 1e14, 2], time_unit="s"), "time of event 1 is"),
    (dict(t=np.array([0, 2**63, 2], "u8")), "time of event 1 is 9223372036854775808"),
    (dict(t=np.array([0, 2**62, 2], "i8"), time_unit="ms"), "time of event 1 is"),
    (dict(t=np.array([0, -(2**62), 2], "i8"), time_unit="ns"), "time of event 1 is"),
    (dict(p=[0, 2, 1]), "polarity of event 1 is 2"),
    (dict(p=np.array([0, 255, 1], "u1")), "polarity of event 1 is 255"),
    (dict(p=[0, 0.5, 1]), "polarity of event 1 is 0.5"),
    (dict(p=[0, np.nan, 1]), "polarity of event 1 is nan"),
    (dict(p=[0, -1, 1]), "-1 and 0"),
    (
        dict(p=np.array([1, 0, -1], "i1"), x=np.arange(3, dtype="u2"), y=np.arange(3, dtype="u2")),
        "-1 and 0",
    ),
    (
        dict(t=np.array([0, 1.6e9, 1.7e9], "f4"), time_unit="s"),
        "time of event 1 is 1600000000: 32-bit",
    ),
    (dict(time_unit="minutes"), "not 'minutes'"),
    (dict(x=[0, 1]), "x has 2 elements, but y has 3"),
    (dict(p=np.zeros((3, 1), int)), "p must have one number per event"),
]
REFUSED_TYPES = [
    (dict(x=np.zeros(3, bool)), "x must be integers or floating-point numbers, not bool"),
    (dict(t=np.zeros(3, "M8[us]")), "time_unit"),
    (dict(t=np.zeros(3, "f2"), time_unit="s"), "t must not be float16"),
    (dict(p=np.zeros(3, complex)), "or bool, not complex128"),
    (dict(x=["1", "2", "3"]), "x must be integers"),
    (dict(x=None), "x is missing"),
    (dict(x=np.ma.masked_array([0, 1, 2], [False, True, False])), "x is a masked array"),
]


@pytest.mark.parametrize("changes, message", REFUSED_VALUES)
def test_refuses_values_without_meaning(changes, message):
    with pytest.raises(ValueError, match=message):
        kelvora.GridClusterer(WIDTH, HEIGHT).process(**plain(**changes))


@pytest.mark.parametrize("changes, message", REFUSED_TYPES)
def test_refuses_types_without_meaning(changes, message):
    with pytest.raises(TypeError, match=message):
        kelvora.GridClusterer(WIDTH, HEIGHT).process(**plain(**changes))


@pytest.mark.parametrize(
    "names, message",
    [
        ("abtp", "called 'x'; their fields 'a', 'b', 't', 'p' include none"),
        (["x", "y", "t", "ts", "p"], "their fields 'x', 'y', 't', 'ts', 'p' include 't', 'ts'"),
        (["x", "y", "t"], "'p' or 'on' or 'pol' or 'polarity'"),
        (["X", "Y", "t", "p"], "'X', 'Y', 't', 'p' include none"),
        (["x", "y", "t", "p", "polarity"], "include 'p', 'polarity'"),
    ],
)
def test_refuses_missing_and_ambiguous_fields_with_the_names_found(names, message):
    with pytest.raises(ValueError, match=message):
        kelvora.GridClusterer(WIDTH, HEIGHT).process(
            structured(**{name: [0, 1, 1] for name in names})
        )


@pytest.mark.parametrize("field", ["x", "t", "p"])
def test_refuses_fields_of_several_numbers_and_nested_fields(field):
    for kind in [("u2", (2,)), [("a", "u2"), ("b", "u2")]]:
        events = np.zeros(3, [(name, kind if name == field else "u2") for name in "xytp"])
        with pytest.raises((TypeError, ValueError), match=f"field '{field}' must"):
            kelvora.GridClusterer(WIDTH, HEIGHT).process(events)


@pytest.mark.parametrize(
    "events", [np.zeros((3, 4)), [1, 2, 3, 4], np.zeros(3), "events", {"x": [1]}]
)
def test_maps_nothing_by_position(events):
    with pytest.raises(TypeError, match="named fields"):
        kelvora.GridClusterer(WIDTH, HEIGHT).process(events)


def test_refuses_arrays_of_other_dimensions():
    events = make_events(np.dtype(LAYOUTS["packed"]), "bool", "us", 4)[0]
    for shaped in [events.reshape(2, 2), events[0], np.array(events[0])]:
        with pytest.raises((TypeError, ValueError), match="one dimension"):
            kelvora.GridClusterer(WIDTH, HEIGHT).process(shaped)


def test_needs_either_events_or_four_arrays():
    events = make_events(np.dtype(LAYOUTS["packed"]), "bool", "us", 4)[0]
    for arguments in [dict(), dict(events=events, x=[1])]:
        with pytest.raises(TypeError, match="either events, or all of x, y, t and p"):
            kelvora.GridClusterer(WIDTH, HEIGHT).process(**arguments)


@pytest.mark.parametrize("bad", [0, 511, 512, 5000])
def test_takes_none_of_the_events_if_one_is_refused(bad):
    events = make_events(np.dtype(LAYOUTS["records"]), "zero and one", "us", 5001)[0]
    clusterer = kelvora.GridClusterer(WIDTH, HEIGHT)
    broken = events.copy()
    broken["p"][bad] = 3
    with pytest.raises(ValueError, match=f"polarity of event {bad} is 3"):
        clusterer.process(broken)
    assert clusterer.dropped == clusterer.clamped == 0
    assert not clusterer.active_map().any()


@pytest.mark.parametrize("dtype", ["u2", "i2", "i4", "f4"])
def test_drops_and_counts_events_off_the_sensor(dtype):
    x = np.array([0, WIDTH - 1, WIDTH, 30000, 5], dtype)
    y = np.array([0, HEIGHT - 1, 3, 3, HEIGHT], dtype)
    clusterer = kelvora.GridClusterer(WIDTH, HEIGHT)
    clusterer.process(x=x, y=y, t=np.zeros(5, "u8"), p=np.ones(5, "u1"))
    assert clusterer.dropped == 3
    assert np.argwhere(clusterer.active_map()).tolist() == [[0, 0], [HEIGHT - 1, WIDTH - 1]]


@pytest.mark.parametrize("width", [100, 40000])
def test_negative_positions_are_off_the_sensor(width):
    clusterer = kelvora.GridClusterer(width, 10)
    clusterer.process(
        x=np.array([-1, -30000, 5], "i2"),
        y=np.array([1, 1, 1], "i2"),
        t=np.zeros(3, "u8"),
        p=np.ones(3, "u1"),
    )
    assert clusterer.dropped == 2


def test_positions_beyond_16_bits_do_not_wrap():
    clusterer = kelvora.GridClusterer(WIDTH, HEIGHT)
    clusterer.process(x=[65536 + 5, 2**32 + 5, 5], y=[1, 1, 1], t=[0, 0, 0], p=[1, 1, 1])
    clusterer.process(x=np.array([2**64 - 1], "u8"), y=[1], t=[0], p=[1])
    clusterer.process(x=[1e300], y=[1], t=[0], p=[1])
    assert clusterer.dropped == 4


def test_takes_empty_arrays():
    clusterer = kelvora.GridClusterer(WIDTH, HEIGHT)
    clusterer.process(np.zeros(0, LAYOUTS["packed"]))
    clusterer.process(x=[], y=[], t=[], p=[], time_unit="us")
    clusterer.process(x=[], y=[], t=[], p=[])
    assert len(clusterer.generate(0)) == 0
