"""The examples of a page: what it runs, what it gives to a run and what it shows of the results.

Blocks of code are told apart by the word of their fence, and by a comment on the line before them, which no reader sees:

```sh                     is run
```python                 is run by Python
```console                is run, line by line after "$ ", and the lines between are what the commands write
```usage                  the form of a command line, with <names>
<!-- input NAME -->       the block is this file
<!-- output NAME -->      this file holds the block
<!-- numbers COMMAND -->  the numbers of the table or paragraph are those that the command writes
<!-- not run: REASON -->  the block is there to be looked at

The fence word `grid` stands for the cells of a small grid. A line "..." stands for any lines. Blocks of one page are run from the
top in one folder.
"""
import re
from dataclasses import dataclass, field

FENCE = re.compile(r"^```(.*)$")
MARK = re.compile(r"^<!-- (input|output|numbers|not run:) ?(.*?) -->$")
NUMBER = re.compile(r"(?<![\w.])-?\d+(?:\.\d+)?(?![\w])")
GAP = "..."


@dataclass
class Block:
    page: str
    line: int  # of its first line, from 1
    kind: str  # run, console, input, output, numbers, usage, shown
    word: str  # of the fence
    name: str = ""  # file, command or reason
    lines: list = field(default_factory=list)

    def place(self):
        return f"{self.page}:{self.line}"


class PageError(Exception):
    """A page whose blocks cannot be understood."""


def kind_of(word, mark, place):
    """The kind and the name of a fenced block."""
    if mark:
        kind = "shown" if mark[0] == "not run:" else mark[0]
        if not mark[1]:
            raise PageError(f"{place}: the comment before the block says no more")
        return kind, mark[1]
    if word in ("sh", "python", "console", "usage"):
        return {"sh": "run", "python": "run"}.get(word, word), ""
    raise PageError(f"{place}: a block that is not run, and does not say why")


def fenced(page, lines, start, mark):
    """The block whose fence is line `start`, from 0, and the number of the line after it."""
    word = FENCE.match(lines[start]).group(1).strip()
    end = start + 1
    while end < len(lines) and lines[end] != "```":
        end += 1
    if end == len(lines):
        raise PageError(f"{page}:{start + 1}: a fence without end")
    kind, name = kind_of(word, mark, f"{page}:{start + 1}")
    if kind == "usage" and not all("<" in line for line in lines[start + 1:end]):
        raise PageError(f"{page}:{start + 1}: a form without <names> is a command, which is run")
    return Block(page, start + 2, kind, word, name, lines[start + 1:end]), end + 1


def passage(page, lines, start, mark):
    """The table or paragraph that begins at line `start`."""
    end = start
    while end < len(lines) and lines[end].strip():
        end += 1
    return Block(page, start + 1, "numbers", "", mark[1], lines[start:end]), end


def blocks_of(page, text):
    """All blocks of a page in their order."""
    lines = text.split("\n")
    blocks = []
    mark = None
    at = 0
    while at < len(lines):
        line = lines[at]
        found = MARK.match(line)
        if found:
            mark = found.groups()
            at += 1
        elif FENCE.match(line):
            block, at = fenced(page, lines, at, mark)
            blocks.append(block)
            mark = None
        elif mark and line.strip():
            if mark[0] != "numbers":
                raise PageError(f"{page}:{at + 1}: no block follows the comment")
            block, at = passage(page, lines, at, mark)
            blocks.append(block)
            mark = None
        else:
            at += 1
    return blocks


def commands_of(block):
    """Of a console: each command with the lines that it writes."""
    commands = []
    for line in block.lines:
        if line.startswith("$ "):
            commands.append((line[2:], []))
        elif commands:
            commands[-1][1].append(line)
        else:
            raise PageError(f"{block.place()}: a console begins with a command")
    return commands


def numbers_in(lines):
    """The numbers of a text or table, as they are written; not those in code, nor in the heading of a table."""
    if len(lines) > 1 and re.match(r"^\|[-:| ]+\|$", lines[1]):
        lines = lines[2:]
    return [number for line in lines for number in NUMBER.findall(re.sub(r"`[^`]*`", " ", line))]
