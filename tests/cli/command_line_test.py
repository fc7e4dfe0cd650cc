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
ENVIRONMENT = {**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8",
               "XDG_CACHE_HOME": str(BASE / "cache")}
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


def package(name, entries, comment="c", version=(1, 0, 0)):
    """A package of entries (path, type, bytes), made by hand."""
    field = lambda text: struct.pack(">I", len(text)) + text
    index, data = b"", b""
    for path, type_, content in entries:
        index += field(b"\xef\xbb\xbf" + path.encode("utf-8", "surrogatepass"))
        index += struct.pack(">BIIB", type_, len(data), len(content), 1)
        data += content
    texts = b"".join(field(text.encode()) for text in ("Hand", comment, "u", "me"))
    start = len(texts) + 12 + 5 + 8
    file = BASE / name
    file.write_bytes(texts + struct.pack(">III", len(entries), start, start + len(index)) +
                     b"\xbc\x01" + bytes(version[1:]) + b"\0" + bytes(8) + index + data)
    return file


def stream(source):
    """The DWOP stream of an audio file's bytes."""
    (BASE / "in.wav").write_bytes(source)
    assert tambra("dwop", "encode", "in.wav", "out.dwop", "--replace") == (0, [], [])
    return (BASE / "out.dwop").read_bytes()


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
