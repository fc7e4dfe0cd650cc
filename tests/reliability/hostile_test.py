#!/usr/bin/env python3
"""Hands the real program files that were made to harm it: hostile_test.py PROGRAM WINDOW [WORD]. WINDOW
(shown_package) reads packages as the window does. Each file has a harmless twin, which must pass, so that nothing is refused for the wrong reason. Checked of every run:
the exit status, that it ends soon, in memory bounded by the file's size, without a word from a
sanitizer or a terminal's control character, and that no file appears outside the folder that it
may write to. With WORD only the cases that have it in their name."""

import concurrent.futures
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import time

sys.path[:0] = [str(pathlib.Path(__file__).resolve().parent.parent / "support"),
                str(pathlib.Path(__file__).resolve().parent)]
import report
from crafted import (BLOCK, JPEG, NO_BLOCK, SAMPLE, SILENCE, VERSION, Entry, block_store, dwop, extra,
                     package, slot, stream, u32)

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
WINDOW = pathlib.Path(sys.argv[2]).resolve()
WORD = sys.argv[3] if len(sys.argv) > 3 else ""
BASE = pathlib.Path(tempfile.mkdtemp(prefix="hostile-"))
SECONDS = 20
# What a run may take of memory, beside what the program itself needs, for each byte of the file.
MEGABYTES, BYTES_FOR_EACH = 24, 40

# The window takes what the third takes: a header and an index without fault.
PACKAGE_COMMANDS = ("info", "list", "verify --quick", "verify", "extract", "diff", "dump", "window")
ALL_PASS, REFUSED = "0000000", "4444444"
# A name that is not plain is read, shown and compared, but never becomes a file.
NAME = "0000400"
INDEX = "0444444"  # the header can be read
BODY = "0004400"   # an entry is damaged; extract leaves it out, dump tells of it


class Problem(Exception):
    """What the program did wrong."""


# Starts the program and tells how it ended and what memory it took. Started from here its greatest
# memory would be at least that of this interpreter, which holds all the files.
MEASURE = """import os, sys
program = os.posix_spawn(sys.argv[2], sys.argv[2:], os.environ)
_, status, usage = os.wait4(program, 0)
os.write(int(sys.argv[1]), b"%d %d" % (os.waitstatus_to_exitcode(status), usage.ru_maxrss))
"""


def start(arguments):
    """Exit status, standard output and error, seconds and greatest memory in bytes of a run."""
    limits = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))
    environment = {**os.environ, "LC_ALL": "C.UTF-8",
                   "ASAN_OPTIONS": "detect_leaks=0:quarantine_size_mb=1"}
    command = [PROGRAM, *arguments] if arguments[0] != "window" else [WINDOW, *arguments[1:]]
    begun = time.monotonic()
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors, \
            tempfile.TemporaryFile() as ending:
        measure = [sys.executable, "-ISc", MEASURE, str(ending.fileno()), *map(str, command)]
        process = subprocess.Popen(measure, stdin=subprocess.DEVNULL, stdout=output, stderr=errors,
                                   env=environment, preexec_fn=limits, pass_fds=[ending.fileno()],
                                   start_new_session=True)
        try:
            process.wait(SECONDS)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
        texts = []
        for stream_ in (output, errors, ending):
            stream_.seek(0)
            texts.append(stream_.read().decode(errors="surrogateescape"))
    status, memory = map(int, texts.pop().split() or (-signal.SIGKILL, 0))
    return status, texts, time.monotonic() - begun, memory * 1024


def check_run(arguments, expected, size):
    status, texts, seconds, memory = start(arguments)
    what = " ".join(map(str, arguments))
    shown = "".join(texts)
    if seconds > SECONDS:
        raise Problem(f"{what}: took more than {SECONDS} s")
    if status != expected:
        raise Problem(f"{what}: status {status}, not {expected}: {shown[:400]}")
    if memory > PLAIN_MEMORY + (MEGABYTES << 20) + BYTES_FOR_EACH * size:
        raise Problem(f"{what}: took {memory} bytes of memory for a file of {size}")
    if "Sanitizer" in shown or "runtime error" in shown:
        raise Problem(f"{what}: {shown}")
    if re.search("[\0-\x09\x0b-\x1f\x7f-\x9f\u200e\u200f\u202a-\u202e\udc80-\udcff]", shown):
        raise Problem(f"{what}: control characters or broken text: {shown!r}")
    if expected == 4 and not texts[1] and arguments[0] not in ("verify",):
        raise Problem(f"{what}: failed without a word")
    return seconds, memory


def files_below(folder):
    return {path for path in folder.rglob("*") if path.is_symlink() or not path.is_dir()}


class Case:
    """One file and its harmless twin. `statuses` are those of its commands."""

    def __init__(self, name, bad, good, statuses, commands=PACKAGE_COMMANDS):
        self.name, self.files = name, (bad, good)
        if commands == PACKAGE_COMMANDS:
            statuses += statuses[2]
        self.statuses = (statuses, "0" * len(statuses))
        self.commands = commands

    def run(self, number):
        """The problems of the case, the number of runs, and the greatest time and memory."""
        problems, times, memories = [], [0], [0]
        for content, statuses, twin in zip(self.files, self.statuses, ("bad", "good")):
            home = BASE / f"{number}-{twin}" / "a/b/c"
            home.mkdir(parents=True)
            file = home / "file"
            file.write_bytes(content)
            before = files_below(home.parents[2])
            for command, status in zip(self.commands, statuses):
                target = home / "out"
                words = command.split()
                more = {"extract": [target], "diff": [file], "decode": [target]}
                try:
                    seconds, memory = check_run([*words, file, *more.get(words[-1], [])], int(status),
                                                len(content))
                    times.append(seconds)
                    memories.append(memory)
                    strays = {path for path in files_below(home.parents[2]) - before
                              if target not in (path, *path.parents)}
                    if strays:
                        raise Problem(f"{command}: wrote {sorted(map(str, strays))}")
                    if words[-1] == "extract" and twin == "good" and not files_below(target):
                        raise Problem("extract: wrote nothing")
                except Problem as problem:
                    problems.append(f"{self.name} ({twin}): {problem}")
                if target.is_dir():
                    shutil.rmtree(target)
                else:
                    target.unlink(missing_ok=True)
            shutil.rmtree(home.parents[2])
        return problems, len(times) - 1, max(times), max(memories)


def name_cases():
    rows = {  # what it tries: its name, the twin's name
        "parent": ("../x.pad", "..x.pad"), "parent inside": ("a/../../x.pad", "a/..b/x.pad"),
        "many parents": ("../" * 40 + "tmp/x.pad", "up/" * 40 + "tmp/x.pad"),
        "itself": ("a/./x.pad", "a/.b/x.pad"), "absolute": ("/tmp/x.pad", "tmp/x.pad"),
        "two slashes": ("//host/x.pad", "host/x.pad"), "empty component": ("a//x.pad", "a/x.pad"),
        "slash at the end": ("a/x.pad/", "a/x.pad"), "drive": ("C:/x.pad", "C/x.pad"),
        "drive relative": ("C:x.pad", "Cx.pad"), "backslash": ("a\\x.pad", "a/x.pad"),
        "parent by backslash": ("..\\x.pad", "..x.pad"),
        "share": ("\\\\host\\share\\x.pad", "host/share/x.pad"),
        "device path": ("\\\\?\\C:\\x.pad", "C/x.pad"), "alternate stream": ("x.pad:s", "x.pad-s"),
        "data stream": ("x.pad::$DATA", "x.pad-$DATA"), "device": ("CON", "CONX"),
        "device with type": ("a/nul.pad", "a/null.pad"), "port": ("COM1.x.pad", "COM10.x.pad"),
        "port of high digit": ("LPT\u00b2.pad", "LPTX\u00b2.pad"),
        "device and blanks": ("aux  .pad", "aux x.pad"), "console": ("conin$", "conin"),
        "zero byte": ("x\0.pad", "x0.pad"), "line end": ("x\n.pad", "xn.pad"),
        "escape sequence": ("x\x1b]0;y\x07.pad", "x]0;y.pad"), "delete": ("x\x7f.pad", "x~.pad"),
        "C1 control": ("x\x9b31m.pad", "x31m.pad"), "right to left": ("x\u202edap.exe", "x-dap.exe"),
        "direction mark": ("x\u200f.pad", "x.pad"), "isolate": ("x\u2067y\u2069.pad", "xy.pad"),
        "zero width": ("x\u200by.pad", "xy.pad"), "mark inside": ("x\ufeff.pad", "x.pad"),
        "line separator": ("x\u2028y.pad", "xy.pad"), "noncharacter": ("x\ufffe.pad", "x\ufffd.pad"),
        "dot at the end": ("a./x.pad", "a.b/x.pad"), "blank at the end": ("x.pad ", "x .pad"),
        "wild cards": ("*?.pad", "+!.pad"), "redirection": ("<x>|y", "(x)!y"),
        "quote": ('"x".pad', "'x'.pad"), "long name": ("x" * 252 + ".pad", "x" * 251 + ".pad"),
        "long name in UTF-8": ("\u6c34" * 84 + ".pad", "\u6c34" * 83 + ".pad"),
        "long path": (("x" * 127 + "/") * 7 + "y" * 128, ("x" * 127 + "/") * 7 + "y" * 127)}
    for what, (bad, good) in rows.items():
        yield Case(f"name: {what}", package((bad, b"x")), package((good, b"x")), NAME)
    plain = package(("a.pad", b"x"), ("b.pad", b"y"))
    for what, one, other, statuses in (("twice", "a.pad", "a.pad", "0044440"),
                                       ("file as folder", "a.pad", "a.pad/b.pad", "0044400"),
                                       ("case", "a.pad", "A.PAD", NAME),
                                       ("normalisation", "\u00e4.pad", "a\u0308.pad", NAME),
                                       ("joiner", "ab.pad", "a\u200db.pad", NAME)):
        yield Case(f"name: {what}", package((one, b"x"), (other, b"y")), plain, statuses)
    for what, bad in (("overlong slash", b"..\xc0\xaf..\xc0\xafx"), ("surrogate", b"x\xed\xa0\x80"),
                      ("cut sequence", b"x\xe6\x97")):
        yield Case(f"name: {what}", package((b"\xef\xbb\xbf" + bad, b"x")), plain, INDEX)
    yield Case("name: none", package((b"", b"x")), plain, INDEX)
    yield Case("package name: escape sequence", package(("a.pad", b"x"), name="\x1b[2J\u202ex"), plain,
               ALL_PASS)


def one_hash_names(count):
    """Names that a hash table of g++'s library would put into one place, each behind the number 0 of
    its folder in UTF-16: of every eight bytes the second ones undo in the hash what the first did."""
    words, factor, draw = 2**64, 0xC6A4A7935BD1E995, random.Random(5)
    fold = lambda word: word ^ word >> 47
    take = lambda state, text: (state ^ fold(int.from_bytes(text.encode("utf-16-le"), "little") * factor
                                             % words) * factor) * factor % words
    before = take(0xC70F6907 ^ 24 * factor % words, "\0\0ab")
    back, names = pow(factor, -1, words), set()
    while len(names) < count:
        first = "".join(chr(draw.randrange(0x4E00, 0x9F00)) for _ in range(4))
        undone = fold(take(before, first) * back % words) * back % words
        name = first + undone.to_bytes(8, "little").decode("utf-16-le", "replace")
        if all("\u4e00" <= sign < "\u9f00" or "\uac00" <= sign < "\ud7a0" for sign in name):
            names.add("ab" + name)
    return sorted(names)


def structure_cases():
    good = package(("a.pad", b"xyz"), ("b.pad", b"uvw"))
    for what, bad, statuses in (
            ("empty file", b"", REFUSED), ("cut header", good[:20], REFUSED),
            ("cut index", good[:70], INDEX), ("cut data", good[:-1], INDEX),
            ("count wraps", package(("a.pad", b"x"), count=2**32 - 1), INDEX),
            ("count too great by one", package(("a.pad", b"x" * 99), count=2), INDEX),
            ("index at zero", package(("a.pad", b"x"), index=0), INDEX),
            ("index behind the end", package(("a.pad", b"x"), index=2**32 - 1), INDEX),
            ("data in the header", package(("a.pad", b"x"), data=5), INDEX),
            ("data behind the end", package(("a.pad", b"x"), data=2**31), INDEX),
            ("data over the index", package(("a.pad", b"x" * 64), data=50), INDEX),
            ("offset and size wrap", package(Entry(offset=2**32 - 1, size=2)), INDEX),
            ("offset wraps to the header", package(Entry(offset=-40, size=40)), INDEX),
            ("offset behind the end", package(Entry(offset=2**31, size=0)), INDEX),
            ("size beyond the end", package(Entry(size=2)), INDEX),
            ("greatest size", package(Entry(size=2**32 - 1)), INDEX),
            ("name length", package(Entry(name_length=2**32 - 1)), INDEX),
            ("name length of a sign", package(Entry(name_length=2**31)), INDEX),
            ("names of many components", package(*(Entry(f"{i}" + "/a" * 30000) for i in range(20))),
             INDEX),
            ("text length", package(Entry(), name_length=2**32 - 4), REFUSED),
            ("text over the file's end", package(Entry(), name_length=2**24), REFUSED),
            ("splash offset wraps", package(Entry(), splash=(2**32 - 1, 2)), INDEX),
            ("splash size", package(Entry(), splash=(0, 2**32 - 1)), INDEX),
            ("version too new", package(Entry(), version=b"\xbc\x01\x02\x01\0"), REFUSED),
            ("version's long form wraps", package(Entry(), version=b"\xbc" + b"\xff" * 28), REFUSED),
            ("version without its mark", package(Entry(), version=b"\0\x01\0\0\0"), REFUSED)):
        yield Case(f"package: {what}", bad, good, statuses)
    shared = lambda count: package(*(Entry(f"{i}.pad", b"", offset=0, size=1 << 16) for i in range(count)),
                                   Entry("z.pad", bytes(1 << 16), offset=0))
    yield Case("package: entries that share all bytes", shared(1200), shared(12), INDEX)
    yield Case("package: one name thousands of times", package(*[("a.pad", b"x")] * 20000),
               package(*((f"{i}.pad", b"x") for i in range(2000))), "0044440")
    yield Case("package: names of one hash", package(*((name, b"x") for name in one_hash_names(60000))),
               package(*((f"{i:010}", b"x") for i in range(60000))), "000",
               ("list", "verify --quick", "diff"))
    yield Case("package: unknown type", package(Entry(type=255)), good, "0004000")


def sample_cases():
    good = dwop(b"\x82\0\0\0", 2)
    for what, bad in (
            ("greatest length over eight bytes", dwop(b"\xff" * 8, 2**32 - 1)),
            ("greatest length over zeros", dwop(bytes(1 << 16), 2**32 - 1)),
            ("greatest length over ones", dwop(b"\xff" * (1 << 16), 2**32 - 1, channels=2)),
            ("greatest length over nothing", dwop(b"", 2**32 - 1)),
            ("a stream of zeros", dwop(bytes(64), 100)), ("no channels", dwop(b"\x82\0\0\0", 2, 0)),
            ("three channels", dwop(b"\x82\0\0\0", 2, 3)), ("no width", dwop(b"\x82\0\0\0", 2, width=0)),
            ("width of 32", dwop(b"\x82\0\0\0", 2, width=32)),
            ("width of 255", dwop(b"\x82\0\0\0", 2, width=255)),
            ("version 0", dwop(b"\x82\0\0\0", 2, version=b"\xbc\0\0\0\0")),
            ("version 3", dwop(b"\x82\0\0\0", 2, version=b"\xbc\3\0\0\0")),
            ("version 2 without its fields", dwop(b"", 2, version=b"\xbc\2\0\0\0")[:-5]),
            ("cut header", good[:20]), ("cut words", good[:-1]), ("rubbish behind", good + b"x"),
            ("extra info too long", good + extra(b"abc", 2**32 - 1)),
            ("extra info that wraps", good + extra(b"", 2**32 - 24)),
            ("extra info over the samples", good + extra(b"", 8)),
            ("extra info without its mark", good + extra(b"abc", mark=b"DwTX"))):
        yield Case(f"sample: {what}", package(Entry("a.wav", bad, SAMPLE)),
                   package(Entry("a.wav", good, SAMPLE)), BODY)
        yield Case(f"stream: {what}", bad, good, "44", ("dwop info", "dwop decode"))


def store_cases():
    good = block_store(stream())
    # Both slots name the directory: with a right one in the other slot the store opens all the same.
    both = {"slots": slot(2, 2) + slot(1, 2)}
    wrong = lambda *streams, **more: block_store(*streams, **{**both, **more})
    two = lambda **more: wrong(stream(), stream(2, 5, (9,)), **more)
    for what, bad in (
            ("directory that follows itself", wrong(stream(), next={2: 2})),
            ("directory in a circle", two(next={3: 2})),
            ("directory in a circle to the first", wrong(stream(), pieces=3, next={4: 3})),
            ("directory behind the end", wrong(stream(), next={2: 2**40}, pieces=2)),
            ("directory number that wraps", wrong(stream(), next={2: NO_BLOCK - 1}, pieces=2)),
            ("block behind the end", wrong(stream(blocks=(2**62,)))),
            ("block twice", wrong(stream(length=100, blocks=(1, 1)))),
            ("block of the directory", wrong(stream(blocks=(2,)))),
            ("greatest length", wrong(stream(length=2**64 - 1))),
            ("length that wraps", wrong(stream(length=2**64 - 1, count=0, blocks=()))),
            ("greatest block count", wrong(stream(count=2**64 - 1))),
            ("more streams than there are", wrong(stream(), count=2**32 - 1)),
            ("streams that do not ascend", wrong(stream(2), stream(1, 0, ()))),
            ("wrong end of a stream", wrong(stream(end=0))),
            ("wrong end", wrong(stream(), end=0)),
            ("no right slot", block_store(stream(), slots=slot(2, 2, 1) + slot(1, 0, 1))),
            ("slots behind the end", block_store(stream(), slots=slot(2, 2**63) + slot(1, 2**60))),
            ("block size 0", block_store(stream(), size=0)),
            ("block size 8", block_store(stream(), size=8)),
            ("greatest block size", block_store(stream(), size=2**32 - 1)),
            ("no root area", block_store(stream(), root=0)),
            ("greatest root area", block_store(stream(), root=2**32 - 1)),
            ("cut root area", good[:40])):
        yield Case(f"store: {what}", bad, good, "4", ("dump",))
    # The first one counts then, as long as what it names can be read.
    equal = lambda first: block_store(stream(), slots=slot(2, first) + slot(2, 2))
    yield Case("store: equal generations", equal(2), good, "0", ("dump",))
    yield Case("store: equal generations, the first without directory", equal(1), good, "0", ("dump",))


def picture(edge):
    """A progressive picture without anything but zeros, in as few bytes as may hold its pixels."""
    table = b"\xff\xdb\0\x43\0" + b"\1" * 64 + b"\xff\xc4\0\x14\0\1" + bytes(16)
    frame = b"\xff\xc2\0\x0b\x08" + struct.pack(">HH", edge, edge) + b"\1\1\x11\0"
    scan = b"\xff\xda\0\x08\1\1\0\0\0\0" + bytes(1 + edge * edge // 2000)
    return b"\xff\xd8" + table + frame + scan + b"\xff\xd9"


def reference(form):
    return b'<SampleReference userFriendlyName="z" type="sample">' + form + b"</SampleReference>"


def relative(path, steps):
    return b"<RelativePath><Path>%s</Path><StepUp>%d</StepUp></RelativePath>" % (path, steps)


def absolute(path):
    return b'<AbsolutePath><Path partOfTambra="no">%s</Path></AbsolutePath>' % path


def document_cases():
    xml = lambda inner: (b'<?xml version="1.0" encoding="UTF-8"?><Patch deviceID="x"><Samples>' + inner +
                         b"</Samples></Patch>")
    bomb = (b'<?xml version="1.0"?><!DOCTYPE x [<!ENTITY a "aaaaaaaaaa">' +
            b"".join(b'<!ENTITY %c "%s">' % (98 + i, b"&%c;" % (97 + i) * 10) for i in range(9)) +
            b"]><Patch>&j;</Patch>")
    group = lambda depth: b"".join(b"CAT " + u32(4 + 12 * (depth - 1 - i)) + b"LIST"
                                   for i in range(depth))
    track = lambda length: (b"MThd" + u32(6) + b"\0\0\0\1\0\x60MTrk" + u32(length) +
                            b"\0\xff\x2f\0")
    jpeg = lambda size: (b"\xff\xd8\xff\xc0\0\x0b\x08" + struct.pack(">HH", size, size) +
                         b"\x01\x01\x11\0\xff\xd9")
    rows = (("nested elements", "a.vlpatch", 39, xml(b"<a>" * 50000), xml(b"<a></a>" * 50)),
            ("entity bomb", "a.vlpatch", 39, bomb, xml(b"&amp;&lt;")),
            ("attributes without end", "a.vlpatch", 39, xml(b'<a b="' + b"x" * 100000), xml(b"<a/>")),
            ("reference to outside", "a.vlpatch", 39,
             b'<?xml version="1.0"?><!DOCTYPE x SYSTEM "file:///etc/passwd"><Patch/>', xml(b"")),
            ("nested groups", "a.tallik", 26, group(20000), group(4)),
            ("group longer than its file", "a.tallik", 26, b"CAT " + u32(-1) + b"LIST", group(1)),
            ("track longer than its file", "a.mid", 10, track(2**32 - 1), track(4)),
            ("picture without end", "a.jpg", JPEG, jpeg(65500), picture(8)),
            ("picture of many coefficients", "a.jpg", JPEG, picture(20000), picture(8)),
            ("many steps up", "a.vlpatch", 39, xml(reference(relative(b"/b", 2**31 - 1)) * 4000),
             xml(reference(relative(b"/a.vlpatch", 0)) * 20)))
    for what, name, code, bad, twin in rows:
        yield Case(f"document: {what}", package(Entry(name, bad, code, 0)),
                   package(Entry(name, twin, code, 0)), "0004000")
    tree = lambda depth, path: package(
        Entry("a/" * depth + "z"), Entry("b.vlpatch", xml(reference(absolute(path))), 39, 0))
    yield Case("document: one name again and again", tree(500, b"/a" * 400000),
               tree(4, b"/a" * 4000 + b"/z"), "0004000")


def cases():
    for kind in (name_cases, structure_cases, sample_cases, store_cases, document_cases):
        yield from (case for case in kind() if WORD in case.name)


def check_links():
    """Links that stand in the target folder, and one that is swapped in again and again."""
    home = BASE / "links"
    outside, target, file = home / "outside", home / "target", home / "file"
    outside.mkdir(parents=True)
    (outside / "x.pad").write_bytes(b"old")
    file.write_bytes(package(*((f"d/{i}.pad", b"new") for i in range(40)), ("x.pad", b"new")))
    runs = 0
    for place, link in (("d", outside), ("d", home / "dangling"), ("x.pad", outside / "x.pad"),
                        ("d/7.pad", outside / "x.pad"), ("d", "."), ("d", "..")):
        target.mkdir()
        (target / place).parent.mkdir(exist_ok=True)
        (target / place).symlink_to(link)
        status = 3 if place.endswith(".pad") else 4
        check_run(["extract", file, target, "--replace"], status, 0)
        if (target / "x.pad").resolve() == outside / "x.pad" and (outside / "x.pad").read_bytes() != b"old":
            raise Problem(f"wrote through a link at {place}")
        if os.listdir(outside) != ["x.pad"] or (home / "dangling").exists() or (home / "0.pad").exists():
            raise Problem(f"wrote outside through a link at {place}")
        runs += 1
        shutil.rmtree(target)
    stop = threading.Event()

    def swap():
        while not stop.is_set():
            shutil.rmtree(target / "d", ignore_errors=True)
            try:
                (target / "d").symlink_to(outside)
                (target / "d").unlink()
            except OSError:
                pass

    target.mkdir()
    swapper = threading.Thread(target=swap)
    swapper.start()
    endings = {}
    try:
        for _ in range(60):
            status = start(["extract", file, target, "--replace"])[0]
            endings[status] = endings.get(status, 0) + 1
            runs += 1
    finally:
        stop.set()
        swapper.join()
    if not set(endings) <= {0, 3, 4}:
        raise Problem(f"links swapped: ended with {endings}")
    if os.listdir(outside) != ["x.pad"] or (outside / "x.pad").read_bytes() != b"old":
        raise Problem(f"links swapped: wrote {os.listdir(outside)}")
    return runs


def main():
    every = list(cases())
    problems, runs, slowest, memory = [], 0, 0, 0
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for found, count, seconds, most in pool.map(lambda n: every[n].run(n), range(len(every))):
            problems += found
            runs += count
            slowest, memory = max(slowest, seconds), max(memory, most)
    try:
        runs += check_links()
    except Problem as problem:
        problems.append(str(problem))
    counts = {"cases": len(every), "runs": runs, "problems": len(problems),
              "slowest_run_seconds": round(slowest, 2), "greatest_memory_mb": memory >> 20,
              "memory_of_help_mb": PLAIN_MEMORY >> 20}
    print("\n".join(problems), json.dumps(counts), sep="\n")
    report.add("hostile files, " + ("sanitizers" if PLAIN_MEMORY > 60 << 20 else "release"), counts)
    return 1 if problems or not every else 0


if __name__ == "__main__":
    PLAIN_MEMORY = start(["demo", "--help"])[3]
    try:
        sys.exit(main())
    finally:
        shutil.rmtree(BASE, ignore_errors=True)
