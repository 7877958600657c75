"""The driver's module: where it lies, and how it is loaded."""

from __future__ import annotations

import ctypes
import os
import struct
import sys
import threading
from pathlib import Path
from typing import Any, Dict, Iterator, NamedTuple, Optional

from ._com import S_OK, Automation, Pointer, guid
from ._registry import registered_module
from ._surface import CLSID, PROG_ID, ZentrelK4N
from .errors import DriverError, DriverNotInstalledError, UnsupportedConfigurationError

ENVIRONMENT = "ZENTREL_K4N_MODULE"
BITS = struct.calcsize("P") * 8

_FILE = "ZentrelK4NLib.dll" if sys.platform == "win32" else "libZentrelK4NLib.so"
_ELF_PROCESSORS = {0x3E: 64, 0x03: 32}
_PE_PROCESSORS = {0x8664: 64, 0x14C: 32}


class Place(NamedTuple):
    """Somewhere the driver may lie."""

    file: str
    why: str
    sure: bool  # it was named: nothing else is meant


def places(module: Optional[str] = None) -> Iterator[Place]:
    """Where the driver is looked for, in this order."""
    if module is not None:
        yield Place(os.fspath(module), "as given", True)
        return
    named = os.environ.get(ENVIRONMENT)
    if named:
        yield Place(named, f"by {ENVIRONMENT}", True)
        return
    registered = registered_module()
    if registered:
        yield Place(registered, f"registered as {PROG_ID}", False)
    if sys.platform == "win32":
        yield Place(str(Path(__file__).with_name(_FILE)), "beside the package", False)
        programs = os.environ.get("ProgramFiles", r"C:\Program Files")
        yield Place(
            os.path.join(programs, "Zentrel", "K4N", "bin", _FILE),
            "where the package installs it",
            False,
        )
    else:
        yield Place(
            f"/usr/lib/x86_64-linux-gnu/zentrel-k4n/{_FILE}", "where the package installs it", False
        )


def find(module: Optional[str] = None) -> Place:
    """The first place where a file is. DriverNotInstalledError tells where there is none."""
    tried = []
    for place in places(module):
        if os.path.isfile(place.file):
            return place
        if place.sure:
            raise DriverNotInstalledError(f"there is no driver module {place.file} ({place.why})")
        tried.append(f"{place.file} ({place.why})")
    raise DriverNotInstalledError(
        f"the Zentrel K4N driver is not installed: no module at {', '.join(tried)}; "
        "install the driver, register it "
        f"with `zk4n register`, or name its module in {ENVIRONMENT}"
    )


def require_fitting(file: str) -> None:
    """UnsupportedConfigurationError for a module of another system or bitness,
    DriverNotInstalledError for a file that is none.
    """
    try:
        with open(file, "rb") as module:
            head = module.read(4096)
    except OSError as error:
        raise DriverNotInstalledError(
            f"the driver module {file} cannot be read: {error.strerror}"
        ) from None
    if head.startswith(b"\x7fELF"):
        system, bits = "Linux", _ELF_PROCESSORS.get(int.from_bytes(head[18:20], "little"), 0)
    elif head.startswith(b"MZ"):
        header = int.from_bytes(head[0x3C:0x40], "little")
        system, bits = "Windows", _PE_PROCESSORS.get(
            int.from_bytes(head[header + 4 : header + 6], "little"), 0
        )
    else:
        raise DriverNotInstalledError(f"{file} is not the driver's module")
    here = (
        "Windows"
        if sys.platform == "win32"
        else "Linux"
        if sys.platform.startswith("linux")
        else sys.platform
    )
    if system != here:
        raise UnsupportedConfigurationError(f"{file} is a module for {system}, this is {here}")
    if bits != BITS:
        kind = f"a {bits}-bit module" if bits else "for another processor"
        raise UnsupportedConfigurationError(
            f"this Python has {BITS} bits, and {file} is {kind}: they cannot work together"
        )


class Module:
    """The loaded driver. It stays in the process until that ends."""

    _loaded: Dict[str, Module] = {}
    _lock = threading.Lock()

    def __init__(self, place: Place) -> None:
        self.file = os.path.abspath(place.file)
        require_fitting(self.file)
        try:
            self._library = ctypes.CDLL(self.file)
            self._get_class_object = self._library["DllGetClassObject"]
            self._can_unload = self._library["DllCanUnloadNow"]
        except OSError as error:
            raise DriverNotInstalledError(f"the driver module cannot be loaded: {error}") from None
        except AttributeError:
            raise DriverNotInstalledError(
                f"{self.file} is not the driver's module: it has no class factory"
            ) from None
        Automation.bind(self._library)
        if sys.platform == "win32":
            # Every thread of the process is in COM from now on, unless it has chosen an apartment
            # of its own.
            ctypes.CDLL("ole32")["CoIncrementMTAUsage"](ctypes.byref(ctypes.c_void_p()))

    @classmethod
    def load(cls, module: Optional[str] = None) -> Module:
        """The driver that is found. DriverNotInstalledError, UnsupportedConfigurationError."""
        place = find(module)
        key = os.path.realpath(place.file)
        with cls._lock:
            if key not in cls._loaded:
                cls._loaded[key] = cls(place)
            return cls._loaded[key]

    def create(self) -> Pointer:
        """A new root object."""
        class_factory, factory_slots, create_instance = (
            "{00000001-0000-0000-C000-000000000046}",
            5,
            3,
        )
        address = ctypes.c_void_p()
        self._check(
            "DllGetClassObject",
            self._get_class_object(
                ctypes.byref(guid(CLSID)), ctypes.byref(guid(class_factory)), ctypes.byref(address)
            ),
        )
        factory = Pointer(address.value, factory_slots)
        root = ctypes.c_void_p()
        self._check(
            "CreateInstance",
            factory.call(
                create_instance,
                ctypes.c_void_p(),
                ctypes.byref(guid(ZentrelK4N.IID)),
                ctypes.byref(root),
            ),
        )
        return Pointer(root.value, ZentrelK4N.SLOTS)

    def can_unload(self) -> bool:
        """Whether nothing of the driver is in use."""
        return bool(self._can_unload() == S_OK)

    @staticmethod
    def _check(member: str, result: Any) -> None:
        if result != S_OK:
            raise DriverError(member, result & 0xFFFFFFFF)
