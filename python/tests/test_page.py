"""The page about scripts describes all options, and all members of the record."""
import re
import unittest
from pathlib import Path

from tests.support import ScratchTest

PAGE = Path(__file__).resolve().parents[2] / "docs" / "scripting.md"


class PageTest(ScratchTest):
    def setUp(self):
        super().setUp()
        self.give_grids("level_1pct.asc")
        self.text = PAGE.read_text()

    def test_every_member_of_the_record_is_described(self):
        self.command("--quiet", "--json", "record.json", "-fe", "level_1pct.asc")
        section = self.text.split("## The record")[1].split("\n## ")[0]
        self.assertEqual(set(self.record()) - set(re.findall(r"`(\w+)`", section)), set())

    def test_every_option_is_described(self):
        told = set(re.findall(r"^  (--[a-z-]+)", self.command("--help").stdout, re.M)) - {"--help", "--version"}
        self.assertEqual(told, set(re.findall(r"^\| `(--[a-z-]+)", self.text, re.M)))


if __name__ == "__main__":
    unittest.main()
