#!/usr/bin/env python3
"""The built manual: build_test.py TREE WORK_FOLDER. Two builds are the same, and every link and
each entry of the indexes leads somewhere. 77, with the reason, where a program is missing.
"""

import filecmp
import html
import json
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
TREE, WORK = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()

PROGRAMS = ["pandoc", "chmcmd", "chmls", "rsvg-convert"]
HELP = "IviZentrelK4N.chm"


def files_of(folder):
    return {str(file.relative_to(folder)) for file in folder.rglob("*") if file.is_file()}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def build(name):
    output = WORK / name
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    run(sys.executable, "-B", TREE / "tools" / "manual" / "build", output)
    return output


class Built(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.output = build("first")
        cls.site = cls.output / "html"
        cls.anchors = {}
        for page in cls.site.rglob("*.html"):
            anchors = set(re.findall(r'\bid="([^"]+)"', page.read_text()))
            cls.anchors[str(page.relative_to(cls.site))] = anchors

    def leads(self, page, target):
        way, _, anchor = html.unescape(target).partition("#")
        file = (self.site / page).parent / way if way else self.site / page
        with self.subTest(f"{page}: {target}"):
            self.assertTrue(file.is_file())
            if anchor:
                self.assertIn(anchor, self.anchors[str(file.resolve().relative_to(self.site))])

    def test_two_builds_are_the_same(self):
        again = build("second")
        self.assertEqual(files_of(self.output), files_of(again))
        _, differing, missing = filecmp.cmpfiles(self.output, again, files_of(again), shallow=False)
        self.assertEqual((differing, missing), ([], []))

    def test_every_link_leads_somewhere_on_this_disk(self):
        link = re.compile(r'\b(?:href|src)="([^"]+)"')
        for page in self.anchors:
            targets = link.findall((self.site / page).read_text())
            self.assertGreater(len(targets), 40, "fewer than the contents beside each page")
            for target in targets:
                self.leads(page, target)

    def test_what_the_search_finds_is_there(self):
        text = (self.site / "search-index.js").read_text()
        rows = json.loads(text.removeprefix("const searchIndex = ").rstrip(";\n"))
        self.assertGreater(len(rows), 200)
        self.assertIn("RF.Frequency", [title for title, _, _, _ in rows])
        for _, _, place, _ in rows:
            self.leads("index.html", place)

    def test_the_help_file_has_every_page_and_its_index_leads_there(self):
        listed = run("chmls", "list", self.output / HELP)
        inside = {line.split()[-1].lstrip("/") for line in listed.splitlines() if "/" in line}
        self.assertLessEqual(set(self.anchors), inside)
        for name in ("index.hhk", "contents.hhc"):
            extracted = WORK / name
            run("chmls", "extract", self.output / HELP, f"/{name}", extracted)
            entry = r'name="Name" value="([^"]+)">(?:<param name="Local" value="([^"]+)">)?'
            entries = re.findall(entry, extracted.read_text())
            self.assertGreater(len(entries), 150)
            for _, place in entries:
                if place:
                    self.leads("index.html", place)
            if name == "index.hhk":
                names = {title for title, _ in entries}
                members = {"RF.Frequency", "Frequency (RF)", "IZentrelK4NRF.Frequency"}
                others = {"Initialize", "ZentrelK4NSweepModeList", "0x8004701D"}
                self.assertLessEqual(members | others, names)

    def test_the_man_pages(self):
        pages = files_of(self.output / "man" / "man1")
        sources = (TREE / "docs/manual/commands").glob("zk4n*.md")
        self.assertEqual(pages, {f"{file.stem}.1" for file in sources})
        for page in pages:
            text = (self.output / "man" / "man1" / page).read_text()
            self.assertRegex(text, rf'\.TH "{page[:-2]}" "1"')
            self.assertRegex(text, r"\.SH NAME\n\.PP\n\S+ \\?- ")


if __name__ == "__main__":
    lacking = [program for program in PROGRAMS if shutil.which(program) is None]
    if lacking:
        print(f"Skipped: {', '.join(lacking)} not installed; scripts/packages: manual_packages.")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
