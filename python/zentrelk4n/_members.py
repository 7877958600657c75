"""The parts that the classes of the surface are made of: what a group of members is, how settings
are read and put, and how single values travel.
"""

from __future__ import annotations

import ctypes
import enum
import operator
from typing import (
    TYPE_CHECKING,
    Any,
    Callable,
    ClassVar,
    Dict,
    Generic,
    NoReturn,
    Optional,
    Type,
    TypeVar,
    Union,
)
from typing import overload

from ._com import Pointer, TextArgument, TextResult, guid, take_error_info
from ._quantity import quantity
from .errors import DriverError, Error, warn

if TYPE_CHECKING:
    from .session import Session

Read = TypeVar("Read")
Written = TypeVar("Written")
AGroup = TypeVar("AGroup", bound="Group")
Enumeration = TypeVar("Enumeration", bound=enum.IntEnum)

INTERFACE_NAMES: Dict[str, str] = {
    "{47ED5184-A398-11D4-BA58-000064657374}": "IIviDriver",
    "{47ED5185-A398-11D4-BA58-000064657374}": "IIviComponentIdentity",
}
"""What identifiers of interfaces stand for; each class of the surface adds its own."""


class ClosedPointer:
    """Stands in the place of an interface pointer when the session is closed."""

    def __init__(self, session: str) -> None:
        self._session = session

    def call(self, slot: int, *arguments: Any) -> int:
        """Says so."""
        raise Error(f"{self._session} is closed")


def report(member: str, result: int) -> None:
    """Tells of a result that is not plain success."""
    if result > 0:
        warn(member, result)
        return
    info = take_error_info()
    code = result & 0xFFFFFFFF
    if info is None:
        raise DriverError(member, code)
    raise DriverError(
        member,
        code,
        info.description,
        info.source,
        INTERFACE_NAMES.get(info.interface, info.interface),
    )


class Group:
    """One interface of a session's objects."""

    __slots__ = ("_children", "_path", "_pointer", "_session")
    INTERFACE: ClassVar[str] = ""
    IID: ClassVar[str] = ""
    SLOTS: ClassVar[int] = 0

    def __init_subclass__(cls) -> None:
        INTERFACE_NAMES.setdefault(cls.IID.upper(), cls.INTERFACE)

    def __init__(self, pointer: Pointer, session: Session, path: str) -> None:
        self._pointer: Union[Pointer, ClosedPointer] = pointer
        self._session = session
        self._path = path
        self._children: Dict[str, Any] = {}

    def __repr__(self) -> str:
        return f"<{self._path} of {self._session}>"

    def _member(self, name: str) -> str:
        return f"{self._path}.{name}" if self._path else name

    def _call(self, name: str, slot: int, *arguments: Any) -> None:
        """Calls a member; raises for a failure, warns for a success that is more than one."""
        # No variable holds the pointer here: a traceback that is kept must not keep the object.
        result = self._pointer.call(slot, *arguments)
        if result != 0:
            report(self._member(name), result)

    def _adopt(self, kind: Type[AGroup], address: ctypes.c_void_p, name: str) -> AGroup:
        return self._session._group(kind, address.value, self._member(name))


class Codec(Generic[Read, Written]):
    """How values of one type travel."""

    def __init__(
        self,
        word: str,
        result: Callable[[], Any],
        passed: Callable[[Any], Any],
        decode: Callable[[Any], Read],
        encode: Callable[[Any, str, str], Any],
    ) -> None:
        self.word = word  # for a person
        self.result = result  # makes what the driver writes into
        self.passed = passed  # that as an argument
        self.decode = decode
        self.encode: Callable[
            [Written, str, str], Any
        ] = encode  # value, unit, and what it is, for messages


def _integer(value: Any, unit: str, what: str) -> ctypes.c_int32:
    number = operator.index(value)
    if not -0x80000000 <= number <= 0x7FFFFFFF:
        raise OverflowError(f"{what}: {number} does not fit 32 bits")
    return ctypes.c_int32(number)


def _switch(value: Any, unit: str, what: str) -> ctypes.c_int16:
    if isinstance(value, (str, bytes)):
        raise TypeError(f"{what}: true or false is needed, not {value!r}")
    return ctypes.c_int16(-1 if value else 0)


number: Codec[float, Any] = Codec(
    "number",
    ctypes.c_double,
    ctypes.byref,
    operator.attrgetter("value"),
    lambda value, unit, what: ctypes.c_double(quantity(value, unit, what)),
)
integer: Codec[int, int] = Codec(
    "integer", ctypes.c_int32, ctypes.byref, operator.attrgetter("value"), _integer
)
# Some members read true as 1, others as -1.
switch: Codec[bool, bool] = Codec(
    "true or false", ctypes.c_int16, ctypes.byref, lambda result: bool(result.value), _switch
)
text: Codec[str, Optional[str]] = Codec(
    "text",
    TextResult,
    lambda result: result,
    TextResult.text,
    lambda value, unit, what: TextArgument(value),
)


class Choice(Codec[Enumeration, int]):
    """The values of an enumeration. A number that it does not have goes to the driver, and comes
    back, as it is.
    """

    def __init__(self, enumeration: Type[Enumeration]) -> None:
        known: Dict[int, Any] = {int(value): value for value in enumeration}
        super().__init__(
            enumeration.__name__,
            ctypes.c_int32,
            ctypes.byref,
            lambda result: known.get(result.value, result.value),
            _integer,
        )


class Reading(Generic[Read]):
    """A property that can only be read."""

    def __init__(
        self, codec: Codec[Read, Any], name: str, get: int, unit: str, help_text: str
    ) -> None:
        self.name, self.unit = name, unit
        self._codec, self._get = codec, get
        self.__doc__ = f"{help_text} ({name}: {self._description()})".strip()

    def _description(self) -> str:
        return self._codec.word + (f" in {self.unit}" if self.unit else "") + ", read only"

    @overload
    def __get__(self, group: None, owner: Optional[type] = None) -> Reading[Read]:
        ...

    @overload
    def __get__(self, group: Group, owner: Optional[type] = None) -> Read:
        ...

    def __get__(
        self, group: Optional[Group], owner: Optional[type] = None
    ) -> Union[Reading[Read], Read]:
        if group is None:
            return self
        codec = self._codec
        value = codec.result()
        result = group._pointer.call(self._get, codec.passed(value))
        if result != 0:
            report(group._member(self.name), result)
        return codec.decode(value)

    def __set__(self, group: Group, value: NoReturn) -> None:
        raise AttributeError(f"{group._member(self.name)} can only be read")


class Setting(Reading[Read], Generic[Read, Written]):
    """A property that can be read and put."""

    def __init__(
        self, codec: Codec[Read, Any], name: str, get: int, put: int, unit: str, help_text: str
    ) -> None:
        self._put = put
        super().__init__(codec, name, get, unit, help_text)

    def _description(self) -> str:
        return super()._description().replace("read only", "read and put")

    def __set__(self, group: Group, value: Written) -> None:
        result = group._pointer.call(self._put, self._codec.encode(value, self.unit, self.name))
        if result != 0:
            report(group._member(self.name), result)


class Child(Generic[AGroup]):
    """A group below another one. The driver is asked for it once."""

    def __init__(self, kind: Type[AGroup], name: str, get: int, help_text: str) -> None:
        self._kind, self.name, self._get = kind, name, get
        self.__doc__ = f"{help_text} ({name}: {kind.INTERFACE})".strip()

    @overload
    def __get__(self, group: None, owner: Optional[type] = None) -> Child[AGroup]:
        ...

    @overload
    def __get__(self, group: Group, owner: Optional[type] = None) -> AGroup:
        ...

    def __get__(
        self, group: Optional[Group], owner: Optional[type] = None
    ) -> Union[Child[AGroup], AGroup]:
        if group is None:
            return self
        child: Optional[AGroup] = group._children.get(self.name)
        if child is None:
            address = ctypes.c_void_p()
            self._ask(group, address)
            child = group._children[self.name] = group._adopt(self._kind, address, self.name)
        return child

    def _ask(self, group: Group, address: ctypes.c_void_p) -> None:
        group._call(self.name, self._get, ctypes.byref(address))

    def __set__(self, group: Group, value: NoReturn) -> None:
        raise AttributeError(f"{group._member(self.name)} can only be read")


class Aspect(Child[AGroup]):
    """Another interface of the same object, which no member gives."""

    def __init__(self, kind: Type[AGroup], name: str, help_text: str) -> None:
        query_interface = 0
        super().__init__(kind, name, query_interface, help_text)

    def _ask(self, group: Group, address: ctypes.c_void_p) -> None:
        group._call(
            "QueryInterface", self._get, ctypes.byref(guid(self._kind.IID)), ctypes.byref(address)
        )
