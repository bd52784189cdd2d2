"""Compares the includes of the tree with the table "The rooms" of docs/architecture.md, and
finds CMake files that name the sources of another room.

The table's first column names folders, its last column what their files may include.
The last column is a list of clauses, separated by semicolons:

    nothing | everything | what its room knows of
    `a/`, `b/`                         all files of these folders
    of `a/` only `File`, `Other`       these files of the folder
    `a/` in `File` and `Other` only    the folder, from these files

A file is named without its ending. The row with the longest folder holds for a file;
a folder below tests/ or benchmarks/ belongs to the room of its name.
"""

import os
import re
from collections import defaultdict
from pathlib import Path

SOURCES = ("agent", "benchmarks", "check", "fuzz", "host", "json", "messages", "mibs", "net", "platform",
           "simulator", "Src", "tests")
EVERYTHING = "everything"
OF_ITS_ROOM = "what its room knows of"


class TableError(Exception):
    """The table cannot be read, or names something that is not there."""


def folder_of(name):
    return name[:name.index("/") + 1]


def component(name):
    """A header and the .cpp file of its name are one component."""
    return name.rsplit(".", 1)[0]


class Rule:
    """What one clause allows: a folder, a part of it, or a folder for some files only."""

    def __init__(self, folder, targets=None, sources=None):
        self.folder = folder
        self.targets = targets
        self.sources = sources

    def allows(self, source, included):
        return (included.startswith(self.folder)
                and (self.targets is None or Path(included).stem in self.targets)
                and (self.sources is None or Path(source).stem in self.sources))


def names_in(text):
    return re.findall(r"`([^`]+)`", text)


def read_clauses(cell):
    """Returns the rules of a cell, or the two words that stand for a whole cell."""
    rules = []
    for clause in cell.split(";"):
        clause = clause.strip()
        names = names_in(clause)
        words = re.sub(r"`[^`]+`", "`", clause).replace(",", " ").replace(" and ", " ").split()
        shape = " ".join(words)
        if clause in ("nothing", "no sources"):
            continue
        if clause == EVERYTHING:
            rules.append(EVERYTHING)
        elif clause.startswith(OF_ITS_ROOM):
            rules.append(OF_ITS_ROOM)
            rules += [Rule(name) for name in names]
        elif re.fullmatch(r"of ` only( `)+", shape):
            rules.append(Rule(names[0], targets=names[1:]))
        elif re.fullmatch(r"` in( `)+ only", shape):
            rules.append(Rule(names[0], sources=names[1:]))
        elif re.fullmatch(r"`( `)*", shape):
            rules += [Rule(name) for name in names]
        else:
            raise TableError(f'"{clause}" is no list of folders that this test can read')
        if any(isinstance(rule, Rule) and not rule.folder.endswith("/") for rule in rules):
            raise TableError(f'"{clause}" names a folder without a "/" at its end')
    return rules


def read_table(page):
    """Returns {folder: rules} from the text of the page."""
    section = re.search(r"^## The rooms\n(.*?)(?=^## |\Z)", page, re.MULTILINE | re.DOTALL)
    if section is None:
        raise TableError('the page has no section "The rooms"')
    table = {}
    for line in section.group(1).splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if not line.startswith("|") or len(cells) != 3 or not names_in(cells[0]):
            continue
        folders = names_in(cells[0])
        # A row without sources may end in a remark.
        rules = [] if cells[2].startswith("no sources") else read_clauses(cells[2])
        for folder in folders:
            if folder in table:
                raise TableError(f"`{folder}` has two rows")
            table[folder] = rules
    if not table:
        raise TableError('the section "The rooms" has no table')
    return table


def read_includes(top):
    """Returns {file: [(line, included file)]} for the sources of the tree."""
    files = set()
    for folder in SOURCES:
        for path in (top / folder).rglob("*"):
            if path.suffix in (".h", ".cpp"):
                files.add(path.relative_to(top).as_posix())
    includes = {}
    for name in sorted(files):
        includes[name] = []
        text = (top / name).read_text(encoding="utf-8", errors="replace")
        for number, line in enumerate(text.splitlines(), 1):
            found = re.match(r'\s*#\s*include\s*["<]([^">]+)[">]', line)
            if found is None:
                continue
            beside = os.path.normpath(os.path.join(os.path.dirname(name), found.group(1)))
            target = found.group(1) if found.group(1) in files else beside
            if target in files:
                includes[name].append((number, target))
    return includes


def row_of(name, table):
    fitting = [folder for folder in table if name.startswith(folder)]
    return max(fitting, key=len) if fitting else None


def rules_for(name, row, table):
    """Returns the rules of the row, with those of the room that the file's folder mirrors."""
    rules = []
    for rule in table[row]:
        if rule != OF_ITS_ROOM:
            rules.append(rule)
            continue
        room = name.split("/")[1] + "/"
        if room not in table:
            raise TableError(f"`{row}{room}` mirrors no room; it needs a row of its own")
        # A test may use whatever its room uses, from any of its files.
        rules.append(Rule(room))
        rules += [other if isinstance(other, str) else Rule(other.folder, other.targets)
                  for other in table[room]]
    return rules


def forbidden_includes(includes, table):
    """Yields a text for each include that the table does not allow."""
    for name, targets in includes.items():
        row = row_of(name, table)
        if row is None:
            yield f"{name}: no row of the table holds its folder"
            continue
        rules = rules_for(name, row, table)
        for number, target in targets:
            own = target.startswith(row) if row.count("/") > 1 else \
                folder_of(target) == folder_of(name)
            if not own and EVERYTHING not in rules and \
                    not any(rule.allows(name, target) for rule in rules):
                yield f"{name}:{number}: includes {target}, but `{row}` may not include it"


def stale_names(includes, table):
    """Yields a text for each name of the table that the tree does not have or not use."""
    names = set(includes)
    for row, rules in table.items():
        rules = [rule for rule in rules if isinstance(rule, Rule)]
        own = [name for name in names if row_of(name, table) == row]
        used = {(name, target) for name in own for _, target in includes[name]}
        for rule in rules:
            if not any(name.startswith(rule.folder) for name in names):
                yield f"`{row}`: there is no folder `{rule.folder}` with sources"
            for stem in rule.targets or []:
                if not any(Path(target).stem == stem and rule.allows(name, target)
                           for name, target in used):
                    yield f"`{row}`: includes no file `{stem}` of `{rule.folder}`"
            for stem in rule.sources or []:
                if not any(Path(name).stem == stem and rule.allows(name, target)
                           for name, target in used):
                    yield f"`{row}`: has no file `{stem}` that includes `{rule.folder}`"


def circles(includes):
    """Yields a text for each circle of includes that leads through more than one folder."""
    edges = defaultdict(set)
    for name, targets in includes.items():
        if folder_of(name) not in ("tests/", "benchmarks/", "fuzz/"):
            edges[component(name)].update(component(target) for _, target in targets)
    reach = {}
    for start in edges:
        seen, open_ends = set(), [start]
        while open_ends:
            for target in edges.get(open_ends.pop(), ()):
                if target not in seen:
                    seen.add(target)
                    open_ends.append(target)
        reach[start] = seen
    reported = set()
    for start in sorted(reach):
        circle = {other for other in reach[start] if start in reach.get(other, ())}
        if len({folder_of(other) for other in circle}) > 1 and not circle & reported:
            reported |= circle
            yield "a circle of includes: " + ", ".join(sorted(circle))


def foreign_sources(top):
    """Yields a text for each line of a CMake file that names a source folder of another room.
    A room offers its sources as a target; no other room compiles them by their path."""
    rooms = [folder for folder in SOURCES if folder not in ("tests", "benchmarks", "fuzz")]
    pattern = re.compile(r"(?:\.\./|_SOURCE_DIR}/)(" + "|".join(rooms) + r")/(?!\S*CMakeLists)")
    for path in sorted([*top.glob("*/CMakeLists.txt"), *top.glob("cmake/*.cmake")]):
        name = path.relative_to(top).as_posix()
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            found = pattern.search(line)
            if found and not line.lstrip().startswith("#") and found.group(1) + "/" != folder_of(name):
                yield f"{name}:{number}: names a path in {found.group(1)}/; use a target of that room"
