# SPDX-License-Identifier: Apache-2.0
"""A printer in its own network, or behind a bridge for USB, that behaves as a test wants it to. Writes one line an event:
"ready", "given NAME PASS-PHRASE tls|plain" in hexadecimal digits, "vanishes".

usage: fake_wifi_printer.py [--address ADDRESS] [--port PORT] [--behaviour BEHAVIOUR]
                            [--certificate FILE] [--state NUMBER] [--network NAME]
                            [--without-tls BEHAVIOUR] [--over-tls BEHAVIOUR]
                            [--serial NUMBER] [--model NAME] [--uuid UUID]
                            [--wakes-after SECONDS]

behaviours: joins (default), hesitates (keeps its old state and network for a moment, then joins),
stays (takes the settings, and keeps its state and network), leaves (goes when it has taken them,
without an answer), ignores, talkative (refuses, and says what it was given),
wants-password, forbids, not-authorized, no-wifi, silent, vanishes (describes itself once, after a
moment, and is not there for more), and those of fake_printer's `hostile`. With a certificate it also takes TLS, and says so. Who does not
speak TLS is answered, too, unless that behaviour is another: closes, waits (for TLS to begin), or
late (answers, after 0.7 s). Over TLS it answers, or waits: never begins it. It may say nothing for
some seconds after it was spoken to first.
"""

import argparse
import socket
import ssl
import struct
import threading
import time

from fake_printer import attribute, hostile, http_response, ipp_response, read_request

GET_PRINTER_ATTRIBUTES, SET_PRINTER_ATTRIBUTES = 0x000B, 0x0013
OK, IGNORED, NOT_AUTHORIZED, NOT_SUPPORTED = 0x0000, 0x0001, 0x0403, 0x040B
BEGINS_GROUP, ENUM, TEXT, NAME, URI = 0x10, 0x23, 0x41, 0x42, 0x45
ON = 8


class Printer:
    def __init__(self, options):
        self.options = options
        self.state = options.state
        self.network = options.network.encode()
        self.awake = None

    def wake(self):
        """Comes back when it is awake."""
        if self.awake is None:
            self.awake = time.monotonic() + self.options.wakes_after
        time.sleep(max(0, self.awake - time.monotonic()))

    def attributes(self):
        return self.identity() + self.wifi()

    def identity(self):
        known = ((TEXT, "printer-serial-number", self.options.serial),
                 (TEXT, "printer-make-and-model", self.options.model),
                 (URI, "printer-uuid", self.options.uuid and "urn:uuid:" + self.options.uuid))
        return b"".join(attribute(tag, name, text.encode()) for tag, name, text in known if text)

    def wifi(self):
        if self.options.behaviour == "no-wifi":
            return b""
        uris = [b"ipp://printer/ipp/print"]
        if self.options.certificate:
            uris.append(b"ipps://printer/ipp/print")
        return (attribute(ENUM, "printer-wifi-state", struct.pack(">i", self.state))
                + attribute(NAME, "printer-wifi-ssid", self.network)
                + b"".join(attribute(URI, "" if i else "printer-uri-supported", uri)
                           for i, uri in enumerate(uris)))

    def take(self, settings):
        """What a printer does that was told to join a network."""
        if self.options.behaviour == "hesitates":
            time.sleep(1.5)
        if self.options.behaviour != "stays":
            self.network = settings["printer-wifi-ssid"]
            self.state = ON


def settings_in(request):
    """The attributes of a request, each with its last value."""
    found, at = {}, 8
    while at < len(request) and request[at] != 3:
        if request[at] < BEGINS_GROUP:
            at += 1
            continue
        length = struct.unpack_from(">H", request, at + 1)[0]
        name = request[at + 3:at + 3 + length].decode()
        at += 3 + length
        length = struct.unpack_from(">H", request, at)[0]
        found[name] = request[at + 2:at + 2 + length]
        at += 2 + length
    return found


def answer(printer, request, over_tls):
    behaviour = printer.options.behaviour
    version, request_id = request[0:2], request[4:8]
    operation = struct.unpack_from(">H", request, 2)[0]
    status, message, attributes = OK, b"", printer.attributes()
    if operation == SET_PRINTER_ATTRIBUTES:
        settings = settings_in(request)
        print("given", settings["printer-wifi-ssid"].hex() or "-",
              settings["printer-wifi-password"].hex() or "-", "tls" if over_tls else "plain",
              flush=True)
        if behaviour == "leaves":
            printer.options.behaviour = "silent"
            time.sleep(3600)
        if behaviour == "wants-password":
            return http_response(b"", "401 Unauthorized", ['WWW-Authenticate: Basic realm="x"'])
        if behaviour == "forbids":
            return http_response(b"", "403 Forbidden")
        status = {"ignores": IGNORED, "not-authorized": NOT_AUTHORIZED,
                  "talkative": NOT_SUPPORTED}.get(behaviour, OK)
        if behaviour == "talkative":
            secret = settings["printer-wifi-password"]
            message = attribute(TEXT, "status-message", b"not '" + secret + b"', not " + secret)
        attributes = b""
        if status == OK:
            threading.Thread(target=printer.take, args=(settings,), daemon=True).start()
    body = ipp_response(version, status, request_id, [])
    return http_response(body[:-2] + message + body[-2:-1] + attributes + body[-1:])


def serve(connection, listener, printer, certificate):
    printer.wake()
    over_tls = certificate is not None and connection.recv(1, socket.MSG_PEEK) == b"\x16"
    if over_tls:
        if printer.options.over_tls == "waits":
            time.sleep(3600)
        connection = certificate.wrap_socket(connection, server_side=True)
    elif printer.options.without_tls == "waits":
        time.sleep(3600)
    elif printer.options.without_tls == "closes":
        connection.close()
        return
    elif printer.options.without_tls == "late":
        time.sleep(0.7)
    if printer.options.behaviour == "silent":
        connection.recv(1 << 20)
        time.sleep(3600)
    while (request := read_request(connection)) is not None:
        for piece in hostile(printer.options.behaviour):
            connection.sendall(piece)
        reply = answer(printer, request, over_tls)
        if printer.options.behaviour == "vanishes":
            listener.shutdown(socket.SHUT_RDWR)
            print("vanishes", flush=True)
            time.sleep(1)
        connection.sendall(reply)


def serve_quietly(*arguments):
    try:
        serve(*arguments)
    except OSError:
        pass


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--address", default="")
    parser.add_argument("--port", type=int, default=631)
    parser.add_argument("--behaviour", default="joins")
    parser.add_argument("--certificate")
    parser.add_argument("--state", type=int, default=4)
    parser.add_argument("--network", default="")
    parser.add_argument("--without-tls", choices=["answers", "closes", "waits", "late"],
                        default="answers")
    parser.add_argument("--over-tls", choices=["answers", "waits"], default="answers")
    parser.add_argument("--serial")
    parser.add_argument("--model")
    parser.add_argument("--uuid")
    parser.add_argument("--wakes-after", type=float, default=0)
    options = parser.parse_args()
    certificate = None
    if options.certificate:
        certificate = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        certificate.load_cert_chain(options.certificate)
    printer = Printer(options)
    listener = socket.create_server((options.address, options.port))
    print("ready", flush=True)
    while True:
        try:
            connection, _ = listener.accept()
        except OSError:
            time.sleep(3600)
        threading.Thread(target=serve_quietly, args=(connection, listener, printer, certificate),
                         daemon=True).start()


if __name__ == "__main__":
    main()
