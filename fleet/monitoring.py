"""Prometheus and snmp_exporter from Debian's packages, with a configuration of the fleet.

Debian's own configuration is neither read nor changed.
"""

import json
import re
import urllib.request

import yaml

from programs import Program, ProgramFault, wait_until

URL = "http://127.0.0.1:9090"
INTERVAL = "1s"


def quicken(rules):
    """Changes the minutes in every `for:` of the alert rules to seconds."""
    return re.sub(r"^(\s*for: *)(\d+)m$", r"\1\2s", rules, flags=re.MULTILINE)


def for_these_servers(configuration, names):
    """Changes the delivered prometheus.yml: other servers, short intervals."""
    settings = yaml.safe_load(configuration)
    settings["global"] = {"scrape_interval": INTERVAL, "evaluation_interval": INTERVAL}
    settings["scrape_configs"][0]["static_configs"] = [{"targets": names}]
    return yaml.safe_dump(settings, sort_keys=False)


class Monitoring:
    """The exporter and Prometheus. Prometheus listens at URL inside the fleet's network."""

    def __init__(self, delivered, folder):
        self._delivered = delivered
        self._folder = folder
        folder.mkdir(parents=True)
        self._programs = []
        # A proxy from the environment cannot reach this network.
        self._opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))

    def start(self, names):
        self._write("corvane.rules.yml", quicken(self._read("corvane.rules.yml")))
        self._write("prometheus.yml", for_these_servers(self._read("prometheus.yml"), names))
        self._run("exporter", "prometheus-snmp-exporter",
                  f"--config.file={self._delivered / 'snmp-corvane-0.22.yml'}",
                  "--web.listen-address=127.0.0.1:9116")
        self._run("prometheus", "prometheus", "--config.file=prometheus.yml",
                  "--storage.tsdb.path=data", "--web.listen-address=127.0.0.1:9090")
        wait_until(self._is_ready, 60, "Prometheus is not ready")

    def alerts(self):
        """Returns two sets of (server, alert) pairs: firing now, and pending now."""
        firing, pending = set(), set()
        for alert in self._ask("alerts")["alerts"]:
            pair = (alert["labels"]["instance"], alert["labels"]["alertname"])
            (firing if alert["state"] == "firing" else pending).add(pair)
        return firing, pending

    def count(self, query):
        """Returns the number of series in the result of the query."""
        return len(self._ask("query?query=" + urllib.request.quote(query))["result"])

    def stop(self):
        for program in reversed(self._programs):
            program.stop()

    def _read(self, name):
        return (self._delivered / name).read_text(encoding="utf-8")

    def _write(self, name, text):
        (self._folder / name).write_text(text, encoding="utf-8")

    def _run(self, name, *command):
        # The pages of Prometheus show file names as given here, so these are relative.
        self._programs.append(Program(command, self._folder / f"{name}.log", cwd=self._folder))

    def _is_ready(self):
        for program in self._programs:
            if not program.is_running():
                raise ProgramFault(f"{program.name} ended: {program.said()[-500:].strip()}")
        try:
            return self._opener.open(f"{URL}/-/ready", timeout=5).status == 200
        except OSError:
            return False

    def _ask(self, what):
        with self._opener.open(f"{URL}/api/v1/{what}", timeout=10) as answer:
            return json.load(answer)["data"]
