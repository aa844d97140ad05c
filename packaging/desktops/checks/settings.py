"""What is set in the panel, and where it is kept."""

import time

import picture
import processes
from processes import until
from program import FADE
from verdict import expect, show

MENU_LEAST = (60, 40)  # pixels
SECRET = "not-a-key-of-anyone-0123"


def open_theme_menu(program):
    """The theme before, the rectangle of the panel, and that of the menu."""
    button = program.open_settings()
    expect(button, "Ctrl+comma does not open the settings")
    place = program.reveal(button)
    program.seat.move(*place)
    time.sleep(FADE)
    theme, box = program.panel()
    before = program.seat.picture()
    program.seat.click(*place)
    menu = until(lambda: picture.change(before, program.seat.picture(), MENU_LEAST), 5)
    expect(menu, "no menu opens")
    return theme, box, menu


def choose_dark(program, menu):
    """Presses the last of the menu's three items."""
    left, _, right, bottom = menu
    program.seat.click((left + right) // 2, bottom - 12)


def theme_menu(program):
    program.hide()
    show(program)
    theme, box, menu = open_theme_menu(program)
    time.sleep(FADE)
    program.keep_picture("menu")
    choose_dark(program, menu)
    expect(until(lambda: program.panel() and program.panel()[0] != theme, 5), "the theme does not change")
    expect(picture.is_within(menu, box), "the menu stands out of the panel")


def alert(program):
    program.hide()
    show(program)
    expect(program.open_settings(), "Ctrl+comma does not open the settings")
    recorder = program.widget(None, "Shortcut")
    expect(program.click(recorder), "no field to record a shortcut")
    time.sleep(0.5)
    before = program.seat.picture()
    program.seat.key("ctrl+k")
    asked = until(lambda: program.widget("alert message", None), 3)
    expect(asked, "a key of the panel is not refused")
    time.sleep(FADE)
    program.keep_picture("alert")
    expect(picture.change(before, program.seat.picture()), "no alert is to be seen")
    expect(not program.session.task_bar_entries(), "the alert has an entry in the task bar")
    program.seat.key("Return")
    expect(until(lambda: not program.widget("alert message", None), 3),
           "Return does not close the alert")
    program.seat.key("Escape")
    program.seat.key("Escape")
    expect(program.takes_text("banana"), "the panel does not have the keyboard after it")


def key_ring(program):
    program.hide()
    show(program)
    expect(program.open_settings(), "Ctrl+comma does not open the settings")
    session = program.session
    daemon = processes.name_of(session.bus.owner_process("org.freedesktop.secrets") or 0)
    expect(daemon == session.key_ring, f"the key ring is that of {daemon or 'nobody'}")
    expect(program.click(program.widget("text", "Anthropic API key")), "no field for a key")
    program.seat.type(SECRET)
    expect(program.click(program.widget(None, "Save Key")), "no button that saves")
    kept = until(lambda: SECRET in (session.run("secret-tool", "search", "--all", "service",
                                                "com.kelbrin.varno") or ""), 10)
    expect(kept, "the key is not in the key ring")
    program.end()
    program.start()
    program.hide()
    show(program)
    expect(program.open_settings(), "Ctrl+comma does not open the settings")
    expect(program.widget(None, "A key is stored", 5), "the key is not found again")


def log_out(program):
    session = program.session
    process = session.bus.owner_process("com.kelbrin.varno")
    program.hide()
    show(program)
    expect(program.open_settings(), "Ctrl+comma does not open the settings")
    before = program.seat.picture()
    expect(program.click(program.widget("radio button", "Large")), "no text size to choose")
    expect(until(lambda: picture.change(before, program.seat.picture()), 5), "no text size is chosen")
    session.log_out()
    expect(until(lambda: not processes.is_running(process), 20), "the program outlives the session")
    saved = session.config / "Varno/Varno.conf"
    expect("fontSize=large" in saved.read_text(encoding="utf-8"), "what was chosen last is lost")
