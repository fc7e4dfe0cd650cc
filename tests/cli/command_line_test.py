#!/usr/bin/env python3
"""Runs the program as its users do: command_line_test.py PROGRAM STANDIN [TEST...]. STANDIN is a
sliced-loop library over a format of the tests."""

import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import fcntl
import time
import unittest

PROGRAM, STANDIN = map(os.path.abspath, sys.argv[1:3])
BASE = pathlib.Path(tempfile.mkdtemp(prefix="tambra-cli-"))
PACKAGE = "Große Demo-Sammlung.tmb"
PHASES = ["Scanning folder…", "Scanning folder structure…", "1/5 Verifying…", "2/5 Packing…",
          "3/5 Building index…", "4/5 Composing file…", "5/5 Verifying…"]
LOOPS = [f"Loops/{name}: sliced-loop file checked for structure only (no sliced-loop library was "
         "found)" for name in ("Alter Beat.qzl", "Beat 120.lqx", "Beat 96 – gerade.lq2",
                               "ループ 140.lqx2")]
EXISTS = f"The file “{PACKAGE}” already exists, do you want to replace it?"
UNKNOWN = "The file “stray.png” is in an unsupported format. Continue without this file?"
ENVIRONMENT = {**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8"}
ENVIRONMENT.pop("TAMBRA_LQX_LIBRARY", None)


def tambra(*arguments, **more):
    """Status, lines of standard output, lines of standard error."""
    environment = {**ENVIRONMENT, **more}
    done = subprocess.run([PROGRAM, *map(str, arguments)], cwd=BASE, env=environment,
                          stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
    return done.returncode, done.stdout.decode().splitlines(), done.stderr.decode().splitlines()


def wave(frames, value=0, seed=None):
    if seed is not None:
        data = b"".join(struct.pack("<I", (seed * 2654435761 + i * 40503 * (i ^ seed)) % 2**32)
                        for i in range(frames // 2))
    else:
        data = struct.pack("<h", value) * frames
    form = struct.pack("<4sIHHIIHH", b"fmt ", 16, 1, 1, 44100, 88200, 2, 16)
    return (struct.pack("<4sI4s", b"RIFF", 28 + 8 + len(data), b"WAVE") + form +
            struct.pack("<4sI", b"data", len(data)) + data)


def library(name, files):
    """A folder with the least that is packed, and these files."""
    folder = BASE / name
    folder.mkdir()
    shutil.copy(BASE / "demo" / "Splash.jpg", folder)
    for path, content in {"NAME.TXT": name.encode(), "COPYRIGHT.TXT": b"me", "URL.TXT": b"u",
                          "COMMENTS.TXT": b"c", **files}.items():
        (folder / path).write_bytes(content)
    return folder


def tree(folder):
    return {str(path.relative_to(folder)): path.read_bytes() if path.is_file() else None
            for path in folder.rglob("*")}


class Terminal:
    """The program on a pseudo terminal of 40 columns."""

    def __init__(self, *arguments):
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            time.sleep(0.2)  # until the window has its size
            os.chdir(BASE)
            os.execve(PROGRAM, [PROGRAM, *map(str, arguments)], ENVIRONMENT)
        fcntl.ioctl(self.fd, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 40, 0, 0))
        self.output = ""

    def read(self, until=None, seconds=60):
        """Reads up to a text, or to the end, and returns all that came."""
        end = time.monotonic() + seconds
        raw = self.output.encode()
        while until is None or until not in raw.decode(errors="ignore"):
            if not select.select([self.fd], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(f"no {until!r} in {raw.decode(errors='replace')}")
            try:
                piece = os.read(self.fd, 65536)
            except OSError:  # the program's side is closed
                break
            if not piece:
                break
            raw += piece
        self.output = raw.decode(errors="ignore")
        return self.output

    def type(self, text):
        os.write(self.fd, text.encode())

    def end(self):
        self.read()
        os.close(self.fd)
        return os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])


def screen(output):
    """The rows that are left on the screen, and the widest row that ever was."""
    rows, row, column, widest = [""], 0, 0, 0
    for token in re.findall(r"\x1b\[\d*[A-Za-z]|\r|\n|[^\x1b\r\n]+", output):
        if token == "\r":
            column = 0
        elif token == "\n":
            row += 1
            rows += [""] * (row + 1 - len(rows))
        elif token.startswith("\x1b["):
            count, command = token[2:-1], token[-1]
            if command == "A":
                row -= int(count or 1)
                assert row >= 0, "above the first row"
            elif command == "K":
                rows[row] = rows[row][:column]
            elif command == "J":
                rows[row:] = [rows[row][:column]]
            else:
                raise AssertionError(f"unknown sequence {token!r}")
        else:
            rows[row] = rows[row][:column].ljust(column) + token + rows[row][column + len(token):]
            column += len(token)
            widest = max(widest, column)
    return rows, widest


class CommandLineTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        assert tambra("demo", "demo") == (0, [], ["68 files were written to “demo”."])
        assert tambra("pack", "demo", "out", "--quiet")[0] == 0
        library("Stray", {"a.mid": (BASE / "demo/MIDI/Groove.mid").read_bytes(), "stray.png": b"x"})

    def expect(self, arguments, status, output=(), error=(), **environment):
        self.assertEqual((status, list(output), list(error)), tambra(*arguments, **environment),
                         " ".join(map(str, arguments)))

    def test_demo_packs_with_a_line_for_each_phase(self):
        status, output, error = tambra("pack", "demo", "new/out")
        log = error.pop()
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
        passed = "No problems were found: 60 files can be packed."
        self.expect(["check", "demo"], 0, [passed], [*PHASES[:3], *LOOPS])
        broken = library("Broken", {"bad.mid": b"MThd", "good.wav": wave(10)})
        before = tree(broken)
        status, output, error = tambra("check", broken, "--quiet")
        self.assertEqual(status, 3)
        self.assertEqual(output[:2], ["Failed validating:", "    bad.mid"])
        self.assertRegex(output[2], "^ {8}.*offset")
        self.assertEqual(tree(broken), before)
        self.expect(["check", "Stray", "--quiet"], 3,
                    ["Failed validating:", "    stray.png", "        No verifier found for format"],
                    [UNKNOWN, "[Cancel]"])

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

        bytes_ = bytearray((BASE / package).read_bytes())
        position = json.loads(tambra("info", package, "--json")[1][0])["data_start"]
        for entry in json.loads(tambra("list", package, "--json")[1][0])["entries"]:
            if entry["path"].endswith("Kick 01.wav"):
                break
            position += entry["size"]
        bytes_[position + 200] ^= 0x10
        (BASE / "damaged.tmb").write_bytes(bytes_)
        status, output, error = tambra("verify", "damaged.tmb")
        self.assertEqual((status, error, output[-1]), (4, [], "The Tambra is damaged."))
        self.assertRegex(output[0], "^Samples/Schlagzeug/Kick 01.wav: .")
        self.assertEqual(len(output), 2)

    def test_wrong_usage_and_unusable_files(self):
        hint = "Run with --help for more information."
        for arguments, message in (
                ([], "A subcommand is required"), (["frob"], '"frob" is no command'), (["lsit"], '"lsit" is no command; did you mean list?'),
                (["dwop", "inof"], '"inof" is no command; did you mean info?'),
                (["a\x1b[2J"], '"a�[2J" is no command'),
                (["pack", "a", "b", "--repalce"], "The following argument was not expected: --repalce; "
                 "did you mean --replace?"),
                (["pack", "demo", "x", "--answer", "20=Foo"],
                 'alert 20 has no button "Foo", but "Cancel", "Replace"'),
                (["pack"], "INPUT is required"), (["pack", "demo"], "OUTPUT is required"),
                (["list", "a", "b"], "The following argument was not expected: b"),
                (["pack", "demo", "x", "--jobs", "0"], "--jobs: Value 0 not in range 1 to 1024"),
                (["pack", "demo", "x", "--answer", "foo"],
                 '--answer: "foo" is no answer; write ALERT=BUTTON, such as 20=Replace'),
                (["pack", "demo", "x", "--answer", "5=OK"],
                 "--answer: alert 5 asks nothing; 10, 18, 20, 21 and 23 do")):
            self.expect(arguments, 2, error=[message, hint])
        missing = "cannot open the file: No such file or directory"
        for command in ("info", "list", "verify"):
            self.expect([command, "nothing"], 4, error=[f"nothing: {missing}"])
            status, output, error = tambra(command, "demo/Splash.jpg")
            self.assertEqual((status, output, len(error)), (4, [], 1))
            self.assertRegex(error[0], "^demo/Splash.jpg: ")
            self.assertIn(f"tambra {command} ", "\n".join(tambra(command, "--help")[1]))
        gone = "The Operation could not be completed because the file system object was not found."
        self.expect(["check", "nothing"], 4, error=[gone, "nothing: the input folder does not exist"])
        self.expect(["pack", "nothing", "no"], 4,
                    error=[gone, "nothing: the input folder does not exist"])
        self.assertEqual(tambra("pack", "demo", "demo/out")[0], 4)
        self.assertFalse((BASE / "no").exists() or (BASE / "demo/out").exists())
        self.assertEqual(tambra("list", f"out/{PACKAGE}", "--texts", "nothing")[0], 4)

    def test_a_closed_pipe_is_quiet_and_a_full_disk_is_told(self):
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
        with open("/dev/full", "wb") as full:
            run = subprocess.run([PROGRAM, "list", f"out/{PACKAGE}", "--quiet"], cwd=BASE,
                                 stdout=full, stderr=subprocess.PIPE, env=ENVIRONMENT)
        self.assertEqual(run.returncode, 4)
        self.assertIn(b"cannot write to standard output: No space left", run.stderr)

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
            run.send_signal(stop)
            error = run.stderr.read().decode()
            self.assertEqual((run.wait(60), error), (130, "Stopped.\n"))
            run.stderr.close()
            self.assertEqual(tree(BASE / "stopped"), {})
        run = Terminal("pack", "Stray", "stopped")
        run.read(until="[2] Continue Anyway")
        run.type("\x03")
        self.assertEqual(run.end(), 130)
        self.assertEqual(tree(BASE / "stopped"), {})

    def test_a_second_interrupt_ends_at_once(self):
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
    try:
        unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
    finally:
        shutil.rmtree(BASE, ignore_errors=True)
