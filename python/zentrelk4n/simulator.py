"""A simulated instrument beside the program."""

from __future__ import annotations

import atexit
import os
import shutil
import subprocess
import sys
from pathlib import Path
from typing import Dict, Iterator, List, Optional, Tuple, Union

from . import _module
from .errors import DriverNotInstalledError, Error

_PROGRAM = "zk4n.exe" if sys.platform == "win32" else "zk4n"
_PATIENCE = 5.0  # seconds for its end

Option = Union[str, float, bool, None, List[str], Tuple[str, ...]]


def simulate(*, program: Optional[str] = None, **options: Option) -> Simulator:
    """Starts a simulated instrument on a free port; at the end of the `with`, or at `close()`, it
    ends.

    The options are those of `zk4n simulate`, which tells what there is: device="flat", serial="42",
    fault=["silence:command=6"], no_pulse_modulator=True. `program` is the path of zk4n; without it,
    the one beside the driver or on the search path is taken. Its requests are shown by `zk4n
    simulate --log` and `--show` in a terminal.

        with k4n.simulate(centre="2 GHz") as instrument, k4n.open(instrument) as gen:
            ...
    """
    if options.keys() & {"log", "show", "port"}:
        raise ValueError("log, show and port are for `zk4n simulate` in a terminal")
    return Simulator(find_program(program), ["simulate", "--port", "0", *_arguments(options)])


def _arguments(options: Dict[str, Option]) -> Iterator[str]:
    for name, value in options.items():
        option = "--" + name.replace("_", "-")
        if value is True:
            yield option
        elif value is not None and value is not False:
            for item in value if isinstance(value, (list, tuple)) else [str(value)]:
                yield f"{option}={item}"


def find_program(program: Optional[str]) -> str:
    """The path of zk4n."""
    if program is not None:
        return program
    for place in _module.places():
        beside = os.path.join(os.path.dirname(os.path.realpath(place.file)), _PROGRAM)
        if os.path.isfile(beside):
            return beside
    found = shutil.which(_PROGRAM)
    if found is None:
        raise DriverNotInstalledError(
            f"{_PROGRAM}, which simulates the instrument, is neither beside the driver nor on PATH"
        )
    return found


class Simulator:
    """A running simulated instrument; see `simulate`."""

    def __init__(self, program: str, arguments: List[str]) -> None:
        # Ctrl-C is for the measurement, which still needs the instrument to close the session.
        group = {"creationflags": 0x200} if sys.platform == "win32" else {"start_new_session": True}
        try:
            self._process = subprocess.Popen(
                [program, *arguments],
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=subprocess.PIPE,
                text=True,
                **group,
            )  # type: ignore[call-overload]
        except OSError as error:
            raise Error(f"the simulator {program} cannot be started: {error.strerror}") from None
        self.program = program
        self.resource: str = self._process.stdout.readline().strip()
        """The name that `open` takes."""
        if not self.resource:
            message = self._process.communicate()[1].strip()
            raise Error(f"the simulator did not start: {message or 'it says nothing'}")
        atexit.register(self.close)

    @property
    def detector_file(self) -> Optional[str]:
        """The file that its detectors are calibrated by, where it lies beside the program."""
        file = Path(os.path.realpath(self.program)).with_name("calibr20.det")
        return str(file) if file.is_file() else None

    def close(self) -> None:
        """Ends it."""
        atexit.unregister(self.close)
        self._process.terminate()
        try:
            self._process.communicate(timeout=_PATIENCE)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.communicate()

    def __enter__(self) -> Simulator:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "" if self._process.poll() is None else ", ended"
        return f"<simulated instrument {self.resource}{state}>"
