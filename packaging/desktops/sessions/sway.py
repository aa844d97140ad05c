"""sway in a window that fills the screen, so that keyboard, pointer and pictures are real."""

import json

import processes
from session import AT_LOGIN, SIZE, Session

CONFIG = """output * mode --custom {}x{}
output * bg #505050 solid_color
focus_on_window_activation smart
bindsym Mod1+Mod4+f exec varno
{}
"""
BAR = {"position": "top", "height": 30, "modules-left": ["sway/workspaces"],
       "modules-right": ["clock", "tray"], "tray": {"icon-size": 20}}


class Sway(Session):
    title = "sway, no bar"
    desktop = "sway"
    kind = "wayland"
    packages = ("sway",)
    portals = ("wlr", "gtk")
    no_status_area = "no status area"
    bound_key = "it gives no shortcuts; a key bound to `varno` in its configuration"

    def prepare(self):
        login = f"exec {AT_LOGIN}" if self.opens_at_login else ""
        self.write(".config/sway/config", CONFIG.format(*SIZE, login))

    def start_shell(self):
        self.compositor = self.spawn("sway", WLR_BACKENDS="x11", WLR_RENDERER="pixman")
        self.adopt_wayland_display()
        self.adopt_x_display()
        self.environment["SWAYSOCK"] = self.path("sway-ipc.*.sock")

    def open_at_login(self):
        self.opens_at_login = True

    def go_to_workspace(self, number):
        self.run("swaymsg", "workspace", number)

    def leave(self):
        self.run("swaymsg", "exit")
        self.need_end(self.compositor)


class SwayWaybar(Sway):
    title = "sway, waybar"
    packages = ("sway", "waybar")
    no_status_area = None

    def prepare(self):
        super().prepare()
        self.write(".config/waybar/config", json.dumps(BAR))

    def start_status_area(self):
        self.bar = self.spawn("waybar")
        self.need_host()

    def stop_status_area(self):
        processes.stop(self.bar)
