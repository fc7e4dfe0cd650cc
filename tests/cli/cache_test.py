#!/usr/bin/env python3
"""The cache of packed samples, as its users see it: cache_test.py PROGRAM [TEST...]. Whatever the
cache holds and whatever becomes of it, the package is the one that is packed without it."""

import json
import os
import random
import shutil
import signal
import struct
import subprocess
import time
import unittest

from program import BASE, ENVIRONMENT, PROGRAM, crafted, run_tests, tambra

HOME = BASE / "cache"
CACHE = HOME / "tambra" / "samples.cache"
LIBRARY = BASE / "library"
SAMPLES = 20
NOT_USED = "The cache of packed samples is not used: "
BEGUN_ANEW = "The cache of packed samples was damaged or of another version and has been begun anew."


def wave(frames, seed):
    return crafted.wave_file(random.Random(seed).randbytes(2 * frames))


def start(*arguments, out="out", **more):
    shutil.rmtree(BASE / out, ignore_errors=True)
    return subprocess.Popen(
        [PROGRAM, "pack", str(LIBRARY), str(BASE / out), "--json", "--yes", *map(str, arguments)],
        env={**ENVIRONMENT, **more}, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.PIPE)


class Outcome:
    """The package, what the run said of the cache, and all else that it said."""

    def __init__(self, process, out="out"):
        output, self.errors = process.communicate(timeout=120)
        self.status = process.returncode
        events = [json.loads(line) for line in output.decode().splitlines()]
        self.cache = next((event for event in events if event["event"] == "cache"), None)
        self.said = [{key: value for key, value in event.items() if key != "seconds"}
                     for event in events
                     if event["event"] not in ("cache", "progress", "time", "result")]
        self.packages = {path.name: path.read_bytes() for path in (BASE / out).glob("*.tmb")}
        self.logs = [path.read_bytes() for path in sorted((BASE / out).glob("*.txt"))]

    def counts(self):
        return tuple(self.cache[name] for name in ("taken", "packed", "kept"))


def pack(*arguments, out="out", **more):
    return Outcome(start(*arguments, out=out, **more), out)


def cache(*arguments, **more):
    status, output, _ = tambra("cache", *arguments, "--json", **more)
    return status, json.loads(output[0]) if output else None


class CacheTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        tambra("demo", "demo")
        LIBRARY.mkdir()
        shutil.copy(BASE / "demo" / "Splash.jpg", LIBRARY)
        for name in ("NAME", "COPYRIGHT", "URL", "COMMENTS"):
            (LIBRARY / f"{name}.TXT").write_text(name)
        for number in range(SAMPLES - 2):
            (LIBRARY / f"{number:02}.wav").write_bytes(wave(500 + number * 1500, number))
        shutil.copy(LIBRARY / "03.wav", LIBRARY / "same.wav")  # of the same bytes
        values = struct.pack("<500f", *(i / 500 for i in range(500)))
        (LIBRARY / "float.wav").write_bytes(crafted.wave_file(values, tag=3, bits=32))  # is remarked
        cls.plain = pack("--no-cache")
        assert cls.plain.status == 0 and cls.plain.cache is None and not HOME.exists()

    def setUp(self):
        shutil.rmtree(HOME, ignore_errors=True)

    def same(self, outcome, status=0):
        """The run did what one without a cache does."""
        self.assertEqual((status, self.plain.packages, self.plain.said, self.plain.logs, b""),
                         (outcome.status, outcome.packages, outcome.said, outcome.logs,
                          outcome.errors))
        return outcome.cache

    def test_hits(self):
        first, second = pack(), pack()
        self.same(first)
        self.same(second)
        self.assertEqual((0, SAMPLES, SAMPLES - 1), first.counts())
        self.assertEqual((SAMPLES, 0, 0), second.counts())
        for jobs in (1, 4):
            self.same(pack("--jobs", jobs))
        path = LIBRARY / "05.wav"
        original = path.read_bytes()
        try:
            changed = bytearray(original)
            changed[-1] ^= 1  # the same length; and the file's times do not count either
            path.write_bytes(changed)
            os.utime(path, ns=(10**18, 10**18))
            third = pack()
            self.assertEqual((SAMPLES - 1, 1, 1), third.counts())
            self.assertEqual(pack("--no-cache").packages, third.packages)
            self.assertNotEqual(self.plain.packages, third.packages)
        finally:
            path.write_bytes(original)
        fourth = pack()
        self.same(fourth)
        self.assertEqual((SAMPLES, 0, 0), fourth.counts())

    def test_damage(self):
        pack()
        whole = CACHE.read_bytes()
        source = random.Random(1)
        # The header with both slots, some of the first block, and places all over the others.
        places = [*range(0, 52, 5), *range(52, 300, 31),
                  *(at + source.randrange(16000) for at in range(300, len(whole) - 16000, 24576))]
        taken = set()
        for count, damages in ((1, [[place] for place in places]), (60, [source.choices(
                range(len(whole)), k=60) for _ in range(5)])):
            for damaged in damages:
                content = bytearray(whole)
                for place in damaged:
                    content[place] ^= 1 << source.randrange(8)
                CACHE.write_bytes(content)
                with self.subTest(places=damaged[:3], count=count):
                    outcome = pack("--jobs", 1)
                    self.same(outcome)
                    taken.add(outcome.counts()[0])
                    self.assertEqual((SAMPLES, 0, 0), pack("--jobs", 1).counts())
        self.assertLess({0, SAMPLES - 1, SAMPLES}, taken)  # all of it, a sample, nothing was lost
        for content in (b"", b"x", b"Q27_FILE" + bytes(10), whole[:-20000], whole[:60000],
                        bytes(len(whole)), whole + whole):
            CACHE.write_bytes(content)
            self.same(pack())
            self.assertEqual((SAMPLES, 0, 0), pack().counts())
        CACHE.write_bytes(b"x" * 100)
        self.assertFalse(cache()[1]["sound"])
        self.assertEqual([BEGUN_ANEW], pack().cache["notes"])

    def test_trouble(self):
        """What a cache that cannot be used does: nothing but a note."""
        (BASE / "file").write_text("")
        blocked = BASE / "blocked"
        (blocked / "tambra" / "samples.cache").mkdir(parents=True)
        for folder in (BASE / "file", blocked, "/proc", "/dev/full"):
            with self.subTest(folder=folder):
                outcome = pack(XDG_CACHE_HOME=str(folder))
                self.same(outcome)
                self.assertTrue(outcome.cache["notes"][0].startswith(NOT_USED))
                self.assertEqual(1, len(outcome.cache["notes"]))
                self.assertEqual((0, 0, 0), outcome.counts())
        homeless = pack(XDG_CACHE_HOME="relative", HOME="")
        self.same(homeless)
        self.assertIsNone(homeless.cache)
        self.assertEqual(4, cache(XDG_CACHE_HOME="", HOME="")[0])
        self.same(pack("--cache-limit", 0))
        self.assertFalse(HOME.exists())
        self.assertEqual(0, pack(XDG_CACHE_HOME="", HOME=str(BASE / "h")).status)
        self.assertTrue((BASE / "h" / ".cache" / "tambra" / "samples.cache").is_file())

    def test_no_room(self):
        """A disk that is full: a limit on files that are written, which only the cache reaches."""
        extra = LIBRARY / "extra.wav"
        try:
            extra.write_bytes(wave(1500000, 400))
            pack()
            extra.write_bytes(wave(1000, 401))
            shutil.rmtree(BASE / "out")
            run = ["bash", "-c", "ulimit -f 2500; trap '' XFSZ; exec \"$@\"", "-", PROGRAM, "pack",
                   str(LIBRARY), str(BASE / "out"), "--json", "--yes"]
            full = Outcome(subprocess.Popen(run, env=ENVIRONMENT, stdout=subprocess.PIPE,
                                            stderr=subprocess.PIPE))
            self.assertEqual((0, SAMPLES, 1, 0), (full.status, *full.counts()))
            self.assertEqual(1, len(full.cache["notes"]))
            self.assertEqual(pack("--no-cache").packages, full.packages)
            self.assertEqual((SAMPLES, 1, 1), pack().counts())
        finally:
            extra.unlink()

    def test_several_at_once(self):
        for _ in range(3):
            processes = [(start(out=f"out{number}"), f"out{number}") for number in range(4)]
            for outcome in [Outcome(*process) for process in processes]:
                self.same(outcome)
            self.assertEqual((SAMPLES, 0, 0), pack().counts())
            self.assertEqual((0, 1), (cache("clear")[0], cache("clear")[1]["removed"] is False))

    def test_kills(self):
        pack()
        source = random.Random(2)
        for number in range(25):
            (LIBRARY / "new.wav").write_bytes(wave(20000, 100 + number))
            process = start()
            time.sleep(source.random() * 0.15)
            process.send_signal(signal.SIGKILL)
            process.communicate()
        (LIBRARY / "new.wav").unlink()
        outcome = pack()
        self.same(outcome)
        self.assertEqual((SAMPLES, 0, 0), outcome.counts())
        self.assertNotIn("notes", outcome.cache)

    def test_limit(self):
        extra = LIBRARY / "extra.wav"
        try:
            for number in range(8):
                extra.write_bytes(wave(60000, 200 + number))
                outcome = pack("--cache-limit", 1)
                self.assertEqual(0, outcome.status)
                self.assertLessEqual(CACHE.stat().st_size, 1_000_000)
                self.assertGreaterEqual(outcome.counts()[0], SAMPLES if number else 0)
        finally:
            extra.unlink()
        for _ in range(2):
            self.assertEqual(SAMPLES, pack("--cache-limit", 1).counts()[0])
        pack("--cache-limit", 100)
        extra.write_bytes(wave(900000, 300))
        pack("--cache-limit", 100)
        extra.unlink()
        self.assertGreater(CACHE.stat().st_size, 1_000_000)
        self.same(pack(TAMBRA_CACHE_LIMIT="1"))
        self.assertLessEqual(CACHE.stat().st_size, 1_000_000)

    def test_command(self):
        nothing = {"file": str(CACHE), "sound": True, "samples": 0, "size": 0, "limit": 4000000000}
        self.assertEqual((0, nothing), cache())
        pack()
        self.assertEqual((0, {**nothing, "samples": SAMPLES - 1, "size": CACHE.stat().st_size}),
                         cache())
        self.assertEqual(0o600, CACHE.stat().st_mode & 0o777)
        self.assertEqual(7000000, cache("--cache-limit", "7")[1]["limit"])
        self.assertEqual((0, {"file": str(CACHE), "removed": True}), cache("clear"))
        self.assertFalse(CACHE.exists())
        self.assertEqual((0, {"file": str(CACHE), "removed": False}), cache("clear"))
        self.assertEqual(2, cache("burn")[0])
        much = {"TAMBRA_CACHE_LIMIT": "much"}
        self.assertEqual((2, 0), (cache(**much)[0], cache("--cache-limit", "7", **much)[0]))
        # What has nothing to do with the cache.
        self.assertEqual(0, tambra("check", "--list-advice", "--quiet", **much)[0])


if __name__ == "__main__":
    run_tests(1)
