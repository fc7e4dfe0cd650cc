#!/usr/bin/env python3
"""Simulates crashes of the block store, on each processor a share with seeds of its own, and adds
what was counted to the report: crash_test.py PROGRAM IMAGES [--seed N]."""

import argparse
import collections
import json
import os
import pathlib
import subprocess
import sys

import report

# Each share takes a seed for each of its scripts from its first one on.
SEEDS_OF_SHARE = 1_000_000


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("images", type=int)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    shares = os.cpu_count()
    running = [subprocess.Popen([options.program, str(-(-options.images // shares)),
                                 str(options.seed + number * SEEDS_OF_SHARE)],
                                stdout=subprocess.PIPE, text=True) for number in range(shares)]
    counts, seeds = collections.Counter(), []
    for process in running:
        output, _ = process.communicate()
        if process.returncode == 0:
            found = json.loads(output)
            seeds.append(found.pop("first_seed"))
            counts.update(found)
    failed = sum(process.returncode != 0 for process in running)
    counts = {**counts, "first_seeds": " ".join(map(str, seeds)), "faults_found": failed}
    report.add("crash images", counts)
    print("\n".join(report.lines_of(counts)))
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
