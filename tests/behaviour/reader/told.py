# SPDX-License-Identifier: GPL-3.0-or-later
"""told.py TITLE WORDS: what the accessibility bus tells of the window with that title, its role and its description, as soon
as WORDS are in it; programs tell of changes in their own time. Nothing if that does not come."""
import sys
import time

import dbus

ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"


def bus():
    launcher = dbus.SessionBus().get_object("org.a11y.Bus", "/org/a11y/bus")
    return dbus.bus.BusConnection(launcher.GetAddress(dbus_interface="org.a11y.Bus"))


def children(connection, name, path):
    return connection.get_object(name, path).GetChildren(dbus_interface=ACCESSIBLE)


def text(connection, name, path, which):
    return str(connection.get_object(name, path).Get(ACCESSIBLE, which, dbus_interface="org.freedesktop.DBus.Properties"))


def told(connection, title):
    for program, root in children(connection, "org.a11y.atspi.Registry", ROOT):
        for name, path in children(connection, program, root):
            if text(connection, name, path, "Name") == title:
                role = connection.get_object(name, path).GetRoleName(dbus_interface=ACCESSIBLE)
                return f"{role}: {text(connection, name, path, 'Description')}"
    return ""


def main():
    title, words = sys.argv[1:]
    connection = bus()
    for _ in range(60):
        line = told(connection, title)
        if words in line:
            print(line)
            return
        time.sleep(0.25)


main()
