#!/usr/bin/env python3
"""Every example of the pages is run, and what a page shows of its results is what the tool writes.

GRIDFORGE_TOOL and GRIDFORGE_MAKE_CATCHMENT name the programs, GRIDFORGE_MANUAL the manual page. Each begins in a folder with the
sample valley and the cases of examples/, as scripts/demo has them before its first run.
"""
import glob
import os
import random
import shutil
import subprocess
import tempfile
import unittest

import examples
import pages

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CHANGED_DIGITS = 50
FIRST_READ = {"docs/recipes.md": "README.md"}  # whose readers come from there, in the same folder


def page_names():
    found = glob.glob("docs/**/*.md", root_dir=ROOT, recursive=True)
    return sorted(["README.md", *found])


def blocks_of(name):
    with open(os.path.join(ROOT, name), encoding="utf-8") as file:
        return pages.blocks_of(name, file.read())


class Examples(unittest.TestCase):
    """One folder with the valley, copied for each page."""

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.mkdtemp(prefix="gridforge-pages-")
        cls.valley = os.path.join(cls.scratch, "valley")
        cls.environment = cls.wrapped()
        subprocess.run([os.environ["GRIDFORGE_MAKE_CATCHMENT"], "--out", cls.valley, "--format", "asc"], check=True,
                       stdout=subprocess.DEVNULL)
        for case in ("valley", "damages"):
            shutil.copytree(os.path.join(ROOT, "examples", case), cls.valley, dirs_exist_ok=True)
        for case in ("rainfall", "network"):
            shutil.copytree(os.path.join(ROOT, "examples", case), os.path.join(cls.valley, case))

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.scratch)

    @classmethod
    def wrapped(cls):
        programs = os.path.join(cls.scratch, "bin")
        os.makedirs(programs)
        with open(os.path.join(programs, "gridforge"), "w", encoding="ascii") as file:
            file.write(examples.WRAPPER)
        os.chmod(file.name, 0o755)
        os.symlink(os.environ["GRIDFORGE_MAKE_CATCHMENT"], os.path.join(programs, "gridforge_make_catchment"))
        if os.path.exists("/usr/bin/python3"):  # that for which Debian installs numpy, matplotlib and GDAL
            os.symlink("/usr/bin/python3", os.path.join(programs, "python3"))
        path = os.pathsep.join([programs, os.path.join(ROOT, "python", "bin"), os.environ["PATH"]])
        return {**os.environ, "PATH": path, "GRIDFORGE": os.environ["GRIDFORGE_TOOL"], "LC_ALL": "C.UTF-8",
                "PYTHONPATH": os.path.join(ROOT, "python"), "PYTHONDONTWRITEBYTECODE": "1",
                "GRIDFORGE_PAGES": os.path.join(ROOT, "docs")}

    def results_of(self, blocks, before=()):
        """What the blocks get in a folder in which those of another page have run before."""
        if all(block.kind in ("usage", "shown") for block in blocks):
            return {}
        folder = os.path.join(self.scratch, "page")
        shutil.copytree(self.valley, folder)
        try:
            examples.run_page(before, folder, self.environment)
            return examples.run_page(blocks, folder, self.environment)
        finally:
            shutil.rmtree(folder)

    def test_what_pages_show_is_what_the_tool_writes(self):
        shown = []
        for name in page_names():
            with self.subTest(name):
                blocks = blocks_of(name)
                before = blocks_of(FIRST_READ[name]) if name in FIRST_READ else ()
                for number, got in self.results_of(blocks, before).items():
                    shown.append((blocks[number], got))
                    with self.subTest(blocks[number].place()):
                        self.assertTrue(examples.agrees(blocks[number], got), f"shown:\n{blocks[number].lines}\ngot:\n{got}")
        self.changed_digits_are_noticed([(block, got) for block, got in shown if examples.agrees(block, got)])

    def test_the_examples_of_the_manual_page_run(self):
        with open(os.environ["GRIDFORGE_MANUAL"], encoding="utf-8") as file:
            commands = [line.replace("\\-", "-") for part in file.read().split("\n.EX\n")[1:]
                        for line in part.split("\n.EE\n")[0].split("\n")]
        self.assertGreater(len(commands), 2)
        self.results_of([pages.Block("manual page", 1, "run", "sh", "", commands)])

    def changed_digits_are_noticed(self, shown):
        chance = random.Random(CHANGED_DIGITS)
        places = [(block, got, line, column) for block, got in shown for line, text in enumerate(block.lines)
                  for column, sign in enumerate(text) if sign.isdigit() and is_result(block, line, column)]
        for block, got, line, column in chance.sample(places, CHANGED_DIGITS):
            kept = block.lines[line]
            digit = chance.choice([digit for digit in "0123456789" if digit != kept[column]])
            block.lines[line] = kept[:column] + digit + kept[column + 1:]
            with self.subTest(f"{block.page}:{block.line + line}", changed=block.lines[line]):
                self.assertFalse(examples.agrees(block, got))
            block.lines[line] = kept


def is_result(block, line, column):
    """Not so the commands of a console, the heading of a table, nor code in a text."""
    text = block.lines[line]
    if block.kind == "console":
        return not text.startswith("$ ")
    if block.kind != "numbers":
        return True
    return text[:column].count("`") % 2 == 0 and any(
        found.start() <= column < found.end() for found in pages.NUMBER.finditer(text)) and not (
            text.startswith("|") and line < 2)


class Pages(unittest.TestCase):
    """The reading of pages and the comparison, on pages made for it."""

    def test_a_block_that_is_not_run_says_why(self):
        for text in ("```\ngridforge -b\n```", "```text\na\n```", "<!-- input -->\n```csv\na\n```", "```sh\nopen",
                     "```usage\ngridforge -b -conv a.asc\n```"):
            with self.subTest(text), self.assertRaises(pages.PageError):
                pages.blocks_of("a.md", text)
        for text in ("```usage\ngridforge -b -conv <grid>\n```", "<!-- not run: a drawing -->\n```text\na\n```"):
            self.assertEqual(len(pages.blocks_of("a.md", text)), 1)

    def test_a_comment_belongs_to_what_follows_it(self):
        with self.assertRaises(pages.PageError):
            pages.blocks_of("a.md", "<!-- output a.csv -->\nA paragraph.")
        block = pages.blocks_of("a.md", "<!-- numbers wc a -->\n\nThere are 3 of\n`4` 5.\n\nMore 6.")[0]
        self.assertEqual((block.kind, block.name, pages.numbers_in(block.lines)), ("numbers", "wc a", ["3", "5"]))

    def test_a_table_without_its_heading(self):
        self.assertEqual(pages.numbers_in(["| 1 | a2 |", "|---|---|", "| 3.5 % | -4 |"]), ["3.5", "-4"])

    def test_lines_with_gaps(self):
        got = ["a", "b", "c", "b", "d"]
        for shown, same in ((got, True), (["a", "...", "d"], True), (["...", "c", "..."], True), (["a", "...", "c"], False),
                            (["...", "e", "..."], False), (["b", "..."], False), (["a", "...", "b", "...", "b", "d"], True),
                            (got[:4], False), (["a", "b", "c", "b", "d", "...", "d"], False)):
            self.assertEqual(examples.same_lines(shown, got), same, shown)

    def test_cells(self):
        got = [[1.0, None], [examples.single("0.1"), 2.0]]
        self.assertTrue(examples.same_cells(["1 null", "0.1 2"], got))
        for shown in (["1 null", "0.1 3"], ["1 null"], ["1 -9999", "0.1 2"], ["1 null", "0.1 2 3"]):
            self.assertFalse(examples.same_cells(shown, got), shown)


if __name__ == "__main__":
    unittest.main()
