"""Tells what a session would use, a line each: python -m zentrelk4n."""

from __future__ import annotations

import platform
import sys
from importlib import metadata
from typing import Callable, Iterator, Tuple

from . import _arrays, _module, _visa, simulator
from ._surface import LIBRARY
from .errors import Error


def _package() -> str:
    try:
        return metadata.version("zentrelk4n")
    except metadata.PackageNotFoundError:
        return "not installed, used from its folder"


def _array_type() -> str:
    return (
        f"numpy {_arrays.numpy.__version__}"
        if _arrays.numpy
        else "array.array: numpy is not installed"
    )


def _lines() -> Iterator[Tuple[str, Callable[[], str]]]:
    place = _module.Place("", "", False)

    def driver() -> str:
        nonlocal place
        place = _module.find()
        return f"{_module.Module.load().file} ({place.why})"

    yield "package", _package
    yield "Python", lambda: f"{platform.python_version()}, {_module.BITS} bits, {sys.executable}"
    yield "arrays", _array_type
    yield "surface", lambda: LIBRARY
    yield "driver", driver
    yield "VISA", lambda: _visa.library_file(
        place.file
    ) or "no zevisa64 is found: without it no session opens"
    yield "simulator", lambda: simulator.find_program(None)


def main() -> int:
    """Prints the lines; 1 when there is no driver to use."""
    for name, tell in _lines():
        try:
            print(f"{name + ':':<11}{tell()}")
        except Error as error:
            print(f"{name + ':':<11}{error}")
            if name == "driver":
                return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
