"""The Zentrel K4N signal generators with their detector channels, from Python.

    import zentrelk4n as k4n

    with k4n.open("TCPIP::192.0.2.7::8888::SOCKET") as gen:
        gen.rf.frequency = 2.4e9
        gen.rf.output_enabled = True
        trace = gen.measure(start="1 GHz", stop="3 GHz", step=5e6, level=-10)
        print(trace.a.max(), trace.frequency[trace.a.argmax()])
        trace.to_csv("trace.csv")

`k4n.simulate()` is an instrument to try it with. Every member of the driver is there by its Python
name and by its own: `gen.rf.output_enabled`, `gen.RF.OutputEnabled`. `python -m zentrelk4n` tells
which driver is found.
"""

from . import _surface
from ._surface import *  # noqa: F403
from .errors import (
    DriverError,
    DriverNotInstalledError,
    DriverWarning,
    Error,
    K4NError,
    UnsupportedConfigurationError,
)
from .session import Record, Session
from .session import open as open  # not for `import *`, which would hide Python's own
from .simulator import Simulator, simulate
from .trace import Origin, Trace

__all__ = [
    "DriverError",
    "DriverNotInstalledError",
    "DriverWarning",
    "Error",
    "K4NError",
    "Origin",
    "Record",
    "Session",
    "Simulator",
    "Trace",
    "UnsupportedConfigurationError",
    "simulate",
    *_surface.__all__,
]
