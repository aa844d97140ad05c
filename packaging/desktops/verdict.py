"""What a check ends with, and what several of them do."""

import processes
import picture
from processes import until

ITS_KEYS = "alt+super+f"


class Missed(Exception):
    """What a user would meet instead."""


class Impossible(Exception):
    """Why it cannot be seen in this session."""


def expect(condition, otherwise):
    if not condition:
        raise Missed(otherwise)


class OtherWindow:
    """A window of another program, for as long as the block lasts."""

    def __init__(self, program, *options):
        self._program, self._options = program, options
        self._file = program.session.folder / "typed"

    def __enter__(self):
        program = self._program
        self._file.unlink(missing_ok=True)
        self._process = program.session.spawn(program.session.other_window, self._file, *self._options)
        program.session.need(self.is_seen, "another window")
        program.session.need(lambda: self.takes_text("ready"), "its focus", 20)
        return self

    def __exit__(self, kind, *_):
        if kind:
            self._program.keep_missed()  # as it looks now
        processes.stop(self._process)

    def is_seen(self):
        seen = picture.is_filled_by_other_window if self._options else picture.shows_other_window
        return seen(self._program.seat.picture())

    def text(self):
        return self._file.read_text(encoding="utf-8") if self._file.exists() else ""

    def takes_text(self, text):
        """Whether what is typed now arrives in it; empties it again."""
        seat = self._program.seat
        seat.type(text)
        arrived = until(lambda: self.text() == text, 5)
        seat.key("ctrl+a")
        seat.key("BackSpace")
        until(lambda: not self.text(), 2)
        return bool(arrived)


def the_icon(program):
    if program.session.no_status_area:
        raise Impossible(program.session.no_status_area)
    icon = program.icon()
    expect(icon, "no icon")
    return icon


def show(program):
    """In the way that a user of this session has: the icon, else the shortcut, else a second start."""
    icon = program.session.no_status_area is None and program.icon(2)
    if icon:
        program.seat.click(*icon)
        if program.is_shown():
            return
    program.seat.key(ITS_KEYS)
    if not program.is_shown():
        program.start_again()
        expect(program.is_shown(), "nothing shows the panel")
