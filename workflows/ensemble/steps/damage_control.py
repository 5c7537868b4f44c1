#!/usr/bin/env python3
"""Writes the control file of a damages run: that of the study, with a line for the level grid of each probability."""
from __future__ import annotations

import argparse
import re
import sys
from pathlib import Path

from step import add_record, run_step  # finds the package

from gridforge.messages import Failure, write_text  # isort: skip

HAS_RESULT = re.compile(r"^\s*read result", re.IGNORECASE | re.MULTILINE)
RESULTS_WITHOUT_LIMIT = 25


def make_control(arguments: argparse.Namespace) -> list[Path]:
    text = Path(arguments.control).read_bytes().decode("latin-1")
    if HAS_RESULT.search(text):
        raise Failure(f"{arguments.control} names grids by Read Result; the workflow adds those lines")
    lines = [line.rstrip("\r") for line in text.rstrip("\r\n").split("\n")]
    if len(arguments.levels) > RESULTS_WITHOUT_LIMIT:
        lines.append(f"Maximum Results == {len(arguments.levels)}")
    lines += [f"Read Result % {probability} == {level}" for probability, level in zip(arguments.probabilities, arguments.levels)]
    output = Path(arguments.out)
    write_text(output, True, lambda file: file.write("".join(line + "\n" for line in lines)))
    return [output]


def main() -> int:
    parser = argparse.ArgumentParser(prog="damage_control", description=__doc__.splitlines()[0])
    parser.add_argument("control", help="the control file of the study, without grids")
    parser.add_argument("--out", required=True, metavar="FILE")
    parser.add_argument("--probabilities", nargs="+", required=True, metavar="PERCENT")
    parser.add_argument("--levels", nargs="+", required=True, metavar="GRID")
    add_record(parser)
    arguments = parser.parse_args()
    return run_step("damage_control", [arguments.control], arguments.json, lambda: make_control(arguments))


if __name__ == "__main__":
    sys.exit(main())
