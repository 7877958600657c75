"""The wheel: the same bytes each time, and what it does in a fresh environment without numpy; the types, by mypy."""

import os
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
        assert isinstance(values, array), values
        assert isinstance(gen.acquisition.channels.item("ChannelA").fetch_data().data_array, array)
        print(gen.RF.Frequency + gen.acquisition.averaging, len(gen.errors()), trace.a[0] <= max(trace.a))
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
    steps = [subprocess.Popen(command) for command in (
        [TREE / "scripts/wheel", folder / "first"], [TREE / "scripts/wheel", folder / "second"],
        [sys.executable, "-m", "venv", folder / "venv"])]
    assert [step.wait() for step in steps] == [0, 0, 0]
    (wheel,), (again,) = ((folder / name).iterdir() for name in ("first", "second"))
    assert wheel.name == again.name and wheel.read_bytes() == again.read_bytes()
    python = folder / "venv/bin/python"
    subprocess.run([python, "-m", "pip", "install", "-q", "--no-index", "--no-deps", wheel], check=True)
    return python


def run(python, *arguments, **variables):
    """(status, output) without this tree on the path."""
    surroundings = {**os.environ, **variables}
    surroundings.pop("PYTHONPATH")
    done = subprocess.run([python, "-W", "error", *map(str, arguments)], env=surroundings, text=True, cwd="/",
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.returncode, done.stdout


def test_it_measures_in_a_fresh_environment(environment, tmp_path):
    (tmp_path / "client.py").write_text(CLIENT)
    assert run(environment, tmp_path / "client.py", DETECTORS, tmp_path / "python.csv") == (0, "1000000003.0 0 True\n")
    zk4n("measure", "--simulate", "--level=-10", "--csv", tmp_path / "client.csv")
    rows = [[line for line in (tmp_path / name).read_text().splitlines() if not line.startswith("#")]
            for name in ("python.csv", "client.csv")]
    assert rows[0] == rows[1] and len(rows[0]) == 402


def test_it_tells_what_it_found(environment):
    version = next(line for line in (TREE / "CMakeLists.txt").read_text().splitlines() if line.startswith("project("))
    status, text = run(environment, "-m", "zentrelk4n")
    lines = dict(line.split(": ", 1) for line in text.splitlines())
    assert status == 0 and lines["package"].strip() in version
    assert lines["driver"].strip() == f"{DRIVER} (by ZENTREL_K4N_MODULE)" and lines["simulator"].strip() == str(ZK4N)
    assert lines["arrays"].strip() == "array.array: numpy is not installed"
    status, text = run(environment, "-m", "zentrelk4n", ZENTREL_K4N_MODULE="")
    if os.path.exists("/usr/lib/x86_64-linux-gnu/zentrel-k4n"):
        pytest.skip("the driver is installed on this machine")
    assert status == 1
    assert text.splitlines()[-1].startswith("driver:    the Zentrel K4N driver is not installed: no module at")


def test_types(tmp_path):
    for name, content in (("client.py", CLIENT), ("mistakes.py", MISTAKES)):
        (tmp_path / name).write_text(content)
    checks = [subprocess.Popen([MYPY, "--config-file", "python/pyproject.toml", "--cache-dir", WORK / f"mypy-{system}",
                                "--platform", system, "--no-error-summary", "python/zentrelk4n",
                                tmp_path / "client.py", tmp_path / "mistakes.py"], cwd=TREE, text=True,
                               stdout=subprocess.PIPE) for system in ("linux", "win32")]
    wanted = [(f"{number}", line.split("# E: ")[1])
              for number, line in enumerate(MISTAKES.splitlines(), 1) if "# E: " in line]
    for check in checks:
        told = check.communicate()[0].splitlines()
        assert [(line.split(":")[1], line.split("[")[-1].rstrip("]")) for line in told] == wanted, told
