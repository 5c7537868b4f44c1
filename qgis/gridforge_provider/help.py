"""The help of an algorithm, from the page of its operation."""
from __future__ import annotations

import re
from pathlib import Path

PAGES = Path(__file__).resolve().parent / "pages"
SECTIONS = ("What it does", "Flags", "Missing cells and edges", "Messages")


def page_of(page: str) -> str:
    """The text of a page such as `docs/operations/dif.md`; nothing where the plugin has none of that name."""
    file = PAGES / Path(page).name
    return file.read_text(encoding="utf-8") if file.is_file() else ""


def title_of(text: str) -> str:
    """`Difference` of a page that begins with `# Difference: -dif`."""
    found = re.match(r"# (.+?)(: `.*)?\n", text)
    return found.group(1) if found else ""


def section(text: str, heading: str) -> str:
    found = re.search(rf"^## {re.escape(heading)}\n(.*?)(?=^## |\Z)", text, re.S | re.M)
    return found.group(1).strip() if found else ""


def _without_pictures(text: str) -> str:
    """Pictures stay in the documents, and so do the paragraph after each, which explains it, and how it was made."""
    kept = []
    before = ""  # the paragraph before, if it takes this one away with it
    for paragraph in text.split("\n\n"):
        is_picture = paragraph.startswith("![")
        explains = before and not paragraph.startswith("#") or re.search("picture is drawn|draws the picture", paragraph)
        if not is_picture and not explains:
            kept.append(paragraph)
        before = paragraph if is_picture or explains and paragraph.endswith("Made by") else ""
    return "\n\n".join(kept)


def _without_links(text: str) -> str:
    """Links lead to other pages, which are not here; comments are for tests of the pages."""
    text = re.sub(r"^<!--.*?-->\n", "", text, flags=re.M)
    return re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", text)


def help_text(text: str) -> str:
    """What of a page helps in a dialog, in the same markup."""
    parts = []
    for heading in SECTIONS:
        content = section(text, heading)
        if content:
            parts.append(f"## {heading}\n\n{content}\n")
    return _without_links(_without_pictures("\n".join(parts)))


def on_one_line(html: str) -> str:
    """The body of a document without line ends, each of which QGIS takes for the end of a paragraph."""
    found = re.search(r"<body[^>]*>(.*)</body>", html, re.S)
    body = found.group(1) if found else html
    body = re.sub(r"<pre.*?</pre>", lambda block: block.group().replace("\n", "<br/>"), body, flags=re.S)
    return re.sub(r"\s*\n\s*", " ", body).strip()
