#!/usr/bin/env python3
"""Asks bash and zsh what they offer for a command line, and types lines into them that they complete.

GRIDFORGE_MANUAL_DIR is the folder with the completions of both shells. A shell that is not there is skipped.
"""
import json
import os
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

MANUAL = os.path.abspath(os.environ["GRIDFORGE_MANUAL_DIR"])
RUNNER = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", "python", "bin", "gridforge-run"))
PATIENCE = 60  # seconds
FILES = ("a.asc", "b.FLT", "b.hdr", "c.mif", "c.mid", "d.shp", "e.csv", "f.dmg", "g.nbc", "h.rfc", "i.xyz", "j k.asc", "notes.md",
         "sub/x.asc")
with open(os.path.join(MANUAL, "gridforge.json"), encoding="utf-8") as description:
    OPERATIONS = {operation["name"]: operation for operation in json.load(description)["operations"]}


class Terminal:
    """An interactive shell at a terminal of its own. What is typed leaves its mark in files; the screen is not looked at."""

    def __init__(self, folder, *command):
        self.folder = folder
        self.lines = 0
        self.pid, self.end = pty.fork()
        if self.pid == 0:
            os.chdir(folder)
            os.execve(command[0], command, {**os.environ, "TERM": "dumb", "LC_ALL": "C.UTF-8", "HOME": folder})

    def type(self, keys):
        os.write(self.end, keys.encode())

    def run(self, line):
        """Types a line and waits for its end."""
        self.lines += 1
        self.type(f"{line}\r: > .line{self.lines}\r")
        self.wait(f".line{self.lines}")

    def wait(self, mark):
        """Waits for a file that the shell makes, and removes it."""
        path = os.path.join(self.folder, mark)
        limit = time.monotonic() + PATIENCE
        while not os.path.exists(path):
            if time.monotonic() > limit:
                raise AssertionError(f"the shell does not make {mark}")
            if select.select([self.end], [], [], 0.02)[0]:
                os.read(self.end, 65536)  # a terminal that nobody reads stands still
        os.remove(path)

    def close(self):
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)
        os.close(self.end)


class Completion:
    """The tests, for both shells."""

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        for name in FILES:
            path = os.path.join(self.folder, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="ascii"):
                pass

    def check(self, line, *offered):
        """What the shell offers for the last word of the line, in any order."""
        self.assertEqual(sorted(self.offers(line)), sorted(offered), line)

    def flags_of(self, name, *without):
        """What goes with an operation, as a program reads it."""
        flags = [flag["flag"] for flag in OPERATIONS[name]["options"]] + ["-b"]
        return [flag for flag in flags if flag not in without]

    def test_operations_come_first(self):
        offered = self.offers("gridforge -")
        asking = [flag["flag"] for operation in OPERATIONS.values() for flag in operation["flags"] if flag["flag"] != "-stat"]
        for flag in [*asking, "-statMean", "-statRank", "-b"]:
            self.assertIn(flag, offered)
        self.assertNotIn("-dem", offered)
        self.assertNotIn("-stat", offered)
        self.check("gridforge -de", "-dem", "-default_n", "-decimal")  # an option before its operation

    def test_options_of_each_operation(self):
        for name, operation in OPERATIONS.items():
            asked = {"stat": "-statMean", "cd": "-cd0.5", "resize": "-resize2", "trans_m": "-trans_m2"}.get(name, f"-{name}")
            value = {"layer": " c.mif", "table": " e.csv", "controlFile": " f.dmg"}.get(operation["flags"][0]["kind"], "")
            if name in ("stat", "trans_m"):
                continue
            with self.subTest(name):
                self.check(f"gridforge {asked}{value} -", *self.flags_of(name))

    def test_flags_of_one_operation_that_go_together(self):
        self.check("gridforge -trans_m2 -", *self.flags_of("trans_m"), "-trans_c")
        self.check("gridforge -statRank2 -stat", "-statAll", "-statMean", "-statMedian", "-statMin", "-statMax", "-statFrac",
                   "-statRank", "-statRankAll")
        self.check("gridforge -max -m")

    def test_a_flag_once_unless_each_one_counts(self):
        self.check("gridforge -b -max -src -", *self.flags_of("max", "-b", "-src"))
        self.check("gridforge -maximum -s", "-src")  # letters after a flag's name are ignored
        self.check("gridforge -xs c.mif -mat a.asc -m", "-mat")

    def test_files_by_the_kind_of_the_value(self):
        grids, layers = ("a.asc", "b.FLT", "j k.asc", "sub"), ("c.mif", "d.shp", "sub")
        self.check("gridforge -remap -dem ", *grids)
        self.check("gridforge -cp ", *layers)
        self.check("gridforge -xs c.mif -branch ", *layers)
        self.check("gridforge -classify ", "e.csv", "sub")
        self.check("gridforge -cp c.mif -config ", "e.csv", "i.xyz", "sub")
        self.check("gridforge -damages ", "f.dmg", "sub")
        self.check("gridforge -nbc ", "g.nbc", "sub")
        self.check("gridforge -rf ", "h.rfc", "sub")
        self.check("gridforge -max -out ", *[name for name in FILES if "/" not in name], "sub")

    def test_the_program_that_runs_the_tool(self):
        self.check("gridforge-run --stage -cp ", "c.mif", "d.shp", "sub")
        self.check("gridforge-run --log a.log -cp c.mif -c", "-cpsd", "-cpmm", "-config")

    def test_the_options_of_that_program(self):
        shown = subprocess.run([sys.executable, "-B", RUNNER, "--help"], capture_output=True, text=True, check=True).stdout
        options = re.findall(r"(?m)^  (--[\w-]+) ", shown)
        self.assertGreater(len(options), 10)
        self.check("gridforge-run --", *options)
        self.check("gridforge-run --stage -max --", *[option for option in options if option != "--stage"])
        self.check("gridforge-run --stage -- --")
        self.check("gridforge --")
        files = [name for name in FILES if "/" not in name] + ["sub"]
        for before in ("--json ", "-max --log ", "--stage --input ", "--stage --input e.csv "):
            self.check("gridforge-run " + before, *files)
        self.check("gridforge-run --timeout ")
        self.check("gridforge-run --timeout 5 -cp ", "c.mif", "d.shp", "sub")
        self.check("gridforge-run --input e.csv -max ", "a.asc", "b.FLT", "j k.asc", "sub")

    def test_that_program_takes_names_from_the_root(self):
        self.shell.run("gridforge-run() { printf '%s|' \"$@\" > .called; }")
        self.complete(f"gridforge-run -max {self.folder}/a\t")
        with open(os.path.join(self.folder, ".called"), encoding="utf-8") as called:
            self.assertEqual(called.read(), f"-max|{self.folder}/a.asc|")

    def test_files_that_stand_by_themselves(self):
        self.check("gridforge -max ", "a.asc", "b.FLT", "j k.asc", "sub")
        self.check("gridforge -b ", "a.asc", "b.FLT", "j k.asc", "sub")
        self.check("gridforge -xyz ", "e.csv", "i.xyz", "sub")
        self.check("gridforge -cp c.mif ", "a.asc", "b.FLT", "j k.asc", "sub")
        self.check("gridforge -damages f.dmg ")  # takes none
        self.check("gridforge -max /")  # would be a flag
        self.check("gridforge -max n", "notes.md")  # none of the kind

    def test_what_is_left_is_completed(self):
        self.shell.run("gridforge() { printf '%s|' \"$@\" > .called; }")
        for keys, arguments in (("-histo\te\t", ["-histogram", "e.csv"]), ("-resi\t2 a\t", ["-resize2", "a.asc"]),
                                ("-max j\t-src", ["-max", "j k.asc", "-src"]), ("-damages f\t", ["-damages", "f.dmg"]),
                                ("-max s\tx\t", ["-max", "sub/x.asc"])):
            self.complete("gridforge " + keys)
            with open(os.path.join(self.folder, ".called"), encoding="utf-8") as called:
                self.assertEqual(called.read().split("|")[:-1], arguments, keys)


class Bash(Completion, unittest.TestCase):
    def setUp(self):
        super().setUp()
        self.shell = Terminal(self.folder, shutil.which("bash"), "--norc", "--noprofile", "-i")
        self.addCleanup(self.shell.close)
        self.shell.run(f". '{MANUAL}/gridforge.bash'")

    def complete(self, line):
        self.shell.run(line)

    def offers(self, line):
        words = " ".join(f"'{word}'" for word in line.split(" "))
        script = (f". '{MANUAL}/gridforge.bash' && COMP_WORDS=({words}) && COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)) && "
                  "{ _gridforge || true; } && for offer in \"${COMPREPLY[@]}\"; do echo \"$offer\"; done")
        run = subprocess.run(["bash", "--norc", "-c", script], cwd=self.folder, capture_output=True, text=True, check=True)
        self.assertEqual(run.stderr, "")
        return run.stdout.splitlines()


class Zsh(Completion, unittest.TestCase):
    # Notes what the functions of the completion system offer, and lets them go on.
    LISTENER = """
compadd() {
    local -a options=("${(@)@[1,(i)(-|--)]}") offered
    if (( ! ${options[(I)-(O|A|D)]} )); then # with those it fills arrays and offers nothing
        builtin compadd -A offered "$@"
        (( $#offered )) && print -rl -- $offered >> ~/.offered
    fi
    builtin compadd "$@"
}
autoload -Uz compinit
fpath=(%s $fpath)
compinit -u -D
LISTMAX=0
listing() { zle list-choices; : > ~/.noted }
completing() { zle expand-or-complete; : > ~/.noted }
zle -N listing
zle -N completing
bindkey '^X' listing '^I' completing '^U' kill-whole-line
"""

    def setUp(self):
        program = shutil.which("zsh")
        if not program:
            self.skipTest("no zsh here")
        super().setUp()
        with open(os.path.join(self.folder, ".listener"), "w", encoding="ascii") as file:
            file.write(self.LISTENER % MANUAL)
        self.shell = Terminal(self.folder, program, "-f", "-i")
        self.addCleanup(self.shell.close)
        self.shell.run(". ~/.listener")

    def offers(self, line):
        path = os.path.join(self.folder, ".offered")
        with open(path, "w", encoding="ascii"):
            pass
        self.shell.type(line + "\x18")
        self.shell.wait(".noted")
        self.shell.run("\x15")  # gives the line up
        with open(path, encoding="utf-8") as offered:
            return sorted({text.replace("\\ ", " ") for text in offered.read().splitlines()})

    def complete(self, line):
        """Completion looks whether more has been typed, so each one is waited for."""
        *parts, rest = line.split("\t")
        for part in parts:
            self.shell.type(part + "\t")
            self.shell.wait(".noted")
        self.shell.run(rest)


if __name__ == "__main__":
    unittest.main()
