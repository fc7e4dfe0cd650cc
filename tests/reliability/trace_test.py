#!/usr/bin/env python3
"""Follows every file operation of a run of the packer: a file gets its name only after all that was
written to it was flushed, its folder is flushed behind that, and nothing else ever makes or changes
a file of the package's name."""

import argparse
import pathlib
import sys
import tempfile

import report
from trial import Trial


class Disk:
    """What is not yet on stable storage, as the operations of a trace come."""

    def __init__(self, package):
        self.package = str(package)
        self.paths = {}  # of open descriptors
        self.unflushed = set()  # files with writes behind their last flush
        self.unflushed_folders = set()  # in which a file got its name
        self.counts = {"operations": 0, "writes": 0, "flushes": 0, "renames": 0, "packages": 0}

    def open(self, descriptor, path, _):
        self.paths[descriptor] = path
        return ()

    def create(self, descriptor, path, _):
        if descriptor == "-1":  # a folder
            return
        self.paths[descriptor] = path
        if path == self.package:
            yield "the package is made under its own name"

    def write(self, descriptor, *_):
        self.counts["writes"] += 1
        path = self.paths.get(descriptor, "")
        self.unflushed.add(path)
        if path == self.package:
            yield "the package is changed under its own name"

    def flush(self, descriptor, *_):
        self.counts["flushes"] += 1
        path = self.paths.get(descriptor, "")
        self.unflushed.discard(path)
        self.unflushed_folders.discard(path.rstrip("/"))
        return ()

    def rename(self, _, target, source):
        self.counts["renames"] += 1
        self.counts["packages"] += target == self.package
        self.unflushed_folders.add(str(pathlib.Path(target).parent))
        if source in self.unflushed:
            yield f"{target} gets its name before it is flushed"

    def take(self, line):
        """What is wrong with the operation of a line."""
        call, descriptor, path, second = line.split("\t")
        self.counts["operations"] += 1
        faults = getattr(self, call, None)
        return list(faults(descriptor, path, second)) if faults else []


def faults_of_trace(disk, lines):
    """What is wrong with a whole run."""
    for number, line in enumerate(lines, 1):
        yield from (f"operation {number}: {fault}" for fault in disk.take(line))
    yield from (f"{folder} is not flushed at the end" for folder in disk.unflushed_folders)
    if disk.counts["packages"] != 1:
        yield f"the package got its name {disk.counts['packages']} times"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("faults", type=pathlib.Path, help="the library that writes the trace")
    parser.add_argument("library", type=pathlib.Path, help="the input folder")
    options = parser.parse_args()
    faults, counts = [], {}
    with tempfile.TemporaryDirectory(prefix="trace-") as scratch:
        trial = Trial(pathlib.Path(scratch) / "0", options.program, options.faults, options.library)
        for jobs in (1, 2):
            disk = Disk(trial.output / trial.name)
            faults += faults_of_trace(disk, trial.trace(jobs))
            counts[f"{jobs} threads"] = disk.counts
    report.add("trace", {**counts, "faults_found": len(faults)})
    print("\n".join([*faults[:40], *report.lines_of(counts)]))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
