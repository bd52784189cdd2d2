"""Tests which mutants are made of a source, and the list of equivalent ones.

    python3 mutations_test.py TOP-FOLDER
"""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(sys.argv.pop(1)) / "scripts"))
import mutations  # noqa: E402  (the path is set above)


def mutants(*lines):
    return mutations.mutants_of("a.cpp", "\n".join(lines))


def new_lines(line):
    return [mutant.new for mutant in mutants(line)]


class Changes(unittest.TestCase):
    def test_relations_and_numbers(self):
        self.assertEqual(new_lines("  return a < 9;"), [
            "return a <= 9;", "return a >= 9;", "return a < 10;", "return a < 8;"])

    def test_hexadecimal_and_octal_numbers_keep_their_form(self):
        self.assertEqual(new_lines("x{0xFF}"), ["x{0x100}", "x{0xFE}"])
        self.assertEqual(new_lines("x{0644}"), ["x{0645}", "x{0643}"])
        self.assertEqual(new_lines("x{0}"), ["x{1}"])

    def test_arithmetic(self):
        self.assertEqual(new_lines("return a + b--;"), ["return a - b--;", "return a + b++;"])

    def test_conditions(self):
        self.assertEqual(new_lines("if (f(a)) return;"), [
            "if (!(f(a))) return;", "if ((f(a)) && false) return;", "if ((f(a)) || true) return;"])
        self.assertEqual(new_lines("while (f(a)) {"), ["while (!(f(a))) {",
                                                       "while ((f(a)) && false) {"])
        self.assertEqual(new_lines("return !a && true;"), [
            "return a && true;", "return !a || true;", "return !a && false;"])

    def test_letters_of_texts(self):
        self.assertEqual(new_lines('F(kind, "abc");'), ['F(kind, "axc");', ";"])
        self.assertEqual(new_lines("return c == 'x';")[1:], ["return c == 'y';"])
        self.assertEqual(new_lines(r'return "%s\n";'), [])

    def test_brackets_pointers_and_references_are_no_operators(self):
        self.assertEqual(new_lines("std::vector<int*> list(const T& other, T&& moved);"), [])

    def test_comments_texts_and_checks_of_the_compiler_stay(self):
        self.assertEqual(mutants("// a < 9", "/* a + b,", "   1 */", 'f("9 < !", x', "#if A > 9",
                                 "static_assert(a < 9);"), [])


class Statements(unittest.TestCase):
    def changed(self, kind, *lines):
        return [mutant.apply("\n".join(lines)).split("\n")
                for mutant in mutants(*lines) if mutant.kind == kind]

    def test_a_call_and_an_assignment_are_removed(self):
        self.assertEqual(self.changed("statement", "{", "  a.f(b);", "}"), [["{", "  ;", "}"]])
        self.assertEqual(self.changed("statement", "{", "  m_a[i] = b;", "}"), [["{", "  ;", "}"]])

    def test_a_declaration_a_return_and_a_part_of_a_statement_stay(self):
        self.assertEqual(self.changed("statement", "T a(b);", "return f(b);", "T c =", "  f(d);"), [])

    def test_a_lock_is_removed(self):
        lock = "  const Platform::CriticalSectionLock lock(m_lock);"
        self.assertEqual(self.changed("lock", lock, "  f();"), [["  ", "  f();"]])

    def test_two_statements_are_swapped(self):
        self.assertEqual(self.changed("swap", "  f();", "  a = b;", "    g();"),
                         [["  a = b;", "  f();", "    g();"]])


class Equivalent(unittest.TestCase):
    def read(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "list"
            path.write_text(text)
            return mutations.read_equivalent(path)

    def test_entries_stand_below_a_reason(self):
        self.assertEqual(self.read("# c\n== reason\na: b => c\n\n== other\nd: e => f\n"),
                         {"a: b => c", "d: e => f"})

    def test_an_entry_without_a_reason_is_refused(self):
        with self.assertRaises(SystemExit):
            self.read("a: b => c\n")

    def test_an_entry_is_the_text_of_its_mutant(self):
        self.assertEqual([str(mutant) for mutant in mutants("return 0;", "}", "return 0;")],
                         ["a.cpp: return 0; => return 1;", "a.cpp (2): return 0; => return 1;"])


result = unittest.main(exit=False).result
failed = len(result.failures) + len(result.errors)
print(f"{result.testsRun - failed} passed, {failed} failed")
sys.exit(failed > 0)
