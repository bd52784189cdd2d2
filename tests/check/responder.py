"""Answers SNMPv2c Get requests in place of the Windows SNMP service.

    responder.py PORT COMMUNITY MODE

MODE is one of
    values      sends the values of all variables
    no-agent    reports that there is no such variable
    no-name     sends the error status noSuchName
    other-id    sends the number of another request
    text        sends bytes that are not SNMP
    silent      sends nothing

It does not answer a request with another community. Prints "ready" when it listens.
"""

import socket
import sys

INTEGER, TEXT, SEQUENCE, NO_SUCH_INSTANCE, RESPONSE = 0x02, 0x04, 0x30, 0x81, 0xA2
VALUES = [(INTEGER, b"\0"), (TEXT, b"Corvane Main"), (TEXT, b"2.1"), (INTEGER, b"\x18"), (INTEGER, b"\x03"),
          (INTEGER, b"\x08"), (INTEGER, b"\0"), (INTEGER, b"\x01")]


def element(tag, content):
    length = len(content)
    head = bytes([length]) if length < 0x80 else b"\x82" + length.to_bytes(2, "big")
    return bytes([tag]) + head + content


def elements(data):
    """Returns the tags and contents of all elements in `data`."""
    found = []
    while data:
        tag, length, start = data[0], data[1], 2
        if length >= 0x80:
            start = 2 + (length & 0x7F)
            length = int.from_bytes(data[2:start], "big")
        found.append((tag, data[start:start + length]))
        data = data[start + length:]
    return found


def answer(request, community, mode):
    """Returns the response, or None if there must be no response."""
    (_, message), = elements(request)
    (_, _), (_, name), (_, pdu) = elements(message)
    if mode == "silent" or name != community:
        return None
    if mode == "text":
        return b"HTTP/1.1 400 Bad Request\r\n\r\n"
    (_, number), _, _, (_, bindings) = elements(pdu)
    if mode == "other-id":
        number = b"\x01" if number != b"\x01" else b"\x02"
    result = b""
    for (_, binding), value in zip(elements(bindings), VALUES, strict=True):
        (tag, oid), _ = elements(binding)
        value = (NO_SUCH_INSTANCE, b"") if mode == "no-agent" else value
        result += element(SEQUENCE, element(tag, oid) + element(*value))
    status = b"\x02" if mode == "no-name" else b"\0"
    pdu = element(INTEGER, number) + element(INTEGER, status) + element(INTEGER, b"\0") + element(SEQUENCE, result)
    return element(SEQUENCE, element(INTEGER, b"\x01") + element(TEXT, community) + element(RESPONSE, pdu))


def main(port, community, mode):
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as responder:
        responder.bind(("127.0.0.1", int(port)))
        print("ready", flush=True)
        while True:
            request, sender = responder.recvfrom(65536)
            response = answer(request, community.encode(), mode)
            if response is not None:
                responder.sendto(response, sender)


if __name__ == "__main__":
    main(*sys.argv[1:])
