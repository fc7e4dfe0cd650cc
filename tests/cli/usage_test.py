#!/usr/bin/env python3
"""What a user is told who uses the program wrongly, and what else it owes its users:
usage_test.py PROGRAM."""

import subprocess

import program
from program import BASE, ENVIRONMENT, PROGRAM, ProgramTest, run_tests, tambra

PACKAGE = f"out/{program.PACKAGE}"
GONE = "The Operation could not be completed because the file system object was not found."


class UsageTest(ProgramTest):
    def test_wrong_use_is_told_with_the_command_and_what_was_meant(self):
        jobs = "--jobs: \"{}\" is no number from 1 to 1024"
        for arguments, command, message in (
                ([], "", "a command is missing: pack, check, info, list"),
                (["frob"], "", '"frob" is no command'),
                (["lsit"], "", '"lsit" is no command; did you mean list?'),
                (["help", "pakc"], "", '"pakc" is no command; did you mean pack?'),
                (["a\x1b[2J"], "", '"a�[2J" is no command'),
                (["dwop"], " dwop", "a command is missing: encode, decode, info"),
                (["dwop", "inof"], " dwop", '"inof" is no command; did you mean info?'),
                (["--jsno", "list", "x"], "", '"--jsno" is no option'),
                (["--json", "list", "x"], "", "--json belongs behind the command: tambra COMMAND --json"),
                (["pack"], " pack", "INPUT is missing: The folder with the content library"),
                (["pack", "demo"], " pack", "OUTPUT is missing: The folder for the package and the log"),
                (["dwop", "encode", "x"], " dwop encode", "OUT is missing: The DWOP stream"),
                (["list", "a", "b"], " list", '"b" is one argument too many'),
                (["pack", "a", ""], " pack", "OUTPUT is empty: The folder for the package and the log"),
                (["check", "a", "--overrides", ""], " check", "--overrides needs a value: --overrides FILE"),
                (["check", "a", "--overrides="], " check", "--overrides needs a value: --overrides FILE"),
                (["check", "a", "--jobs", "2", "--jobs=3"], " check", "--jobs is given twice"),
                (["list", "a", "--json=no"], " list", "--json takes no value"),
                (["pack", "--jbos"], " pack", '"--jbos" is no option; did you mean --jobs?'),
                (["pack", "a", "b", "--repalce=x"], " pack", '"--repalce" is no option; did you mean --replace?'),
                (["pack", "a", "b", "-j"], " pack", '"-j" is no option'),
                (["pack", "a", "b", "-jobs"], " pack", '"-jobs" is no option; did you mean --jobs?'),
                (["pack", "a", "b", "--jobs"], " pack", "--jobs needs a value: --jobs N"),
                (["pack", "a", "b", "--texts", "--json"], " pack", "--texts needs a value: --texts FOLDER"),
                (["pack", "a", "b", "--jobs", "0"], " pack", jobs.format("0")),
                (["check", "a", "--jobs", "x"], " check", jobs.format("x")),
                (["pack", "a", "b", "--cache-limit", "-1"], " pack",
                 '--cache-limit: "-1" is no number from 0 to 1000000'),
                (["cache", "foo"], " cache", 'ACTION: "foo" is none of: show, clear'),
                (["check", "--explain", "loop-clik"], " check",
                 '--explain: there is no "loop-clik"; did you mean loop-click?'),
                (["pack", "a", "b", "--answer", "20=Foo"], " pack",
                 'alert 20 has no button "Foo", but "Cancel", "Replace"'),
                (["pack", "a", "b", "--answer", "foo"], " pack",
                 '--answer: "foo" is no answer; write ALERT=BUTTON, such as 20=Replace'),
                (["pack", "a", "b", "--answer", "5=OK"], " pack",
                 "--answer: alert 5 asks nothing; 10, 18, 20, 21 and 23 do")):
            with self.subTest(arguments=arguments):
                status, output, error = tambra(*arguments)
                self.assertEqual((status, output, len(error)), (2, [], 2))
                self.assertIn(f"tambra{command}: {message}", error[0])
                self.assertEqual(error[1], f'Run "tambra{command} --help" for more information.')

    def test_help_begins_with_examples_and_names_every_argument(self):
        commands = lambda *path: [line.split()[0] for line in "\n".join(tambra(*path, "--help")[1])
                                  .partition("ommands:\n")[2].splitlines()]
        paths = [[], *([name] for name in commands()), *(["dwop", name] for name in commands("dwop"))]
        self.assertGreater(len(paths), 13)
        for path in paths:
            with self.subTest(command=path):
                status, output, error = tambra(*path, "--help")
                text = "\n".join(output)
                self.assertEqual((status, error), (0, []))
                self.assertLess(max(map(len, output)), 101)
                self.assertIn(f"  tambra {' '.join(path)}".rstrip(), text[:text.index("Usage: tambra")])
                usage = next(line for line in output if line.startswith("Usage: "))
                for word in usage.split():
                    if word.strip("[].").isupper() and word not in ("[OPTIONS]", "COMMAND"):
                        self.assertIn("\n  " + word.strip("[]."), text)
                if path[:1] != ["help"]:
                    self.assertEqual(tambra("help", *path)[1], output)
                    self.assertEqual(tambra(*path, "-h")[1], output)
        self.assertEqual(tambra("pack", "--replace", "--help")[0], 0)

    def test_the_version_comes_with_what_a_report_of_a_fault_needs(self):
        status, output, error = tambra("--version")
        self.assertEqual((status, error), (0, []))
        self.assertRegex(output[0], r"^tambra \d+\.\d+\.\d+$")
        self.assertEqual([line.split("  ")[0] for line in output[1:]],
                         ["Packages", "Samples", "Sliced loops", "Built by"])

    def test_files_that_cannot_be_used_are_named(self):
        missing = "cannot open the file: No such file or directory"
        (BASE / "short.tmb").write_bytes(b"\0\0")
        (BASE / "empty.tmb").write_bytes(b"")
        damaged = "no package, or a damaged one: "
        for arguments, status, lines in (
                (["info", "nothing"], 4, [f"nothing: {missing}"]),
                (["list", "nothing"], 4, [f"nothing: {missing}"]),
                (["verify", "nothing"], 4, [f"nothing: {missing}"]),
                (["extract", "nothing", "x"], 4, [f"nothing: {missing}"]),
                (["diff", PACKAGE, "nothing"], 4, [f"nothing: {missing}"]),
                (["dump", "nothing"], 4, [f"nothing: {missing}"]),
                (["dwop", "info", "nothing"], 4, [f"nothing: {missing}"]),
                (["info", "demo"], 4, ["demo: "]),
                (["info", "short.tmb"], 4, [f"short.tmb: {damaged}"]),
                (["list", "empty.tmb"], 4, [f"empty.tmb: {damaged}"]),
                (["verify", "demo/Splash.jpg"], 4, [f"demo/Splash.jpg: {damaged}"]),
                (["dwop", "info", "demo/Splash.jpg"], 4, ["demo/Splash.jpg: no DWOP stream, or a damaged one: "]),
                (["dwop", "encode", "demo/Splash.jpg", "x"], 4,
                 ["demo/Splash.jpg: no WAVE or AIFF file, or a damaged one: "]),
                (["check", "nothing"], 4, [GONE, "nothing: the input folder does not exist"]),
                (["pack", "nothing", "no"], 4, [GONE, "nothing: the input folder does not exist"])):
            with self.subTest(arguments=arguments):
                got, output, error = tambra(*arguments)
                self.assertEqual((got, output, len(error)), (status, [], len(lines)), error)
                for line, start in zip(error, lines):
                    self.assertTrue(line.startswith(start), error)
        self.assertFalse((BASE / "no").exists() or (BASE / "x").exists())

    def test_files_are_not_taken_for_streams_that_are_closed(self):
        done = subprocess.run(f'"{PROGRAM}" pack demo closed --no-cache <&- >&- 2>&-', shell=True, cwd=BASE,
                              check=False, env=ENVIRONMENT)
        self.assertEqual(done.returncode, 0)
        self.assertEqual((BASE / "closed" / PACKAGE[4:]).read_bytes(), (BASE / PACKAGE).read_bytes())
        self.assertEqual([path.read_text() for path in (BASE / "closed").glob("*.txt")], ["Packing complete\n"])

    def test_a_full_disk_under_standard_output_is_told(self):
        with open("/dev/full", "wb") as full:
            for arguments in (["--help"], ["--version"], ["list", PACKAGE, "--quiet"], ["info", PACKAGE, "--json"],
                              ["check", "demo", "--quiet"], ["dump", PACKAGE], ["diff", PACKAGE, PACKAGE, "--json"]):
                status, _, error = tambra(*arguments, output=full)
                self.assertEqual(status, 4, arguments)
                self.assertIn("cannot write to standard output: No space left on device", error[-1])


if __name__ == "__main__":
    run_tests(1)
