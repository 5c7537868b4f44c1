"""Runs the tool and reports what happened."""
from __future__ import annotations

import os
import platform
import secrets
import time
from dataclasses import dataclass, field, replace
from pathlib import Path
from typing import IO, Callable, Iterable, Mapping, Optional, Sequence, Union

from .arguments import Argument, Name, WrongUse, hand_over, input_patterns, operation_of, scan, text_of
from .console import Console
from .description import Description, Operation, load_description
from .families import PROJECTION, Look, family_of, split_name
from .moving import Exists, move_file
from .process import PROGRESS, SCRATCH, Cancel, CannotStart, End, Watch, run_tool
from .progress import Progress, progress_of
from .record import Record, file_record, threads_of, time_text
from .staging import InputChanged, Stage, set_stage, simple_name
from .tool import find_description, find_tool

FINISHED, FAILED, WRONG_USE, NOTHING, TIMEOUT = 0, 1, 2, 3, 124
NO_OPERATION = "No operation is asked for."


class RunError(Exception):
    """A run that did not finish; its message is that of the tool. `record` is what is known of the run."""

    def __init__(self, message: str, record: Record):
        super().__init__(message)
        self.record = record

    @property
    def status(self) -> int:
        """What gridforge-run ends with."""
        return self.record.status


@dataclass
class Settings:
    """How a run goes; the members are the keywords of `run`."""
    folder: Union[str, "os.PathLike[str]", None] = None
    stage: bool = False
    overwrite: bool = False
    keep: bool = False
    named_inputs: Sequence[Name] = ()
    timeout: Optional[float] = None
    log: Optional[IO[bytes]] = None
    sums: bool = True
    environment: Mapping[str, str] = field(default_factory=dict)
    on_line: Optional[Callable[[str], None]] = None
    on_progress: Optional[Callable[[Progress], None]] = None
    cancel: Optional[Cancel] = None
    dies_with_us: bool = False


@dataclass
class Plan:
    """A run before it is started. Names in it are seen from `folder`, which has no links in it."""
    tool: Path
    description: Description
    folder: Path
    given: list[str]
    scanned: list[Argument]  # as they are handed over
    operation: Optional[Operation]
    named: list[str]  # inputs that only control files name
    settings: Settings

    @property
    def command(self) -> list[str]:
        return [argument.text for argument in self.scanned]


def plan(arguments: Iterable[Name], settings: Settings) -> Plan:
    folder = Path(os.path.realpath(settings.folder if settings.folder is not None else os.getcwd()))
    if not folder.is_dir():
        raise WrongUse(f"No such folder: {folder}")
    tool = find_tool(_environment(settings))
    description = load_description(find_description(tool))
    given = [text_of(argument) for argument in arguments]
    scanned = scan(given, description, folder)
    operation = operation_of(scanned, description)
    handed = hand_over(scanned, folder) if given else []
    named = [text_of(name) for name in settings.named_inputs]
    if settings.stage:
        handed = [argument if argument.role == "flag" else replace(argument, text=simple_name(argument.text, folder))
                  for argument in handed]
        named = [simple_name(name, folder) for name in named]
    for name in named:
        if not Look(folder).matching(name):
            raise WrongUse(f"No such input: {name}")
    return Plan(tool, description, folder, given, handed, operation, named, settings)


# --- Files ---------------------------------------------------------------------------------------------------------------

def _input_files(console: Console, look: Look) -> dict[str, Path]:
    """What was opened to be read, by its name on the console."""
    found: dict[str, Path] = {}
    for name in console.inputs:
        file = look.in_any_case(name)
        found[name.replace("\\", "/")] = look.folder / (file if file is not None else name)
    return found


def _projection_for(name: str, look: Look, inputs: Iterable[str]) -> Optional[Path]:
    """The .prj for an output: of the input of its name or else of the last one, among inputs of other folders that have one."""
    found: dict[str, Path] = {}
    for other in inputs:
        stem, extension = family_of(other)
        if extension == PROJECTION or split_name(other)[0] in ("", "./"):
            continue
        file = look.in_any_case(stem + PROJECTION)
        if file is not None:
            found[split_name(stem)[1]] = look.folder / file
    own = found.get(split_name(family_of(name)[0])[1])
    return own if own is not None or not found else list(found.values())[-1]


def _add_projections(made: dict[str, Path], look: Look, inputs: Iterable[str]) -> None:
    """Puts a .prj beside the grids and Shapefiles that lack one: the tool finds that of a grid in the current folder only."""
    inputs = list(inputs)
    for name, path in list(made.items()):
        stem, extension = family_of(name)
        target = path.with_suffix(PROJECTION)
        if extension not in (".asc", ".flt", ".shp") or target.exists() or look.in_any_case(stem + PROJECTION) is not None:
            continue
        source = _projection_for(name, look, inputs)
        if source is not None:
            _copy_new(source, target)
            made[stem + PROJECTION] = target


def _copy_new(source: Path, target: Path) -> None:
    """A whole copy at once, unless somebody else has put a file there in the meantime."""
    near = target.with_name(f".{target.name[:100]}.{secrets.token_hex(6)}.part")
    try:
        near.write_bytes(source.read_bytes())
        move_file(near, target, overwrite=False)
    except Exists:
        pass
    finally:
        near.unlink(missing_ok=True)


def _written(console: Console, folder: Path) -> dict[str, Path]:
    """What was opened to be written and is there."""
    names = (name.replace("\\", "/") for name in console.outputs)
    return {name: folder / name for name in names if os.path.lexists(folder / name)}


# --- The run -------------------------------------------------------------------------------------------------------------

class _Bad(Exception):
    """The run is no good: outcome, status and message."""

    def __init__(self, outcome: str, status: int, message: str):
        super().__init__(message)
        self.outcome = outcome
        self.status = status


def _stop_if_cancelled(settings: Settings) -> None:
    if settings.cancel is not None and settings.cancel.is_set():
        raise _Bad("cancelled", FAILED, "The run was ended before it had finished.")


def _asks_for_nothing(p: Plan) -> bool:
    """No operation, and no flag that the tool refuses."""
    return p.operation is None and not any(argument.role == "flag" and argument.flag is None and argument.text != "-b"
                                           for argument in p.scanned)


def _judge(p: Plan, console: Console, end: End) -> None:
    """By the rule of a good run: its last line is Finished."""
    _stop_if_cancelled(p.settings)
    message = console.message()
    if end.ended_by == "timeout":
        raise _Bad("timeout", TIMEOUT, f"The run did not end within {p.settings.timeout:g} seconds.")
    if _asks_for_nothing(p):
        raise _Bad("nothing", NOTHING, NO_OPERATION)
    if end.ended_by != "endless" and end.status < 0:
        raise _Bad("failed", FAILED, f"The tool was ended by signal {-end.status}.")
    if not console.finished or end.status != 0:
        raise _Bad("failed", FAILED, message or f"The tool ended with status {end.status} and said nothing.")


def _environment(settings: Settings) -> dict[str, str]:
    """Files in it stay those that the caller's folder gives them, wherever the tool runs."""
    variables = {**os.environ, **settings.environment}
    for name in (PROGRESS, SCRATCH):
        value = variables.get(name, "")
        is_open = name == PROGRESS and (value.startswith("fd:") or value.isdecimal())
        if value and not is_open:
            variables[name] = os.path.join(os.getcwd(), value)
    return variables


def _begin(p: Plan) -> Record:
    return Record(version=p.description.version, build="", tool=str(p.tool), arguments=p.given, command=p.command,
                  operation=p.operation.name if p.operation is not None else None, folder=str(p.folder),
                  staged=p.settings.stage, host=platform.node(), threads=threads_of(_environment(p.settings)))


def _known_inputs(p: Plan) -> set[str]:
    """All files that the run will read; none if only its control file knows them."""
    if not p.named and p.operation is not None and any(flag.kind == "controlFile" for flag in p.operation.flags):
        return set()
    look = Look(p.folder)
    names = [name for pattern in (*input_patterns(p.scanned), *p.named) for name in look.found(pattern)]
    return {os.path.normpath(file) for name in names for file in (name, *look.companions(name))}


def _progress_teller(p: Plan, tell: Callable[[Progress], None]) -> Callable[[bytes], None]:
    totals = progress_of(p.folder / name for name in _known_inputs(p))
    return lambda line: tell(totals.after(line))


def _run_tool(p: Plan, folder: Path, console: Console, record: Record) -> End:
    settings = p.settings
    tell = _progress_teller(p, settings.on_progress) if settings.on_progress is not None else None
    watch = Watch(settings.timeout, settings.cancel, settings.log, settings.on_line, tell, settings.dies_with_us)
    started = time.time()
    clock = time.monotonic()
    try:
        end = run_tool([str(p.tool), *p.command], folder, _environment(settings), console, watch)
    except CannotStart as error:
        raise _Bad("failed", FAILED, f"The tool could not be run: {error}") from error
    finally:
        record.started, record.ended = time_text(started), time_text(time.time())
        record.seconds = round(time.monotonic() - clock, 3)
    record.peak_memory = end.peak_memory
    return end


def _note_inputs(p: Plan, console: Console, record: Record, written: Iterable[Path]) -> None:
    replaced = {os.path.realpath(path) for path in written}
    look = Look(p.folder)
    for name, path in _input_files(console, look).items():
        _stop_if_cancelled(p.settings)
        sums = p.settings.sums and os.path.realpath(path) not in replaced
        record.inputs.append(file_record(name, path, sums))


def _note_outputs(p: Plan, record: Record, made: Mapping[str, Path]) -> None:
    for name, path in made.items():
        _stop_if_cancelled(p.settings)
        record.outputs.append(file_record(name, path, p.settings.sums))


def _run_in_place(p: Plan, console: Console, record: Record) -> None:
    made: dict[str, Path] = {}
    try:
        end = _run_tool(p, p.folder, console, record)
        made = _written(console, p.folder)
        _judge(p, console, end)
        _add_projections(made, Look(p.folder), _input_files(console, Look(p.folder)))
    finally:
        record.outputs = [file_record(name, path, False) for name, path in made.items()]
        _note_inputs(p, console, record, made.values())
    record.outputs = []
    _note_outputs(p, record, made)


def _publish(p: Plan, stage: Stage, names: Iterable[str]) -> None:
    try:
        stage.publish(names, p.settings.overwrite)
    except Exists as there:
        name = os.path.relpath(there.path, p.folder)
        raise _Bad("failed", FAILED, f"A file is there already, so no output was moved to its place: {name}") from there
    except OSError as error:
        raise _Bad("failed", FAILED, f"The outputs could not be moved to their places: {error}") from error


def _run_in_stage(p: Plan, stage: Stage, console: Console, record: Record) -> None:
    end = _run_tool(p, stage.folder, console, record)
    _note_inputs(p, console, record, ())
    _judge(p, console, end)
    try:
        stage.check_inputs()
    except InputChanged as changed:
        raise _Bad("failed", FAILED, str(changed)) from changed
    made = _in_order_made(stage.made(), console)
    _add_projections(made, Look(p.folder), _input_files(console, Look(p.folder)))
    elsewhere = {name: path for name, path in _written(console, stage.folder).items() if os.path.isabs(name)}
    _note_outputs(p, record, {**made, **elsewhere})
    try:
        _publish(p, stage, made)
    except _Bad:
        record.outputs = []
        raise


def _in_order_made(made: Mapping[str, Path], console: Console) -> dict[str, Path]:
    """The names in which outputs were opened come first."""
    opened = [os.path.normpath(name.replace("\\", "/")) for name in console.outputs]
    rank = {name: at for at, name in reversed(list(enumerate(opened)))}
    return {name: made[name] for name in sorted(made, key=lambda name: rank.get(name, len(rank)))}


def _try(p: Plan, console: Console, record: Record) -> None:
    if not p.settings.stage:
        _run_in_place(p, console, record)
        return
    try:
        stage = set_stage(p.folder, p.scanned, p.operation, p.named)
    except OSError as error:
        raise _Bad("failed", FAILED, f"The scratch folder could not be set up: {error}") from error
    keep = False
    try:
        _run_in_stage(p, stage, console, record)
    except _Bad:
        keep = p.settings.keep
        raise
    finally:
        if keep:
            record.scratch = str(stage.scratch)
        else:
            stage.remove()


def execute(p: Plan) -> Record:
    """The record of a run that finished; RunError otherwise."""
    record = _begin(p)
    console = Console()
    try:
        _try(p, console, record)
        record.outcome, record.status = "finished", FINISHED
    except (_Bad, OSError) as error:
        bad = error if isinstance(error, _Bad) else _Bad("failed", FAILED, f"A file could not be read or written: {error}")
        record.outcome, record.status, record.error = bad.outcome, bad.status, str(bad)
        raise RunError(str(bad), record) from None
    finally:
        record.build = console.build
        record.warnings = console.warnings()
    return record


def run(arguments: Iterable[Name], *, folder: Union[str, "os.PathLike[str]", None] = None, stage: bool = False,
        overwrite: bool = False, keep: bool = False, named_inputs: Sequence[Name] = (), timeout: Optional[float] = None,
        log: Optional[IO[bytes]] = None, sums: bool = True, environment: Optional[Mapping[str, str]] = None,
        on_line: Optional[Callable[[str], None]] = None, on_progress: Optional[Callable[[Progress], None]] = None,
        cancel: Optional[Cancel] = None) -> Record:
    """Runs the tool with these arguments and returns the record of the run; raises RunError with the tool's message if the run does
    not finish, and WrongUse if it cannot be started.

    folder       where it runs; the current folder
    stage        in a scratch folder, from which finished outputs are moved to their places
    overwrite    with `stage`: over files that are there
    keep         with `stage`: keep the scratch folder if the run fails
    named_inputs with `stage`: files that only control files name
    timeout      seconds after which the run is ended
    log          a binary file that gets the console
    sums         make SHA-256 sums of all inputs and outputs, which reads them once more
    environment  variables besides those that there are
    on_line      called with each line of the console
    on_progress  called once a second with the progress
    cancel       an event; the run is ended when it is set
    """
    return execute(plan(arguments, Settings(folder, stage, overwrite, keep, named_inputs, timeout, log, sums, environment or {},
                                            on_line, on_progress, cancel)))
