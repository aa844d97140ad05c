"""KDE Plasma as its own starters start it, on X11 and on Wayland."""

import shutil

import processes
from session import SIZE, Session

SECRETS = "org.freedesktop.secrets"
SHELL = "org.kde.plasmashell"
KWIN = """#!/bin/sh
exec {copy} --x11-display {display} --width {width} --height {height} \\
    --no-lockscreen "$@"
"""


class Plasma(Session):
    desktop = "KDE"
    packages = ("plasma-workspace", "plasma-desktop")
    portals = ("kde",)
    no_lone_watcher = None
    key_ring = "kwalletd5"

    def prepare(self):
        self.environment |= {"KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}
        self.write(".config/kwinrc", "[Desktops]\nNumber=2\nRows=1\n")
        self.write(".config/kwalletrc", "[Wallet]\nEnabled=true\nFirst Use=false\n"
                                        "[org.freedesktop.secrets]\napiEnabled=true\n")
        self.write(".config/ksplashrc", "[KSplash]\nEngine=none\n")
        self.write(".config/baloofilerc", "[Basic Settings]\nIndexing-Enabled=false\n")
        self.write(".config/kdeglobals", "[KDE]\nAnimationDurationFactor=0\n")
        self.write(".config/kscreenlockerrc", "[Daemon]\nAutolock=false\n")

    def start_key_ring(self):
        """KWallet, opened as the login does: the first opening makes the wallet, which the Secret Service
        knows from the next start on."""
        self._start_wallet()
        processes.stop(self.wallet)
        self.need(lambda: not self.bus.has(SECRETS), "the end of kwalletd5")
        self._start_wallet()

    def _start_wallet(self):
        self.wallet = self.spawn("kwalletd5")
        self.need_name(SECRETS)
        self.bus.call("org.kde.kwalletd5", "/modules/kwalletd5", "org.kde.KWallet", "pamOpen",
                      "(sayi)", "kdewallet", b"0" * 56, 0)

    def start_shell(self):
        self.manager = self.spawn(self.starter)
        self.need_host()
        self.need_name(SHELL)

    def start_watcher(self):
        """It says that there is a host whether or not there is one."""
        self._kded("loadModule")

    def start_status_area(self):
        if not self.bus.has(SHELL):
            self.start_watcher()
            self.spawn("plasmashell")
            self.need_host()
            self.need_name(SHELL)

    def stop_status_area(self):
        process = self.bus.owner_process(SHELL)
        self.bus.ask(SHELL, "/MainApplication", "org.qtproject.Qt.QCoreApplication", "quit")
        self.need(lambda: not processes.is_running(process), "the end of plasmashell")
        self._kded("unloadModule")
        self.need(lambda: not self.has_watcher(), "the end of the watcher")

    def _kded(self, method):
        self.bus.ask("org.kde.kded5", "/kded", "org.kde.kded5", method, "(s)", "statusnotifierwatcher")

    def leave(self):
        self.bus.ask("org.kde.Shutdown", "/Shutdown", "org.kde.Shutdown", "logout")
        self.need_end(self.manager)


class PlasmaX11(Plasma):
    title = "Plasma, X11"
    starter = "startplasma-x11"
    packages = (*Plasma.packages, "kwin-x11")

    def go_to_workspace(self, number):
        self.run("wmctrl", "-s", number - 1)


class PlasmaWayland(Plasma):
    title = "Plasma, Wayland"
    kind = "wayland"
    starter = "startplasma-wayland"
    packages = (*Plasma.packages, "kwin-wayland")

    def start_shell(self):
        """KWin runs in a window that fills the screen. Its file has a capability that is not to be had
        everywhere; a copy has none."""
        copy, starter = self.folder / "copy/kwin_wayland", self.folder / "bin/kwin_wayland"
        for path in (copy, starter):
            path.parent.mkdir(exist_ok=True)
        shutil.copyfile("/usr/bin/kwin_wayland", copy)
        starter.write_text(KWIN.format(copy=copy, display=self.environment["DISPLAY"], width=SIZE[0],
                                       height=SIZE[1]), encoding="utf-8")
        for path in (copy, starter):
            path.chmod(0o755)
        self.environment["KWIN_COMPOSE"] = "Q"
        super().start_shell()
        self.adopt_wayland_display()
        self.adopt_x_display()

    def go_to_workspace(self, number):
        self.bus.ask("org.kde.KWin", "/KWin", "org.kde.KWin", "setCurrentDesktop", "(i)", number)
