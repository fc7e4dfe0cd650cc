#!/usr/bin/env python3
"""Cuts small files to every length and turns each of their bits, in process: damage_test.py FOLDER of
the programs. Adds what was run to the report."""

import json
import pathlib
import struct
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
import report
from crafted import JPEG, SAMPLE, SONG, Entry, block_store, dwop, extra, package, stream

# The stream of the frames (100, 101), (-3, 1000), and the source that it is made of.
WORDS = bytes.fromhex("16228C000F400000")
SOURCE = (struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36, b"WAVE", b"fmt ", 16, 1, 2, 44100, 176400, 4,
                      16, b"data", 0) + b"!")
SAMPLE_STREAM = dwop(WORDS, 2, channels=2, behind=extra(SOURCE))
PICTURE = (b"\xff\xd8\xff\xdb\0\x43\0" + b"\1" * 64 + b"\xff\xc0\0\x0b\x08\0\1\0\1\1\1\x11\0\xff\xd9")
PATCH = (b'<?xml version="1.0"?><Patch deviceID="d"><Samples><SampleReference originalFileName="a" '
         b'userFriendlyName="a" type="sample"><DatabasePath>Kit:a.wav</DatabasePath></SampleReference>'
         b"</Samples></Patch>")
FILES = {
    "package": package(("a.pad", b"x"), Entry("dir/b.jpg", PICTURE, JPEG), Entry("c.vlpatch", PATCH, 39, 0),
                       Entry("d.ons", b"FORM\0\0\0\4ONS ", SONG, 0), comment="c\u00e4"),
    "samples": package(("a.pad", b"x"), Entry("a.wav", SAMPLE_STREAM, SAMPLE),
                       Entry("b.wav", dwop(WORDS, 2, channels=2), SAMPLE)),
    "store": block_store(stream(), stream(2, 100, (4, 5)), stream(7, 0, ())) + bytes(2 * 56),
    "stream": SAMPLE_STREAM,
}
PROGRAMS = {"Package": ("package", "samples"), "Extract": ("package", "samples"),
            "Contents": ("package", "samples"), "Dump": FILES,
            "BlockStore": ("store",), "DWOP": ("stream",)}


def main():
    counts, failed = {"inputs": 0}, []
    with tempfile.TemporaryDirectory(prefix="damage-") as folder:
        for name, content in FILES.items():
            (pathlib.Path(folder) / name).write_bytes(content)
        for program, names in PROGRAMS.items():
            done = subprocess.run([pathlib.Path(sys.argv[1]).resolve() / f"{program}Damage", *names], cwd=folder,
                                  capture_output=True, text=True, check=False)
            if done.returncode:
                found = pathlib.Path(folder) / "found"
                shown = found.read_bytes().hex() if found.exists() else ""
                failed.append(f"{program}: status {done.returncode} {shown}\n{done.stdout}{done.stderr}")
                continue
            counts[program] = json.loads(done.stdout)
            counts["inputs"] += counts[program]["inputs"]
    counts["failed"] = len(failed)
    print(*failed, json.dumps(counts), sep="\n")
    report.add("damaged files", counts)
    return 1 if failed else 0


sys.exit(main())
