"""Arrays of doubles between Python and the driver. A buffer of doubles is copied as a whole, never
by its elements.
"""

from __future__ import annotations

import array
import ctypes
import itertools
from typing import TYPE_CHECKING, Any, Iterable, Sequence, SupportsFloat, Union

from ._com import S_OK, automation
from ._quantity import quantity

try:
    import numpy as numpy
except ImportError:
    numpy = None  # type: ignore[assignment]

if TYPE_CHECKING:
    import numpy.typing

    Samples = numpy.typing.NDArray[numpy.float64]
else:
    Samples = "numpy.ndarray or array.array('d')"

Values = Iterable[Union[SupportsFloat, str]]
"""Numbers, or texts with units; a buffer of doubles such as a numpy array is the quick way."""

VT_R8 = 5
DOUBLE = 8  # bytes


def samples(count: int) -> Samples:
    """So many doubles to be written: a numpy array where there is numpy, else an array.array."""
    if numpy is not None:
        return numpy.empty(count)
    return array.array("d", bytes(DOUBLE * count))


def samples_of(values: Iterable[float]) -> Samples:
    """Those doubles."""
    return numpy.fromiter(values, float) if numpy is not None else array.array("d", values)


def joined(pieces: Sequence[Samples]) -> Samples:
    """One after the other."""
    if len(pieces) == 1:
        return pieces[0]
    if numpy is not None:
        return numpy.concatenate(pieces) if pieces else samples(0)
    return samples_of(itertools.chain.from_iterable(pieces))


def ramp(first: float, increment: float, count: int) -> Samples:
    """first, first + increment, first + 2 increment, ..."""
    if numpy is not None:
        return first + increment * numpy.arange(count)
    return samples_of(first + increment * i for i in range(count))


def doubles_at(address: int, count: int) -> memoryview:
    """Memory of the driver's as a buffer of doubles."""
    return memoryview((ctypes.c_byte * (DOUBLE * count)).from_address(address)).cast("B").cast("d")


class _Elements:
    """The elements of a SAFEARRAY, as long as the `with` lasts."""

    def __init__(self, safearray: ctypes.c_void_p) -> None:
        self._safearray = safearray

    def __enter__(self) -> memoryview:
        lower, upper, data = ctypes.c_int32(), ctypes.c_int32(), ctypes.c_void_p()
        automation("SafeArrayGetLBound")(self._safearray, 1, ctypes.byref(lower))
        automation("SafeArrayGetUBound")(self._safearray, 1, ctypes.byref(upper))
        if automation("SafeArrayAccessData")(self._safearray, ctypes.byref(data)) != S_OK:
            raise MemoryError("an array of the driver cannot be read")
        count = upper.value - lower.value + 1
        return (
            doubles_at(data.value, count)
            if data.value and count > 0
            else memoryview(bytearray()).cast("d")
        )

    def __exit__(self, *_: object) -> None:
        automation("SafeArrayUnaccessData")(self._safearray)


class ArrayArgument:
    """Values for the driver, which may correct them: at the end of the `with`, what it changed
    comes back in a list and in a writable buffer of doubles. None is the null array.
    """

    def __init__(self, values: Any, unit: str, what: str) -> None:
        self._destroy = automation("SafeArrayDestroy")
        self._values = values
        self._safearray = ctypes.c_void_p(None)
        self._as_parameter_ = ctypes.byref(self._safearray)
        if values is None:
            return
        given = _doubles(values, unit, what)
        self._given = given.tobytes()
        self._safearray.value = automation("SafeArrayCreateVector")(VT_R8, 0, len(given))
        if not self._safearray.value:
            raise MemoryError(f"no memory for {len(given)} values")
        with _Elements(self._safearray) as elements:
            elements[:] = given

    def __enter__(self) -> ArrayArgument:
        return self

    def __exit__(self, *_: object) -> None:
        if not self._safearray.value:
            return
        with _Elements(self._safearray) as elements:
            if elements.tobytes() != self._given:
                _give_back(self._values, elements)

    def __del__(self) -> None:
        self._destroy(self._safearray)


def _is_doubles(values: Any) -> bool:
    try:
        view = memoryview(values)
    except TypeError:
        return False
    if view.ndim != 1:
        raise TypeError(f"one row of values is needed, not {view.ndim} dimensions")
    return view.format == "d"


def _doubles(values: Any, unit: str, what: str) -> memoryview:
    if isinstance(values, (str, bytes)):
        raise TypeError(f"{what}: a sequence of values is needed, not {values!r}")
    if _is_doubles(values):
        return memoryview(values)
    return memoryview(array.array("d", [quantity(value, unit, what) for value in values]))


def _give_back(values: Any, corrected: memoryview) -> None:
    if isinstance(values, list):
        values[:] = corrected.tolist()
    elif _is_doubles(values) and not memoryview(values).readonly:
        memoryview(values)[:] = corrected


class ArrayResult:
    """Where the driver puts an array; it is destroyed with this object."""

    __slots__ = ("_as_parameter_", "_destroy", "_safearray")

    def __init__(self) -> None:
        self._destroy = automation("SafeArrayDestroy")
        self._safearray = ctypes.c_void_p(None)
        self._as_parameter_ = ctypes.byref(self._safearray)

    def values(self) -> Samples:
        """A copy of the values; empty where the driver gave none."""
        if not self._safearray.value:
            return samples(0)
        with _Elements(self._safearray) as elements:
            values = samples(len(elements))
            memoryview(values)[:] = elements  # type: ignore[arg-type]
        return values

    def __del__(self) -> None:
        self._destroy(self._safearray)
