"""The rows of the table. A check returns when what it asks for was seen, with what is to be said about
it, and raises what a user would meet instead, or why it cannot be seen there."""

from checks import icon, panel, settings

CHECKS = {
    "first start by hand": icon.first_start,
    "icon seen": icon.icon_seen,
    "click toggles, six times": icon.click_toggles,
    "pointer free after a click": icon.pointer_free,
    "centred at the first showing": panel.centred,
    "shortcut from another window": panel.shortcut_from_another_window,
    "shortcut over a full-screen window": panel.shortcut_over_full_screen,
    "focus after showing": panel.focus_after_showing,
    "focus after hiding": panel.focus_after_hiding,
    "every workspace": panel.every_workspace,
    "second start": panel.second_start,
    "menu entry": panel.menu_entry,
    "status area later than the program": icon.status_area_late,
    "watcher before its host": icon.watcher_before_host,
    "theme menu": settings.theme_menu,
    "alert": settings.alert,
    "key ring": settings.key_ring,
}
LOGIN_CHECKS = {"opened at login": icon.login, "log-out saves": settings.log_out}
