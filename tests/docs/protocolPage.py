#!/usr/bin/env python3
"""Has docs/protocol.md talk to the simulated unit: each exchange that it shows, and the tool that it lists.

protocolPage.py HUBN-UNIT-SIMULATOR [unittest's arguments]
"""
import os
import pathlib
import re
import select
import signal
import subprocess
import sys
import tempfile
import termios
import time
import tty
import unittest

page = (pathlib.Path(__file__).resolve().parent.parent.parent / "docs" / "protocol.md").read_text(encoding="utf-8")
simulator = ""
patience = 20  # seconds, for a machine that is busy elsewhere

# The unit of the page before anything is written into it.
unit = """
address = 1
serial = 20417
version = 6.02
log-capacity = 1024
terminal = 1 7 07114110000000
terminal = 2 5 0521412000000000
event = 30542509000000000000000040000000
event = 37542509114110320a01072100000000
"""


def block(kind):
    (found,) = re.findall(r"^```%s\n(.*?)^```$" % kind, page, re.M | re.S)
    return found


def exchanges():
    return re.findall(r"^(.*)\n-> (.*)\n<- (.*)$", block("wire"), re.M)


def checksum(frame):
    """Eight bits at a time, so that it shares nothing with the page's."""
    value = 0xFFFF
    for byte in frame:
        mixed = (byte ^ value) & 0xFF
        mixed = (mixed ^ mixed << 4) & 0xFF
        value = (value >> 8 ^ mixed << 8 ^ mixed << 3 ^ mixed >> 4) & 0xFFFF
    return value.to_bytes(2, "little")


class Unit:
    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        state = pathlib.Path(self.folder.name) / "unit.state"
        state.write_text(unit)
        self.process = subprocess.Popen([simulator, "--state", str(state)], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, text=True)
        self.port = "/dev/" + self.process.stdout.readline().strip()
        self.line = os.open(self.port, os.O_RDWR | os.O_NOCTTY)
        tty.setraw(self.line)
        settings = termios.tcgetattr(self.line)
        settings[4] = settings[5] = termios.B57600
        termios.tcsetattr(self.line, termios.TCSANOW, settings)

    def ask(self, request, length):
        os.write(self.line, request)
        answer = b""
        end = time.monotonic() + patience
        while len(answer) < length and select.select([self.line], [], [], max(0, end - time.monotonic()))[0]:
            answer += os.read(self.line, length - len(answer))
        return answer

    def end(self):
        os.close(self.line)
        self.process.send_signal(signal.SIGTERM)
        self.process.communicate()
        self.folder.cleanup()


class ProtocolPage(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.unit = Unit()
        self.addCleanup(self.unit.end)

    def write_what_the_page_writes(self):
        for title, request, answer in exchanges():
            if re.match("[56]:", title):
                self.unit.ask(bytes.fromhex(request), len(bytes.fromhex(answer)))

    def run_tool(self, *arguments):
        """What it prints. On a busy machine the unit may be late for its 120 ms, so it is asked again."""
        end = time.monotonic() + patience
        while True:
            run = subprocess.run([sys.executable, "-c", block("python"), *arguments], capture_output=True, text=True,
                                 timeout=patience)
            if run.stderr != "no answer\n" or time.monotonic() > end:
                return run.stdout + run.stderr

    def test_each_exchange_is_the_units(self):
        clock = "C2 86 01 00 08 00 "
        for title, request, answer in exchanges():
            with self.subTest(title):
                expected = bytes.fromhex(answer)
                received = self.unit.ask(bytes.fromhex(request), len(expected))
                if answer.startswith(clock):  # the second may have passed
                    self.assertEqual(received[-2:], checksum(received[:-2]))
                    received = expected[:6] + b"\x56" + received[7:-2] + expected[-2:]
                self.assertEqual(received.hex(" ").upper(), answer)

    def test_each_number_of_a_request_is_on_the_wire(self):
        numbers = {int(number) for number in re.findall(r"^(\d+)[:,] ", block("wire"), re.M)}
        self.assertEqual(numbers, set(range(1, 23)) - {11})  # which is 9 on the wire

    def test_each_frame_in_the_text_checks_out(self):
        frames = re.findall(r"\b((?:C1|C2|FA)(?: [0-9A-F]{2}){4,})\b", page.replace(block("wire"), ""))
        self.assertGreaterEqual(len(frames), 3)
        for text in frames:
            with self.subTest(text):
                frame = bytes.fromhex(text)
                for byte in 0xC2, 0xC1, 0xC0:
                    frame = frame.replace(bytes([0xC0, byte ^ 0xC0]), bytes([byte]))
                begin = 1 if frame[0] == 0xFA else 0
                self.assertEqual(frame[-2:], checksum(frame[begin:-2]))

    def test_the_tool_prints_what_the_page_says(self):
        self.write_what_the_page_writes()
        self.assertEqual(self.run_tool(self.unit.port, "3"), block("text"))

    def test_the_tool_tells_a_refusal(self):
        self.assertEqual(self.run_tool(self.unit.port, "32"), "refused, code 2\n")


if __name__ == "__main__":
    simulator = str(pathlib.Path(sys.argv.pop(1)).resolve())
    unittest.main()
