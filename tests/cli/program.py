"""What the tests of the command line share: the program under test (the first argument), a folder
for what it makes, and hand-made inputs."""

import fcntl
import os
import pathlib
import pty
import re
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "support"))
import crafted

PROGRAM = os.path.abspath(sys.argv[1])
BASE = pathlib.Path(tempfile.mkdtemp(prefix="tambra-cli-"))
PACKAGE = "Große Demo-Sammlung.tmb"
ENVIRONMENT = {**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8",
               "XDG_CACHE_HOME": str(BASE / "cache")}
for variable in ("TAMBRA_LQX_LIBRARY", "TAMBRA_CACHE_LIMIT"):
    ENVIRONMENT.pop(variable, None)


def tambra(*arguments, output=subprocess.PIPE, **more):
    """Status, lines of standard output, lines of standard error; `more` is put into the
    environment."""
    done = subprocess.run([PROGRAM, *map(str, arguments)], cwd=BASE, env={**ENVIRONMENT, **more},
                          stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.PIPE, timeout=120)
    return done.returncode, (done.stdout or b"").decode().splitlines(), done.stderr.decode().splitlines()


def wave(frames, value=0, seed=None):
    if seed is None:
        return crafted.wave_file(struct.pack("<h", value) * frames)
    return crafted.wave_file(b"".join(
        struct.pack("<I", (seed * 2654435761 + i * 40503 * (i ^ seed)) % 2**32)
        for i in range(frames // 2)))


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
    made = [crafted.Entry(path, content, type_) for path, type_, content in entries]
    file = BASE / name
    file.write_bytes(crafted.package(*made, name=b"Hand", comment=comment.encode(),
                                     version=b"\xbc\x01" + bytes(version[1:]) + b"\0"))
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


class ProgramTest(unittest.TestCase):
    """A case with the demo library and its package at hand."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        assert tambra("demo", "demo") == (0, [], ["68 files were written to “demo”."])
        assert tambra("pack", "demo", "out", "--quiet")[0] == 0

    def expect(self, arguments, status, output=(), error=(), **environment):
        self.assertEqual((status, list(output), list(error)), tambra(*arguments, **environment),
                         " ".join(map(str, arguments)))


def run_tests(arguments):
    """Runs the tests of the main module; `arguments` of the command line are not the tests' names."""
    try:
        unittest.main(argv=[sys.argv[0], *sys.argv[1 + arguments:]])
    finally:
        shutil.rmtree(BASE, ignore_errors=True)
