"""Reads the monitoring files as the programs that they are for would.

    configuration.py nagios FILE ADDRESS PORT      the commands of its services
    configuration.py icinga DEBUG-FILE ADDRESS PORT  the same, from icinga2's dump of objects
    configuration.py modules OLD NEW               "same", or how the two formats differ
    configuration.py relabelled GENERATED PROMETHEUS  the series that the generated module ends up with
    configuration.py series MODULE                 the same of the finished module
    configuration.py metrics MODULE                the names of its metrics
    configuration.py queries DASHBOARD             the dashboard's queries as a file of rules
    configuration.py zabbix TEMPLATE               what is wrong with it, a line each
    configuration.py zabbix-traps TEMPLATE FILE    for each trap in FILE: item, "problem" or "recovery"
"""

import collections
import json
import re
import shlex
import sys

import yaml

PLUGINS = "/usr/lib/nagios/plugins"


def read_yaml(path):
    with open(path, encoding="utf-8") as file:
        return yaml.safe_load(file)


# --- Nagios and Icinga -------------------------------------------------------


def nagios_objects(path):
    """(type, {directive: value}) of every object of the file."""
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"^\s*[#;].*$", "", file.read(), flags=re.MULTILINE)
    for kind, body in re.findall(r"define (\w+) \{(.*?)\n\}", text, flags=re.DOTALL):
        lines = (line.split(None, 1) for line in body.splitlines() if line.strip())
        yield kind, {name: value.strip() for name, value in lines}


def nagios(path, address, port):
    objects = list(nagios_objects(path))
    commands = {o["command_name"]: o["command_line"] for kind, o in objects if kind == "command"}
    macros = {"$USER1$": PLUGINS, "$HOSTADDRESS$": address, "$_HOSTSNMP_PORT$": port}
    host = next(o for kind, o in objects if kind == "host" and o.get("name") == "corvane-server")
    macros["$_HOSTSNMP_COMMUNITY$"] = host["_SNMP_COMMUNITY"]
    for kind, service in objects:
        if kind == "service" and "check_command" in service:
            name, *arguments = service["check_command"].split("!")
            line = commands[name]
            for number, argument in enumerate(arguments, 1):
                line = line.replace(f"$ARG{number}$", argument)
            for macro, value in macros.items():
                line = line.replace(macro, value)
            yield name.replace("check_corvane_", "").replace("_", "-"), shlex.split(line)


def icinga_objects(path):
    """The objects that `icinga2 daemon -C` has written down, as netstrings of JSON."""
    with open(path, "rb") as file:
        data = file.read()
    while data:
        length, _, data = data.partition(b":")
        yield json.loads(data[:int(length)])
        data = data[int(length) + 1:]


def icinga(path, address, port):
    objects = list(icinga_objects(path))
    commands = {o["name"]: o["properties"] for o in objects if o["type"] == "CheckCommand"}
    host = next(o["properties"] for o in objects if o["type"] == "Host")
    for service in (o["properties"] for o in objects if o["type"] == "Service"):
        command = commands[service["check_command"]]
        macros = dict(command["vars"], **host["vars"])
        macros.update(address=address, corvane_address=address, corvane_port=port)
        line = [re.sub(r"\$(\w+)\$", lambda m: str(macros[m[1]]), word) for word in command["command"]]
        yield service["check_command"].replace("corvane-", "", 1), line


def print_commands(commands):
    for name, line in sorted(commands):
        # Values of Icinga's are numbers of its own kind.
        words = [re.sub(r"^(\d+)\.0$", r"\1", word) for word in line]
        print(name, shlex.join(words), sep="\t")


# --- Prometheus --------------------------------------------------------------


def modules(old, new):
    """The module that both formats describe is one and the same."""
    first, second = dict(read_yaml(old)["corvane"]), read_yaml(new)
    auth = {"version": first.pop("version"), **first.pop("auth")}
    if first != second["modules"]["corvane"]:
        return "the modules differ"
    return "same" if [auth] == list(second["auths"].values()) else "the ways to ask differ"


def metrics(path):
    return [metric["name"] for metric in read_yaml(path)["corvane"]["metrics"]]


def relabelled(generated, prometheus):
    """Applies the renaming rules of prometheus.yml, whose regular expressions are anchored."""
    rules = read_yaml(prometheus)["scrape_configs"][0]["metric_relabel_configs"]
    for metric in read_yaml(generated)["corvane"]["metrics"]:
        name, oid = metric["name"], metric["oid"]
        labels = {"__name__": name}
        if metric["type"] == "DisplayString":
            labels[name] = "a text"
        for rule in rules:
            if rule.get("action") == "labeldrop":
                labels = {k: v for k, v in labels.items() if not re.fullmatch(rule["regex"], k)}
            elif re.fullmatch(rule["regex"], labels.get(rule["source_labels"][0], "")):
                source = labels[rule["source_labels"][0]]
                labels[rule["target_label"]] = rule.get("replacement", source)
        name = labels.pop("__name__")
        yield f"{oid} {name} {sorted(labels)}"


def module_series(path):
    for metric in read_yaml(path)["corvane"]["metrics"]:
        labels = [metric["name"]] if metric["type"] == "DisplayString" else []
        yield f"{metric['oid']} {metric['name']} {labels}"


def queries(path):
    with open(path, encoding="utf-8") as file:
        dashboard = json.load(file)
    ids = [panel["id"] for panel in dashboard["panels"]]
    assert len(ids) == len(set(ids)), "two panels have one id"
    rules = [{"record": f"panel:{panel['id']}:{target['refId']}",
              "expr": target["expr"].replace("$instance", ".*")}
             for panel in dashboard["panels"] for target in panel["targets"]]
    return yaml.safe_dump({"groups": [{"name": "dashboard", "rules": rules}]})


# --- Zabbix ------------------------------------------------------------------

REFERENCE = re.compile(r'/Corvane by SNMP/([a-z.]+(?:\["[^"]*"\])?)')


class ZabbixTemplate:
    """The one template of an export, and its triggers wherever they stand."""

    def __init__(self, path):
        export = read_yaml(path)["zabbix_export"]
        self.export = export
        self.template = export["templates"][0]
        self.items = self.template["items"]
        self.keys = [item["key"] for item in self.items]
        self.triggers = export["triggers"] + [
            trigger for item in self.items for trigger in item.get("triggers", [])]

    def uuids(self, node=None):
        node = self.export if node is None else node
        if isinstance(node, dict):
            if "uuid" in node:
                yield node["uuid"]
            node = list(node.values())
        if isinstance(node, list):
            for child in node:
                yield from self.uuids(child)

    def complaints(self):
        yield from self._form()
        yield from self._references()

    def _form(self):
        if self.export["version"] != "6.0":
            yield "not of version 6.0, which newer ones read as well"
        ids = list(self.uuids())
        yield from (f"uuid {i} is used twice" for i, n in collections.Counter(ids).items() if n > 1)
        yield from (f"uuid {i} is no random one (version 4)" for i in ids
                    if not re.fullmatch(r"[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}", i))
        yield from (f"key {k} is used twice" for k, n in collections.Counter(self.keys).items() if n > 1)
        for item in self.items:
            if item["type"] == "SNMP_AGENT" and not item["snmp_oid"].endswith(".0"):
                yield f"{item['key']} asks for a name without .0"
            if item["type"] == "SNMP_TRAP" and item["value_type"] != "LOG":
                yield f"{item['key']} is no log"

    def _references(self):
        maps = [valuemap["name"] for valuemap in self.template["valuemaps"]]
        macros = [macro["macro"] for macro in self.template["macros"]]
        yield from (f"no value map {item['valuemap']['name']}" for item in self.items
                    if "valuemap" in item and item["valuemap"]["name"] not in maps)
        known = {(t["name"], t["expression"], t.get("recovery_expression")) for t in self.triggers}
        for trigger in self.triggers:
            for expression in filter(None, (trigger["expression"], trigger.get("recovery_expression"))):
                yield from (f"{trigger['name']}: no item {key}"
                            for key in REFERENCE.findall(expression) if key not in self.keys)
                yield from (f"{trigger['name']}: no macro {macro}"
                            for macro in re.findall(r"\{\$[^}]*\}", expression) if macro not in macros)
            for other in trigger.get("dependencies", []):
                if (other["name"], other["expression"], other.get("recovery_expression")) not in known:
                    yield f"{trigger['name']} depends on a trigger that is not there: {other['name']}"

    def verdicts(self, text):
        """What the trap items take the text in for, and what their triggers make of it."""
        for item in self.items:
            if item["type"] != "SNMP_TRAP" or not re.search(item["key"][len('snmptrap["'):-2], text):
                continue
            trigger = next(t for t in self.triggers
                           if item["key"] in t["expression"] and t["name"].endswith("(by trap)"))
            finds = [("problem", trigger["expression"]), ("recovery", trigger["recovery_expression"])]
            says = [word for word, expression in finds
                    if re.search(re.search(r'"regexp","([^"]*)"', expression)[1], text)]
            yield f"{item['name']}: {' and '.join(says) or 'nothing'}"


def zabbix_traps(template, path):
    with open(path, encoding="utf-8") as file:
        traps = re.split(r"^.* ZBXTRAP \S+\n", file.read(), flags=re.MULTILINE)[1:]
    for trap in traps:
        verdicts = list(ZabbixTemplate(template).verdicts(trap))
        yield trap.split()[1] + ": " + (" / ".join(verdicts) or "no item")


def main(what, *arguments):
    if what in ("nagios", "icinga"):
        print_commands({"nagios": nagios, "icinga": icinga}[what](*arguments))
        return
    answer = {
        "modules": modules, "metrics": metrics, "relabelled": relabelled, "queries": queries,
        "series": module_series, "zabbix-traps": zabbix_traps,
        "zabbix": lambda path: ZabbixTemplate(path).complaints(),
    }[what](*arguments)
    print(answer if isinstance(answer, str) else "\n".join(answer))


if __name__ == "__main__":
    main(*sys.argv[1:])
