"""Runs the examples of a page and compares what they leave with what the page shows."""
import os
import struct
import subprocess

from pages import GAP, commands_of, numbers_in

CELL_SIZE = 10
NULL = -9999.0

# The tool as an example sees it: a run that does not come to its end is a command that fails.
WRAPPER = """#!/usr/bin/env bash
console=$(mktemp)
trap 'rm -f "$console"' EXIT
"$GRIDFORGE_TOOL" "$@" > "$console"
cat "$console"
[[ $(tail --lines=1 "$console") == Finished. ]]
"""


class ExampleError(Exception):
    """A command of a page that failed."""


def shell(command, folder, environment):
    """What a command of bash writes to standard output."""
    done = subprocess.run(["bash", "-euo", "pipefail", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=300, check=False)
    if done.returncode != 0:
        raise ExampleError(f"{command}\n{done.stdout[-2000:]}{done.stderr[-2000:]}")
    return done.stdout


# --- Files -----------------------------------------------------------------------------------------------------------

def rows_of(lines):
    return [line.split() for line in lines if line.strip()]


def write_grid(path, lines):
    rows = rows_of(lines)
    heading = {"ncols": len(rows[0]), "nrows": len(rows), "xllcorner": 0, "yllcorner": 0, "cellsize": CELL_SIZE,
               "NODATA_value": NULL}
    cells = [[NULL if cell == "null" else float(cell) for cell in row] for row in rows]
    texts = [f"{name} {value}\n" for name, value in heading.items()]
    if path.endswith(".flt"):
        with open(path[:-4] + ".hdr", "w", encoding="ascii") as file:
            file.write("".join(texts + ["byteorder LSBFIRST\n"]))
        with open(path, "wb") as file:
            file.write(b"".join(struct.pack(f"<{len(row)}f", *row) for row in cells))
    else:
        with open(path, "w", encoding="ascii") as file:
            file.write("".join(texts) + "".join(" ".join(map(repr, row)) + "\n" for row in cells))


def write_input(block, folder):
    path = os.path.join(folder, block.name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if block.word == "grid":
        write_grid(path, block.lines)
    else:
        with open(path, "w", encoding="utf-8") as file:
            file.write("\n".join(block.lines) + "\n")


def read_header(path):
    with open(path, encoding="ascii") as file:
        words = [line.split() for line in file]
    return {row[0].lower(): row[1] for row in words if len(row) == 2 and row[0][0].isalpha()}


def grid_rows(path):
    """The cells of a grid by rows from the north, as single precision; a null cell is None."""
    binary = path.endswith(".flt")
    header = read_header(path[:-4] + ".hdr" if binary else path)
    columns, count = int(header["ncols"]), int(header["nrows"])
    if binary:
        with open(path, "rb") as file:
            cells = list(struct.unpack(f"<{columns * count}f", file.read()))
    else:
        with open(path, encoding="ascii") as file:
            cells = [single(word) for line in file if not line[0].isalpha() for word in line.split()]
    null = single(header["nodata_value"])
    cells = [None if cell == null else cell for cell in cells]
    return [cells[columns * row:columns * (row + 1)] for row in range(count)]


def single(text):
    return struct.unpack("<f", struct.pack("<f", float(text)))[0]


# --- What is compared ------------------------------------------------------------------------------------------------

def same_lines(shown, got):
    """Are the lines those shown, where a line "..." stands for any?"""
    parts = [[]]
    for line in shown:
        if line.strip() == GAP:
            parts.append([])
        else:
            parts[-1].append(line.rstrip())
    got = [line.rstrip() for line in got]
    if len(parts) == 1:
        return parts[0] == got
    first, last = parts[0], parts[-1]
    if got[:len(first)] != first or len(got) < len(first) + len(last) or (last and got[-len(last):] != last):
        return False
    at = len(first)
    for part in parts[1:-1]:
        while got[at:at + len(part)] != part:
            at += 1
            if at + len(part) > len(got) - len(last):
                return False
        at += len(part)
    return at + len(last) <= len(got)


def same_cells(shown, got):
    """Are the cells those shown? "null" stands for a null cell."""
    def same(word, cell):
        return cell is None if word == "null" else cell is not None and single(word) == cell
    rows = rows_of(shown)
    return len(rows) == len(got) and all(
        len(words) == len(cells) and all(map(same, words, cells)) for words, cells in zip(rows, got))


def agrees(block, got):
    """Does what a block shows agree with what its example left?"""
    if block.kind == "console":
        return all(same_lines(lines, written) for (_, lines), written in zip(commands_of(block), got))
    if block.kind == "numbers":
        return numbers_in(block.lines) == numbers_in(got)
    if block.word == "grid":
        return same_cells(block.lines, got)
    return same_lines(block.lines, got)


# --- A page ----------------------------------------------------------------------------------------------------------

def output_of(block, folder):
    path = os.path.join(folder, block.name)
    if block.word == "grid":
        return grid_rows(path)
    with open(path, encoding="utf-8") as file:
        return file.read().split("\n")[:-1]


def run_page(blocks, folder, environment):
    """Runs the blocks in the folder; what each that shows a result got, by its place in the list."""
    results = {}
    for number, block in enumerate(blocks):
        try:
            if block.kind == "run":
                text = "\n".join(block.lines)
                shell(f"python3 - << 'END_OF_PROGRAM'\n{text}\nEND_OF_PROGRAM" if block.word == "python" else text, folder,
                      environment)
            elif block.kind == "console":
                results[number] = [shell(command, folder, environment).split("\n")[:-1] for command, _ in commands_of(block)]
            elif block.kind == "numbers":
                results[number] = shell(block.name, folder, environment).split("\n")
            elif block.kind == "input":
                write_input(block, folder)
            elif block.kind == "output":
                results[number] = output_of(block, folder)
        except (ExampleError, OSError, ValueError, KeyError) as error:
            raise ExampleError(f"{block.place()}: {error}") from error
    return results
