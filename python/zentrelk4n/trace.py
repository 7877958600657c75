"""A measured trace."""

from __future__ import annotations

import math
import os
from dataclasses import dataclass
from typing import Dict, Union

from ._arrays import Samples

CHANNELS = ("A", "B", "R")


@dataclass(frozen=True)
class Origin:
    """Where a trace comes from."""

    instrument: str
    """The type text; empty when the instrument does not tell."""
    serial: str
    resource: str
    date: str
    """Local, "2026-01-31 12:00:00"."""
    conditions: str
    """What was not stepped: "level 0 dBm, averaging 3"."""


@dataclass(frozen=True, eq=False, repr=False)
class Trace:
    """Channels of calibrated values (dBm, as the detector files calibrate them) over what was
    stepped. All are numpy arrays where numpy is installed, else array.array.
    """

    axis: str
    """What was stepped: "frequency" or "level"."""
    x: Samples
    """Hz or dBm, a value for each point."""
    channels: Dict[str, Samples]
    """The values of each channel that was fetched, by "A", "B" and "R"."""
    origin: Origin

    def __len__(self) -> int:
        return len(self.x)

    def __repr__(self) -> str:
        return f"<trace of {len(self)} points, {self.axis} stepped, {self.origin.conditions}>"

    def _channel(self, name: str) -> Samples:
        if name not in self.channels:
            raise AttributeError(f"channel {name} was not measured")
        return self.channels[name]

    @property
    def a(self) -> Samples:
        """The values of ChannelA."""
        return self._channel("A")

    @property
    def b(self) -> Samples:
        """The values of ChannelB."""
        return self._channel("B")

    @property
    def r(self) -> Samples:
        """The values of ChannelR."""
        return self._channel("R")

    @property
    def frequency(self) -> Samples:
        """The frequencies of the points in Hz, where they were stepped."""
        return self._axis("frequency")

    @property
    def level(self) -> Samples:
        """The levels of the points in dBm, where they were stepped."""
        return self._axis("level")

    def _axis(self, name: str) -> Samples:
        if self.axis != name:
            raise AttributeError(
                f"the {name} was not stepped; the conditions tell it: {self.origin.conditions}"
            )
        return self.x

    def to_csv(self, path: Union[str, os.PathLike[str]]) -> None:
        """Writes a file: a row for each point, with 17 significant digits, behind a header of
        comments.
        """
        with open(path, "w", encoding="utf-8", newline="\n") as file:
            for name in ("instrument", "serial", "resource", "date", "conditions"):
                file.write(f"# {name}: {getattr(self.origin, name)}\n")
            columns = {
                "frequency_hz" if self.axis == "frequency" else "level_dbm": self.x,
                **self.channels,
            }
            file.write(",".join(columns) + "\n")
            for row in zip(*(column.tolist() for column in columns.values())):
                file.write(",".join(map(_digits, row)) + "\n")


def _digits(value: float) -> str:
    """All digits, as C writes them: a NaN keeps its sign."""
    return f"{value:.17g}" if value == value or math.copysign(1.0, value) > 0 else "-nan"
