"""The driver's surface for Python: enumerations, and for each interface a class with every member
under its Python name and its own. How a value travels is python/zentrelk4n/_members.py's business.

The text is laid out as `black` would, which looks at it like at any other source.
"""

import dataclasses
import re
import textwrap

WIDTH = 100
HEAD = '''"""The driver's surface, from the library's source: server/interface/emit_python.py."""

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
    "double": Kind("float", "Quantity", "number", "number", 'number.encode({0}, "{1}", "{0}")',
                   "ctypes.c_double()"),
    "long": Kind("int", "int", "integer", "integer", 'integer.encode({0}, "", "{0}")',
                 "ctypes.c_int32()"),
    "VARIANT_BOOL": Kind("bool", "bool", "true or false", "switch", 'switch.encode({0}, "", "{0}")',
                         "ctypes.c_int16()", decode="bool({}.value)"),
    "BSTR": Kind("str", "Optional[str]", "text", "text", "TextArgument({0})", "TextResult()", "{}",
                 "{}.text()"),
    "SAFEARRAY(double)": Kind("Samples", "Optional[Values]", "numbers", result="ArrayResult()",
                              passed="{}", decode="{}.values()"),
}  # fmt: skip


def snake(name):
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower()


def class_name(interface):
    return interface.name[1:]


def enum_name(enumeration):
    return enumeration.name.removeprefix("ZentrelK4N").removesuffix("Enum")


def document(indent, *paragraphs):
    """The documentation of a class or a function; empty paragraphs are left out."""
    paragraphs = [paragraph for paragraph in paragraphs if paragraph]
    if len(paragraphs) == 1 and len(paragraphs[0]) <= WIDTH - len(indent) - 6:
        return f'{indent}"""{paragraphs[0]}"""\n'
    paragraphs[0] = '"""' + paragraphs[0]
    wrapped = [textwrap.fill(text, WIDTH - len(indent)) for text in paragraphs]
    return textwrap.indent("\n\n".join(wrapped) + '\n"""\n', indent)


def laid_out(indent, head, items, tail=""):
    """A call or a definition as it fits: on one line, with its items on one of their own, or with
    a line for each of them.
    """
    whole = f"{indent}{head}({', '.join(items)}){tail}\n"
    if len(whole) <= WIDTH + 1:
        return whole
    inner = f"{indent}    {', '.join(items)}\n"
    if len(inner) > WIDTH + 1:
        inner = "".join(f"{line}\n" for item in items for line in item_lines(indent + "    ", item))
    return f"{indent}{head}(\n{inner}{indent}){tail}\n"


def item_lines(indent, item):
    """A long text goes on in the next line."""
    if len(indent + item) < WIDTH or item[0] != '"':
        return [f"{indent}{item},"]
    room = WIDTH - len(indent) - 4
    cut = item.rindex(" ", 0, room) + 1
    return [f'{indent}{item[:cut]}"', *item_lines(indent, '"' + item[cut:])]


def quoted(text):
    return f'"{text}"'


class Emitter:
    def __init__(self, library, inherent):
        self.interfaces = {interface.name: interface for interface in library.interfaces + inherent}
        self.enumerations = {enumeration.name: enumeration for enumeration in library.enumerations}
        self.library = library
        self.emitted = {}

    def emit(self):
        root = next(coclass for coclass in self.library.coclasses if coclass.creatable)
        constants = (
            f'LIBRARY = "{self.library.name} {self.library.version}"\n'
            f'PROG_ID = "{self.library.name}.{root.name}"\nCLSID = "{{{root.clsid}}}"\n'
        )
        for interface in self.interfaces.values():
            self.interface(interface)
        enumerations = map(self.enumeration, self.enumerations.values())
        return "\n".join([HEAD, constants, *enumerations, *self.emitted.values(), self.names()])

    def enumeration(self, enumeration):
        names = [name for name, _ in enumeration.values]
        prefixes = (f"ZentrelK4N{enum_name(enumeration)}", "E_ZENTRELK4N_")
        prefix = next(p for p in prefixes if all(name.startswith(p) for name in names))
        text = f"\nclass {enum_name(enumeration)}(enum.IntEnum):\n"
        text += document("    ", f"{enumeration.help} ({enumeration.name})".strip()) + "\n"
        for name, number in enumeration.values:
            text += f"    {snake(name[len(prefix) :]).upper()} = {number}\n"
        return text

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
        text = f"{results}\nclass {class_name(interface)}(Group):\n"
        text += document("    ", f"{interface.help} ({interface.name})".strip())
        text += f'\n    __slots__ = ()\n    INTERFACE = "{interface.name}"\n'
        text += f'    IID = "{{{interface.iid}}}"\n    SLOTS = {3 + len(interface.members)}\n'
        self.emitted[interface.name] = text + ("" if body.startswith("\n") else "\n") + body

    def setting(self, accessors):
        get, put = accessors["get"], accessors.get("put")
        value = get.parameters[-1]
        name, slots, words = quoted(get.name), [str(get.slot)], [quoted(get.help)]
        if value.type in self.interfaces:
            made, codec = "Child", class_name(self.interfaces[value.type])
        else:
            kind = self.kind(value)
            made, codec = f"Reading[{kind.read}]", kind.codec
            words.insert(0, quoted(value.unit))
            if put:
                made = f"Setting[{kind.read}, {kind.written}]"
                slots.append(str(put.slot))
        head = f"{snake(get.name)} = {get.name} = {made}"
        return laid_out("    ", head, [codec, name, *slots, *words])

    def result_class(self, method):
        results = [parameter for parameter in method.parameters if parameter.direction == "inout"]
        if not results:
            return ""
        text = f"\nclass {method.name}Result(NamedTuple):\n"
        text += document("    ", f"What {method.name} gives.") + "\n"
        for p in results:
            text += f"    {snake(p.name)}: {self.kind(p).read}\n"
        return text + "\n"

    def method(self, method):
        given, results = method.given, method.results
        arrays = [p for p in given if p.type.startswith("SAFEARRAY")]
        signature = ["self"]
        for p in given:
            default = " = None" if p.optional else ""
            signature.append(f"{snake(p.name)}: {self.kind(p).written}{default}")
        passed, before, after = [quoted(method.name), str(method.slot)], "", []
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
        returned = "None"
        if len(results) > 1:
            returned = f"{method.name}Result"
            after = [f"{returned}({', '.join(after)})"]
        elif results:
            kind = self.interfaces.get(results[0].type)
            returned = class_name(kind) if kind else self.kind(results[0]).read
        indent = " " * 8
        for p in arrays:
            name = snake(p.name)
            before += f'{indent}with ArrayArgument({name}, "{p.unit}", "{name}") as {name}_array:\n'
            indent += " " * 4
        return (
            "\n"
            + laid_out("    ", f"def {snake(method.name)}", signature, f" -> {returned}:")
            + document(
                " " * 8,
                method.help or method.name,
                self.takes(given),
                self.gives(results),
                arrays
                and "Values that the instrument corrects come back in lists and writable buffers.",
            )
            + before
            + laid_out(indent, "self._call", passed)
            + "".join(f"        return {text}\n" for text in after)
            + f"\n    {method.name} = {snake(method.name)}\n"
        )

    def word(self, p):
        unit = f" in {p.unit}" if p.unit else ""
        return self.kind(p).word + unit + (" (may be left out)" if p.optional else "")

    def takes(self, given):
        words = [f"{snake(p.name)}: {self.word(p)}" for p in given]
        return words and f"Takes {'; '.join(words)}."

    def gives(self, results):
        results = [p for p in results if p.type not in self.interfaces]
        words = [f"{snake(p.name)}: {self.word(p)}" for p in results]
        return words and f"Gives {'; '.join(words) if len(words) > 1 else self.word(results[0])}."

    def names(self):
        names = [*map(enum_name, self.enumerations.values())]
        names += map(class_name, self.interfaces.values())
        return "\n__all__ = [\n" + "".join(f'    "{name}",\n' for name in sorted(names)) + "]\n"


def emit(library, inherent):
    return Emitter(library, inherent).emit()


def emit_names(names):
    """What results are called; `names` are those of surface.result_names()."""
    text = '"""What results are called, from their table: server/interface/emit_python.py."""\n'
    rows = "".join(f'    {code}: "{name}",\n' for code, name in names)
    return f"{text}\nRESULT_NAMES = {{\n{rows}}}\n"
