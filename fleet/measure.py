"""Measures what one scrape costs, and what happens if all servers fail at once.

The rules are evaluated once for each scrape of a server: every second, or with the delivered
intervals.
"""

import pathlib
import time

from network import SUBNET
from programs import Program

JOB = '{job="corvane"}'
SCRAPE_SECONDS = 60
STORM_SECONDS = 60
TRAP_ADDRESS = f"{SUBNET[1]}:162"


def processor_seconds(programs):
    """The time that all threads of the programs have run."""
    tasks = [task for program in programs for task in pathlib.Path(f"/proc/{program.pid}/task").iterdir()]
    return sum(int((task / "schedstat").read_text(encoding="ascii").split()[0]) for task in tasks) / 1e9


def memory(programs):
    """Mebibytes in memory, all programs together."""
    pages = (pathlib.Path(f"/proc/{program.pid}/statm").read_text(encoding="ascii").split()[1] for program in programs)
    return sum(map(int, pages)) * 4096 / 2**20


def network_bytes(beginning):
    """Bytes received and sent by the cards whose name has this beginning."""
    cards = (line.split(":") for line in pathlib.Path("/proc/self/net/dev").read_text(encoding="ascii").splitlines()[2:])
    counts = [figures.split() for name, figures in cards if name.strip().startswith(beginning)]
    return sum(int(each[0]) + int(each[8]) for each in counts)


def folder_bytes(folder):
    return sum(file.stat().st_size for file in folder.rglob("*") if file.is_file())


def print_figures(title, figures):
    print(f"\n{title}")
    for name, figure in figures.items():
        print(f"  {name:<60} {figure}")


class Counters:
    """All counters at one moment."""

    def __init__(self, groups, monitoring):
        self.at = time.time()
        self.processor = {name: processor_seconds(programs) for name, programs in groups.items()}
        self.snmp_bytes = network_bytes("server")
        self.http_bytes = network_bytes("lo") / 2  # what the loopback sends it also receives
        self.log_bytes = folder_bytes(monitoring.folder / "data" / "wal")


def measure_scrapes(monitoring, servers):
    groups = {"agents with snmphost": list({server.service for server in servers}),
              "exporters": [exporter.program for exporter in monitoring.exporters],
              "Prometheus": [monitoring.prometheus]}
    before = Counters(groups, monitoring)
    time.sleep(SCRAPE_SECONDS)
    after = Counters(groups, monitoring)
    seconds = after.at - before.at
    window = f"[{seconds:.0f}s] @ {after.at:.3f}"

    def number(query):
        return monitoring.query(query)[0][1]

    def milliseconds(share):
        return f"{1000 * number(f'quantile({share}, scrape_duration_seconds{JOB})'):.1f} ms"

    scrapes = number(f"sum(count_over_time(up{JOB}{window}))")
    figures = {"scrapes": f"{scrapes:.0f} in {seconds:.0f} s",
               "failed scrapes": f"{scrapes - number(f'sum(sum_over_time(up{JOB}{window}))'):.0f}"}
    for name, programs in groups.items():
        spent = after.processor[name] - before.processor[name]
        figures[f"{name}: processor time of one scrape"] = f"{1000 * spent / scrapes:.2f} ms"
        figures[f"{name}: memory"] = f"{memory(programs):.0f} MiB"
    for name, was, now in (("SNMP bytes, both directions", before.snmp_bytes, after.snmp_bytes),
                           ("HTTP bytes, both directions", before.http_bytes, after.http_bytes),
                           ("bytes of the write-ahead log", before.log_bytes, after.log_bytes)):
        figures[f"{name}, of one scrape"] = f"{(now - was) / scrapes:.0f}"
    figures["samples of one scrape"] = f"{number(f'avg(scrape_samples_scraped{JOB})'):.0f}"
    figures["duration of a scrape, median and 95 %"] = f"{milliseconds(0.5)}, {milliseconds(0.95)}"
    print_figures(f"{len(servers)} servers, {len(monitoring.exporters)} exporter(s): scrapes", figures)


class TrapReceiver:
    """snmptrapd with the delivered handler, which writes a line for each trap."""

    def __init__(self, handler, folder):
        self._lines = folder / "traps.txt"
        configuration = folder / "snmptrapd.conf"
        configuration.write_text(f"disableAuthorization yes\ntraphandle default {handler} {self._lines}\n",
                                 encoding="ascii")
        self.program = Program(["snmptrapd", "-f", "-Lo", "-n", "-C", "-c", configuration, f"udp:{TRAP_ADDRESS}"],
                                folder / "snmptrapd.log", cwd=folder)
        self.program.await_text("NET-SNMP version")

    def count(self):
        """Returns the number of servers that have sent a trap about a lost link."""
        lines = self._lines.read_text(encoding="utf-8").splitlines() if self._lines.exists() else []
        return len({line.split()[1] for line in lines if "corvaneTrapSoftwareLinkDown" in line})

    def stop(self):
        self.program.stop()


def measure_storm(monitoring, mailbox, servers, receiver):
    """Ends all Corvane servers at once, and measures when the last message comes."""
    groups = {"Alertmanager": [monitoring.alertmanager], "snmptrapd, not its handler": [receiver.program]}
    spent = {name: processor_seconds(programs) for name, programs in groups.items()}
    counts = {"servers whose trap the handler of snmptrapd has written": receiver.count,
              "alerts that fire": lambda: len(monitoring.alerts()[0]),
              "e-mails of Alertmanager": lambda: len(mailbox.mails)}
    most = dict.fromkeys(counts, (0, 0.0))  # the largest count, and when it was reached
    started = time.monotonic()
    for server in servers:
        server.end_corvane()
    while (now := time.monotonic() - started) < STORM_SECONDS and min(most.values())[0] < len(servers):
        for name, count in counts.items():
            most[name] = max(most[name], (count(), now), key=lambda reached: reached[0])
        time.sleep(0.1)
    figures = {name: f"{number} after {after:.1f} s" for name, (number, after) in most.items()}
    for name, programs in groups.items():
        each = 1000 * (processor_seconds(programs) - spent[name]) / len(servers)
        figures[f"{name}: processor time for each server"] = f"{each:.2f} ms"
    figures["Alertmanager: memory"] = f"{memory(groups['Alertmanager']):.0f} MiB"
    print_figures(f"{len(servers)} servers fail at once", figures)
