"""Decides whether the runs of one input agree."""
import os
import re

from compare import Difference, compare, generic, more_memory, shown
from runs import Limits

PATIENCE = 4  # times the limit for a run that the reference has ended in time
NOT_MEMORY = re.compile(rb"allocation-size-too-big|out-of-memory|allocator is out of memory|hard rss limit exhausted|exceeds maximum supported size")
REPORT = re.compile(rb"ERROR: [A-Za-z]+Sanitizer: [^\n]*|runtime error: [^\n]*|Assertion [^\n]*")
PLACE = re.compile(rb"/(src/[^\s:]+:\d+)")
MORE_MEMORY = "more memory"
ENDLESS = b"Press Ctrl+C to stop."  # what a run prints before it waits for ever on purpose


class Verdict:
    """What was found. `notes` name what kept a run from being compared in full."""

    def __init__(self):
        self.differences = []
        self.compared = True  # False where a part of the run could not be compared
        self.notes = []
        self.peaks = None  # KB of the reference and of the new one
        self.reference = None  # the outcomes, for keeping
        self.present = None

    def leave(self, why):
        """Notes that a part of the run could not be compared."""
        self.compared = False
        self.notes.append(why)


def judge(scratch, given, reference, tools, limits):
    """Runs an input with the reference and with each tool; the first tool that differs ends it."""
    verdict = Verdict()
    if reference is None:
        for tool in tools:
            judge_alone(scratch, given, tool, limits, verdict)
            if verdict.differences:
                break
        return verdict
    verdict.reference = scratch.keep(scratch.run(reference, given, limits), "reference")
    for tool in tools:
        verdict.present = scratch.keep(run_patiently(scratch, given, tool, limits, verdict.reference), "present")
        verdict.differences = differences_in_time(verdict)
        if verdict.reference.end == "overtime":
            verdict.leave("not ended by the reference in time")
        elif not reference.sanitized and not tool.sanitized:
            compare_memory(scratch, given, reference, tool, limits, verdict)
        if scratch.full():
            verdict.differences = []
            verdict.leave("not compared: no room in the scratch folder")
        elif verdict.differences:
            drop_unsteady(scratch, given, reference, limits, verdict)
        if verdict.differences:
            for difference in verdict.differences:
                difference.detail += " (%s)" % " ".join(tool.environment) if tool.environment else ""
            break
    return verdict


def run_patiently(scratch, given, tool, limits, reference):
    """A run that takes longer than that of the reference gets more time before it counts as one without end."""
    outcome = scratch.run(tool, given, limits)
    if outcome.end == "overtime" and reference.end != "overtime":
        outcome = scratch.run(tool, given, Limits(limits.seconds * PATIENCE, limits.memory_mb))
    return outcome


def differences_in_time(verdict, again=None):
    """All differences except memory; `again` is a second run of the reference, as compare takes it."""
    a, b = verdict.reference, verdict.present
    found = compare(a, b, again)
    if b.end == "overtime" and "overtime" not in (a.end, (again or a).end):
        found.append(Difference("end: %s | overtime" % a.end, "the new one does not end"))
    return found


def drop_unsteady(scratch, given, reference, limits, verdict):
    """Runs the reference again, and drops the differences that its two runs have as well."""
    again = scratch.run(reference, given, limits)
    if again.end == verdict.reference.end and not compare(verdict.reference, again):
        return
    memory = [one for one in verdict.differences if one.kind == MORE_MEMORY]
    verdict.differences = differences_in_time(verdict, again) + memory
    verdict.leave("not compared in full: two runs of the reference differ")


def compare_memory(scratch, given, reference, tool, limits, verdict):
    """Peak memory; where there is more, both run twice again, and the least of each counts."""
    a, b = verdict.reference, verdict.present
    for _ in range(2):
        if not more_memory(a, b, tool.threads):
            break
        a.peak_kb = min(a.peak_kb, scratch.run(reference, given, limits).peak_kb)
        b.peak_kb = min(b.peak_kb, scratch.run(tool, given, limits).peak_kb)
    verdict.peaks = (a.peak_kb, b.peak_kb)
    if more_memory(a, b, tool.threads):
        verdict.differences.append(Difference(MORE_MEMORY, "%d KB | %d KB" % verdict.peaks))


def kind_of_report(line, text):
    """A report of a sanitizer without addresses, and the first place in our sources that it names."""
    where = PLACE.search(text)
    return generic(shown(re.sub(rb"0x[0-9a-f]+", b"#", line))) + (" at " + os.fsdecode(where.group(1)) if where else "")


def judge_alone(scratch, given, tool, limits, verdict):
    """A run without a reference: crashes, reports of sanitizers, anything on standard error, no end."""
    outcome = scratch.keep(scratch.run(tool, given, limits), "present")
    verdict.present = outcome
    found = REPORT.search(outcome.error)
    if NOT_MEMORY.search(outcome.error):
        verdict.notes.append("ended by the sanitizer over a size that no memory holds")
    elif found:
        verdict.differences.append(Difference(kind_of_report(found.group(), outcome.error), os.fsdecode(outcome.error[:2000])))
    elif outcome.error:
        verdict.differences.append(Difference("standard error", shown(outcome.error)))
    elif outcome.end == "waits" and ENDLESS in outcome.console:
        verdict.notes.append("waits for ever, and says so")
    elif outcome.end != "exit 0":
        verdict.differences.append(Difference("end: " + outcome.end, shown(outcome.console[-200:])))
