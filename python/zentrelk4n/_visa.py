"""Why a session does not open, asked of the VISA library: the driver has one result for all of it.
"""

from __future__ import annotations

import ctypes
import os
import sys
from typing import Any, Callable, Optional

from .errors import result_name

_OPEN_TIMEOUT = 2000  # milliseconds, as the driver's
_EXCLUSIVE_LOCK = 1
_RSRC_LOCKED = 0xBFFF000F
_LOCK_OWNER = 0xBFFA0001  # an attribute of our own library, a text
_TEXT_SIZE = 256


def _load(driver_file: str) -> Optional[ctypes.CDLL]:
    """The library that the driver takes: by the system's search, else from the driver's folder."""
    folder = os.path.dirname(driver_file)
    if sys.platform == "win32":
        names = ["zevisa64.dll", "zevisa.dll", os.path.join(folder, "ZeVISA.dll")]
    else:
        names = [
            os.path.join(folder, "libzevisa64.so"),
            "libzevisa64.so",
            "libzevisa.so",
            os.path.join(folder, "libzevisa.so"),
        ]
    for name in names:
        try:
            return ctypes.CDLL(name)
        except OSError:
            continue
    return None


def library_file(driver_file: str) -> Optional[str]:
    """The VISA library by its name; None when there is none."""
    library = _load(driver_file)
    return None if library is None else library._name


def why_not_opened(driver_file: str, resource: str) -> str:
    """What stands in the way of a session: a line for a person, empty when nothing is found."""
    library = _load(driver_file)
    if library is None:
        return "no VISA library (zevisa64) is found"
    try:
        return _ask(library, resource)
    except AttributeError:
        return "the VISA library lacks an entry point"


def _ask(library: ctypes.CDLL, resource: str) -> str:
    manager, session = ctypes.c_uint32(), ctypes.c_uint32()
    text = ctypes.create_string_buffer(_TEXT_SIZE)

    def status(function: Callable[..., Any], *arguments: Any) -> int:
        return int(function(*arguments)) & 0xFFFFFFFF

    if status(library.viOpenDefaultRM, ctypes.byref(manager)) >> 31:
        return "the VISA library does not start"
    try:
        opened = status(
            library.viOpen, manager, resource.encode(), 0, _OPEN_TIMEOUT, ctypes.byref(session)
        )
        if opened >> 31:
            status(library.viStatusDesc, manager, ctypes.c_uint32(opened), text)
            return f"0x{opened:08X} ({text.value.decode(errors='replace') or result_name(opened)})"
        locked = status(library.viLock, session, _EXCLUSIVE_LOCK, 0, None, None)
        if locked == _RSRC_LOCKED:
            known = (
                not status(library.viGetAttribute, session, ctypes.c_uint32(_LOCK_OWNER), text)
                >> 31
            )
            owner = text.value.decode(errors="replace") if known else ""
            return f"held by {owner or 'another program'}, which has the instrument open"
        return "the link opens, but what is there does not answer as this instrument does"
    finally:
        status(library.viClose, manager)
