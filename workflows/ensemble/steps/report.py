#!/usr/bin/env python3
"""One HTML file with the maps and the damages of a study; the pictures are in it."""
from __future__ import annotations

import argparse
import base64
import csv
import html
import sys
from dataclasses import dataclass
from pathlib import Path

from step import add_record, run_step  # finds the package

from gridforge.messages import Failure, write_text  # isort: skip

STYLE = """body { font: 16px/1.5 sans-serif; max-width: 70em; margin: 2em auto; padding: 0 1em; color: #222; }
h2 { margin-top: 2em; border-bottom: 1px solid #ccc; }
table { border-collapse: collapse; }
th, td { padding: 0.2em 0.8em; text-align: right; border-bottom: 1px solid #ddd; }
th:first-child, td:first-child { text-align: left; }
figure { display: inline-block; margin: 0 1em 1em 0; width: 46%; vertical-align: top; }
figure img { width: 100%; border: 1px solid #ccc; }"""
FIRST_DAMAGE = 4  # columns of a building before them


@dataclass(frozen=True)
class Damage:
    heading: str
    total: float
    buildings: int


def cell(text: object, tag: str = "td") -> str:
    return f"<{tag}>{html.escape(str(text))}</{tag}>"


def rows_of(path: Path) -> list[list[str]]:
    with open(path, newline="", encoding="utf-8", errors="replace") as file:
        rows = list(csv.reader(file))
    if len(rows) < 2:
        raise Failure(f"{path} has no buildings")
    return rows


def damages_of(table: Path) -> list[Damage]:
    """The sum of each column of damages, and how many buildings have any."""
    heading, *buildings = rows_of(table)
    found = []
    for column in range(FIRST_DAMAGE, len(heading) - 1):
        values = [float(row[column]) for row in buildings]
        found.append(Damage(heading[column].strip(), sum(values), sum(value > 0 for value in values)))
    return found


def average_of(table: Path) -> tuple[float, str]:
    """The average annual damage of all buildings and what it assumes."""
    last = rows_of(table)[-1]
    return float(last[4]), last[8]


def damage_part(damages: list[str], averages: list[str]) -> list[str]:
    lines = ["<h2>Damages</h2>"]
    for table, average in zip(map(Path, damages), map(Path, averages)):
        total, assumed = average_of(average)
        lines += [f"<h3>{html.escape(table.stem)}</h3>", "<table>",
                  "<tr>" + cell("Flood", "th") + cell("Damage", "th") + cell("Buildings with damage", "th") + "</tr>"]
        lines += ["<tr>" + cell(one.heading) + cell(f"{one.total:,.0f}") + cell(one.buildings) + "</tr>" for one in damages_of(table)]
        lines += ["<tr>" + cell("Average over a year") + cell(f"{total:,.0f}") + cell("") + "</tr>", "</table>",
                  f"<p>{html.escape(assumed)}</p>"]
    return lines if damages else []


def map_part(title: str, pictures: list[str]) -> list[str]:
    lines = [f"<h2>{html.escape(title)}</h2>"]
    for picture in map(Path, pictures):
        data = base64.b64encode(picture.read_bytes()).decode()
        name = html.escape(f"{picture.parent.name.replace('_', ' - ')}, {picture.stem.split('_')[0]}")
        lines.append(f'<figure><img alt="{name}" src="data:image/png;base64,{data}"><figcaption>{name}</figcaption></figure>')
    return lines if pictures else []


def make_report(arguments: argparse.Namespace) -> list[Path]:
    title = html.escape(arguments.title)
    lines = ["<!DOCTYPE html>", '<html lang="en">', "<head>", '<meta charset="utf-8">', f"<title>{title}</title>",
             f"<style>\n{STYLE}\n</style>", "</head>", "<body>", f"<h1>{title}</h1>",
             *damage_part(arguments.damages, arguments.averages),
             *map_part("Depth on the terrain", arguments.depths),
             *map_part("Which duration is critical", arguments.durations),
             *map_part("Differences of the level", arguments.differences), "</body>", "</html>"]
    output = Path(arguments.out)
    write_text(output, True, lambda file: file.write("".join(line + "\n" for line in lines)))
    return [output]


def main() -> int:
    parser = argparse.ArgumentParser(prog="report", description=__doc__.splitlines()[0])
    parser.add_argument("out", help="the .html")
    parser.add_argument("--title", required=True)
    for what in ("depths", "durations", "differences"):
        parser.add_argument(f"--{what}", nargs="*", default=[], metavar="PNG")
    parser.add_argument("--damages", nargs="*", default=[], metavar="CSV", help="tables of damages of each scenario")
    parser.add_argument("--averages", nargs="*", default=[], metavar="CSV", help="their averages over a year")
    add_record(parser)
    arguments = parser.parse_args()
    inputs = [*arguments.depths, *arguments.durations, *arguments.differences, *arguments.damages, *arguments.averages]
    return run_step("report", inputs, arguments.json, lambda: make_report(arguments))


if __name__ == "__main__":
    sys.exit(main())
