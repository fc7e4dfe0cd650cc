#!/usr/bin/env python3
"""Lets memory run out inside every parser and packer: runs failing_allocations on a folder that
goes away and adds what it counted to the report."""

import argparse
import json
import pathlib
import subprocess
import sys
import tempfile

import report


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("--most", type=int, default=0, help="places in the work on a file; 0: all")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="allocations-") as scratch:
        package = report.ROOT / "tests/data/libraries/small/expected.tmb"
        done = subprocess.run([options.program, scratch, package, str(options.most)],
                              stdout=subprocess.PIPE, text=True, check=False)
    counts = json.loads(done.stdout) if done.returncode == 0 else {}
    counts["faults_found"] = int(done.returncode != 0)
    report.add("failing allocations of parsers", counts)
    print("\n".join(report.lines_of(counts)))
    sys.exit(1 if done.returncode != 0 else 0)


if __name__ == "__main__":
    main()
