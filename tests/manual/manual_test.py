#!/usr/bin/env python3
"""The manual against what it describes: manual_test.py TREE CLIENT [unittest's arguments].

Each member, parameter and enumeration value of the surface, each result that has a name, each command of the client
with its options has its entry, and there is no other; links lead somewhere; the examples answer and the pictures are
drawn as they stand; and members return without a session, with one, from a generator and from an instrument that
refuses what their entries say.
"""

import inspect
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
TREE, CLIENT = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
sys.path.insert(0, str(TREE / "tools" / "manual"))
import book as source  # noqa: E402
import calls  # noqa: E402
import examples  # noqa: E402
import pictures  # noqa: E402

BOOK = source.Book()
MEMBER_PAGES = [page for page in BOOK.pages if page.interface]
# What the walk below brings about; other results are shown by examples.
WALKED = {"0x8004701D", "0x00002749", "0x80047011", "0x80047012"}


MODULATE = "PulseModulation.Enabled = true"  # the settings of pulses are sent while it is on
# The mode fails first, with a result of its own; a refused trigger source is passed on.
HIDDEN_REFUSALS = {("reference/sweep", "Configure")}


def fits(outcome, code, text):
    """Whether the row of a table of results is this result."""
    pattern = re.sub(r"\\\*[A-Z]+\\\*", ".+", re.escape(outcome.text))
    return outcome.code == code and re.fullmatch(pattern, text) is not None


def members_of(page):
    """Each of its sections with the members of that name."""
    pairs = [(section, source.accessors(page.interface, section.title)) for section in page.sections]
    return [(section, members) for section, members in pairs if members]


def answer(lines):
    """Code and text of the console's answer."""
    found = re.match(r"(0x[0-9A-F]{8}) \([^)]*\)(?:: (.*))?$", lines[0]) if lines else None
    return (found[1], found[2] or "") if found else ("0x00000000", "")


class Entries(unittest.TestCase):
    def test_each_interface_has_its_page(self):
        self.assertEqual(sorted(page.interface.name for page in MEMBER_PAGES),
                         sorted(interface.name for interface in source.INTERFACES))

    def test_each_member_has_its_section_and_parameters(self):
        for page in MEMBER_PAGES:
            with self.subTest(page.name):
                self.assertEqual([section.title for section in page.sections],
                                 list(dict.fromkeys(member.name for member in page.interface.members)))
            for section, members in members_of(page):
                with self.subTest(f"{page.name} {section.title}"):
                    described, rest = source.definitions(section.lines)
                    self.assertEqual([name for name, _ in described], source.expected_parameters(members))
                    self.assertTrue(all(text for _, text in described))
                    self.assertRegex("\n".join(rest), r"\A[A-Z]", "no sentence behind the parameters")
                    self.assertEqual(len(source.blocks(section.lines, "results")), 1)
                    self.assertEqual(len(source.blocks(section.lines, "console")), 1)

    def test_each_enumeration_value_has_its_entry(self):
        page = BOOK.page("reference/enumerations")
        written = {s.title: [name for name, _ in source.definitions(s.lines)[0]] for s in page.sections}
        self.assertEqual(written, {e.name: [name for name, _ in e.values] for e in source.LIBRARY.enumerations})

    def test_each_named_result_has_its_row(self):
        text = (TREE / "status/ResultNames.inc").read_text()
        names = dict(re.findall(r'\{(0x[0-9A-F]{8}), "([^"]+)"\}', text))
        rows = re.findall(r"^\| `(0x[0-9A-F]{8})` \| ([^|]+?) \|", page_text("reference/results"), re.MULTILINE)
        self.assertGreater(len(names), 30)
        self.assertEqual(dict(rows), names)
        self.assertEqual(len(rows), len(names))

    def test_each_text_of_the_driver_stands_with_its_result(self):
        written = page_text("reference/results")
        templates = re.findall(r'MessageTemplate\{Status::\w+,\s*"([^"]+)"\}',
                               (TREE / "driver" / "ErrorMessage.cpp").read_text())
        self.assertGreater(len(templates), 8)
        for template in templates:
            text = re.sub(r"%\d", "*", template.replace("\\x96", "–"))
            with self.subTest(text):
                self.assertIn(text, re.sub(r"\*[A-Z]+\*", "*", written))


def page_text(name):
    page = BOOK.page(name)
    return "\n".join(page.intro + [section.text for section in page.sections])


class Python(unittest.TestCase):
    """What the manual says of a call in Python is how the package has it."""

    @classmethod
    def setUpClass(cls):
        sys.path.insert(0, str(TREE / "python"))
        import zentrelk4n
        cls.package = zentrelk4n

    def test_members(self):
        for interface in source.INTERFACES:
            group = getattr(self.package, interface.name[1:])
            for member in interface.members:
                with self.subTest(f"{interface.name}.{member.name}"):
                    attribute = getattr(group, calls.snake(member.name))
                    if inspect.isfunction(attribute):
                        given = [calls.snake(p.name) for p in member.parameters if p.direction in ("in", "unstated")]
                        self.assertEqual(list(inspect.signature(attribute).parameters), ["self", *given])
                    else:
                        self.assertEqual(len(member.parameters), 1)
        for name in calls.QUERIED:
            self.assertTrue(hasattr(self.package.Session, calls.snake(name)))

    def test_enumerations(self):
        for enumeration in source.LIBRARY.enumerations:
            values = getattr(self.package, calls.enum_name(enumeration))
            for name, number in enumeration.values:
                self.assertEqual(values[calls.python_value(enumeration, name)], number)


class Links(unittest.TestCase):
    def test_each_page_is_in_the_contents(self):
        files = {str(file.relative_to(BOOK.folder))[:-3] for file in BOOK.folder.rglob("[!_]*.md")}
        self.assertEqual(files, {page.name for page in BOOK.pages})

    def test_code_does_not_go_over_the_end_of_a_line(self):
        """There it would not be seen that it names a member."""
        for page in BOOK.pages:
            for part in [page.intro, *(section.lines for section in page.sections)]:
                text = re.sub(r"^```.*?^```$", "", "\n".join(part), flags=re.MULTILINE | re.DOTALL)
                for line in text.split("\n"):
                    self.assertEqual(line.count("`") % 2, 0, f"{page.name}: {line}")

    def test_each_link_leads_somewhere(self):
        anchors = {page.name: {s.anchor for s in page.sections} for page in BOOK.pages}
        anchors["reference/results"].update(source.result_codes(BOOK.page("reference/results")))
        count = 0
        for page in BOOK.pages:
            made = source.markdown(BOOK, page)
            for target in re.findall(r"\]\(([^)\s]+)\)", made):
                count += 1
                with self.subTest(f"{page.name}: {target}"):
                    way, _, anchor = target.partition("#")
                    file = (BOOK.folder / page.name).parent / way if way else BOOK.folder / f"{page.name}.md"
                    self.assertTrue(file.is_file())
                    if anchor:
                        name = str(file.resolve().relative_to(BOOK.folder))[:-3]
                        self.assertIn(anchor, anchors[name])
        self.assertGreater(count, 300)


class Diagnosis(unittest.TestCase):
    """docs/diagnosis.md has a row for each site of the error trail, and leads to sections of its own."""
    TEXT = (TREE / "docs" / "diagnosis.md").read_text()

    def test_each_site_has_its_row(self):
        sites = re.findall(r"^  k\w+ = (\d+),", (TREE / "K4NHardWare" / "ErrorTrail.h").read_text(), re.MULTILINE)
        told = re.findall(r"^\| (\d+(?:, \d+)*) \|", self.TEXT, re.MULTILINE)
        self.assertEqual(sorted(", ".join(told).split(", ")), sorted(sites))

    def test_each_link_leads_to_a_section(self):
        sections = {title.lower().replace(" ", "-") for title in re.findall(r"^#+ (.+)", self.TEXT, re.MULTILINE)}
        self.assertLessEqual(set(re.findall(r"\]\(#([^)]+)\)", self.TEXT)), sections)


class Pictures(unittest.TestCase):
    def test_are_those_that_the_client_draws(self):
        kept = TREE / "docs" / "manual" / "pictures"
        with tempfile.TemporaryDirectory() as folder:
            pictures.draw(CLIENT, pathlib.Path(folder))
            drawn = {file.name: file.read_bytes() for file in pathlib.Path(folder).iterdir()}
        self.assertEqual({file.name for file in kept.iterdir()}, set(drawn))
        for name, content in drawn.items():
            self.assertTrue((kept / name).read_bytes() == content,
                            f"{name}: run tools/manual/pictures.py ZK4N docs/manual/pictures")


class Client(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.client = examples.Client(CLIENT, cls.folder.name)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_examples(self):
        differences, count = examples.check(CLIENT)
        self.assertEqual(differences, [])
        self.assertGreater(count, 140)

    @staticmethod
    def walk():
        """Each member with its entry and its command."""
        return [(page, section, members, command_of(page, member)) for page in MEMBER_PAGES
                for section, members in members_of(page) for member in members
                if section.title not in ("Initialize", "Close")]

    def test_refusals_reach_the_client_where_the_entries_say_so(self):
        """An instrument that refuses everything once the session is open; both ways."""
        opened = len(self.client.log_of([examples.OPEN])) - 1  # the last request switches the output off at the end
        self.assertGreater(opened, 10)
        walk = self.walk()
        fed = [line for _, _, _, command in walk for line in (MODULATE, command)]
        answers = self.client.answers(fed, f"--fault=refuse:status=-32763,after={opened}", setup=[examples.OPEN])[1::2]
        refused = {(page.name, section.title) for (page, section, _, _), lines in zip(walk, answers)
                   if answer(lines)[0] == "0xFFFF8005"}
        for page, section, members, _ in walk:
            told = any(outcome.code == "0xFFFF8xxx" for outcome in source.outcomes(section, members))
            with self.subTest(f"{page.name} {section.title}"):
                self.assertEqual(told, (page.name, section.title) in refused | HIDDEN_REFUSALS)

    def test_members_return_what_their_entries_say(self):
        """Both ways: what comes back stands in the entry, and what stands there comes back or is shown."""
        walk = self.walk()
        commands = [command for _, _, _, command in walk]
        begin, modulate = "Acquisition.Initiate", MODULATE
        alone = examples.OPEN.replace(")", ', "GENERATOR")')
        met = {}
        for setup, before, options in (([], [], []), ([], [modulate, begin], []), ([examples.OPEN], [], []),
                                       ([alone], [begin], ["--kind=generator", "--no-pulse-modulator",
                                                           "--attenuator-mode=0"])):
            fed = [line for command in commands for line in (*before, command)]
            answers = self.client.answers(fed, *options, setup=setup)[len(before)::len(before) + 1]
            self.assertEqual(len(answers), len(walk))
            for (page, section, members, _), command, lines in zip(walk, commands, answers):
                code, text = answer(lines)
                met.setdefault((page.name, section.title), set()).add((code, text))
                if code in WALKED:
                    with self.subTest(f"{command} {setup}"):
                        self.assertTrue(any(fits(outcome, code, text) for outcome in source.outcomes(section, members)),
                                        f"{code} {text} is no result of the entry")
        for page in MEMBER_PAGES:
            for section, members in members_of(page):
                seen = met.get((page.name, section.title), set()) | {
                    answer([line]) for _, lines in source.blocks(section.lines, "console") for line in lines}
                for outcome in source.outcomes(section, members):
                    if outcome.shown and "x" not in outcome.code[2:]:
                        with self.subTest(f"{page.name} {section.title} {outcome.code}"):
                            self.assertTrue(any(fits(outcome, *result) for result in seen), f"never seen: {outcome}")


def command_of(page, member):
    """A command of the console for the member, with arguments that do little."""
    plain = {"BSTR": '""', "SAFEARRAY(double)": "[1]", "VARIANT_BOOL": "false"}
    path = ".".join(filter(None, [calls.console_path(source.PATHS[page.interface.name]), member.name]))
    given = [plain.get(p.type, "0") for p in member.parameters if p.direction in ("in", "unstated")]
    if member.kind == "put":
        return f"{path} = {given[0]}"
    return f"{path}({', '.join(given)})" if given else path


class Commands(unittest.TestCase):
    """The pages on the client's commands, and so the man pages, against its own help."""

    def help(self, *command):
        return subprocess.run([CLIENT, *command, "--help"], capture_output=True, text=True, check=True).stdout

    def subcommands(self, *command):
        _, found, rows = self.help(*command).partition("\nSubcommands:\n")
        return re.findall(r"^  (\w+) ", rows, re.MULTILINE) if found else []

    def test_each_command_has_its_page(self):
        self.assertEqual([page.name.removeprefix("commands/") for page in BOOK.pages
                          if page.name.startswith("commands/")],
                         ["zk4n", *(f"zk4n-{name}" for name in self.subcommands())])

    def test_each_option_has_its_entry(self):
        for page in BOOK.pages:
            if not page.name.startswith("commands/"):
                continue
            command = page.name.removeprefix("commands/").split("-")[1:]
            whole = [([], [s for s in page.sections if s.level == 2])]
            if command and self.subcommands(*command):
                whole = [([name], [s for s in page.sections if s.title == f"zk4n {command[0]} {name}"])
                         for name in self.subcommands(*command)]
                self.assertTrue(all(sections for _, sections in whole))
            for words, sections in whole:
                with self.subTest(" ".join([page.name, *words])):
                    told = {name: (value or "", default or "") for name, value, default in re.findall(
                        r"^  (?:-\w,)?(--[\w-]+)(?: ([A-Z]+))?(?:[^=\n ]*)?(?:=(\S+(?: (?:dBm?|[MG]Hz|s)\b)?))?",
                        self.help(*command, *words), re.MULTILINE)}
                    entries = {}
                    for section in sections:
                        for name, text in re.findall(r"^`(--[\w-]+)`.*\n:   ((?:.+\n?(?:    )?)*)", section.text + "\n",
                                                     re.MULTILINE):
                            entries[name] = text
                    self.assertEqual(set(entries), set(told))
                    for name, (_, default) in told.items():
                        if default:
                            self.assertIn(f"`{default}`", entries[name], f"default of {name}")

    def test_each_fault_of_the_simulator_has_its_entry(self):
        told = re.findall(r"^  ([a-z-]+)(?: \(([^)]*)\))?  ", self.help("simulate").partition("\nFaults:")[2], re.MULTILINE)
        text = next(s for s in BOOK.page("commands/zk4n-simulate").sections if s.title == "Faults").text
        entries = re.findall(r"^`([a-z-]+)`\n:   .*?\.(?: Takes (.*)\.)?$", text, re.MULTILINE)
        self.assertGreater(len(told), 5)
        self.assertEqual([(name, re.findall(r"`(\w+)`", values)) for name, values in entries],
                         [(name, re.findall(r"(\w+)=", values)) for name, values in told])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
