#!/usr/bin/env python3
"""A stand-in for the desktop's settings portal on the session bus.

settings_portal.py SCHEME owns org.freedesktop.portal.Desktop and answers
org.freedesktop.portal.Settings Read, ReadOne and ReadAll for
org.freedesktop.appearance color-scheme (0 no preference, 1 dark, 2 light),
starting at SCHEME. Each SIGUSR1 flips it between dark and light and emits
SettingChanged, as a desktop does when the user changes the preference.
"""

import signal
import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
SETTINGS = "org.freedesktop.portal.Settings"
NAMESPACE = "org.freedesktop.appearance"
KEY = "color-scheme"

INTERFACE = Gio.DBusNodeInfo.new_for_xml(f"""
<node>
  <interface name="{SETTINGS}">
    <method name="ReadAll">
      <arg type="as" name="namespaces" direction="in"/>
      <arg type="a{{sa{{sv}}}}" name="value" direction="out"/>
    </method>
    <method name="Read">
      <arg type="s" name="namespace" direction="in"/>
      <arg type="s" name="key" direction="in"/>
      <arg type="v" name="value" direction="out"/>
    </method>
    <method name="ReadOne">
      <arg type="s" name="namespace" direction="in"/>
      <arg type="s" name="key" direction="in"/>
      <arg type="v" name="value" direction="out"/>
    </method>
    <signal name="SettingChanged">
      <arg type="s" name="namespace"/>
      <arg type="s" name="key"/>
      <arg type="v" name="value"/>
    </signal>
    <property name="version" type="u" access="read"/>
  </interface>
</node>""").interfaces[0]

scheme = int(sys.argv[1]) if len(sys.argv) > 1 else 1
connection = None


def method_call(conn, sender, path, interface, method, parameters, invocation):
    if method == "ReadAll":
        wanted = parameters.unpack()[0]
        found = {}
        if not wanted or NAMESPACE in wanted or "" in wanted:
            found[NAMESPACE] = {KEY: GLib.Variant("u", scheme)}
        invocation.return_value(GLib.Variant("(a{sa{sv}})", (found,)))
        return
    namespace, key = parameters.unpack()
    if (namespace, key) != (NAMESPACE, KEY):
        invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "Requested setting not found")
        return
    value = GLib.Variant("u", scheme)
    # Read wraps the value in a second variant; ReadOne does not.
    invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", value) if method == "Read" else value,)))


def get_property(conn, sender, path, interface, name):
    return GLib.Variant("u", 2)


def flip():
    global scheme
    scheme = 2 if scheme == 1 else 1
    connection.emit_signal(None, PATH, SETTINGS, "SettingChanged",
                           GLib.Variant("(ssv)", (NAMESPACE, KEY, GLib.Variant("u", scheme))))
    return GLib.SOURCE_CONTINUE


def bus_acquired(conn, name):
    global connection
    connection = conn
    conn.register_object(PATH, INTERFACE, method_call, get_property, None)


loop = GLib.MainLoop()
GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGUSR1, flip)
GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGTERM, loop.quit)
Gio.bus_own_name(Gio.BusType.SESSION, NAME, Gio.BusNameOwnerFlags.NONE, bus_acquired, None,
                 lambda conn, name: loop.quit())
loop.run()
