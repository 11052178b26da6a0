#!/usr/bin/env python3
"""Plays services on the bus that DBUS_SYSTEM_BUS_ADDRESS names, as the script on standard input sets
them up. It prints "ready", and ends when standard input does."""
import sys
import time  # for scripts whose services answer late  # noqa: F401

import dbus
import dbus.mainloop.glib
import dbus.service
from dbusmock.mockobject import DBusMockObject, objects
from gi.repository import GLib

END_OF_SCRIPT = "# end\n"
NAMES = []  # a name goes with its object


def service(name, path, interface, manager=False, properties=None):
    """A service with one object; AddObject() and AddMethod() of the result give it more."""
    NAMES.append(dbus.service.BusName(name, BUS, do_not_queue=True))
    objects[path] = DBusMockObject(NAMES[-1], path, interface, properties or {}, is_object_manager=manager)
    return objects[path]


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
BUS = dbus.bus.BusConnection(sys.argv[1])
script = ""
for line in iter(sys.stdin.readline, END_OF_SCRIPT):
    script += line
exec(script)  # pylint: disable=exec-used
print("ready", flush=True)
loop = GLib.MainLoop()
GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_HUP | GLib.IO_IN, lambda *_: loop.quit())
loop.run()
