"""What programs tell assistive technology (AT-SPI): their widgets, texts and places."""

from bus import Bus
from gi.repository import GLib

REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
ACCESSIBLE = "org.a11y.atspi.Accessible"
SHOWING = 25        # AtspiStateType
SCREEN = 0          # AtspiCoordType


class Widget:
    def __init__(self, bus, name, path):
        self._bus, self._address = bus, (name, path)

    def children(self):
        found = self._bus.ask(*self._address, ACCESSIBLE, "GetChildren") or []
        return [Widget(self._bus, *address) for address in found]

    def name(self):
        return self._bus.property(*self._address, ACCESSIBLE, "Name") or ""

    def role(self):
        return self._bus.ask(*self._address, ACCESSIBLE, "GetRoleName") or ""

    def is_showing(self):
        states = self._bus.ask(*self._address, ACCESSIBLE, "GetState") or [0, 0]
        return bool(states[0] >> SHOWING & 1)

    def text(self):
        return self._bus.ask(*self._address, "org.a11y.atspi.Text", "GetText", "(ii)", 0, -1)

    def box(self):
        """Left, top, width and height, counted from where the program takes the screen's corner to be."""
        return self._bus.ask(*self._address, "org.a11y.atspi.Component", "GetExtents", "(u)", SCREEN)

    def all(self):
        yield self
        for child in self.children():
            yield from child.all()


class Accessibility:
    def __init__(self, session_bus):
        session_bus.set_property("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled",
                                 GLib.Variant("b", True))
        self._bus = Bus(session_bus.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0])

    def find(self, program, role=None, name=None):
        """The first widget of the program that is showing, has the role and a name that starts so."""
        for application in Widget(self._bus, *REGISTRY).children():
            if application.name() != program:
                continue
            for widget in application.all():
                if (role is None or widget.role() == role) and \
                        (name is None or widget.name().startswith(name)) and widget.is_showing():
                    return widget
        return None
