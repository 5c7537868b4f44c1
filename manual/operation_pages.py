#!/usr/bin/env python3
"""Makes the manual pages of the operations from their pages in docs/operations, by lowdown.

usage: operation_pages.py VERSION FOLDER PAGE...

PAGE max-min.md becomes gridforge-max-min.1 in FOLDER.
"""
import os
import re
import subprocess
import sys

COMMENT = re.compile(r"<!--.*?-->\n", re.DOTALL)
PICTURE = re.compile(r"^!\[[^\]]*\]\([^)]*\)\n", re.MULTILINE)
LINK = re.compile(r"\[([^\]]+)\]\(([^)]+)\)")
HEADING = re.compile(r"^## (.*)$", re.MULTILINE)
FENCE = re.compile(r"^(```.*?^```$)", re.MULTILINE | re.DOTALL)


def link_text(found):
    """The text of a link; after it the manual page that it leads to."""
    text, target = found.groups()
    page = re.match(r"([a-z-]+)\.md", target)
    return f"{text} (gridforge-{page.group(1)}(1))" if page else text


def words_of(text):
    """A page's text outside its blocks without what a terminal does not show."""
    text = LINK.sub(link_text, PICTURE.sub("", text))
    return HEADING.sub(lambda found: "# " + found.group(1).upper(), text)


def manual_page(name, text, version):
    """The page as markdown for lowdown, its title as the section NAME."""
    title, body = COMMENT.sub("", text).split("\n", 1)
    title = title.removeprefix("# ")
    parts = FENCE.split(body)
    body = "".join(part if part.startswith("```") else words_of(part) for part in parts)
    return (f"title: {name}\nsection: 1\nsource: gridforge {version}\nvolume: gridforge\n\n"
            f"# NAME\n\n{name} - {title}\n{body}\n"
            "# SEE ALSO\n\ngridforge(1), and the manual as HTML in share/doc/gridforge/html\n")


def main(version, folder, pages):
    os.makedirs(folder, exist_ok=True)
    for page in pages:
        name = "gridforge-" + os.path.splitext(os.path.basename(page))[0]
        with open(page, encoding="utf-8") as file:
            text = manual_page(name, file.read(), version)
        made = subprocess.run(["lowdown", "-s", "-Tman", "--out-no-smarty"], input=text, stdout=subprocess.PIPE, text=True, check=True).stdout
        with open(os.path.join(folder, name + ".1"), "w", encoding="utf-8") as file:
            file.write(re.sub(r"^(\.TH .*\n)", r".nr HY 0\n\1.ad l\n", made, count=1, flags=re.MULTILINE))  # names stay whole


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2], sys.argv[3:])
