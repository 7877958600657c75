"""Quantities, and arrays on their way to the driver and back."""

import array
import ctypes

import numpy
import pytest

import zentrelk4n as k4n
from conftest import simulated
from zentrelk4n._quantity import formatted, quantity


@pytest.mark.parametrize("text, unit, value", [
    ("1e9", "Hz", 1e9), (" 2.4 GHz ", "Hz", 2.4e9), ("10mhz", "Hz", 1e7), ("+.5T", "Hz", 5e11),
    ("5ms", "s", 5e-3), ("3 us", "s", 3e-6), ("-10dBm", "dBm", -10.0), ("0.5 dB", "dB", 0.5),
    ("7", "", 7.0), (numpy.float32(0.5), "s", 0.5), ("1 GHz Hz", "Hz", None), ("5 ks", "s", None),
    ("2 k", "dBm", None), ("1e400", "Hz", None), ("nan", "Hz", None), ("", "Hz", None),
    ("1_000", "Hz", None), ("0x10", "Hz", None), ("\u0663", "Hz", None),
    (b"1", "Hz", None)])  # fmt: skip
def test_quantities(text, unit, value):
    if value is not None:
        assert quantity(text, unit, "it") == value
        return
    with pytest.raises(ValueError, match="^it: not a value in"):
        quantity(text, unit, "it")


@pytest.mark.parametrize("value, unit, text", [
    (2.4e9, "Hz", "2.4 GHz"), (1234567.0, "Hz", "1.23457 MHz"), (5e-3, "s", "5 ms"),
    (-0.0, "dBm", "0 dBm"), (-10.5, "dBm", "-10.5 dBm"), (0.0, "Hz", "0 Hz"),
    (1e-15, "s", "0.001 ps"), (999999999.9999999, "Hz", "1 GHz")])  # fmt: skip
def test_quantities_for_people(value, unit, text):
    assert formatted(value, unit) == text


def every_other(values):
    return numpy.repeat(numpy.array(values), 2)[::2]


def read_only(values):
    made = numpy.array(values)
    made.flags.writeable = False
    return made


# What the instrument corrects: 40 dBm is more than it has.
@pytest.mark.parametrize("make, comes_back", [
    (list, True), (lambda values: ["-10 dBm", numpy.float64(0), 40], True),
    (tuple, False), (iter, False), (lambda values: array.array("d", values), True),
    (numpy.array, True), (every_other, True), (read_only, False),
    (lambda values: numpy.array(values, ">f8"), False),
    (lambda values: numpy.array(values, "f4"), False),
    (lambda values: numpy.array(values, int), False),
    (lambda values: (ctypes.c_double * 3)(*values), False)])  # fmt: skip
def test_corrected_values_come_back(gen, make, comes_back):
    values = make([-10.0, 0.0, 40.0])
    gen.sweep.list.create_power("", values)
    if values is not iter(values):
        assert float(values[2]) == 20.0 if comes_back else quantity(values[2], "dBm", "") == 40.0


def test_lists_that_nothing_corrects_stay_as_they_are(gen):
    values = [-10, "0 dBm"]
    gen.sweep.list.create_power("", values)
    assert values == [-10, "0 dBm"] and isinstance(values[0], int)
    gen.sweep.list.create_power("", None)
    gen.sweep.list.create_power("", [])


def test_corrected_values_come_back_from_a_refusal():
    with simulated(fault="refuse:status=-32763,command=3,parameter=76") as gen:
        with pytest.raises(k4n.DriverError) as caught:
            gen.sweep.list.create_power("", [-10.0, 40.0])
        assert caught.value.code == 0xFFFF8005 and caught.value.name == "instrument error code"


@pytest.mark.parametrize("values, error, text", [
    ("1 GHz", TypeError, "a sequence"), (numpy.zeros((2, 2)), TypeError, "one row"),
    ([1.0, "x"], ValueError, "frequency"), (3.0, TypeError, "iterable")])  # fmt: skip
def test_no_arrays(gen, values, error, text):
    with pytest.raises(error, match=text):
        gen.sweep.list.create_frequency("", values)


def test_a_trace_is_one_array_of_doubles(gen):
    gen.measure(start=1e9, stop=1.2e9, step=1e6)
    values, initial_x, increment = gen.acquisition.channels.item("ChannelA").fetch_data()
    assert type(values) is numpy.ndarray and values.dtype == float
    assert values.shape == (201,) and values.flags.owndata
    assert (initial_x, increment) == (1e9, 1e6)
