"""The driver's COM surface as its source tells it: read from ZentrelK4NLib.idl, and from
IviInherent.idl for the interfaces that the type library leaves out. What is generated from the
surface starts here; see `generate`.

The unit of a parameter stands behind it as a comment, /*Hz*/, which is none of the type library's
business.
"""

import dataclasses
import pathlib
import re

HERE = pathlib.Path(__file__).resolve().parent
TOKEN = re.compile(
    r'\s+|//[^\n]*|(?P<unit>/\*\w+\*/)|"(?P<text>[^"]*)"|(?P<word>[\w.-]+)|(?P<sign>.)', re.DOTALL
)


@dataclasses.dataclass(frozen=True)
class Parameter:
    name: str  # empty for the value of a put
    direction: str  # "in", "inout", "retval", or "unstated", which callers take for "in"
    type: str  # such as "double", "BSTR", "SAFEARRAY(double)", or an enumeration or interface
    stars: int  # of the C type; an array has one more in C++, where it is a SAFEARRAY*
    optional: bool
    unit: str  # "Hz", "dBm", "dB", "s", "ms", or empty


@dataclasses.dataclass(frozen=True)
class Member:
    name: str
    kind: str  # "get", "put", or "method"
    id: int
    slot: int  # in the interface's table of functions; 0 to 2 are those of IUnknown
    help: str
    parameters: tuple

    @property
    def function(self):
        """Its name in C++."""
        return self.name if self.kind == "method" else f"{self.kind}_{self.name}"

    @property
    def given(self):
        """The parameters that only the caller gives."""
        return [p for p in self.parameters if p.direction in ("in", "unstated")]

    @property
    def results(self):
        """The parameters that come back."""
        return [p for p in self.parameters if p.direction in ("inout", "retval")]


@dataclasses.dataclass(frozen=True)
class Interface:
    name: str
    iid: str
    help: str
    members: tuple  # in the order of their slots, those of a base interface first


@dataclasses.dataclass(frozen=True)
class Enumeration:
    name: str
    help: str
    values: tuple  # of (name, number); HRESULTs are negative


@dataclasses.dataclass(frozen=True)
class Coclass:
    name: str
    clsid: str
    help: str
    creatable: bool
    interface: str


@dataclasses.dataclass
class Library:
    name: str = ""
    libid: str = ""
    version: str = ""
    help: str = ""
    help_file: str = ""
    enumerations: list = dataclasses.field(default_factory=list)
    interfaces: list = dataclasses.field(default_factory=list)
    coclasses: list = dataclasses.field(default_factory=list)

    def interface(self, name):
        return next(interface for interface in self.interfaces if interface.name == name)


class Reader:
    """Reads the part of the language that the two sources use, and refuses the rest."""

    def __init__(self, text):
        matches = (match for match in TOKEN.finditer(text) if match.lastgroup)
        self.tokens = [(match.lastgroup, match[match.lastgroup]) for match in matches]
        self.place = 0

    def next(self, *wanted):
        kind, token = self.tokens[self.place]
        if wanted and token not in wanted:
            raise SyntaxError(f"{token!r} where {wanted} should be, token {self.place}")
        self.place += 1
        return token

    def take(self, token):
        """Whether the next token is this one, which then is passed over."""
        found = self.place < len(self.tokens) and self.tokens[self.place] == ("sign", token)
        self.place += found
        return found

    def attributes(self):
        """What stands in brackets, as a dictionary."""
        found = {}
        while self.take("["):
            while not self.take("]"):
                name = self.next()
                found[name] = True
                if self.take("("):
                    found[name] = self.next()
                    self.next(")")
                self.take(",")
        return found

    def library(self):
        library = Library()
        while self.place < len(self.tokens):
            attributes = self.attributes()
            word = self.next()
            if word in ("import", "importlib"):
                while not self.take(";"):
                    self.place += 1
            elif word == "library":
                library.name, library.libid = self.next(), attributes["uuid"].upper()
                library.version, library.help = attributes["version"], attributes["helpstring"]
                library.help_file = attributes["helpfile"]
                self.next("{")
            elif word == "typedef":
                library.enumerations.append(self.enumeration())
            elif word == "interface":
                self.interface(attributes, library)
            elif word == "coclass":
                library.coclasses.append(self.coclass(attributes))
            else:
                assert word == "}", word
        return library

    def enumeration(self):
        attributes = self.attributes()
        self.next("enum")
        name, values = self.next(), []
        self.next("{")
        while not self.take("}"):
            value = self.next()
            self.next("=")
            if self.take("("):
                self.next("int")
                self.next(")")
            number = int(self.next(), 0)
            values.append((value, number - (1 << 32) if number >> 31 > 0 else number))
            self.take(",")
        self.next(name)
        self.next(";")
        return Enumeration(name, attributes.get("helpstring", ""), tuple(values))

    def interface(self, attributes, library):
        name = self.next()
        if self.take(";"):
            return
        self.next(":")
        base = self.next()
        members = [] if base == "IUnknown" else list(library.interface(base).members)
        self.next("{")
        while not self.take("}"):
            members.append(self.member(3 + len(members)))
        library.interfaces.append(
            Interface(
                name, attributes["uuid"].upper(), attributes.get("helpstring", ""), tuple(members)
            )
        )

    def member(self, slot):
        attributes = self.attributes()
        self.next("HRESULT")
        name, parameters = self.next(), []
        self.next("(")
        while not self.take(")"):
            parameters.append(self.parameter())
            self.take(",")
        self.next(";")
        kind = "get" if "propget" in attributes else "put" if "propput" in attributes else "method"
        return Member(
            name,
            kind,
            int(attributes.get("id", "0"), 0),
            slot,
            attributes.get("helpstring", ""),
            tuple(parameters),
        )

    def parameter(self):
        attributes = self.attributes()
        kind, stars, name, unit = self.next(), 0, "", ""
        if self.take("("):
            kind += f"({self.next()})"
            self.next(")")
        while self.take("*"):
            stars += 1
        if self.tokens[self.place][0] == "word":
            name = self.next()
        if self.tokens[self.place][0] == "unit":
            unit = self.next()[2:-2]
        direction = {
            (): "unstated",
            ("in",): "in",
            ("in", "out"): "inout",
            ("out", "retval"): "retval",
        }[tuple(word for word in ("in", "out", "retval") if word in attributes)]
        return Parameter(name, direction, kind, stars, "optional" in attributes, unit)

    def coclass(self, attributes):
        name = self.next()
        interfaces = {}
        self.next("{")
        while not self.take("}"):
            is_default = "default" in self.attributes()
            self.next("interface")
            interfaces[is_default] = self.next()
            self.next(";")
        return Coclass(
            name,
            attributes["uuid"].upper(),
            attributes["helpstring"],
            "noncreatable" not in attributes,
            interfaces[True],
        )


def published():
    """The type library's content."""
    return Reader((HERE.parent / "ZentrelK4NLib.idl").read_text()).library()


def inherent_with_bases():
    """The interfaces that the root answers a query for, but that the type library leaves out."""
    return Reader((HERE / "IviInherent.idl").read_text()).library().interfaces


def inherent():
    """The same without the one whose members another one has, too."""
    return [
        interface
        for interface in inherent_with_bases()
        if interface.name != "IIviComponentIdentity"
    ]


def result_names():
    """What results are called, from the client's table of them: the codes as written, "0x........",
    and their names.
    """
    rows = (HERE.parent.parent / "status/ResultNames.inc").read_text()
    found = re.findall(r'^\{(0x[0-9A-F]{8}), "([^"]+)"\},$', rows, re.MULTILINE)
    if len(found) != rows.count("{"):
        raise SyntaxError('a row of the result names is not {0x........, "..."},')
    return found
