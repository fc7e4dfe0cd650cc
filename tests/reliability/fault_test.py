#!/usr/bin/env python3
"""Packs a small library again and again while one operation fails: each file operation in turn with
each kind of fault, once and for ever, and each allocation. However a run ends, it ends by itself
with a status of its own, leaves the package whole or absent and nothing else, and does not touch
its input. Prints what it counted; --report writes that as JSON."""

import argparse
import collections
import concurrent.futures
import itertools
import json
import os
import pathlib
import sys
import tempfile

from trial import Trial, alerts_of

# A call that is interrupted or transfers less than it was asked for is no failure at all.
HARMLESS = ("EINTR", "short")
KINDS = ("EIO", "ENOSPC", "EACCES", "EINTR", "short", "memory")
FAILED = 4
FULL_DISK, NO_MEMORY = 3, 0


def faults_of_ending(trial, kind, ever, done):
    """What is wrong with how a run ended."""
    alerts, status = alerts_of(done), done.returncode
    if not 0 <= status <= FAILED or status == 2:
        yield f"ended with {status}"
    if kind in HARMLESS and status != trial.status:
        yield f"ended with {status} rather than {trial.status}"
    if status != FAILED or ever:
        return
    if not done.stderr and not done.stdout:
        yield "failed without a word"
    if kind == "ENOSPC" and FULL_DISK not in alerts:
        yield f"showed {alerts} rather than that the disk is full"
    if kind == "memory" and alerts and NO_MEMORY not in alerts:
        yield f"showed {alerts} rather than that memory is out"


def try_fault(trial, kind, at, ever):
    done = trial.run(kind, at, ever)
    faults = list(faults_of_ending(trial, kind, ever, done))
    faults += trial.faults_of_files(done.returncode in (0, 1))
    # A file that cannot be removed stays, and the next run removes it.
    stuck = [fault for fault in faults if fault.startswith("left .tambra-")]
    if stuck and (ever or kind in ("EIO", "EACCES")) and not list(trial.faults_of_next_run()):
        faults = [fault for fault in faults if fault not in stuck]
    told = done.stderr.decode(errors="replace").strip()[-1500:]
    ending = (kind, ever, done.returncode, "+".join(map(str, alerts_of(done))) or "none")
    return [f"{kind} {at}{' for ever' if ever else ''}: {fault}: {told}" for fault in faults], ending


def plan(trial, options):
    counted = {kind: trial.calls(kind) for kind in options.kinds}
    work = []
    for kind, ever in itertools.product(options.kinds, (False, True)):
        step = options.memory_every if kind == "memory" else options.every
        if not (ever and kind == "EINTR"):  # no system interrupts for ever
            work += [(kind, at, ever) for at in range(1, counted[kind] + 1, step)]
    return counted, work


def run_all(options, scratch):
    trials = [Trial(pathlib.Path(scratch) / str(number), options.program, options.faults,
                    options.library) for number in range(options.jobs)]
    counted, work = plan(trials[0], options)

    def do_share(number):
        return [try_fault(trials[number], *item)
                for item in itertools.islice(work, number, None, len(trials))]

    endings, faults = collections.Counter(), []
    with concurrent.futures.ThreadPoolExecutor(len(trials)) as pool:
        for found, ending in itertools.chain.from_iterable(pool.map(do_share, range(len(trials)))):
            faults += found
            endings[ending] += 1
    return counted, len(work), endings, faults


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("faults", type=pathlib.Path, help="the library that makes calls fail")
    parser.add_argument("library", type=pathlib.Path, help="the input folder")
    parser.add_argument("--kinds", nargs="+", choices=KINDS, default=KINDS)
    parser.add_argument("--every", type=int, default=1, help="only every so many file operations")
    parser.add_argument("--memory-every", type=int, default=1, help="the same for allocations")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--report", type=pathlib.Path)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="faults-") as scratch:
        counted, runs, endings, faults = run_all(options, scratch)
    report = {"calls_that_could_fail": counted, "runs": runs, "faults_found": len(faults),
              "endings": [{"kind": kind, "for_ever": ever, "status": status, "alerts": alerts,
                           "runs": count}
                          for (kind, ever, status, alerts), count in sorted(endings.items())]}
    if options.report:
        options.report.write_text(json.dumps(report, indent=1))
    print("\n".join(faults[:40]))
    print(f"{runs} runs, {len(faults)} faults found; calls that could fail: {counted}")
    for (kind, ever, status, alerts), count in sorted(endings.items()):
        print(f"{kind:7} {'for ever' if ever else 'once':8} status {status} alerts {alerts}: {count}")
    sys.exit(1 if faults or runs == 0 else 0)


main()
