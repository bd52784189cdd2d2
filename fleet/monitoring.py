"""Prometheus, its exporters and Alertmanager from Debian's packages, with a configuration of the fleet.

Debian's own configuration is neither read nor changed.
"""

import json
import re
import urllib.request

import yaml

from programs import Program, ProgramFault, wait_until

PROMETHEUS = "127.0.0.1:9090"
ALERTMANAGER = "127.0.0.1:9093"
URL = f"http://{PROMETHEUS}"
INTERVAL = "1s"
TARGETS_FILE = "targets.yml"
EXPORTERS = ["127.0.0.1:9116", "127.0.0.1:9117"]


def quicken(rules):
    """Changes the minutes of the alert rules to seconds: every `for:`, and every range in an expression."""
    rules = re.sub(r"^(\s*for: *)(\d+)m$", r"\1\2s", rules, flags=re.MULTILINE)
    return re.sub(r"\[(\d+)m\]", r"[\1s]", rules)


def for_these_servers(configuration, shards=None):
    """Changes the delivered prometheus.yml: servers from a file.

    `shards` replaces parts of the two jobs: it has the form of scrape_configs.
    """
    settings = yaml.safe_load(configuration)
    for job, parts in zip(settings["scrape_configs"], shards or []):
        assert job["job_name"] == parts["job_name"]
        job.update(parts)
    servers = settings["scrape_configs"][0]
    del servers["static_configs"]
    servers["file_sd_configs"] = [{"files": [TARGETS_FILE]}]
    return yaml.safe_dump(settings, sort_keys=False)


def scrape_often(configuration):
    """Changes prometheus.yml: short intervals."""
    settings = yaml.safe_load(configuration)
    settings["global"] = {"scrape_interval": INTERVAL, "evaluation_interval": INTERVAL}
    return yaml.safe_dump(settings, sort_keys=False)


def send_at_once(configuration):
    """Changes the delivered alertmanager.yml: a second for each waiting time of a message."""
    settings = yaml.safe_load(configuration)
    settings["route"] |= {"group_wait": INTERVAL, "group_interval": INTERVAL}
    return yaml.safe_dump(settings, sort_keys=False)


def read_shards(page):
    """Returns the scrape_configs in the page about many servers."""
    return yaml.safe_load(re.search(r"^```yaml\n(scrape_configs:.*?)^```", page, re.MULTILINE | re.DOTALL)[1])[
        "scrape_configs"]


class Targets:
    """The file from which Prometheus reads the servers. Prometheus notices each change of it."""

    name = "corvane"  # alerts about the whole job have no instance

    def __init__(self, folder):
        self._folder = folder
        self._names = []

    def add(self, *names):
        self._names += names
        self.show()

    def remove(self, name):
        self._names.remove(name)
        self.show()

    def show(self):
        self._write(self._names)

    def hide(self):
        """Removes all targets until `show`."""
        self._write([])

    def _write(self, names):
        new = self._folder / "targets.new"
        new.write_text(yaml.safe_dump([{"targets": names}] if names else []), encoding="utf-8")
        new.rename(self._folder / TARGETS_FILE)


class Exporter:
    """One snmp_exporter. Its name is its address."""

    def __init__(self, name, module, folder):
        self.name = name
        self._module = module
        self._folder = folder
        self.program = None

    def start(self):
        self.program = Program(
            ["prometheus-snmp-exporter", f"--config.file={self._module}", f"--web.listen-address={self.name}"],
            self._folder / f"exporter-{self.name.rpartition(':')[2]}.log", cwd=self._folder)

    def stop(self):
        self.program.stop()


class Monitoring:
    """The exporters, Prometheus and Alertmanager. They listen inside the fleet's network.

    `is_quick`: with short intervals and waiting times.
    """

    def __init__(self, delivered, folder, shards=None, is_quick=True):
        self._delivered = delivered
        self.folder = folder
        self._is_quick = is_quick
        self._shards = shards
        folder.mkdir(parents=True)
        self.targets = Targets(folder)
        self.exporters = [Exporter(name, delivered / "snmp-corvane-0.22.yml", folder)
                          for name in EXPORTERS[:2 if shards else 1]]
        self.prometheus = None
        self.alertmanager = None
        # A proxy from the environment cannot reach this network.
        self._opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))

    def start(self):
        rules = self._read("corvane.rules.yml")
        configuration = for_these_servers(self._read("prometheus.yml"), self._shards)
        self._write("corvane.rules.yml", quicken(rules) if self._is_quick else rules)
        self._write("prometheus.yml", scrape_often(configuration) if self._is_quick else configuration)
        for exporter in self.exporters:
            exporter.start()
        self.prometheus = self._run("prometheus", "prometheus", "--config.file=prometheus.yml",
                                    "--storage.tsdb.path=data", f"--web.listen-address={PROMETHEUS}")
        wait_until(lambda: self._is_ready(PROMETHEUS), 60, "Prometheus is not ready")

    def start_alertmanager(self):
        """Call this when no alert fires. Prometheus needs five seconds to find its targets: this is the
        shortened waiting time of the alert that there are none."""
        self._write("alertmanager.yml", send_at_once(self._read("alertmanager.yml")))
        self.alertmanager = self._run("alertmanager", "prometheus-alertmanager", "--config.file=alertmanager.yml",
                                      "--storage.path=alertmanager", f"--web.listen-address={ALERTMANAGER}",
                                      "--cluster.listen-address=")
        wait_until(lambda: self._is_ready(ALERTMANAGER), 60, "Alertmanager is not ready")

    def alerts(self):
        """Returns two sets of (server, alert) pairs: firing now, and pending now.

        An alert about a whole job has the name of the job in place of the server.
        """
        firing, pending = set(), set()
        for alert in self._ask("alerts")["alerts"]:
            labels = alert["labels"]
            pair = (labels.get("instance", labels.get("job")), labels["alertname"])
            (firing if alert["state"] == "firing" else pending).add(pair)
        return firing, pending

    def query(self, query):
        """Returns the value of each series in the result, with its labels as a dictionary."""
        result = self._ask("query?query=" + urllib.request.quote(query))["result"]
        return [(series["metric"], float(series["value"][1])) for series in result]

    def stop(self):
        for program in reversed(self._programs()):
            program.stop()

    def _read(self, name):
        return (self._delivered / name).read_text(encoding="utf-8")

    def _write(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")

    def _run(self, name, *command):
        # The pages of Prometheus show file names as given here, so these are relative.
        return Program(command, self.folder / f"{name}.log", cwd=self.folder)

    def _programs(self):
        """The programs that were started."""
        programs = [*(exporter.program for exporter in self.exporters), self.prometheus, self.alertmanager]
        return [program for program in programs if program]

    def _is_ready(self, address):
        for program in self._programs():
            if not program.is_running():
                raise ProgramFault(f"{program.name} ended: {program.said()[-500:].strip()}")
        try:
            return self._opener.open(f"http://{address}/-/ready", timeout=5).status == 200
        except OSError:
            return False

    def _ask(self, what):
        with self._opener.open(f"{URL}/api/v1/{what}", timeout=10) as answer:
            return json.load(answer)["data"]
