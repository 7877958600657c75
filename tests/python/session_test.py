"""Sessions: how they open and end, what they say when something is wrong, many, many threads."""

import concurrent.futures
import contextlib
import gc
import os
import pathlib
import pickle
import re
import subprocess
import sys
import threading
import time
import warnings

import numpy
import pytest

import zentrelk4n as k4n
from conftest import DRIVER, MODULES, simulated, zk4n
from zentrelk4n import _module
from zentrelk4n._members import report
from zentrelk4n._surface import CLSID


def test_a_session_tells_what_it_is(simulator):
    with k4n.open(simulator) as gen:
        rf = gen.rf
        assert repr(gen) == f"<k4n session: K4N-20, serial {gen.serial}, {simulator.resource}>"
        assert gen.model == gen.system.type and gen.serial.startswith("1101190042")
        session = f"the session with K4N-20 {gen.serial} at {simulator.resource}"
        assert repr(gen.sweep.list) == f"<Sweep.List of {session}>"
    assert gen.closed and repr(gen).endswith(", closed>")
    gen.close()
    uses = [lambda: gen.rf, lambda: rf.frequency, lambda: setattr(rf, "level", 0), gen.errors]
    uses += [lambda: gen.identity, lambda: gen.measure(start=1, stop=2, step=1)]
    for use in uses:
        with pytest.raises(k4n.Error, match=f"^{re.escape(session)} is closed$"):
            use()


def test_a_session_that_is_dropped_is_closed(simulator):
    with pytest.warns(ResourceWarning, match="was not closed"):
        k4n.open(simulator)
        gc.collect()
    k4n.open(simulator).close()


def run_program(script, simulator, *options):
    script = "import os, sys, zentrelk4n as k4n\ngen = k4n.open(sys.argv[1])\n" + script
    command = [sys.executable, *options, "-c", script, simulator.resource]
    return subprocess.run(command, text=True, capture_output=True)


def test_the_end_of_the_program_closes_what_is_open(simulator):
    script = """process = k4n.simulate()._process
assert os.getpgid(process.pid) != os.getpgid(0)
print(process.pid)"""
    done = run_program(script, simulator, "-X", "dev")
    assert (done.returncode, done.stderr) == (0, "")
    with pytest.raises(ProcessLookupError):
        os.kill(int(done.stdout), 0)
    k4n.open(simulator).close()


@pytest.mark.parametrize("arguments, code, name", [
    (dict(id_query=True), 0x47065, "identification query not supported"),
    (dict(reset=True), 0x47066, "reset not supported"),
    (dict(id_query=True, reset=True), 0x47065, "identification query not supported")])  # fmt: skip
def test_successes_that_are_more_are_warnings(simulator, arguments, code, name):
    with pytest.warns(k4n.DriverWarning) as caught, k4n.open(simulator, **arguments):
        pass
    (found,) = caught
    assert (found.message.code, found.message.name, found.filename) == (code, name, __file__)


@pytest.mark.parametrize(
    "action, told", [("default", (3, 0)), ("error", (1, 1)), ("ignore", (0, 0))]
)
def test_every_notice_is_told_each_time_unless_the_program_says_otherwise(simulator, action, told):
    script = "k4n.ZentrelK4N.close(gen)\nfor _ in '123':\n    gen.rf.disable_all_modulation()"
    done = run_program(script, simulator, *([] if action == "default" else [f"-W{action}"]))
    notice = "DriverWarning: RF.DisableAllModulation: 0x00002749 (no instrument session)"
    assert (done.stderr.count(notice), done.returncode) == told


def test_the_instrument_s_notices_have_a_name(recwarn):
    report("RF.Level", 4)
    assert str(recwarn.pop(k4n.DriverWarning).message) == "RF.Level: 0x00000004 (instrument notice)"


def test_a_session_that_was_closed_behind_its_back(simulator):
    with k4n.open(simulator) as gen:
        k4n.ZentrelK4N.close(gen)
        told = "RF.Frequency: 0x8004701D .not connected.: A connection"
        with pytest.raises(k4n.K4NError, match=told):
            gen.rf.frequency = 1e9


def test_failures_carry_what_the_driver_tells(gen):
    with pytest.raises(k4n.DriverError) as caught:
        gen.acquisition.channels.item("channela")
    error = pickle.loads(pickle.dumps(caught.value))
    member, name = "Acquisition.Channels.Item", "unknown channel name"
    assert (error.code, error.name, error.member) == (0x80047020, name, member)
    assert (error.interface, error.source) == ("IZentrelK4NChannels", "")
    assert str(error) == f"{member}: 0x80047020 ({name}): ZentrelK4NLib: Unknown channel name."
    # A failure that brings no text has none of an earlier one, whose information nobody took.
    assert gen.utility._pointer.call(3) < 0
    with pytest.raises(k4n.DriverError) as caught:
        gen.acquisition.channels.item("ChannelA").frequency_divider = 0.5
    assert caught.value.code == 0x80047010 and caught.value.description == ""


def test_the_error_trail_is_emptied():
    with simulated(fault="refuse:status=-32766,command=3,parameter=5") as gen:
        assert gen.errors() == []
        for _ in range(3):
            with pytest.raises(k4n.DriverError, match="0xFFFF8002 .instrument: request not supp"):
                gen.sweep.list.dwell = 1e-3
        assert gen.errors() == [k4n.Record(0xFFFF8002, "", 3)] and gen.errors() == []


@pytest.mark.parametrize("resource, hint", [
    ("TCPIP0::127.0.0.1::1::SOCKET", "0xBFFF0011"), ("no resource", "0xBFFF0012"),
    (None, r"held by process \d+ \(python")], ids=["nobody", "no name", "busy"])  # fmt: skip
def test_a_session_that_does_not_open_says_why(gen, resource, hint):
    before = len(os.listdir("/proc/self/fd"))
    told = rf"^Initialize: 0x80047060 \(unknown resource\): .*\. \[.*{hint}.*\]$"
    with pytest.raises(k4n.DriverError, match=told):
        k4n.open(resource or gen.resource)
    assert len(os.listdir("/proc/self/fd")) == before


def elf(bits):
    machine = 3 if bits == 32 else 0x3E
    return b"\x7fELF" + bytes([bits // 32]) + bytes(13) + bytes([machine, 0]) + bytes(4096)


ABSENT, WRONG = k4n.DriverNotInstalledError, k4n.UnsupportedConfigurationError


@pytest.mark.parametrize("content, kind, text", [
    (None, ABSENT, r"there is no driver module .*module.so \(as given\)"),
    (b"text", ABSENT, "module.so is not the driver's module"),
    (elf(64), ABSENT, "the driver module cannot be loaded: .*module.so"),
    (elf(32), WRONG, "this Python has 64 bits, and .*module.so is a 32-bit module"),
    (b"\x7fELF" + bytes(14) + b"\xb7\x00", WRONG, "for another processor"),
    (b"MZ" + bytes(0x3A) + b"\x40\0\0\0PE\0\0\x64\x86", WRONG, "for Windows, this is Linux"),
    ((MODULES / "libzevisa64.so").read_bytes(), ABSENT, "it has no class factory")],
    ids=["none", "text", "broken", "32 bits", "processor", "Windows", "other module"])  # fmt: skip
def test_wrong_modules(tmp_path, content, kind, text):
    if content is not None:
        (tmp_path / "module.so").write_bytes(content)
    with pytest.raises(kind, match=text) as caught:
        k4n.open("x", module=tmp_path / "module.so")
    assert "\n" not in str(caught.value)


def test_where_the_driver_is_looked_for(tmp_path, monkeypatch):
    def found():
        return [place.file for place in _module.places()][:-1]

    monkeypatch.setenv("ZENTREL_K4N_MODULE", "/no/such.so")
    with pytest.raises(ABSENT, match=r"/no/such.so \(by ZENTREL_K4N_MODULE\)"):
        k4n.open("x")
    monkeypatch.delenv("ZENTREL_K4N_MODULE")
    monkeypatch.setenv("ZENTREL_REGISTRY", str(tmp_path / "registry"))
    assert found() == []
    with pytest.raises(ABSENT, match="not installed: no module at /usr/lib/.*zk4n register"):
        if os.path.exists("/usr/lib/x86_64-linux-gnu/zentrel-k4n"):
            pytest.skip("the driver is installed on this machine")
        _module.find()
    zk4n("register", "--user", "--module", DRIVER)
    assert found() == [str(DRIVER)]
    monkeypatch.delenv("ZENTREL_REGISTRY")
    # Without one file for all, the machine's, and before it the user's.
    file = tmp_path / "zentrel/registry"
    file.parent.mkdir()
    monkeypatch.setenv("XDG_DATA_HOME", str(tmp_path / "none"))
    monkeypatch.setenv("ZENTREL_MACHINE_REGISTRY", str(file))
    key = f"Software\\Classes\\clsid\\{CLSID}\\InprocServer32"
    with file.open("a", buffering=1) as registry:
        registry.write(f'[HKEY_LOCAL_MACHINE\\{key}]\n@="/machine.so"\n')
        assert found() == ["/machine.so"]
        monkeypatch.setenv("XDG_DATA_HOME", str(tmp_path))
        registry.write(f'[HKEY_CURRENT_USER\\{key}]\n@="/\\"u\\\\.so"\n')
        assert found() == ['/"u\\.so']


@pytest.mark.parametrize("options, text", [
    (dict(kind="nothing"), "--kind"), (dict(min_level="x"), "--min-level"),
    (dict(program="/no/zk4n"), "cannot be started"),
    (dict(log=True), "in a terminal")])  # fmt: skip
def test_simulators_that_do_not_start(options, text):
    with pytest.raises((k4n.Error, ValueError), match=text):
        k4n.simulate(**options)


def test_sixteen_threads_and_a_close_in_the_middle(simulator):
    started = threading.Barrier(17)

    def use(gen, number):
        started.wait()
        try:
            while True:
                gen.rf.level = -number
                assert -16 <= gen.rf.level <= 0
                gen.sweep.list.create_power("", [0.0, 1.0])
                gen.acquisition.channels.item("ChannelA").frequency_offset = number
                try:
                    gen.identity.description
                except k4n.DriverError as error:
                    assert error.code == 0x80047012 and "Description" in error.description
        except k4n.Error as error:
            assert "is closed" in str(error) or getattr(error, "code", 0) in (0x8004701D, 10057)

    gen = k4n.open(simulator)
    with warnings.catch_warnings(), concurrent.futures.ThreadPoolExecutor(16) as pool:
        # 10057 of calls that the close overtakes.
        warnings.simplefilter("ignore", k4n.DriverWarning)
        uses = [pool.submit(use, gen, number) for number in range(16)]
        started.wait()
        time.sleep(0.5)
        gen.close()
        for finished in uses:
            finished.result(20)


def test_texts_and_arrays_are_freed(gen):
    channels, power_list = gen.acquisition.channels, gen.sweep.list

    def use():
        for _ in range(40_000):
            channels.name(1)
        for _ in range(200):
            power_list.create_power("x" * 20_000, [0.0])
            power_list.create_power("", numpy.zeros(2000))

    use()
    before = resident_kib()
    use()
    assert resident_kib() - before < 1024


def resident_kib():
    return int(re.search(r"VmRSS:\s*(\d+)", pathlib.Path("/proc/self/status").read_text())[1])


def test_a_thousand_sessions_leave_nothing():
    def use(instrument, sessions):
        for _ in range(sessions):
            with k4n.open(instrument) as gen:
                gen.measure(start=1e9, stop=1.4e9, step=1e6)
                gen.sweep.list.create_frequency("", [1e9] * 500)

    def left_by(sessions):
        with concurrent.futures.ThreadPoolExecutor(10) as pool:
            list(pool.map(use, instruments, [sessions] * 10))
        gc.collect()
        return resident_kib(), len(os.listdir("/proc/self/fd")), threading.active_count()

    with contextlib.ExitStack() as stack:
        instruments = [stack.enter_context(k4n.simulate()) for _ in range(10)]
        before, after = left_by(20), left_by(80)
    assert after[0] - before[0] < 4096 and after[1:] == before[1:]  # 5 KiB a session would show
    assert _module.Module.load().can_unload()
