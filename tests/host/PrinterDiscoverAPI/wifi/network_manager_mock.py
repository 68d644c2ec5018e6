# SPDX-License-Identifier: Apache-2.0
"""A simulated NetworkManager whose scans take time and whose networks want pass phrases.

A template for python-dbusmock, over the one that comes with it. Networks are told, through the
interface org.freedesktop.DBus.Mock of the manager's object:

  AddAdapter      an adapter in a state, by its interface's name; returns its path
  AddNetwork      an access point of an adapter; returns its path. It is seen at once, after the next
                  scan ("scan"), or after a scan that asks for its name ("asked"), which it hides
  SetPassPhrase   what joining an access point takes, and what happens then: "join", "no address",
                  "hang", "gone" or, at once, "talkative", which refuses quoting what it was given;
                  by itself a network is joined without a pass phrase
  SetScans        what scans do: "work", "refused", "endless", "dropped" for one that another takes the
                  place of, whose end is heard, before they work, or, by the bus's policy or the service's
                  own, "denied" or "not permitted"
  SetScansOf      the same for one adapter
  SetOld          the service is one that cannot make profiles that last as long as the connection
  Joinings        the settings and options of the joinings so far
"""

import time

import dbus
from gi.repository import GLib

import dbusmock
from dbusmock import MOCK_IFACE
from dbusmock.templates import networkmanager as base
# A template's operations are what it holds.
from dbusmock.templates.networkmanager import *  # pylint: disable=wildcard-import,unused-wildcard-import

BUS_NAME = base.BUS_NAME
MAIN_OBJ = base.MAIN_OBJ
SYSTEM_BUS = True
IS_OBJECT_MANAGER = True

POINTS = "/org/freedesktop/NetworkManager/AccessPoint/"
STEP = 60  # milliseconds

DEVICE_DISCONNECTED, DEVICE_CONFIG, DEVICE_NEED_AUTH = 30, 50, 60
DEVICE_ADDRESS, DEVICE_ACTIVATED, DEVICE_FAILED = 70, 100, 120
ACTIVATING, ACTIVATED, DEACTIVATED = 1, 2, 4
REASON_NONE, REASON_NO_ADDRESS, REASON_NO_SECRETS = 0, 5, 7
REASON_DISCONNECTED, REASON_NAME_NOT_FOUND = 8, 53

state = {
    "scans": "work",
    "scans_of": {},    # path of an adapter: what its own do
    "old": False,
    "networks": {},    # path: (pass phrase, outcome)
    "waiting": [],     # (adapter, path, when, name, properties)
    "joinings": [],
    "volatile": set(), # paths of profiles that last as long as their connection
    "count": 0,
}


def problem(name, text):
    return dbus.exceptions.DBusException(text, name=name)


def load(mock, parameters):
    parameters["Version"] = "1.42.4"
    base.load(mock, parameters)
    manager = dbusmock.get_object(base.MANAGER_OBJ)
    manager.join_new = join_new
    manager.join_saved = join_saved
    manager.leave = leave
    manager.AddMethod(base.MANAGER_IFACE, "AddAndActivateConnection", "a{sa{sv}}oo", "oo",
                      "ret = self.join_new(args[0], args[1], args[2], None)[:2]")
    manager.AddMethod(base.MANAGER_IFACE, "AddAndActivateConnection2", "a{sa{sv}}ooa{sv}",
                      "ooa{sv}", "ret = self.join_new(args[0], args[1], args[2], args[3])")
    manager.AddMethod(base.MANAGER_IFACE, "ActivateConnection", "ooo", "o",
                      "ret = self.join_saved(args[0], args[1], args[2])")
    manager.AddMethod(base.MANAGER_IFACE, "DeactivateConnection", "o", "", "self.leave(args[0])")


# --- what a test tells it -------------------------------------------------------------------------

@dbus.service.method(MOCK_IFACE, in_signature="si", out_signature="s")
def AddAdapter(self, interface, device_state):
    path = self.AddWiFiDevice(interface, interface, device_state)
    adapter = dbusmock.get_object(path)
    adapter.AddProperty(base.WIRELESS_DEVICE_IFACE, "LastScan", dbus.Int64(-1))
    adapter.AddProperty(base.WIRELESS_DEVICE_IFACE, "ActiveAccessPoint", dbus.ObjectPath("/"))
    adapter.scan = scan
    adapter.AddMethod(base.WIRELESS_DEVICE_IFACE, "RequestScan", "a{sv}", "",
                      "self.scan(self, args[0])")
    return path


@dbus.service.method(MOCK_IFACE, in_signature="ssaysuyuuu", out_signature="s")
def AddNetwork(self, adapter, when, name, address, mode, strength, flags, wpa, rsn):
    state["count"] += 1
    path = POINTS + str(state["count"])
    shown = dbus.ByteArray(b"" if when == "asked" else bytes(name))
    properties = {"Ssid": shown, "HwAddress": address, "Flags": dbus.UInt32(flags),
                  "LastSeen": dbus.Int32(1), "Frequency": dbus.UInt32(2437),
                  "MaxBitrate": dbus.UInt32(54000), "Mode": dbus.UInt32(mode),
                  "RsnFlags": dbus.UInt32(rsn), "WpaFlags": dbus.UInt32(wpa),
                  "Strength": dbus.Byte(strength)}
    state["networks"][path] = ("", "join")
    if when == "scan":
        state["waiting"].append((adapter, path, when, bytes(name), properties))
        return path
    show(self, adapter, path, properties)
    if when == "asked":
        state["waiting"].append((adapter, path, when, bytes(name), properties))
    return path


@dbus.service.method(MOCK_IFACE, in_signature="sss", out_signature="")
def SetPassPhrase(_self, path, pass_phrase, outcome):
    state["networks"][path] = (pass_phrase, outcome)


@dbus.service.method(MOCK_IFACE, in_signature="s", out_signature="")
def SetScans(_self, outcome):
    state["scans"] = outcome


@dbus.service.method(MOCK_IFACE, in_signature="ss", out_signature="")
def SetScansOf(_self, adapter, outcome):
    state["scans_of"][adapter] = outcome


@dbus.service.method(MOCK_IFACE, in_signature="b", out_signature="")
def SetOld(_self, old):
    state["old"] = bool(old)


@dbus.service.method(MOCK_IFACE, in_signature="", out_signature="a(a{sa{sv}}a{sv})")
def Joinings(_self):
    return state["joinings"]


# Tells of changes, too; for all types of value.
def change(path, interface, properties):
    changed = dbusmock.get_object(path)
    changed.props[interface].update(properties)
    changed.EmitSignal(dbus.PROPERTIES_IFACE, "PropertiesChanged", "sa{sv}as", [
        interface, dbus.Dictionary(properties, signature="sv"), dbus.Array([], signature="s")])


# --- scans ----------------------------------------------------------------------------------------

def show(manager, adapter, path, properties):
    manager.AddObject(path, base.ACCESS_POINT_IFACE, properties, [])
    manager.object_manager_emit_added(path)
    device = dbusmock.get_object(adapter)
    device.access_points.append(path)
    paths = dbus.Array(device.access_points, signature="o")
    change(adapter, base.WIRELESS_DEVICE_IFACE, {"AccessPoints": paths})
    device.EmitSignal(base.WIRELESS_DEVICE_IFACE, "AccessPointAdded", "o", [path])


def scan(adapter, options):
    outcome = state["scans_of"].get(adapter.path, state["scans"])
    if outcome == "refused":
        raise problem("org.freedesktop.NetworkManager.Device.NotAllowed",
                      "Scanning not allowed immediately following previous scan")
    if outcome == "denied":
        raise problem("org.freedesktop.DBus.Error.AccessDenied", "Rejected send message")
    if outcome == "not permitted":
        raise problem("org.freedesktop.NetworkManager.PermissionDenied", "Insufficient privileges")
    asked = [bytes(name) for name in options.get("ssids", [])]
    if outcome == "dropped":
        state["scans"] = "work"
        asked = []
    if outcome in ("work", "dropped"):
        GLib.timeout_add(3 * STEP, end_scan, adapter, asked)


def end_scan(adapter, asked):
    manager = dbusmock.get_object(base.MANAGER_OBJ)
    still = []
    for waiting in state["waiting"]:
        device, path, when, name, properties = waiting
        if device != adapter.path or (when == "asked" and name not in asked):
            still.append(waiting)
        elif when == "asked":
            change(path, base.ACCESS_POINT_IFACE, {"Ssid": dbus.ByteArray(name)})
        else:
            show(manager, device, path, properties)
    state["waiting"] = still
    now = int(time.clock_gettime(time.CLOCK_BOOTTIME) * 1000)
    change(adapter.path, base.WIRELESS_DEVICE_IFACE, {"LastScan": dbus.Int64(now)})
    return False


# --- joining --------------------------------------------------------------------------------------

def to_device_state(adapter, new, reason):
    device = dbusmock.get_object(adapter)
    old = device.Get(base.DEVICE_IFACE, "State")
    change(adapter, base.DEVICE_IFACE, {
        "State": dbus.UInt32(new),
        "StateReason": dbus.Struct((dbus.UInt32(new), dbus.UInt32(reason)), signature="uu")})
    device.EmitSignal(base.DEVICE_IFACE, "StateChanged", "uuu",
                      [dbus.UInt32(new), old, dbus.UInt32(reason)])


def join_new(settings, adapter, point, options):
    manager = dbusmock.get_object(base.MANAGER_OBJ)
    if options is not None and state["old"]:
        raise problem("org.freedesktop.DBus.Error.UnknownMethod", "No such method")
    state["joinings"].append((settings, dbus.Dictionary(options or {}, signature="sv")))
    if "id" not in settings["connection"]:
        raise problem("org.freedesktop.NetworkManager.Settings.Connection.MissingProperty", "id")
    given = settings.get("802-11-wireless-security", {}).get("psk", "")
    if state["networks"][point][1] == "talkative":
        raise problem("org.freedesktop.NetworkManager.InvalidConnection",
                      f"psk: '{given}' is not good, not good at all is '{given}'")
    profile = manager.SettingsAddConnection(settings)
    if (options or {}).get("persist") == "volatile":
        state["volatile"].add(str(profile))
    active = join(manager, profile, adapter, point, given)
    return (profile, active, dbus.Dictionary({}, signature="sv"))


# A saved profile knows the pass phrase.
def join_saved(profile, adapter, point):
    manager = dbusmock.get_object(base.MANAGER_OBJ)
    if profile not in dbusmock.mockobject.objects:
        raise problem("org.freedesktop.NetworkManager.UnknownConnection", "Connection not found")
    if point == "/":
        point = point_for(adapter, profile)
    return join(manager, profile, adapter, point, state["networks"][point][0])


# The access point of that adapter that has the profile's name.
def point_for(adapter, profile):
    name = bytes(dbusmock.get_object(profile).settings["802-11-wireless"]["ssid"])
    for path in dbusmock.get_object(adapter).access_points:
        if bytes(dbusmock.get_object(path).Get(base.ACCESS_POINT_IFACE, "Ssid")) == name:
            return path
    raise problem("org.freedesktop.NetworkManager.UnknownDevice", "No suitable device found")


def join(manager, profile, adapter, point, given):
    before = dbusmock.get_object(adapter).Get(base.DEVICE_IFACE, "ActiveConnection")
    if before in dbusmock.mockobject.objects:
        end(before)
    state["count"] += 1
    active = f"/org/freedesktop/NetworkManager/ActiveConnection/{state['count']}"
    settings = dbusmock.get_object(profile).settings
    manager.AddObject(active, base.ACTIVE_CONNECTION_IFACE, {
        "Devices": dbus.Array([dbus.ObjectPath(adapter)], signature="o"), "Default": False,
        "Default6": False, "Type": "802-11-wireless", "Vpn": False,
        "Connection": dbus.ObjectPath(profile), "Master": dbus.ObjectPath("/"),
        "SpecificObject": dbus.ObjectPath(point), "Uuid": settings["connection"]["uuid"],
        "State": dbus.UInt32(ACTIVATING), "Id": settings["connection"]["id"]}, [])
    manager.object_manager_emit_added(active)
    set_active(adapter, active, point)
    to_device_state(adapter, DEVICE_CONFIG, REASON_NONE)
    GLib.timeout_add(STEP, decide, adapter, active, point, given)
    return dbus.ObjectPath(active)


def set_active(adapter, active, point):
    change(adapter, base.DEVICE_IFACE, {"ActiveConnection": dbus.ObjectPath(active)})
    change(adapter, base.WIRELESS_DEVICE_IFACE, {"ActiveAccessPoint": dbus.ObjectPath(point)})
    paths = dbus.Array([dbus.ObjectPath(active)] if active != "/" else [], signature="o")
    change(base.MANAGER_OBJ, base.MANAGER_IFACE, {"ActiveConnections": paths})


def decide(adapter, active, point, given):
    if active not in dbusmock.mockobject.objects:
        return False
    wanted, outcome = state["networks"][point]
    if given != wanted:
        to_device_state(adapter, DEVICE_NEED_AUTH, REASON_DISCONNECTED)
        GLib.timeout_add(STEP, fail, adapter, active, REASON_NO_SECRETS)
    elif outcome == "no address":
        to_device_state(adapter, DEVICE_ADDRESS, REASON_NONE)
        GLib.timeout_add(STEP, fail, adapter, active, REASON_NO_ADDRESS)
    elif outcome == "gone":
        fail(adapter, active, REASON_NAME_NOT_FOUND)
    elif outcome == "join":
        to_device_state(adapter, DEVICE_ACTIVATED, REASON_NONE)
        change(active, base.ACTIVE_CONNECTION_IFACE, {"State": dbus.UInt32(ACTIVATED)})
    return False


def fail(adapter, active, reason):
    if active in dbusmock.mockobject.objects:
        to_device_state(adapter, DEVICE_FAILED, reason)
        leave(active)
    return False


def leave(active):
    connection = dbusmock.get_object(active)
    change(active, base.ACTIVE_CONNECTION_IFACE, {"State": dbus.UInt32(DEACTIVATED)})
    adapter = connection.Get(base.ACTIVE_CONNECTION_IFACE, "Devices")[0]
    to_device_state(adapter, DEVICE_DISCONNECTED, REASON_NONE)
    end(active)


def end(active):
    manager = dbusmock.get_object(base.MANAGER_OBJ)
    connection = dbusmock.get_object(active)
    profile = connection.Get(base.ACTIVE_CONNECTION_IFACE, "Connection")
    set_active(connection.Get(base.ACTIVE_CONNECTION_IFACE, "Devices")[0], "/", "/")
    manager.object_manager_emit_removed(active)
    manager.RemoveObject(active)
    if profile in state["volatile"]:
        state["volatile"].remove(profile)
        kept = dbusmock.get_object(profile)
        kept.ConnectionDelete(kept)
