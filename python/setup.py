"""The version is the project's: the top CMakeLists.txt is its one place."""

import re
from pathlib import Path

from setuptools import setup

PROJECT = (Path(__file__).resolve().parent.parent / "CMakeLists.txt").read_text()
setup(version=re.search(r"^project\(.*\bVERSION\s+([\d.]+)", PROJECT, re.MULTILINE)[1])
