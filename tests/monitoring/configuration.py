"""Reads the monitoring files in the same way as the programs that use them.

    configuration.py nagios FILE ADDRESS PORT         the commands of its host and services
    configuration.py icinga DEBUG-FILE ADDRESS PORT   the same, from the objects that icinga2 wrote
    configuration.py notified DEBUG-FILE HOST         the services of this host that Icinga notifies, and "host"
    configuration.py modules OLD NEW                  "same", or how the two formats differ
    configuration.py relabelled GENERATED PROMETHEUS  the series of the generated module after renaming
    configuration.py series MODULE                    the series of the delivered module
    configuration.py queries DASHBOARD                the queries of the dashboard as a file of rules
    configuration.py queried DASHBOARD                the names of the series that it queries
    configuration.py zabbix TEMPLATE                  its errors, one on each line
    configuration.py zabbix-traps TEMPLATE FILE       for each trap in FILE: item, "problem" or "recovery"
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
    """Returns (type, {directive: value}) for every object of the file."""
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
    for kind, checked in objects:
        if kind in ("host", "service") and "check_command" in checked:
            name, *arguments = checked["check_command"].split("!")
            line = commands[name]
            for number, argument in enumerate(arguments, 1):
                line = line.replace(f"$ARG{number}$", argument)
            for macro, value in macros.items():
                line = line.replace(macro, value)
            yield name.replace("check_corvane_", "").replace("_", "-"), shlex.split(line)


def icinga_objects(path):
    """Returns the objects that `icinga2 daemon -C` wrote to a file as netstrings of JSON."""
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
    for checked in (o["properties"] for o in objects if o["type"] in ("Host", "Service")):
        command = commands[checked["check_command"]]
        macros = dict(command["vars"], **host["vars"])
        macros.update(address=address, corvane_address=address, corvane_port=port)
        line = [re.sub(r"\$(\w+)\$", lambda m: str(macros[m[1]]), word) for word in command["command"]]
        yield checked["check_command"].replace("corvane-", "", 1), line


def notified(path, host):
    notifications = (o["properties"] for o in icinga_objects(path) if o["type"] == "Notification")
    return sorted(n["service_name"] or "host" for n in notifications
                  if n["host_name"] == host and (n["users"] or n["user_groups"]))


def print_commands(commands):
    for name, line in sorted(commands):
        # Icinga writes whole numbers as 2.0.
        words = [re.sub(r"^(\d+)\.0$", r"\1", word) for word in line]
        print(name, shlex.join(words), sep="\t")


# --- Prometheus --------------------------------------------------------------


def modules(old, new):
    """Compares the module in both formats."""
    first, second = dict(read_yaml(old)["corvane"]), read_yaml(new)
    auth = {"version": first.pop("version"), **first.pop("auth")}
    if first != second["modules"]["corvane"]:
        return "the modules differ"
    return "same" if [auth] == list(second["auths"].values()) else "version or community differ"


def relabelled(generated, prometheus):
    """Applies the renaming rules of prometheus.yml. A rule must match the whole name."""
    rules = read_yaml(prometheus)["scrape_configs"][0]["metric_relabel_configs"]
    module = read_yaml(generated)
    for metric in module.get("modules", module)["corvane"]["metrics"]:  # the newer format has a level more
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
    assert len(ids) == len(set(ids)), "two panels have the same id"
    rules = [{"record": f"panel:{panel['id']}:{target['refId']}",
              "expr": target["expr"].replace("$instance", ".*")}
             for panel in dashboard["panels"] for target in panel["targets"]]
    return yaml.safe_dump({"groups": [{"name": "dashboard", "rules": rules}]})


def queried(path):
    with open(path, encoding="utf-8") as file:
        text = " ".join(target["expr"] for panel in json.load(file)["panels"] for target in panel["targets"])
    # Without selectors, lists of labels, functions and operators, only the names are left.
    text = re.sub(r"\{[^}]*\}|\b(on|by|ignoring|without|group_left|group_right)\s*\([^)]*\)", " ", text)
    return sorted(set(re.findall(r"\b[a-z_]\w*\b(?!\s*\()", text)) - {"and", "or", "unless", "bool"})


# --- Zabbix ------------------------------------------------------------------

REFERENCE = re.compile(r'/Corvane by SNMP/([a-z.]+(?:\["[^"]*"\])?)')


class ZabbixTemplate:
    """The template of an export, with all of its triggers."""

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
            yield "the version is not 6.0, which later versions can import too"
        ids = list(self.uuids())
        yield from (f"uuid {i} is used twice" for i, n in collections.Counter(ids).items() if n > 1)
        yield from (f"uuid {i} is not random (version 4)" for i in ids
                    if not re.fullmatch(r"[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}", i))
        yield from (f"key {k} is used twice" for k, n in collections.Counter(self.keys).items() if n > 1)
        for item in self.items:
            if item["type"] == "SNMP_AGENT" and not item["snmp_oid"].endswith(".0"):
                yield f"{item['key']} requests a name without .0"
            if item["type"] == "SNMP_TRAP" and item["value_type"] != "LOG":
                yield f"{item['key']} is not a log"

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
                    yield f"{trigger['name']} depends on a trigger that does not exist: {other['name']}"

    def verdicts(self, text):
        """Returns, for each trap item that matches the text, what its trigger makes of it."""
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
        "modules": modules, "relabelled": relabelled, "queries": queries,
        "series": module_series, "notified": notified, "queried": queried,
        "zabbix-traps": zabbix_traps,
        "zabbix": lambda path: ZabbixTemplate(path).complaints(),
    }[what](*arguments)
    print(answer if isinstance(answer, str) else "\n".join(answer))


if __name__ == "__main__":
    main(*sys.argv[1:])
