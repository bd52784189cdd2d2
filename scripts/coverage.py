"""Checks the counts of gcovr. It prints lines and branches by area. It fails if a line,
or a branch of a strict area, is neither reached nor listed with its reason. It fails also
if a listed one is reached, or if too few lines of an area are reached.

    coverage.py COUNTS.json OUT-OF-REACH.txt
    coverage.py COUNTS.json                   only prints
"""

import json
import re
import sys
from collections import defaultdict

# Bytes from outside pass through these areas, so every branch counts.
STRICT = {
    "framing": r"net/(Framing|JsonSocket)\.",
    "dictionary": r"json/(StrDict3|FoldedKey)\.",
    "JSON": r"json/",
    "codec": r"messages/(?!Registrar|HandlerList|ErrorReport|Catalogue)",
    "registrar": r"messages/",
    "Get and GetNext": r"agent/(SNMPExtensionAgent|MibTable|MibEntry|ObjectIdentifier)\.",
    "trap queue": r"agent/TrapTable\.",
}
# In all other folders only the lines count.
FOLDER = r"(platform/linux|\w+)/"
LEAST_LINES = 90.0


def area_of(path):
    for name, pattern in STRICT.items():
        if re.match(pattern, path):
            return name
    folder = re.match(FOLDER, path).group(1)
    return f"the rest of {folder}/" if folder in ("agent", "net") else f"{folder}/"


class Area:
    def __init__(self):
        self.lines = [0, 0]  # reached, all
        self.branches = [0, 0]

    @staticmethod
    def add(sums, reached):
        sums[0] += bool(reached)
        sums[1] += 1


def percent(sums):
    return 100.0 * sums[0] / sums[1] if sums[1] else 100.0


def read_listed(path):
    """Returns {(kind, file, text): (least, most)}: branches or lines that need not be
    reached. A line of the file is a reason ("== ...") or "COUNT FILE: TEXT" below its
    reason. COUNT is a number, a range if it varies from run to run, or "line"."""
    listed = {}
    reason = None
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            line = line.strip()
            if line.startswith("=="):
                reason = line[2:].strip()
            elif line and not line.startswith("#"):
                entry = re.fullmatch(r"(\d+|line)(?:-(\d+))? (\S+): (.*)", line)
                if entry is None or not reason:
                    sys.exit(f"{path}:{number}: neither a reason nor an entry below one")
                count, most, source, text = entry.groups()
                kind = "line" if count == "line" else "branch"
                least = 1 if count == "line" else int(count)
                listed[kind, source, text] = (least, int(most) if most else least)
    return listed


def measure(files):
    """Returns the sums of the areas, and {(kind, file, text): [line number, ...]} of what is
    not reached, with a number for each branch."""
    areas = defaultdict(Area)
    still_open = defaultdict(list)
    for entry in files:
        path = entry["file"]
        with open(path, encoding="utf-8") as source:
            texts = [line.strip() for line in source]
        name = area_of(path)
        area = areas[name]
        for line in entry["lines"]:
            if line["gcovr/noncode"]:
                continue
            number = line["line_number"]
            text = texts[number - 1]
            Area.add(area.lines, line["count"])
            if line["count"] == 0:
                still_open["line", path, text].append(number)
            for branch in line["branches"]:
                Area.add(area.branches, branch["count"])
                if branch["count"] == 0 and name in STRICT:
                    still_open["branch", path, text].append(number)
    return areas, still_open


def print_table(areas):
    print(f"{'':<24} {'lines':>13} {'':>8} {'branches':>14}")
    for name in [*STRICT, *sorted(set(areas) - set(STRICT))]:
        area = areas[name]
        print(f"{name:<24} {area.lines[0]:>6} /{area.lines[1]:>5} {percent(area.lines):>6.1f} % "
              f"{area.branches[0]:>7} /{area.branches[1]:>5} {percent(area.branches):>6.1f} %")


def find_faults(areas, still_open, listed):
    for key, numbers in sorted(still_open.items()):
        kind, path, text = key
        most = listed.get(key, (0, 0))[1]
        if kind == "branch" and len(numbers) > most:
            yield (f"{path}:{numbers[0]}: {len(numbers)} branches not reached, "
                   f"{most} listed: {text}")
        elif kind == "line" and most == 0:
            yield f"{path}:{numbers[0]}: neither reached nor listed: {text}"
    for key, (least, _) in listed.items():
        kind, path, text = key
        if len(still_open.get(key, [])) < least:
            yield f"{path}: listed as out of reach, but is reached or gone: {text}"
    for name, area in areas.items():
        if percent(area.lines) < LEAST_LINES:
            yield f"{name}: less than {LEAST_LINES:.0f} % of its lines"


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        areas, still_open = measure(json.load(file)["files"])
    print_table(areas)
    if len(sys.argv) == 2:
        return
    listed = read_listed(sys.argv[2])
    faults = list(find_faults(areas, still_open, listed))
    for fault in faults:
        print(f"FAILED {fault}")
    sys.exit(1 if faults else 0)


main()
