"""The VISA library as PyVISA drives it, against a scripted instrument."""
import functools
import math
import pathlib
import re
import socketserver
import sys
import threading
import unittest

import pyvisa
from pyvisa import constants
from pyvisa.constants import BufferOperation, EventMechanism, EventType, InterfaceType, StatusCode
from pyvisa.errors import InvalidSession, VisaIOError

LIBRARY = sys.argv[1]
ECHOED = bytes(range(256))


class Instrument(socketserver.StreamRequestHandler):
    """Answers lines; the rest it sends back as it is."""

    def handle(self):
        for line in self.rfile:
            if line == b"*IDN?\n":
                self.wfile.write(b"Zentrel,K4N\nbehind")
            elif line != b"silence\n":
                self.wfile.write(line)


class PyVisaTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = socketserver.ThreadingTCPServer(("127.0.0.1", 0), Instrument)
        cls.server.daemon_threads = True
        threading.Thread(target=cls.server.serve_forever, daemon=True).start()
        cls.name = f"TCPIP::127.0.0.1::{cls.server.server_address[1]}::SOCKET"

    def setUp(self):
        self.manager = pyvisa.ResourceManager(LIBRARY + "@ivi")
        self.addCleanup(self.manager.close)
        self.session = self.open()

    def open(self):
        return self.manager.open_resource(self.name, write_termination="\n", timeout=5000)

    def fails(self, status, call, *arguments):
        with self.assertRaises(VisaIOError) as caught:
            call(*arguments)
        self.assertEqual(caught.exception.error_code, status)

    def test_raw_bytes(self):
        self.assertEqual(self.session.write_raw(ECHOED + b"\n"), 257)
        self.assertEqual(self.session.read_bytes(100), ECHOED[:100])
        self.assertEqual(self.session.read_bytes(157), ECHOED[100:] + b"\n")
        self.session.read_termination = "\n"
        self.session.write_raw(b"x" * 30000 + b"\n")  # more than one read of PyVISA's
        self.assertEqual(self.session.read_raw(), b"x" * 30000 + b"\n")

    def test_query_clear_and_flush(self):
        self.session.read_termination = "\n"
        flush = functools.partial(self.session.flush, BufferOperation.discard_receive_buffer)
        for drop in (self.session.clear, flush):
            self.assertEqual(self.session.query("*IDN?"), "Zentrel,K4N")
            self.assertEqual(self.session.read_bytes(6), b"behind")
            self.assertEqual(self.session.query("*IDN?"), "Zentrel,K4N")
            drop()
            self.assertEqual(self.session.query("fresh"), "fresh")

    def test_timeout(self):
        for timeout in (None, 0, 1, 12345):
            self.session.timeout = timeout
            self.assertEqual(self.session.timeout, math.inf if timeout is None else timeout)
        self.session.timeout = 30
        self.session.write("silence")
        self.fails(StatusCode.error_timeout, self.session.read_raw)

    def test_locks_between_sessions(self):
        other = self.open()
        self.session.lock_excl()
        self.fails(StatusCode.error_resource_locked, other.write, "x")
        self.fails(StatusCode.error_resource_locked, other.lock_excl, 20)
        self.session.unlock()
        self.fails(StatusCode.error_session_not_locked, self.session.unlock)
        key = self.session.lock(timeout=20)
        other.lock(timeout=20, requested_key=key)
        other.read_termination = "\n"
        self.assertEqual(other.query("shared"), "shared")

    def test_names(self):
        self.assertEqual(self.manager.list_resources("?*"), ())
        info = self.manager.resource_info(self.name.lower())
        self.assertEqual(info.resource_class, "SOCKET")
        self.assertEqual(info.interface_type, InterfaceType.tcpip)
        self.assertEqual(info.resource_name, self.name.replace("TCPIP", "TCPIP0"))
        self.assertEqual(self.session.resource_manufacturer_name, "Zentrel")
        self.fails(StatusCode.error_invalid_resource_name, self.manager.open_resource, "COM1")
        nobody = "TCPIP::127.0.0.1::1::SOCKET"
        self.fails(StatusCode.error_resource_not_found, self.manager.open_resource, nobody)

    def test_numbers_of_the_header(self):
        header = pathlib.Path(__file__).parents[2] / "visa/Visa.h"
        found = re.findall(r"constexpr \w+ (VI_\w+) =\D*(0x\w+|\d+)", header.read_text())
        ours = {name: int(number, 0) for name, number in found if "ZENTREL" not in name}
        self.assertEqual(len(ours), 88)
        self.assertEqual(ours, {name: getattr(constants, name) & 0xFFFFFFFF for name in ours})

    def test_events_status_byte_and_closing(self):
        event = (EventType.service_request, EventMechanism.queue)
        self.fails(StatusCode.error_invalid_event, self.session.enable_event, *event)
        self.fails(StatusCode.error_nonsupported_operation, self.session.read_stb)
        self.session.close()
        self.assertRaises(InvalidSession, lambda: self.session.session)
        self.session = self.open()
        self.manager.close()
        self.assertRaises(InvalidSession, lambda: self.manager.session)


unittest.main(argv=sys.argv[:1])
