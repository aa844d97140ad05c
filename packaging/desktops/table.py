"""The table of all sessions, in Markdown."""

import pathlib
import subprocess

WORDS = {"met": "met", "missed": "**missed**", "impossible": "–"}


def versions(packages):
    """What is installed of them."""
    found = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${source:Upstream-Version}\n", *packages],
                           text=True, capture_output=True, check=False).stdout
    return ", ".join(found.splitlines())


class Notes:
    """Reasons, each once, with its number."""

    def __init__(self):
        self._numbers = {}

    def number(self, reason):
        return self._numbers.setdefault(reason, len(self._numbers) + 1)

    def lines(self):
        return [f"{number}. {reason}" for reason, number in self._numbers.items()]


def cell(answer, notes):
    if answer is None:
        return ""
    state, reason = answer
    return WORDS[state] + (f" ({notes.number(reason)})" if reason else "")


def table(kinds, checks, answers, program):
    """`answers` has, by session and check, a state and a reason."""
    notes = Notes()
    titles = [kind.title for kind in kinds.values()]
    lines = ["| | " + " | ".join(titles) + " |", "|---" * (len(kinds) + 1) + "|"]
    for check in checks:
        row = [cell(answers.get(name, {}).get(check), notes) for name in kinds]
        lines.append(f"| {check} | " + " | ".join(row) + " |")
    system = pathlib.Path("/etc/debian_version").read_text(encoding="utf-8").strip()
    lines += ["", f"{program}, Debian {system}. A dash: not possible here.", "", *notes.lines(), "",
              *(f"- {kind.title}: {versions(kind.packages)}" for kind in kinds.values())]
    return "\n".join(lines) + "\n"
