"""The wheel: the same bytes each time, at work without numpy; the types, by mypy."""

import os
import re
import shutil
import subprocess
import sys

import pytest

from conftest import DETECTORS, DRIVER, TREE, WORK, ZK4N, zk4n

MYPY = shutil.which("mypy", path="/usr/bin:" + os.environ["PATH"])

CLIENT = """
import sys
from array import array
from typing import Optional
import zentrelk4n as k4n

def largest(resource: str, csv: str) -> Optional[float]:
    with k4n.open(resource) as gen:
        gen.rf.frequency = "2.4 GHz"
        gen.rf.output_enabled = True
        gen.sweep.mode = k4n.SweepMode.NONE
        trace = gen.measure(start="1 GHz", stop="3 GHz", step=5e6, level=-10, detectors=sys.argv[1])
        trace.to_csv(csv)
        values: object = trace.a
        assert isinstance(values, array) and trace.a[0] <= max(trace.a), values
        assert isinstance(gen.acquisition.channels.item("ChannelA").fetch_data().data_array, array)
        print(gen.RF.Frequency + gen.acquisition.averaging, len(gen.errors()))
    return None

with k4n.simulate() as instrument:
    largest(instrument.resource, sys.argv[2])
"""
MISTAKES = """
import zentrelk4n as k4n
gen = k4n.open("x")
gen.rf.frequency = None  # E: assignment
gen.system.type = "x"  # E: assignment
gen.rf.frequenzy  # E: attr-defined
gen.sweep.configure("list", 1)  # E: arg-type
reveal: str = gen.RF.Frequency  # E: assignment
"""


@pytest.fixture(scope="session")
def environment(tmp_path_factory):
    """The interpreter of an environment with nothing but the wheel."""
    folder = tmp_path_factory.mktemp("wheel")
    commands = [[TREE / "scripts/wheel", folder / name] for name in ("first", "second")]
    commands.append([sys.executable, "-m", "venv", folder / "venv"])
    steps = [subprocess.Popen(command) for command in commands]
    assert [step.wait() for step in steps] == [0, 0, 0]
    (wheel,), (again,) = ((folder / name).iterdir() for name in ("first", "second"))
    assert wheel.name == again.name and wheel.read_bytes() == again.read_bytes()
    python = folder / "venv/bin/python"
    install = [python, "-m", "pip", "install", "-q", "--no-index", "--no-deps", wheel]
    subprocess.run(install, check=True)
    return python


def run(python, *arguments, **variables):
    """(status, output) without this tree on the path."""
    surroundings = {**os.environ, **variables}
    surroundings.pop("PYTHONPATH")
    command = [python, "-W", "error", *map(str, arguments)]
    done = subprocess.run(command, env=surroundings, text=True, cwd="/", capture_output=True)
    return done.returncode, done.stdout + done.stderr


def test_it_measures_in_a_fresh_environment(environment, tmp_path):
    (tmp_path / "client.py").write_text(CLIENT)
    done = run(environment, tmp_path / "client.py", DETECTORS, tmp_path / "python.csv")
    assert done == (0, "1000000003.0 0\n")
    zk4n("measure", "--simulate", "--level=-10", "--csv", tmp_path / "client.csv")
    texts = ((tmp_path / name).read_text() for name in ("python.csv", "client.csv"))
    rows = [[line for line in text.splitlines() if not line.startswith("#")] for text in texts]
    assert rows[0] == rows[1] and len(rows[0]) == 402


def test_it_tells_what_it_found(environment):
    project = re.search(r"^project\(.*", (TREE / "CMakeLists.txt").read_text(), re.MULTILINE)[0]
    status, text = run(environment, "-m", "zentrelk4n")
    lines = dict(re.split(": +", line, 1) for line in text.splitlines())
    assert status == 0 and lines["package"] in project
    assert lines["driver"] == f"{DRIVER} (by ZENTREL_K4N_MODULE)"
    assert lines["simulator"] == str(ZK4N)
    assert lines["arrays"] == "array.array: numpy is not installed"
    status, text = run(environment, "-m", "zentrelk4n", ZENTREL_K4N_MODULE="")
    if os.path.exists("/usr/lib/x86_64-linux-gnu/zentrel-k4n"):
        pytest.skip("the driver is installed on this machine")
    assert status == 1
    told = "driver:    the Zentrel K4N driver is not installed: no module at"
    assert text.splitlines()[-1].startswith(told)


def test_types(tmp_path):
    for name, content in (("client.py", CLIENT), ("mistakes.py", MISTAKES)):
        (tmp_path / name).write_text(content)
    options = ["--config-file", "python/pyproject.toml", "--no-error-summary"]
    files = ["python/zentrelk4n", tmp_path / "client.py", tmp_path / "mistakes.py"]
    checks = []
    for system in ("linux", "win32"):
        place = ["--cache-dir", WORK / f"mypy-{system}", "--platform", system]
        command = [MYPY, *options, *place, *files]
        checks.append(subprocess.Popen(command, cwd=TREE, text=True, stdout=subprocess.PIPE))
    rows = enumerate(MISTAKES.splitlines(), 1)
    wanted = [(f"{number}", row.split("# E: ")[1]) for number, row in rows if "# E: " in row]
    for check in checks:
        told = check.communicate()[0]
        assert re.findall(r":(\d+): error: .*\[([\w-]+)\]$", told, re.MULTILINE) == wanted, told
