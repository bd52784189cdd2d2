"""Compares the operator's guide and Test-CorvaneAgent.ps1 with the agent.

    guide.py log-lines PROJECT       lines of the guide's log that no source can print
    guide.py script-lines PROJECT    the same for the lines that the script looks for
    guide.py variables GUIDE         name and suffix of the guide's table
    guide.py traps GUIDE             number, name, severity and clearing trap of its table
    guide.py alerts GUIDE            alert and waiting time of its table
    guide.py files PROJECT           files that the guides name but that do not exist
    guide.py commands SCRIPT         commands that the script runs
    guide.py brackets SCRIPT         brackets and quotes of the script that do not match
"""

import pathlib
import re
import sys

LEVELS = "(Info|Warning|Error)"
SOURCES = ("agent", "messages", "net", "Src")


def read(*path):
    return pathlib.Path(*path).read_text(encoding="utf-8")


def printable(project):
    """Returns a regular expression for each text in the sources; a conversion matches anything."""
    for folder in SOURCES:
        for source in sorted(pathlib.Path(project, folder).rglob("*.cpp")):
            code = re.sub(r'"\s*\n\s*"', "", read(source))
            for text in re.findall(r'"((?:[^"\\\n]|\\.)*)"', code):
                text = text.removesuffix("\\n")
                if len(re.sub(r"%\w", "", text)) > 3:
                    yield re.sub(r"%[a-z]", ".*", re.escape(text).replace(r"\%", "%"))


def unknown(lines, project):
    known = list(printable(project))
    for line in lines:
        if not any(re.fullmatch(expression, line) for expression in known):
            yield line


def log_lines(project):
    quoted = re.findall(rf"^    [\d:]{{8}}\.\d{{3}}: {LEVELS}: (.*)$", read(project, "docs/operating.md"),
                        re.MULTILINE)
    assert len(quoted) > 30, "the guide does not quote the log"
    return unknown([line for _, line in quoted], project)


def script_lines(project):
    wanted = re.findall(rf"'{LEVELS}: (.*)'$", read(project, "installer/Test-CorvaneAgent.ps1"), re.MULTILINE)
    assert len(wanted) == 5, "the script looks for five lines"
    return unknown([line for _, line in wanted], project)


def rows(guide, first):
    """Returns the cells of the table whose first heading is `first`, without backquotes."""
    table = re.search(rf"^\| {first} \|.*\n\|[-|]+\n((?:\|.*\n)+)", read(guide), re.MULTILINE)[1]
    for line in table.splitlines():
        yield [cell.strip().replace("`", "") for cell in line.strip("|").split("|")]


def variables(guide):
    return (f"{name.removeprefix('corvane')} {suffix}" for name, suffix, *_ in rows(guide, "variable"))


def traps(guide):
    return (" ".join([number, name.removeprefix("corvane"), severity.upper(), cleared]).rstrip()
            for number, name, severity, _, cleared in rows(guide, "number"))


def alerts(guide):
    return sorted(f"{name} {wait}" for name, wait, *_ in rows(guide, "alert"))


def files(project):
    for guide in ("docs/operating.md", "monitoring/README.md"):
        named = re.findall(r"`((?:monitoring/|\.\./|zabbix/|prometheus/|grafana/|icinga2/|nagios/|snmptt/|snmptrapd/)"
                           r"[\w./*-]+)`|\]\(([\w./-]+)\)", read(project, guide))
        for first, second in named:
            place = first or second
            base = pathlib.Path(project) if place.startswith("monitoring/") else pathlib.Path(project, guide).parent
            if not list(base.resolve().glob(place.rstrip("/"))) and not (base / place).exists():
                yield f"{guide}: {place}"


def without_texts(script):
    """Returns the code of the script without comments and without the text between quotes."""
    code = re.sub(r"<#.*?#>", "", script, flags=re.DOTALL)
    code = re.sub(r"^\s*#.*$", "", code, flags=re.MULTILINE)
    code = re.sub(r"'(?:[^'\n]|'')*'", "''", code)
    return re.sub(r'"(?:[^"\n`]|`.)*"', "''", code)


def commands(path):
    code = without_texts(read(path))
    defined = set(re.findall(r"^function ([\w-]+)", code, re.MULTILINE))
    return sorted(set(re.findall(r"\b[A-Z][a-z]+-[A-Z]\w+\b", code)) - defined)


def brackets(path):
    code = without_texts(read(path))
    if "'" in code.replace("''", "") or '"' in code:
        yield "a quote is not closed"
    pairs, stack = {")": "(", "]": "[", "}": "{"}, []
    for number, line in enumerate(code.splitlines(), 1):
        for char in line:
            if char in "([{":
                stack.append((char, number))
            elif char in pairs and (not stack or stack.pop()[0] != pairs[char]):
                yield f"'{char}' closes nothing"
                return
    yield from (f"'{char}' is not closed" for char, _ in stack)


if __name__ == "__main__":
    print("\n".join({
        "log-lines": log_lines, "script-lines": script_lines, "variables": variables, "traps": traps, "alerts": alerts,
        "files": files, "commands": commands, "brackets": brackets,
    }[sys.argv[1]](sys.argv[2])))
