"""What the steps that are scripts have in common: where the package for Python is, and a record like that of gridforge-run."""
from __future__ import annotations

import argparse
import os
import socket
import sys
import time
from collections.abc import Callable, Sequence
from pathlib import Path

# The package in the tree, and below the prefix where the workflow is installed.
HERE = Path(__file__).resolve().parent
for place in (HERE / "../../../python", HERE / "../../../../../lib/python3/dist-packages"):
    if (place / "gridforge" / "__init__.py").is_file():
        sys.path.insert(0, os.path.normpath(place))
        break

from gridforge import __version__  # noqa: E402
from gridforge.messages import FAILED, Failure, describe  # noqa: E402
from gridforge.record import Record, file_record, threads_of, time_text  # noqa: E402


def add_record(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("--json", type=Path, metavar="FILE", help="write the record of the step")


def _record(name: str, inputs: Sequence[str], sums: bool) -> Record:
    record = Record(version=__version__, build="", tool=str(HERE / f"{name}.py"), arguments=sys.argv[1:], command=sys.argv[1:],
                    operation=name, folder=os.getcwd(), staged=True, host=socket.gethostname(), threads=threads_of(dict(os.environ)))
    record.inputs = [file_record(file, Path(file), sums) for file in inputs]
    return record


def run_step(name: str, inputs: Sequence[str], place: Path | None, work: Callable[[], Sequence[Path]], sums: bool = True) -> int:
    """Does the work, which returns the files that it made, and keeps the record. Returns the exit status.

    Without `sums` the record has only the sizes of files: a sum reads the whole file, and a step may need little of it."""
    started = time.time()
    record = _record(name, inputs, sums)
    try:
        made = work()
        record.outputs = [file_record(str(file), file, sums) for file in made]
        record.outcome, record.status = "finished", 0
    except (Failure, OSError) as error:
        record.error = describe(error) if isinstance(error, OSError) else str(error)
        record.outcome, record.status = "failed", FAILED
        print(f"{name}: {record.error}", file=sys.stderr)
    ended = time.time()
    record.started, record.ended, record.seconds = time_text(started), time_text(ended), round(ended - started, 3)
    if place is not None:
        record.write(place)
    return record.status
