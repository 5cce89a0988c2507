#!/usr/bin/env python3
"""Looks whether the documents hold together: their links, their pictures, and whether the manual explains what the window says.

documents.py [unittest's arguments]
"""
import ast
import pathlib
import re
import unittest

root = pathlib.Path(__file__).resolve().parent.parent.parent
documents = sorted([*root.glob("*.md"), *root.glob("docs/*.md"), *root.glob("simulator/*.md")])


def text_of(document):
    return document.read_text(encoding="utf-8")


def without_code(text):
    return re.sub(r"^```.*?^```$|^    .*$|`[^`\n]*`", "", text, flags=re.M | re.S)


def anchors(document):
    """The names by which its headings are linked to."""
    headings = re.findall(r"^#+ +(.*)$", re.sub(r"^```.*?^```$", "", text_of(document), flags=re.M | re.S), re.M)
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}


def catalogue(file, *prefixes):
    """The texts of the window whose names begin so."""
    entries = re.findall(r'^TEXT\((\w+), (".*")\)$', text_of(root / "src" / "texts" / file), re.M)
    return {name: ast.literal_eval(text) for name, text in entries if name.startswith(prefixes)}


class Documents(unittest.TestCase):
    def test_each_link_leads_somewhere(self):
        for document in documents:
            for target in re.findall(r"\]\(([^)\s]+)\)", without_code(text_of(document))):
                with self.subTest(document=document.name, target=target):
                    name, _, place = target.partition("#")
                    file = (document.parent / name).resolve() if name else document
                    self.assertTrue(file.exists())
                    if place:
                        self.assertIn(place, anchors(file))

    def test_each_picture_is_shown(self):
        shown = {name for document in documents for name in re.findall(r"pictures/([\w-]+\.png)", text_of(document))}
        self.assertEqual(shown, {picture.name for picture in (root / "docs" / "pictures").glob("*.png")})


class Manual(unittest.TestCase):
    manual = text_of(root / "docs" / "manual.md")

    def assert_explained(self, texts):
        for name, text in texts.items():
            with self.subTest(name):
                # A cell has one line; what the window fills in is left out, or given as an example.
                for part in re.split(r"%\d", text.replace("\n", " / ")):
                    self.assertTrue(part.strip(" /") in self.manual, part)

    def test_every_result_is_explained(self):
        self.assert_explained(catalogue("texts.inc", "result"))
        self.assert_explained(catalogue("furtherTexts.inc", "rowsSaveOk", "rowsSaveError", "rowsNotShown", "packetsSaveOk",
                                        "packetsSaveError"))

    def test_every_state_of_a_port_is_explained(self):
        ports = catalogue("texts.inc", "port")
        self.assert_explained({name: text for name, text in ports.items() if not name.startswith("portColumn")})

    def test_every_text_of_the_busy_form_is_explained(self):
        busy = catalogue("texts.inc", "busy")
        del busy["busyTitle"]
        self.assert_explained(busy)

    def test_every_end_of_loading_firmware_is_explained(self):
        firmware = catalogue("texts.inc", "firmware")
        for title in "firmwareChooseFile", "firmwareTitle":
            del firmware[title]
        self.assert_explained(firmware)

    def test_every_fault_in_a_box_is_explained(self):
        self.assert_explained(catalogue("texts.inc", "databaseFault", "fileOpenError", "fileNotFound", "fileNoDefaultSettings"))
        russian = set()
        for file in "src/firmware/FirmwareFile.cpp", "src/ui/log/LogTab.cpp":
            russian |= set(re.findall(r'QStringLiteral\("(Ошибка (?:БД|файла прошивки|открытия файла))', text_of(root / file)))
        self.assertEqual(len(russian), 3)
        self.assert_explained({text: text for text in russian})

    def test_every_mode_and_action_is_named(self):
        modes = catalogue("texts.inc", "mode")
        self.assert_explained({name: text.split(" (")[0] for name, text in modes.items()})
        self.assert_explained(catalogue("texts.inc", "action"))


if __name__ == "__main__":
    unittest.main()
