"""The installed program in a session, as a user sees it."""

import os
import signal
import time

import picture
import processes
from processes import until
from session import NAME

ASIDE = (40, 400)
PATIENCE = 10  # seconds: what comes late on a busy machine must not be taken for missing
FADE = 0.7    # seconds until a screen has given way to another
CLICKS = 0.8  # seconds between two clicks that are not one double click


class Program:
    def __init__(self, session, pictures):
        self.session, self.seat, self.pictures = session, session.seat, pictures
        self.doing = ""    # the check under way
        self._kept = set()

    def start(self):
        """A start by hand, from a menu's command."""
        self.session.spawn("varno")
        self.session.need_name(NAME)

    def start_again(self):
        self.session.run("varno")

    def end(self):
        """Whoever started it."""
        process = self.session.bus.owner_process(NAME)
        if process:
            os.kill(process, signal.SIGTERM)
            self.session.need(lambda: not processes.is_running(process), "the end of the program")

    def panel(self):
        """Its theme and rectangle, when it is on the screen."""
        return picture.panel(self.seat.picture())

    def is_shown(self, seconds=PATIENCE):
        return bool(until(self.panel, seconds))

    def is_hidden(self, seconds=PATIENCE):
        return bool(until(lambda: not self.panel(), seconds))

    def icon(self, seconds=8):
        """The place of its icon on the screen, or None. Under the pointer it may look otherwise."""
        self.seat.move(*ASIDE)
        return until(lambda: picture.icon(self.seat.picture()), seconds)

    def hide(self):
        """Brings about that it runs and is hidden, by whatever way works."""
        if not self.session.bus.has(NAME):
            self.start()
        if self.panel():
            self.start_again()
        if not self.is_hidden():
            self.seat.key("Escape")
        if not self.is_hidden():
            self.end()
            self.start()
            self.session.settle()

    def query(self):
        """What stands in the search field."""
        field = self.widget("text", "Search")
        return field.text() if field else None

    def takes_text(self, text):
        """Whether what is typed now arrives in the search field; empties the field again."""
        self.seat.type(text)
        arrived = until(lambda: self.query() == text, PATIENCE / 2)
        self.seat.key("ctrl+a")
        self.seat.key("BackSpace")
        return bool(arrived)

    def widget(self, role, name, seconds=0):
        return until(lambda: self.session.accessibility.find("Varno", role, name), seconds)

    def middle(self):
        left, top, right, bottom = self.panel()[1]
        return (left + right) // 2, (top + bottom) // 2

    def reveal(self, widget):
        """Scrolls until a widget of the panel can be seen, and returns its middle on the screen."""
        left, top, _, bottom = self.panel()[1]
        origin = self.widget("frame", "Varno").box()  # a program may not know where its window is
        for _ in range(20):
            x, y, width, height = widget.box()
            x, y = left + x - origin[0] + width // 2, top + y - origin[1] + height // 2
            if top + 60 < y < bottom - 20:
                break
            self.seat.scroll(*self.middle(), 2 if y > top else -2)
            time.sleep(0.3)
        return x, y

    def click(self, widget):
        """Presses a widget of the panel; False when it is not there."""
        if not widget or not self.panel():
            return False
        self.seat.click(*self.reveal(widget))
        return True

    def open_settings(self):
        if not self.widget(None, "Theme:"):
            self.seat.key("ctrl+comma")
        shown = self.widget(None, "Theme:", 5)
        time.sleep(FADE)
        return shown

    def keep_missed(self):
        """A picture of what is there instead of what the check asked for; the first one stays."""
        name = "".join(letter if letter.isalnum() else "-" for letter in self.doing)
        if name not in self._kept:
            self.keep_picture(f"{name}-missed")
        self._kept.add(name)

    def keep_picture(self, name):
        try:
            self.seat.picture().save(self.pictures / f"{name}.png")
        except OSError:
            pass  # the screen has gone with its session
