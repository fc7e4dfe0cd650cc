"""A small library and runs of the real program on it, with a call that fails or a signal."""

import json
import os
import pathlib
import shutil
import subprocess
import sys

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from crafted import SILENCE, block_store, stream

TIME_LIMIT = 60


def snapshot(folder):
    """The bytes of every file below a folder, by relative path."""
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in sorted(folder.rglob("*")) if path.is_file()} if folder.exists() else {}


def events_of(done):
    """The JSON events that a run printed."""
    events = []
    for line in done.stdout.decode(errors="replace").splitlines():
        try:
            events.append(json.loads(line))
        except ValueError:
            events.append({})  # cut off where the fault struck
    return events


def alerts_of(done):
    """The alerts that a run showed, as table:number."""
    return [f"{event['table']}:{event['number']}" for event in events_of(done)
            if event.get("event") == "alert"]


class Trial:
    """A copy of a library, what packing it gives, and runs that are disturbed."""

    good = (0, 1)  # how a run may end that has done its work
    has_alerts = True

    def __init__(self, base, program, faults, library):
        self.base, self.program, self.faults = pathlib.Path(base), program, faults
        self.input, self.output = self.base / "in", self.base / "out"
        self.trace_file = self.base.parent / "trace"
        self.base.mkdir()
        shutil.copytree(library, self.input)
        self.original = snapshot(self.input)
        done = self.run()
        packages = list(self.output.glob("*.tmb"))
        if done.returncode not in (0, 1) or len(packages) != 1:
            raise SystemExit(f"the library cannot be packed: {done.stderr.decode()}")
        self.status = done.returncode
        self.name, self.bytes = packages[0].name, packages[0].read_bytes()

    def start(self, kind="", at=0, ever=False, jobs=1):
        """Begins a run that packs, with `kind` of fault at that call."""
        environment = {**os.environ, "FAULT_FOLDER": str(self.base), "FAULT_KIND": kind,
                       "FAULT_AT": str(at), "FAULT_EVER": "1" if ever else "0",
                       "FAULT_COUNT": str(self.base / "count") if at == 0 else "",
                       "FAULT_TRACE": str(self.trace_file) if kind == "trace" else "",
                       "LD_PRELOAD": str(self.faults) if kind else ""}
        return subprocess.Popen([str(self.program), *map(str, self.words(jobs))], env=environment,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def words(self, jobs):
        """What the program is told to do."""
        return ["pack", self.input, self.output, "--json", "--replace", "--no-cache", "--jobs", jobs]

    def run(self, kind="", at=0, ever=False, jobs=1, keep=False):
        """Packs into an empty folder, or with `keep` beside what is there."""
        if not keep:
            shutil.rmtree(self.output, ignore_errors=True)
        process = self.start(kind, at, ever, jobs)
        output, error = process.communicate(timeout=TIME_LIMIT)
        return subprocess.CompletedProcess(process.args, process.returncode, output, error)

    def calls(self, kind, jobs=1):
        """How many calls of a run a kind of fault can strike."""
        done = self.run(kind, jobs=jobs)
        count = int((self.base / "count").read_text())
        if done.returncode != self.status:
            raise SystemExit(f"{kind}: a run without faults ended with {done.returncode}: "
                             f"{done.stderr.decode()}")
        return count

    def trace(self, jobs):
        """The file operations of a run, a line each."""
        self.trace_file.unlink(missing_ok=True)
        done = self.run("trace", jobs=jobs)
        if done.returncode != self.status:
            raise SystemExit(f"trace: ended with {done.returncode}: {done.stderr.decode()}")
        return self.trace_file.read_text(encoding="utf-8").splitlines()

    def faults_of_files(self, expected):
        """What is wrong with the folders after a run, which has to have made the package when it
        is `expected`."""
        if snapshot(self.input) != self.original:
            yield "changed its input"
        left = snapshot(self.output)
        whole = left.pop(self.name, None)
        if whole is not None and whole != self.bytes:
            yield "left a package that is not whole"
        if whole is None and expected:
            yield "claims a package that is not there"
        yield from (f"left {name}" for name in left if not name.endswith(".txt"))

    def faults_of_next_run(self):
        """What is wrong with a run that follows on one that was disturbed."""
        done = self.run(keep=True)
        if done.returncode != self.status:
            yield f"the next run ended with {done.returncode}: {done.stderr.decode()}"
        yield from (f"the next run {fault}" for fault in self.faults_of_files(True))


class CommandTrial(Trial):
    """The same for a command that reads a package, the store or the stream in its input folder and may
    write to its output folder."""

    good = (0,)
    has_alerts = False

    def __init__(self, base, program, faults, library, command):
        self.command = None
        super().__init__(base, program, faults, library)
        shutil.rmtree(self.input)
        self.input.mkdir()
        (self.input / "package").write_bytes(self.bytes)
        (self.input / "store").write_bytes(block_store(stream(), stream(2, 100, (4, 5))) + bytes(112))
        (self.input / "stream").write_bytes(SILENCE)
        self.original = snapshot(self.input)
        self.command = command
        done = self.run()
        self.status, self.printed, self.files = done.returncode, done.stdout, snapshot(self.output)
        if self.status != 0:
            raise SystemExit(f"{command}: {done.stderr.decode()}")

    def words(self, jobs):
        if self.command is None:
            return super().words(jobs)
        self.output.mkdir(exist_ok=True)
        places = {"IN": self.input, "OUT": self.output, "JOBS": jobs}
        return [word.format(**places) for word in self.command.split()]

    def faults_of_files(self, expected):
        """As for a run that packs: each file in the output folder is whole, and all are there when
        that is `expected`."""
        if snapshot(self.input) != self.original:
            yield "changed its input"
        left = snapshot(self.output)
        for name, content in left.items():
            if name not in self.files:
                yield f"left {name}"
            elif content != self.files[name]:
                yield f"left {name}, which is not whole"
        if expected and not self.files.keys() <= left.keys():
            yield "claims files that are not there"

    def faults_of_next_run(self):
        """As for a run that packs; it replaces what the disturbed one has written."""
        command, self.command = self.command, self.command + " --replace"
        yield from super().faults_of_next_run()
        self.command = command
