#!/usr/bin/env python3
"""Runs the sessions of docs/hubn-tool.md and compares what is printed with what the chapter shows.

chapterSessions.py HUBN-TOOL HUBN-UNIT-SIMULATOR [unittest's arguments]

Each section is one session: its blocks of kind "console" are run in order, in a new folder. A line behind "$ " is a
command for bash, with more lines of it behind "> "; those below are its output. A simulator started there is another
terminal's: it runs until the session ends, and ports named later mean its port. Names of pseudo-terminals, dates, times and two seconds of
difference between clocks count as equal.
"""
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import threading
import unittest

chapter = pathlib.Path(__file__).resolve().parent.parent.parent / "docs" / "hubn-tool.md"
programs = []
longest_session = 120  # seconds

same_things = [
    (r"\bpts/\d+", "pts/N"),
    (r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d", "DATE-AND-TIME"),
    (r"\b\d\d\.\d\d\.\d{4}\b(, [A-Z]{3}\b)?", "DATE"),
    (r"\b\d\d:\d\d(:\d\d)?\b", "TIME"),
    (r"\b[0-2] s (ahead of|behind) this PC|as this PC's", "ABOUT THIS PC'S"),
    (r"(\d+ min) \d+ s\b", r"\1 SECONDS"),
    (r'("secondsAhead": )-?[0-2]\b', r"\1ABOUT 0"),
]


def normal(text):
    for pattern, name in same_things:
        text = re.sub(pattern, name, text)
    return text


def sessions():
    """Title and list of (command, output) of each section that has some."""
    sections = re.split(r"^## +", chapter.read_text(encoding="utf-8"), flags=re.M)[1:]
    for section in sections:
        title = section.splitlines()[0]
        steps = []
        for block in re.findall(r"^```console\n(.*?)^```$", section, re.M | re.S):
            assert block.startswith("$ "), "%s: a block begins without a command" % title
            steps += re.findall(r"^\$ (.*\n(?:> .*\n)*)((?:(?!\$ ).*\n)*)", block, re.M)
        if steps:
            yield title, steps


class Session:
    """A shell in a folder of its own, with the simulators beside it."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        paths = [str(program.parent) for program in programs] + [os.environ["PATH"]]
        self.environment = dict(os.environ, PATH=":".join(paths), LC_ALL="C.UTF-8", XDG_RUNTIME_DIR=self.folder.name)
        self.port = None
        self.simulators = []
        self.shell = self.start(["bash"])
        self.say("sessionStep() { local code=$?; printf '\\036\\n'; return $code; }")
        self.watchdog = threading.Timer(longest_session, os.killpg, (self.shell.pid, signal.SIGKILL))
        self.watchdog.start()

    def start(self, command):
        return subprocess.Popen(command, cwd=self.folder.name, env=self.environment, stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8",
                                start_new_session=True)

    def say(self, line):
        self.shell.stdin.write(line + "\n")
        self.shell.stdin.flush()

    def run(self, command):
        """What it prints."""
        if command.startswith("hubn-unit-simulator "):
            self.simulators.append(self.start(["bash", "-c", "exec " + command]))
            line = self.simulators[-1].stdout.readline()
            self.port = line.strip()
            return line
        if self.port is not None:
            command = re.sub(r"\bpts/\d+", self.port, command)
        # The shell's own input is this session.
        self.say("{ %s} </dev/null\nsessionStep" % re.sub(r"^> ", "", command, flags=re.M))
        output = ""
        while not output.endswith("\036\n"):
            line = self.shell.stdout.readline()
            if not line:
                return output + "(the session ended)\n"
            output += line
        return output[:-2]

    def end(self):
        self.watchdog.cancel()
        for process in [self.shell, *self.simulators]:
            process.terminate()
            process.communicate()
        self.folder.cleanup()


class Chapter(unittest.TestCase):
    maxDiff = None

    def test_each_session_runs_as_it_is_shown(self):
        for title, steps in sessions():
            with self.subTest(session=title):
                session = Session()
                self.addCleanup(session.end)
                shown = "".join("$ %s%s" % step for step in steps)
                printed = "".join("$ %s%s" % (command, session.run(command)) for command, _ in steps)
                self.assertEqual(normal(printed), normal(shown))

    def test_each_section_of_a_command_runs_it(self):
        told = dict(sessions())
        for title in re.findall(r"^## (`hubn-tool \w+`.*)$", chapter.read_text(encoding="utf-8"), re.M):
            with self.subTest(section=title):
                begin = title.split("`")[1]
                self.assertTrue(any(begin in command for command, _ in told.get(title, [])))


if __name__ == "__main__":
    programs = [pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2)]
    unittest.main()
