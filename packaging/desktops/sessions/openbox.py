"""Openbox with a panel of the user's choice; its end is the end of the session."""

import processes
from session import AT_LOGIN, Session
from xfce import PANEL


class Openbox(Session):
    desktop = "openbox"

    def start_shell(self):
        self.manager = self.spawn("openbox", *(["--startup", AT_LOGIN] if self.opens_at_login else []))
        self.need(lambda: self.run("wmctrl", "-m"), "openbox")

    def open_at_login(self):
        self.opens_at_login = True

    def go_to_workspace(self, number):
        self.run("wmctrl", "-s", number - 1)

    def leave(self):
        self.run("openbox", "--exit")
        self.need_end(self.manager)


class OpenboxTint2(Openbox):
    title = "openbox, tint2"
    packages = ("openbox", "tint2")

    def start_status_area(self):
        self.bar = self.spawn("tint2")
        self.need(self.has_tray_window, "tint2")

    def stop_status_area(self):
        processes.stop(self.bar)


class OpenboxXfcePanel(Openbox):
    title = "openbox, xfce4-panel"
    packages = ("openbox", "xfce4-panel")

    def prepare(self):
        with open("/etc/xdg/xfce4/panel/default.xml", encoding="utf-8") as delivered:
            self.write(PANEL, delivered.read())

    def start_status_area(self):
        self.spawn("xfce4-panel", "--disable-wm-check")
        self.need_host()

    def stop_status_area(self):
        self.run("xfce4-panel", "--quit")
        self.need(lambda: not self.has_host(), "the end of xfce4-panel")
