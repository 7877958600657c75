"""What can go wrong, and what is more than success."""

from __future__ import annotations

import sys
import warnings

from ._result_names import RESULT_NAMES


class Error(Exception):
    """Whatever this package raises of its own; the exceptions below are of this class."""


class DriverNotInstalledError(Error):
    """There is no driver module where it was looked for; the text tells where."""


class UnsupportedConfigurationError(Error):
    """The driver does not work with this Python or on this system."""


class DriverError(Error):
    """A member of the driver failed."""

    def __init__(
        self,
        member: str,
        code: int,
        description: str = "",
        source: str = "",
        interface: str = "",
        hint: str = "",
    ) -> None:
        super().__init__(member, code, description, source, interface, hint)
        self.member = member
        """The member by its path, "RF.Frequency"."""
        self.code = code
        """The result, as the 32 bits without a sign that documents show: 0x8004701D."""
        self.description = description
        """The driver's own text; empty where it has none and `gen.errors()` may tell more."""
        self.source = source
        """The ProgID of the class that reports; empty for a driver that is not registered."""
        self.interface = interface
        """The name of the interface that reports, or its identifier."""
        self.hint = hint
        """What was found out besides."""

    @property
    def name(self) -> str:
        """What the code is called."""
        return result_name(self.code)

    def __str__(self) -> str:
        text = f"{self.member}: 0x{self.code:08X} ({self.name})"
        return (
            text
            + (f": {self.description}" if self.description else "")
            + (f" [{self.hint}]" if self.hint else "")
        )


K4NError = DriverError


class DriverWarning(UserWarning):
    """A member succeeded, but not plainly: the instrument's notices 1 to 6, 10057 (no session), and
    the two warnings of Initialize.
    """

    def __init__(self, member: str, code: int) -> None:
        super().__init__(member, code)
        self.member = member
        self.code = code

    @property
    def name(self) -> str:
        """What the code is called."""
        return result_name(self.code)

    def __str__(self) -> str:
        return f"{self.member}: 0x{self.code:08X} ({self.name})"


# Each one is shown, not only the first of a place; what the program itself has asked for comes
# before.
warnings.simplefilter("always", DriverWarning, append=True)


def result_name(code: int) -> str:
    """What a result is called. `code` is taken as 32 bits, with or without a sign."""
    code &= 0xFFFFFFFF
    if code in RESULT_NAMES:
        return RESULT_NAMES[code]
    if 1 <= code <= 6:
        return "instrument notice"
    if code >= 0xFFFF8000:
        return "instrument error code"
    return "VISA error" if code >> 16 == 0xBFFF else "unnamed result"


def warn(member: str, code: int) -> None:
    """Warns at the line that called this package."""
    level, frame = 1, sys._getframe()
    while frame.f_back is not None and frame.f_globals["__name__"].partition(".")[0] == __package__:
        level, frame = level + 1, frame.f_back
    warnings.warn(DriverWarning(member, code), stacklevel=level)
