#!/usr/bin/env python3
"""What tools/mutate changes in a source, and what it leaves alone.

findsPlaces.py [unittest's arguments]
"""
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "tools"))

from mutation import places  # noqa: E402


def mutants(source, kind=None):
    return [change.apply(source) for change in places.changes(source) if kind in (None, change.kind)]


class FindsPlaces(unittest.TestCase):
    def test_a_comparison_is_turned_round(self):
        self.assertEqual(mutants("a == b", "comparison"), ["a != b"])
        self.assertEqual(mutants("a < b", "comparison"), ["a >= b"])

    def test_a_bound_is_moved_by_one(self):
        self.assertEqual(mutants("a < b", "boundary"), ["a <= b"])
        self.assertEqual(mutants("a >= b", "boundary"), ["a > b"])
        self.assertEqual(mutants("a == b", "boundary"), [])

    def test_and_becomes_or(self):
        self.assertEqual(mutants("a && b", "logic"), ["a || b"])

    def test_a_condition_is_negated(self):
        self.assertEqual(mutants("if (good(a)) {\n}", "condition"), ["if (!(good(a))) {\n}"])
        self.assertEqual(mutants("if (const int a = b(); a) {\n}", "condition"), ["if (const int a = b(); !(a)) {\n}"])
        self.assertEqual(mutants("x = !y;", "condition"), ["x = y;"])

    def test_a_condition_that_declares_is_left_alone(self):
        self.assertEqual(mutants("if (const int* a = b()) {\n}", "condition"), [])

    def test_a_call_is_left_out(self):
        source = "{\n    a.b(1)->c(\n        d);\n}"
        self.assertEqual(mutants(source, "call"), ["{\n    ;\n}"])
        self.assertEqual(mutants("{\n    emit changed();\n}", "call"), ["{\n    ;\n}"])

    def test_a_declaration_is_no_call(self):
        self.assertEqual(mutants("{\n    QFile file(name);\n}", "call"), [])
        self.assertEqual(mutants("{\n    a = b(c);\n}", "call"), [])

    def test_room_is_always_reserved(self):
        self.assertEqual(mutants("{\n    list.reserve(count);\n}", "call"), [])

    def test_a_number_becomes_another(self):
        self.assertEqual(mutants("f(4)", "constant"), ["f(5)"])
        self.assertEqual(mutants("f(1000)", "constant"), ["f(2000)"])
        self.assertEqual(mutants("f(0x20)", "constant"), ["f(0x21)"])
        self.assertEqual(mutants("f(120ms)", "constant"), ["f(240ms)"])
        self.assertEqual(mutants("f(true)", "constant"), ["f(false)"])

    def test_a_result_becomes_the_default(self):
        self.assertEqual(mutants("{\n    return a + b;\n}", "return"), ["{\n    return {};\n}"])
        self.assertEqual(mutants("{\n    return QString();\n}", "return"), [])
        self.assertEqual(mutants("{\n    return false;\n}", "return"), [])

    def test_an_operation_becomes_another(self):
        self.assertEqual(mutants("a + b", "arithmetic"), ["a - b"])
        self.assertEqual(mutants("++a", "arithmetic"), ["--a"])
        self.assertEqual(mutants("a |= b", "arithmetic"), ["a &= b"])

    def test_types_pointers_and_references_are_no_operations(self):
        self.assertEqual(mutants("const QVector<QPair<int, T*>>& f(const T& a, T&& b);"), [])
        self.assertEqual(mutants("std::array<int, 4> a;"), [])
        self.assertEqual(mutants("bool operator==(const T& a);"), [])

    def test_texts_comments_and_directives_are_left_alone(self):
        self.assertEqual(mutants('f("a < 1", \'+\'); // a == 1\n/* a && b */\n#if A == 1\n#endif\n'), [])

    def test_assertions_are_left_alone(self):
        self.assertEqual(mutants("{\n    Q_ASSERT(a == 1);\n}"), [])


unittest.main()
