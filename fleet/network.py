"""The network of the fleet: a bridge, and for each server a namespace with a virtual card.

The script itself runs in a namespace without another network. So nothing of the fleet is
visible outside, and the kernel removes everything when the last program ends.
"""

import ipaddress
import os

from programs import Program, run, wait_until

SUBNET = ipaddress.ip_network("10.33.0.0/16")
FIRST_SERVER = 256  # the monitoring uses the addresses below, 10.33.0.x
FURTHER_ADDRESSES = ipaddress.ip_network("10.34.0.0/16")  # of one server that has many
BRIDGE = "fleet"


def make_bridge():
    run("ip", "link", "set", "lo", "up")
    run("ip", "link", "add", BRIDGE, "type", "bridge")
    run("ip", "address", "add", f"{SUBNET[1]}/{SUBNET.prefixlen}", "dev", BRIDGE)
    run("ip", "link", "set", BRIDGE, "up")


def write_hosts(file, servers):
    """Makes the names of the servers known to this script and to the programs that it starts."""
    lines = ["127.0.0.1 localhost"] + [f"{server.address} {server.name}" for server in servers]
    file.write_text("\n".join(lines) + "\n", encoding="ascii")
    run("mount", "--bind", file, "/etc/hosts")


def connect(namespaces):
    """Gives each namespace its virtual card. All of them have been made before."""
    own = os.readlink("/proc/self/ns/net")
    for namespace in namespaces:
        wait_until(lambda it=namespace: it.identity() not in ("", own), 60, "no network namespace")
    run("ip", "-batch", "-", lines=[line for namespace in namespaces for line in namespace.outer_commands()])
    for namespace in namespaces:
        run(*namespace.inside("ip", "-batch", "-"), lines=namespace.inner_commands())


class Namespace:
    """The network of one server. It exists until the sleeping program that holds it ends."""

    def __init__(self, number, folder):
        self.address = str(SUBNET[FIRST_SERVER + number])
        self._card = f"server{number}"
        self._holder = Program(["unshare", "--net", "sleep", "infinity"], None, cwd=folder)

    # No card has an address of IPv6: each would send packets of its own to all servers.

    def outer_commands(self):
        return [f"link add {self._card} type veth peer name eth0 netns {self._holder.pid}",
                f"link set {self._card} addrgenmode none",
                f"link set {self._card} master {BRIDGE} up"]

    def inner_commands(self):
        return ["link set eth0 addrgenmode none", f"address add {self.address}/{SUBNET.prefixlen} dev eth0",
                "link set eth0 up", "link set lo up"]

    def take_further_addresses(self):
        """From now on all FURTHER_ADDRESSES lead here."""
        run("ip", "route", "add", str(FURTHER_ADDRESSES), "via", self.address)
        run(*self.inside("ip", "route", "add", "local", str(FURTHER_ADDRESSES), "dev", "lo"))

    def identity(self):
        """The kernel's name of the holder's network. It changes when the holder has made its own."""
        try:
            return os.readlink(f"/proc/{self._holder.pid}/ns/net")
        except FileNotFoundError:
            return ""

    def inside(self, *command):
        """Returns the command line that runs `command` in this network."""
        return ["nsenter", f"--net=/proc/{self._holder.pid}/ns/net", "--", *command]

    def cut(self):
        run("ip", "link", "set", self._card, "down")

    def mend(self):
        run("ip", "link", "set", self._card, "up")

    def stop(self):
        self._holder.stop()
