"""Compares the operator's guide and corvane-check with the agent.

    guide.py log-lines PROJECT       lines of the guide's log that no source can print
    guide.py check-lines PROJECT     the same for the lines that corvane-check looks for
    guide.py error-lines PROJECT     error lines of the agent that corvane-check does not explain
    guide.py variables GUIDE         name and suffix of the guide's table
    guide.py traps GUIDE             number, name, severity and clearing trap of its table
    guide.py requests GUIDE          name, identifier and type of its table for other systems
    guide.py problems GUIDE          the problems of Zabbix in its table of faults
    guide.py alerts GUIDE            alert, severity and waiting time of its table
    guide.py runbooks RULES GUIDE    alerts of the rules whose runbook_url leads to no chapter of the guide
    guide.py files PROJECT           files that the guides name but that do not exist
"""

import pathlib
import re
import sys

import yaml

LEVELS = "(Info|Warning|Error)"
SOURCES = ("agent", "messages", "net", "Src")
RUNBOOK_PAGE = "https://www.example.org/corvane/operating.html"
# Only a fault of the agent itself leads to these lines, so that the maker must see them. That is what
# corvane-check says of a line that it does not know.
NOT_EXPLAINED = ("+++ ASSERT(%s) failed at %s(%d)", "Vask::JsonSocket::OnJsonMessageNull message")


def read(*path):
    return pathlib.Path(*path).read_text(encoding="utf-8")


def texts(project, before=""):
    """Returns each text in the sources from which the agent can make a line of the log.

    `before` is a regular expression for the code before the text.
    """
    for folder in SOURCES:
        for source in sorted(pathlib.Path(project, folder).rglob("*.cpp")):
            code = re.sub(r'"\s*\n\s*"', "", read(source))
            for text in re.findall(before + r'"((?:[^"\\\n]|\\.)*)"', code):
                text = text.removesuffix("\\n")
                if len(re.sub(r"%\w", "", text)) > 3:
                    yield text


def printable(project):
    """Returns a regular expression for each text in the sources; a conversion matches anything."""
    for text in texts(project):
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


def wanted_lines(project):
    """Returns level and text of each line that corvane-check looks for."""
    code = re.sub(r'"\s*\n\s*"', "", read(project, "check/LogReader.h") + read(project, "check/LogReader.cpp"))
    return re.findall(rf'"{LEVELS}: ([^"\n]+)"', code)


def is_line(line, text):
    """Whether the line, in which * stands for anything, can be made from the text of a source."""
    return re.fullmatch(re.escape(line).replace(r"\*", ".*"), re.sub(r"%[a-z]", "1", text))


def check_lines(project):
    wanted = [line for _, line in wanted_lines(project)]
    assert len(wanted) == 27, f"corvane-check looks for {len(wanted)} lines"
    known = list(texts(project))
    for line in wanted:
        if not any(is_line(line, text) for text in known):
            yield line


def error_lines(project):
    errors = [*texts(project, r"\b(?:Error|Report|ReportError)\(\s*(?:\w+,\s*)?"),
              *texts(project, r"Raised\[\] = ")]
    assert len(errors) > 25, f"the sources have {len(errors)} errors"
    explained = [line for level, line in wanted_lines(project) if level == "Error"]
    for text in errors:
        if text not in NOT_EXPLAINED and not any(is_line(line, text) for line in explained):
            yield text
    yield from (f"{text} (no source has it)" for text in NOT_EXPLAINED if text not in errors)


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


def requests(guide):
    return (f"{name.removeprefix('corvane')} {oid} {kind}" for name, oid, kind, *_ in rows(guide, "name"))


def problems(guide):
    return (problem for _, problem, _ in rows(guide, "fault"))


def alerts(guide):
    return sorted(f"{re.sub(r'[][]|[(].*', '', name)} {severity} {wait}"
                  for name, severity, wait, *_ in rows(guide, "alert"))


def anchors(guide):
    """Returns the anchor of each heading, in the form that Markdown converters give it."""
    return {re.sub(r"[^a-z0-9 -]", "", heading.lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)", read(guide), re.MULTILINE)}


def runbooks(rules, guide):
    known = anchors(guide)
    for group in yaml.safe_load(read(rules))["groups"]:
        for rule in group["rules"]:
            page, _, anchor = rule["annotations"].get("runbook_url", "").partition("#")
            if page != RUNBOOK_PAGE or anchor not in known:
                yield f"{rule['alert']}: {page}#{anchor}"


def files(project):
    for guide in ("docs/operating.md", "monitoring/README.md"):
        named = re.findall(r"`((?:monitoring/|\.\./|zabbix/|prometheus/|grafana/|icinga2/|nagios/|collectd/|snmptt/|snmptrapd/)"
                           r"[\w./*-]+)`|\]\(([\w./-]+)\)", read(project, guide))
        for first, second in named:
            place = first or second
            base = pathlib.Path(project) if place.startswith("monitoring/") else pathlib.Path(project, guide).parent
            if not list(base.resolve().glob(place.rstrip("/"))) and not (base / place).exists():
                yield f"{guide}: {place}"


if __name__ == "__main__":
    print("\n".join({
        "log-lines": log_lines, "check-lines": check_lines, "error-lines": error_lines,
        "requests": requests, "problems": problems,
        "variables": variables, "traps": traps, "alerts": alerts,
        "files": files, "runbooks": runbooks,
    }[sys.argv[1]](*sys.argv[2:])))
