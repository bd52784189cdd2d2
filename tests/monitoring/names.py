"""Compares the files that name the agent's variables and traps with the agent's tables.

    names.py TABLES PROJECT lacking     names that a file of names.txt must have and lacks
    names.py TABLES PROJECT unknown     names in these files that the agent does not have
    names.py TABLES PROJECT unlisted    files that name several and are not in names.txt
    names.py TABLES PROJECT walks       walks in documents that are not whole
    names.py TABLES PROJECT counts      "eight variables" where there are more or fewer
    names.py TABLES PROJECT unused      names that no code of agent/ uses

TABLES holds one line for each variable ("variable StreamsErrors 2.1 corvane_streams_failed")
and trap ("trap TrapStreamsFailed 0.13"). Each complaint is one line; no output means success.
"""

import os
import pathlib
import re
import sys
from typing import NamedTuple

PROTOCOL_PAGE = "docs/wire-protocol.md"
# A file that names this many probably lists them.
SEVERAL = 3
# A smaller number in a text counts something else, for example "raises two traps".
SMALLEST_COUNT = 5
# Folders and files that `unlisted` skips, with the reason.
SKIPPED = {
    "agent": "it holds the tables; `unused` checks the code",
    "benchmarks": "they use examples",
    "build": "not a source",
    "CHANGELOG.md": "it describes old versions",
    "fuzz": "it uses examples",
    "mibs/templates": "the files made from them are listed",
    "scripts/mutations-equivalent.txt": "it holds lines of the sources",
    "tests/monitoring/names-test": "it makes wrong files on purpose",
    "tests/monitoring/names.txt": "the list itself",
}
UNITS = {"variables": "variable", "traps": "trap"}
WORDS = ("zero one two three four five six seven eight nine ten eleven twelve thirteen fourteen "
         "fifteen sixteen seventeen eighteen nineteen twenty").split()


class Name(NamedTuple):
    """One row of the agent's tables."""

    kind: str
    name: str
    suffix: str
    metric: str = ""

    def is_in(self, text):
        spellings = [rf"\b(?:corvane)?{self.name}\b", rf"(?:\b333|prefix\}}?)\.{re.escape(self.suffix)}(?!\d)"]
        if self.metric:
            spellings.append(rf"\b{self.metric}\b")
        # The protocol page: a group with its field, and a trap without "Trap".
        group = first_words(self.name)
        if self.kind == "variable":
            spellings.append(rf"`{group}` \|[^|\n]*`{self.name.removeprefix(group)}`")
        else:
            spellings.append(rf"`{self.name.removeprefix('Trap')}`")
        return re.search("|".join(spellings), text) is not None


class Entry(NamedTuple):
    """One line of names.txt: the kinds that the file must name, except for `but`."""

    path: str
    kinds: list
    but: list
    reason: str


def read(*path):
    return pathlib.Path(*path).read_text(encoding="utf-8")


def read_entries(project):
    for line in read(project, "tests/monitoring/names.txt").splitlines():
        if not line or line.startswith("#"):
            continue
        demands, _, reason = line.partition(":")
        path, *words = demands.split()
        kinds = [UNITS[word] for word in words if word in UNITS]
        but = [word for word in words if word not in UNITS and word not in ("but", "some")]
        yield Entry(path, kinds, but, reason.strip())


def lacking(names, project):
    for entry in read_entries(project):
        text = read(project, entry.path)
        if (len(entry.kinds) < 2 or entry.but) and not entry.reason:
            yield f"names.txt: {entry.path} has no reason"
        for name in entry.but:
            if name not in [row.name for row in names]:
                yield f"names.txt: {entry.path} excepts {name}, which does not exist"
        for row in names:
            if row.kind in entry.kinds and row.is_in(text) == (row.name in entry.but):
                yield f"{entry.path} " + ("has" if row.name in entry.but else "lacks") + f" {row.name}"


def first_words(name):
    """The part that several names share: AudioSources, or TrapStreams."""
    words = re.findall(r"[A-Z][a-z]+|[A-Z]+", name)
    return "".join(words[:2] if words[0] == "Trap" else words[:-1])


def unknown(names, project):
    known = {row.name for row in names} | {row.metric for row in names} | {row.suffix for row in names}
    module = set(re.findall(r"^corvane(\w+)", read(project, "mibs/VELTRIN-CORVANE-MIB.txt"), re.MULTILINE))
    beginnings = "|".join(sorted({first_words(row.name) for row in names}))
    for entry in read_entries(project):
        text = read(project, entry.path)
        found = re.findall(rf"\b(?:corvane)?((?:{beginnings})[A-Z]\w*)", text)
        found += [name for name in re.findall(r"\bcorvane([A-Z]\w*)", text) if name not in module]
        if entry.path.startswith(("monitoring/prometheus/", "monitoring/grafana/")):
            found += [name for name in re.findall(r"\bcorvane_\w+", text) if name != "corvane_v2"]
        if entry.path.startswith("monitoring/"):
            found += re.findall(r"\b333\.(\d+\.\d+)", text)
        reported = {row.name.removeprefix("Trap") for row in names} if entry.path == PROTOCOL_PAGE else set()
        yield from (f"{entry.path} names {name}, which does not exist"
                    for name in sorted(set(found) - known - reported))


def sources(project):
    """Path and text of every file that `unlisted` checks."""
    for folder, folders, files in os.walk(project):
        inside = pathlib.Path(folder).relative_to(project)
        folders[:] = [name for name in folders
                      if not name.startswith(".") and str(inside / name) not in SKIPPED]
        for file in files:
            path = str(inside / file)
            is_cpp_test = path.startswith("tests/") and path.endswith((".cpp", ".h"))
            if path in SKIPPED or is_cpp_test:
                continue
            try:
                yield path, read(project, path)
            except UnicodeDecodeError:
                pass  # a picture


def unlisted(names, project):
    listed = {entry.path for entry in read_entries(project)}
    for path, text in sources(project):
        found = [row.name for row in names if row.is_in(text)]
        if len(found) >= SEVERAL and path not in listed:
            yield f"{path} names {', '.join(found)}: add it to tests/monitoring/names.txt"


def documents(project):
    paths = [*project.glob("*.md"), project / "monitoring/README.md", *project.glob("docs/*.md")]
    for path in sorted(path for path in paths if path.name not in SKIPPED):
        yield str(path.relative_to(project)), read(path)


def walks(names, project):
    whole = [row.name for row in names if row.kind == "variable"]
    for path, text in documents(project):
        for walk in re.findall(r"(?:^ *VELTRIN-CORVANE-MIB::corvane\w+ = .*\n){2,}", text, re.MULTILINE):
            shown = re.findall(r"::corvane(\w+) = ", walk)
            yield from (f"{path}: a walk lacks {name}" for name in whole if name not in shown)
            if sorted(shown, key=(whole + shown).index) != shown:
                yield f"{path}: a walk is not in the order of the object identifiers"


def counts(names, project):
    right = {plural: sum(row.kind == kind for row in names) for plural, kind in UNITS.items()}
    right["alerts"] = len(re.findall("- alert:", read(project, "monitoring/prometheus/corvane.rules.yml")))
    files = dict(documents(project)) | {entry.path: read(project, entry.path) for entry in read_entries(project)}
    for path, text in files.items():
        text = re.sub(r"^\| \d+ \w+ \|", "|", text, flags=re.MULTILINE)  # a numbered step, as "| 10 traps |"
        for word, unit in re.findall(r"\b(\w+)[\s#/]+(variables|traps|alerts)\b", text):
            number = WORDS.index(word.lower()) if word.lower() in WORDS else word
            if str(number).isdigit() and SMALLEST_COUNT <= int(number) != right[unit]:
                yield f"{path} says '{word} {unit}'; there are {right[unit]}"


def unused(names, project):
    code = "".join(read(path) for path in sorted(project.glob("agent/**/*")) if path.suffix in (".h", ".cpp"))
    used = set(re.findall(r'\b(?:Variable|Trap)Name\(\s*"(\w+)"\s*\)', code))
    yield from (f"agent/ does not use {row.name}" for row in names if row.name not in used)


def main(tables, project, what):
    names = [Name(*line.split()) for line in read(tables).splitlines()]
    judge = {"lacking": lacking, "unknown": unknown, "unlisted": unlisted, "walks": walks,
             "counts": counts, "unused": unused}[what]
    print("\n".join(judge(names, pathlib.Path(project))))


if __name__ == "__main__":
    main(*sys.argv[1:])
