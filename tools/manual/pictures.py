#!/usr/bin/env python3
"""Draws the manual's pictures: pictures.py ZK4N FOLDER. They are checked in; a test proves them
current.

A trace and a detector table come from the client itself, measured on a simulated instrument; layers
and the life of a measurement are drawn here.
"""

import html
import pathlib
import re
import subprocess
import sys

FONT = "Helvetica, Arial, 'DejaVu Sans', sans-serif"
LINE, TEXT, SOFT = "#30363c", "#1b1f24", "#57606a"
FILLS = {"client": "#e8f1fb", "driver": "#fff8e1", "link": "#eef6ec", "instrument": "#f3ecf8"}
# The time and the simulated instrument's port are others each time.
TIME, ADDRESS = re.compile(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d, "), re.compile(r"127\.0\.0\.1::\d+")


class Drawing:
    def __init__(self, width, height):
        self.parts = [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
            f'width="{width}" height="{height}" font-family="{FONT}" font-size="14">',
            '<rect width="100%" height="100%" fill="#ffffff"/>',
        ]

    def text(self, x, y, text, anchor="middle", size=14, weight="normal", fill=TEXT):
        self.parts.append(
            f'<text x="{x}" y="{y}" text-anchor="{anchor}" font-size="{size}" '
            f'font-weight="{weight}" fill="{fill}">{html.escape(text)}</text>'
        )

    def box(self, x, y, width, height, fill, title, *lines):
        self.parts.append(
            f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="5" fill="{fill}" '
            f'stroke="{LINE}" stroke-width="1.2"/>'
        )
        first = y + height / 2 + 5 - 9.5 * len(lines)
        self.text(x + width / 2, first, title, weight="bold")
        for i, line in enumerate(lines):
            self.text(x + width / 2, first + 19 * (i + 1), line, size=12.5, fill=SOFT)

    def line(self, x1, y1, x2, y2, dashed=False):
        dash = ' stroke-dasharray="5 4"' if dashed else ""
        self.parts.append(
            f'<path d="M{x1} {y1}L{x2} {y2}" stroke="{LINE}" stroke-width="1.2" fill="none"{dash}/>'
        )

    def arrow(self, x1, y1, x2, y2, dashed=False):
        self.line(x1, y1, x2, y2, dashed)
        length = ((x2 - x1) ** 2 + (y2 - y1) ** 2) ** 0.5
        ux, uy = (x2 - x1) / length, (y2 - y1) / length
        points = " ".join(
            f"{x2 - 9 * ux + side * 4 * uy:.1f},{y2 - 9 * uy - side * 4 * ux:.1f}"
            for side in (1, -1)
        )
        self.parts.append(f'<polygon points="{x2},{y2} {points}" fill="{LINE}"/>')

    def save(self, file):
        file.write_text("\n".join(self.parts + ["</svg>"]) + "\n")


def layers(file):
    drawing = Drawing(860, 560)
    columns = [
        ("C++, VBA", "header or type library"),
        ("C#", "one source file"),
        ("Python", "zentrelk4n"),
        ("zk4n", "measure, shell, check"),
    ]
    for i, (name, how) in enumerate(columns):
        drawing.box(40 + 200 * i, 20, 180, 56, FILLS["client"], name, how)
        drawing.arrow(130 + 200 * i, 76, 130 + 200 * i, 116)
    drawing.text(442, 100, "COM", size=12.5, fill=SOFT)
    drawing.parts.append(
        f'<rect x="40" y="116" width="780" height="238" rx="5" fill="{FILLS["driver"]}" '
        f'stroke="{LINE}" stroke-width="1.2"/>'
    )
    drawing.text(60, 140, "ZentrelK4NLib: the driver", "start", weight="bold")
    what = "tests the session, checks arguments, gives results and texts"
    drawing.box(60, 154, 740, 46, "#ffffff", "interfaces", what)
    drawing.box(60, 216, 350, 50, "#ffffff", "manager", "settings that are kept, error trail")
    drawing.box(450, 216, 350, 50, "#ffffff", "worker", "a thread a session: reads measured blocks")
    what = "numbered parameters, framed messages, one exchange at a time"
    drawing.box(60, 282, 740, 56, "#ffffff", "model and exchanger", what)
    drawing.arrow(235, 200, 235, 216)
    drawing.arrow(235, 266, 235, 282)
    drawing.arrow(625, 266, 625, 282)
    drawing.arrow(410, 241, 450, 241)
    drawing.arrow(430, 354, 430, 388)
    drawing.text(444, 376, "loaded at run time", "start", 12.5, fill=SOFT)
    what = "raw TCP sockets, exclusive lock of the instrument"
    drawing.box(40, 388, 780, 50, FILLS["link"], "zevisa64: the VISA library", what)
    drawing.arrow(230, 438, 230, 484)
    drawing.arrow(630, 438, 630, 484)
    drawing.text(430, 466, "TCP, port 8888", size=12.5, fill=SOFT)
    what = "generator, detector channels A, B and R"
    drawing.box(40, 484, 380, 56, FILLS["instrument"], "K4N, L5S", what)
    what = "the same from the wire side"
    drawing.box(440, 484, 380, 56, FILLS["instrument"], "zk4n simulate", what)
    drawing.save(file)


def measurement(file):
    drawing = Drawing(900, 690)
    places = {"client": 110, "driver": 350, "worker": 570, "instrument": 800}
    names = {"client": "client", "driver": "driver", "worker": "worker", "instrument": "instrument"}
    for key, x in places.items():
        drawing.box(x - 70, 16, 140, 36, FILLS.get(key, FILLS["driver"]), names[key])
        drawing.line(x, 52, x, 670, dashed=True)
    steps = [  # y, from, to, text, an answer
        (88, "client", "driver", "FrequencyStep.ConfigureStartStop", False),
        (110, "driver", "instrument", "frequency: start, points, step", False),
        (132, "instrument", "driver", "as it is corrected", True),
        (172, "client", "driver", "Sweep.Configure(3, 2)", False),
        (194, "driver", "instrument", "level, frequency, trigger", False),
        (240, "client", "driver", "Acquisition.Initiate", False),
        (262, "driver", "worker", "read one sweep", False),
        (284, "worker", "instrument", "data request", False),
        (336, "client", "driver", "Acquisition.Status", False),
        (358, "driver", "client", "1, InProgress", True),
        (446, "instrument", "worker", "block: 12 bytes a point", True),
        (468, "worker", "driver", "kept with its settings", True),
        (510, "client", "driver", "Acquisition.Status", False),
        (562, "driver", "client", "0, Complete", True),
        (598, "client", "driver", "Channel.FetchData", False),
        (620, "driver", "client", "values, InitialX, XIncrement", True),
    ]
    # While they are busy.
    for x, y, height, who in ((792, 284, 162, "instrument"), (342, 510, 52, "driver")):
        drawing.parts.append(
            f'<rect x="{x}" y="{y}" width="16" height="{height}" fill="{FILLS[who]}" '
            f'stroke="{LINE}"/>'
        )
    for y, begin, end, text, answer in steps:
        x1, x2 = places[begin], places[end]
        busy = {"instrument": 284 <= y <= 446, "driver": 510 <= y <= 562}
        x1, x2 = x1 - 8 * busy.get(begin, False), x2 - 8 * busy.get(end, False)
        drawing.arrow(x1, y, x2, y, answer)
        # What passes by the worker is written before its line.
        left, right = min(x1, x2), max(x1, x2)
        if "worker" not in (begin, end):
            right = min(right, places["worker"])
        drawing.text((left + right) / 2, y - 6, text, size=12.5)
    drawing.text(784, 372, "sweeps", "end", 12.5, fill=SOFT)
    drawing.text(366, 534, "converts the three channels", "start", 12.5, fill=SOFT)
    drawing.text(366, 550, "with their detector tables", "start", 12.5, fill=SOFT)
    drawing.text(230, 644, "for each of A, B and R", size=12.5, fill=SOFT)
    drawing.save(file)


def draw(client, folder):
    folder = pathlib.Path(folder)
    layers(folder / "layers.svg")
    measurement(folder / "measurement.svg")
    trace, table = folder / "trace.svg", folder / "detector.svg"
    detector = pathlib.Path(__file__).resolve().parent.parent.parent / "data" / "calibr20.det"
    steps = ["--start", "1.5GHz", "--stop", "3.5GHz", "--step", "20MHz", "--level", "0dBm"]
    commands = [
        ["measure", "--simulate", *steps, "--json", "--svg", str(trace)],
        ["detector", "plot", str(detector), "--svg", str(table)],
    ]
    for command in commands:
        subprocess.run([client, *command], check=True, capture_output=True)
    trace.write_text(ADDRESS.sub("192.0.2.7::8888", TIME.sub("", trace.read_text())))
    table.write_text(table.read_text().replace(str(detector), detector.name))


if __name__ == "__main__":
    draw(*sys.argv[1:])
