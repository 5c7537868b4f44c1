"""Help from the pages of the operations."""
import re
import unittest

import unpacked  # first: it brings the plugin
from gridforge_provider import help as pages
from gridforge_provider.package import load_description

DESCRIPTION = load_description(unpacked.PLUGINS / "gridforge_provider/gridforge/gridforge.json")
PAGE = """# Twice: `-twice`

## Usage

```
gridforge -twice
```

## What it does

Doubles [cells](../cells.md).

![A picture](../p.png)

*What the picture shows.* Made by

```
docs/make_it
```

<!-- not run: draws the picture above -->
```text
docs/draw_it
```

<!-- output a.asc -->
```text
2
```

More about it.

## Flags

| Flag | Effect |
|---|---|
| `-twice` | [all](../all.md) |

## Memory

Two grids.
"""


class HelpTest(unittest.TestCase):
    def test_sections_without_links_and_pictures(self):
        self.assertEqual(pages.title_of(PAGE), "Twice")
        self.assertEqual(re.sub(r"\n\n+", "\n", pages.help_text(PAGE)).strip(),
                         "## What it does\nDoubles cells.\n```text\n2\n```\nMore about it.\n"
                         "## Flags\n| Flag | Effect |\n|---|---|\n| `-twice` | all |")

    def test_each_operation_has_title_and_help(self):
        for operation in DESCRIPTION.operations:
            text = pages.page_of(operation.page)
            self.assertTrue(pages.title_of(text), operation.name)
            told = pages.help_text(text)
            self.assertIn("## What it does\n", told, operation.name)
            self.assertNotRegex(told, r"\]\(|!\[|<!--|## Usage|## Memory|docs/", operation.name)

    def test_a_page_that_is_not_there(self):
        self.assertEqual(pages.page_of("docs/operations/none.md"), "")
        self.assertEqual(pages.title_of(""), "")
        self.assertEqual(pages.help_text(""), "")

    def test_html_on_one_line(self):
        html = "<html><head><style>\np {}\n</style></head><body style='x'>\n<p>a\nb</p><pre>c\n  d</pre></body></html>\n"
        self.assertEqual(pages.on_one_line(html), "<p>a b</p><pre>c<br/>  d</pre>")
        self.assertEqual(pages.on_one_line("plain"), "plain")


if __name__ == "__main__":
    unittest.main()
