#!/usr/bin/env python3
"""Kills and stops the real program while it packs a small library: with SIGKILL at file operations
and at random times, with SIGINT at file operations. Then the package is absent or whole, a stopped
run has left nothing, and the next run succeeds and removes what a killed one left."""

import argparse
import collections
import pathlib
import random
import subprocess
import sys
import tempfile
import time

import report
from trial import TIME_LIMIT, Trial

STOPPED = 130
KILLED = -9


def points(count, wanted):
    """`wanted` numbers from 1 to `count`, evenly spread, the last ones (where the package gets its
    name) all of them."""
    tail = range(max(1, count - wanted // 4), count + 1)
    return sorted({1 + index * (count - 1) // max(1, wanted - 1) for index in range(wanted)} |
                  set(tail))


def after_kill(trial, place, status, endings):
    """What is wrong after a run that was killed, or ended before it could be."""
    endings["package whole" if (trial.output / trial.name).exists() else "package absent"] += 1
    if status == KILLED:
        # The working files of a killed run are the next run's to remove.
        faults = [fault for fault in trial.faults_of_files(False)
                  if not fault.startswith("left .tambra-")]
    else:
        faults = list(trial.faults_of_files(status == trial.status))
    faults += trial.faults_of_next_run()
    return [f"{place}: {fault}" for fault in faults]


def kill_at_calls(trial, wanted, endings):
    """Kills at file operations; gives what is wrong."""
    for at in points(trial.calls("kill"), wanted):
        done = trial.run("kill", at)
        yield from after_kill(trial, f"killed at call {at}", done.returncode, endings)
        if done.returncode != KILLED:
            yield f"killed at call {at}: ended with {done.returncode}"


def kill_at_times(trial, wanted, seed, endings):
    """Kills at random times beside an earlier package; gives what is wrong."""
    began = time.monotonic()
    trial.run(jobs=2)
    length = time.monotonic() - began
    chance = random.Random(seed)
    for _ in range(wanted):
        trial.run("EIO", 10**9)  # an earlier package, which a killed run may leave or remove
        process = trial.start(jobs=2)
        moment = chance.uniform(0, length)
        try:
            process.communicate(timeout=moment)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate(timeout=TIME_LIMIT)
        yield from after_kill(trial, f"killed after {moment:.4f} s", process.returncode, endings)


def stop_at_calls(trial, wanted, endings):
    """Asks to stop at file operations; gives what is wrong."""
    for at in points(trial.calls("stop"), wanted):
        done = trial.run("stop", at)
        endings[f"stopped: status {done.returncode}"] += 1
        if done.returncode not in (STOPPED, trial.status):
            yield f"stopped at call {at}: ended with {done.returncode}"
        for fault in trial.faults_of_files(done.returncode == trial.status):
            yield f"stopped at call {at}: {fault}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("faults", type=pathlib.Path, help="the library that sends the signals")
    parser.add_argument("library", type=pathlib.Path, help="the input folder")
    parser.add_argument("--count", type=int, default=150, help="of each of the three kinds")
    parser.add_argument("--least", type=int, default=1, help="kills that there must have been")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    endings = collections.Counter()
    with tempfile.TemporaryDirectory(prefix="kills-") as scratch:
        trial = Trial(pathlib.Path(scratch) / "0", options.program, options.faults, options.library)
        faults = [*kill_at_calls(trial, options.count, endings),
                  *kill_at_times(trial, options.count, options.seed, endings)]
        kills = endings.total()
        faults += stop_at_calls(trial, options.count, endings)
    if kills < options.least:
        faults.append(f"only {kills} kills, not {options.least}")
    counts = {"kills": kills, "stops": endings.total() - kills, "seed": options.seed,
              "faults_found": len(faults), "endings": dict(endings)}
    report.add("kills", counts)
    print("\n".join([*faults[:40], *report.lines_of(counts)]))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
