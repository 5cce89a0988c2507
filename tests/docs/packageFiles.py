#!/usr/bin/env python3
"""Looks at what is installed beside the programs, each by the tool that knows its kind.

packageFiles.py SOURCE-TREE BUILD-TREE [unittest's arguments]
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

source = built = pathlib.Path()


def run(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)


def needs(tool):
    return unittest.skipUnless(shutil.which(tool), "%s isn't installed" % tool)


class PackageFiles(unittest.TestCase):
    def assert_silent(self, *command):
        done = run(*command)
        self.assertEqual((done.stdout + done.stderr).strip(), "")
        self.assertEqual(done.returncode, 0)

    @needs("desktop-file-validate")
    def test_the_desktop_entry_is_sound(self):
        self.assert_silent("desktop-file-validate", built / "hubn-manager.desktop")

    @needs("appstreamcli")
    def test_software_centres_understand_the_program(self):
        done = run("appstreamcli", "validate", "--no-net", built / "hubn-manager.metainfo.xml")
        self.assertIn("hubn_nx_q", done.stdout)
        faults = [line for line in done.stdout.splitlines() if line[:2] in ("E:", "W:")]
        # The program has no place in the web, so its pictures come from where they are installed.
        self.assertEqual([line for line in faults if not line.endswith(" web-url-expected")], [])

    @needs("mandoc")
    def test_the_man_pages_are_sound(self):
        for page in sorted((source / "packaging").glob("*.1")):
            with self.subTest(page.name):
                self.assert_silent("mandoc", "-T", "lint", "-W", "error", page)

    def test_each_option_of_the_simulator_is_in_its_man_page(self):
        page = (source / "packaging" / "hubn-unit-simulator.1").read_text().replace("\\", "")
        help_text = run(built.parent / "bin" / "hubn-unit-simulator", "--help").stdout
        options = {word.split("=")[0] for line in help_text.splitlines() for word in line.split()[:2] if word.startswith("--")}
        self.assertIn("--state", options)
        for option in options - {"--help-all"}:
            with self.subTest(option):
                self.assertIn(option, page)


class OwnFolder(unittest.TestCase):
    """The script behind the desktop's menu, with a program that tells where it was started."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()
        self.home = self.root / "home"
        self.home.mkdir()
        script = self.add("usr/libexec/hubn-manager/in-own-folder", (built / "in-own-folder").read_text())
        self.add("usr/bin/hubn-manager", "#!/bin/sh\npwd\n")
        self.add("usr/share/hubn-manager/DefaultSetting_EN.cfg", "delivered")
        self.add("tools/xdg-user-dir", "#!/bin/sh\necho \"$DOCUMENTS\"\n")
        self.script = script

    def add(self, name, text):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        file.chmod(0o755)
        return file

    def start(self, documents=""):
        environment = dict(os.environ, HOME=str(self.home), DOCUMENTS=str(documents),
                           PATH="%s:%s" % (self.root / "tools", os.environ["PATH"]))
        environment.pop("DISPLAY", None)
        return run(self.script, env=environment)

    def test_it_works_among_the_documents(self):
        documents = self.home / "My Papers"
        documents.mkdir()
        self.assertEqual(self.start(documents).stdout, "%s/HUBN-NX-Q\n" % documents)
        self.assertEqual((documents / "HUBN-NX-Q" / "DefaultSetting_EN.cfg").read_text(), "delivered")

    def test_without_documents_it_works_in_the_home_folder(self):
        self.assertEqual(self.start(self.home / "none").stdout, "%s/HUBN-NX-Q\n" % self.home)

    def test_settings_of_the_users_own_stay(self):
        own = self.home / "HUBN-NX-Q" / "DefaultSetting_EN.cfg"
        own.parent.mkdir()
        own.write_text("mine")
        self.assertEqual(self.start().returncode, 0)
        self.assertEqual(own.read_text(), "mine")
        self.assertEqual([file.name for file in own.parent.iterdir()], [own.name])

    def test_without_the_delivered_settings_it_starts_as_well(self):
        (self.root / "usr/share/hubn-manager/DefaultSetting_EN.cfg").unlink()
        self.assertEqual(self.start().stdout, "%s/HUBN-NX-Q\n" % self.home)
        self.assertEqual(list((self.home / "HUBN-NX-Q").iterdir()), [])

    def test_a_folder_that_cannot_be_made_is_told(self):
        (self.home / "HUBN-NX-Q").write_text("a file")
        done = self.start()
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertIn("HUBN-NX-Q", done.stderr)


if __name__ == "__main__":
    source, built = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
    unittest.main()
