"""The check of the include edges notices an include past a target's links, and nothing else."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = sys.argv.pop(1)

TARGETS = {
    "low": {"folder": "low", "sources": ["Low.cpp"], "links": [], "headers": []},
    "middle": {"folder": "middle", "sources": ["Middle_posix.cpp"], "links": ["low", "dl"],
               "headers": []},
    "beside": {"folder": "beside", "sources": ["Beside.cpp"], "links": [], "headers": []},
    "abi": {"folder": "beside", "sources": [], "links": [], "headers": ["beside/Abi.h"]},
    "top": {"folder": "top", "sources": ["Top.cpp"], "links": ["middle", "abi"], "headers": []},
}  # fmt: skip
FILES = {
    "low/Low.cpp": '#include "low/Low.h"\n#include <vector>\n',
    "low/Low.h": "",
    "middle/Middle_posix.cpp": '#include "middle/Middle.h"\n#include "low/Low.h"\n',
    "middle/Middle.h": '#include "generated.h"\n',
    "beside/Beside.cpp": '#include "beside/Beside.h"\n#include "beside/Plain.h"\n',
    "beside/Beside.h": "",
    "beside/Plain.h": "",
    "beside/Abi.h": "",
    "top/Top.cpp": '#include "middle/Middle.h"\n#include "low/Low.h"\n#include "beside/Abi.h"\n',
}


def check(**changes):
    """What it prints for the files, with these includes added."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for file, text in FILES.items():
            (root / file).parent.mkdir(exist_ok=True)
            added = "".join(f'#include "{header}"\n' for header in changes.get(file, []))
            (root / file).write_text(text + added)
        (root / "graph").write_text(json.dumps(TARGETS))
        run = subprocess.run([CHECK, root, root / "graph"], text=True, stdout=subprocess.PIPE)
        return run.returncode, run.stdout


class Layers(unittest.TestCase):
    def test_links_may_be_followed_down(self):
        self.assertEqual(check(), (0, ""))

    def test_includes_past_the_links_are_told(self):
        for file, header, owner, target in [
            ("low/Low.h", "middle/Middle.h", "middle", "low"),
            ("top/Top.cpp", "beside/Beside.h", "beside", "top"),
            ("top/Top.cpp", "beside/Plain.h", "abi or beside", None),
            ("middle/Middle.h", "beside/Abi.h", "abi", "middle"),
        ]:
            with self.subTest(file=file, header=header):
                words = f"{file}: {header} belongs to {owner}, which {target} does not link\n"
                told = (1, words) if target else (0, "")
                self.assertEqual(check(**{file: [header]}), told)


unittest.main()
