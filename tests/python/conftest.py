"""What the tests share: the built driver, a simulated instrument, a session with it."""

import contextlib
import os
import pathlib
import subprocess

import pytest

import zentrelk4n as k4n
from zentrelk4n import _module

MODULES = pathlib.Path(os.environ["ZK_MODULES"])
WORK = pathlib.Path(os.environ["ZK_WORK"])
DRIVER = MODULES / "libZentrelK4NLib.so"
ZK4N = MODULES / "zk4n"
TREE = pathlib.Path(__file__).resolve().parent.parent.parent
DETECTORS = TREE / "data/calibr20.det"


@pytest.fixture(autouse=True, scope="session")
def surroundings(tmp_path_factory):
    """The built driver, and nothing of the user's."""
    nowhere = tmp_path_factory.mktemp("nowhere")
    os.environ["ZENTREL_K4N_MODULE"] = str(DRIVER)
    os.environ["ZENTREL_REGISTRY"] = str(nowhere / "registry")
    os.environ["ZENTREL_COMMON_FILES"] = os.environ["ZENTREL_DOCUMENTS"] = str(nowhere)
    yield
    assert _module.Module.load().can_unload(), "something of the driver is still held"


@pytest.fixture(scope="session")
def simulator():
    with k4n.simulate() as instrument:
        yield instrument


@contextlib.contextmanager
def simulated(**options):
    """A session with an instrument of its own; without detector files, as it does not know them."""
    with k4n.simulate(**options) as instrument, k4n.open(instrument.resource) as session:
        yield session


@pytest.fixture
def gen(simulator):
    with k4n.open(simulator) as session:
        yield session


def zk4n(*arguments, script=None):
    """What the client prints."""
    command = [ZK4N, *map(str, arguments)]
    return subprocess.run(command, input=script, capture_output=True, text=True, check=True).stdout
