"""The show: servers are started, watched, broken and mended; what fired is told.

Started by tools/run-fleet, in network and mount namespaces of its own.
"""

import argparse
import contextlib
import pathlib
import shutil
import signal
import sys
import time

import network
import picture
from course import Course
from monitoring import Monitoring
from programs import ProgramFault, wait_until
from report import print_table, verdict
from server import Server

TOP = pathlib.Path(__file__).resolve().parent.parent
BUILD = TOP / "build" / "release"
WORK = TOP / "build" / "fleet"
PHASE_SECONDS = 90  # more than any alert takes
CALM_SECONDS = 3  # with nothing pending: whatever is to fire has fired
STARTED = time.monotonic()


def main():
    options = read_options()
    # Even where the starting shell has made it deaf to Ctrl-C.
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
    """The whole of it; True when everything was as expected. What it starts is ended by
    `started`, the last first."""
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
        picture.take(options.picture, WORK / "chromium")
        say(f"The page of alerts is in {options.picture}")
    say("Mending")
    for course in courses:
        course.begin_mending(time.monotonic())
    follow(monitoring, courses, lambda: all(course.is_over for course in courses))
    started.close()
    say("Every process has ended")
    return report(courses)


def start_servers(count, started):
    say(f"Starting {count} servers: corvane-sim and snmphost with SNMPd.so, each in a network of its own")
    network.make_bridge()
    servers = []
    for number in range(1, count + 1):
        servers.append(Server(number, BUILD, WORK))
        started.callback(servers[-1].stop)
        servers[-1].start()
    network.write_hosts(WORK / "hosts", servers)
    return servers


def start_monitoring(monitoring, servers, started):
    """Until all servers are seen to be well: with the values that the agents ask for 15 seconds
    after their start, and without any alert."""
    say("Starting Prometheus and its snmp_exporter")
    started.callback(monitoring.stop)
    monitoring.start([server.name for server in servers])
    say("Waiting until all servers are well: the agents ask for values 15 s after connecting")
    wait_until(lambda: all(server.has_sent_update() for server in servers)
               and monitoring.count("corvane_streams > 0") == len(servers)
               and monitoring.alerts() == (set(), set()), PHASE_SECONDS, "not all servers are well")


def follow(monitoring, courses, is_done):
    """Looks at the alerts again and again, until `is_done` and calm, or the time is over."""
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
