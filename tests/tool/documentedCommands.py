#!/usr/bin/env python3
"""Compares what the help of hubn-tool lists with its man page, its completion for bash and its chapter in the docs.

documentedCommands.py HUBN-TOOL [unittest's arguments]
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

root = pathlib.Path(__file__).resolve().parent.parent.parent
man_page = root / "packaging" / "hubn-tool.1"
completion = root / "packaging" / "hubn-tool.bash"
chapter = root / "docs" / "hubn-tool.md"
tool = ""

version_options = {"-v", "--version"}


def help_of(*command):
    run = subprocess.run([tool, *command, "--help"], capture_output=True, text=True, check=True)
    return run.stdout


def listed_commands():
    """The commands of the help, each with what it takes."""
    listing = help_of().split("Results go to")[0]
    return {name: rest.strip() for name, rest in re.findall(r"^  ([a-z]+)( \S+(?: \S+)*)?  +\S", listing, re.M)}


def listed_options(*command):
    names = set()
    for line in help_of(*command).split("\nOptions:\n")[1].split("\nArguments:\n")[0].splitlines():
        if line.startswith("  -"):
            names.update(re.findall(r"--?[a-z][a-z-]*", re.split(r"  +", line.strip())[0]))
    return names


def common_options():
    return listed_options() - version_options


def man_sections():
    """The parts of the man page by their titles; those of commands by the first word, behind "COMMANDS "."""
    sections = {}
    title = subtitle = ""
    for line in man_page.read_text(encoding="utf-8").splitlines():
        if line.startswith(".SH "):
            title, subtitle = line[4:], ""
        elif line.startswith(".SS "):
            subtitle = " " + line.split()[1]
        else:
            sections.setdefault(title + subtitle, []).append(line)
    return sections


def man_options(lines):
    names = set()
    for above, line in zip(lines, lines[1:]):
        if above == ".TP":
            names.update(re.findall(r"--?[a-z][a-z-]*", line.replace("\\-", "-")))
    return names


def completions(line, folder=None, ports=""):
    """What the completion offers behind this line."""
    script = r"""
        source "$1"
        ls() { printf '/dev/%s\n' $PORTS; }
        eval "COMP_WORDS=($2)"
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _hubn_tool
        printf '%s\n' "${COMPREPLY[@]}"
    """
    words = " ".join("'%s'" % word for word in line.split(" "))
    run = subprocess.run(["bash", "-u", "-c", script, "bash", str(completion), words], cwd=folder,
                         env={"PATH": "/usr/bin:/bin", "PORTS": ports}, capture_output=True, text=True, check=True)
    assert run.stderr == "", run.stderr
    return sorted(filter(None, run.stdout.splitlines()))


class ManPage(unittest.TestCase):
    def test_it_has_exactly_the_commands_of_the_help(self):
        told = [title.split()[1] for title in man_sections() if title.startswith("COMMANDS ")]
        self.assertEqual(sorted(told), sorted(listed_commands()))

    def test_it_has_exactly_the_options_of_the_help(self):
        sections = man_sections()
        self.assertEqual(man_options(sections["OPTIONS"]), listed_options())
        for command in listed_commands():
            with self.subTest(command=command):
                self.assertEqual(man_options(sections.get("COMMANDS " + command, [])),
                                 listed_options(command) - common_options())

    def test_it_has_the_arguments_of_the_help(self):
        text = re.sub(r"\\f[IPRB]", "", man_page.read_text(encoding="utf-8")).replace("\\-", "-")
        for command, arguments in listed_commands().items():
            with self.subTest(command=command):
                self.assertIn(".SS %s" % " ".join([command, arguments]).strip() + "\n", text)

    def test_it_has_exactly_the_exit_codes(self):
        codes = re.findall(r"^    \w+ = (\d+),", (root / "tool" / "ExitCode.h").read_text(encoding="utf-8"), re.M)
        lines = man_sections()["EXIT STATUS"]
        self.assertEqual([line[3:] for above, line in zip(lines, lines[1:]) if above == ".TP"], codes)

    def test_it_can_be_set_without_a_warning(self):
        if shutil.which("groff") is None:
            self.skipTest("there is no groff")
        run = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", str(man_page)], capture_output=True, text=True)
        self.assertEqual((run.returncode, run.stderr), (0, ""))


class Completion(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        for name in ("a.cfg", "b.crypt", "c.db", "d.csv", "e.json", "f.html", "g.pdf", "h.txt", "two words.cfg"):
            pathlib.Path(self.folder.name, name).touch()
        pathlib.Path(self.folder.name, "sites").mkdir()

    def tearDown(self):
        self.folder.cleanup()

    def offered(self, line):
        return completions(line, self.folder.name, "ttyUSB0 ttyACM1")

    def test_it_offers_exactly_the_commands_of_the_help(self):
        self.assertEqual(self.offered("hubn-tool "), sorted(listed_commands()))
        self.assertEqual(self.offered("hubn-tool --json fi"), ["firmware"])

    def test_it_offers_exactly_the_options_of_the_help(self):
        self.assertEqual(self.offered("hubn-tool -"), sorted(listed_options()))
        for command in listed_commands():
            with self.subTest(command=command):
                self.assertEqual(self.offered("hubn-tool %s -" % command), sorted(listed_options(command)))

    def test_it_offers_files_by_the_suffixes_of_the_help(self):
        configurations = ["a.cfg", "two words.cfg"]
        for command, arguments in listed_commands().items():
            wanted = []
            for suffix in re.findall(r"\.(?=[a-z])\w+", arguments.split(" ")[0]):
                wanted += configurations if suffix == ".cfg" else \
                    [name for name in ("b.crypt", "c.db", "d.csv", "e.json") if name.endswith(suffix)]
            if wanted:
                wanted += ["sites"]
            if "|unit" in arguments:
                wanted += ["unit"]
            with self.subTest(command=command):
                self.assertEqual(self.offered("hubn-tool %s " % command),
                                 sorted(wanted) or sorted(listed_options(command)))

    def test_it_offers_both_sides_of_a_comparison_and_no_third(self):
        self.assertEqual(self.offered("hubn-tool diff a.cfg un"), ["unit"])
        self.assertEqual(self.offered("hubn-tool diff a.cfg unit a"), [])

    def test_it_offers_files_for_options(self):
        self.assertEqual(self.offered("hubn-tool write a.cfg --backup a"), ["a.cfg"])
        self.assertEqual(self.offered("hubn-tool report a.cfg -o "), ["f.html", "g.pdf", "sites"])
        self.assertEqual(self.offered("hubn-tool report --output g"), ["g.pdf"])

    def test_it_offers_ports(self):
        for line in ("hubn-tool --port ", "hubn-tool time --port ", "hubn-tool time --port = "):
            with self.subTest(line=line):
                self.assertEqual(self.offered(line), ["ttyACM1", "ttyUSB0"])
        self.assertEqual(self.offered("hubn-tool read --port ttyU"), ["ttyUSB0"])
        self.assertEqual(self.offered("hubn-tool --port ttyUSB0 read --port ttyUSB0 a"), ["a.cfg"])

    def test_it_offers_nothing_behind_an_unknown_command(self):
        self.assertEqual(self.offered("hubn-tool reed "), [])


class Chapter(unittest.TestCase):
    def test_it_has_a_section_for_each_command(self):
        told = re.findall(r"^## `hubn-tool (\w+)`", chapter.read_text(encoding="utf-8"), re.M)
        self.assertEqual(sorted(told), sorted(listed_commands()))


if __name__ == "__main__":
    tool = str(pathlib.Path(sys.argv.pop(1)).resolve())
    unittest.main()
