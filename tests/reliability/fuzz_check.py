#!/usr/bin/env python3
"""Runs every fuzz target for so many seconds and adds what was executed to the report."""

import argparse
import json
import subprocess
import sys

import report


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("seconds", type=int)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    summary = report.ROOT / "build/fuzz-report.json"
    summary.unlink(missing_ok=True)
    status = subprocess.run([report.ROOT / "scripts/fuzz", str(options.seconds), "--seed",
                             str(options.seed)], check=False).returncode
    found = json.loads(summary.read_text(encoding="utf-8")) if summary.exists() else {"targets": []}
    counts = {"seconds_of_each": options.seconds, "seed": options.seed,
              "executions": found.get("executions", 0), "targets": len(found["targets"]),
              "faults_found": found.get("findings", 0)}
    report.add("fuzzing", counts)
    sys.exit(status)


if __name__ == "__main__":
    main()
