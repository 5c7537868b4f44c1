"""Runs the executable of a commit and the present one on the same inputs, and reports whatever differs.

usage: scripts/witness SECONDS [option ...]
       scripts/witness --runs N [option ...]
       scripts/witness --seed N --run N [option ...]
       scripts/witness --again FOLDER [option ...]

First come all inputs as they are, then inputs damaged at random until SECONDS are over (0: only the former); with --damaged-only,
damaged ones from the start. Compared are
console, standard error, exit, the files with their permissions, and peak memory.
"""
import argparse
import contextlib
import ctypes
import fcntl
import multiprocessing
import os
import queue
import random
import re
import shutil
import signal
import subprocess
import sys
import time
import traceback

import judge
import reference
import report
from damage import damage
from inputs import Recorded, Sources
from runs import Failure, Limits, Runner, Scratch, Tool, remove_tree, scratch_root

BESIDE = os.path.join(os.path.dirname(reference.SOURCE), "shared")
CACHE = os.path.join(reference.SOURCE, "build", "witness")
MOST_KEPT_OF_A_KIND = 2
PR_SET_PDEATHSIG = 1  # of prctl


def arguments():
    """The command line."""
    parser = argparse.ArgumentParser(prog="scripts/witness", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    add = parser.add_argument
    add("seconds", type=float, nargs="?", metavar="SECONDS")
    add("--reference", metavar="COMMIT", help="compare with this commit; else with the last that changed " + reference.MARK)
    add("--reference-tool", metavar="PATH", help="compare with this executable")
    add("--alone", action="store_true", help="no comparison: look for crashes, reports of sanitizers and runs without end")
    add("--preset", default="release", help="build the present executable with this preset (release)")
    add("--tool", metavar="PATH", help="the present executable, in place of that of the preset")
    add("--environment", action="append", default=[], metavar="'A=1 B=2'",
        help="for the present executable; given again, each input runs with each setting in turn")
    add("--seed", type=int, help="of the damages; else from the present commit")
    add("--runs", type=int, metavar="N", help="stop after N runs")
    add("--run", type=int, metavar="N", help="only run N of this seed, and keep its folders")
    add("--again", metavar="FOLDER", help="only the run that is kept in this folder")
    add("--damaged-only", action="store_true", help="no inputs as they are")
    add("--only", default="", metavar="TEXT", help="only inputs with this in their names")
    add("--inputs", metavar="FOLDER", help="recorded runs; else those of the command-line tests, recorded again after a build")
    add("--cases", default=os.path.join(BESIDE, "cases"), metavar="FOLDER", help="sample cases")
    add("--data", default=os.path.join(BESIDE, "data"), metavar="FOLDER", help="real grids and layers")
    add("--seconds-a-run", type=int, default=5, metavar="N", help="processor time of a run (5)")
    add("--memory", type=int, default=2000, metavar="MB", help="data of a run (2000), 0 for no limit; sanitizers have none")
    add("--jobs", type=int, default=os.cpu_count())
    add("--runner", metavar="PATH", help="the program that starts the runs, in place of that of the preset")
    add("--keep", default=os.path.join(CACHE, "differences"), metavar="FOLDER", help="for the folders of runs that differ")
    options = parser.parse_args()
    if [options.seconds, options.runs, options.run, options.again].count(None) != 3:
        parser.error("one of SECONDS, --runs, --run and --again")
    options.others = other_options(parser, options)
    return options


def other_options(parser, options):
    """The options that a repeated run needs too, as words."""
    words = []
    for action in parser._actions:
        value = getattr(options, action.dest, None)
        if action.dest in ("seconds", "runs", "seed", "run", "jobs", "keep") or value in (None, action.default):
            continue
        for one in value if isinstance(value, list) else [value]:
            words += [action.option_strings[0]] + ([] if one is True else [str(one)])
    return words


def build_present(options):
    """Builds what the run needs with the preset, and fills in the paths that were not given."""
    folder = os.path.join(reference.SOURCE, "build", options.preset)
    targets = (["gridforge"] if not options.tool else []) + (["gridforge_witness_runner"] if not options.runner else [])
    if not options.inputs and not options.again:
        targets.append("cli_tests")
    if targets:
        for command in (["cmake", "--preset", options.preset],
                        ["cmake", "--build", "--preset", options.preset, "--parallel", str(options.jobs), "--target", *targets, "--", "--quiet"]):
            result = subprocess.run(command, cwd=reference.SOURCE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
            if result.returncode:
                raise Failure(result.stdout[-3000:] + "\nthe present executable cannot be built")
    options.tool = options.tool or os.path.join(folder, "gridforge")
    options.runner = options.runner or os.path.join(folder, "tests", "gridforge_witness_runner")
    if not options.inputs and not options.again:
        options.inputs = record(os.path.join(folder, "tests", "cli_tests"), os.path.join(folder, "witness-inputs"), options.jobs)


def record(tests, folder, jobs):
    """Lets the command-line tests record their runs, where they are newer than the recording."""
    with open(folder + ".lock", "w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)  # another witness may be recording
        if not os.path.exists(folder) or os.path.getmtime(folder) <= os.path.getmtime(tests):
            record_now(tests, folder, jobs)
    return folder


def record_now(tests, folder, jobs):
    """Replaces the recording."""
    print("Recording the runs of the command-line tests", flush=True)
    fresh = folder + ".new"
    shutil.rmtree(fresh, ignore_errors=True)
    os.makedirs(fresh)
    shards = [subprocess.Popen([tests, "--gtest_brief=1"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                               env={**os.environ, "GRIDFORGE_RECORD": fresh, "GTEST_TOTAL_SHARDS": str(jobs), "GTEST_SHARD_INDEX": str(i)})
              for i in range(jobs)]
    try:
        texts = [shard.communicate()[0] for shard in shards]
    finally:
        for shard in shards:
            shard.kill()
    if any(shard.returncode for shard in shards):
        raise Failure("".join(text[-3000:] for text in texts) + "\nthe command-line tests fail, so their runs are not recorded")
    shutil.rmtree(folder, ignore_errors=True)
    os.rename(fresh, folder)
    os.utime(folder)


def forget_kept(folder):
    """Removes what earlier witnesses have kept."""
    for name in os.listdir(folder) if os.path.isdir(folder) else ():
        if re.fullmatch(r"\d+-\d+", name):
            remove_tree(os.path.join(folder, name))


def sources(options):
    """All inputs that were asked for."""
    found = Sources()
    if options.again:
        found.inputs = [Recorded(os.path.abspath(options.again), os.path.basename(os.path.abspath(options.again)))]
        return found
    found.add_recorded(options.inputs)
    found.add_cases(options.cases)
    found.add_real(options.data)
    found.inputs = [one for one in found.inputs if options.only in one.name]
    if not found.inputs:
        raise Failure("there are no inputs")
    return found


class Plan:
    """Which input run N has, and how it is damaged: always the same for one seed and the same inputs."""

    def __init__(self, inputs, seed):
        self.inputs = list(inputs)
        self.seed = seed
        random.Random(seed).shuffle(self.inputs)

    def given(self, number):
        """The input of a run and what was done to it."""
        if number < len(self.inputs):
            return self.inputs[number].load(), []
        rng = random.Random("%d %d" % (self.seed, number))
        given = rng.choice(self.inputs).load()
        return given, damage(rng, given)


def end_with(parent):
    """Lets this worker end when `parent` does, however that ends."""
    signal.signal(signal.SIGTERM, signal.SIG_DFL)
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)
    if os.getppid() != parent:
        os._exit(1)


class Worker:
    """Takes run numbers from a counter until the time is over, and sends a line of results for each."""

    def __init__(self, options, plan, reference_tool, root, results):
        self.plan = plan
        self.results = results
        self.keep = options.keep
        self.kept = {}
        self.repeating = options.run is not None or options.again is not None
        self.limits = Limits(options.seconds_a_run, options.memory)
        self.reference = reference_tool
        self.tools = [Tool(options.tool, setting.split()) for setting in options.environment or [""]]
        self.runner = Runner(options.runner)
        self.scratch = Scratch(root, self.runner)

    def work(self, counter, last, deadline):
        try:
            while time.monotonic() < deadline:
                with counter.get_lock():
                    number = counter.value
                    counter.value += 1
                if number >= last:
                    break
                self.results.put(self.one(number))
        except Exception:  # whatever it is, the main process has to know
            self.results.put(traceback.format_exc())
        finally:
            self.runner.close()
            self.results.put(None)

    def one(self, number):
        given, done = self.plan.given(number)
        before = self.scratch.processor_ms
        verdict = judge.judge(self.scratch, given, self.reference, self.tools, self.limits)
        result = report.Result(number, given.name, done, verdict, self.scratch.processor_ms - before)
        if self.repeating or any(self.kept.get(difference.kind, 0) < MOST_KEPT_OF_A_KIND for difference in verdict.differences):
            for difference in verdict.differences:
                self.kept[difference.kind] = self.kept.get(difference.kind, 0) + 1
            result.kept = report.keep_run(os.path.join(self.keep, "%d-%d" % (self.plan.seed, number)), self.scratch, given, result)
        return result


def run_all(options, plan, reference_tool, root):
    """Starts the workers and hands their results to the report, which is returned."""
    seconds = options.seconds or 0
    one_only = options.run if options.run is not None else 0 if options.again else None
    jobs = 1 if one_only is not None else max(1, options.jobs)
    first = one_only if one_only is not None else len(plan.inputs) if options.damaged_only else 0
    last = first + 1 if one_only is not None else first + options.runs if options.runs else sys.maxsize if seconds else len(plan.inputs)
    deadline = time.monotonic() + seconds if seconds > 0 else float("inf")
    counter = multiprocessing.Value("q", first)
    results = multiprocessing.Queue()
    parent = os.getpid()

    def work(folder):
        end_with(parent)
        Worker(options, plan, reference_tool, folder, results).work(counter, last, deadline)

    workers = [multiprocessing.Process(daemon=True, target=work, args=(os.path.join(root, "w%d" % i),)) for i in range(jobs)]
    summary = report.Report(options, plan, reference_tool is None)
    try:
        for worker in workers:
            worker.start()
        collect(results, workers, summary)
    finally:
        for worker in workers:
            if worker.pid:
                worker.terminate()
                worker.join()
    return summary


def collect(results, workers, summary):
    """Takes results until all workers have ended."""
    working = len(workers)
    while working > 0:
        try:
            result = results.get(timeout=10)
        except queue.Empty:
            if any(worker.exitcode for worker in workers):
                raise Failure("a worker was killed") from None
            continue
        if result is None:
            working -= 1
        elif isinstance(result, str):
            raise Failure(result)
        else:
            summary.add(result)


def default_seed():
    """The same for all witnesses of one commit."""
    return int(reference.git("rev-parse", "HEAD")[:7], 16)


def remove_scratch(root):
    """Removes the scratch folder; a run that was killed may still be ending in it."""
    signal.signal(signal.SIGTERM, signal.SIG_IGN)
    for _ in range(20):
        with contextlib.suppress(OSError):
            remove_tree(root)
            return
        time.sleep(0.05)
    remove_tree(root)


def main():
    options = arguments()
    signal.signal(signal.SIGTERM, lambda number, _: sys.exit(128 + number))
    sys.stdout.reconfigure(errors="backslashreplace")  # names of files may be any bytes
    root = None
    try:
        reference_tool = None
        if options.reference_tool:
            reference_tool = Tool(options.reference_tool)
        elif not options.alone:
            commit = reference.commit_of(options.reference) if options.reference else reference.default_commit()
            if not options.reference:
                options.others += ["--reference", commit[:12]]
            reference_tool = Tool(reference.build(commit, CACHE, options.jobs))
        build_present(options)
        found = sources(options)
        plan = Plan(found.inputs, options.seed if options.seed is not None else default_seed())
        if options.seconds is not None or options.runs is not None:
            forget_kept(options.keep)
        root = scratch_root()
        print("%d inputs; left out: %s" % (len(found.inputs), ", ".join(
            "%d %s" % (count, reason) for reason, count in sorted(found.left_out.items())) or "none"), flush=True)
        return run_all(options, plan, reference_tool, root).finish()
    except Failure as failure:
        print("witness: %s" % failure, file=sys.stderr)
        return 2
    finally:
        if root:
            remove_scratch(root)


if __name__ == "__main__":
    multiprocessing.set_start_method("fork")
    sys.exit(main())
