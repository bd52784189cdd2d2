"""Checks sources without running them, and ends with the line "N passed, N failed".

    python3 scripts/lint.py [--all] [--seconds N]

The quick tools read every file of the tree: clang-format (which rewrites nothing),
shellcheck, and Python's compiler. clang-tidy and cppcheck take longer, so they read
only the files of a change:

- the files that differ from the commit where this branch left origin's main branch
  (the local main branch if there is no origin);
- the files of the last commit, if HEAD is part of that branch, as in a fresh clone;
- in both cases, the files that are not committed yet.

clang-tidy reads a header through one source file that includes it. After N seconds
(90) the two start with no further file, and the script prints how many files it has left
out. With --all they read every source file of the tree, without this limit.
"""

import argparse
import concurrent.futures
import json
import os
import re
import subprocess
import sys
import time
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
PRODUCT = ("agent", "check", "host", "json", "messages", "mibs", "net", "platform", "simulator", "Src")

# Files with placeholders. The tools read the files that are made from them.
TEMPLATES = "mibs/templates/"

# The system that clang-tidy reads a source for, by its path; Linux for all others.
SYSTEMS = (("winelib", re.compile(r"^host/winelib/")),
           ("windows", re.compile(r"(^|/)win32/|^tests/installer/")))

CPPCHECK = ("cppcheck", "--enable=warning,performance,portability", "--inline-suppr", "--std=c++20",
            "--quiet", "-I.", "--error-exitcode=1",
            # It mistakes the end of a template's argument list for a comparison,
            "--suppress=compareBoolExpressionWithInt",
            # and "+ 1" after a placement new for a sum of integers.
            "--suppress=CastIntegerToAddressAtReturn")

COMPILE_ONLY = "import pathlib, sys; compile(pathlib.Path(sys.argv[1]).read_text(), sys.argv[1], 'exec')"


def run(*command):
    """Returns the exit status and the whole output of a command."""
    done = subprocess.run(command, cwd=TOP, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", check=False)
    return done.returncode, done.stdout.strip()


def git(*arguments):
    """Returns the lines that git prints, or None if it fails."""
    done = subprocess.run(("git", *arguments), cwd=TOP, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True, check=False)
    return done.stdout.splitlines() if done.returncode == 0 else None


def all_files():
    names = git("ls-files", "--cached", "--others", "--exclude-standard")
    if names is None:
        sys.exit("lint: this is not a git checkout")
    return sorted(name for name in set(names)
                  if (TOP / name).is_file() and not name.startswith(TEMPLATES))


def base_of_change():
    """Returns the commit that the change is compared with, or None if HEAD is the first one."""
    head = git("rev-parse", "HEAD")
    for branch in ("origin/HEAD", "origin/main", "origin/master", "main", "master"):
        base = git("merge-base", branch, "HEAD")
        if base:
            if base != head:
                return base[0]
            break
    parent = git("rev-parse", "--verify", "HEAD~1")
    return parent[0] if parent else None


def touched_files(files):
    base = base_of_change()
    if base is None:
        return files
    touched = set(git("diff", "--name-only", base))
    touched.update(git("ls-files", "--others", "--exclude-standard"))
    return [name for name in files if name in touched]


def included_names(name, known):
    """Returns the project's files that a source includes directly."""
    names = re.findall(r'^\s*#\s*include\s*"([^"]+)"', (TOP / name).read_text(errors="replace"),
                       re.MULTILINE)
    for included in names:
        beside = os.path.normpath(os.path.join(os.path.dirname(name), included))
        if included in known:
            yield included
        elif beside in known:
            yield beside


def sources_to_read(touched, files):
    """Returns the .cpp files among the touched ones, and one .cpp file for each touched header:
    the one of its name, or else the first of those that include it on the shortest way."""
    known = {name for name in files if name.endswith((".h", ".cpp"))}
    includers = {name: [] for name in known}
    for name in sorted(known):
        for included in included_names(name, known):
            includers[included].append(name)
    sources = {name for name in touched if name.endswith(".cpp")}
    for header in (name for name in touched if name.endswith(".h")):
        own = header[:-2] + ".cpp"
        seen, level = {header}, [header]
        while level and not any(name.endswith(".cpp") for name in level):
            level = sorted({name for one in level for name in includers[one]} - seen)
            seen.update(level)
        found = [name for name in level if name.endswith(".cpp")]
        # Where one of several is read anyway, it serves this header as well.
        sources.update([own] if own in known else [n for n in found if n in sources][:1] or found[:1])
    return sorted(sources, key=lambda name: (name.split("/")[0] not in PRODUCT, name))


def interpreter_line(name):
    with open(TOP / name, "rb") as file:
        return file.readline(80)


def is_shell_script(name):
    return name.endswith(".sh") or re.match(rb"#!.*\b(ba)?sh\b", interpreter_line(name)) is not None


def is_python_script(name):
    return name.endswith(".py") or re.match(rb"#!.*\bpython", interpreter_line(name)) is not None


class Verdicts:
    """Counts cases: one for each tool and file."""

    def __init__(self):
        self.passed = 0
        self.failed = 0

    def add(self, tool, name, status, output):
        if status == 0:
            self.passed += 1
            return
        self.failed += 1
        print(f"FAILED  {tool} {name}", *output.splitlines(), sep="\n  ", flush=True)


def compile_database(preset):
    """Configures a preset and returns clang-tidy's command for its sources."""
    status, output = run("cmake", "--preset", preset)
    if status != 0:
        sys.exit(f"lint: cmake --preset {preset} fails:\n{output}")
    folder = TOP / "build" / preset
    database = folder / "compile_commands.json"
    entries = json.loads(database.read_text())
    for entry in entries:
        # CMake adds this option, which only g++ knows.
        entry["command"] = entry["command"].replace(" -fno-keep-inline-dllexport", "")
    database.write_text(json.dumps(entries))
    return ["clang-tidy", "-p", str(folder), "--quiet", "--extra-arg=-Wno-unknown-warning-option"]


def tidy_commands():
    """Returns clang-tidy's command for each system."""
    linux = compile_database("lint-linux")
    windows = compile_database("lint-windows")
    # clang finds the headers of mingw's C library, but not those of its C++ library.
    _, library = run("x86_64-w64-mingw32-g++-posix", "-print-libgcc-file-name")
    headers = Path(library).parent / "include" / "c++"
    windows += [f"--extra-arg=-isystem{folder}"
                for folder in (headers, headers / "x86_64-w64-mingw32")]
    # The installer's tests compile their own small programs.
    windows.append("--extra-arg=-DCORVANE_ENTERPRISE=32473")
    # wineg++ is g++ with definitions and folders of its own, which it prints.
    _, output = run("wineg++", "-fno-short-wchar", "-v", "-E", "-x", "c++", "/dev/null")
    words = next(line for line in output.splitlines() if "cc1plus" in line).split()
    winelib = linux + [f"--extra-arg={word}{value}" for word, value in zip(words, words[1:])
                       if word in ("-D", "-isystem") and not value.startswith("_GNU_SOURCE")]
    return {"linux": linux, "windows": windows, "winelib": winelib}


def tidy(commands, name):
    system = next((system for system, paths in SYSTEMS if paths.search(name)), "linux")
    status, output = run(*commands[system], name)
    lines = [line for line in output.splitlines()
             if not re.match(r"\d+ warnings?( and \d+ errors?)? generated|Suppressed |Use -header", line)]
    return status, "\n".join(lines)


def check_together(verdicts, tool, names, command):
    """Runs the command once for all names. Each line of its output starts with a name, or
    belongs to the line before."""
    began = time.monotonic()
    status, output = run(*command, *names)
    faults = {name: [] for name in names}
    name = None
    for line in output.splitlines():
        name = line.split(":")[0] if line.split(":")[0] in faults else name
        if name is None:
            sys.exit(f"lint: {tool} fails:\n{output}")
        faults[name].append(line)
    for name, lines in faults.items():
        verdicts.add(tool, name, 1 if lines else 0, "\n".join(lines))
    good = sum(not lines for lines in faults.values())
    if status != 0 and good == len(names):
        sys.exit(f"lint: {tool} fails with status {status} and prints nothing")
    print(f"{tool}: {good} of {len(names)} files without a finding, "
          f"{time.monotonic() - began:.0f} s", flush=True)


def check_each(verdicts, tool, names, command, deadline=None):
    """Runs the command for each name, on all processors. Starts none after the deadline."""
    began = time.monotonic()
    left_out = []

    def check(name):
        if deadline is not None and time.monotonic() > deadline:
            left_out.append(name)
            return None
        return command(name)

    before = verdicts.passed
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, result in zip(names, pool.map(check, names)):
            if result is not None:
                verdicts.add(tool, name, *result)
    print(f"{tool}: {verdicts.passed - before} of {len(names) - len(left_out)} files without a "
          f"finding, {time.monotonic() - began:.0f} s", flush=True)
    if left_out:
        print(f"{tool}: {len(left_out)} files left out, because the time is up; "
              "'./run-tests lint-all' reads them too", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--seconds", type=float, default=90)
    options = parser.parse_args()
    deadline = None if options.all else time.monotonic() + options.seconds

    files = all_files()
    touched = files if options.all else touched_files(files)
    sources = sources_to_read(touched, files)
    if options.all:
        sources = [name for name in sources if name.endswith(".cpp")]
    print(f"{len(files)} files, {len(touched)} of them touched by the change; "
          f"{len(sources)} sources for clang-tidy", flush=True)

    verdicts = Verdicts()
    check_together(verdicts, "clang-format",
                   [name for name in files if name.endswith((".h", ".cpp"))],
                   ("clang-format", "--dry-run", "--Werror"))
    check_together(verdicts, "shellcheck", [name for name in files if is_shell_script(name)],
                   ("shellcheck", "--format=gcc"))
    check_each(verdicts, "python", [name for name in files if is_python_script(name)],
               lambda name: run(sys.executable, "-W", "error", "-c", COMPILE_ONLY, name))
    check_each(verdicts, "cppcheck", [name for name in sources if name.split("/")[0] in PRODUCT],
               lambda name: run(*CPPCHECK, name), deadline)
    if sources:
        commands = tidy_commands()
        check_each(verdicts, "clang-tidy", sources, lambda name: tidy(commands, name),
                   deadline)
    print(f"{verdicts.passed} passed, {verdicts.failed} failed")
    return 0 if verdicts.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
