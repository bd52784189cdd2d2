"""One server of the fleet: the simulated Corvane server, and the SNMP service with the agent."""

import os

from network import FURTHER_ADDRESSES, Namespace
from programs import Program

SNMP_PORT = 161
# Commands for corvane-sim. The agent tries to connect at once, and again after five seconds. Each
# loss is therefore long enough for a poll each second, and three of them need half a minute at most.
LOSSES = ("refuse 1000", "drop", "await connected", "wait 2500") * 3


class Server:
    """The programs of one server, in its own network and folder.

    `launch_…` starts a program, and `await_…` returns when it is at work. So many servers can start
    at the same time.
    """

    def __init__(self, number, build, folder, targets, trap_sinks=()):
        self.name = f"corvane{number}.example.org"
        self._build = build
        self._targets = targets
        self._trap_sinks = [word for sink in trap_sinks for word in ("--trap-sink", sink)]
        self._folder = folder / f"server{number}"
        self._folder.mkdir(parents=True)
        self.network = Namespace(number, self._folder)
        self.address = self.network.address
        self._corvane = None
        self.service = None

    def launch_corvane(self):
        self._corvane = self._run("corvane-sim", [self._build / "corvane-sim"])

    def await_corvane(self):
        self._corvane.await_text("listening on")

    def start_corvane(self):
        self.launch_corvane()
        self.await_corvane()

    def stop_corvane(self):
        self._corvane.stop()

    def end_corvane(self):
        """The same without waiting for the end."""
        self._corvane.end()

    def freeze_corvane(self):
        """The process stands still, and its connections stay open."""
        self._corvane.freeze()

    def thaw_corvane(self):
        self._corvane.thaw()

    def flap(self):
        """Loses the link three times. Returns at once."""
        self._corvane.tell(*LOSSES)

    def set(self, group, **values):
        """Changes values of one group at the Corvane server, which sends them to the agent."""
        self._corvane.tell(*(f"set {name} {value}" for name, value in values.items()), f"send {group}")

    def launch_agent(self):
        self.service = self._run("snmphost", [
            self._build / "snmphost", "--listen", self._listen_address(), *self._trap_sinks,
            self._build / "SNMPd.so"])

    def await_agent(self, connection=1):
        """Returns when the agent has this connection, counted from the start of the Corvane server.

        The Corvane server sends its values now. The agent itself requests them after 15 seconds.
        """
        self.service.await_text("Serving")
        self._corvane.await_text("\nconnected", times=connection)
        self._corvane.tell("send Update")

    def load_agent(self):
        """Restarts the SNMP service with the agent."""
        self._stop_service()
        connections = self._corvane.said().count("\nconnected")
        self.launch_agent()
        self.await_agent(connections + 1)

    def restart_agent(self):
        """The same without values from the Corvane server."""
        self._stop_service()
        self.launch_agent()
        self.service.await_text("Serving")

    def lose_agent(self):
        """Restarts the SNMP service without the agent. The service still responds."""
        self._stop_service()
        configuration = self._folder / "snmpd.conf"
        configuration.write_text("rocommunity public\n", encoding="ascii")
        self.service = self._run("snmpd", [
            "/usr/sbin/snmpd", "-f", "-Lo", "-C", "-c", configuration, "-I", "-smux",
            self._listen_address()])
        self.service.await_text("NET-SNMP version")

    def cut_network(self):
        self.network.cut()

    def mend_network(self):
        self.network.mend()

    def leave_targets(self):
        self._targets.remove(self.name)

    def join_targets(self):
        self._targets.add(self.name)

    def stop(self):
        self._stop_service()
        if self._corvane:
            self._corvane.stop()
        self.network.stop()

    def _run(self, name, command):
        settings = {"CORVANE_DATA": str(self._folder), "SNMP_PERSISTENT_DIR": str(self._folder),
                    "SNMPCONFPATH": "/nonexistent", "MIBS": ""}
        return Program(self.network.inside(*command), self._folder / f"{name}.log",
                       cwd=self._folder, env=os.environ | settings)

    def _stop_service(self):
        if self.service:
            self.service.stop()

    def _listen_address(self):
        return f"udp:{self.address}:{SNMP_PORT}"


class ManyAddresses(Server):
    """A server whose agent responds at FURTHER_ADDRESSES too."""

    def _listen_address(self):
        return f"udp:{SNMP_PORT}"


class Address:
    """One of the further addresses. For the monitoring it is a server of its own."""

    def __init__(self, number, server):
        self.name = f"corvane{number}.example.org"
        self.address = str(FURTHER_ADDRESSES[number])
        self.service = server.service
