"""Runs executables on inputs in a scratch folder, through the small runner."""
import os
import shutil
import struct
import subprocess
import tempfile

from compare import Outcome, read
from inputs import FOLDER

ROOM = 2 << 30  # free bytes that the scratch folder must have
FILE_MB = 64  # a run cannot write a larger file


class Failure(Exception):
    """The witness itself cannot go on."""


class Limits:
    """What a run may take: seconds of the processor, and megabytes of data (0 for any number)."""

    def __init__(self, seconds, memory_mb):
        self.seconds = seconds
        self.memory_mb = memory_mb


class Tool:
    """An executable and the environment that it gets beside the plain one."""

    def __init__(self, path, environment=()):
        self.path = os.path.abspath(path)
        self.environment = list(environment)  # texts, NAME=value
        self.threads = sum(int(word.partition("=")[2]) for word in self.environment if word.startswith("GRIDFORGE_THREADS="))
        self.sanitized = b"__asan_init" in read(self.path)


def scratch_root():
    """A new folder for runs, in memory where there is room."""
    for place in ("/dev/shm", tempfile.gettempdir()):
        if os.path.isdir(place) and os.access(place, os.W_OK) and free_bytes(place) >= ROOM:
            return tempfile.mkdtemp(prefix="gridforge-witness-", dir=place)
    raise Failure("no %d MB are free in /dev/shm or %s" % (ROOM >> 20, tempfile.gettempdir()))


def free_bytes(place):
    """Bytes that can still be written there."""
    status = os.statvfs(place)
    return status.f_bavail * status.f_frsize


def remove_tree(folder):
    """Removes a folder, whatever permissions a run has left there."""
    def open_up(_, path, __):
        os.chmod(os.path.dirname(path), 0o700)
        if os.path.isdir(path) and not os.path.islink(path):
            os.chmod(path, 0o700)
            shutil.rmtree(path)
        else:
            os.unlink(path)

    if os.path.lexists(folder):
        shutil.rmtree(folder, onerror=open_up)


class Runner:
    """The process that starts runs."""

    def __init__(self, path):
        self.process = subprocess.Popen([path], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def run(self, texts):
        """Sends the texts of a request; returns the end, peak memory in KB and processor time in ms."""
        payload = b"".join(text + b"\0" for text in texts)
        self.process.stdin.write(struct.pack("=I", len(payload)) + payload)
        self.process.stdin.flush()
        end, peak, processor = self.process.stdout.readline().decode().split("\t")
        return end, int(peak), int(processor)

    def close(self):
        self.process.communicate()


PLAIN = [b"PATH=/usr/bin:/bin", b"LANG=C", b"TZ=UTC"]
SANITIZED = [b"UBSAN_OPTIONS=print_stacktrace=1", b"ASAN_OPTIONS=max_allocation_size_mb=2000:hard_rss_limit_mb=3000"]


def environment_of(tool, given):
    """The variables of a run, each once. Those of the input count most: they are a part of what it tries."""
    words = PLAIN + (SANITIZED if tool.sanitized else []) + [os.fsencode(word) for word in tool.environment] + given.environment
    return list({word.partition(b"=")[0]: word for word in words}.values())


class Scratch:
    """A folder in which one run after the other takes place, always at the same path."""

    def __init__(self, root, runner):
        self.root = root
        self.runner = runner
        # What a name like ../a leads to is still below `around`, and is compared.
        self.around = os.path.join(root, "around")
        self.folder = os.path.join(self.around, "run")
        self.processor_ms = 0  # of all runs
        os.makedirs(root, exist_ok=True)

    def path(self, name):
        return os.path.join(self.root, name)

    def prepare(self, given, folder):
        """Writes the files of an input into a new folder."""
        os.makedirs(folder)
        modes = []
        for name, file in given.files.items():
            path = os.path.join(folder, name)
            parent = os.path.dirname(path)
            if not os.path.isdir(parent):
                if os.path.lexists(parent):
                    continue  # damaged: what was its folder is a file now
                os.makedirs(parent)
            if file.kind == "folder":
                os.makedirs(path, exist_ok=True)
            elif file.kind == "link":
                os.symlink(file.data, path)
                continue
            elif file.kind == "same":
                first = os.path.join(folder, file.data)
                if os.path.isfile(first):  # else damaged
                    os.link(first, path)
                continue
            else:
                with open(path, "wb") as target:
                    target.write(file.data)
            modes.append((path, file.mode))
        for path, mode in reversed(modes):
            os.chmod(path, mode)

    def run(self, tool, given, limits):
        """Runs a tool on an input; what it leaves stays until the next run or keep()."""
        remove_tree(self.around)
        self.prepare(given, self.folder)
        with open(self.path("input"), "wb") as target:
            target.write(given.stdin)
        work_folder = os.path.join(self.folder, given.work_folder)
        here = os.fsencode(self.folder)
        environment = [word.replace(FOLDER, here) for word in environment_of(tool, given)]
        memory_mb = 0 if tool.sanitized else limits.memory_mb
        wall_ms = limits.seconds * 10000
        texts = [os.fsencode(work_folder), *(os.fsencode(self.path(name)) for name in ("input", "console", "error")),
                 b"%d" % wall_ms, b"%d" % limits.seconds, b"%d" % memory_mb, b"%d" % FILE_MB,
                 b"%d" % len(environment), *environment, b"%d" % (len(given.arguments) + 1), os.fsencode(tool.path),
                 *(word.replace(FOLDER, here) for word in given.arguments)]
        end, peak, processor = self.runner.run(texts)
        if end == "failed":
            raise Failure("cannot start " + tool.path)
        self.processor_ms += processor
        return Outcome(end, peak, processor, read(self.path("console")), read(self.path("error")), self.around)

    def keep(self, outcome, name):
        """Moves what a run has left out of the way of the next one."""
        target = self.path(name)
        remove_tree(target)
        os.rename(outcome.folder, target)
        outcome.folder = target
        return outcome

    def full(self):
        """Whether so little room is left that a run may have felt it."""
        return free_bytes(self.root) < 4 * FILE_MB << 20
