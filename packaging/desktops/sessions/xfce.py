"""Xfce as its session manager starts it: xfwm4, xfsettingsd, xfce4-panel."""

from session import Session

PANEL = ".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"


class Xfce(Session):
    title = "Xfce"
    desktop = "XFCE"
    packages = ("xfwm4", "xfce4-panel", "xfce4-session")

    def prepare(self):
        # The panel as it is delivered; else it asks.
        with open("/etc/xdg/xfce4/panel/default.xml", encoding="utf-8") as delivered:
            self.write(PANEL, delivered.read())

    def start_shell(self):
        self.manager = self.spawn("xfce4-session")
        self.need(lambda: self.run("wmctrl", "-m"), "xfwm4")
        self.need_host()

    def start_status_area(self):
        if not self.has_host():
            self.spawn("xfce4-panel")
            self.need_host()

    def stop_status_area(self):
        self.run("xfce4-panel", "--quit")
        self.need(lambda: not self.has_host(), "the end of xfce4-panel")

    def go_to_workspace(self, number):
        self.run("wmctrl", "-s", number - 1)

    def leave(self):
        self.run("xfce4-session-logout", "--logout", "--fast")
        self.need_end(self.manager)
