#!/usr/bin/env python3
"""Breaks one thing of the program at a time, in a copy of its tree, and looks whether a test fails:
mutation_check.py COPY. The copy is built once and then changed and built again for each entry of the
table. A change that no test notices is a fault of the tests."""

import argparse
import json
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
CORE = "Parts/TolbrookPackage/Core/"
STORE = ("package_tests", "crash_simulation")
# File, what stands there, what is put in its place, programs of which one must fail.
MUTATIONS = [
    (CORE + "CRC16.cpp", "kPolynomial = 0x1021", "kPolynomial = 0x1023", ("core_tests",)),
    (CORE + "FormatVersion.cpp", "<=", "<", ("core_tests", "package_tests")),
    ("package/BlockFile.cpp", "!= NSTolbrook::CRC16(all.first(kSlotCheckedSize))",
     "== 0 && check != 0", STORE),
    ("package/BlockStore.cpp", "slots[1]->fGeneration > slots[0]->fGeneration",
     "slots[1]->fGeneration < slots[0]->fGeneration", STORE),
    ("package/BlockStore.cpp", "fSlot = 1 - fSlot", "fSlot = fSlot", STORE),
    ("package/BlockStore.cpp", "if (previous) state.fPrevious", "if (!current) state.fPrevious",
     STORE),
    ("package/BlockDirectory.cpp", ">=", ">", STORE),
    ("package/PackageFormat.cpp", ">", ">=", ("package_tests",)),
    ("package/PackageReader.cpp", ">", ">=", ("package_tests",)),
    ("package/PackageIndex.cpp", "input.Remaining() < tail.size()",
     "input.Remaining() + 1 < tail.size()", ("package_tests",)),
    ("filetypes/dwop/DWOPFormat.h", "kDWOPInitialSum = 2560", "kDWOPInitialSum = 2561",
     ("filetypes_tests",)),
    ("filetypes/dwop/DWOPFormat.h", "kDWOPEscapeZeros = 7", "kDWOPEscapeZeros = 6",
     ("filetypes_tests",)),
    ("filetypes/dwop/DWOPFormat.h", "kDWOPEscapeLimit = std::uint32_t{1} << 30",
     "kDWOPEscapeLimit = std::uint32_t{1} << 31", ("filetypes_tests",)),
    ("filetypes/dwop/DWOPPredictor.h", ">> 7", ">> 6", ("filetypes_tests",)),
    ("references/PathForms.cpp", "<", "<=", ("references_tests",)),
]


def run(*command, **options):
    return subprocess.run(list(map(str, command)), capture_output=True, text=True, check=False,
                          **options)


def build(tree, programs):
    done = run("cmake", "--build", tree / "build/check", "--target", *programs)
    return done.returncode == 0, done.stdout[-2000:] + done.stderr[-2000:]


def notices(tree, program):
    arguments = ["20000"] if program == "crash_simulation" else ["--gtest_brief=1"]
    try:
        return run(tree / "build/check/bin" / program, *arguments, timeout=600).returncode != 0
    except subprocess.TimeoutExpired:
        return True


def try_mutation(tree, path, old, new, programs):
    """What became of one change: "noticed", "not noticed", "does not build" or "is not there"."""
    file = tree / path
    text = file.read_text(encoding="utf-8")
    body = text.find("namespace {") if text.count(old) > 1 else 0
    place = text.find(old, max(body, 0))
    if place < 0:
        return "is not there"
    file.write_text(text[:place] + new + text[place + len(old):], encoding="utf-8")
    try:
        built, told = build(tree, programs)
        if not built:
            print(told, file=sys.stderr)
            return "does not build"
        return "noticed" if any(notices(tree, program) for program in programs) else "not noticed"
    finally:
        file.write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("copy", type=pathlib.Path, help="a folder to make the copy in")
    parser.add_argument("--report", type=pathlib.Path)
    options = parser.parse_args()
    tree = options.copy.resolve() / "tree"
    shutil.rmtree(tree, ignore_errors=True)
    done = run("git", "clone", "-q", ROOT, tree)
    if done.returncode != 0 or run("cmake", "--preset", "check", cwd=tree).returncode != 0:
        raise SystemExit(done.stderr or "the copy cannot be configured")
    programs = sorted({program for *_, tests in MUTATIONS for program in tests})
    built, told = build(tree, programs)
    if not built or any(notices(tree, program) for program in programs):
        raise SystemExit(f"the tests must pass before anything is broken: {told}")
    results = []
    for path, old, new, tests in MUTATIONS:
        outcome = try_mutation(tree, path, old, new, tests)
        results.append({"file": path, "from": old, "to": new, "outcome": outcome})
        print(f"{outcome:14} {path}: {old} -> {new}", flush=True)
    missed = [result for result in results if result["outcome"] != "noticed"]
    if options.report:
        options.report.write_text(json.dumps({"mutations": len(results),
                                              "noticed": len(results) - len(missed),
                                              "results": results}, indent=1))
    sys.exit(1 if missed else 0)


main()
