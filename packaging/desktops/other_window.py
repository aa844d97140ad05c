#!/usr/bin/python3
"""A window of another program, in a colour of its own. What is typed into it stands in a file.
     other_window.py FILE [full-screen]"""

import os
import signal
import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gtk, Gdk, GLib  # noqa: E402

STYLE = b"window { background: #008090; } entry { margin: 120px; }"


def keep(entry, path):
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write(entry.get_text())
    os.replace(path + ".new", path)


provider = Gtk.CssProvider()
provider.load_from_data(STYLE)
Gtk.StyleContext.add_provider_for_screen(Gdk.Screen.get_default(), provider,
                                         Gtk.STYLE_PROVIDER_PRIORITY_USER)
entry = Gtk.Entry()
entry.connect("changed", keep, sys.argv[1])
window = Gtk.Window(title="Another window")
window.set_default_size(500, 320)
window.add(entry)
if sys.argv[2:] == ["full-screen"]:
    window.fullscreen()
window.show_all()
window.present()
keep(entry, sys.argv[1])
GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGTERM, Gtk.main_quit)
Gtk.main()
