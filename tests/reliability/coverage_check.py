#!/usr/bin/env python3
"""Builds the tests with counters, runs them and adds to the report which part of the code they run
through: coverage_check.py BUILD_FOLDER. In the build folder coverage.txt then lists the lines that no
test reaches, and for the files whose every branch should be tried the branches, too."""

import argparse
import json
import pathlib
import subprocess
import sys

import report

FOLDERS = ("Parts/TolbrookPackage/Core", "package", "references", "codecs", "filetypes", "app")
# A commit, the opening of a block store, and the reader of a package's index.
EVERY_BRANCH = [f"package/{name}" for name in (
    "BlockStore.cpp", "BlockDirectory.cpp", "BlockFile.cpp", "BlockAllocator.cpp", "PackageFormat.cpp",
    "PackageIndex.cpp", "PackageReader.cpp")]
TESTS = [f"{pathlib.Path(folder).name.lower()}_tests" for folder in FOLDERS]
# Those that run the program and the windows go through much of app that no other test does.
# (Hostile files take too long for a build that counts.)
PROGRAMS = ["tambra", "lqx_standin", "main_window_tests", "folder_watch_tests", "package_window_tests"]
RUN = ("^(core|package|references|codecs|filetypes|app|command_line|cache|advice|reading|"
       "main_window|folder_watch|package_window)$")


def run(*command):
    subprocess.run(list(map(str, command)), cwd=report.ROOT, check=True)


def measure(build):
    """The percentages of lines and branches, by folder and over all."""
    summary, details = build / "coverage.json", build / "coverage-details.json"
    filters = [part for folder in FOLDERS for part in ("--filter", f"{report.ROOT}/{folder}/")]
    # Threads that count at once can make a count negative, which gcovr does not take for one.
    run("gcovr", "--root", report.ROOT, *filters, "--gcov-ignore-parse-errors", "--exclude-throw-branches",
        "--exclude-unreachable-branches", "--json-summary", summary, "--json", details, build)
    found = json.loads(summary.read_text(encoding="utf-8"))
    counts = {"lines_percent": found["line_percent"], "branches_percent": found["branch_percent"],
              "lines": found["line_total"]}
    for folder in FOLDERS:
        files = [file for file in found["files"] if file["filename"].startswith(folder + "/")]
        total = sum(file["line_total"] for file in files)
        covered = sum(file["line_covered"] for file in files)
        counts[f"lines_percent_of_{pathlib.Path(folder).name}"] = round(100 * covered / total, 1)
    counts["branches"] = {file["filename"]: f"{file['branch_covered']} of {file['branch_total']}"
                          for file in found["files"] if file["filename"] in EVERY_BRANCH}
    missed = list(missed_lines(json.loads(details.read_text(encoding="utf-8"))["files"]))
    (build / "coverage.txt").write_text("\n".join(missed) + "\n", encoding="utf-8")
    return counts


def missed_lines(files):
    """The lines that no test reached; of some files those with a way that none took, too."""
    for file in files:
        source = (report.ROOT / file["file"]).read_text(encoding="utf-8").splitlines()
        for line in file["lines"]:
            ways = [branch["count"] for branch in line["branches"]]
            what = "line" if line["count"] == 0 else "branch" if 0 in ways else ""
            if not line.get("gcovr/noncode") and (
                    what == "line" or what and file["file"] in EVERY_BRANCH):
                number = line["line_number"]
                yield f"{what:7}{file['file']}:{number}: {source[number - 1].strip()}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path)
    build = parser.parse_args().build.resolve()
    run("cmake", "--preset", "coverage", "-B", build)
    run("cmake", "--build", build, "--target", *TESTS, *PROGRAMS)
    for counters in build.rglob("*.gcda"):
        counters.unlink()
    run("ctest", "--test-dir", build, "-R", RUN, "--output-on-failure")
    counts = measure(build)
    report.add("coverage", counts)
    print("\n".join(report.lines_of(counts)))
    sys.exit(0)


if __name__ == "__main__":
    main()
