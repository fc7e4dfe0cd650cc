#!/usr/bin/env python3
"""Breaks one thing of the program at a time, in a copy of its tree, and looks whether a test fails:
mutation_check.py COPY. The copy is built once and then changed and built again for each entry of
mutations.py. A change that no test notices is a fault of the tests."""

import argparse
import collections
import pathlib
import resource
import shutil
import subprocess
import sys

import report
from mutations import MUTATIONS

# What a test needs; the others are the programs of their folder.
TARGETS = {"crash_simulation": ["crash_simulation"], "trace": ["tambra", "faulty_calls"],
           "failing_calls": ["tambra", "faulty_calls"]}
TIME_LIMIT = 300
MEMORY_LIMIT = 4 << 30  # what runs in a circle ends here


def run(*command, **options):
    return subprocess.run(list(map(str, command)), capture_output=True, text=True, check=False,
                          **options)


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))


class Copy:
    """A copy of the tree, built without optimising: what changes is built soon."""

    def __init__(self, folder):
        self.tree, self.build_folder = folder / "tree", folder / "build"
        shutil.rmtree(self.tree, ignore_errors=True)
        done = run("git", "clone", "-q", report.ROOT, self.tree)
        if done.returncode == 0:
            done = run("cmake", "--preset", "debug", "-B", self.build_folder, "-DTAMBRA_WERROR=OFF",
                       "-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
                       cwd=self.tree)
        if done.returncode != 0:
            raise SystemExit(f"the copy cannot be made: {done.stdout}{done.stderr}")

    def build(self, tests):
        """Whether the programs of these tests could be built, and what the compiler said."""
        targets = {target for test in tests for target in TARGETS.get(test, [f"{test}_tests"])}
        done = run("cmake", "--build", self.build_folder, "--target", *sorted(targets))
        return done.returncode == 0, done.stdout[-3000:] + done.stderr[-3000:]

    def passes(self, tests):
        """Whether all these tests pass."""
        pattern = f"^({'|'.join(tests)})$"
        done = run("ctest", "--test-dir", self.build_folder, "-R", pattern, "--no-tests=error",
                   "--stop-on-failure", "--timeout", TIME_LIMIT, preexec_fn=limit_memory)
        return done.returncode == 0

    def try_mutation(self, path, old, new, tests):
        """What became of one change: "noticed", "not noticed", "does not build", "is not there"."""
        file = self.tree / path
        text = file.read_text(encoding="utf-8")
        if text.count(old) != 1:
            return "is not there"
        file.write_text(text.replace(old, new), encoding="utf-8")
        try:
            built, told = self.build(tests)
            if not built:
                print(told, file=sys.stderr)
                return "does not build"
            return "not noticed" if self.passes(tests) else "noticed"
        finally:
            file.write_text(text, encoding="utf-8")


def check(copy, mutations):
    """The outcome of each mutation."""
    tests = sorted({test for *_, tests in mutations for test in tests})
    built, told = copy.build(tests)
    if not built or not copy.passes(tests):
        raise SystemExit(f"the tests must pass before anything is broken: {told}")
    for kind, path, old, new, tests in mutations:
        outcome = copy.try_mutation(path, old, new, tests)
        print(f"{outcome:14} {kind:12} {path}: {old.strip()!r} -> {new.strip()!r}", flush=True)
        yield kind, outcome


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("copy", type=pathlib.Path, help="a folder to make the copy in")
    parser.add_argument("--kinds", nargs="+", default=sorted({kind for kind, *_ in MUTATIONS}))
    options = parser.parse_args()
    chosen = [mutation for mutation in MUTATIONS if mutation[0] in options.kinds]
    outcomes = list(check(Copy(options.copy.resolve()), chosen))
    counts = {"mutations": len(outcomes), "kinds": dict(collections.Counter(k for k, _ in outcomes)),
              "outcomes": dict(collections.Counter(outcome for _, outcome in outcomes))}
    report.add("mutations", counts)
    print("\n".join(report.lines_of(counts)))
    sys.exit(0 if outcomes and set(counts["outcomes"]) == {"noticed"} else 1)


if __name__ == "__main__":
    main()
