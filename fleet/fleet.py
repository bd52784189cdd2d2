"""Starts servers and their monitoring, makes and mends faults, and reports the alerts that fired.

tools/run-fleet starts this script in its own network and mount namespaces.
"""

import argparse
import contextlib
import os
import pathlib
import shutil
import signal
import sys
import time

import network
from browser import take_picture
from course import Course
from doorway import Doorway
from faults import EXPORTER, JOB, faults_of
from mailbox import Mailbox
from measure import TRAP_ADDRESS, TrapReceiver, measure_scrapes, measure_storm
from monitoring import ALERTMANAGER, PROMETHEUS, Monitoring, read_shards
from programs import ProgramFault, wait_until
from report import print_table, verdict
from server import Address, ManyAddresses, Server

TOP = pathlib.Path(__file__).resolve().parent.parent
BUILD = TOP / "build" / "release"
WORK = TOP / "build" / "fleet"
PHASE_SECONDS = 120  # every alert needs less
CALM_SECONDS = 3  # if no alert is pending for this time, no further alert will fire
STARTED = time.monotonic()


def main():
    options = read_options()
    # A shell that starts this script in the background makes it ignore Ctrl-C.
    signal.signal(signal.SIGINT, signal.default_int_handler)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    started = contextlib.ExitStack()
    try:
        sys.exit(0 if show(options, started) else 1)
    except (ProgramFault, OSError) as fault:
        sys.exit(f"run-fleet: {fault}")
    except KeyboardInterrupt:
        sys.exit(130)
    finally:
        for number in (signal.SIGINT, signal.SIGTERM):
            signal.signal(number, signal.SIG_IGN)
        started.close()


def read_options():
    parser = argparse.ArgumentParser(prog="run-fleet")
    parser.add_argument("count", type=int)
    parser.add_argument("--picture", type=pathlib.Path)
    parser.add_argument("--shards", action="store_true")
    parser.add_argument("--stay", action="store_true")
    parser.add_argument("--measure", action="store_true")
    parser.add_argument("--one-agent", action="store_true")
    return parser.parse_args()


def say(text):
    print(f"[{time.monotonic() - STARTED:4.0f}s] {text}", flush=True)


def show(options, started):
    """Runs all phases. Returns True if the result is as expected.

    `started` receives a callback that ends each started program.
    """
    shutil.rmtree(WORK, ignore_errors=True)
    page = (TOP / "docs" / "scaling.md").read_text(encoding="utf-8")
    monitoring = Monitoring(TOP / "monitoring" / "prometheus", WORK / "monitoring",
                            read_shards(page) if options.shards else None, is_quick=not options.one_agent)
    if options.one_agent:
        servers = start_one_agent(options.count, monitoring.targets, started)
        start_monitoring(monitoring, servers, started)
        say("Measuring scrapes for a minute")
        measure_scrapes(monitoring, servers)
        return True
    sinks = [TRAP_ADDRESS] if options.measure else []
    servers = start_servers(options.count, monitoring.targets, sinks, started)
    mailbox = start_monitoring(monitoring, servers, started)
    if options.measure:
        measure(monitoring, mailbox, servers, started)
        return True
    if options.stay:
        stay(servers)
    courses = [Course(server, faults_of(number)) for number, server in enumerate(servers, 1)]
    watch = Watch(monitoring, mailbox)
    say("Breaking")
    watch.break_all(courses)
    if options.picture:
        take_picture(options.picture, WORK / "chromium")
        say(f"The picture of the alerts is in {options.picture}")
    say("Mending")
    watch.mend_all(courses)
    for part, fault in ((monitoring.exporters[0], EXPORTER), (monitoring.targets, JOB)):
        say(f"Breaking and mending the monitoring: {fault.text}")
        courses.append(Course(part, [fault]))
        watch.break_all(courses[-1:])
        watch.mend_all(courses[-1:])
    started.close()
    say("Every process has ended")
    rows = [row for course in courses for row in course.rows]
    print()
    print_table(rows)
    print()
    return verdict(rows, mailbox.mails, watch.strays)


def start_servers(count, targets, trap_sinks, started):
    """Starts the same program of all servers, then waits for all of them."""
    say(f"Starting {count} servers: corvane-sim and snmphost with SNMPd.so, each in its own network")
    network.make_bridge()
    servers = []
    for number in range(1, count + 1):
        servers.append(Server(number, BUILD, WORK, targets, trap_sinks))
        started.callback(servers[-1].stop)
    network.connect([server.network for server in servers])
    network.write_hosts(WORK / "hosts", servers)
    for step in (Server.launch_corvane, Server.await_corvane, Server.launch_agent, Server.await_agent):
        for server in servers:
            step(server)
    return servers


def start_one_agent(count, targets, started):
    """Returns the addresses of one agent, each in place of a server."""
    say(f"Starting one server with {count} addresses: corvane-sim and snmphost with SNMPd.so")
    network.make_bridge()
    server = ManyAddresses(1, BUILD, WORK, targets)
    started.callback(server.stop)
    network.connect([server.network])
    server.network.take_further_addresses()
    server.start_corvane()
    server.launch_agent()
    server.await_agent()
    addresses = [Address(number, server) for number in range(1, count + 1)]
    network.write_hosts(WORK / "hosts", addresses)
    return addresses


def start_monitoring(monitoring, servers, started):
    """Returns the mailbox when Prometheus has values from all servers and no alert."""
    say(f"Starting Prometheus, Alertmanager and {len(monitoring.exporters)} snmp_exporter")
    mailbox = Mailbox(WORK / "mails")
    mailbox.start()
    started.callback(mailbox.stop)
    started.callback(monitoring.stop)
    monitoring.targets.add(*(server.name for server in servers))
    monitoring.start()
    wait_until(lambda: len(monitoring.query("corvane_streams > 0")) == len(servers)
               and monitoring.alerts() == (set(), set()), PHASE_SECONDS, "not all servers have values and no alert")
    monitoring.start_alertmanager()
    for labels, number in monitoring.query('count by (exporter) (up{job="corvane"} == 1)'):
        say(f"The exporter {labels['exporter']} asks {number:.0f} servers")
    return mailbox


def measure(monitoring, mailbox, servers, started):
    say("Measuring scrapes for a minute, then a storm of traps and alerts")
    measure_scrapes(monitoring, servers)
    receiver = TrapReceiver(TOP / "monitoring" / "snmptrapd" / "corvane-trap", WORK)
    started.callback(receiver.stop)
    measure_storm(monitoring, mailbox, servers, receiver)


def stay(servers):
    """Prints how to reach the fleet. Returns never: Ctrl-C ends the script."""
    doors = os.environ["CORVANE_FLEET_DOORS"].split()
    for name, inner, door in zip(("Prometheus", "Alertmanager"), (PROMETHEUS, ALERTMANAGER), doors, strict=True):
        say(f"{name}: http://{Doorway(int(door), inner).address}")
    user = "" if os.readlink("/proc/self/ns/user") == os.environ["CORVANE_FLEET_USER"] else "--user "
    say(f"A shell in the network of the fleet: nsenter --target {os.getpid()} {user}--net --mount")
    say(f"The servers there: {servers[0].name} to {servers[-1].name}, {servers[0].address} "
        f"to {servers[-1].address}, community public")
    say("Ctrl-C ends the fleet")
    while True:
        signal.pause()


class Watch:
    """Follows the alerts and the e-mails while faults are made and mended."""

    def __init__(self, monitoring, mailbox):
        self._monitoring = monitoring
        self._mailbox = mailbox
        self.strays = set()  # alerts about what no course has broken

    def break_all(self, courses):
        for course in courses:
            course.begin(time.monotonic())
        self._follow(courses, lambda: all(course.is_reported for course in courses))

    def mend_all(self, courses):
        for course in courses:
            course.begin_mending(time.monotonic())
        self._follow(courses, lambda: all(course.is_over for course in courses))

    def _follow(self, courses, is_done):
        """Returns if `is_done` is true and no alert is pending for a moment, or if the time is over."""
        deadline = time.monotonic() + PHASE_SECONDS
        calm_since = None
        while (now := time.monotonic()) < deadline:
            firing, pending = self._monitoring.alerts()
            for course in courses:
                name = course.server.name
                course.see({alert for place, alert in firing if place == name},
                           self._mailbox.alerts_of(name), now)
            self.strays |= {pair for pair in firing if pair[0] not in [course.server.name for course in courses]}
            if pending or not is_done():
                calm_since = None
            elif (calm_since := calm_since or now) < now - CALM_SECONDS:
                return
            time.sleep(0.2)


if __name__ == "__main__":
    main()
