"""The kinds of sessions, by the names that they have on the command line."""

from gnome import GnomeWayland, GnomeWaylandIndicators, GnomeX11, GnomeX11Indicators
from openbox import OpenboxTint2, OpenboxXfcePanel
from plasma import PlasmaWayland, PlasmaX11
from sway import Sway, SwayWaybar
from xfce import Xfce

KINDS = {
    "xfce": Xfce,
    "plasma-x11": PlasmaX11,
    "plasma-wayland": PlasmaWayland,
    "gnome-x11": GnomeX11,
    "gnome-x11-indicators": GnomeX11Indicators,
    "gnome-wayland": GnomeWayland,
    "gnome-wayland-indicators": GnomeWaylandIndicators,
    "sway": Sway,
    "sway-waybar": SwayWaybar,
    "openbox-tint2": OpenboxTint2,
    "openbox-xfce4-panel": OpenboxXfcePanel,
}
