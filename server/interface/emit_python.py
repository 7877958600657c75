"""The driver's surface for Python: enumerations, and for each interface a class with every member under its Python name
and its own. How a value travels is python/zentrelk4n/_members.py's business.
"""

import dataclasses
import re

HEAD = '''"""The driver's surface, made from its type library's source: see server/interface/emit_python.py."""

from __future__ import annotations

import ctypes
import enum
from typing import NamedTuple, Optional, SupportsFloat, Union

from ._arrays import ArrayArgument, ArrayResult, Samples, Values
from ._com import TextArgument, TextResult
from ._members import Child, Choice, Group, Reading, Setting, integer, number, switch, text

Quantity = Union[SupportsFloat, str]
"""A number in the unit that is named, or a text with a unit: 2.4e9, "2.4 GHz"."""
'''


@dataclasses.dataclass(frozen=True)
class Kind:
    """How a type of the surface looks in Python; `{}` is the argument's or the result's name."""
    read: str  # the type that comes back
    written: str = ""  # the type that is accepted
    word: str = ""  # for a person
    codec: str = ""  # in _members.py
    encode: str = ""
    result: str = ""  # what the driver writes into
    passed: str = "ctypes.byref({})"
    decode: str = "{}.value"


KINDS = {
    "double": Kind("float", "Quantity", "number", "number", "number.encode({0}, '{1}', '{0}')", "ctypes.c_double()"),
    "long": Kind("int", "int", "integer", "integer", "integer.encode({0}, '', '{0}')", "ctypes.c_int32()"),
    "VARIANT_BOOL": Kind("bool", "bool", "true or false", "switch", "switch.encode({0}, '', '{0}')",
                         "ctypes.c_int16()", decode="bool({}.value)"),
    "BSTR": Kind("str", "Optional[str]", "text", "text", "TextArgument({0})", "TextResult()", "{}", "{}.text()"),
    "SAFEARRAY(double)": Kind("Samples", "Optional[Values]", "numbers", result="ArrayResult()", passed="{}",
                              decode="{}.values()"),
}


def snake(name):
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower()


def class_name(interface):
    return interface.name[1:]


def enum_name(enumeration):
    return enumeration.name.removeprefix("ZentrelK4N").removesuffix("Enum")


def document(indent, *paragraphs):
    lines = [line for paragraph in paragraphs if paragraph for line in (paragraph, "")][:-1]
    if len(lines) == 1:
        return f'{indent}"""{lines[0]}"""\n'
    return f'{indent}"""' + f"\n{indent}".join(lines).replace(f"\n{indent}\n", "\n\n") + f'\n{indent}"""\n'


class Emitter:
    def __init__(self, library, inherent):
        self.interfaces = {interface.name: interface for interface in library.interfaces + inherent}
        self.enumerations = {enumeration.name: enumeration for enumeration in library.enumerations}
        self.library = library
        self.emitted = {}

    def emit(self):
        root = next(coclass for coclass in self.library.coclasses if coclass.creatable)
        constants = (f'LIBRARY = "{self.library.name} {self.library.version}"\n'
                     f'PROG_ID = "{self.library.name}.{root.name}"\nCLSID = "{{{root.clsid}}}"\n')
        for interface in self.interfaces.values():
            self.interface(interface)
        return "\n".join([HEAD, constants, *map(self.enumeration, self.enumerations.values()), *self.emitted.values(),
                          self.names()])

    def enumeration(self, enumeration):
        names = [name for name, _ in enumeration.values]
        prefix = next(p for p in (f"ZentrelK4N{enum_name(enumeration)}", "E_ZENTRELK4N_")
                      if all(name.startswith(p) for name in names))
        rows = "".join(f"    {snake(name[len(prefix):]).upper()} = {number}\n" for name, number in enumeration.values)
        return (f"\nclass {enum_name(enumeration)}(enum.IntEnum):\n"
                + document("    ", f"{enumeration.help} ({enumeration.name})".strip()) + f"\n{rows}")

    def kind(self, parameter):
        if parameter.type in self.enumerations:
            name = enum_name(self.enumerations[parameter.type])
            return Kind(name, "int", f"one of {name}", f"Choice({name})", KINDS["long"].encode)
        return KINDS[parameter.type]

    def interface(self, interface):
        """Those that its members give stand in front of it."""
        if interface.name in self.emitted:
            return
        members = {}
        for member in interface.members:
            members.setdefault(member.name, []).append(member)
            for parameter in member.parameters:
                if parameter.type in self.interfaces:
                    self.interface(self.interfaces[parameter.type])
        body, results = "", ""
        for accessors in members.values():
            if accessors[0].kind == "method" or len(accessors[0].parameters) > 1:
                results += self.result_class(accessors[0])
                body += self.method(accessors[0])
            else:
                body += self.setting({accessor.kind: accessor for accessor in accessors})
        self.emitted[interface.name] = (
            f"{results}\nclass {class_name(interface)}(Group):\n"
            + document("    ", f"{interface.help} ({interface.name})".strip())
            + f'\n    __slots__ = ()\n    INTERFACE = "{interface.name}"\n    IID = "{{{interface.iid}}}"\n'
            f"    SLOTS = {3 + len(interface.members)}\n\n{body}")

    def setting(self, accessors):
        get, put = accessors["get"], accessors.get("put")
        value = get.parameters[-1]
        names = f"    {snake(get.name)} = {get.name} = "
        if value.type in self.interfaces:
            return names + f'Child({class_name(self.interfaces[value.type])}, "{get.name}", {get.slot}, "{get.help}")\n'
        kind = self.kind(value)
        details = f'"{value.unit}", "{get.help}")\n'
        if put is None:
            return names + f'Reading[{kind.read}]({kind.codec}, "{get.name}", {get.slot}, ' + details
        return names + (f'Setting[{kind.read}, {kind.written}]({kind.codec}, "{get.name}", {get.slot}, {put.slot}, '
                        + details)

    def result_class(self, method):
        results = [parameter for parameter in method.parameters if parameter.direction == "inout"]
        if not results:
            return ""
        fields = "".join(f"    {snake(p.name)}: {self.kind(p).read}\n" for p in results)
        return f"\nclass {method.name}Result(NamedTuple):\n" + document("    ", f"What {method.name} gives.") + (
            f"\n{fields}\n")

    def method(self, method):
        given = [p for p in method.parameters if p.direction in ("in", "unstated")]
        results = [p for p in method.parameters if p.direction in ("inout", "retval")]
        arrays = [p for p in given if p.type.startswith("SAFEARRAY")]
        signature = ["self"] + [f"{snake(p.name)}: {self.kind(p).written}" + (" = None" if p.optional else "")
                                for p in given]
        passed, before, after = [], "", []
        for p in method.parameters:
            name = snake(p.name)
            if p in arrays:
                passed.append(f"{name}_array")
            elif p in given:
                passed.append(self.kind(p).encode.format(name, p.unit))
            elif p.type in self.interfaces:
                kind = class_name(self.interfaces[p.type])
                before += f"        {name}_ = ctypes.c_void_p()\n"
                passed.append(f"ctypes.byref({name}_)")
                key = ", ".join(f"{{{snake(g.name)}!r}}" for g in given)
                after.append(f'self._adopt({kind}, {name}_, f"{method.name}({key})")')
            else:
                kind = self.kind(p)
                before += f"        {name}_ = {kind.result}\n"
                passed.append(kind.passed.format(name + "_"))
                after.append(kind.decode.format(name + "_"))
        if not results:
            returned = "None"
        elif len(results) > 1:
            returned = f"{method.name}Result"
            after = [f"{returned}({', '.join(after)})"]
        else:
            kind = results[0].type
            returned = class_name(self.interfaces[kind]) if kind in self.interfaces else self.kind(results[0]).read
        call = f"self._call({', '.join([repr(method.name).replace(chr(39), chr(34)), str(method.slot), *passed])})\n"
        if arrays:
            opened = ", ".join(f"ArrayArgument({snake(p.name)}, '{p.unit}', '{snake(p.name)}') as {snake(p.name)}_array"
                               for p in arrays)
            call = f"with {opened}:\n            " + call
        words = [f"{snake(p.name)}: {self.word(p)}" for p in given]
        return (f"\n    def {snake(method.name)}({', '.join(signature)}) -> {returned}:\n"
                + document("        ", method.help or method.name, "; ".join(words) and f"Takes {'; '.join(words)}.",
                           self.gives(results), arrays and "Values that the instrument corrects come back in lists and "
                           "writable buffers.")
                + before + f"        {call}" + "".join(f"        return {text}\n" for text in after)
                + f"\n    {method.name} = {snake(method.name)}\n")

    def word(self, p):
        return self.kind(p).word + (f" in {p.unit}" if p.unit else "") + (" (may be left out)" if p.optional else "")

    def gives(self, results):
        words = [f"{snake(p.name)}: {self.word(p)}" for p in results if p.type not in self.interfaces]
        return words and f"Gives {'; '.join(words) if len(words) > 1 else self.word(results[0])}."

    def names(self):
        names = [enum_name(e) for e in self.enumerations.values()] + list(map(class_name, self.interfaces.values()))
        return "\n__all__ = [\n" + "".join(f'    "{name}",\n' for name in sorted(names)) + "]\n"


def emit(library, inherent):
    return Emitter(library, inherent).emit()


def emit_names(names):
    """What results are called; `names` are those of surface.result_names()."""
    return ('"""What results are called, made from the client\'s table: see server/interface/emit_python.py."""\n\n'
            "RESULT_NAMES = {\n" + "".join(f'    {code}: "{name}",\n' for code, name in names) + "}\n")
