"""Starts servers and their monitoring, makes and mends faults, and reports the alerts that fired.

tools/run-fleet starts this script in its own network and mount namespaces.
"""

import argparse
import contextlib
import pathlib
import shutil
import signal
import sys
import time

import network
from browser import take_picture
from course import Course
from monitoring import Monitoring
from programs import ProgramFault, wait_until
from report import print_table, verdict
from server import Server

TOP = pathlib.Path(__file__).resolve().parent.parent
BUILD = TOP / "build" / "release"
WORK = TOP / "build" / "fleet"
PHASE_SECONDS = 90  # every alert needs less
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
    return parser.parse_args()


def say(text):
    print(f"[{time.monotonic() - STARTED:4.0f}s] {text}", flush=True)


def show(options, started):
    """Runs all phases. Returns True if the result is as expected.

    `started` receives a callback that ends each started program.
    """
    shutil.rmtree(WORK, ignore_errors=True)
    monitoring = Monitoring(TOP / "monitoring" / "prometheus", WORK / "monitoring")
    servers = start_servers(options.count, started)
    start_monitoring(monitoring, servers, started)
    courses = [Course(server, number) for number, server in enumerate(servers, 1)]
    say("Breaking")
    for course in courses:
        course.begin(time.monotonic())
    follow(monitoring, courses, lambda: all(course.has_fired for course in courses))
    if options.picture:
        take_picture(options.picture, WORK / "chromium")
        say(f"The picture of the alerts is in {options.picture}")
    say("Mending")
    for course in courses:
        course.begin_mending(time.monotonic())
    follow(monitoring, courses, lambda: all(course.is_over for course in courses))
    started.close()
    say("Every process has ended")
    return report(courses)


def start_servers(count, started):
    say(f"Starting {count} servers: corvane-sim and snmphost with SNMPd.so, each in its own network")
    network.make_bridge()
    servers = []
    for number in range(1, count + 1):
        servers.append(Server(number, BUILD, WORK))
        started.callback(servers[-1].stop)
        servers[-1].start()
    network.write_hosts(WORK / "hosts", servers)
    return servers


def start_monitoring(monitoring, servers, started):
    """Returns when Prometheus has values from all servers and no alert.

    The agents request the values 15 seconds after their start.
    """
    say("Starting Prometheus and its snmp_exporter")
    started.callback(monitoring.stop)
    monitoring.start([server.name for server in servers])
    say("Waiting for values from all servers: the agents request them 15 s after connecting")
    wait_until(lambda: all(server.has_sent_update() for server in servers)
               and monitoring.count("corvane_streams > 0") == len(servers)
               and monitoring.alerts() == (set(), set()), PHASE_SECONDS, "not all servers have values and no alert")


def follow(monitoring, courses, is_done):
    """Reads the alerts until `is_done` is true and no alert is pending, or the time is over."""
    deadline = time.monotonic() + PHASE_SECONDS
    calm_since = None
    while (now := time.monotonic()) < deadline:
        firing, pending = monitoring.alerts()
        for course in courses:
            course.see({alert for name, alert in firing if name == course.server.name}, now)
        if pending or not is_done():
            calm_since = None
        elif (calm_since := calm_since or now) < now - CALM_SECONDS:
            return
        time.sleep(0.2)


def report(courses):
    rows = [row for course in courses for row in course.rows]
    print()
    print_table(rows)
    print()
    return verdict(rows)


if __name__ == "__main__":
    main()
