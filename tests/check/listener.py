"""Listens on a TCP port in place of the Corvane software, and keeps every connection open.

    listener.py ADDRESS PORT

Prints "ready" when it listens.
"""

import socket
import sys


def main(address, port):
    with socket.create_server((address, int(port))) as listener:
        print("ready", flush=True)
        kept = []
        while True:
            kept.append(listener.accept())


if __name__ == "__main__":
    main(*sys.argv[1:])
