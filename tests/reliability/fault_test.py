#!/usr/bin/env python3
"""Packs a small library again and again while one operation fails: each file operation in turn with
each kind of fault, and each allocation; once and for ever, with one thread and with two. However a
run ends, it ends by itself with a status and an alert of its own, leaves the package whole or
absent and nothing else, and does not touch its input. Then the same for what reads a package: there
words on standard error stand for the alert, and each file that is written for the package."""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import sys
import tempfile

import report
from trial import CommandTrial, Trial, alerts_of, events_of

# A call that is interrupted or transfers less than it was asked for is no failure at all.
HARMLESS = ("EINTR", "short")
KINDS = ("EIO", "ENOSPC", "EACCES", "remove", "rename", "close", "EINTR", "short", "memory", "thread")
READING = ("EIO", "EACCES")
# A temporary file that cannot be removed stays, and the next run removes it.
STICKING = "remove"
FAILED = 4
REFUSED = 3  # a file that cannot be read is a failed entry, and the input is not packed
FULL_DISK, NO_MEMORY = "1997:3", "1997:0"
NO_MEMORY_TEXT, FULL_DISK_TEXT = b"not enough memory is available", b"No space left on device"
ITSELF = b"/proc/self/exe"  # a program that does not find itself has no texts of alerts
PACK = "pack"
COMMANDS = (PACK, "verify {IN}/package --jobs {JOBS}", "extract {IN}/package {OUT}",
            "list {IN}/package", "diff {IN}/package {IN}/package", "dump {IN}/package",
            "dump {IN}/store", "dwop decode {IN}/stream {OUT}/sound.wav")

Fault = collections.namedtuple("Fault", "kind at ever jobs")


def name_of(fault):
    times = " and ever after" if fault.ever else ""
    return f"{fault.kind} at call {fault.at}{times}, {fault.jobs} threads"


def faults_of_alerts(fault, done):
    """What is wrong with what a failed run told."""
    alerts = alerts_of(done)
    if not alerts and NO_MEMORY_TEXT not in done.stderr and ITSELF not in done.stdout:
        yield "failed without an alert"
    if fault.kind == "memory" and NO_MEMORY not in alerts and NO_MEMORY_TEXT not in done.stderr:
        yield f"showed {alerts} rather than that memory is out"
    if fault.kind == "ENOSPC" and FULL_DISK not in alerts:
        yield f"showed {alerts} rather than that the disk is full"
    results = [event["status"] for event in events_of(done) if event.get("event") == "result"]
    if results and results[-1] != done.returncode:
        yield f"says that it ended with {results[-1]}"


def faults_of_words(fault, done):
    """The same for a command without alerts."""
    if not done.stderr:
        yield "failed without a word"
    if fault.kind == "memory" and NO_MEMORY_TEXT not in done.stderr:
        yield "did not say that memory is out"
    if fault.kind == "ENOSPC" and FULL_DISK_TEXT not in done.stderr:
        yield "did not say that the disk is full"


def faults_of_ending(trial, fault, done):
    """What is wrong with how a run ended."""
    status = done.returncode
    if status not in (*trial.good, FAILED) and not (status == REFUSED and fault.kind in READING):
        yield f"ended with {status}"
    if fault.kind in HARMLESS and status != trial.status:
        yield f"ended with {status} rather than {trial.status}"
    if status in (FAILED, REFUSED):
        yield from (faults_of_alerts if trial.has_alerts else faults_of_words)(fault, done)
    elif not trial.has_alerts and done.stdout != trial.printed:
        yield "printed something else"


def try_fault(trial, fault):
    """Runs once; gives what was wrong and how the run ended."""
    done = trial.run(*fault)
    wrong = [*faults_of_ending(trial, fault, done), *trial.faults_of_files(done.returncode in trial.good)]
    stuck = [each for each in wrong if each.startswith("left .tambra-")]
    if stuck and fault.kind == STICKING and not list(trial.faults_of_next_run()):
        wrong = [each for each in wrong if each not in stuck]
    told = done.stderr.decode(errors="replace").strip()[-1500:]
    alerts = " ".join(alerts_of(done)) or "none"
    ending = f"{fault.kind}: status {done.returncode}, alerts {alerts}"
    return [f"{name_of(fault)}: {each}: {told}" for each in wrong], ending


def places(count, most):
    """Numbers from 1 to `count`: all of them, or as many as wanted, evenly spread."""
    if not most or count <= most:
        return range(1, count + 1)
    return sorted({1 + index * (count - 1) // (most - 1) for index in range(most)})


def plan(command, counted, options):
    """Every fault to be tried."""
    work = []
    for kind, count in counted.items():
        most = options.most_allocations if kind == "memory" else options.most
        if most and command != PACK:
            most = max(2, most // 4)  # for each of many commands
        ways = [(False, 1), (True, 1)] + [(False, 2)] * (command == PACK)
        if kind == "thread":
            ways = [(False, 2), (True, 2)]
        for ever, jobs in ways:
            if not (ever and (options.once or kind == "EINTR")):  # no system interrupts for ever
                work += [Fault(kind, at, ever, jobs) for at in places(count, most)]
    return work


def run_all(command, options, scratch):
    """Tries all faults of a command, several side by side; gives the report and what was wrong."""
    trials = []
    for number in range(options.side_by_side):
        place = (pathlib.Path(scratch) / str(number), options.program, options.faults, options.library)
        trials.append(Trial(*place) if command == PACK else CommandTrial(*place, command))
    counted = {kind: trials[0].calls(kind, 2 if kind == "thread" else 1) for kind in options.kinds}
    work = plan(command, counted, options)

    def do_share(number):
        share = work[number::len(trials)]
        return [try_fault(trials[number], fault) for fault in share]

    endings, wrong = collections.Counter(), []
    with concurrent.futures.ThreadPoolExecutor(len(trials)) as pool:
        for results in pool.map(do_share, range(len(trials))):
            for found, ending in results:
                wrong += found
                endings[ending] += 1
    runs = collections.Counter(fault.kind for fault in work)
    return {"runs": len(work), "runs_of_kind": dict(runs), "calls_that_could_fail": counted,
            "endings": dict(endings), "faults_found": len(wrong)}, [f"{command}: {each}" for each in wrong]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("faults", type=pathlib.Path, help="the library that makes calls fail")
    parser.add_argument("library", type=pathlib.Path, help="the input folder")
    parser.add_argument("--kinds", nargs="+", choices=KINDS, default=KINDS)
    parser.add_argument("--most", type=int, default=0, help="places that each kind of fault strikes")
    parser.add_argument("--most-allocations", type=int, default=0, help="the same for allocations")
    parser.add_argument("--once", action="store_true", help="no fault that stays")
    parser.add_argument("--side-by-side", type=int, default=os.cpu_count())
    parser.add_argument("--commands", nargs="+", choices=COMMANDS, default=COMMANDS)
    options = parser.parse_args()
    counts, faults = {}, []
    for command in options.commands:
        with tempfile.TemporaryDirectory(prefix="faults-") as scratch:
            counts[command], wrong = run_all(command, options, scratch)
        print("\n".join(wrong[:40]), flush=True)
        faults += wrong
    runs = [each["runs"] for each in counts.values()]
    counts = {"runs": sum(runs), "faults_found": len(faults), **counts}
    report.add("failing calls", counts)
    print("\n".join(report.lines_of(counts)))
    sys.exit(1 if faults or not all(runs) else 0)


if __name__ == "__main__":
    main()
