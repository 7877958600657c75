"""Measurements: the client's trace to the last digit, what is refused, what fails, and Ctrl-C."""

import io
import re
import signal
import sys
import time

import pytest

import zentrelk4n as k4n
from conftest import DETECTORS, simulated, zk4n
from zentrelk4n.trace import _digits


def traces_without_date(tmp_path):
    for name in ("python.csv", "client.csv"):
        lines = (tmp_path / name).read_bytes().splitlines(keepends=True)
        yield [line for line in lines if not line.startswith(b"# date: ")]


@pytest.mark.parametrize("client, python", [
    ("--start=1GHz --stop=3GHz --step=5MHz --level=-10dBm",
     dict(start="1 GHz", stop="3 GHz", step=5e6, level=-10)),
    ("--mode=power --frequency=2.4GHz --start=-20 --stop=10 --step=0.5 --dwell=100us --averaging=1",
     dict(start=-20, stop=10, step="0.5 dB", frequency="2.4 GHz", dwell="100 us", averaging=1)),
    ("--start=1GHz --stop=3GHz --step=0.2MHz", dict(start=1e9, stop=3e9, step=2e5)),
    ("--start=19.9GHz --stop=20.2GHz --step=0.3MHz", dict(start=19.9e9, stop=20.2e9, step=3e5)),
    ("--start=2GHz --stop=2GHz --step=1", dict(start=2e9, stop=2e9, step=1)),
], ids=["frequency", "power", "two pieces", "to its limit", "point"])  # fmt: skip
def test_the_trace_is_the_client_s(simulator, tmp_path, client, python):
    output = ("--resource", simulator.resource, "--csv", tmp_path / "client.csv")
    zk4n("measure", *output, *client.split(), *(f"--detector={c}={DETECTORS}" for c in "ABR"))
    with k4n.open(simulator.resource) as gen:
        trace = gen.measure(detectors=DETECTORS, **python)
        assert not gen.rf.output_enabled
    trace.to_csv(tmp_path / "python.csv")
    ours, theirs = traces_without_date(tmp_path)
    assert ours == theirs
    assert {len(trace)} == {
        len(values) for values in (trace.x, trace.a, trace.b, trace.r, ours[5:])
    }


def test_uncalibrated_values_are_written_as_the_client_does(simulator, tmp_path):
    with k4n.open(simulator.resource) as gen:
        gen.measure(start=1e9, stop=3e9, step=5e8).to_csv(tmp_path / "python.csv")
    output = ("--resource", simulator.resource, "--csv", tmp_path / "client.csv")
    zk4n("measure", *output, "--step=500MHz")
    ours, theirs = (trace[5:] for trace in traces_without_date(tmp_path))
    assert ours == theirs and b"nan" in ours[0]
    assert [_digits(float(value)) for value in ("nan", "-nan", "-inf")] == ["nan", "-nan", "-inf"]


def test_lists(gen):
    trace = gen.measure(frequencies=["1 GHz", 2.4e9, 21e9], level=-3, channels="RA")
    assert (trace.axis, list(trace.channels)) == ("frequency", ["R", "A"])
    assert list(trace.frequency) == [1e9, 2.4e9, 20e9]
    stepped = gen.measure(start=1e9, stop=2.4e9, step=1.4e9, level=-3)
    assert list(trace.a[:2]) == list(stepped.a)
    for name, why in (("b", "B was not measured"), ("level", "not stepped.*level -3 dBm")):
        with pytest.raises(AttributeError, match=why):
            getattr(trace, name)
    levels = [-10, 40]
    trace = gen.measure(levels=levels, frequency="2.4 GHz")
    assert list(trace.level) == [-10.0, 20.0] and levels == [-10, 40]
    assert repr(trace) == "<trace of 2 points, level stepped, at 2.4 GHz, averaging 3>"
    assert len(gen.measure(frequencies=[1e9 + 1e5 * i for i in range(6000)])) == 6000  # two blocks


RANGE = dict(start=1e9, stop=2e9, step=1e8)


@pytest.mark.parametrize("arguments, text", [
    (dict(), "give start, stop and step"), (dict(start=1e9, stop=2e9), "give start, stop and step"),
    (dict(RANGE, frequencies=[1e9]), "give start, stop and step"),
    (dict(levels=[1], frequencies=[1e9]), "either frequencies"),
    (dict(RANGE, level=0, frequency=1e9), "either level or frequency"),
    (dict(levels=[1]), "give the frequency"), (dict(frequencies=[]), "empty"),
    (dict(RANGE, stop=1e8), "stop is below start"), (dict(RANGE, step=0), "step must be"),
    (dict(RANGE, dwell=-1), "dwell must not"), (dict(RANGE, averaging=15), "averaging: 1 to 14"),
    (dict(RANGE, channels="AX"), "channels: of"), (dict(RANGE, channels=""), "channels: of"),
    (dict(RANGE, step=1), "million"), (dict(RANGE, level="1 W"), "level: not a value in dBm"),
    (dict(RANGE, detectors={"C": "x"}), "detectors: A, B and R")])  # fmt: skip
def test_plans_that_make_no_sense(gen, arguments, text):
    with pytest.raises(ValueError, match=text):
        gen.measure(**arguments)


REFUSED = "refuse:status=-32766,command=3,parameter="


@pytest.mark.parametrize("options, arguments, kind, text", [
    (dict(fault="block-status:status=-32761"), RANGE, k4n.DriverError, "instrument: PLL unlocked"),
    (dict(fault="drop:command=6"), RANGE, k4n.DriverError, "measurement: 0xBFFF00A6"),
    (dict(fault=REFUSED + "5"), RANGE, k4n.DriverError, "request not supported"),
    (dict(fault=REFUSED + "2"), dict(frequencies=[1e9]), k4n.DriverError,
     "Sweep.List.CreateFrequencyPower: 0xFFFF8002"),
    (dict(fault=REFUSED + "0,after=3,times=1"), RANGE, k4n.DriverError,
     "Sweep.FrequencyStep.ConfigureStartStop: 0xFFFF8002"),
    (dict(fault=REFUSED + "0,after=6,times=1"), RANGE, k4n.DriverError,
     "Acquisition.Initiate: 0xFFFF8002"),
    (dict(), dict(RANGE, step=1e-3, stop=1e9 + 1), k4n.Error, "cannot make steps of 1 mHz"),
    (dict(), dict(RANGE, detectors="no such.det"), k4n.DriverError,
     "0x80047002 .cannot open file.*no such.det"),
    (dict(kind="generator"), RANGE, k4n.Error, "the driver cannot tell|not supported"),
])  # fmt: skip
def test_failures_on_the_way(options, arguments, kind, text):
    with simulated(**options) as gen:
        with pytest.raises(kind, match=text):
            gen.measure(**arguments)
        assert not gen.closed


def test_progress(gen, monkeypatch):
    told = []
    gen.measure(**RANGE, dwell="50 ms", averaging=1, progress=told.append)
    assert gen.acquisition.averaging == 1
    assert told == sorted(told) and told[-1] == 1.0 and len(told) > 3 and 0.0 <= told[0] < 0.9
    screen = io.StringIO()
    monkeypatch.setattr(sys, "stderr", screen)
    gen.measure(**RANGE, dwell="80 ms", averaging=1)
    assert screen.getvalue() == ""  # no terminal
    gen.measure(**RANGE, dwell="80 ms", averaging=1, progress=True)
    assert re.fullmatch(r"\rMeasuring \[####.*100 %\n", screen.getvalue(), re.DOTALL)


def test_a_progress_that_fails_ends_the_measurement_alone(gen):
    with pytest.raises(ZeroDivisionError):
        gen.measure(**RANGE, dwell=2, progress=lambda share: 1 / 0)
    assert gen.acquisition.status is k4n.AcquisitionStatus.UNKNOWN and not gen.rf.output_enabled


def test_ctrl_c_ends_the_measurement_and_the_session(simulator):
    with k4n.open(simulator) as gen:
        started = time.monotonic()
        with pytest.raises(KeyboardInterrupt):
            gen.measure(**RANGE, dwell=2, progress=lambda share: signal.raise_signal(signal.SIGINT))
        assert time.monotonic() - started < 30 and gen.closed
    with k4n.open(simulator) as gen:  # free, with its output off
        assert not gen.rf.output_enabled
