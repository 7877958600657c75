"""Quantities as people write them: "1e9", "2.4G", "10 MHz", "-10dBm", "5ms"."""

from __future__ import annotations

import math
import re
from typing import SupportsFloat, Union

_NUMBER = re.compile(
    r"[ \t]*([+-]?(?:\d+\.?\d*|\.\d+)(?:e[+-]?\d+)?)[ \t]*(.*?)[ \t]*", re.ASCII | re.IGNORECASE
)
# Hertz are given in kilo and more, seconds in milli and less: "5 mhz" means megahertz, as whoever
# types it does.
_PREFIXES = {
    "Hz": {"t": 1e12, "g": 1e9, "m": 1e6, "k": 1e3},
    "s": {"m": 1e-3, "u": 1e-6, "n": 1e-9, "p": 1e-12},
}


def quantity(value: Union[SupportsFloat, str], unit: str, what: str) -> float:
    """A number as it is, or a text with an optional prefix and unit. ValueError names `what`."""
    if not isinstance(value, (str, bytes)):
        return float(value)
    match = _NUMBER.fullmatch(value) if isinstance(value, str) else None
    factor = None if match is None else _factor(match[2].lower(), unit)
    if match is None or factor is None or not math.isfinite(float(match[1]) * factor):
        raise ValueError(f"{what}: not a value{' in ' + unit if unit else ''}: {value!r}")
    return float(match[1]) * factor


def _factor(suffix: str, unit: str) -> Union[float, None]:
    """What the text behind the number multiplies it by; None when it is neither prefix nor unit."""
    if suffix in ("", unit.lower()):
        return 1.0
    prefix, rest = suffix[:1], suffix[1:]
    return _PREFIXES.get(unit, {}).get(prefix) if rest in ("", unit.lower()) else None


def formatted(value: float, unit: str, digits: int = 6) -> str:
    """The value with a prefix and its unit, for people: 2400000000 Hz is "2.4 GHz"."""
    letter, factor = "", 1.0
    if unit in ("Hz", "s") and value != 0.0 and math.isfinite(value):
        scale = [
            ("T", 1e12),
            ("G", 1e9),
            ("M", 1e6),
            ("k", 1e3),
            ("", 1.0),
            ("m", 1e-3),
            ("u", 1e-6),
            ("n", 1e-9),
            ("p", 1e-12),
        ]
        letter, factor = next(
            (step for step in scale if abs(value) >= step[1] * (1.0 - 1e-12)), scale[-1]
        )
    text = f"{value / factor:.{digits}g}"
    return f"{'0' if text == '-0' else text} {letter}{unit}"
