#!/usr/bin/env python3
"""The report that the reliability tests share: a JSON file of sections, each with what one test
counted and the commit that it ran at. Several may add to it at once. `report.py FILE...` prints it."""

import fcntl
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def place():
    """The file: the one that the environment names in TAMBRA_REPORT, or the build folder's."""
    return pathlib.Path(os.environ.get("TAMBRA_REPORT") or ROOT / "build/reliability-report.json")


def commit():
    """The commit of the tree, marked as dirty when files differ from it."""
    done = subprocess.run(["git", "describe", "--always", "--dirty", "--exclude=*", "--abbrev=12"],
                          cwd=ROOT, capture_output=True, text=True, check=False)
    return done.stdout.strip() or "unknown"


def read(file):
    """The sections of a report, none when there is no such file."""
    try:
        return json.loads(file.read_text(encoding="utf-8"))
    except FileNotFoundError:
        return {}


def add(section, counts):
    """Puts what a test counted into the report, in place of what its last run did."""
    file = place()
    file.parent.mkdir(parents=True, exist_ok=True)
    with open(file.with_name(file.name + ".lock"), "w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        sections = read(file)
        sections[section] = {"commit": commit(), **counts}
        fresh = file.with_name(file.name + ".new")
        fresh.write_text(json.dumps(sections, indent=1, sort_keys=True) + "\n", encoding="utf-8")
        os.replace(fresh, file)


def lines_of(value, depth=0):
    """A value as lines for people: one for each plain value, lists in short."""
    for name, item in value.items():
        if isinstance(item, dict):
            yield f"{'  ' * depth}{name}:"
            yield from lines_of(item, depth + 1)
        else:
            shown = f"{item:,}" if isinstance(item, int) else item
            yield f"{'  ' * depth}{name}: {shown if not isinstance(item, list) else len(item)}"


def main():
    """Prints the reports of the files that were given, or that of the place where it lies."""
    for file in [pathlib.Path(name) for name in sys.argv[1:]] or [place()]:
        sections = read(file)
        if not sections:
            sys.exit(f"there is no report in {file}")
        print("\n".join(lines_of(sections)))


if __name__ == "__main__":
    main()
