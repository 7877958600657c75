#!/usr/bin/env python3
"""Makes the captures anew: capture.py CLIENT FOLDER [NAME...].

CLIENT is the built zk4n. Each capture is a session of the driver with a simulated instrument, whose
bytes a relay between them keeps; packets are made of them, between two addresses of the
documentation. No rights are needed. Afterwards `wireshark_test.py --write` makes the expected
texts: look at each line that differs.
"""

import pathlib
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time

CLIENT_ADDRESS, SERVER_ADDRESS = "192.0.2.1", "192.0.2.7"
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


class Relay:
    """Passes the bytes of one connection on, and keeps them with their times."""

    def __init__(self, port):
        self.port = port
        self.chunks = []  # time, from the client, bytes
        self.lock = threading.Lock()
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.thread = threading.Thread(target=self._serve)
        self.thread.start()

    def resource(self):
        return f"TCPIP0::127.0.0.1::{self.listener.getsockname()[1]}::SOCKET"

    def _serve(self):
        client = self.listener.accept()[0]
        server = socket.create_connection(("127.0.0.1", self.port))
        pairs = ((client, server, True), (server, client, False))
        directions = [threading.Thread(target=self._pass_on, args=pair) for pair in pairs]
        for direction in directions:
            direction.start()
        for direction in directions:
            direction.join()
        client.close()
        server.close()

    def _pass_on(self, source, target, from_client):
        source.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        target.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        try:
            while data := source.recv(65536):
                with self.lock:
                    self.chunks.append((time.time(), from_client, data))
                target.sendall(data)
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass  # the other side has gone

    def finish(self):
        self.thread.join()
        self.listener.close()


def checksum(data):
    total = sum(struct.unpack(f"!{len(data) // 2}H", data))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def packet(server_port, from_client, sequence, acknowledged, flags, payload, identifier):
    addresses = [socket.inet_aton(CLIENT_ADDRESS), socket.inet_aton(SERVER_ADDRESS)]
    ports = [CLIENT_PORT, server_port]
    if not from_client:
        addresses.reverse()
        ports.reverse()
    tcp = struct.pack("!HHIIBBHHH", *ports, sequence, acknowledged, 5 << 4, flags, 0xFFFF, 0, 0)
    pseudo = b"".join(addresses) + struct.pack("!BBH", 0, 6, len(tcp) + len(payload))
    total = checksum(pseudo + tcp + payload + bytes(len(payload) % 2))
    tcp = tcp[:16] + struct.pack("!H", total) + tcp[18:]
    ip = struct.pack("!BBHHHBBH", 0x45, 0, 40 + len(payload), identifier & 0xFFFF, 0x4000, 64, 6, 0)
    ip += b"".join(addresses)
    ip = ip[:10] + struct.pack("!H", checksum(ip)) + ip[12:]
    macs = [b"\x02\0\0\0\0\x07", b"\x02\0\0\0\0\x01"]
    if not from_client:
        macs.reverse()
    return b"".join(macs) + b"\x08\0" + ip + tcp + payload


def write_capture(path, server_port, chunks):
    """A pcap file: the handshake, then each chunk in segments, then both ends."""
    FIN, SYN, PUSH, ACK = 1, 2, 8, 16
    start = chunks[0][0]
    numbers = {True: 1, False: 1}
    records = []

    def send(moment, from_client, flags, payload=b""):
        acknowledged = numbers[not from_client] if flags & ACK else 0
        order = (numbers[from_client], acknowledged, flags, payload, len(records))
        data = packet(server_port, from_client, *order)
        seconds, microseconds = divmod(round((moment - start) * 1e6) + 1000, 1_000_000)
        stamp = (1_700_000_000 + seconds, microseconds)
        records.append(struct.pack("<IIII", *stamp, len(data), len(data)) + data)
        numbers[from_client] += len(payload) + (1 if flags & (SYN | FIN) else 0)

    send(start - 0.0003, True, SYN)
    send(start - 0.0002, False, SYN | ACK)
    send(start - 0.0001, True, ACK)
    for moment, from_client, data in chunks:
        for at in range(0, len(data), LARGEST_SEGMENT):
            send(moment, from_client, PUSH | ACK, data[at : at + LARGEST_SEGMENT])
    end = chunks[-1][0] + 0.0001
    send(end, True, FIN | ACK)
    send(end + 0.0001, False, FIN | ACK)
    path.write_bytes(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1) + b"".join(records))


def read_capture(path):
    """The port and the chunks of a file that write_capture made."""
    data, at, chunks = path.read_bytes(), 24, []
    while at < len(data):
        seconds, microseconds, size = struct.unpack_from("<III", data, at)
        source, target = struct.unpack_from("!HH", data, at + 16 + 34)
        if size > 54:
            from_client = source == CLIENT_PORT
            port = target if from_client else source
            payload = data[at + 16 + 54 : at + 16 + size]
            chunks.append((seconds + microseconds / 1e6, from_client, payload))
        at += 16 + size
    return port, chunks


def run_client(client, script, resource, folder):
    if script is None:
        command = [client, "measure", "--resource", resource, "--step", "10MHz", "--averaging", "3"]
        for channel in "ABR":
            command += ["--detector", f"{channel}={pathlib.Path(client).with_name('calibr20.det')}"]
    else:
        file = pathlib.Path(folder) / "script.zk"
        file.write_text(script.replace("RESOURCE", resource))
        command = [client, "shell", str(file)]
    ran = subprocess.run(command, capture_output=True, text=True, stdin=subprocess.DEVNULL)
    print(ran.stdout[-300:])


def make(client, name, path):
    script, port, fault = CAPTURES[name]
    command = [client, "simulate", "--port", "0", *(["--fault", fault] if fault else [])]
    with tempfile.TemporaryDirectory() as folder:
        simulator = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        try:
            relay = Relay(int(simulator.stdout.readline().split("::")[2]))
            run_client(client, script, relay.resource(), folder)
            relay.finish()
        finally:
            simulator.terminate()
            simulator.communicate()
    write_capture(path, port, relay.chunks)


def main():
    client, folder, *names = sys.argv[1:]
    for name in names or CAPTURES:
        print(name)
        make(client, name, pathlib.Path(folder) / f"{name}.pcap")


if __name__ == "__main__":
    main()
