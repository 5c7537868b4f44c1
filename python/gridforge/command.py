"""The command gridforge-run: runs the tool, and reports to a script what happened."""
from __future__ import annotations

import os
import shlex
import signal
import sys
import threading
from contextlib import ExitStack
from dataclasses import dataclass, field
from pathlib import Path
from types import FrameType
from typing import IO, Optional, Sequence

from .arguments import ODD_FLAGS, Argument, WrongUse
from .description import DescriptionError
from .display import ProgressDisplay
from .families import Look
from .messages import counted
from .record import Record
from .running import FAILED, FINISHED, NOTHING, WRONG_USE, Plan, RunError, Settings, execute, plan
from .tool import ToolNotFound

USAGE = """usage: gridforge-run [OPTION ...] [--] ARGUMENT ...

Runs gridforge with these arguments, in batch and without input, and prints which files it made. Options may stand anywhere before
"--"; every argument after it is the tool's.

  --stage            run in a scratch folder, and move finished outputs to their places, all or none
  --overwrite        with --stage: over files that are there
  --keep             with --stage: keep the scratch folder if the run fails
  --input FILE...    with --stage: files that only control files name; up to the next argument that begins with "-"
  --timeout SECONDS  end the run after that time
  --json FILE        write the record of the run
  --log FILE         keep the console; "-" is standard output
  --quiet            print nothing except the message of a run that failed
  --progress         show on a terminal how far the run has come
  --dry-run          show the command and the inputs, and run nothing
  --version          show the version
  --help             show this

Exit status: 0 the run finished, 1 it ended in a message, 2 wrong use, 3 it did nothing, 124 it took longer than --timeout.
"""

_SWITCHES = ("--stage", "--overwrite", "--keep", "--quiet", "--progress", "--dry-run", "--version", "--help")
_WITH_VALUE = ("--timeout", "--json", "--log")


@dataclass
class Options:
    switches: set[str] = field(default_factory=set)
    values: dict[str, str] = field(default_factory=dict)
    inputs: list[str] = field(default_factory=list)
    arguments: list[str] = field(default_factory=list)

    @property
    def timeout(self) -> Optional[float]:
        text = self.values.get("--timeout")
        if text is None:
            return None
        try:
            seconds = float(text)
        except ValueError:
            seconds = -1.0
        if not 0 < seconds < float("inf"):
            raise WrongUse(f"--timeout takes a number of seconds above 0, not: {text}")
        return seconds


def _take_inputs(rest: list[str], options: Options) -> None:
    if not rest or rest[0].startswith("-"):
        raise WrongUse("--input takes one file or more.")
    while rest and not rest[0].startswith("-"):
        options.inputs.append(rest.pop(0))


def parse(arguments: Sequence[str]) -> Options:
    options = Options()
    rest = list(arguments)
    while rest:
        argument = rest.pop(0)
        name, equals, value = argument.partition("=")
        if argument == "--":
            options.arguments += rest
            break
        if not argument.startswith("--") or argument.lower().startswith(tuple("-" + flag for flag in ODD_FLAGS)):
            options.arguments.append(argument)
        elif argument in _SWITCHES:
            options.switches.add(argument)
        elif argument == "--input":
            _take_inputs(rest, options)
        elif name == "--input" and value:
            options.inputs.append(value)
        elif name in _WITH_VALUE:
            if not equals and not rest:
                raise WrongUse(f"{name} takes a value.")
            options.values[name] = value if equals else rest.pop(0)
        else:
            raise WrongUse(f"No such option: {argument}")
    _check(options)
    return options


def _check(options: Options) -> None:
    for option in ("--overwrite", "--keep"):
        if option in options.switches and "--stage" not in options.switches:
            raise WrongUse(f"{option} goes with --stage.")
    if options.inputs and "--stage" not in options.switches and "--dry-run" not in options.switches:
        raise WrongUse("--input goes with --stage.")


# --- What is printed -----------------------------------------------------------------------------------------------------

def _say(text: str, is_error: bool = False) -> None:
    """Names come out byte by byte as they are, whatever the terminal's encoding is."""
    stream = sys.stderr if is_error else sys.stdout
    if stream is None:  # whoever has started us has closed it
        return
    stream.flush()
    stream.buffer.write(os.fsencode(text + "\n"))
    stream.buffer.flush()


def _complain(text: str) -> None:
    _say(f"gridforge-run: {text}", is_error=True)


def _tell(record: Record) -> None:
    for file in record.outputs:
        _say(f"made {file.name} ({counted(file.size or 0, 'byte')})")
    if record.warnings:
        _say(counted(len(record.warnings), "warning"))


def _show_output(p: Plan, argument: Argument) -> bool:
    """An output that is named after the inputs. False where the tool wants a file of that name and finds none."""
    needed = p.operation is not None and p.operation.inputs.output_name_must_exist
    missing = needed and not os.path.lexists(p.folder / argument.text)
    _say(f"{'missing' if missing else 'output'} {argument.text}")
    return not missing


def _show_plan(p: Plan, options: Options) -> int:
    """The command and what is found of its inputs."""
    _say(shlex.join([str(p.tool), *p.command]))
    look = Look(p.folder)
    missing = False
    for name in [argument.text for argument in p.scanned if argument.is_read] + p.named:
        found = look.found(name)
        for file in found:
            path = p.folder / file
            _say(f"input {file} ({counted(path.stat().st_size, 'byte')})" if path.is_file() else f"input {file}")
        if not found:
            missing = True
            _say(f"missing {name}")
    for argument in p.scanned:
        if argument.role == "output" and not _show_output(p, argument):
            missing = True
    if p.operation is None:
        return NOTHING
    return FAILED if missing else FINISHED


# --- Signals -------------------------------------------------------------------------------------------------------------

class _Signals:
    """The first signal that ends programs ends the run; when all is cleaned up it ends us, too."""

    def __init__(self) -> None:
        self.cancel = threading.Event()
        self._came: Optional[int] = None
        for name in ("SIGINT", "SIGTERM", "SIGHUP"):
            number = getattr(signal, name, None)
            if number is not None and signal.getsignal(number) is not signal.SIG_IGN:  # nohup and the like
                signal.signal(number, self._take)

    def _take(self, number: int, frame: Optional[FrameType]) -> None:
        self._came = self._came or number
        self.cancel.set()

    def follow(self) -> None:
        if self._came is not None:
            signal.signal(self._came, signal.SIG_DFL)
            os.kill(os.getpid(), self._came)


# --- The command ---------------------------------------------------------------------------------------------------------

def _open_log(name: str, files: ExitStack) -> IO[bytes]:
    if name == "-":
        return sys.stdout.buffer
    try:
        return files.enter_context(open(name, "wb", buffering=0))  # for those who watch it
    except OSError as error:
        raise WrongUse(f"The log cannot be written: {error}") from error


def _check_record_place(name: Optional[str]) -> None:
    if name is not None and (os.path.isdir(name) or not os.access(os.path.dirname(name) or ".", os.W_OK)):
        raise WrongUse(f"The record cannot be written: {name}")


def _executed(planned: Plan) -> Record:
    try:
        return execute(planned)
    except RunError as error:
        return error.record


def _run(options: Options, cancel: threading.Event) -> tuple[Optional[Record], int]:
    settings = Settings(stage="--stage" in options.switches, overwrite="--overwrite" in options.switches,
                        keep="--keep" in options.switches, named_inputs=options.inputs, timeout=options.timeout,
                        sums="--json" in options.values, cancel=cancel, dies_with_us=True)
    planned = plan(options.arguments, settings)
    if "--dry-run" in options.switches:
        return None, _show_plan(planned, options)
    _check_record_place(options.values.get("--json"))
    with ExitStack() as files:
        if "--log" in options.values:
            settings.log = _open_log(options.values["--log"], files)
        if "--progress" in options.switches and sys.stderr.isatty():
            settings.on_progress = files.enter_context(ProgressDisplay(sys.stderr)).show
        record = _executed(planned)
    return record, record.status


def _tell_end(record: Record, options: Options) -> None:
    if record.error is not None:
        _say(record.error, is_error=True)
        if record.scratch is not None:
            _complain(f"The scratch folder is kept: {record.scratch}")
    elif "--quiet" not in options.switches:
        _tell(record)


def _send_nowhere() -> None:
    """What is still to be said, so that Python does not fail on it at its end."""
    for stream in (sys.stdout, sys.stderr):
        if stream is not None:
            os.dup2(os.open(os.devnull, os.O_WRONLY), stream.fileno())


def _finish(record: Record, options: Options) -> None:
    """A run is no worse if nobody reads what is printed about it."""
    try:
        if "--json" in options.values:
            record.write(Path(options.values["--json"]))
    finally:
        try:
            _tell_end(record, options)
        except BrokenPipeError:
            _send_nowhere()


def _main(arguments: Sequence[str], cancel: threading.Event) -> int:
    try:
        options = parse(arguments)
        if "--help" in options.switches:
            _say(USAGE.rstrip("\n"))
            return FINISHED
        if "--version" in options.switches:
            from . import __version__
            _say(f"gridforge-run {__version__}")
            return FINISHED
        record, status = _run(options, cancel)
    except (WrongUse, ToolNotFound, DescriptionError) as error:
        _complain(str(error))
        return WRONG_USE
    if record is not None:
        _finish(record, options)
    return status


def main(arguments: Optional[Sequence[str]] = None) -> int:
    signals = _Signals()
    try:
        status = _main(sys.argv[1:] if arguments is None else arguments, signals.cancel)
    except BrokenPipeError:
        _send_nowhere()
        status = FAILED
    except OSError as error:
        _complain(str(error))
        status = FAILED
    signals.follow()
    return status
