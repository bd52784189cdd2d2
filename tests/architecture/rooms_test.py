"""Tests that the tree follows the table of docs/architecture.md, and that the comparison
finds violations.

    python3 rooms_test.py TOP-FOLDER
"""

import sys
import tempfile
import unittest
from pathlib import Path

import rooms

TOP = Path(sys.argv.pop(1))

TABLE = """
## The rooms

| folder | holds | knows of |
|---|---|---|
| `platform/` | the seam | nothing |
| `net/` | sockets | `platform/`; of `Src/` only `Printer` |
| `Src/` | the log | `platform/`; `net/` in `Sender` only |
| `monitoring/` | files | no sources; names are filled in |
| `tests/` | tests | what its room knows of, `tests/` |
| `tests/faults/`, `fuzz/` | faults | everything |

## Another section
"""


class OnePlantedInclude(unittest.TestCase):
    """Each case is a small tree with the table above and its includes."""

    def faults(self, table=TABLE, **includes):
        """Includes as platform__Clock_h='net/Socket.h'; returns the complaints of the comparison."""
        with tempfile.TemporaryDirectory() as folder:
            top = Path(folder)
            for name in ("platform/Clock.h", "net/Socket.h", "net/Link.h", "Src/Printer.h",
                         "Src/Sender.h", "Src/Log.h", "tests/net/LinkTest.cpp",
                         "tests/faults/All.cpp"):
                (top / name).parent.mkdir(parents=True, exist_ok=True)
                (top / name).touch()
            for name, included in includes.items():
                path = top / name.replace("__", "/").replace("_", ".")
                lines = [f'#include "{one}"' for one in included.split()]
                path.write_text("// A comment.\n" + "\n".join(lines) + "\n", encoding="utf-8")
            return list(rooms.forbidden_includes(rooms.read_includes(top), rooms.read_table(table)))

    def test_a_folder_that_is_listed_may_be_included(self):
        self.assertEqual(self.faults(net__Socket_h="platform/Clock.h"), [])

    def test_a_folder_that_is_not_listed_may_not(self):
        self.assertEqual(self.faults(platform__Clock_h="net/Socket.h"), [
            "platform/Clock.h:2: includes net/Socket.h, but `platform/` may not include it"])

    def test_a_folder_may_include_itself(self):
        self.assertEqual(self.faults(net__Socket_h="net/Link.h Link.h"), [])

    def test_only_the_listed_file_of_a_folder_may_be_included(self):
        self.assertEqual(self.faults(net__Link_h="Src/Printer.h Src/Log.h"), [
            "net/Link.h:3: includes Src/Log.h, but `net/` may not include it"])

    def test_only_the_listed_file_may_include_a_folder(self):
        self.assertEqual(self.faults(Src__Sender_h="net/Socket.h", Src__Log_h="net/Socket.h"), [
            "Src/Log.h:2: includes net/Socket.h, but `Src/` may not include it"])

    def test_the_product_may_not_include_a_test(self):
        self.assertEqual(len(self.faults(net__Link_h="tests/net/LinkTest.cpp")), 1)

    def test_a_path_upwards_does_not_hide_an_include(self):
        self.assertEqual(len(self.faults(platform__Clock_h="../net/Socket.h")), 1)

    def test_a_test_may_include_its_room_and_what_that_knows_of(self):
        self.assertEqual(self.faults(tests__net__LinkTest_cpp=(
            "net/Link.h platform/Clock.h Src/Printer.h tests/faults/All.cpp")), [])

    def test_a_test_may_not_include_more(self):
        self.assertEqual(self.faults(tests__net__LinkTest_cpp="Src/Log.h"), [
            "tests/net/LinkTest.cpp:2: includes Src/Log.h, but `tests/` may not include it"])

    def test_the_longest_folder_holds(self):
        self.assertEqual(self.faults(tests__faults__All_cpp="Src/Log.h net/Link.h"), [])

    def test_a_folder_without_a_row_is_reported(self):
        table = TABLE.replace("| `platform/` | the seam | nothing |\n", "")
        self.assertEqual(self.faults(table), [
            "platform/Clock.h: no row of the table holds its folder"])


class TheTable(unittest.TestCase):
    def test_a_sentence_that_is_no_list_is_refused(self):
        for cell in ("all of the above", "`net/` mostly", "`net`", "in `A` only `net/`"):
            with self.subTest(cell), self.assertRaises(rooms.TableError):
                rooms.read_clauses(cell)

    def test_a_page_without_the_table_is_refused(self):
        for page in ("", "## The rooms\n\nNo table.\n", "## Other\n| `a/` | b | nothing |\n"):
            with self.subTest(page), self.assertRaises(rooms.TableError):
                rooms.read_table(page)

    def test_a_name_that_is_gone_is_reported(self):
        includes = {"net/A.h": [(1, "Src/Printer.h")], "Src/Printer.h": [], "Src/Sender.h": []}
        table = rooms.read_table("## The rooms\n"
                                 "| `net/` | x | of `Src/` only `Printer` and `Gone` |\n"
                                 "| `Src/` | x | `net/` in `Sender` only; `none/` |\n")
        self.assertEqual(list(rooms.stale_names(includes, table)), [
            "`net/`: includes no file `Gone` of `Src/`",
            "`Src/`: has no file `Sender` that includes `net/`",
            "`Src/`: there is no folder `none/` with sources"])


class Circles(unittest.TestCase):
    def test_a_circle_through_two_folders_is_found(self):
        includes = {"net/A.h": [], "net/A.cpp": [(1, "net/A.h"), (2, "Src/B.h")],
                    "Src/B.h": [(1, "Src/C.h")], "Src/C.h": [(1, "net/A.h")]}
        self.assertEqual(list(rooms.circles(includes)),
                         ["a circle of includes: Src/B, Src/C, net/A"])

    def test_includes_of_both_folders_without_a_circle_are_none(self):
        includes = {"net/A.h": [(1, "Src/B.h")], "Src/B.h": [], "Src/C.h": [(1, "net/A.h")]}
        self.assertEqual(list(rooms.circles(includes)), [])


class ForeignSources(unittest.TestCase):
    def faults(self, name, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / name
            path.parent.mkdir()
            path.write_text(text, encoding="utf-8")
            return list(rooms.foreign_sources(Path(folder)))

    def test_a_source_of_another_room_is_found(self):
        for text in ('add_library(x "${CMAKE_SOURCE_DIR}/platform/linux/Clock.cpp")',
                     "add_library(x ../platform/linux/Clock.cpp)"):
            for name in ("simulator/CMakeLists.txt", "cmake/Winelib.cmake"):
                with self.subTest(name + " " + text):
                    self.assertEqual(self.faults(name, "# A comment.\n" + text + "\n"), [
                        f"{name}:2: names a path in platform/; use a target of that room"])

    def test_own_sources_and_other_folders_are_none(self):
        text = ('add_library(x "${CMAKE_SOURCE_DIR}/platform/linux/Clock.cpp" linux/Files.cpp\n'
                '            "${CMAKE_SOURCE_DIR}/cmake/x.cmake")\n')
        self.assertEqual(self.faults("platform/CMakeLists.txt", text), [])


class TheTree(unittest.TestCase):
    """The repository itself."""

    @classmethod
    def setUpClass(cls):
        cls.includes = rooms.read_includes(TOP)
        page = (TOP / "docs" / "architecture.md").read_text(encoding="utf-8")
        cls.table = rooms.read_table(page)

    def assert_none(self, faults):
        faults = list(faults)
        if faults:
            self.fail("\n  ".join(['"The rooms" of docs/architecture.md and the sources differ:',
                                   *faults]))

    def test_the_sources_are_found(self):
        self.assertGreater(len(self.includes), 300)

    def test_every_include_is_one_that_the_table_allows(self):
        self.assert_none(rooms.forbidden_includes(self.includes, self.table))

    def test_the_table_names_nothing_that_is_gone(self):
        self.assert_none(rooms.stale_names(self.includes, self.table))

    def test_no_room_compiles_the_sources_of_another_one(self):
        self.assert_none(rooms.foreign_sources(TOP))

    def test_no_circle_leads_through_two_rooms(self):
        self.assert_none(rooms.circles(self.includes))


result = unittest.main(exit=False, verbosity=1).result
failed = len(result.failures) + len(result.errors)
print(f"{result.testsRun - failed} passed, {failed} failed")
sys.exit(failed > 0)
