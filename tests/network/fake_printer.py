# SPDX-License-Identifier: Apache-2.0
"""A printer that behaves as a test wants it to: announces one service and serves it.

usage: fake_printer.py --name NAME --type TYPE --port PORT [--txt KEY=VALUE ...]
                       [--behaviour BEHAVIOUR] [--attribute NAME=VALUE ...] [--count COUNT]

behaviours: answers (default), late (after 1.3 s), silent (accepts, says nothing), drips (one byte a moment, for ever),
redirects, wants-password, garbage, refuses (IPP error), old (only IPP 1.1), closed (no server),
other-group (its attributes are not in the printer's group), and those of `hostile`

With --count it announces so many of them, at ports in a row.
"""

import argparse
import itertools
import socket
import struct
import subprocess
import sys
import threading
import time

BOOLEAN, ENUM, TEXT, URI = 0x22, 0x23, 0x41, 0x45
TAGS = {"printer-is-accepting-jobs": BOOLEAN, "printer-state": ENUM, "printer-uuid": URI}
VERSION_NOT_SUPPORTED, NOT_FOUND = 0x0503, 0x0406


def attribute(tag, name, value):
    return (struct.pack(">BH", tag, len(name)) + name.encode()
            + struct.pack(">H", len(value)) + value)


def encoded(name, value):
    tag = TAGS.get(name, TEXT)
    if tag == BOOLEAN:
        return attribute(tag, name, bytes([value == "true"]))
    if tag == ENUM:
        return attribute(tag, name, struct.pack(">i", int(value)))
    return attribute(tag, name, value.encode("utf-8", "surrogateescape"))


def ipp_response(version, status, request_id, attributes):
    body = version + struct.pack(">H", status) + request_id + b"\x01"
    body += attribute(0x47, "attributes-charset", b"utf-8")
    body += attribute(0x48, "attributes-natural-language", b"en")
    body += b"\x04" + b"".join(encoded(name, value) for name, value in attributes) + b"\x03"
    return body


def hostile(behaviour):
    """Piece by piece, an answer that breaks a reader without bounds; nothing for another behaviour.

    nested (collections in collections), endless (a text without an end), floods (a head without an
    end), continues (only ever about to answer), trickles (an answer that takes an hour)
    """
    head, length = b"HTTP/1.1 200 OK\r\n", b"Content-Length: %d\r\n\r\n"
    start = b"\x02\x00\x00\x00\x00\x00\x00\x01\x04"
    if behaviour == "nested":
        levels = 10000
        body = (start + attribute(0x34, "media-col", b"")
                + (attribute(0x4A, "", b"m") + attribute(0x34, "", b"")) * levels
                + attribute(0x37, "", b"") * (levels + 1) + b"\x03")
        yield head + length % len(body) + body
    elif behaviour == "endless":
        yield head + b"\r\n" + start + attribute(TEXT, "printer-info", b"")
        texts = [attribute(TEXT, "", b"%d" % number + b"x" * 1000) for number in range(20000)]
        for at in itertools.count(0, 100):
            yield b"".join(texts[at % 20000:][:100])
    elif behaviour == "floods":
        yield head
        while True:
            yield b'WWW-Authenticate: Basic realm="x"\r\n' * 1000
    elif behaviour == "continues":
        while True:
            yield b"HTTP/1.1 100 Continue\r\n\r\n" * 1000
    elif behaviour == "trickles":
        yield head + length % 32000 + start + attribute(TEXT, "printer-info", b"x" * 30000)[:-30000]
        while True:
            yield b"x"
            time.sleep(0.05)


def http_response(body, status="200 OK", headers=()):
    lines = [f"HTTP/1.1 {status}", "Content-Type: application/ipp",
             f"Content-Length: {len(body)}", *headers, "", ""]
    return "\r\n".join(lines).encode() + body


def read_request(connection):
    """The IPP message of an HTTP request."""
    data = b""
    while b"\r\n\r\n" not in data:
        more = connection.recv(65536)
        if not more:
            return None
        data += more
    head, _, body = data.partition(b"\r\n\r\n")
    headers = dict(line.lower().split(b": ", 1) for line in head.split(b"\r\n")[1:] if b": " in line)
    if headers.get(b"expect") == b"100-continue":
        connection.sendall(b"HTTP/1.1 100 Continue\r\n\r\n")
    while len(body) < int(headers.get(b"content-length", b"0")):
        body += connection.recv(65536)
    return body


def serve(connection, options):
    if options.behaviour == "silent":
        connection.recv(1 << 20)
        time.sleep(3600)
    elif options.behaviour == "drips":
        connection.sendall(b"HTTP/1.1 200 OK\r\n")
        while True:
            connection.sendall(b"X")
            time.sleep(0.05)
    elif options.behaviour == "garbage":
        connection.sendall(bytes(range(256)) * 64)
        connection.close()
        return
    while (request := read_request(connection)) is not None:
        version, request_id = request[0:2], request[4:8]
        if options.behaviour == "late":
            time.sleep(1.3)
        if options.behaviour == "redirects":
            reply = http_response(b"", "302 Found", ["Location: /elsewhere"])
        elif options.behaviour == "wants-password":
            reply = http_response(b"", "401 Unauthorized", ['WWW-Authenticate: Basic realm="x"'])
        elif options.behaviour == "refuses":
            reply = http_response(ipp_response(version, NOT_FOUND, request_id, []))
        elif options.behaviour == "old" and version != b"\x01\x01":
            reply = http_response(
                ipp_response(b"\x01\x01", VERSION_NOT_SUPPORTED, request_id, []))
        elif options.behaviour == "other-group":
            body = ipp_response(version, 0, request_id, options.attribute)
            reply = http_response(body.replace(b"en\x04", b"en\x05"))
        else:
            for piece in hostile(options.behaviour):
                connection.sendall(piece)
            reply = http_response(ipp_response(version, 0, request_id, options.attribute))
        connection.sendall(reply)


def serve_quietly(connection, options):
    try:
        serve(connection, options)
    except OSError:
        pass


def accept(listener, options):
    while True:
        connection, _ = listener.accept()
        threading.Thread(target=serve_quietly, args=(connection, options), daemon=True).start()


def pair(text):
    name, _, value = text.partition("=")
    return name, value


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--name", required=True)
    parser.add_argument("--type", default="_ipp._tcp")
    parser.add_argument("--port", type=int, required=True)
    parser.add_argument("--txt", action="append", default=[])
    parser.add_argument("--behaviour", default="answers")
    parser.add_argument("--attribute", type=pair, action="append", default=[])
    parser.add_argument("--count", type=int, default=1)
    options = parser.parse_args()
    publishers = []
    for number in range(options.count):
        port = options.port + number
        name = options.name if options.count == 1 else f"{options.name} {number}"
        if options.behaviour != "closed":
            listener = socket.create_server(("", port))
            threading.Thread(target=accept, args=(listener, options), daemon=True).start()
        publishers.append(subprocess.Popen(
            ["setpriv", "--pdeathsig", "KILL", "avahi-publish", "-s", name, options.type,
             str(port), *options.txt],
            stdout=sys.stdout, stderr=sys.stdout))
    for publisher in publishers:
        publisher.wait()


if __name__ == "__main__":
    main()
