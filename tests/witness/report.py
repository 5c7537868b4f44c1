"""Prints what was found, and keeps runs that differ."""
import contextlib
import os
import shlex
import shutil
import statistics
import time

from runs import Failure, remove_tree

MOST_KINDS_SHOWN = 100
MOST_NOT_COMPARED = 0.05  # the share of runs; where it is more, nothing has been shown


class Result:
    """The verdict over a run, small enough to send from a worker."""

    def __init__(self, number, name, done, verdict, processor_ms):
        self.number = number
        self.name = name
        self.done = done
        self.differences = [(difference.kind, difference.detail) for difference in verdict.differences]
        self.compared = verdict.compared
        self.notes = verdict.notes
        self.peaks = verdict.peaks
        self.outcomes = [("reference", verdict.reference), ("present", verdict.present)]
        self.processor_ms = processor_ms  # of all executables
        self.kept = None

    def __getstate__(self):
        return {**self.__dict__, "outcomes": None}


def keep_run(folder, scratch, given, result):
    """Keeps a run: its input, as tests record it, and the files and console of each executable."""
    remove_tree(folder)
    os.makedirs(folder)
    scratch.prepare(given, os.path.join(folder, "given"))
    fields = [(b"tool", b""), (b"folder", b"@FOLDER@"), (b"work folder", os.fsencode(given.work_folder)), (b"program", b"gridforge"),
              *((b"argument", word) for word in given.arguments), *((b"environment", word) for word in given.environment),
              (b"input", given.stdin)]
    with open(os.path.join(folder, "run"), "wb") as target:
        target.write(b"".join(key + b"=" + value + b"\0" for key, value in fields))
    for who, outcome in result.outcomes:
        if outcome is not None:
            with contextlib.suppress(shutil.Error):  # files that must not be read; all others are copied
                shutil.copytree(os.path.join(outcome.folder, "run"), os.path.join(folder, who, "left"), symlinks=True)
            for what in ("console", "error"):
                with open(os.path.join(folder, who, what), "wb") as target:
                    target.write(getattr(outcome, what))
    with open(os.path.join(folder, "about"), "w", encoding="utf-8", errors="surrogateescape") as target:
        target.write("%s\n%s\n\n%s\n" % (result.name, "\n".join(result.done), command_of(given)))
        target.write("".join("\n%s\n    %s\n" % difference for difference in result.differences))
    return folder


def command_of(given):
    """The command as a shell takes it."""
    words = [shlex.quote(os.fsdecode(word)) for word in given.environment + [b"gridforge"] + given.arguments]
    return " ".join(words) + (" < input" if given.stdin else " < /dev/null")


class Report:
    """Counts results; shows each kind of difference once."""

    def __init__(self, options, plan, alone):
        self.options = options
        self.plan = plan
        self.alone = alone
        self.began = time.monotonic()
        self.runs = 0
        self.processor_ms = 0
        self.differ = 0
        self.not_compared = 0  # in full, and without a difference in the rest
        self.kinds = {}
        self.notes = {}
        self.peaks = []

    def add(self, result):
        self.runs += 1
        self.processor_ms += result.processor_ms
        for note in set(result.notes):
            self.notes[note] = self.notes.get(note, 0) + 1
        if result.peaks:
            self.peaks.append((result.peaks[1] / max(1, result.peaks[0]), result.peaks, result.number, result.name))
        if result.differences:
            self.differ += 1
            fresh = [(kind, detail) for kind, detail in result.differences if kind not in self.kinds]
            for kind in {kind for kind, _ in result.differences}:
                self.kinds.setdefault(kind, []).append(result.number)
            if fresh and len(self.kinds) <= MOST_KINDS_SHOWN:
                self.show(result, fresh)
        elif not result.compared:
            self.not_compared += 1

    def show(self, result, differences):
        print("\nrun %d: %s" % (result.number, "; ".join([result.name] + result.done)))
        for kind, detail in differences:
            print("   %s\n       %s" % (kind, detail))
        print("   repeat: %s" % self.repeat(result.number))
        if result.kept:
            print("   kept in %s" % os.path.relpath(result.kept), flush=True)

    def repeat(self, number):
        """The command that repeats a run."""
        words = ["scripts/witness", "--seed", str(self.plan.seed), "--run", str(number)] + self.options.others
        return " ".join(shlex.quote(word) for word in words)

    def finish(self):
        """Prints the summary; returns the exit status, and fails where too little was compared."""
        seconds = time.monotonic() - self.began
        print()
        if self.kinds:
            print("kinds of differences, with the number of runs and the first one:")
            for kind, numbers in sorted(self.kinds.items(), key=lambda item: -len(item[1])):
                print("%8d  %8d  %s" % (len(numbers), min(numbers), kind))
        for note, count in sorted(self.notes.items()):
            print("%d runs %s" % (count, note))
        self.finish_memory()
        plain = 0 if self.options.damaged_only else min(self.runs, len(self.plan.inputs))
        print("seed %d, %d inputs as they are, %d damaged; %.0f s, %.0f runs a second" %
              (self.plan.seed, plain, self.runs - plain, seconds, self.runs / max(seconds, 0.001)))
        print("processor time of the executables: %.3f s" % (self.processor_ms / 1000))
        same = self.runs - self.differ - self.not_compared
        print("%d runs: %d %s, %d %s" % (self.runs, same, "good" if self.alone else "the same", self.differ,
                                         "bad" if self.alone else "differ, %d not compared" % self.not_compared))
        if self.differ:
            return 1
        if same == 0 or self.not_compared > self.runs * MOST_NOT_COMPARED:
            raise Failure("too few runs could be compared: %d of %d" % (same, self.runs))
        return 0

    def finish_memory(self):
        if self.peaks:
            least, most = min(self.peaks), max(self.peaks)
            print("peak memory of the new executable by that of the reference: median %.3f, least %.3f (run %d), most %.3f (run %d)" %
                  (statistics.median(ratio for ratio, *_ in self.peaks), least[0], least[2], most[0], most[2]))
