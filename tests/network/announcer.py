# SPDX-License-Identifier: Apache-2.0
"""Announces services by mDNS as one chooses, from any address of its network; serves printers.

usage: announcer.py --network INTERFACE_ADDRESS < COMMANDS

One JSON object a line, for example
  {"name": "Laser", "host": "laser", "address": "10.99.0.7", "port": 9000, "txt": ["UUID=..."]}
Keys left out of the record are not announced: without "port" there is no SRV record. "type" is
_ipp._tcp unless it is given; "bare": true says no more than what is asked for; "count": N announces
N of it, with a number after name, host (when "hosts" is true), and port. "serve": BEHAVIOUR of
fake_printer.py serves each port at its address, with "attributes", in which {} stands for the number.
"pace": N announces N a second, for ever. "repeat": N announces it again every N seconds, as printers
do at first, for a busy receiver loses packets. An address that the host does not have yet is added to its
interface. Answers "ready" to each line.
"""

import argparse
import json
import resource
import selectors
import socket
import struct
import subprocess
import sys
import threading
import time
import types

import fake_printer

GROUP, PORT = "224.0.0.251", 5353
A, PTR, TXT, SRV = 1, 12, 16, 33
FLUSH = 0x8000
TRUNCATED = 0x0200  # more of what the asker knows follows


def encoded_name(labels):
    return b"".join(bytes([len(label)]) + label for label in labels) + b"\0"


def labels_of(dotted):
    return [label.encode() for label in dotted.split(".")]


def record(name, kind, data, unique=True):
    rrclass = 1 | (FLUSH if unique else 0)
    return encoded_name(name) + struct.pack(">HHIH", kind, rrclass, 4500, len(data)) + data


class Instance:
    def __init__(self, spec, number):
        shown = "" if number is None else f" {number}"
        suffix = "" if number is None else f"-{number}"
        self.name = (spec["name"] + shown).encode()
        self.type = labels_of(spec.get("type", "_ipp._tcp") + ".local")
        self.full = [self.name, *self.type]
        host = spec.get("host", "announcer") + (suffix if spec.get("hosts") else "")
        self.host = labels_of(host + ".local")
        self.address = spec.get("address")
        self.port = None if "port" not in spec else spec["port"] + (number or 0)
        self.bare = spec.get("bare", False)
        self.txt = [entry.replace("{}", str(number)) for entry in spec.get("txt", [])]

    def pointer(self):
        return record(self.type, PTR, encoded_name(self.full), unique=False)

    def announced(self):
        return [self.pointer()] if self.bare else [self.pointer(), *self.rest()]

    def rest(self):
        records = []
        if self.port is not None:
            records.append(record(self.full, SRV, struct.pack(">HHH", 0, 0, self.port)
                                  + encoded_name(self.host)))
            text = b"".join(bytes([len(entry)]) + entry
                            for entry in (entry.encode() for entry in self.txt)) or b"\0"
            records.append(record(self.full, TXT, text))
        if self.address is not None:
            records.append(record(self.host, A, socket.inet_aton(self.address)))
        return records


class Responder:
    def __init__(self, interface):
        self.lock = threading.Lock()
        self.instances = []
        self.by_name = {}
        self.begun = {}  # questions of which more follows, by who asks
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEPORT, 1)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 22)
        self.socket.bind(("", PORT))
        membership = socket.inet_aton(GROUP) + socket.inet_aton(interface)
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP, membership)
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF,
                               socket.inet_aton(interface))
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_TTL, 255)
        threading.Thread(target=self.answer, daemon=True).start()

    def add(self, instance):
        with self.lock:
            self.instances.append(instance)
            key = b".".join(instance.full).lower()
            self.by_name.setdefault(key, []).append(instance)
            host = b".".join(instance.host).lower()
            self.by_name.setdefault(host, [instance])

    def send(self, answers):
        """As many packets as it takes, no faster than a receiver takes them: it has little room."""
        packet, count = b"", 0
        for answer in answers:
            if packet and len(packet) + len(answer) > 1300:
                self.send_packet(packet, count)
                packet, count = b"", 0
            packet, count = packet + answer, count + 1
        if packet:
            self.send_packet(packet, count)

    def send_packet(self, packet, count):
        self.socket.sendto(struct.pack(">HHHHHH", 0, 0x8400, 0, count, 0, 0) + packet,
                           (GROUP, PORT))
        time.sleep(0.002)

    def announce(self, instances):
        self.send(answer for instance in instances for answer in instance.announced())

    def answer(self):
        while True:
            data, sender = self.socket.recvfrom(9000)
            try:
                self.answer_to(data, sender)
            except (IndexError, struct.error):
                pass

    def answer_to(self, data, sender):
        _, flags, questions, known, _, _ = struct.unpack(">HHHHHH", data[:12])
        if flags & 0x8000:
            return
        wanted, told = self.begun.pop(sender, ([], set()))
        offset = 12
        for _ in range(questions):
            name, offset = read_name(data, offset)
            wanted.append((name, struct.unpack(">H", data[offset:offset + 2])[0]))
            offset += 4
        for _ in range(known):
            name, offset = read_name(data, offset)
            kind, _, _, length = struct.unpack(">HHIH", data[offset:offset + 10])
            told.add(read_name(data, offset + 10)[0] if kind == PTR else (name, kind))
            offset += 10 + length
        if flags & TRUNCATED:
            self.begun[sender] = (wanted, told)
            return
        answers = []
        with self.lock:
            for name, kind in wanted:
                if kind == PTR:
                    chosen = [i for i in self.instances if b".".join(i.type).lower() == name
                              and b".".join(i.full).lower() not in told]
                    answers += [r for i in chosen for r in i.announced()]
                elif (name, kind) not in told:
                    answers += [r for i in self.by_name.get(name, []) for r in i.rest()]
        self.send(answers)


def read_name(data, offset):
    labels, end = [], None
    for _ in range(128):
        length = data[offset]
        if length >= 0xC0:
            end = end or offset + 2
            offset = struct.unpack(">H", data[offset:offset + 2])[0] & 0x3FFF
        elif length == 0:
            return b".".join(labels).lower(), end or offset + 1
        else:
            labels.append(data[offset + 1:offset + 1 + length])
            offset += 1 + length
    raise IndexError


class Printers:
    """All printers that answer, on one thread: many of them cost this computer next to nothing."""

    def __init__(self):
        self.ready = selectors.DefaultSelector()
        self.thread = None

    def add(self, address, port, attributes):
        listener = socket.create_server((address, port), backlog=128)
        listener.setblocking(False)
        answer = fake_printer.ipp_response(b"", 0, b"", attributes)
        self.ready.register(listener, selectors.EVENT_READ, (self.accept, answer))
        if self.thread is None:
            self.thread = threading.Thread(target=self.serve, daemon=True)
            self.thread.start()

    def serve(self):
        while True:
            for key, _ in self.ready.select():
                act, *details = key.data
                try:
                    act(key.fileobj, *details)
                except OSError:
                    self.close(key.fileobj)

    def close(self, connection):
        self.ready.unregister(connection)
        connection.close()

    def accept(self, listener, answer):
        try:
            connection, _ = listener.accept()
        except BlockingIOError:
            return
        self.ready.register(connection, selectors.EVENT_READ, (self.read, answer, bytearray()))

    def read(self, connection, answer, data):
        more = connection.recv(65536)
        data += more
        head, end, body = bytes(data).partition(b"\r\n\r\n")
        if not more:
            self.close(connection)
        elif end and len(body) >= length_in(head):
            status, rest = answer[:2], answer[2:]
            data.clear()
            connection.sendall(fake_printer.http_response(body[0:2] + status + body[4:8] + rest))


def length_in(head):
    """What an HTTP header says about the length of what follows."""
    for line in head.lower().split(b"\r\n"):
        name, _, value = line.partition(b":")
        if name == b"content-length":
            return int(value)
    return 0


def serve(address, port, options):
    listener = socket.create_server((address, port), backlog=128)
    while True:
        connection, _ = listener.accept()
        threading.Thread(target=fake_printer.serve_quietly, args=(connection, options),
                         daemon=True).start()


def have_address(address):
    unicast = not address.startswith("127.") and 0 < int(address.split(".")[0]) < 224
    if unicast:
        subprocess.run(["ip", "addr", "add", address + "/24", "dev", "lab0"], check=False,
                       stderr=subprocess.DEVNULL)


def obey(responder, printers, spec):
    count = spec.get("count")
    numbers = [None] if count is None else range(spec.get("from", 1), spec.get("from", 1) + count)
    instances = [Instance(spec, number) for number in numbers]
    if "serve" in spec:
        have_address(spec["address"])
        for number, instance in zip(numbers, instances):
            attributes = [fake_printer.pair(text.replace("{}", str(number)))
                          for text in spec.get("attributes", [])]
            if spec["serve"] == "answers":
                printers.add(instance.address, instance.port, attributes)
                continue
            options = types.SimpleNamespace(behaviour=spec["serve"], attribute=attributes)
            threading.Thread(target=serve, args=(instance.address, instance.port, options),
                             daemon=True).start()
    for instance in instances:
        responder.add(instance)
    responder.announce(instances)
    if "repeat" in spec:
        threading.Thread(target=repeat, args=(responder, instances, spec["repeat"]),
                         daemon=True).start()
    if "pace" in spec:
        threading.Thread(target=flood, args=(responder, spec), daemon=True).start()


def repeat(responder, instances, seconds):
    while True:
        time.sleep(seconds)
        responder.announce(instances)


def flood(responder, spec):
    number, begin = 1, time.monotonic()
    while True:
        due = int((time.monotonic() - begin) * spec["pace"])
        fresh = [Instance(spec, i) for i in range(number, due + 1)]
        number = max(number, due + 1)
        responder.announce(fresh)
        time.sleep(0.05)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--network", required=True)
    options = parser.parse_args()
    resource.setrlimit(resource.RLIMIT_NOFILE, (resource.getrlimit(resource.RLIMIT_NOFILE)[1],) * 2)
    threading.stack_size(256 << 10)
    responder, printers = Responder(options.network), Printers()
    for line in sys.stdin:
        obey(responder, printers, json.loads(line))
        print("ready", flush=True)


if __name__ == "__main__":
    main()
