#!/usr/bin/env python3
"""Makes the captures anew: capture.py CLIENT FOLDER [NAME...].

CLIENT is the built zk4n. Each capture is a session of the driver with a simulated instrument, whose
bytes a relay between them keeps; text2pcap makes packets of them, between two addresses of the
documentation. No rights are needed. Afterwards `wireshark_test.py --write` makes the expected
texts: look at each line that differs.
"""

import asyncio
import contextlib
import pathlib
import subprocess
import sys
import time

ADDRESSES = "192.0.2.1,192.0.2.7"  # the client's and the instrument's
CLIENT_PORT, USUAL_PORT, OTHER_PORT = 49152, 8888, 5025
LARGEST_SEGMENT = 1460
SETTING = """Initialize("RESOURCE", false, false)
Acquisition.Averaging = 5
Acquisition.Averaging = 6
Close
"""
SWEEP = """Initialize("RESOURCE", false, false)
Sweep.FrequencyStep.ConfigureStartStop(1e9, 2e9, 0, 1e8)
Sweep.FrequencyStep.Dwell = 0.01
Sweep.Configure(3, 2)
Acquisition.Initiate
sleep 400
Acquisition.Abort
Close
"""
WORDS = """Initialize("RESOURCE", false, false)
System.SerialNum
System.Type
PulseModulation.Enabled = true
PulseGenerator.Double.Delay = 1e-6
Sweep.List.CreatePower("p", [-10.5, -20])
Sweep.List.CreateFrequency("f", [1e9, 2e9, 3e9])
System.ExtRefPhaseDelay = -15
Close
"""
FACTOR = "command=3,parameter=4,times=1"  # the write of the averaging factor
BLOCK = "command=6,times=1"
# name: script (none: `zk4n measure` as ./demo does it), port, fault
CAPTURES = {
    "demo": (None, USUAL_PORT, None),
    "words": (WORDS, OTHER_PORT, None),
    "refuse": (SETTING, USUAL_PORT, f"refuse:{FACTOR},after=1,status=0x8007"),
    "drop": (SETTING, USUAL_PORT, f"drop:{FACTOR},after=1"),
    "silence": (SETTING, USUAL_PORT, f"silence:{FACTOR},after=1"),
    "delay": (SETTING, USUAL_PORT, f"delay:{FACTOR},after=1,pause=150"),
    "late": (SETTING, USUAL_PORT, f"delay:{FACTOR},after=1,pause=2100"),
    "header": (SETTING, USUAL_PORT, f"header:{FACTOR},after=1,word=0x1234"),
    "body": (SETTING, USUAL_PORT, f"body:{FACTOR},after=1,bytes=3"),
    "length-short": (SETTING, USUAL_PORT, f"length:{FACTOR},after=1,bytes=-1"),
    "length": (SWEEP, USUAL_PORT, f"length:{BLOCK},bytes=5"),
    "pieces": (SWEEP, OTHER_PORT, f"pieces:{BLOCK},bytes=40,pause=5"),
    "block-status": (SWEEP, USUAL_PORT, f"block-status:{BLOCK},status=0x8007"),
    "block-length": (SWEEP, USUAL_PORT, f"body:{BLOCK},bytes=-5"),
}


async def session(client, script, instrument):
    """The chunks of a session with the instrument at that port: time, from the client, bytes."""
    chunks, ended = [], asyncio.Event()

    async def pass_on(source, target, from_client):
        with contextlib.suppress(OSError):  # the other side has gone
            while data := await source.read(65536):
                chunks.append((time.time(), from_client, data))
                target.write(data)
            target.write_eof()

    async def relay(reader, writer):
        answers, requests = await asyncio.open_connection("127.0.0.1", instrument)
        await asyncio.gather(pass_on(reader, requests, True), pass_on(answers, writer, False))
        requests.close()
        writer.close()
        ended.set()

    async with await asyncio.start_server(relay, "127.0.0.1", 0) as server:
        resource = f"TCPIP0::127.0.0.1::{server.sockets[0].getsockname()[1]}::SOCKET"
        command = [client, "shell"]
        if script is None:
            command = [client, "measure", "--resource", resource, "--step=10MHz", "--averaging=3"]
            file = pathlib.Path(client).with_name("calibr20.det")
            command += [f"--detector={channel}={file}" for channel in "ABR"]
        process = await asyncio.create_subprocess_exec(*command, stdin=subprocess.PIPE)
        await process.communicate((script or "").replace("RESOURCE", resource).encode())
        await ended.wait()
    return chunks


def write_capture(path, port, chunks):
    """A pcap file of the chunks, in segments, of a connection to that port of the instrument."""
    text = ""
    for moment, from_client, data in chunks:
        for at in range(0, len(data), LARGEST_SEGMENT):
            segment = data[at : at + LARGEST_SEGMENT].hex(" ")
            text += f"{'I' if from_client else 'O'} {moment:.6f}\n0 {segment}\n"
    command = ["text2pcap", "-q", "-F", "pcap", "-D", "-t", "%s.%f"]
    command += ["-4", ADDRESSES, "-T", f"{CLIENT_PORT},{port}", "-", path]
    subprocess.run(command, input=text, text=True, check=True)


def make(client, name, path):
    script, port, fault = CAPTURES[name]
    command = [client, "simulate", "--port", "0", *(["--fault", fault] if fault else [])]
    simulator = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
    try:
        instrument = int(simulator.stdout.readline().split("::")[2])
        write_capture(path, port, asyncio.run(session(client, script, instrument)))
    finally:
        simulator.terminate()
        simulator.communicate()


def main():
    client, folder, *names = sys.argv[1:]
    for name in names or CAPTURES:
        print(name)
        make(client, name, pathlib.Path(folder) / f"{name}.pcap")


if __name__ == "__main__":
    main()
