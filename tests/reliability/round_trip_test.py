#!/usr/bin/env python3
"""Encodes and decodes generated streams in bulk, in all forms of the codec: round_trip_test.py
FILETYPES_TESTS STREAMS. Adds what was run to the report."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import report


def main():
    program, streams = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="trips-") as folder:
        result = pathlib.Path(folder) / "result.json"
        begun = time.monotonic()
        done = subprocess.run([program, "--gtest_filter=DWOPCodec.GivesBackThousands*",
                               "--gtest_brief=1", f"--gtest_output=json:{result}"], check=False,
                              env={**os.environ, "TAMBRA_ROUND_TRIPS": streams})
        seconds = round(time.monotonic() - begun, 1)
        case = json.loads(result.read_text())["testsuites"][0]["testsuite"][0]
    counts = {"streams": int(case["streams"]), "round_trips": int(case["round_trips"]),
              "differences": len(case.get("failures", [])), "seconds": seconds}
    print(json.dumps(counts))
    report.add("lossless round trips", counts)
    return done.returncode or counts["streams"] < int(streams)


sys.exit(main())
