#!/usr/bin/env python3
"""Builds the tests with counters, runs them and adds to the report which part of the code they run
through: coverage_check.py BUILD_FOLDER."""

import argparse
import json
import pathlib
import subprocess
import sys

import report

FOLDERS = ("Parts/TolbrookPackage/Core", "package", "references", "codecs", "filetypes", "app")
TESTS = [f"{pathlib.Path(folder).name.lower()}_tests" for folder in FOLDERS]


def run(*command):
    subprocess.run(list(map(str, command)), cwd=report.ROOT, check=True)


def measure(build):
    """The percentages of lines and branches, by folder and over all."""
    summary = build / "coverage.json"
    filters = [part for folder in FOLDERS for part in ("--filter", f"{report.ROOT}/{folder}/")]
    run("gcovr", "--root", report.ROOT, *filters, "--exclude-throw-branches",
        "--exclude-unreachable-branches", "--json-summary", summary, build)
    found = json.loads(summary.read_text(encoding="utf-8"))
    counts = {"lines_percent": found["line_percent"], "branches_percent": found["branch_percent"],
              "lines": found["line_total"]}
    for folder in FOLDERS:
        files = [file for file in found["files"] if file["filename"].startswith(folder + "/")]
        total = sum(file["line_total"] for file in files)
        covered = sum(file["line_covered"] for file in files)
        counts[f"lines_percent_of_{pathlib.Path(folder).name}"] = round(100 * covered / total, 1)
    return counts


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path)
    build = parser.parse_args().build.resolve()
    run("cmake", "--preset", "coverage", "-B", build)
    run("cmake", "--build", build, "--target", *TESTS)
    for counters in build.rglob("*.gcda"):
        counters.unlink()
    for program in TESTS:
        run(build / "bin" / program, "--gtest_brief=1")
    counts = measure(build)
    report.add("coverage", counts)
    print("\n".join(report.lines_of(counts)))
    sys.exit(0)


if __name__ == "__main__":
    main()
