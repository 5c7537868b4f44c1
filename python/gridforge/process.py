"""One run of the tool as a process: its console is read, its time and memory are watched, and it can be ended."""
from __future__ import annotations

import ctypes
import os
import queue
import signal
import subprocess
import sys
import threading
import time
from dataclasses import dataclass
from pathlib import Path
from typing import IO, Callable, Optional, Protocol, Sequence

from .console import Console

LOOK_EVERY = 0.2  # seconds
TIME_TO_END = 5.0  # that a tool which is to end gets before it is killed
PROGRESS = "GRIDFORGE_PROGRESS"
SCRATCH = "GRIDFORGE_SCRATCH"


class CannotStart(Exception):
    """The system does not run the file."""


class Cancel(Protocol):
    """A threading.Event, or what behaves like one."""

    def is_set(self) -> bool: ...


@dataclass
class Watch:
    """What else happens during a run."""
    timeout: Optional[float] = None  # seconds
    cancel: Optional[Cancel] = None
    log: Optional[IO[bytes]] = None  # gets the console as it comes
    on_line: Optional[Callable[[str], None]] = None
    on_progress: Optional[Callable[[bytes], None]] = None  # gets the lines that the tool writes about its progress
    dies_with_us: bool = False  # the tool, even if we are killed; only where no other thread runs


@dataclass
class End:
    """How a run ended. `ended_by` is timeout, cancel, endless or nothing, where the tool ended by itself."""
    status: int
    ended_by: str
    peak_memory: int  # bytes


# --- Memory --------------------------------------------------------------------------------------------------------------

def _peak_in(status_file: str) -> int:
    try:
        with open(status_file, encoding="ascii", errors="replace") as file:
            return next((int(line.split()[1]) * 1024 for line in file if line.startswith("VmHWM:")), 0)
    except (OSError, ValueError):
        return 0


class PeakMemory:
    """The most memory that a process took. What the system reports at the end counts the copy of ourselves that became the process,
    too; so up to our own size it is what was seen during the run that counts."""

    def __init__(self, pid: int):
        self._status_file = f"/proc/{pid}/status"
        self._own = _peak_in("/proc/self/status")
        self._seen = 0

    def look(self) -> None:
        self._seen = max(self._seen, _peak_in(self._status_file))

    def at_end(self, reported: int) -> int:
        return reported if reported > self._own or self._seen == 0 else self._seen


def _bytes_of(maxrss: int) -> int:
    return maxrss if sys.platform == "darwin" else maxrss * 1024


# --- The process ---------------------------------------------------------------------------------------------------------

def _prepare_to_die_with_parent() -> Optional[Callable[[], None]]:
    """Called in the child: has the system kill it when its parent dies. None where the system cannot."""
    if not sys.platform.startswith("linux"):
        return None
    control = ctypes.CDLL(None).prctl
    parent = os.getpid()
    set_death_signal = 1

    def prepare() -> None:
        control(set_death_signal, signal.SIGKILL)
        if os.getppid() != parent:  # died before
            os.kill(os.getpid(), signal.SIGKILL)
    return prepare


def _read_into(events: "queue.SimpleQueue[tuple[str, bytes]]", kind: str, descriptor: int) -> None:
    """Empty bytes are the end."""
    while True:
        piece = os.read(descriptor, 1 << 16)
        events.put((kind, piece))
        if not piece:
            return


def _write_all(file: IO[bytes], piece: bytes) -> None:
    """Files without a buffer may take less at a time."""
    rest = memoryview(piece)
    while rest:
        rest = rest[file.write(rest):]


class _Lines:
    """Puts pieces together to lines."""

    def __init__(self, take: Callable[[bytes], object]):
        self._take = take
        self._open = b""

    def add(self, piece: bytes) -> None:
        *lines, self._open = (self._open + piece).split(b"\n")
        for line in lines:
            self._take(line)

    def end(self) -> None:
        if self._open:
            self._take(self._open)
        self._open = b""


def _asked_for_by_others(environment: dict[str, str]) -> tuple[int, ...]:
    """The open file that whoever has started us wants to have the progress in."""
    number = environment.get(PROGRESS, "").removeprefix("fd:")
    if not number.isdecimal() or os.name != "posix":
        return ()
    try:
        os.fstat(int(number))
    except (OSError, OverflowError):
        return ()
    return (int(number),)


class _Run:
    def __init__(self, command: Sequence[str], folder: Path, environment: dict[str, str], console: Console, watch: Watch):
        self._console = console
        self._watch = watch
        self._events: queue.SimpleQueue[tuple[str, bytes]] = queue.SimpleQueue()
        self._ended_by = ""
        self._kill_at: Optional[float] = None
        self._readers: list[tuple[int, threading.Thread]] = []
        self._lines: dict[str, _Lines] = {}  # of what is still open
        self._start(command, folder, environment)
        self._peak = PeakMemory(self._process.pid)
        began = time.monotonic()
        self._deadline = began + watch.timeout if watch.timeout is not None else None

    def _start(self, command: Sequence[str], folder: Path, environment: dict[str, str]) -> None:
        wants_progress = self._watch.on_progress is not None and os.name == "posix"
        progress = os.pipe() if wants_progress else None
        passed = progress[1:] if progress is not None else _asked_for_by_others(environment)
        if progress is not None:
            environment = {**environment, PROGRESS: f"fd:{progress[1]}"}
        try:
            self._process = subprocess.Popen(
                command, cwd=folder, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                pass_fds=passed,
                preexec_fn=_prepare_to_die_with_parent() if self._watch.dies_with_us else None)
        except OSError as error:
            if progress is not None:
                os.close(progress[0])
            raise CannotStart(str(error)) from error
        finally:
            if progress is not None:
                os.close(progress[1])
        assert self._process.stdout is not None
        self._read("console", self._process.stdout.fileno(), self._take_line)
        if progress is not None:
            self._read("progress", progress[0], self._watch.on_progress)

    def _read(self, kind: str, descriptor: int, take: Optional[Callable[[bytes], object]]) -> None:
        assert take is not None
        self._lines[kind] = _Lines(take)
        thread = threading.Thread(target=_read_into, args=(self._events, kind, descriptor), daemon=True)
        thread.start()
        self._readers.append((descriptor, thread))

    def _take_line(self, raw: bytes) -> None:
        line = self._console.take(raw)
        if self._watch.on_line is not None:
            self._watch.on_line(line)

    def _look(self) -> None:
        """Ends the tool where it has to end."""
        self._peak.look()
        now = time.monotonic()
        if self._kill_at is not None:
            if now > self._kill_at:
                self._process.kill()
            return
        if self._console.endless:
            self._ended_by = "endless"
        elif self._watch.cancel is not None and self._watch.cancel.is_set():
            self._ended_by = "cancel"
        elif self._deadline is not None and now > self._deadline:
            self._ended_by = "timeout"
        if self._ended_by:
            self._process.terminate()
            self._kill_at = now + TIME_TO_END

    def _take(self, kind: str, piece: bytes) -> None:
        if kind == "console" and self._watch.log is not None:
            _write_all(self._watch.log, piece)
        if piece:
            self._lines[kind].add(piece)
        else:
            self._lines.pop(kind).end()

    def follow(self) -> None:
        """Until all that is read of the tool has ended."""
        next_look = 0.0
        while self._lines:
            try:
                self._take(*self._events.get(timeout=LOOK_EVERY))
            except queue.Empty:
                pass
            if time.monotonic() >= next_look or self._console.endless:
                self._look()
                next_look = time.monotonic() + LOOK_EVERY

    def wait(self) -> End:
        try:
            _, status, usage = os.wait4(self._process.pid, 0)
            self._process.returncode = os.waitstatus_to_exitcode(status)
            peak = self._peak.at_end(_bytes_of(usage.ru_maxrss))
        except (AttributeError, ChildProcessError):  # no such call in this system, or somebody else has waited
            self._process.wait()
            peak = self._peak.at_end(0)
        return End(self._process.returncode, self._ended_by, peak)

    def close(self) -> None:
        """Leaves no process and no reader, whatever has happened."""
        if self._process.returncode is None:
            self._process.kill()
            self._process.wait()
        for descriptor, thread in self._readers:
            thread.join()
        assert self._process.stdout is not None
        self._process.stdout.close()
        for descriptor, _ in self._readers[1:]:
            os.close(descriptor)


def run_tool(command: Sequence[str], folder: Path, environment: dict[str, str], console: Console, watch: Watch) -> End:
    """Runs the tool in a folder, without input. Everything that it says goes to `console`."""
    run = _Run(command, folder, environment, console, watch)
    try:
        run.follow()
        return run.wait()
    finally:
        run.close()
