"""The icon in the status area, and what shows without one."""

import time

from program import CLICKS
from verdict import Impossible, expect, the_icon


def first_start(program):
    program.end()
    program.start()
    if program.session.no_status_area:
        expect(program.is_shown(), "nothing is shown")
        expect(program.takes_text("banana"), "shown without the keyboard")
    else:
        expect(program.icon(), "nothing is shown")
        expect(program.is_hidden(0), "the panel is shown beside the icon")


def icon_seen(program):
    program.hide()
    the_icon(program)


def click_toggles(program):
    program.hide()
    place = the_icon(program)
    for count in range(1, 7):
        program.seat.click(*place)
        if count % 2:
            expect(program.is_shown(), f"click {count} does not show the panel")
        else:
            expect(program.is_hidden(), f"click {count} does not hide the panel")
        time.sleep(CLICKS)


def pointer_free(program):
    """It looks as it does when the panel was shown without it."""
    program.end()
    program.start()  # the first click may be unlike the others
    place = the_icon(program)
    program.start_again()
    expect(program.is_shown(), "a second start does not show the panel")
    left, _, _, bottom = program.panel()[1]
    usual = program.seat.pointer(left + 60, bottom - 80)
    program.hide()
    program.seat.click(*place)
    expect(program.is_shown(), "the click does not show the panel")
    time.sleep(1)
    expect(program.seat.pointer(left + 60, bottom - 80) == usual, "the pointer is busy")


def shows_after_host(program, with_watcher):
    """Whether the icon of a program comes that was there before what shows it."""
    session = program.session
    program.end()
    session.stop_status_area()
    try:
        if with_watcher:
            session.start_watcher()
            session.need(session.has_watcher, "the watcher")
        program.start()
        time.sleep(2)  # a start is over by then
        program.hide()
    finally:
        session.start_status_area()
        session.settle()
    expect(program.icon(), "no icon for the whole session")


def status_area_late(program):
    if program.session.no_status_area:
        raise Impossible(program.session.no_status_area)
    shows_after_host(program, with_watcher=False)


def watcher_before_host(program):
    reason = program.session.no_status_area or program.session.no_lone_watcher
    if reason:
        raise Impossible(reason)
    shows_after_host(program, with_watcher=True)


def login(program):
    """After a session that began with the program among what opens at login."""
    session = program.session
    session.need_name("com.kelbrin.varno", 30)
    expect(program.is_hidden(0), "the panel is shown at login")
    if not session.no_status_area:
        expect(program.icon(20), "no icon for the whole session")
