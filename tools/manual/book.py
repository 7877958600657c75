"""The manual's source, docs/manual, as pages and sections, and what the builder makes of a page:
Markdown in which the calls of a member, its parameters and its results are tables.
`docs/manual/index.md` lists the pages in their order.

A page whose head names an `interface` describes its members, a section each, under their names. A
section begins with its parameters as a definition list (`value` stands for that of a property); a
block `results` lists what the member returns beside S_OK, and a block `console` is an example,
which the tests run.
"""

import dataclasses
import itertools
import pathlib
import re
import sys

TREE = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.append(str(TREE / "server" / "interface"))

import calls  # noqa: E402
import emit_csharp  # noqa: E402
import surface  # noqa: E402

LIBRARY = surface.published()
INTERFACES = LIBRARY.interfaces + surface.inherent()
PATHS = calls.paths(INTERFACES)
NOT_SUPPORTED = "ZentrelK4NLib: Does not support this class-compliant feature: {} {}."

# Results that many members share: code, text, when.
SHARED_RESULTS = {
    "no-session": [("0x8004701D", "A connection to the instrument has not been established.",
                    "No session is open.")],
    "no-model": [("0x00002749", "", "No session is open. A success code (10057).")],
    "exchange": [("0xFFFF8xxx", "", "The instrument refuses; the error trail has a record."),
                 ("0xBFFFxxxx", "", "The link fails; the error trail has a record.")],
    "no-model-modulated": [("0x00002749", "", "No session is open while the modulator is switched "
                            "on; the setting is kept. A success code (10057).")],
    "negative-time": [("0x80047010", "",
                       "The time is negative or no number; nothing is sent or kept.")],
}  # fmt: skip


@dataclasses.dataclass
class Section:
    title: str
    anchor: str
    lines: list  # without the heading
    level: int = 2

    @property
    def text(self):
        return "\n".join(self.lines)


@dataclasses.dataclass
class Page:
    name: str  # below docs/manual, without ".md"
    head: dict
    intro: list
    sections: list

    @property
    def title(self):
        return self.head["title"]

    @property
    def interface(self):
        name = self.head.get("interface")
        return next(i for i in INTERFACES if i.name == name) if name else None


@dataclasses.dataclass(frozen=True)
class Outcome:
    code: str  # with "x" for digits that differ: a family of codes
    text: str  # words between asterisks stand for what differs
    when: str
    shown: bool = True  # whether a test or an example can bring it about


def blocks(lines, name):
    """The content of the fenced blocks of this kind: of each its other words, and its lines."""
    found, inside = [], None
    for line in lines:
        if inside is None and re.match(rf"```{name}\b", line):
            inside = []
            found.append((line[3 + len(name) :].split(), inside))
        elif inside is not None and line == "```":
            inside = None
        elif inside is not None:
            inside.append(line)
    return found


def anchor_of(title):
    return re.sub(r"[^\w.-]+", "-", title.replace("`", "")).strip("-")


def read_page(folder, name):
    """A line {{_NAME}} stands for the file of that name, which several pages share."""
    file = folder / f"{name}.md"
    text = re.sub(
        r"^\{\{(_\w+)\}\}$",
        lambda m: file.with_name(m[1] + ".md").read_text().rstrip(),
        file.read_text(),
        flags=re.MULTILINE,
    )
    lines = text.split("\n")
    assert lines[0] == "---", f"{name}.md has no head"
    end = lines.index("---", 1)
    head = dict(line.split(": ", 1) for line in lines[1:end])
    page = Page(name, head, [], [])
    target, fenced = page.intro, False
    for line in lines[end + 1 :]:
        fenced ^= line.startswith("```")
        heading = None if fenced else re.match(r"(##+) (.*)", line)
        if heading:
            section = Section(heading[2], anchor_of(heading[2]), [], len(heading[1]))
            page.sections.append(section)
            target = section.lines
        else:
            target.append(line)
    return page


@dataclasses.dataclass(frozen=True)
class Entry:
    """A line of the contents: a chapter has no page of its own."""

    depth: int
    title: str
    page: str


class Book:
    def __init__(self, folder=TREE / "docs" / "manual"):
        self.folder = folder
        index = (folder / "index.md").read_text()
        self.contents = [
            Entry(len(m[1]) // 2, m[2] or m[4], m[3] or "")
            for m in re.finditer(
                r"^( *)- (?:\[([^\]]+)\]\(([^)]+)\.md\)|(.+))$", index, re.MULTILINE
            )
        ]
        self.pages = [
            read_page(folder, name)
            for name in ["index"] + [e.page for e in self.contents if e.page]
        ]
        self.targets = self.link_targets()

    def page(self, name):
        return next(page for page in self.pages if page.name == name)

    def link_targets(self):
        """From what stands as code in a text to (page, anchor): members, enumerations, their
        values, and codes.
        """
        targets = {}
        for page in self.pages:
            if not page.interface:
                continue
            path = PATHS[page.interface.name]
            prefixes = {
                page.interface.name,
                calls.group(page.interface),
                ".".join(name for name, _ in path),
            }
            for prefix in prefixes:
                targets.setdefault(prefix, (page.name, ""))
                for section in page.sections:
                    targets.setdefault(
                        f"{prefix}.{section.title}".lstrip("."), (page.name, section.anchor)
                    )
        for page in self.pages:
            if page.name == "reference/enumerations":
                for section in page.sections:
                    targets[section.title] = (page.name, section.anchor)
                    for value, _ in definitions(section.lines)[0]:
                        targets[value] = (page.name, section.anchor)
            if page.name == "reference/results":
                targets.update((result, (page.name, result)) for result in result_codes(page))
        targets.pop("", None)
        return targets


def result_codes(page):
    """Of the rows of its tables."""
    return [
        result
        for section in page.sections
        for result in re.findall(r"^\| `(0x[0-9A-F]{8})`", section.text, re.MULTILINE)
    ]


def definitions(lines):
    """The definition list at the start, as (term, text), and the rest."""
    entries, place = [], 0
    while True:
        while place < len(lines) and not lines[place].strip():
            place += 1
        if place + 1 >= len(lines) or not lines[place + 1].startswith(":   "):
            return entries, lines[place:]
        term, text = lines[place], [lines[place + 1][4:]]
        place += 2
        while place < len(lines) and lines[place].startswith("    "):
            text.append(lines[place].strip())
            place += 1
        entries.append((term.strip("`"), " ".join(text)))


def accessors(interface, name):
    return [member for member in interface.members if member.name == name]


def is_property(members):
    return members[0].kind != "method" and len(members[0].parameters) == 1


def expected_parameters(members):
    """The names that a member's definition list must have."""
    return ["value"] if is_property(members) else [p.name for p in members[0].parameters]


def outcomes(section, members):
    """What the block `results` says, in full."""
    found = []
    for _, lines in blocks(section.lines, "results"):
        for line in lines:
            parts = [part.strip() for part in line.split("|")]
            key, _, name = parts[0].partition(" ")
            if key == "unsupported":
                method = members[0].kind == "method"
                text = NOT_SUPPORTED.format(
                    "method" if method else "property", name or members[0].name
                )
                found.append(
                    Outcome(
                        "0x80047011" if method else "0x80047012",
                        text,
                        parts[1] if len(parts) > 1 else "Always.",
                    )
                )
            elif key == "no-object":
                text = NOT_SUPPORTED.format("property", members[0].parameters[-1].type)
                found.append(
                    Outcome(
                        "0x80047012",
                        text,
                        "There was no memory for the group's object when the driver's "
                        "was created.",
                        False,
                    )
                )
            elif key.startswith("0x"):
                found.append(Outcome(*parts[:3], parts[3:] != ["unshown"]))
            else:
                found.extend(Outcome(*row) for row in SHARED_RESULTS[key])
    return found


def summary(section, members):
    """A line for the table of the members: of a property what its value is, otherwise the first
    sentence.
    """
    described, rest = definitions(section.lines)
    sentence = re.split(r"(?<=[.;]) ", " ".join(itertools.takewhile(str.strip, rest)))[0]
    if (
        is_property(members)
        and access(members) != "group"
        and not sentence.startswith("Not supported")
    ):
        sentence = re.split(r"; |, a value of |\. ", described[0][1])[0]
    return sentence[0].upper() + sentence[1:].rstrip(".:;")


def table(kind, head, rows):
    """An HTML table whose cells are Markdown."""
    lines = [f'<table class="{kind}">']
    if head:
        lines += ["<thead><tr>" + "".join(f"<th>{cell}</th>" for cell in head) + "</tr></thead>"]
    lines += ["<tbody>"]
    lines += ["<tr>" + "".join(f"<td>{cell}</td>" for cell in row) + "</tr>" for row in rows]
    return lines + ["</tbody>", "</table>", ""]


def code(text):
    return f"`{text}`"


def access(members):
    kinds = {member.kind for member in members}
    if kinds == {"method"}:
        return "method"
    if members[0].parameters[-1].type.startswith("I"):
        return "group"
    return {frozenset(["get"]): "read", frozenset(["get", "put"]): "read, write"}[frozenset(kinds)]


def overview(page):
    """How the interface is reached, and its members in a table."""
    interface, path = page.interface, PATHS[page.interface.name]
    console, python = calls.console_path(path), calls.python_path(path)
    rows = [("Interface", f"{code(interface.name)}, {code('{' + interface.iid + '}')}")]
    if interface.name in calls.QUERIED.values():
        rows += [("COM, C#", "by a query of the root object for the interface")]
    elif path:
        rows += [
            ("COM, C#", " &rarr; ".join(code(name) for name in [calls.ROOT, *map("".join, path)]))
        ]
    else:
        root = next(coclass for coclass in LIBRARY.coclasses if coclass.creatable)
        rows += [
            ("COM, C#", "the object that its class creates"),
            ("Class", f"{code(f'{LIBRARY.name}.{root.name}')}, {code('{' + root.clsid + '}')}"),
            ("Library", f"{LIBRARY.name} {LIBRARY.version}, {code('{' + LIBRARY.libid + '}')}"),
        ]
    rows += [("Python", code(python)), ("Console", code(console) if console else "the bare names")]
    lines = table("reach", [], [(f"**{name}**", cell) for name, cell in rows])
    members = []
    for section in page.sections:
        found = accessors(interface, section.title)
        if found:
            value = found[0].parameters[-1] if is_property(found) else None
            members.append(
                (
                    f"[{code(section.title)}](#{section.anchor})",
                    access(found),
                    value.unit if value else "",
                    summary(section, found),
                )
            )
    return lines + table("members", ["Member", "Kind", "Unit", "What it does"], members)


def member_tables(interface, section):
    """The calls of a member, what its source says of it, and its parameters; then the rest of its
    lines.
    """
    members, path = accessors(interface, section.title), PATHS[interface.name]
    described, rest = definitions(section.lines)
    described = dict(described)
    lines = []
    if members[0].help:
        lines += [f'<p class="help">{members[0].help}</p>', ""]
    ordered = sorted(members, key=lambda member: member.kind)  # get before put
    rows = [
        ("COM", [calls.com_call(m) for m in ordered]),
        ("C#", [emit_csharp.signature(m) for m in ordered]),
        ("Python", [calls.python_call(m, path) for m in ordered]),
    ]
    lines += table(
        "calls", [], [(f"**{name}**", "<br>".join(map(code, texts))) for name, texts in rows]
    )
    parameters = []
    if is_property(members):
        value = members[0].parameters[0]
        parameters.append(("value", code(value.type), value.unit, described.get("value", "")))
    else:
        words = {"in": "in", "unstated": "in", "inout": "in, out", "retval": "out"}
        for p in members[0].parameters:
            direction = words[p.direction] + (", optional" if p.optional else "")
            parameters.append(
                (code(p.name), f"{code(p.type)}, {direction}", p.unit, described.get(p.name, ""))
            )
    if parameters:
        lines += table("parameters", ["Parameter", "Type", "Unit", "Meaning"], parameters)
    return lines + rest


def outcome_table(found):
    if not found:
        return ["Returns `S_OK`, always.", ""]
    rows = [(code(o.code), o.text or "&ndash;", o.when) for o in found]
    return table("results", ["Result", "Text", "When"], rows)


def replace_results(section, members, lines):
    result, inside = [], False
    for line in lines:
        if line.startswith("```results"):
            inside = True
            result += outcome_table(outcomes(section, members))
        elif inside:
            inside = line != "```"
        else:
            result.append(line)
    return result


def example_head(words):
    """What an example's session is, where it is not the usual one, and the fence of its block."""
    lines = []
    options = " ".join(word for word in words if word.startswith("--"))
    if "closed" in words:
        lines += ["Without a session:", ""]
    elif options:
        lines += [f"With `zk4n simulate {options}`:", ""]
    return lines + ["```console"]


def enumeration_table(section):
    enumeration = next((e for e in LIBRARY.enumerations if e.name == section.title), None)
    described, rest = definitions(section.lines)
    if enumeration is None:
        return section.lines
    described = dict(described)
    rows = []
    for name, number in enumeration.values:
        bits = f", {code(f'0x{number & 0xFFFFFFFF:08X}')}" if number < -1 else ""
        rows.append(
            (
                code(name),
                f"{number}{bits}",
                code(calls.python_value(enumeration, name)),
                described.get(name, ""),
            )
        )
    lines = [f'<p class="help">{enumeration.help}</p>', ""] if enumeration.help else []
    lines += [f"In Python `{calls.enum_name(enumeration)}`.", ""] + rest
    return lines + [""] + table("values", ["Value", "Number", "Python", "Meaning"], rows)


def relative(target, page):
    """The way from one page to another."""
    return "../" * page.count("/") + target


def link_code(line, book, page):
    """Code that names a member, an enumeration or a result becomes a link to what is said of it."""

    def link(match):
        inner = match[2]
        word = re.match(r"[\w.]+", inner)
        target = book.targets.get(word[0]) if word else None
        if target is None or match[1] == "[":
            return match[0]
        name, anchor = target
        if name == page.name and not (anchor and page.interface):
            return match[0]
        way = "" if name == page.name else relative(name, page.name) + ".md"
        return f"{match[1]}[`{inner}`]({way}{'#' + anchor if anchor else ''})"

    return re.sub(r"(\[?)`([^`]+)`", link, line)


def markdown(book, page):
    """The page for pandoc, with anchors, tables and links."""
    lines = list(page.intro)
    if page.interface:
        lines += overview(page)
    for section in page.sections:
        members = accessors(page.interface, section.title) if page.interface else []
        lines += ["", f"{'#' * section.level} {section.title} {{#{section.anchor}}}", ""]
        body = member_tables(page.interface, section) if members else enumeration_table(section)
        lines += replace_results(section, members, body)
    result, fenced = [], False
    for line in lines:
        fenced ^= line.startswith("```")
        if line.startswith("```console"):
            result += example_head(line.split()[1:])
            continue
        result.append(
            line if fenced or line.startswith(("#", "```")) else link_code(line, book, page)
        )
    return "\n".join(result) + "\n"
