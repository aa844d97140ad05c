"""Processes that end with whoever starts them, their descendants included."""

import ctypes
import glob
import os
import signal
import subprocess
import time

PR_SET_CHILD_SUBREAPER = 36  # linux/prctl.h


def until(condition, seconds=10.0, pause=0.2):
    """What `condition` returns as soon as that is true, else its last answer after `seconds`."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer or time.monotonic() > end:
            return answer
        time.sleep(pause)


def adopt_orphans():
    """Makes this process the parent of every descendant whose own parent ends."""
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def _parents():
    parents = {}
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                parents[int(name)] = int(file.read().rpartition(")")[2].split()[1])
        except OSError:
            pass  # it has ended
    return parents


def descendants(ancestor=None):
    """The ids of all processes below `ancestor`, or below this one."""
    parents = _parents()
    found = {ancestor or os.getpid()}
    grown = True
    while grown:
        more = {child for child, parent in parents.items() if parent in found} - found
        grown = bool(more)
        found |= more
    return found - {ancestor or os.getpid()}


def is_running(process):
    """Whether it runs; one that has ended and only waits to be told so does not."""
    try:
        with open(f"/proc/{process}/stat", encoding="utf-8", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


def name_of(process):
    try:
        with open(f"/proc/{process}/comm", encoding="utf-8") as file:
            return file.read().strip()
    except OSError:
        return ""


def x_displays():
    """The names of the X displays that descendants listen for."""
    sockets = set()
    for process in descendants():
        for descriptor in glob.glob(f"/proc/{process}/fd/*"):
            try:
                sockets.add(os.readlink(descriptor))
            except OSError:
                pass
    found = set()
    with open("/proc/net/unix", encoding="utf-8") as table:
        for line in table:
            fields = line.split()
            if len(fields) == 8 and "/.X11-unix/X" in fields[7] and f"socket:[{fields[6]}]" in sockets:
                found.add(":" + fields[7].rpartition("X")[2])
    return found


def end_descendants(seconds=5.0):
    """Ends all of them, by force those that do not listen."""
    for sign in (signal.SIGTERM, signal.SIGKILL):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            left = descendants()
            if not left:
                return
            for process in left:
                try:
                    os.kill(process, sign)
                except ProcessLookupError:
                    pass
            time.sleep(0.2)
            _reap()


def _reap():
    try:
        while os.waitpid(-1, os.WNOHANG)[0]:
            pass
    except ChildProcessError:
        pass


def start(command, environment, log, **options):
    with open(log, "ab") as output:
        return subprocess.Popen(command, env=environment, stdin=options.pop("stdin", subprocess.DEVNULL),
                                stdout=output, stderr=output, start_new_session=True, **options)


def stop(process, seconds=10.0):
    """Asks it to end and waits; its status, or None when it had to be forced."""
    if process.poll() is None:
        process.terminate()
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
        return None
