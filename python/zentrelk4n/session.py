"""A session with an instrument."""

from __future__ import annotations

import atexit
import contextlib
import os
import threading
import warnings
import weakref
from typing import (
    Callable,
    Dict,
    Iterable,
    List,
    Mapping,
    NamedTuple,
    Optional,
    Tuple,
    Type,
    TypeVar,
    Union,
)

from . import _visa, measure
from ._com import Pointer
from ._members import Aspect, ClosedPointer, Group
from ._module import Module
from ._surface import IviDriverIdentity, IviDriverOperation, Quantity, ZentrelK4N
from .errors import DriverError, Error, result_name
from .simulator import Simulator
from .trace import CHANNELS, Trace

AGroup = TypeVar("AGroup", bound=Group)

_NOT_CONNECTED = 0x8004701D
_UNKNOWN_RESOURCE = 0x80047060
_MOST_RECORDS = 100_000  # a reader that fails all the time fills the trail while it is emptied

_open_sessions: weakref.WeakSet[Session] = weakref.WeakSet()


class Record(NamedTuple):
    """What the error trail holds of one failure, or of several equal ones in a row."""

    code: int
    """32 bits without a sign, as `DriverError.code`."""
    description: str
    """The driver's text; empty where it knows no more than the code."""
    times: int

    @property
    def name(self) -> str:
        """What the code is called."""
        return result_name(self.code)

    def __str__(self) -> str:
        text = f"0x{self.code:08X} ({self.name})" + (
            f": {self.description}" if self.description else ""
        )
        return text + (f", {self.times} times" if self.times > 1 else "")


def open(  # noqa: A001
    resource: Union[str, Simulator],
    *,
    id_query: bool = False,
    reset: bool = False,
    options: Optional[str] = None,
    module: Optional[str] = None,
) -> Session:
    """Opens a session; at the end of the `with`, or at `close()`, it ends.

    `resource` is a VISA resource name, "TCPIP::192.0.2.7::8888::SOCKET", or a simulated instrument,
    whose detector files are then loaded, too. `options` is the driver's option string: "GENERATOR"
    for an instrument without detectors. `module` is the path of the driver's module; without it the
    driver is looked for, see `python -m zentrelk4n`.
    """
    return Session(resource, id_query, reset, options, module)


class Session(ZentrelK4N):
    """An open session, and the root of the driver's surface. Any thread may use it."""

    __slots__ = (
        "__weakref__",
        "_detectors",
        "_groups",
        "_instrument",
        "_lock",
        "_module",
        "_root",
        "resource",
    )

    def __init__(
        self,
        resource: Union[str, Simulator],
        id_query: bool,
        reset: bool,
        options: Optional[str],
        module: Optional[str],
    ) -> None:
        self._groups: Dict[Tuple[type, int], Group] = {}
        self._lock = threading.RLock()
        self._instrument = ("", "")
        self.resource = resource if isinstance(resource, str) else resource.resource
        self._module = Module.load(module)
        self._root: Optional[Pointer] = self._module.create()
        super().__init__(self._root, self, "")
        _open_sessions.add(self)
        try:
            self._initialize(id_query, reset, options)
            if isinstance(resource, Simulator) and resource.detector_file is not None:
                measure.load_detectors(self, dict.fromkeys(CHANNELS, resource.detector_file))
        except BaseException:
            self._release()
            raise
        self._instrument = (
            _text_of(lambda: self.system.type),
            _text_of(lambda: self.system.serial_num),
        )

    def _initialize(self, id_query: bool, reset: bool, options: Optional[str]) -> None:
        try:
            self.initialize(self.resource, id_query, reset, options)
        except DriverError as error:
            if error.code == _UNKNOWN_RESOURCE:
                error.hint = _visa.why_not_opened(self._module.file, self.resource)
            raise

    def _group(self, kind: Type[AGroup], address: Optional[int], path: str) -> AGroup:
        """The group for an interface that the driver has given, and whose reference goes to this
        session.
        """
        pointer = Pointer(address, kind.SLOTS)
        assert address
        with self._lock:
            if self._root is None:
                del pointer  # a traceback that is kept must not keep the object
                raise Error(f"{self} is closed")
            # The driver gives the same object each time: one group, one reference.
            group = self._groups.get((kind, address))
            if group is None:
                group = self._groups[kind, address] = kind(pointer, self, path)
            assert isinstance(group, kind)
            return group

    identity = Identity = Aspect(
        IviDriverIdentity, "Identity", "The driver's identity as the IVI Foundation has it."
    )
    operation = Operation = Aspect(
        IviDriverOperation, "Operation", "How the driver operates, as the IVI Foundation has it."
    )

    @property
    def model(self) -> str:
        """The instrument's type text; empty when it does not tell."""
        return self._instrument[0]

    @property
    def serial(self) -> str:
        """The instrument's serial number; empty when it does not tell."""
        return self._instrument[1]

    @property
    def closed(self) -> bool:
        """Whether the session was closed."""
        return self._root is None

    def errors(self) -> List[Record]:
        """What the driver has met since the last time, the oldest first; the error trail is empty
        then. Equal records in a row are one.
        """
        records: List[Record] = []
        for _ in range(_MOST_RECORDS):
            code, description = self.utility.error_query()
            if code == 0:
                break
            record = Record(code & 0xFFFFFFFF, "" if description == str(code) else description, 1)
            if records and records[-1][:2] == record[:2]:
                record = record._replace(times=records.pop().times + 1)
            records.append(record)
        return records

    def measure(
        self,
        start: Optional[Quantity] = None,
        stop: Optional[Quantity] = None,
        step: Optional[Quantity] = None,
        level: Optional[Quantity] = None,
        *,
        frequency: Optional[Quantity] = None,
        frequencies: Optional[Iterable[Quantity]] = None,
        levels: Optional[Iterable[Quantity]] = None,
        dwell: Quantity = 0.0,
        averaging: int = 3,
        channels: Iterable[str] = CHANNELS,
        detectors: Union[
            None, str, os.PathLike[str], Mapping[str, Union[str, os.PathLike[str]]]
        ] = None,
        progress: Union[None, bool, Callable[[float], None]] = None,
    ) -> Trace:
        """Measures one trace; the output is switched on for it, and off behind it.

        start, stop, step: the range that is stepped. Hz, at `level` (dBm; 0 dBm when left out); or,
            with `frequency` (Hz), dBm and dB at that frequency. A range that is longer than the
            instrument delivers in one block (5461 points) is measured in pieces; what lies beyond
            the instrument's limits is left out.
        frequencies, levels: a list to step through instead, at `level` or `frequency`.
        dwell: s for each point, at most 4.29 s. averaging: 1 to 14.
        channels: those that are fetched, of "A", "B" and "R".
        detectors: a detector calibration file for all channels, or a file for each, such as
            {"A": "a.det"}. It stays loaded.
        progress: called with the share that is done, 0 to 1; True is a bar, False nothing. Left
            out: a bar on a terminal.

        DriverError, also for failures that only the error trail tells of; Error when the instrument
        cannot step so finely, and when it delivers nothing in many times the time that the sweep
        takes. Ctrl-C ends the measurement and closes the session.
        """
        plan = measure.plan(
            start, stop, step, level, frequency, frequencies, levels, dwell, averaging, channels
        )
        files = detectors if isinstance(detectors, Mapping) else dict.fromkeys(CHANNELS, detectors)
        try:
            return measure.run(
                self,
                plan,
                {name: file for name, file in files.items() if file is not None},
                progress,
            )
        except KeyboardInterrupt:
            self.close()
            raise

    def close(self) -> None:
        """Ends the session for all its groups and threads; the output is switched off. Once more
        does nothing.
        """
        with self._lock:
            if self._root is None:
                return
        try:
            super().close()
        except DriverError as error:
            if error.code != _NOT_CONNECTED:
                raise
        finally:
            self._release()

    Close = close

    def _release(self) -> None:
        with self._lock:
            self._root = None
            groups: List[Group] = [*self._groups.values(), self]
            self._groups = {}
            self._children = {}
        stub = ClosedPointer(str(self))
        for group in groups:
            group._pointer = stub
        _open_sessions.discard(self)

    def __enter__(self) -> Session:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_root", None) is not None:
            try:
                warnings.warn(f"{self} was not closed", ResourceWarning, source=self)
            finally:
                self.close()

    def __str__(self) -> str:
        model, serial = self._instrument
        instrument = (model or "the instrument") + (" " + serial if serial else "")
        return f"the session with {instrument} at {self.resource}"

    def __repr__(self) -> str:
        model, serial = self._instrument
        state = ", closed" if self.closed else ""
        instrument = f"{model or 'no type'}, serial {serial or 'unknown'}"
        return f"<k4n session: {instrument}, {self.resource}{state}>"


def _text_of(read: Callable[[], str]) -> str:
    """An instrument without these texts is as good as another."""
    try:
        return read()
    except DriverError:
        return ""


@atexit.register
def _close_all() -> None:
    for session in list(_open_sessions):
        with contextlib.suppress(Error):
            session.close()
