#!/usr/bin/env python3
"""Runs one of our other programs as a step, so that its record and its message are kept as those of all steps are."""
from __future__ import annotations

import argparse
import subprocess
import sys
from pathlib import Path

from step import add_record, run_step  # finds the package

from gridforge.messages import Failure  # isort: skip


def run_program(arguments: argparse.Namespace) -> list[Path]:
    """The last line that a program writes before it fails is its message."""
    done = subprocess.run(arguments.command, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, errors="replace", check=False)
    lines = done.stderr.splitlines()
    if done.returncode != 0:
        message = lines.pop() if lines else f"{arguments.command[0]} ended with status {done.returncode}"
        sys.stderr.writelines(line + "\n" for line in lines)
        raise Failure(message)
    sys.stderr.write(done.stderr)
    return [Path(arguments.out)]


def main() -> int:
    parser = argparse.ArgumentParser(prog="program", description=__doc__.splitlines()[0])
    parser.add_argument("command", nargs="+", help="after --, the program and its arguments")
    parser.add_argument("--out", required=True, metavar="FILE", help="what the program makes")
    parser.add_argument("--inputs", nargs="+", required=True, metavar="FILE", help="what it reads")
    add_record(parser)
    arguments = parser.parse_args()
    return run_step("program", arguments.inputs, arguments.json, lambda: run_program(arguments), sums=False)


if __name__ == "__main__":
    sys.exit(main())
