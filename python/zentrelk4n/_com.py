"""COM through ctypes: interface pointers, texts, error information. One code for both systems: on
Linux the functions of OLE Automation come from the run time library that the driver is linked with.
"""

from __future__ import annotations

import ctypes
import sys
import uuid
from typing import Any, ClassVar, Dict, NamedTuple, Optional, Sequence, Tuple

S_OK = 0
FUNCTION = ctypes.CFUNCTYPE(
    ctypes.c_int32
)  # gives an HRESULT; the arguments are given as objects of ctypes
RELEASE = 2  # the slot in every interface

Guid = ctypes.c_byte * 16


def guid(text: str) -> Any:
    """ "{XXXXXXXX-...}" as the 16 bytes that COM takes."""
    return Guid.from_buffer_copy(uuid.UUID(text).bytes_le)


class Automation:
    """The functions of OLE Automation in use, bound when the first driver module is loaded."""

    _SIGNATURES: ClassVar[Dict[str, Tuple[Any, Sequence[Any]]]] = {
        "SysAllocStringLen": (ctypes.c_void_p, [ctypes.c_char_p, ctypes.c_uint]),
        "SysStringByteLen": (ctypes.c_uint, [ctypes.c_void_p]),
        "SysFreeString": (None, [ctypes.c_void_p]),
        "SetErrorInfo": (ctypes.c_int32, [ctypes.c_uint32, ctypes.c_void_p]),
        "GetErrorInfo": (ctypes.c_int32, [ctypes.c_uint32, ctypes.c_void_p]),
        "SafeArrayCreateVector": (
            ctypes.c_void_p,
            [ctypes.c_uint16, ctypes.c_int32, ctypes.c_uint32],
        ),
        "SafeArrayDestroy": (ctypes.c_int32, [ctypes.c_void_p]),
        "SafeArrayGetLBound": (ctypes.c_int32, [ctypes.c_void_p, ctypes.c_uint, ctypes.c_void_p]),
        "SafeArrayGetUBound": (ctypes.c_int32, [ctypes.c_void_p, ctypes.c_uint, ctypes.c_void_p]),
        "SafeArrayAccessData": (ctypes.c_int32, [ctypes.c_void_p, ctypes.c_void_p]),
        "SafeArrayUnaccessData": (ctypes.c_int32, [ctypes.c_void_p]),
    }
    functions: ClassVar[Dict[str, Any]] = {}

    @classmethod
    def bind(cls, driver: ctypes.CDLL) -> None:
        """Takes them from the system, or from what the loaded driver is linked with."""
        library = ctypes.CDLL("oleaut32") if sys.platform == "win32" else driver
        for name, (result, arguments) in cls._SIGNATURES.items():
            function = library[name]  # an object of our own, whose types nobody else sets
            function.restype, function.argtypes = result, arguments
            cls.functions[name] = function


def automation(name: str) -> Any:
    """A function of OLE Automation."""
    return Automation.functions[name]


class TextArgument:
    """A text for the driver, freed with this object. None is the null text."""

    __slots__ = ("_as_parameter_", "_free")

    def __init__(self, text: Optional[str]) -> None:
        self._free = automation("SysFreeString")
        self._as_parameter_ = ctypes.c_void_p(None)
        if text is not None:
            if not isinstance(text, str):
                raise TypeError(f"a text is needed, not {text!r}")
            units = text.encode("utf-16-le", "surrogatepass")
            self._as_parameter_.value = automation("SysAllocStringLen")(units, len(units) // 2)

    def __del__(self) -> None:
        self._free(self._as_parameter_)


class TextResult:
    """Where the driver puts a text; it is freed with this object."""

    __slots__ = ("_as_parameter_", "_bstr", "_free")

    def __init__(self) -> None:
        self._free = automation("SysFreeString")
        self._bstr = ctypes.c_void_p(None)
        self._as_parameter_ = ctypes.byref(self._bstr)

    def text(self) -> str:
        """The text; the null text is an empty one."""
        size = automation("SysStringByteLen")(self._bstr)
        return (
            ctypes.string_at(self._bstr, size).decode("utf-16-le", "surrogatepass") if size else ""
        )

    def __del__(self) -> None:
        self._free(self._bstr)


class Pointer:
    """One reference to an interface of an object. It is released when the last user of this object
    has gone: whoever is in the middle of a call is one, so that another thread may close the
    session at any time.
    """

    __slots__ = ("_address", "_clear_error_info", "_functions")
    _tables: ClassVar[Dict[Tuple[int, int], Tuple[Any, ...]]] = {}

    def __init__(self, address: Optional[int], slots: int) -> None:
        assert address
        self._address = ctypes.c_void_p(address)
        table = ctypes.c_void_p.from_address(address).value
        assert table
        functions = self._tables.get((table, slots))
        if functions is None:
            functions = tuple(
                FUNCTION(entry or 0) for entry in (ctypes.c_void_p * slots).from_address(table)
            )
            self._tables[table, slots] = functions
        self._functions = functions
        self._clear_error_info = automation("SetErrorInfo")

    def call(self, slot: int, *arguments: Any) -> int:
        """Calls a member; gives its HRESULT, with a sign. Error information is the call's own."""
        self._clear_error_info(0, None)
        return self._functions[slot](self._address, *arguments)  # type: ignore[no-any-return]

    def __del__(self) -> None:
        self._functions[RELEASE](self._address)


class ErrorInfo(NamedTuple):
    """What an object told of a failure."""

    description: str
    source: str
    interface: str  # "{XXXXXXXX-...}"


def take_error_info() -> Optional[ErrorInfo]:
    """The calling thread's error information, which it then no longer has."""
    address = ctypes.c_void_p()
    if automation("GetErrorInfo")(0, ctypes.byref(address)) != S_OK:
        return None
    get_guid, get_source, get_description, slots = 3, 4, 5, 8
    info = Pointer(address.value, slots)
    interface, source, description = Guid(), TextResult(), TextResult()
    info.call(get_guid, ctypes.byref(interface))
    info.call(get_source, source)
    info.call(get_description, description)
    iid = f"{{{uuid.UUID(bytes_le=bytes(interface))}}}".upper()
    return ErrorInfo(description.text(), source.text(), iid)
