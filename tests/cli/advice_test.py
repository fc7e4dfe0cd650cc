#!/usr/bin/env python3
"""The advice of a check and the summary of a run, as users see them: advice_test.py PROGRAM DOCS."""

import json
import math
import os
import pathlib
import re
import struct
import sys
import unittest

from program import BASE, crafted, run_tests, tambra

DOCS = os.path.abspath(sys.argv[2])
RATE = 8000


def wave(values, bits=16, key=None, loop=None, junk=b""):
    """A mono WAVE file; values are fractions of full scale, those of 32 bits floating point."""
    top = 2 ** (bits - 1)
    integers = [max(-top, min(top - 1, round(v * top))) for v in values]
    data = (struct.pack(f"<{len(values)}f", *values) if bits == 32 else
            b"".join(v.to_bytes(bits // 8, "little", signed=True) for v in integers))
    smpl = b""
    if key is not None or loop:
        loops = struct.pack("<6I", 0, 0, loop[0], loop[1] - 1, 0, 0) if loop else b""
        smpl = crafted.riff_chunk(b"smpl", struct.pack("<9I", 0, 0, 0, 60 if key is None else key, 0, 0,
                                                       0, bool(loop), 0) + loops)
    return crafted.wave_file(data, 3 if bits == 32 else 1, bits, RATE, junk, smpl)


def sine(frequency, level=0.5, seconds=1.0, offset=0.0):
    return [offset + level * math.sin(2 * math.pi * frequency * i / RATE)
            for i in range(int(seconds * RATE))]


def folder(name, files):
    """A folder with the least that is packed, and these files."""
    root = BASE / name
    for path, content in {"NAME.TXT": name.encode(), "Splash.jpg": SPLASH, **files}.items():
        (root / path).parent.mkdir(parents=True, exist_ok=True)
        (root / path).write_bytes(content)
    return root


TONE = [round(v * 32768) / 32768 for v in sine(100)]  # the same in more bits
ODD = wave(TONE[:401], bits=8)[:-1]  # the pad byte is missing, and the outer size tells of it
ODD = ODD[:4] + struct.pack("<I", len(ODD) - 8) + ODD[8:]
FILES = {
    "Bad/clip.wav": wave([max(-1, min(1, v)) for v in sine(100, 1.2)]),
    "Bad/empty.wav": wave([]),
    "Bad/float.wav": wave(sine(90), bits=32),
    "Bad/click.wav": wave(sine(20), loop=(1000, 5100)),
    "Bad/offset.wav": wave(sine(110, offset=0.02)),
    "Bad/無音.wav": wave([1 / 32768, 0] * 4000),
    "Bad/was?/eins.wav": wave([0.2] * 300),
    "Bad/was?/zwei.wav": wave([0.3] * 300),
    "Copy/twin.wav": wave(TONE, bits=24, junk=crafted.riff_chunk(b"LIST", b"INFO")),
    "Fine/normal.wav": wave(sine(20, 1.0)),
    "Fine/pulse.wav": wave([1.0 if i // 40 % 2 else -1.0 for i in range(8000)]),
    "Fine/kick.wav": wave([math.exp(-i / 800) * math.sin(12 * (1 - math.exp(-i / 400)))
                           for i in range(8000)]),
    "Fine/loop.wav": wave(sine(20, seconds=2), loop=(800, 8800)),
    "Fine/saw.wav": wave([i % 80 / 40 - 1 for i in range(80)], loop=(0, 80)),
    "Fine/short.wav": wave([0.1] * 400),
    "Fine/tone.wav": wave(TONE),
    **{f"Keys/{key}.wav": wave(sine(key), key=key) for key in (48, 50, 52, 53)},
    "Keys/55.wav": wave(sine(55)),
    "keys/57.wav": wave(sine(57), key=57),
}
EXPECTED = """\
Paths that differ only in case (warning: case-clash):
    keys  elsewhere “Keys”
Samples without sound data (warning: empty-sample):
    Bad/empty.wav
Silent samples (warning: silent-sample):
    Bad/無音.wav  1.00 s
Clipped samples (warning: clipped-sample):
    Bad/clip.wav  200 places, the longest of 15 samples, the first at 0.00 s
Samples with a DC offset (warning: dc-offset):
    Bad/offset.wav  2.00 % of full scale
Loops that click (warning: loop-click):
    Bad/click.wav  jump of X % of full scale, X % at most elsewhere; loop 1000 to 5100
Samples without the root key that their neighbours have (warning: missing-root-key):
    Keys/55.wav  4 of the 5 samples in the folder have one
Names that not every system can store (warning: unportable-name):
    Bad/was?  holds one of the reserved characters \\ : * ? " < > |
Samples that are converted (note: samples-converted):
    Bad/float.wav  32 bits, packed as 24 bits
The same audio twice (note: duplicate-audio):
    Fine/tone.wav  the same as “Copy/twin.wav”
23 files can be packed. Advice: 0 errors, 8 warnings, 2 notes.""".splitlines()


class AdviceTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        global SPLASH
        assert tambra("demo", "demo")[0] == 0
        SPLASH = (BASE / "demo/Splash.jpg").read_bytes()
        folder("Library", FILES)

    def test_each_kind_is_found_where_it_is_and_nowhere_else(self):
        for jobs in ("1", "3"):
            status, output, _ = tambra("check", "Library", "--jobs", jobs)
            output = [re.sub(r"\d+\.\d+ % (of full|at most)", r"X % \1", line)
                      if "jump" in line else line for line in output]
            self.assertEqual((status, output), (0, EXPECTED))
        self.assertEqual(tambra("check", "demo")[1], [  # the demo's documents that have been moved
            "References that are not found where they say (warning: searched-reference):",
            "    Patches/Bass.dp07              Bass A2.AIF => ../Alte Ablage/Bass A2.AIF, "
            "found at “Samples/Töne/Bass A2.AIF”",
            "    Stücke/Alt/Veröffentlicht.ops  Fläche F3.wav => ../Alte Ablage/Fläche F3.wav, "
            "found at “Samples/Töne/Fläche F3.wav”",
            "60 files can be packed. Advice: 0 errors, 2 warnings, 0 notes."])
        folder("Plain", {"a.wav": wave(TONE)})
        self.assertEqual(tambra("check", "Plain")[:2],
                         (0, ["No problems were found: 2 files can be packed."]))

    def test_severities_decide_and_rules_change_them(self):
        rules = BASE / "rules"
        local = BASE / "Library/.tambra-check"
        cases = [  # rules in the folder, of the option, --fail-on, status, ids that are left
            ("", "", "error", 0, 10), ("", "", "warning", 3, 10), ("", "", "note", 3, 10),
            ("off * Bad/*", "", "warning", 3, 3), ("off *", "", "note", 0, 0),
            ("off *", "error loop-click Bad/*.wav", "error", 3, 1),
            ("# all\r\n\r\nnote\t*\nwarning dc-offset Bad/?ffset.wav", "", "warning", 3, 10),
            ("error loop-click Fine/*", "", "error", 0, 10)]
        for local_text, text, fail_on, expected, kinds in cases:
            local.write_text(local_text)
            rules.write_text(text)
            status, output, _ = tambra("check", "Library", "--json", "--overrides", rules,
                                       "--fail-on", fail_on)
            events = [json.loads(line) for line in output]
            found = {e["id"] for e in events if e["event"] == "advice"}
            self.assertEqual((status, len(found), events[-1]),
                             (expected, kinds, {"event": "result", "status": expected, "files": 23}),
                             (local_text, text, fail_on))
        local.unlink()
        for text, fault in (("note", '"" is no kind of advice'),
                            ("\nloud *", '"loud" is no severity, but error, warning, note and off are'),
                            ("off clipping", '"clipping" is no kind of advice')):
            rules.write_text(text)
            line = text.count("\n") + 1
            self.assertEqual(tambra("check", "Library", "--overrides", "rules"),
                             (4, [], [f"rules: line {line}: {fault}"]))

    def test_events_carry_the_numbers(self):
        events = [json.loads(line) for line in tambra("check", "Library", "--json")[1]]
        clip = next(e for e in events if e.get("id") == "clipped-sample")
        clip["values"].pop("first_seconds")
        self.assertEqual(clip, {
            "event": "advice", "id": "clipped-sample", "severity": "warning",
            "file": "Bad/clip.wav", "message": clip["message"],
            "values": {"places": 200, "longest": 15}})
        bar = [e["thousandths"] for e in events if e["event"] == "progress"]
        self.assertEqual((bar, bar[-1]), (sorted(bar), 990))

    def test_stray_files_fail_unless_they_are_known(self):
        stray = folder("Stray", {"a.wav": wave(TONE), "notes.png": b"x", "odd.wav": ODD})
        found = ["Files of a type that is not packed (error: stray-file):", "    notes.png"]
        kept = ["Sample files that are not kept byte for byte (note: source-not-kept):",
                "    odd.wav  the pad byte behind its samples is missing or not zero"]
        status, output, _ = tambra("check", "Stray")
        self.assertEqual((status, output), (3, [
            "Failed validating:", "    notes.png", "        No verifier found for format", *found,
            *kept]))
        (stray / ".tambra-check").write_text("note stray-file *.png\n")
        found[0] = found[0].replace("error", "note")
        status, output, error = tambra("pack", "Stray", "no", "--dry-run", "--quiet")
        self.assertEqual((status, output, error), (0, [
            *found, *kept, "3 files can be packed. Advice: 0 errors, 0 warnings, 2 notes."], []))
        self.assertFalse((BASE / "no").exists())

    def test_summary(self):
        folder("Sum", {"a.wav": wave(TONE), "b.wav": wave(sine(60)), "c.mid": (
            BASE / "demo/MIDI/Groove.mid").read_bytes(), "x.png": b"x", "old/y.wav": b"",
            "INFO.TXT": b'SKIP_ITEM="old"'})
        status, output, error = tambra("pack", "Sum", "out", "--yes")
        start = next(i for i, line in enumerate(error) if line.startswith("Type"))
        table = [re.split(r"  +", line) for line in error[start:start + 5]]
        self.assertEqual([row[0] for row in (table[0], table[-1])], ["Type", "Total"])
        types = {row[0]: row[1:] for row in table}
        self.assertEqual(types["JPEG Picture"], ["1", "1743", "1743", "100.0 %"])
        self.assertEqual((types["Sample"][:2], types["MIDI File"][0], types["Total"][0]),
                         (["2", "32088"], "1", "4"))
        size = (BASE / "out/Sum.tmb").stat().st_size
        self.assertEqual(error[start + 5:start + 9],
                         ["Left out, named by SKIP_ITEM: 1", "    old/y.wav",
                          "Left out, of a type that is not packed: 1", "    x.png"])
        self.assertRegex(error[start + 9], rf"^Package of {size} bytes, made in \d+\.\d s \(\d+\.\d MB/s\)$")
        status, output, error = tambra("pack", "Sum", "out2", "--yes", "--json")
        event = next(e for e in map(json.loads, output) if e["event"] == "summary")
        self.assertEqual((event["files"], event["package_size"], event["left_out"]), (4, size, [
            {"reason": "skip_item", "files": ["old/y.wav"]},
            {"reason": "unsupported", "files": ["x.png"]}]))
        self.assertEqual(sum(t["bytes_out"] for t in event["types"]), event["bytes_out"])

    def test_every_kind_is_explained_here_and_in_the_documentation(self):
        text = " ".join(pathlib.Path(DOCS, "advice.md").read_text().split())
        kinds = json.loads(tambra("check", "--list-advice", "--json")[1][0])["advice"]
        lines = tambra("check", "--list-advice")[1]
        self.assertEqual([line.split()[:2] for line in lines],
                         [[k["id"], k["severity"]] for k in kinds])
        for kind in kinds:
            status, output, error = tambra("check", "--explain", kind["id"])
            said = " ".join(output[2:]).split()
            self.assertEqual((status, error, said),
                             (0, [], f"{kind['what']} {kind['why']} {kind['how']}".split()))
            self.assertLessEqual(max(map(len, output[1:])), 80)
            section = f"## {kind['id']} {kind['title']}. Severity: {kind['severity']}. "
            self.assertIn(section + " ".join(said), text)
        self.assertEqual(tambra("check", "--explain", "nothing")[0], 2)
        self.assertEqual(tambra("check")[0], 2)


if __name__ == "__main__":
    run_tests(2)
