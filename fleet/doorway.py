"""Makes a web page inside the fleet's network reachable from outside.

A socket belongs to the network in which it was made. So tools/run-fleet starts this script outside:

    doorway.py COUNT COMMAND...   listens on COUNT free ports of 127.0.0.1, and runs the command with
                                  the listening sockets in CORVANE_FLEET_DOORS, and with the user
                                  namespace of this script in CORVANE_FLEET_USER

The command, which runs inside, connects each of them with a page by a Doorway.
"""

import os
import shutil
import socket
import sys
import threading


class Doorway:
    """Passes each connection to the listening socket on to `inner`, an address inside. Daemon threads work."""

    def __init__(self, descriptor, inner):
        host, port = inner.split(":")
        self._inner = (host, int(port))
        listener = socket.socket(fileno=descriptor)
        self.address = "{}:{}".format(*listener.getsockname())
        threading.Thread(target=self._serve, args=(listener,), daemon=True).start()

    def _serve(self, listener):
        while True:
            outside, _ = listener.accept()
            inside = socket.create_connection(self._inner)
            for source, sink in ((outside, inside), (inside, outside)):
                threading.Thread(target=pump, args=(source, sink), daemon=True).start()


def pump(source, sink):
    """Copies bytes until one of the two sockets ends."""
    try:
        with source.makefile("rb", buffering=0) as reader, sink.makefile("wb", buffering=0) as writer:
            shutil.copyfileobj(reader, writer)
        sink.shutdown(socket.SHUT_WR)
    except OSError:
        pass  # the browser or the page has ended the connection


def main(count, *command):
    doors = [socket.create_server(("127.0.0.1", 0)) for _ in range(int(count))]
    for door in doors:
        door.set_inheritable(True)
    os.environ["CORVANE_FLEET_DOORS"] = " ".join(str(door.fileno()) for door in doors)
    os.environ["CORVANE_FLEET_USER"] = os.readlink("/proc/self/ns/user")
    os.execvp(command[0], command)


if __name__ == "__main__":
    main(*sys.argv[1:])
