#!/usr/bin/env python3
"""Presses Tab in real shells: completion_test.py PROGRAM COMPLETIONS [SHELL...]. COMPLETIONS is the
folder with the scripts. What Enter would have run is printed by a stand-in and compared."""

import concurrent.futures
import os
import pathlib
import pty
import select
import shutil
import subprocess
import sys
import tempfile
import time

PROGRAM, SCRIPTS = map(os.path.abspath, sys.argv[1:3])
BASE = pathlib.Path(tempfile.mkdtemp(prefix="tambra-completion-"))
WORK = BASE / "work"
LOOP = "demo/Loops/Beat 120.lqx"
SHELLS = {  # how to start it, and what loads the script
    "bash": (["bash", "--norc", "--noprofile", "-i"],
             f"source /usr/share/bash-completion/bash_completion; source {SCRIPTS}/tambra.bash"),
    "zsh": (["zsh", "-f", "-i"],
            f"unsetopt PROMPT_SP; fpath=({SCRIPTS} $fpath); autoload -Uz compinit; compinit -u -d {BASE}/zcompdump"),
    "fish": (["fish", "--no-config", "-i"], f"source {SCRIPTS}/tambra.fish"),
}
CASES = [  # typed, up to Tab; what stands there then; each word of it
    ("pa", ["pack"]),
    ("dwop en", ["dwop", "encode"]),
    ("help dwop de", ["help", "dwop", "decode"]),
    ("pack demo out --repl", ["pack", "demo", "out", "--replace"]),
    ("pack demo out --jobs 2 --warn", ["pack", "demo", "out", "--jobs", "2", "--warn-external"]),
    ("list Gro", ["list", "Große Demo-Sammlung.tmb"]),
    ("verify --quick --lqx-library other.t", ["verify", "--quick", "--lqx-library", "other.txt"]),
    ("pack onl", ["pack", "only a folder"]),
    ("dump oth", ["dump", "other.txt"]),
    ("pack demo out --answer 20=R", ["pack", "demo", "out", "--answer", "20=Replace"]),
    ("pack demo out --answer 21=Con", ["pack", "demo", "out", "--answer", "21=Continue Anyway"]),
    ("pack demo out --answer=10=Ca", ["pack", "demo", "out", "--answer=10=Cancel"]),
    ("extract some.tmb out Loops/Beat\\ 12", ["extract", "some.tmb", "out", "Loops/Beat 120.lqx"]),
    ("extract 'Große Demo-Sammlung.tmb' out Sp", ["extract", "Große Demo-Sammlung.tmb", "out", "Splash.jpg"]),
    ("extract some.tmb out Samp", ["extract", "some.tmb", "out", "Samples"]),
    ("info some.tmb --js", ["info", "some.tmb", "--json"]),
]


def prepare():
    (WORK / "bin").mkdir(parents=True)
    standin = WORK / "bin/tambra"
    standin.write_text(f'''#!/bin/sh
if [ "$1" = complete ]; then exec '{PROGRAM}' "$@"; fi
echo "{{"; for word; do echo "<$word>"; done; echo "}}"
''')
    standin.chmod(0o755)
    run = lambda *words: subprocess.run([PROGRAM, *words], cwd=WORK, check=True, capture_output=True,
                                        env={**os.environ, "XDG_CACHE_HOME": str(BASE / "cache")})
    run("demo", "demo")
    run("pack", "demo", ".")
    shutil.copy(WORK / "Große Demo-Sammlung.tmb", WORK / "some.tmb")
    for name in ("Großes.txt", "only a file", "other.txt"):
        (WORK / name).touch()
    (WORK / "only a folder").mkdir()


class Shell:
    def __init__(self, command, setup):
        environment = {"PATH": f"{WORK}/bin:/usr/bin:/bin", "HOME": str(BASE), "LC_ALL": "C.UTF-8",
                       "TERM": "dumb", "PS1": "", "ASAN_OPTIONS": "detect_leaks=0"}
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.chdir(WORK)
            os.execvpe(command[0], command, environment)
        self.output = ""
        self.type(setup + "; echo rea''dy\r")
        self.read("\nready")

    def type(self, text):
        os.write(self.fd, text.encode())

    def read(self, until, seconds=20):
        """Drops what comes before a text and returns it."""
        end = time.monotonic() + seconds
        while until not in self.output:
            if not select.select([self.fd], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(f"no {until!r} in {self.output!r}")
            self.output += os.read(self.fd, 65536).decode(errors="replace").replace("\r", "")
        before, self.output = self.output.split(until, 1)
        return before

    def run(self, typed):
        self.type(f"tambra {typed}\t")
        self.type("\r")
        self.read("\n{\n")
        # The slash behind a folder is taken away again by some.
        return [line[1:-1].rstrip("/") for line in self.read("\n}").split("\n")]

    def end(self):
        os.close(self.fd)
        os.waitpid(self.pid, 0)


def faults_of(name):
    if shutil.which(name) is None:
        raise AssertionError(f"{name} is not installed")
    shell = Shell(*SHELLS[name])
    try:
        for typed, words in CASES:
            got = shell.run(typed)
            if got != words:
                yield f"{name}: {typed!r}, Tab: {got}, not {words}"
    finally:
        shell.end()


def main():
    try:
        prepare()
        names = sys.argv[3:] or list(SHELLS)
        with concurrent.futures.ThreadPoolExecutor() as pool:
            faults = sum(pool.map(lambda name: list(faults_of(name)), names), [])
    finally:
        shutil.rmtree(BASE)
    print("\n".join(faults) or f"{len(CASES)} words were completed by each of {', '.join(names)}")
    sys.exit(1 if faults else 0)


main()
