"""Calls on a message bus."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

FLAGS = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
PROPERTIES = "org.freedesktop.DBus.Properties"
PATIENCE = 10000  # milliseconds


class Bus:
    def __init__(self, address):
        self.connection = Gio.DBusConnection.new_for_address_sync(address, FLAGS, None, None)

    def call(self, name, path, interface, method, signature=None, *arguments):
        """The values of the answer; GLib.Error when there is none."""
        parameters = GLib.Variant(signature, arguments) if signature else None
        return self.connection.call_sync(name, path, interface, method, parameters, None,
                                         Gio.DBusCallFlags.NONE, PATIENCE, None).unpack()

    def ask(self, *call):
        """The first value of the answer, or None when there is none."""
        try:
            return (self.call(*call) or (None,))[0]
        except GLib.Error:
            return None

    def property(self, name, path, interface, key):
        return self.ask(name, path, PROPERTIES, "Get", "(ss)", interface, key)

    def set_property(self, name, path, interface, key, value):
        return self.call(name, path, PROPERTIES, "Set", "(ssv)", interface, key, value)

    def has(self, name):
        return self.ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                        "NameHasOwner", "(s)", name)

    def owner_process(self, name):
        return self.ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                        "GetConnectionUnixProcessID", "(s)", name)
