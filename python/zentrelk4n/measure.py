"""One stepped measurement: set up, start, wait, fetch; as the client's `zk4n measure` does it."""

from __future__ import annotations

import math
import os
import sys
import time
from contextlib import contextmanager
from typing import (
    TYPE_CHECKING,
    Any,
    Callable,
    Dict,
    Iterable,
    Iterator,
    List,
    Mapping,
    NamedTuple,
    Optional,
    Tuple,
)
from typing import Union

from ._arrays import Samples, joined, ramp, samples_of
from ._quantity import formatted, quantity
from ._surface import (
    AcquisitionStatus,
    FrequencyStepScaling,
    Quantity,
    SweepMode,
    SweepTriggerSource,
)
from .errors import DriverError, Error
from .trace import CHANNELS, Origin, Trace

if TYPE_CHECKING:
    from .session import Session

_POLL_INTERVAL = 0.005  # s
_PATIENCE = 10.0  # s, beyond what the sweep may take
_MOST_LIST_POINTS = 5461  # of one data block
_MOST_POINTS = 1e6

Progress = Callable[[float], None]


class Plan(NamedTuple):
    """What is measured. Hz or dBm by the axis; the other one is fixed."""

    axis: str  # "frequency" or "level"
    start: float
    stop: float
    step: float  # 0 with a list
    values: List[float]  # the list; empty for a range
    fixed: float
    dwell: float  # s
    averaging: int
    channels: Tuple[str, ...]

    @property
    def unit(self) -> str:
        """Of what is stepped."""
        return "Hz" if self.axis == "frequency" else "dBm"

    def points(self) -> int:
        """As many as are asked for."""
        if self.values:
            return len(self.values)
        return max(1, _rounded((self.stop - self.start) / self.step) + 1)

    def conditions(self) -> str:
        """What is not stepped."""
        fixed = (
            f"level {formatted(self.fixed, 'dBm')}"
            if self.axis == "frequency"
            else f"at {formatted(self.fixed, 'Hz', 10)}"
        )
        dwell = f", dwell {formatted(self.dwell, 's')}" if self.dwell > 0.0 else ""
        return f"{fixed}{dwell}, averaging {self.averaging}"


class Segment(NamedTuple):
    """One sweep of the instrument as it reads back; a list is one with its points."""

    start: float
    stop: float
    step: float
    points: int


def plan(
    start: Optional[Quantity],
    stop: Optional[Quantity],
    step: Optional[Quantity],
    level: Optional[Quantity],
    frequency: Optional[Quantity],
    frequencies: Optional[Iterable[Quantity]],
    levels: Optional[Iterable[Quantity]],
    dwell: Quantity,
    averaging: int,
    channels: Iterable[str],
) -> Plan:
    """The plan that the arguments of `Session.measure` make; ValueError says what is wrong with
    them.
    """
    if frequencies is not None and levels is not None:
        raise ValueError(
            "give either frequencies or levels: "
            "the instrument steps every frequency with every level"
        )
    listed = levels if frequencies is None else frequencies
    if (listed is None) == (start is None or stop is None or step is None) or (
        listed is not None and not start is stop is step is None
    ):
        raise ValueError("give start, stop and step, or a list of frequencies or of levels")
    axis = (
        "frequency"
        if frequencies is not None or (levels is None and frequency is None)
        else "level"
    )
    fixed_name, fixed, other = (
        ("level", level, frequency) if axis == "frequency" else ("frequency", frequency, level)
    )
    if other is not None:
        raise ValueError("give either level or frequency: the one that is not stepped")
    if fixed is None and axis == "level":
        raise ValueError("give the frequency at which the level is stepped")
    unit, fixed_unit, step_unit = (
        ("Hz", "dBm", "Hz") if axis == "frequency" else ("dBm", "Hz", "dB")
    )
    result = Plan(
        axis,
        _or_zero(start, unit, "start"),
        _or_zero(stop, unit, "stop"),
        _or_zero(step, step_unit, "step"),
        [quantity(value, unit, "a value of the list") for value in listed or ()],
        _or_zero(fixed, fixed_unit, fixed_name),
        quantity(dwell, "s", "dwell"),
        averaging,
        tuple(channels),
    )
    _require_sound(result, listed is not None)
    return result


def _or_zero(value: Optional[Quantity], unit: str, what: str) -> float:
    return 0.0 if value is None else quantity(value, unit, what)


def _require_sound(plan: Plan, is_list: bool) -> None:
    for wrong, text in (
        (is_list and not plan.values, "the list is empty"),
        (plan.stop < plan.start, "stop is below start"),
        (not is_list and not plan.step > 0.0, "step must be above 0"),
        (plan.dwell < 0.0, "dwell must not be negative"),
        (not 1 <= plan.averaging <= 14, "averaging: 1 to 14"),
        (not plan.channels or not set(plan.channels) <= set(CHANNELS), "channels: of A, B and R"),
        (
            not is_list and plan.step > 0.0 and (plan.stop - plan.start) / plan.step > _MOST_POINTS,
            "more than a million points",
        ),
    ):
        if wrong:
            raise ValueError(text)


def load_detectors(session: Session, files: Mapping[str, Any]) -> None:
    """Loads a detector calibration file into each of the channels named."""
    for name, file in files.items():
        if name not in CHANNELS:
            raise ValueError(f"detectors: A, B and R have files, not {name!r}")
        _channel(session, name).load_detector_data_from_file(os.fspath(file))


def run(
    session: Session,
    plan: Plan,
    detectors: Mapping[str, Any],
    progress: Union[None, bool, Progress],
) -> Trace:
    """Measures the plan on an open session."""
    load_detectors(session, detectors)
    date = time.strftime("%Y-%m-%d %H:%M:%S")
    origin = Origin(session.model, session.serial, session.resource, date, plan.conditions())
    with _shown(progress) as show:
        x, channels = _Run(session, plan, show).measure()
    return Trace(
        plan.axis, joined(x), {name: joined(pieces) for name, pieces in channels.items()}, origin
    )


class _Run:
    """A measurement under way."""

    def __init__(self, session: Session, plan: Plan, progress: Progress) -> None:
        self._session, self._plan, self._progress = session, plan, progress
        self._done = 0  # points

    def measure(self) -> Tuple[List[Samples], Dict[str, List[Samples]]]:
        """The pieces of the axis and of each channel."""
        self._set_up()
        x: List[Samples] = []
        channels: Dict[str, List[Samples]] = {name: [] for name in self._plan.channels}
        rf = self._session.rf
        try:
            rf.output_enabled = True
            for segment in self._segments():
                self._acquire(segment)
                self._done += self._fetch(segment, x, channels)
                self._show(0.0)
        except BaseException:
            # The first failure is the one to tell; the link may be gone.
            _quietly(self._session.acquisition.abort)
            _quietly(lambda: setattr(rf, "output_enabled", False))
            raise
        rf.output_enabled = False
        return x, channels

    def _set_up(self) -> None:
        plan, session = self._plan, self._session
        first = plan.values[0] if plan.values else plan.start
        session.rf.level, session.rf.frequency = (
            (plan.fixed, first) if plan.axis == "frequency" else (first, plan.fixed)
        )
        session.acquisition.averaging = plan.averaging
        session.sweep.frequency_step.dwell = plan.dwell

    def _segments(self) -> Iterator[Segment]:
        """Configures one sweep after the other, as many as it takes."""
        plan = self._plan
        if plan.values:
            for begin in range(0, len(plan.values), _MOST_LIST_POINTS):
                yield self._configure_list(plan.values[begin : begin + _MOST_LIST_POINTS])
            return
        start = plan.start
        while True:
            segment = self._configure_range(start)
            if self._done > 0 and abs(segment.start - start) > plan.step / 2:
                return  # the instrument's limit
            before = self._done
            yield segment
            start = segment.start + segment.step * (self._done - before)
            # Half a step short of the stop: nothing is left to measure.
            if segment.step <= 0.0 or start > plan.stop + segment.step / 2:
                return

    def _configure_range(self, start: float) -> Segment:
        plan, sweep = self._plan, self._session.sweep
        self._session.errors()
        if plan.axis == "frequency":
            group: Any = sweep.frequency_step
            sweep.frequency_step.configure_start_stop(
                start, plan.stop, FrequencyStepScaling.LINEAR, plan.step
            )
        else:
            group = sweep.power_step
            sweep.power_step.configure_start_stop(start, plan.stop, plan.step)
        first, last, step = group.start, group.stop, group.size
        # A step that the instrument refuses is no failure of the member that sets it.
        self._check_trail(group._member("ConfigureStartStop"))
        clamped = abs(first - start) > plan.step / 2
        if step == 0.0 and plan.stop - start >= plan.step and not clamped:
            step = formatted(plan.step, plan.unit.replace("dBm", "dB"))
            raise Error(f"the instrument cannot make steps of {step}")
        by_frequency = plan.axis == "frequency"
        mode = SweepMode.FREQUENCY_STEP if by_frequency else SweepMode.POWER_STEP
        sweep.configure(mode, SweepTriggerSource.SOFTWARE)
        return Segment(first, last, step, 1 if step == 0.0 else _rounded((last - first) / step) + 1)

    def _configure_list(self, values: List[float]) -> Segment:
        plan, sweep = self._plan, self._session.sweep
        self._session.errors()
        frequencies, levels = (
            (values, [plan.fixed]) if plan.axis == "frequency" else ([plan.fixed], values)
        )
        sweep.list.create_frequency_power("", frequencies, levels)
        self._check_trail("Sweep.List.CreateFrequencyPower")
        sweep.configure(SweepMode.LIST, SweepTriggerSource.SOFTWARE)
        # What the instrument corrected has come back.
        plan.values[self._done : self._done + len(values)] = values
        return Segment(values[0], values[-1], 0.0, len(values))

    def _acquire(self, segment: Segment) -> None:
        """Starts the sweep and waits for its data, as long as it may take with the dwell and
        averaging of the plan.
        """
        acquisition, plan = self._session.acquisition, self._plan
        expected = segment.points * plan.dwell * max(1, plan.averaging)
        started = time.monotonic()
        acquisition.initiate()
        self._check_trail("Acquisition.Initiate")
        while True:
            status = acquisition.status
            if status == AcquisitionStatus.COMPLETE:
                return
            # What goes wrong while the instrument sweeps is told in the trail alone.
            self._check_trail("measurement")
            if status == AcquisitionStatus.UNKNOWN:
                raise Error("measurement: the driver cannot tell its status")
            elapsed = time.monotonic() - started
            if elapsed > 3 * expected + _PATIENCE:
                raise Error("no data from the instrument: gave up waiting for the sweep")
            self._show(segment.points * min(1.0, elapsed / expected) if expected else 0.0)
            time.sleep(_POLL_INTERVAL)

    def _fetch(self, segment: Segment, x: List[Samples], channels: Dict[str, List[Samples]]) -> int:
        """Adds the segment's values and gives their number."""
        points = 0
        for name, pieces in channels.items():
            values, initial_x, increment = _channel(self._session, name).fetch_data()
            pieces.append(values)
            points = len(values)
        listed = self._plan.values[self._done : self._done + points]
        x.append(samples_of(listed) if listed else ramp(initial_x, increment, points))
        return points

    def _check_trail(self, what: str) -> None:
        records = self._session.errors()
        if records:
            oldest = records[0]
            more = "; ".join(map(str, records[1:4]))
            raise DriverError(
                what, oldest.code, oldest.description, hint=f"error trail: {more}" if more else ""
            )

    def _show(self, points: float) -> None:
        self._progress(min(1.0, (self._done + points) / self._plan.points()))


def _channel(session: Session, name: str) -> Any:
    return session.acquisition.channels.item(f"Channel{name}")


def _rounded(value: float) -> int:
    """To the nearest, halves away from zero, as C does."""
    return int(math.copysign(math.floor(abs(value) + 0.5), value))


def _quietly(action: Callable[[], Any]) -> None:
    try:
        action()
    except Error:
        pass


@contextmanager
def _shown(progress: Union[None, bool, Progress]) -> Iterator[Progress]:
    """Who is told of the progress."""
    if callable(progress):
        yield progress
    elif progress is False or (progress is None and not (sys.stderr and sys.stderr.isatty())):
        yield lambda share: None
    else:
        bar = _Bar()
        try:
            yield bar.show
        finally:
            bar.end()


class _Bar:
    """A bar on the error channel, for what takes longer than a blink."""

    _WIDTH, _BLINK = 40, 0.5  # characters; s

    def __init__(self) -> None:
        self._started, self._shown = time.monotonic(), -1

    def show(self, share: float) -> None:
        """Draws it where it has changed."""
        percent = int(100 * share)
        if percent == self._shown or time.monotonic() - self._started < self._BLINK:
            return
        self._shown = percent
        filled = int(share * self._WIDTH)
        sys.stderr.write(
            f"\rMeasuring [{'#' * filled}{'.' * (self._WIDTH - filled)}] {percent:3d} %"
        )
        sys.stderr.flush()

    def end(self) -> None:
        """Leaves the line."""
        if self._shown >= 0:
            sys.stderr.write("\n")
