"""zk4n on a terminal: terminal_test.py ZK4N."""

import os
import sys
import unittest

import pexpect

CLIENT = sys.argv[1]
PROMPT = "zk4n> "


def on_terminal(*arguments):
    environment = dict(os.environ, TERM="xterm")
    return pexpect.spawn(CLIENT, list(arguments), env=environment, encoding="utf-8", timeout=60)


class Terminal(unittest.TestCase):
    def test_lines_are_completed_called_back_and_taken_away(self):
        client = on_terminal("shell")
        typed_and_shown = [
            ("RF.Fre\t", "quency"),
            ("\n", "(not connected)"),
            ("Initia\t", "lize"),  # or Initialized
            ("d\n", "false (0)"),
            ("\x10\n", "false (0)"),  # the line before
            ("\x12Fre\x1b\n", "(not connected)"),  # the last line with these letters
            ("RF.\t", "Configure  DisableAllModulation  Frequency  IsSettled"),
            ("\x03Initialized\n", "false (0)"),  # no end, but a line of its own
            ("Oper\t", "ation."),
            ("\x03nobody\t\x03Identity.Ve\t", "ndor"),
        ]
        client.expect_exact(PROMPT)
        for typed, shown in typed_and_shown:
            with self.subTest(typed):
                client.send(typed)
                client.expect_exact(shown)
        client.send("\x03\x04")
        client.expect(pexpect.EOF)
        self.assertEqual(client.wait(), 0)

    def test_a_bar_shows_how_far_a_measurement_is(self):
        sweep = ["measure", "--simulate", "--stop", "2GHz", "--step", "100kHz"]
        client = on_terminal(*sweep)
        client.expect_exact(f"\rMeasuring [{'#' * 40}] 100 %\r\nInstrument K4N")
        # A failure behind the first of two blocks: on a line of its own.
        client = on_terminal(*sweep, "--fault", "drop:command=6,after=1")
        client.expect_exact(f"\rMeasuring [{'#' * 21}{'.' * 19}]  54 %\r\nzk4n: measurement: ")
        client.expect(pexpect.EOF)
        self.assertEqual(client.wait(), 1)

    def test_ctrl_c_ends_a_measurement(self):
        client = on_terminal("measure", "--simulate", "--dwell", "20ms")
        client.expect_exact("]   1 %")  # of some ten seconds
        client.send("\x03")
        client.expect_exact("zk4n: interrupted")
        client.expect(pexpect.EOF)
        self.assertEqual(client.wait(), 130)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
