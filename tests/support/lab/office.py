# SPDX-License-Identifier: Apache-2.0
"""An office's Wi-Fi and a new printer beside it, on the network that scripts/lab-network made.

The network there is first the printer's own; when everybody has moved it is the office's, where
both sides have other addresses. The environment names WIFI_PRINTER and NETWORK_MANAGER_MOCK.
"""

import os
import re
import socket
import socketserver
import subprocess
import threading
import time

from lab import LAB, PATIENCE, Lines, lab, network_manager_property

PRINTER = os.environ["WIFI_PRINTER"]
MOCK = os.environ["NETWORK_MANAGER_MOCK"]

NM = "/org/freedesktop/NetworkManager"
DISCONNECTED, ACTIVATED = 30, 100
PRIVACY, INFRASTRUCTURE, PSK = 1, 2, 0x100
THERE, OFFICE = "10.99.0.", "10.98.0."
BOTH = PRINTERS_SIDE, HOSTS_SIDE = ("run-beside-printers", "1"), ("run", "2")


class HostWifi:
    """A simulated NetworkManager whose networks want pass phrases, with one adapter."""

    def __init__(self):
        self.process = subprocess.Popen(
            ["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", MOCK],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + PATIENCE
        while self._call("org.freedesktop.NetworkManager.GetDevices").returncode != 0:
            assert time.monotonic() < deadline, "the simulated NetworkManager does not answer"
            time.sleep(0.02)
        self.points = 0
        self.paths = {}
        self.adapter = self._tell("AddAdapter", "string:lab0", f"int32:{DISCONNECTED}")

    @staticmethod
    def _call(method, *arguments):
        return subprocess.run(
            ["dbus-send", "--system", "--print-reply=literal",
             "--dest=org.freedesktop.NetworkManager", NM, method, *arguments], check=False,
            capture_output=True, text=True, timeout=PATIENCE)

    def _tell(self, method, *arguments):
        answer = self._call("org.freedesktop.DBus.Mock." + method, *arguments)
        assert answer.returncode == 0, answer.stderr
        return answer.stdout.strip()

    def have_network(self, name, signal, pass_phrase="", outcome="join"):
        self.points += 1
        digits = ",".join(str(byte) for byte in name.encode())
        point = self._tell(
            "AddNetwork", "string:" + self.adapter, "string:now", "array:byte:" + digits,
            f"string:00:11:22:33:44:{self.points:02X}", f"uint32:{INFRASTRUCTURE}",
            f"byte:{signal}", f"uint32:{PRIVACY if pass_phrase else 0}", "uint32:0",
            f"uint32:{PSK if pass_phrase else 0}")
        self.paths[name] = point
        self._tell("SetPassPhrase", "string:" + point, "string:" + pass_phrase,
                   "string:" + outcome)

    def let_scans(self, outcome):
        """What scans do from now on, in the simulated service's words."""
        self._tell("SetScans", "string:" + outcome)

    def joinings(self):
        """The pass phrases of the attempts so far; nothing for an open network."""
        said = self._tell("Joinings")
        return [(re.findall(r"\bpsk\s+variant\s+(.*?)\s*\)", attempt) or [""])[0]
                for attempt in said.split("struct {")[1:]]

    def joined(self):
        """The network that the host is joined to; nothing while it is joined to none."""
        device = "org.freedesktop.NetworkManager.Device"
        state = network_manager_property(self.adapter, device, "State")
        point = network_manager_property(self.adapter, device + ".Wireless", "ActiveAccessPoint")
        names = [name for name, path in self.paths.items() if path == point]
        return names[0] if names and state == str(ACTIVATED) else None

    def await_joined(self, name):
        deadline = time.monotonic() + PATIENCE
        while self.joined() != name:
            assert time.monotonic() < deadline, f"joined to {self.joined()}, not to {name}"
            time.sleep(0.05)

    def leave(self):
        """What happens when the network that the host is joined to is closed."""
        active = self._call("org.freedesktop.DBus.Properties.Get",
                            "string:org.freedesktop.NetworkManager", "string:ActiveConnections")
        path = re.search(NM + r"/ActiveConnection/\d+", active.stdout)[0]
        answer = self._call("org.freedesktop.NetworkManager.DeactivateConnection",
                            "objpath:" + path)
        assert answer.returncode == 0, answer.stderr

    def forget(self, name):
        """The network is gone, and the host is in it no longer."""
        self.leave()
        self._tell("RemoveAccessPoint", "string:" + self.adapter, "string:" + self.paths[name])

    def end(self):
        self.process.kill()
        self.process.wait()


def new_printer(folder, network, *arguments):
    """A printer that waits to be put on a network it sees, given as NAME=PASS-PHRASE."""
    return Lines([LAB, "run-beside-printers", "unshare", "-u", PRINTER, folder, "0.0.0.0",
                  "--network", network, *arguments])


class _Passage(socketserver.BaseRequestHandler):
    def handle(self):
        with socket.create_connection((THERE + "1", 631)) as printer:
            passages = [threading.Thread(target=self.copy, args=ends, daemon=True)
                        for ends in ((self.request, printer), (printer, self.request))]
            for passage in passages:
                passage.start()
            for passage in passages:
                passage.join()

    @staticmethod
    def copy(source, sink):
        try:
            while data := source.recv(65536):
                sink.sendall(data)
            sink.shutdown(socket.SHUT_WR)
        except OSError:  # one of them has gone
            pass


class Bridge(socketserver.ThreadingTCPServer):
    """What makes the printer, which is on USB, reachable on this host."""
    allow_reuse_address = True
    daemon_threads = True

    def __init__(self):
        super().__init__(("127.0.0.1", 60000), _Passage)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def end(self):
        self.shutdown()
        self.server_close()


def move(side, host, old, new):
    """One side has left the network of the old addresses for that of the new."""
    # In this order, lest the device is without an address and forgets its routes.
    lab(side, "ip", "addr", "add", f"{new}{host}/24", "dev", "lab0")
    lab(side, "ip", "addr", "del", f"{old}{host}/24", "dev", "lab0")


def announced():
    """The printer is on the office's network, and says so there."""
    announcement = Lines(
        [LAB, "run-beside-printers", "setpriv", "--pdeathsig", "KILL", "stdbuf", "-oL", "-eL",
         "sh", "-c", "exec avahi-publish -s Radio _ipp._tcp 631 rp=ipp/print 2>&1"])
    announcement.await_line("Established under name 'Radio'")
    return announcement
