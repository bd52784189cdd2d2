"""Tests which files the lint step reads: the change that git reports, and a source for each
header.

    python3 lint_test.py TOP-FOLDER
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(sys.argv.pop(1)) / "scripts"))
import lint  # noqa: E402  (the path is set above)


class Repository(unittest.TestCase):
    """Each case has a repository of its own, which the script treats as the project."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(setattr, lint, "TOP", lint.TOP)
        lint.TOP = Path(folder.name)
        self.git("init", "--quiet", "--initial-branch=main")
        self.commit("first", **{"a.cpp": "", "b.cpp": "", "c.cpp": ""})

    def git(self, *arguments):
        subprocess.run(("git", "-c", "user.name=A", "-c", "user.email=a@example.org",
                        "-c", "commit.gpgsign=false", *arguments), cwd=lint.TOP, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def write(self, **files):
        for name, text in files.items():
            (lint.TOP / name).parent.mkdir(parents=True, exist_ok=True)
            (lint.TOP / name).write_text(text)

    def commit(self, message, **files):
        self.write(**files)
        self.git("add", "--all")
        self.git("commit", "--quiet", "--message", message)

    def touched(self):
        return lint.touched_files(lint.all_files())


class TouchedFiles(Repository):
    def test_the_first_commit_touches_all(self):
        self.assertEqual(self.touched(), ["a.cpp", "b.cpp", "c.cpp"])

    def test_on_the_main_branch_it_is_the_last_commit(self):
        self.commit("second", **{"a.cpp": "1"})
        self.commit("third", **{"b.cpp": "1"})
        self.assertEqual(self.touched(), ["b.cpp"])

    def test_a_fresh_clone_of_the_main_branch_has_its_last_commit(self):
        self.commit("second", **{"a.cpp": "1"})
        self.commit("third", **{"b.cpp": "1"})
        with tempfile.TemporaryDirectory() as folder:
            self.git("clone", "--quiet", str(lint.TOP), folder)
            lint.TOP = Path(folder)
            self.assertEqual(self.touched(), ["b.cpp"])

    def test_a_branch_has_all_its_commits(self):
        self.git("checkout", "--quiet", "-b", "work")
        self.commit("second", **{"a.cpp": "1"})
        self.commit("third", **{"b.cpp": "1"})
        self.assertEqual(self.touched(), ["a.cpp", "b.cpp"])

    def test_what_is_not_committed_belongs_to_the_change(self):
        self.commit("second", **{"a.cpp": "1"})
        self.write(**{"b.cpp": "1", "new.cpp": ""})
        self.assertEqual(self.touched(), ["a.cpp", "b.cpp", "new.cpp"])

    def test_a_removed_file_is_not_read(self):
        self.commit("second", **{"a.cpp": "1"})
        (lint.TOP / "b.cpp").unlink()
        self.assertEqual(self.touched(), ["a.cpp"])

    def test_an_ignored_file_is_not_read(self):
        self.commit("second", **{".gitignore": "build/\n"})
        self.write(**{"build/made.cpp": ""})
        self.assertEqual(self.touched(), [".gitignore"])


class SourcesToRead(Repository):
    def sources(self, *touched):
        return lint.sources_to_read(list(touched), lint.all_files())

    def test_a_source_is_read_itself(self):
        self.assertEqual(self.sources("a.cpp", "README.md"), ["a.cpp"])

    def test_a_header_is_read_through_the_source_of_its_name(self):
        self.write(**{"json/b.h": "", "json/a.cpp": '#include "json/b.h"',
                      "json/b.cpp": '#include "json/b.h"'})
        self.assertEqual(self.sources("json/b.h"), ["json/b.cpp"])

    def test_a_header_is_read_through_one_that_includes_it(self):
        self.write(**{"json/x.h": "", "json/y.h": '#include "x.h"', "json/d.cpp": '#include "json/y.h"',
                      "json/e.cpp": '#include "json/y.h"'})
        self.assertEqual(self.sources("json/x.h"), ["json/d.cpp"])

    def test_a_source_that_is_read_anyway_serves_a_header(self):
        self.write(**{"json/x.h": "", "json/d.cpp": '#include "json/x.h"',
                      "json/e.cpp": '#include "json/x.h"'})
        self.assertEqual(self.sources("json/x.h", "json/e.cpp"), ["json/e.cpp"])

    def test_a_header_that_nothing_includes_is_not_read(self):
        self.write(**{"json/x.h": ""})
        self.assertEqual(self.sources("json/x.h"), [])

    def test_the_product_comes_before_its_tests(self):
        self.assertEqual(self.sources("tests/a.cpp", "Src/a.cpp", "fuzz/a.cpp"),
                         ["Src/a.cpp", "fuzz/a.cpp", "tests/a.cpp"])


class Scripts(Repository):
    def test_a_script_is_known_by_its_ending_or_its_first_line(self):
        self.write(**{"a.sh": "", "b.py": "", "run": "#!/usr/bin/env bash\n", "make": "#!/usr/bin/python3\n",
                      "c.txt": "python\n"})
        names = ("a.sh", "b.py", "run", "make", "c.txt")
        self.assertEqual([name for name in names if lint.is_shell_script(name)], ["a.sh", "run"])
        self.assertEqual([name for name in names if lint.is_python_script(name)], ["b.py", "make"])


result = unittest.main(exit=False).result
failed = len(result.failures) + len(result.errors)
print(f"{result.testsRun - failed} passed, {failed} failed")
sys.exit(failed > 0)
