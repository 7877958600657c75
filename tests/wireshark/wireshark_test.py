#!/usr/bin/env python3
"""The dissector over kept captures: wireshark_test.py TREE MAKE_TABLES TSHARK [ARGUMENT...]

Each capture beside its expected text: a line a message, with every field that it has. The arguments
are unittest's; with --write as the first, the texts are made anew: look at each line that differs.
"""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
import capture  # noqa: E402

TREE, MAKE_TABLES, TSHARK = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
DISSECTOR = TREE / "tools" / "wireshark" / "zk4n.lua"
CAPTURES = pathlib.Path(__file__).resolve().parent / "captures"
LONGEST_VALUE = 100


def tshark(*arguments):
    """Its output, with the dissector among the personal plugins; its own faults are the test's."""
    with tempfile.TemporaryDirectory() as home:
        plugins = pathlib.Path(home, ".local", "lib", "wireshark", "plugins")
        plugins.mkdir(parents=True)
        shutil.copy(DISSECTOR, plugins)
        theirs = {k: v for k, v in os.environ.items() if not k.startswith(("XDG_", "WIRESHARK_"))}
        command, environment = [TSHARK, *arguments], {**theirs, "HOME": home}
        ran = subprocess.run(command, text=True, capture_output=True, env=environment)
    if ran.returncode or "Lua Error:" in ran.stderr + ran.stdout:
        raise AssertionError(ran.stderr + ran.stdout[-2000:])
    return ran.stdout


def all_fields():
    return sorted(re.findall(r"^F\t[^\t]*\t(zk4n\.[^\t]*)", tshark("-G", "fields"), re.MULTILINE))


def told(path, fields):
    """A line a message: the frame, its fields, and what the dissector finds wrong."""
    names = ["frame.number", *fields, "_ws.expert.message"]
    options = "-n -2 -T fields -E occurrence=a -Y".split() + ["zk4n || zk4n.bad_header_word"]
    output = tshark("-r", path, *options, *(f"-e{name}" for name in names))
    lines = []
    for line in output.splitlines():
        frame, *values = line.split("\t")
        met = [(name, value) for name, value in zip(names[1:], values) if value]
        pairs = [f"{name.removeprefix('zk4n.')}={shortened(value)}" for name, value in met]
        lines.append(" ".join([frame, *pairs]))
    return "\n".join(lines) + "\n"


def chunks_of(path):
    """What write_capture made the file of."""
    names = ("frame.time_epoch", "tcp.srcport", "tcp.payload")
    output = tshark("-r", path, "-T", "fields", *(f"-e{name}" for name in names))
    for moment, port, data in map(str.split, output.splitlines()):
        yield float(moment), int(port) == capture.CLIENT_PORT, bytes.fromhex(data)


def shortened(value):
    return value if len(value) <= LONGEST_VALUE else value[:LONGEST_VALUE] + "..."


def without_places(text):
    """What does not depend on the frames."""
    return re.sub(r"^\d+| (request_in|response_in|time)=\S+", "", text, flags=re.MULTILINE)


@unittest.skipUnless(shutil.which(TSHARK), "tshark is not installed")
class Captures(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.fields = all_fields()

    def test_each_message_is_told(self):
        self.assertGreater(len(self.fields), 60)
        names = sorted(capture.CAPTURES)
        files = [CAPTURES / f"{name}.pcap" for name in names]
        self.assertEqual(sorted(CAPTURES.glob("*.pcap")), sorted(files))
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            texts = pool.map(lambda file: told(file, self.fields), files)
        for name, text in zip(names, texts):
            file = CAPTURES / f"{name}.txt"
            if WRITE:
                file.write_text(text)
            with self.subTest(name):
                self.assertEqual(text, file.read_text())

    def test_filters_of_the_manual_are_ones(self):
        page = (TREE / "docs/manual/protocol.md").read_text()
        rows = re.findall(r"^\| (`.*zk4n.*?) \|", page, re.MULTILINE)
        filters = re.findall(r"`([^`]+)`", " ".join(row.split(" | ")[0] for row in rows))
        self.assertGreater(len(filters), 5)
        tshark("-r", CAPTURES / "drop.pcap", "-Y", " || ".join(f"({text})" for text in filters))

    def test_segments_of_any_size_give_the_same(self):
        """Also on another port, where the first whole message is found by its header word."""
        chunks = list(chunks_of(CAPTURES / "demo.pcap"))
        expected = without_places((CAPTURES / "demo.txt").read_text())
        for size, port in ((7, capture.USUAL_PORT), (16, capture.OTHER_PORT)):
            pieces = [
                (moment, from_client, data[at : at + size])
                for moment, from_client, data in chunks
                for at in range(0, len(data), size)
            ]
            with self.subTest(size), tempfile.TemporaryDirectory() as folder:
                path = pathlib.Path(folder) / "pieces.pcap"
                capture.write_capture(path, port, pieces)
                self.assertEqual(without_places(told(path, self.fields)), expected)


class Sources(unittest.TestCase):
    def test_tables_are_those_of_the_console(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "zk4n.lua"
            shutil.copy(DISSECTOR, made)
            subprocess.run([MAKE_TABLES, str(made)], check=True)
            advice = "make_dissector_tables tools/wireshark/zk4n.lua mends it"
            self.assertEqual(made.read_text(), DISSECTOR.read_text(), advice)

    def test_each_fault_of_the_simulator_has_its_capture(self):
        source = (TREE / "simulator" / "FaultText.cpp").read_text()
        kinds = re.findall(r'\{"([a-z-]+)", FaultKind::', source)
        self.assertGreater(len(kinds), 8)
        captured = {fault.split(":")[0] for _, _, fault in capture.CAPTURES.values() if fault}
        self.assertEqual(sorted(kinds), sorted(captured))


if __name__ == "__main__":
    rest = sys.argv[4:]
    WRITE = rest[:1] == ["--write"]
    unittest.main(argv=[sys.argv[0], *rest[WRITE:]])
