#!/usr/bin/env python3
"""Member calls from Python, as bench/driver/Session_bench.cpp makes them from C++:
members.py MODULES_FOLDER REPETITIONS prints the medians in microseconds as JSON.
"""

import json
import pathlib
import statistics
import sys
import timeit

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "python"))
import zentrelk4n as k4n  # noqa: E402

modules, repetitions = pathlib.Path(sys.argv[1]), int(sys.argv[2])


def microseconds(call):
    timer = timeit.Timer(call)
    number, _ = timer.autorange()
    return statistics.median(timer.repeat(repetitions, number)) / number * 1e6


def put_level(rf):
    rf.level = -10.0


with k4n.simulate(program=str(modules / "zk4n")) as instrument:
    with k4n.open(instrument, module=str(modules / "libZentrelK4NLib.so")) as gen:
        gen.measure(start=1e9, stop=1e9 + 5460e6, step=1e6, progress=False)
        rf, channel = gen.rf, gen.acquisition.channels.item("ChannelA")
        assert len(channel.fetch_data().data_array) == 5461
        figures = {
            "ReadProperty": microseconds(lambda: rf.frequency),
            "PutProperty": microseconds(lambda: put_level(rf)),
            "FetchTrace": microseconds(channel.fetch_data),
        }
        print(json.dumps(figures))
