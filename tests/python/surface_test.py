"""Every member of the driver, called from Python and through the console: the same outcome."""

import ctypes
import enum
import inspect
import json
import re
import sys
import warnings

import pytest

import zentrelk4n as k4n
from conftest import TREE, simulated, zk4n
from zentrelk4n._members import Choice

sys.path.insert(0, str(TREE / "server/interface"))
import surface  # noqa: E402
from emit_python import snake  # noqa: E402

LIBRARY = surface.published()
INTERFACES = {interface.name: interface for interface in LIBRARY.interfaces + surface.inherent()}
ENUMERATIONS = {e.name: e for e in LIBRARY.enumerations}
# Not asked here: they take the object out of the session's hands.
LEFT_OUT = {"Initialize", "Close"}
# What these read depends on the moment: below.
OF_THE_MOMENT = ("PLLState", "ERGState", "LevelState", "RFButton")

SAMPLES = {
    "long": ["2"],
    "double": ["0.125"],
    "VARIANT_BOOL": ["true", "false"],
    "BSTR": ['"ChannelB"'],
    "SAFEARRAY(double)": ["[1e9, -3, 40]"],
}
UNITS = {"Hz": "1.5e9", "dBm": "-7.5", "dB": "0.5", "s": "1e-3"}


def samples(parameter):
    """Arguments as the console takes them."""
    if parameter.type in ENUMERATIONS:
        return [str(number) for _, number in ENUMERATIONS[parameter.type].values] + ["77"]
    if parameter.type == "double":
        return [UNITS.get(parameter.unit, "1.5")]
    return SAMPLES[parameter.type]


def commands(interface, path):
    """Each member of the interface, and of those below it, as commands of the console."""
    for member in sorted(interface.members, key=lambda member: member.kind == "get"):
        if member.name in LEFT_OUT:
            continue
        name = path + member.name
        child = member.parameters and INTERFACES.get(member.parameters[-1].type)
        if member.kind == "put":
            yield from (f"{name} = {sample}" for sample in samples(member.given[0]))
        else:
            rows = [()]
            for parameter in member.given:
                rows = [(*row, sample) for row in rows for sample in samples(parameter)]
            called = bool(member.given) or member.kind == "method"
            calls = [name + f"({', '.join(row)})" * called for row in rows]
            yield from calls
            if child:
                yield from commands(child, calls[0] + ".")


def script():
    lines = list(commands(INTERFACES["IZentrelK4N"], ""))
    for group in ("Identity", "Operation"):
        lines += commands(INTERFACES[f"IIviDriver{group}"], group + ".")
    return lines


def snake_path(line):
    """The command with the members' Python names; texts and numbers stay."""
    return re.sub(r'"[^"]*"|\w+', lambda m: m[0] if '"' in m[0] else snake(m[0]), line)


def outcome_of(gen, line):
    """(result, value, arrays, error text) as the console would tell them."""
    arrays = []
    target, equals, value = line.partition(" = ")
    target = target.replace("[1e9, -3, 40]", "array()")

    def array():
        arrays.append([1e9, -3, 40])
        return arrays[-1]

    names = {"true": True, "false": False, "gen": gen, "array": array}
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        try:
            run = exec if equals else eval
            result, code, text = run(f"gen.{target}{equals}{value}", names), 0, None
        except k4n.DriverError as error:
            result, code, text = None, error.code, error.description or None
    assert len(caught) <= 1 and all(w.category is k4n.DriverWarning for w in caught)
    return caught[0].message.code if caught else code, result, arrays, text


def same(python, told):
    """Whether a value is that of the console's JSON."""
    if isinstance(python, bool):
        return python == bool(told)
    if isinstance(python, (int, float, str, enum.Enum)):
        return python == ("" if told is None else told)
    if python is None:
        return told is None
    return told == "object" if hasattr(python, "_pointer") else [float(v) for v in python] == told


@pytest.mark.parametrize("spelling", [str, snake_path], ids=["own names", "Python names"])
def test_every_member_does_as_from_cpp(spelling):
    lines = script()
    with k4n.simulate() as instrument:
        opened = f'Initialize("{instrument.resource}", false, false)'
        answers = zk4n("shell", "--json", script="\n".join([opened, *lines, ""]))
    told = [json.loads(line) for line in answers.splitlines()][1:]
    assert [answer["command"] for answer in told] == lines
    with simulated() as gen:
        for line, answer in zip(lines, told):
            code, value, arrays, text = outcome_of(gen, spelling(line))
            assert f"0x{code:08X}" == answer["hresult"], line
            assert text == (answer["error"] and answer["error"]["description"]), line
            if code < 0x80000000 and not line.endswith(OF_THE_MOMENT):
                many = isinstance(value, tuple)
                results = value if many else [value]
                expected = list(answer["out"].values()) if many else [answer["value"]]
                assert all(map(same, results, expected)), f"{line}: {results} {expected}"
            if arrays:
                assert arrays == list(answer["out"].values()), line
    assert len(lines) > 180


@pytest.mark.parametrize("name, fault, value, told", [
    ("pll_state", "parameter=0,status=-32761", False, []),
    ("pll_state", "parameter=0,status=-32740", False, [0xFFFF801C]),
    ("erg_state", "parameter=0,status=-32740", False, []),
    ("erg_state", "parameter=0,status=-32761", False, [0xFFFF8007]),
    ("level_state", "parameter=79,status=6,after=1", False, []),
    ("level_state", "parameter=0,status=-32740", True, []),
    ("rf_button", "parameter=0,status=-32761", False, []),
    ("rf_button", "parameter=34,status=-32740", None, [0xFFFF801C])])  # fmt: skip
def test_each_state_is_its_own(name, fault, value, told):
    with simulated(fault=f"refuse:command=4,{fault}") as gen:
        if value is None:
            with pytest.raises(k4n.DriverError):
                getattr(gen.system, name)
        else:
            assert getattr(gen.system, name) is value
        assert [record.code for record in gen.errors()] == told


def test_each_member_tells_what_it_is():
    for interface in INTERFACES.values():
        python = getattr(k4n, interface.name[1:])
        for member in interface.members:
            described = python.__dict__[member.name]
            assert described is python.__dict__[snake(member.name)]
            if inspect.isfunction(described):
                taken = ["self", *(snake(p.name) for p in member.given)]
                assert list(inspect.signature(described).parameters) == taken
            else:
                assert len(member.parameters) == 1, member
            units = [f" in {p.unit}" for p in member.parameters if p.unit]
            told = [member.help or member.name, *units]
            text = " ".join(described.__doc__.split())
            assert all(" ".join(words.split()) in text for words in told), member


def test_settings_are_of_their_kind(gen):
    gen.sweep.mode = k4n.SweepMode.POWER_STEP
    assert gen.sweep.mode is k4n.SweepMode.POWER_STEP
    # A number that no enumeration has is told as it is.
    assert Choice(k4n.SweepMode).decode(ctypes.c_int32(77)) == 77
    gen.rf.frequency = "2.5 GHz"
    gen.rf.output_enabled = True
    assert gen.rf.frequency == 2.5e9 and gen.rf.output_enabled is True
    item = gen.acquisition.channels.item
    assert gen.rf is gen.RF and item("ChannelB") is item("ChannelB")


def test_settings_refuse_what_they_cannot_be(gen):
    with pytest.raises(AttributeError):
        gen.rf.frequenzy = 1e9  # not a new attribute
    for group, name, value, error in [
        (gen.rf, "frequency", "2.4 GHertz", ValueError),
        (gen.rf, "output_enabled", "off", TypeError),
        (gen.acquisition, "averaging", 1 << 31, OverflowError),
        (gen.acquisition, "averaging", 1.5, TypeError),
        (gen.system, "type", "x", AttributeError),
        (gen, "rf", None, AttributeError),
    ]:
        with pytest.raises(error, match="only be read" if error is AttributeError else None):
            setattr(group, name, value)
