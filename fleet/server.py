"""One server of the fleet: the simulated Corvane server, and the SNMP service with the agent."""

import os

from network import Namespace
from programs import Program

SNMP_PORT = 161


class Server:
    """The programs of one server, in its own network and folder."""

    def __init__(self, number, build, folder):
        self.name = f"corvane{number}.example.org"
        self._build = build
        self._folder = folder / f"server{number}"
        self._folder.mkdir(parents=True)
        self._network = Namespace(number, self._folder)
        self.address = self._network.address
        self._corvane = None
        self._service = None

    def start(self):
        self.start_corvane()
        self.load_agent()

    def start_corvane(self):
        self._corvane = self._run("corvane-sim", [self._build / "corvane-sim"])
        self._corvane.await_text("listening")

    def stop_corvane(self):
        self._corvane.stop()

    def has_sent_update(self):
        """True if the agent has requested the values and the simulator has sent them."""
        return "received SNMPupdate" in self._corvane.said()

    def set(self, group, **values):
        """Changes values of one group at the Corvane server, which sends them to the agent."""
        self._corvane.tell(*(f"set {name} {value}" for name, value in values.items()), f"send {group}")

    def load_agent(self):
        """Restarts the SNMP service with the agent."""
        self._stop_service()
        self._service = self._run("snmphost", [
            self._build / "snmphost", "--listen", self._listen_address(), self._build / "SNMPd.so"])
        self._service.await_text("Serving")

    def lose_agent(self):
        """Restarts the SNMP service without the agent. The service still responds."""
        self._stop_service()
        configuration = self._folder / "snmpd.conf"
        configuration.write_text("rocommunity public\n", encoding="ascii")
        self._service = self._run("snmpd", [
            "/usr/sbin/snmpd", "-f", "-Lo", "-C", "-c", configuration, "-I", "-smux",
            self._listen_address()])
        self._service.await_text("NET-SNMP version")

    def cut_network(self):
        self._network.cut()

    def mend_network(self):
        self._network.mend()

    def stop(self):
        self._stop_service()
        if self._corvane:
            self._corvane.stop()
        self._network.stop()

    def _run(self, name, command):
        settings = {"CORVANE_DATA": str(self._folder), "SNMP_PERSISTENT_DIR": str(self._folder),
                    "SNMPCONFPATH": "/nonexistent", "MIBS": ""}
        return Program(self._network.inside(*command), self._folder / f"{name}.log",
                       cwd=self._folder, env=os.environ | settings)

    def _stop_service(self):
        if self._service:
            self._service.stop()

    def _listen_address(self):
        return f"udp:{self.address}:{SNMP_PORT}"
