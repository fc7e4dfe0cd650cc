#!/usr/bin/env python3
"""Packing and the console as users see them: command_line_test.py PROGRAM STANDIN [TEST...]. STANDIN is
a sliced-loop library over a format of the tests."""

import fcntl
import json
import os
import pathlib
import signal
import struct
import subprocess
import sys
import termios
import time

from program import (BASE, ENVIRONMENT, PACKAGE, PROGRAM, ProgramTest, Terminal, library, package,
                     run_tests, screen, tambra, tree, wave)

STANDIN = os.path.abspath(sys.argv[2])
PHASES = ["Scanning folder…", "Scanning folder structure…", "1/5 Verifying…", "2/5 Packing…",
          "3/5 Building index…", "4/5 Composing file…", "5/5 Verifying…"]
LOOPS = [f"Loops/{name}: sliced-loop file checked for structure only (no sliced-loop library was "
         "found)" for name in ("Alter Beat.qzl", "Beat 120.lqx", "Beat 96 – gerade.lq2",
                               "ループ 140.lqx2")]
EXISTS = f"The file “{PACKAGE}” already exists, do you want to replace it?"
UNKNOWN = "The file “stray.png” is in an unsupported format. Continue without this file?"


class CommandLineTest(ProgramTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        library("Stray", {"a.mid": (BASE / "demo/MIDI/Groove.mid").read_bytes(), "stray.png": b"x"})

    def test_demo_packs_with_a_line_for_each_phase(self):
        status, output, error = tambra("pack", "demo", "new/out")
        log = error.pop()
        summary = next(i for i, line in enumerate(error) if line.startswith("Type "))
        self.assertTrue(error[-2].startswith("Package of "))
        del error[summary:-1]
        self.assertRegex(log, r"^Log file: new/out/Große Demo-Sammlung packing log "
                              r"\d{4}-\d\d-\d\d \d\d\.\d\d\.\d\d\.txt$")
        self.assertEqual((BASE / log[10:]).read_bytes(), b"Packing complete\r\n")
        self.assertEqual((status, output, error), (0, [], [
            *PHASES, "The Tambra file has been packed successfully! 60 files were added.", *LOOPS,
            f"Tambra file: new/out/{PACKAGE}"]))
        self.assertEqual((BASE / "new/out" / PACKAGE).read_bytes(),
                         (BASE / "out" / PACKAGE).read_bytes())
        self.expect(["demo", "demo"], 4, error=[f"{BASE}/demo: the folder for the demo library is not empty"])

    def test_json_is_all_that_stands_on_standard_output(self):
        status, output, error = tambra("pack", "demo", "json", "--json")
        events = [json.loads(line) for line in output]
        self.assertEqual((status, error), (0, []))
        stages = [e["text"] for e in events if e["event"] == "stage"]
        self.assertEqual(list(dict.fromkeys(stages)), PHASES)
        bar = [e["thousandths"] for e in events if e["event"] == "progress"]
        self.assertEqual((bar, bar[-1]), (sorted(bar), 990))
        self.assertEqual([e["number"] for e in events if e["event"] == "alert"], [5])
        last = events[-1]
        self.assertEqual((last.pop("log")[:5], last), ("json/", {
            "event": "result", "ending": "packed", "status": 0, "package": f"json/{PACKAGE}",
            "files": 60}))
        for arguments in (["check", "demo"], ["list", f"out/{PACKAGE}"], ["info", f"out/{PACKAGE}"],
                          ["verify", f"out/{PACKAGE}"], ["info", "nothing"], ["check", "nothing"]):
            status, output, error = tambra(*arguments, "--json")
            self.assertEqual(error, [])
            self.assertTrue(all(map(json.loads, output)) and output, arguments)
        self.assertEqual(tambra("list", f"out/{PACKAGE}", "--json")[1][0].count('"path"'), 60)
        harmful = "\x1b\x7f\x85\x9b\u2028\u2029"  # to terminals and readers of lines
        package("harmful.tmb", [(harmful + " \u00a0\u202aé\U0001f941", 8, b"x")])
        status, output, error = tambra("list", "harmful.tmb", "--json")
        self.assertEqual(json.loads(output[0])["entries"][0]["path"], harmful + " \u00a0\u202aé\U0001f941")
        self.assertFalse(set(harmful) & set(output[0]))

    def test_a_package_is_replaced_only_when_told(self):
        pack = ["pack", "demo", "again", "--quiet"]
        done = "The Tambra file has been packed successfully! 60 files were added."
        self.expect(pack, 0, error=[done])
        before = tree(BASE / "again")
        self.expect(pack, 3, error=[EXISTS, "[Cancel]"])
        self.expect([*pack, "--answer", "20=cancel", "--yes"], 3, error=[EXISTS, "[Cancel]"])
        self.assertEqual(tree(BASE / "again"), before)
        for answer in (["--replace"], ["--answer", "20=REPLACE"], ["--yes"]):
            file = BASE / "again" / PACKAGE
            file.write_bytes(b"old")
            self.expect([*pack, *answer], 0, error=[EXISTS, "[Replace]", done])
            self.assertEqual(file.read_bytes(), before[PACKAGE])

    def test_check_tells_what_would_come(self):
        status, output, error = tambra("check", "demo")
        self.assertEqual((status, output[-1], error), (
            0, "60 files can be packed. Advice: 0 errors, 2 warnings, 0 notes.",
            [*PHASES[:3], "Listening to the samples…", *LOOPS]))
        broken = library("Broken", {"bad.mid": b"MThd", "good.wav": wave(10)})
        before = tree(broken)
        status, output, error = tambra("check", broken, "--quiet")
        self.assertEqual(status, 3)
        self.assertEqual(output[:2], ["Failed validating:", "    bad.mid"])
        self.assertRegex(output[2], "^ {8}.*offset")
        self.assertEqual(tree(broken), before)
        error = tambra("pack", "Stray", "quiet", "--quiet")[2]
        self.assertRegex(error.pop(), r"^Log file: quiet/Stray packing log .*\.txt$")
        self.assertEqual(error[:2], [UNKNOWN, "[Cancel]"])
        self.expect(["check", "Stray", "--quiet"], 3,
                    ["Failed validating:", "    stray.png", "        No verifier found for format",
                     "Files of a type that is not packed (error: stray-file):", "    stray.png"],
                    [UNKNOWN, "[Cancel]"])

    def test_output_folders_that_cannot_be_used(self):
        self.assertEqual(tambra("pack", "demo", "demo/out")[0], 4)
        self.assertFalse((BASE / "demo/out").exists())
        self.assertEqual(tambra("list", f"out/{PACKAGE}", "--texts", "nothing")[0], 4)
        self.assertEqual(tambra("demo", "nodemo", "--texts", "nothing")[0], 4)
        self.assertFalse((BASE / "nodemo").exists())
        (BASE / "notes.txt").write_bytes(b"mine")
        (BASE / "nowhere").symlink_to("gone")
        for folder in ("notes.txt/a/b", "notes.txt", "nowhere", "nowhere/a"):
            self.assertEqual(tambra("demo", folder)[0], 4)
        self.assertEqual((BASE / "notes.txt").read_bytes(), b"mine")
        self.assertTrue((BASE / "nowhere").is_symlink())

    def test_a_closed_pipe_is_quiet(self):
        for arguments in (["list", f"out/{PACKAGE}", "--quiet"], ["pack", "demo", "pipe", "--json"]):
            reader, writer = os.pipe()
            run = subprocess.Popen([PROGRAM, *arguments], cwd=BASE, env=ENVIRONMENT, stdout=writer,
                                   stderr=subprocess.PIPE)
            os.close(writer)
            os.read(reader, 1)
            os.close(reader)
            self.assertEqual(run.communicate(timeout=60)[1], b"")
            self.assertIn(run.returncode, (0, 4) if arguments[0] == "list" else (4,))
        self.assertEqual(tree(BASE / "pipe") if (BASE / "pipe").exists() else {}, {})

    def test_colours_are_for_terminals(self):
        package("x.tmb", [("a.mid", 8, b"a")])
        package("y.tmb", [("b.mid", 8, b"a")])
        for variable, shown in (({}, "\x1b[31m- a.mid\x1b[0m"), ({"NO_COLOR": "1"}, "- a.mid")):
            ENVIRONMENT.update(variable)
            run = Terminal("diff", "x.tmb", "y.tmb")
            self.assertEqual(run.end(), 1)
            ENVIRONMENT.pop("NO_COLOR", None)
            self.assertEqual(run.output.split("\r\n")[0], shown)

    def test_texts_of_the_user(self):
        tables = BASE / "tables" / "SSTR"
        tables.mkdir(parents=True)
        source = pathlib.Path(__file__).parents[2] / "resources/SSTR/128.txt"
        text = source.read_bytes().decode("utf-8-sig")
        changed = text.replace("{^0 files, ^1 bytes}", "{^1 Bytes in ^0 Dateien}")
        self.assertNotEqual(text, changed)
        (tables / "128.txt").write_bytes(changed.encode())
        self.assertRegex(tambra("list", f"out/{PACKAGE}", "--texts", "tables")[2][0],
                         r"^\d+ Bytes in 60 Dateien$")

        (tables / "128.txt").write_bytes(b"1 {x\r\n")
        self.assertEqual(tambra("list", f"out/{PACKAGE}", "--texts", "tables")[2], [
            "tables/SSTR/128.txt, line 1: an entry's text ends with '}' on the same line"])

    def test_the_sliced_loop_library(self):
        loop = lambda flags, slices: b"LQXT\x01\x01\x02" + bytes([flags, 4]) + slices
        library("Loops", {"good.lqx": loop(0, b"ab"), "bad.lqx": loop(2, b"ab")})
        for arguments, environment in ((["--lqx-library", STANDIN], {}),
                                       ([], {"TAMBRA_LQX_LIBRARY": STANDIN})):
            status, output, error = tambra("check", "Loops", *arguments, **environment)
            self.assertEqual((status, output[:2]),
                             (3, ["Failed validating:", "    bad.lqx"]))
            self.assertNotIn("structure only", "\n".join(error))
        status, output, error = tambra("check", "Loops", "--lqx-library", "nothing")
        self.assertEqual((status, output), (4, []))
        self.assertIn("named by an option", error[-1])

    def test_progress_is_redrawn_within_the_window(self):
        ENVIRONMENT["TERM"] = "dumb"
        run = Terminal("check", "demo")
        self.assertEqual((run.end(), run.output.count("\x1b")), (0, 0))
        ENVIRONMENT["TERM"] = "xterm"
        run = Terminal("pack", "demo", "terminal")
        self.assertEqual(run.end(), 0)
        shown, rest = run.output.rsplit("\x1b[J", 1)
        rows, widest = screen(shown + "\x1b[J")
        self.assertIn("5/5 Verifying", shown)
        self.assertIn("[", shown)
        self.assertLess(widest, 40)
        self.assertEqual("".join(rows), "")
        self.assertIn(f"Tambra file: terminal/{PACKAGE}", rest)

    def test_a_question_on_the_terminal(self):
        for number, (typed, status) in enumerate((("2\n", 0), ("what\nContinue anyway\n", 0),
                                                  ("1\n", 3), ("\x04", 3))):
            output = BASE / f"asked{number}"
            run = Terminal("pack", "Stray", output)
            run.read(until="[1] Cancel  [2] Continue Anyway")
            self.assertIn(UNKNOWN, run.output)
            run.type(typed)
            self.assertEqual(run.end(), status, run.output)
            self.assertEqual((output / "Stray.tmb").exists(), status == 0)
            self.assertEqual(run.output.count("[1] Cancel"), 1 + typed.count("what"))

    def test_interrupts(self):
        big = library("Big", {f"{i:03}.wav": wave(60000, seed=i + 1) for i in range(150)})
        start = [PROGRAM, "pack", big, "stopped", "--jobs", "1"]
        (BASE / "stopped").mkdir()
        for stop in (signal.SIGINT, signal.SIGTERM):
            run = subprocess.Popen(start, cwd=BASE, env=ENVIRONMENT, stderr=subprocess.PIPE)
            lines = []
            while "2/5 Packing…" not in lines:
                lines.append(run.stderr.readline().decode().rstrip("\n"))
                self.assertNotEqual(lines[-1], "", "ended too early")
            for _ in range(2):  # the key struck twice: what was begun is removed all the same
                run.send_signal(stop)
                time.sleep(0.002)
            error = run.stderr.read().decode()
            self.assertEqual(error, "Stopped.\n")
            self.assertIn(run.wait(60), (130, -stop))  # the second may come behind the last word
            run.stderr.close()
            self.assertEqual(tree(BASE / "stopped"), {})
        run = Terminal("pack", "Stray", "stopped")
        run.read(until="[2] Continue Anyway")
        run.type("\x03")
        self.assertEqual(run.end(), 130)
        self.assertEqual(tree(BASE / "stopped"), {})

    def test_a_second_interrupt_ends_what_a_full_pipe_holds_up(self):
        # A pipe that nobody reads holds the program up, so that it cannot see the first one.
        reader, writer = os.pipe()
        fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)
        run = subprocess.Popen([PROGRAM, "pack", "demo", "twice", "--json"], cwd=BASE,
                               env=ENVIRONMENT, stdout=writer, stderr=subprocess.DEVNULL)
        os.close(writer)
        held, before = 0, -1
        while held == 0 or held != before:
            time.sleep(0.5)
            held, before = struct.unpack("i", fcntl.ioctl(reader, termios.FIONREAD, b"    "))[0], held
            self.assertIsNone(run.poll())
        run.send_signal(signal.SIGINT)
        time.sleep(0.3)
        self.assertIsNone(run.poll())
        run.send_signal(signal.SIGINT)
        self.assertIn(run.wait(10), (130, -signal.SIGINT))  # to a shell the same
        self.assertGreater(held, 3000)
        os.close(reader)


if __name__ == "__main__":
    run_tests(2)
