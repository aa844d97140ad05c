#!/usr/bin/python3
"""Runs the checks in one session.
     one_session.py SESSION PREFIX FOLDER [CHECK ...]
In FOLDER, which is the session's own, "answers" gets a line for each check as it comes: its name, "met",
"missed" or "impossible", and why; "pictures" what was on the screen."""

import json
import pathlib
import sys
import traceback

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(HERE), str(HERE / "sessions")]

import processes  # noqa: E402
from kinds import KINDS  # noqa: E402
from program import Program  # noqa: E402
from rows import CHECKS, LOGIN_CHECKS  # noqa: E402
from verdict import Impossible, Missed  # noqa: E402


def answer(program, name, check):
    """The state of a cell and the reason."""
    program.doing = name
    try:
        return "met", check(program) or ""
    except Impossible as impossible:
        return "impossible", str(impossible)
    except Missed as missed:
        state = "missed", str(missed)
    except Exception as error:  # whatever else goes wrong is seen as missed, with what it was
        traceback.print_exc()
        state = "missed", f"the check broke off: {error}"
    program.keep_missed()
    return state


def run(session, is_login, table, tell, pictures):
    """One session from its start to its end."""
    try:
        if is_login:
            session.open_at_login()
        session.start()
        program = Program(session, pictures)
        if not is_login:
            program.start()
            session.settle()
        for name, check in table.items():
            tell(name, *answer(program, name, check))
    except Exception as error:
        traceback.print_exc()
        for name in table:
            tell(name, "missed", f"the session broke off: {error}")
    finally:
        processes.end_descendants()


def main():
    kind, prefix, folder = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    pictures = folder / "pictures"
    pictures.mkdir()
    answered = set()

    def tell(name, state, reason):
        if name in answered:
            return
        answered.add(name)
        print(f"{kind}: {name}: {state}{': ' if reason else ''}{reason}", flush=True)
        with open(folder / "answers", "a", encoding="utf-8") as file:
            file.write(json.dumps([name, state, reason]) + "\n")

    processes.adopt_orphans()
    for part, table in (("work", CHECKS), ("login", LOGIN_CHECKS)):
        table = {name: check for name, check in table.items() if not sys.argv[4:] or name in sys.argv[4:]}
        if table:
            run(KINDS[kind](folder / part, prefix), part == "login", table, tell, pictures)


main()
