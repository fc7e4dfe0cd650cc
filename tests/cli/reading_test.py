#!/usr/bin/env python3
"""Looks into packages and takes them apart again: reading_test.py PROGRAM [TEST...]."""

import json
import os
import re
import shutil
import signal
import struct
import subprocess

from program import (BASE, ENVIRONMENT, PACKAGE, PROGRAM, ProgramTest, library, package, run_tests,
                     stream, tambra, tree, wave)


class ReadingTest(ProgramTest):
    def test_info_list_and_verify(self):
        package = f"out/{PACKAGE}"
        size = (BASE / package).stat().st_size
        status, output, error = tambra("info", package)
        self.assertEqual((status, output[0], output[4:6], output[7][:11], error),
                         (0, "Name       Große Demo-Sammlung",
                          ["Files      60", f"Size       {size}"], " " * 11, []))
        status, output, error = tambra("list", package)
        total = sum(int(line.split()[0]) for line in output)
        self.assertEqual((status, len(output), error), (0, 60, [f"60 files, {total} bytes"]))
        self.assertIn("  1743  JPEG Picture               Splash.jpg", output)
        self.expect(["verify", package], 0, ["The Tambra is sound: 60 files were verified."])
        quick = ["The structure of the Tambra is sound. None of its 60 files was read."]
        self.expect(["verify", package, "--quick"], 0, quick)

        bytes_ = bytearray((BASE / package).read_bytes())
        position = json.loads(tambra("info", package, "--json")[1][0])["data_start"]
        for entry in json.loads(tambra("list", package, "--json")[1][0])["entries"]:
            if entry["path"].endswith("Kick 01.wav"):
                break
            position += entry["size"]
        bytes_[position + 200] ^= 0x10
        (BASE / "damaged.tmb").write_bytes(bytes_)
        self.expect(["verify", "damaged.tmb", "--quick"], 0, quick)
        status, output, error = tambra("verify", "damaged.tmb")
        self.assertEqual((status, error, output[-1]), (4, [], "The Tambra is damaged."))
        self.assertRegex(output[0], "^Samples/Schlagzeug/Kick 01.wav: .")
        self.assertEqual(len(output), 2)

    def test_extract_gives_the_files_back(self):
        whole = f"out/{PACKAGE}"
        self.expect(["extract", whole, "back"], 0,
                    error=["Extracting…", "Patches and songs whose references lead into the Tambra, not "
                           "byte for byte what was packed: 20", "60 files were written to “back”."])
        old, new = tree(BASE / "demo"), tree(BASE / "back")
        rewritten = [path for path in new if new[path] is not None and new[path] != old[path]]
        self.assertEqual(len([path for path in new if new[path] is not None]), 60)
        events = map(json.loads, tambra("extract", whole, "back", "--replace", "--json")[1])
        self.assertEqual({e["path"] for e in events if e.get("state") == "relocated"}, set(rewritten))
        hint = "--replace replaces what is there."
        self.expect(["extract", whole, "back"], 3,
                    error=["back/Splash.jpg: the file is there already", hint])
        (BASE / "back/Splash.jpg").write_bytes(b"old")
        self.expect(["extract", whole, "back", "--replace", "--quiet"], 0)
        self.assertEqual(tree(BASE / "back"), new)
        for names, files in ((["*/Kick ?1.wav"], 1), (["Samples/*", "Splash.jpg"], None),
                             (["Samples/Schlagzeug/Kick 01.wav"], 1)):
            status, output, error = tambra("extract", whole, "some", *names, "--replace", "--json")
            events = [json.loads(line) for line in output]
            done = [event["path"] for event in events if event["event"] == "file"]
            self.assertEqual((status, error, events[-1]), (0, [], {
                "event": "result", "status": 0, "folder": "some", "files": len(done),
                "damaged": 0}))
            self.assertEqual(len(done), files or len(done))
        self.assertEqual(done, ["Samples/Schlagzeug/Kick 01.wav"])
        self.expect(["extract", whole, "none", "*.zzz"], 4,
                    error=["*.zzz: no entry of the package has this name"])
        self.assertFalse((BASE / "none").exists())

        sound = stream(wave(5000, seed=3))
        package("partly.tmb", [("bad.wav", 11, sound[:-9000]), ("fine.wav", 11, sound)])
        self.expect(["extract", "partly.tmb", "partly"], 4, error=[
            "Extracting…", "bad.wav: damaged and not written (zero length sample)",
            "1 files were written to “partly”.",
            "The Tambra is damaged: 1 of 2 files could not be written."])
        self.assertEqual(tree(BASE / "partly"), {"fine.wav": wave(5000, seed=3)})

    def test_extract_writes_nothing_outside(self):
        (BASE / "safe").mkdir()
        for number, (name, shown) in enumerate((
                ("../out.mid", '"../out.mid" goes by "." or ".."'),
                ("/tmp/out.mid", '"/tmp/out.mid" begins or ends with a "/" or has two side by side'),
                ("a\\b", '"a\\b" holds one of the reserved characters \\ : * ? " < > |'),
                ("x\u202e\x1b[2J", '"x\\u202E\\u001B[2J" holds characters that cannot be seen'),
                ("a\0b", '"a\\u0000b" holds characters that cannot be seen'),
                ("fine.MID", '"fine.MID" differs from "fine.mid" in nothing that every system tells '
                             "apart"))):
            package("evil.tmb", [("fine.mid", 8, b"m"), (name, 8, b"x")])
            status, output, error = tambra("extract", "evil.tmb", "safe/new")
            self.assertEqual((status, output, error), (4, [], ["evil.tmb: " + shown]))
        self.assertEqual(tree(BASE / "safe"), {})
        (BASE / "safe/link").symlink_to(BASE / "demo")
        package("linked.tmb", [("first.mid", 8, b"m"), ("link/x.mid", 8, b"x")])
        self.expect(["extract", "linked.tmb", "safe", "--replace"], 4, error=[
            "safe/link: cannot make a folder here: a link or a file has its name"])
        self.assertEqual(os.listdir(BASE / "safe"), ["link"])
        self.assertFalse((BASE / "demo/x.mid").exists())

    def test_an_interrupted_extraction_leaves_whole_files_only(self):
        sound = wave(2000000, seed=5)
        packed = stream(sound)
        package("long.tmb", [(f"{i}.wav", 11, packed) for i in range(40)])
        run = subprocess.Popen([PROGRAM, "extract", "long.tmb", "long", "--json"], cwd=BASE,
                               env=ENVIRONMENT, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        while b'"file"' not in run.stdout.readline():
            pass
        run.send_signal(signal.SIGINT)
        self.assertEqual((run.communicate(timeout=60)[1], run.returncode), (b"Stopped.\n", 130))
        files = tree(BASE / "long")
        self.assertTrue(0 < len(files) < 40 and all(name.endswith(".wav") for name in files))
        self.assertEqual(set(files.values()), {sound})

    def test_diff_tells_what_changed(self):
        frames = wave(300, seed=1)
        sound, other = stream(frames), stream(wave(300, seed=2))
        tuned = bytearray(sound)
        tuned[9] = 61
        looped = bytearray(sound)
        looped[11:12] = b"\1"
        noted = stream(frames[:4] + struct.pack("<I", len(frames)) + frames[8:] + b"note" + bytes(4))
        patch = lambda text: (f'<?xml version="1.0" encoding="UTF-8"?><Patch deviceID="x"><Samples>'
                              f'<SampleReference originalFileName="{text}" userFriendlyName="{text}">'
                              f'<DatabasePath>h:{text}</DatabasePath></SampleReference></Samples>'
                              f'</Patch>').encode()
        rows = [  # name, type, before, after, lines
            ("same.wav", 11, sound, sound, []),
            ("sound.wav", 11, sound, other, ["sound: other samples"]),
            ("length.wav", 11, sound, stream(wave(200, seed=1)),
             ["sound: 300 => 200 frames", "loop end: 300 => 200"]),
            ("key.wav", 11, sound, bytes(tuned), ["root key: 60 => 61"]),
            ("loop.wav", 11, sound, bytes(looped), ["loop mode: 0 => 1"]),
            ("rest.wav", 11, sound, noted, ["the rest of the source file: other bytes"]),
            ("cut.wav", 11, sound, sound[:-400], ["damaged in the second Tambra: zero length sample"]),
            ("text.jpg", 9, b"a", b"b", ["other bytes"]),
            ("gone.mid", 8, b"a", None, []), ("new.mid", 8, None, b"a", [])]
        package("a.tmb", [(n, t, b) for n, t, b, _, _ in rows if b is not None], comment="one\r\ntwo")
        package("b.tmb", [(n, t, a) for n, t, _, a, _ in reversed(rows) if a is not None],
                comment="three", version=(1, 1, 0))
        expected = ["~ Version", "    - 1.0.0", "    + 1.1.0",
                    "~ Comment", "    - one", "    - two", "    + three"]
        for name, _, before, after, lines in rows:
            if after is None:
                expected.append(f"- {name}")
            elif before is not None and before != after:
                expected += [f"~ {name}", *("    " + line for line in lines)]
        self.expect(["diff", "a.tmb", "b.tmb"], 1, [*expected, "+ new.mid"], ["Differences: 11"])
        status, output, error = tambra("diff", "a.tmb", "b.tmb", "--json")
        self.assertIn({"event": "change", "kind": "changed", "name": "key.wav", "differences": [
            {"kind": "root_key", "before": "60", "after": "61"}]}, map(json.loads, output))
        self.expect(["diff", "a.tmb", "a.tmb"], 0, error=["No differences."])
        status, output, error = tambra("diff", "a.tmb", "demo/Splash.jpg")
        self.assertRegex(error[0], "^demo/Splash.jpg: no package, or a damaged one: ")
        (BASE / "cut.tmb").write_bytes((BASE / "b.tmb").read_bytes()[:-1])
        self.assertRegex(tambra("diff", "a.tmb", "cut.tmb")[2][0], r'^cut.tmb: ".+" has \d+ bytes at offset')
        package("twice.tmb", [("a\0b", 8, b"m"), ("a\0b", 8, b"x")])
        self.expect(["diff", "a.tmb", "twice.tmb"], 4, error=[
            'twice.tmb: the package holds two entries with one name: "a\\u0000b"'])

        changed = library("Changed", {})
        shutil.rmtree(changed)
        shutil.copytree(BASE / "demo", changed)
        vlpatch = changed / "Patches/Glockenspiel.vlpatch"
        text = vlpatch.read_text()
        vlpatch.write_text(re.sub(r"(?s)<SampleReference.*?</SampleReference>", "", text, count=1))
        self.assertEqual(tambra("pack", changed, "changed", "--quiet")[0], 0)
        status, output, error = tambra("diff", f"out/{PACKAGE}", f"changed/{PACKAGE}")
        self.assertEqual((status, output[0]), (1, "~ Patches/Glockenspiel.vlpatch"))
        self.assertTrue(all(line.startswith("    reference removed: ") for line in output[1:2]))

    def test_single_samples_and_dumps(self):
        sound = wave(4, value=7)
        (BASE / "one.wav").write_bytes(sound)
        self.expect(["dwop", "encode", "one.wav", "one.dwop"], 0)
        self.expect(["dwop", "decode", "one.dwop", "two.wav"], 0)
        self.assertEqual((BASE / "two.wav").read_bytes(), sound)
        hint = "--replace replaces what is there."
        self.expect(["dwop", "decode", "one.dwop", "one.wav"], 3,
                    error=["./one.wav: the file is there already", hint])
        self.expect(["dwop", "decode", "one.dwop", "demo", "--replace"], 3,
                    error=["./demo: something that is no file has the name"])
        self.assertEqual(tambra("dwop", "encode", "demo/Splash.jpg", "no.dwop")[0], 4)
        self.assertFalse((BASE / "no.dwop").exists())
        size = (BASE / "one.dwop").stat().st_size - 26
        self.expect(["dwop", "info", "one.dwop"], 0, [
            "Version         1.0.0", "Frames          4", "Channels        1", "Bits            16",
            "Rate            44100", "Root key        60", "Fine tune       0", "Loop            none",
            f"Samples         {size} bytes at 26", "Rest of source  none"])
        # Of each file every byte is told, once, with what it is.
        (BASE / "store").write_bytes(bytes.fromhex(
            "5132375F46494C45000000380000002400000000000000020000000000000002E6250000000000000001"
            "0000000000000000EB23FFFFFFFFFFFFFFFF00000000B0BAFE77" + "FE" * 40 + "68656C6C6F" +
            "00" * 51 + "FFFFFFFFFFFFFFFF000000010000000100000000000000050000000000000001"
            "0000000000000001C0CAC01AB0BAFE77" + "FE" * 8))
        for file, kind, parts in (
                ("one.dwop", "dwop", {"stream header", "bit stream"}),
                (f"out/{PACKAGE}", "package", {"header", "index entry", "data"}),
                ("store", "block_store", {"file", "root slot", "directory block", "directory",
                                          "stream", "directory end"})):
            content = (BASE / file).read_bytes()
            status, output, error = tambra("dump", file, "--json")
            events = [json.loads(line) for line in output]
            self.assertEqual((status, events.pop()), (0, {"event": "result", "status": 0,
                                                          "kind": kind}))
            self.assertEqual({e["name"] for e in events if e["depth"] == 0}, parts)
            for event in events:
                start = event["offset"]
                if event["event"] == "field":
                    self.assertEqual(event["hex"], content[start:start + min(16, event["size"])]
                                     .hex().upper(), event)
            if kind != "block_store":
                ends = sorted((e["offset"], e["offset"] + e["size"]) for e in events
                              if e["depth"] == 0)
                self.assertEqual([0, *(end for _, end in ends)],
                                 [*(start for start, _ in ends), len(content)])
        self.assertIn(["000000C4", "8", "block", "number", "0000000000000001", "1"],
                      [line.split() for line in tambra("dump", "store")[1]])


if __name__ == "__main__":
    run_tests(1)
