"""GNOME Shell under GNOME's session manager, on X11 and on Wayland without a screen, as delivered and
with the AppIndicator extension."""

from gi.repository import GLib

from bus import Bus
from seat_mutter import MutterSeat
from session import SIZE, Session

EXTENSION = "ubuntu-appindicators@ubuntu.com"
SETTINGS = """[org/gnome/shell]
enabled-extensions={extensions}
welcome-dialog-last-shown-version='99'

[org/gnome/mutter]
dynamic-workspaces=false

[org/gnome/desktop/wm/preferences]
num-workspaces=2

[org/gnome/desktop/interface]
enable-animations=false
enable-hot-corners=false

[org/gnome/desktop/lockdown]
disable-lock-screen=true

[org/gnome/settings-daemon/plugins/media-keys]
custom-keybindings=[{bound}]

[org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/varno]
name='Varno'
command='varno'
binding='<Alt><Super>f'
"""
BOUND = "'/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/varno/'"
SHELL = """[Desktop Entry]
Type=Application
Name=GNOME Shell
Exec={command}
X-GNOME-Autostart-Phase=DisplayServer
X-GNOME-Autostart-Notify=true
"""
MANAGED = """[GNOME Session]
Name=GNOME
RequiredComponents=org.gnome.Shell;org.gnome.SettingsDaemon.MediaKeys;
"""
OVERVIEW = ("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "OverviewActive")


class Gnome(Session):
    desktop = "GNOME"
    packages = ("gnome-shell", "gnome-session-bin")
    portals = ("gnome", "gtk")
    extensions = ()
    no_status_area = "as delivered it has no status area"

    def prepare(self):
        data = self.folder / "data"
        self.environment |= {"GSETTINGS_BACKEND": "keyfile",
                             "XDG_DATA_DIRS": f"{data}:{self.environment['XDG_DATA_DIRS']}"}
        self.write(".config/glib-2.0/settings/keyfile", SETTINGS.format(
            extensions=list(self.extensions) or "@as []", bound=BOUND if self.bound_key else ""))
        self.write(data / "gnome-session/sessions/gnome.session", MANAGED)
        self.write(data / "applications/org.gnome.Shell.desktop", SHELL.format(command=self.command))
        self._start_login_manager()

    def _start_login_manager(self):
        """A system bus with a stand-in for logind, which the shell cannot do without."""
        address, _ = self.first_line("dbus-daemon", "--session", "--nofork", "--print-address={}")
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = address
        self.spawn("/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind")
        system = Bus(address)
        self.need(lambda: system.has("org.freedesktop.login1"), "logind")

    def start_shell(self):
        self.manager = self.spawn("/usr/libexec/gnome-session-binary", "--builtin", "--session=gnome",
                                  "--disable-acceleration-check")
        self.need_name("org.gnome.Shell", 60)
        self.need(lambda: self.bus.property(*OVERVIEW), "its overview", 60)
        self.bus.set_property(*OVERVIEW, GLib.Variant("b", False))
        self.need(lambda: not self.bus.property(*OVERVIEW), "the end of its overview")

    def leave(self):
        self.run("gnome-session-quit", "--logout", "--no-prompt")
        self.need_end(self.manager)


class WithIndicators:
    extensions = (EXTENSION,)
    no_status_area = None

    def start_status_area(self):
        self.run("gnome-extensions", "enable", EXTENSION)
        self.need_host()

    def stop_status_area(self):
        self.run("gnome-extensions", "disable", EXTENSION)
        self.need(lambda: not self.has_watcher(), "the end of the extension")


class GnomeX11(Gnome):
    title = "GNOME, X11"
    command = "gnome-shell --x11"

    def go_to_workspace(self, number):
        self.run("wmctrl", "-s", number - 1)


class GnomeWayland(Gnome):
    title = "GNOME, Wayland"
    kind = "wayland"
    bound_key = "its portal gives no shortcuts; a key bound to `varno` in its settings"
    command = "gnome-shell --headless --wayland --virtual-monitor {}x{}".format(*SIZE)

    def start_shell(self):
        super().start_shell()
        self.adopt_wayland_display()
        self.adopt_x_display()
        self.seat = MutterSeat(self.bus, self.folder)

    def go_to_workspace(self, number):
        self.seat.key("super+Page_Up" if number == 1 else "super+Page_Down")


class GnomeX11Indicators(WithIndicators, GnomeX11):
    title = "GNOME, X11, AppIndicator"
    packages = (*Gnome.packages, "gnome-shell-extension-appindicator")


class GnomeWaylandIndicators(WithIndicators, GnomeWayland):
    title = "GNOME, Wayland, AppIndicator"
    packages = (*Gnome.packages, "gnome-shell-extension-appindicator")
