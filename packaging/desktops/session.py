"""A desktop session with a bus, a home, a runtime folder and a display of its own."""

import glob
import os
import pathlib
import re
import subprocess
import time

import Xlib.display

import picture
import processes
from accessibility import Accessibility
from bus import Bus
from processes import until
from seat_x import XSeat

SIZE = (1280, 800)
NAME = "com.kelbrin.varno"
WATCHER = ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher")


AT_LOGIN = "env VARNO_PANEL=hidden varno"  # for sessions that open nothing by themselves


class Session:
    """What the kinds of sessions have in common; each says what is different."""

    title = ""
    desktop = ""             # XDG_CURRENT_DESKTOP
    kind = "x11"             # XDG_SESSION_TYPE
    packages = ()            # whose versions the table names
    portals = ("gtk",)
    no_status_area = None    # the reason, where there is none
    no_lone_watcher = "the status area is its own watcher"
    bound_key = None         # why a key that the user binds stands in for the shortcut
    key_ring = "gnome-keyring-d"

    def __init__(self, folder, prefix):
        self.folder, self.prefix = pathlib.Path(folder), pathlib.Path(prefix)
        self.home, self.runtime = self.folder / "home", self.folder / "run"
        self.config = self.home / ".config"
        for path in (self.folder, self.home, self.runtime, self.config, self.folder / "tmp"):
            path.mkdir(mode=0o700, exist_ok=True)
        self.environment = self._environment()
        self.bus = self.seat = self.accessibility = self.display = None
        self.opens_at_login = False
        self.other_window = pathlib.Path(__file__).with_name("other_window.py")

    # What a kind of session says about itself.

    def prepare(self):
        """Writes the files that this desktop has been set up by."""

    def start_shell(self):
        """Starts everything but the status area, and returns when it is there."""

    def start_status_area(self):
        """Starts what shows the icons, and returns when it does."""

    def stop_status_area(self):
        """Ends what shows the icons, and what keeps the list of them."""

    def start_watcher(self):
        """Starts what keeps the list of the icons, without what shows them."""

    def go_to_workspace(self, number):
        raise NotImplementedError

    def open_at_login(self):
        """Has the next session start the program, in the way that the package offers."""
        entry = f"etc/xdg/autostart/{NAME}.desktop"
        offered = pathlib.Path("/" if self.prefix == pathlib.Path("/usr") else self.prefix, entry)
        self.write(f".config/autostart/{NAME}.desktop",
                   offered.read_text(encoding="utf-8").replace("Hidden=true", "Hidden=false"))

    def log_out(self):
        """Ends the session as a user does; the display goes with it, as a display manager has it."""
        self.leave()
        processes.stop(self.display)

    def leave(self):
        """Asks the session to end, and returns when it has."""
        raise NotImplementedError

    # What is the same for all.

    def start(self):
        self._start_display()
        self._start_bus()
        self.accessibility = Accessibility(self.bus)  # before any program asks for it
        self.prepare()
        self.start_key_ring()
        self.start_shell()
        if not self.no_status_area:
            self.start_status_area()
        self.settle()

    def spawn(self, *command, **changes):
        """A process of this session."""
        log = self.folder / (pathlib.Path(command[0]).name + ".log")
        return processes.start([*map(str, command)], self.environment | changes, log)

    def run(self, *command, seconds=20, text=None):
        """What a command of this session says; None when it fails."""
        try:
            return subprocess.run([*map(str, command)], env=self.environment, timeout=seconds, input=text,
                                  stdin=None if text else subprocess.DEVNULL, check=True, text=True,
                                  capture_output=True).stdout
        except (subprocess.SubprocessError, OSError):
            return None

    def need(self, condition, what, seconds=30):
        if not until(condition, seconds):
            raise RuntimeError(f"{what} did not come within {seconds} s")

    def need_end(self, process):
        self.need(lambda: process.poll() is not None, f"the end of {process.args[0]}")

    def need_name(self, name, seconds=30):
        self.need(lambda: self.bus.has(name), name, seconds)

    def has_watcher(self):
        return self.bus.has(WATCHER[0])

    def has_host(self):
        return self.has_watcher() and self.bus.property(*WATCHER, "IsStatusNotifierHostRegistered")

    def need_host(self):
        self.need(self.has_host, "a status area", 60)

    def has_tray_window(self):
        """Whether a status area of the X server's own kind is there."""
        screen = Xlib.display.Display(self.environment["DISPLAY"])
        owner = screen.get_selection_owner(screen.intern_atom("_NET_SYSTEM_TRAY_S0"))
        screen.close()
        return owner != Xlib.X.NONE

    def task_bar_entries(self):
        """The titles of its windows that a task bar shows, as far as they are windows of an X server."""
        listed = self.run("xprop", "-root", "_NET_CLIENT_LIST") or ""
        found = [self.run("xprop", "-id", window, "WM_CLASS", "_NET_WM_STATE", "_NET_WM_NAME") or ""
                 for window in re.findall("0x[0-9a-f]+", listed)]
        return [window for window in found if "varno" in window.lower() and "SKIP_TASKBAR" not in window]

    def path(self, pattern):
        """The one path in the runtime folder that fits."""
        self.need(lambda: glob.glob(f"{self.runtime}/{pattern}"), pattern)
        return glob.glob(f"{self.runtime}/{pattern}")[0]

    def adopt_wayland_display(self):
        """The same for its own display."""
        self.environment["WAYLAND_DISPLAY"] = pathlib.Path(self.path("wayland-?")).name

    def settle(self, seconds=20):
        """Returns when the screen stands still."""
        end, last = time.monotonic() + seconds, self.seat.picture()
        while time.monotonic() < end:
            time.sleep(0.8)
            now = self.seat.picture()
            if picture.difference(last, now) < 0.0005:
                return
            last = now

    def write(self, path, text):
        path = self.home / path
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def _environment(self):
        runtime, portals = self.runtime, self.folder / "portals"
        portals.mkdir(exist_ok=True)
        for name in self.portals:
            source = pathlib.Path("/usr/share/xdg-desktop-portal/portals", name + ".portal")
            if source.exists():
                (portals / source.name).unlink(missing_ok=True)
                (portals / source.name).symlink_to(source)
        user = self.run_plain("id", "-un")
        return {
            "PATH": f"{self.folder}/bin:{self.prefix}/bin:/usr/bin:/bin",
            "HOME": str(self.home), "XDG_RUNTIME_DIR": str(runtime), "TMPDIR": str(self.folder / "tmp"),
            "USER": user, "LOGNAME": user, "SHELL": "/bin/sh", "LANG": "C.UTF-8",
            "XDG_DATA_DIRS": f"{self.prefix}/share:/usr/share", "XDG_CONFIG_DIRS": "/etc/xdg",
            "XDG_CURRENT_DESKTOP": self.desktop, "XDG_SESSION_DESKTOP": self.desktop,
            "XDG_SESSION_TYPE": self.kind, "XDG_DESKTOP_PORTAL_DIR": str(portals),
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={runtime}/no-system-bus",
            "LIBGL_ALWAYS_SOFTWARE": "1",
        }

    @staticmethod
    def run_plain(*command):
        return subprocess.run(command, check=True, text=True, capture_output=True).stdout.strip()

    def first_line(self, *command):
        """What a server writes when it is ready, into the descriptor that it is told."""
        read, write = os.pipe()
        process = processes.start([word.format(write) for word in command], self.environment,
                        self.folder / (command[0] + ".log"), pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as pipe:
            line = pipe.readline().strip()
        if not line:
            raise RuntimeError(f"{command[0]} does not start")
        return line, process

    def _start_display(self):
        number, self.display = self.first_line(
            "Xvfb", "-displayfd", "{}", "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24", "-dpi", "96",
            "-nolisten", "tcp", "-noreset")
        self.environment["DISPLAY"] = ":" + number
        self.seat = XSeat(":" + number)

    def _start_bus(self):
        address, _ = self.first_line("dbus-daemon", "--session", "--nofork", "--print-address={}")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self.bus = Bus(address)

    def start_key_ring(self):
        """As a login does, with the password that was typed there."""
        daemon = processes.start(
            ["gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"],
            self.environment, self.folder / "keyring.log", stdin=subprocess.PIPE)
        daemon.stdin.write(b"password")
        daemon.stdin.close()
        self.need_name("org.freedesktop.secrets")

    def adopt_x_display(self):
        """Has what is started from now on use the X display that a Wayland compositor offers."""
        own = self.environment["DISPLAY"]
        found = until(lambda: processes.x_displays() - {own}, 30)
        if not found:
            raise RuntimeError("the compositor offers no X display")
        self.environment["DISPLAY"] = found.pop()
        for name in (".mutter-Xwaylandauth*", "xauth_*"):
            for path in glob.glob(f"{self.runtime}/{name}"):
                self.environment["XAUTHORITY"] = path
