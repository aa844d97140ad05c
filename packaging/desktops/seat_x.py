"""The keyboard, pointer and screen of an X server; what runs nested in its window has them too."""

import subprocess

import Xlib.display
from PIL import ImageGrab


class XSeat:
    def __init__(self, display):
        self._display = display

    def _do(self, *command):
        subprocess.run(["xdotool", *map(str, command)], env={"DISPLAY": self._display, "PATH": "/usr/bin"},
                       check=True, timeout=20, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def key(self, combination):
        self._do("key", "--delay", 40, combination)

    def type(self, text):
        self._do("type", "--delay", 60, text)

    def move(self, x, y):
        self._do("mousemove", x, y)

    def click(self, x, y):
        self.move(x, y)
        self._do("sleep", 0.2, "click", 1)

    def scroll(self, x, y, steps):
        """Down, or up when `steps` is negative."""
        self.move(x, y)
        self._do("click", "--repeat", abs(steps), 5 if steps > 0 else 4)

    def pointer(self, x, y):
        """What the pointer looks like at a place, in bytes that only serve to be compared."""
        self.move(x, y)
        screen = Xlib.display.Display(self._display)
        screen.xfixes_query_version()
        image = screen.xfixes_get_cursor_image(screen.screen().root)
        screen.close()
        # What runs nested may draw its own.
        drawn = self.picture().crop((x - 24, y - 24, x + 24, y + 24))
        return bytes(str(image.cursor_image), "ascii") + drawn.tobytes()

    def picture(self):
        return ImageGrab.grab(xdisplay=self._display).convert("RGB")
