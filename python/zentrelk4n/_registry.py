"""Where the driver's class is registered: the system's registry on Windows, elsewhere the files
that stand for it.
"""

from __future__ import annotations

import os
import re
import sys
from pathlib import Path
from typing import Dict, List, Optional

from ._surface import CLSID

_SERVER = rf"CLSID\{CLSID}\InprocServer32"


if sys.platform == "win32":
    import winreg

    def registered_module() -> Optional[str]:
        """The module of the registered driver class; None when there is none."""
        try:
            return winreg.QueryValue(winreg.HKEY_CLASSES_ROOT, _SERVER)
        except OSError:
            return None

else:

    def registered_module() -> Optional[str]:
        """The module of the registered driver class; None when there is none."""
        keys: Dict[str, str] = {}
        for file in reversed(_files()):
            keys.update(_default_values(file))
        for root in ("HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE"):
            found = keys.get(rf"{root}\Software\Classes\{_SERVER}".lower())
            if found:
                return found
        return None


def _files() -> List[Path]:
    """The user's file and the machine's; ZENTREL_REGISTRY names one file for both."""
    both = os.environ.get("ZENTREL_REGISTRY")
    if both:
        return [Path(both)]
    data = os.environ.get("XDG_DATA_HOME", "")
    home = os.environ.get("HOME", "")
    if not os.path.isabs(data) and home:
        data = os.path.join(home, ".local/share")
    files = [Path(data, "zentrel/registry")] if os.path.isabs(data) else []
    return [*files, Path(os.environ.get("ZENTREL_MACHINE_REGISTRY") or "/var/lib/zentrel/registry")]


def _default_values(file: Path) -> Dict[str, str]:
    """The default value of each key, by the key's path in lower case."""
    try:
        lines = file.read_text(encoding="utf-8").splitlines()
    except (OSError, UnicodeDecodeError):
        return {}
    values: Dict[str, str] = {}
    key = ""
    for line in lines:
        if line.startswith("["):
            key = line[1:-1].lower()
        elif line.startswith('@="'):
            values[key] = re.sub(
                r"\\(.)",
                lambda escape: {"n": "\n", "r": "\r"}.get(escape[1], escape[1]),
                line[3:-1],
            )
    return values
