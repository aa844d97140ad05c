"""Ways to the panel: where it is then, and who has the keyboard."""

import time

import picture
from processes import until
from program import FADE
from verdict import ITS_KEYS, OtherWindow, expect, show

BAR = 80  # pixels that bars take from one side at most


def centred(program):
    """On the screen but for its bars."""
    program.end()
    program.start()
    program.hide()
    show(program)
    screen, middle = program.seat.picture().size, program.middle()
    expect(all(abs(2 * here - size) <= BAR for here, size in zip(middle, screen)),
           f"its middle is at {middle[0]}, {middle[1]} of {screen[0]}, {screen[1]}")


def shortcut_from_another_window(program):
    program.hide()
    with OtherWindow(program) as other:
        program.seat.key(ITS_KEYS)
        expect(program.is_shown(), "the shortcut does nothing")
        expect(program.takes_text("banana"), "shown without the keyboard")
        program.seat.key(ITS_KEYS)
        expect(program.is_hidden(), "the shortcut does not hide the panel")
        expect(other.text() == "", "what is typed goes to the other window")
    return program.session.bound_key


def shortcut_over_full_screen(program):
    program.hide()
    with OtherWindow(program, "full-screen"):
        program.seat.key(ITS_KEYS)
        expect(program.is_shown(), "the panel stays out of sight")
        expect(until(lambda: picture.surrounds(program.seat.picture()), 3), "the other window is gone")
        expect(program.takes_text("banana"), "shown without the keyboard")
        program.seat.key("Escape")
        expect(program.is_hidden(), "Escape does not hide the panel")
        expect(until(lambda: picture.is_filled_by_other_window(program.seat.picture()), 5),
               "the other window is not full screen after it")
    return program.session.bound_key


def focus_after_showing(program):
    program.hide()
    with OtherWindow(program) as other:
        show(program)
        program.keep_picture("shown")
        expect(program.takes_text("banana"), "the panel does not have the keyboard")
        expect(other.text() == "", "what is typed goes to the other window too")


def focus_after_hiding(program):
    program.hide()
    with OtherWindow(program) as other:
        show(program)
        expect(program.takes_text("banana"), "the panel does not have the keyboard")
        program.seat.key("Escape")
        expect(program.is_hidden(), "Escape does not hide the panel")
        expect(other.takes_text("pear"), "the other window does not get the keyboard back")


def every_workspace(program):
    go = program.session.go_to_workspace
    program.hide()
    try:
        with OtherWindow(program) as other:
            go(2)
            program.session.need(lambda: not other.is_seen(), "the other workspace")
            go(1)
            program.session.need(other.is_seen, "the first workspace")
        show(program)
        go(2)
        time.sleep(FADE)
        expect(program.is_shown(), "it stays on the workspace where it was shown")
        program.hide()
        show(program)
        go(1)
        time.sleep(FADE)
        expect(program.is_shown(), "shown again, it stays on that workspace")
    finally:
        go(1)
        time.sleep(FADE)


def second_start(program):
    program.hide()
    with OtherWindow(program):
        program.start_again()
        expect(program.is_shown(), "it does not show the panel")
        expect(program.takes_text("banana"), "shown without the keyboard")


def menu_entry(program):
    entry = program.session.prefix / "share/applications/com.kelbrin.varno.desktop"
    program.end()
    with OtherWindow(program):
        program.session.run("gio", "launch", entry)
        expect(program.is_shown(10), "as the first start it does not show the panel")
        expect(program.takes_text("banana"), "shown by its first start without the keyboard")
    program.hide()
    with OtherWindow(program):
        program.session.run("gio", "launch", entry)
        expect(program.is_shown(), "while the program runs it does not show the panel")
        expect(program.takes_text("banana"), "shown without the keyboard")
