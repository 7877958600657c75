#!/usr/bin/env python3
"""Runs the console examples of the manual against simulated instruments: examples.py ZK4N [--write]
[PAGE...].

An example is a block `console`: lines after the prompt are commands, the others what the driver
must answer. Each has an instrument and a session of its own, opened before. Words behind `console`
change that: `closed`, no session is opened; `--NAME` or `--NAME=VALUE`, an option of `zk4n
simulate`. The address 192.0.2.7 stands for the simulated instrument. --write puts what the driver
answers into the pages.
"""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import book as source  # noqa: E402

PROMPT = "zk4n> "
RESOURCE = "TCPIP0::192.0.2.7::8888::SOCKET"
OPEN = f'Initialize("{RESOURCE}", false, false)'
END = "end_of_command"
END_ANSWER = f"fault: IZentrelK4N has no member {END}"


class Client:
    """The built client, with folders of its own."""

    def __init__(self, program, folder):
        self.program, self.folder = str(pathlib.Path(program).resolve()), pathlib.Path(folder)
        detectors = self.folder / "common" / "Zentrel Shared" / "Detectors"
        detectors.mkdir(parents=True, exist_ok=True)
        shutil.copy(source.TREE / "data" / "calibr20.det", detectors)
        (self.folder / "notes.txt").write_text("No detector file.\n")
        self.environment = dict(
            os.environ,
            ZENTREL_COMMON_FILES=str(self.folder / "common"),
            ZENTREL_REGISTRY=str(self.folder / "registry"),
            LC_ALL="C.UTF-8",
        )

    def simulate(self, *options):
        simulator = subprocess.Popen(
            [self.program, "simulate", "--port", "0", *options],
            stdout=subprocess.PIPE,
            env=self.environment,
            text=True,
        )
        return simulator, simulator.stdout.readline().strip()

    def shell(self, commands, *options):
        done = subprocess.run(
            [self.program, "shell", *options],
            input="\n".join(commands) + "\n",
            cwd=self.folder,
            env=self.environment,
            capture_output=True,
            text=True,
            timeout=120,
        )
        return done.stdout.splitlines()

    def answers(self, commands, *simulator_options, setup):
        """What the driver answers to each of the commands, after the set-up, on an instrument of
        their own.
        """
        simulator, resource = self.simulate(*simulator_options)
        try:
            fed = [*setup, *(line for command in commands for line in (END, command)), END]
            lines = self.shell([line.replace(RESOURCE, resource) for line in fed])
        finally:
            simulator.terminate()
            simulator.communicate()
        found, current = [], None
        for line in lines:
            if line == END_ANSWER:
                current = []
                found.append(current)
            elif current is not None:
                current.append(line.replace(resource, RESOURCE))
        return found[:-1]

    def log_of(self, commands, *simulator_options):
        """The requests that a simulated instrument meets, a line each."""
        simulator, resource = self.simulate("--log", *simulator_options)
        self.shell([command.replace(RESOURCE, resource) for command in commands])
        simulator.terminate()
        return simulator.communicate()[0].splitlines()


def run(client, words, lines):
    """The block as the driver answers it."""
    commands = [line[len(PROMPT) :] for line in lines if line.startswith(PROMPT)]
    answers = client.answers(
        commands,
        *(word for word in words if word.startswith("--")),
        setup=[] if "closed" in words else [OPEN],
    )
    return [
        line for command, answer in zip(commands, answers) for line in (PROMPT + command, *answer)
    ]


def run_until_same(client, words, lines):
    """A machine that is busy with other things may be late for what waits: a second and a third
    try.
    """
    for _ in range(3):
        answered = run(client, words, lines)
        if answered == lines:
            break
    return answered


def check(program, pages=None, write=False):
    """What differs, as text, and the number of the examples; nothing differs when all is as it
    stands in the pages.
    """
    book = source.Book()
    found = []
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(4) as pool:
        client = Client(program, folder)
        tasks = []
        for page in book.pages:
            if pages and page.name not in pages:
                continue
            for section in [source.Section("", "", page.intro)] + page.sections:
                for words, lines in source.blocks(section.lines, "console"):
                    tasks.append(
                        (
                            page,
                            section,
                            words,
                            lines,
                            pool.submit(run_until_same, client, words, lines),
                        )
                    )
        for page, section, words, lines, task in tasks:
            answered = task.result()
            if answered == lines:
                continue
            found.append(
                "\n".join(
                    [
                        f"{page.name}.md, {section.title}:",
                        *("  manual: " + line for line in lines),
                        *("  driver: " + line for line in answered),
                    ]
                )
            )
            if write:
                file = book.folder / f"{page.name}.md"
                before = "\n".join([f"```{' '.join(['console', *words])}", *lines, "```"])
                after = "\n".join([f"```{' '.join(['console', *words])}", *answered, "```"])
                text = file.read_text()
                assert text.count(before) >= 1, before
                # The block of this section: the one behind its heading.
                start = text.index(f"## {section.title}\n") if section.title else 0
                place = text.index(before, start)
                file.write_text(text[:place] + after + text[place + len(before) :])
    return found, len(tasks)


if __name__ == "__main__":
    names = [argument for argument in sys.argv[2:] if argument != "--write"]
    differences, count = check(sys.argv[1], names, "--write" in sys.argv)
    print("\n".join(differences + [f"{count} examples, {len(differences)} differ"]))
    sys.exit(1 if differences else 0)
