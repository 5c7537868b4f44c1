#!/usr/bin/env python3
"""The manual: links of the pages and of the HTML lead somewhere, it needs no network, and operations have manual pages.

GRIDFORGE_MANUAL_DIR names the folder that the build makes the manual in. What mkdocs or lowdown makes is skipped where they are
not installed.
"""
import glob
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from html.parser import HTMLParser
from urllib.parse import unquote, urldefrag

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
MANUAL = os.environ["GRIDFORGE_MANUAL_DIR"]
HTML = os.path.join(MANUAL, "html")
LINK = re.compile(r"(?<!!)\[[^\]]+\]\(([^)\s]+)\)")
WORDS = ("AEP", "chainage", "critical duration", "FLC", "freeboard", "invert", "NODATA", "TIN")


def without_blocks(text):
    return re.sub(r"^```.*?^```$", "", text, flags=re.MULTILINE | re.DOTALL)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def anchors(path):
    """Those that a page on the web has: headings in small letters, blanks as hyphens, without other signs."""
    titles = re.findall(r"^#+ (.*)$", without_blocks(read(path)), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", title).lower()).replace(" ", "-") for title in titles}


class Links(unittest.TestCase):
    def test_links_of_the_pages(self):
        pages = [*glob.glob(os.path.join(ROOT, "*.md")), *glob.glob(os.path.join(ROOT, "docs", "**", "*.md"), recursive=True)]
        checked = 0
        for page in pages:
            for link in LINK.findall(without_blocks(read(page))):
                if link.startswith(("http:", "https:")):
                    continue
                with self.subTest(page=os.path.relpath(page, ROOT), link=link):
                    name, anchor = urldefrag(link)
                    path = os.path.normpath(os.path.join(os.path.dirname(page), unquote(name))) if name else page
                    self.assertTrue(os.path.exists(path))
                    if anchor:
                        self.assertIn(anchor, anchors(path))
                checked += 1
        self.assertGreater(checked, 200)


class Menu(unittest.TestCase):
    def test_each_page_is_in_the_menu_once(self):
        named = re.findall(r"^ *- .*: (\S+\.md)$", read(os.path.join(ROOT, "mkdocs.yml")), re.MULTILINE)
        pages = glob.glob("**/*.md", root_dir=os.path.join(ROOT, "docs"), recursive=True)
        # The page of all operations leads to each of them.
        self.assertEqual(sorted(named), sorted(page for page in pages if not re.match(r"operations/[a-z]", page)))


class HtmlPage(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.ids, self.links, self.loads = set(), [], []
        self.feed(read(path))

    def handle_starttag(self, tag, attrs):
        given = dict(attrs)
        self.ids.add(given.get("id"))
        if tag == "a" and given.get("href"):
            self.links.append(given["href"])
        self.loads += [given[name] for name in ("src", "href") if tag in ("img", "script", "link") and given.get(name)]


@unittest.skipUnless(os.path.isdir(HTML), "mkdocs is not installed")
class Html(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pages = {path: HtmlPage(path) for path in glob.glob(os.path.join(HTML, "**", "*.html"), recursive=True)
                     if os.path.basename(path) != "404.html"}

    def test_mkdocs_finds_nothing_wrong(self):
        mkdocs = shutil.which("mkdocs", path="/usr/bin")
        with tempfile.TemporaryDirectory() as scratch:
            done = subprocess.run([mkdocs, "build", "--strict", "--config-file", os.path.join(ROOT, "mkdocs.yml"), "--site-dir", scratch],
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_every_page_is_there(self):
        for page in glob.glob("**/*.md", root_dir=os.path.join(ROOT, "docs"), recursive=True):
            made = re.sub(r"README\.md$", "index.md", page)[:-3] + ".html"
            self.assertIn(os.path.join(HTML, made), self.pages)

    def test_links(self):
        for path, page in self.pages.items():
            for link in page.links:
                name, anchor = urldefrag(link)
                if name.startswith(("http:", "https:")) or link == "#":
                    continue
                with self.subTest(page=os.path.relpath(path, HTML), link=link):
                    target = os.path.normpath(os.path.join(os.path.dirname(path), unquote(name))) if name else path
                    self.assertTrue(os.path.isfile(target))
                    if anchor and target in self.pages:
                        self.assertIn(anchor, self.pages[target].ids)

    def test_nothing_is_loaded_from_elsewhere(self):
        for path, page in self.pages.items():
            for name in page.loads:
                with self.subTest(page=os.path.relpath(path, HTML)):
                    self.assertNotRegex(name, r"^(https?:)?//")
                    self.assertTrue(os.path.isfile(os.path.join(os.path.dirname(path), unquote(urldefrag(name)[0].split("?")[0]))), name)


class Glossary(unittest.TestCase):
    def test_words_are_explained_in_their_order(self):
        rows = [line.split("|")[1:3] for line in read(os.path.join(ROOT, "docs", "glossary.md")).split("\n") if line.startswith("| ")][1:]
        words = [word.strip() for word, _ in rows]
        self.assertEqual(words, sorted(words, key=lambda word: word.lower().replace("-", " ")))
        self.assertTrue(all(meaning.strip() for _, meaning in rows))
        for word in WORDS:
            self.assertTrue(any(word in one for one in words), word)


@unittest.skipUnless(os.path.isdir(os.path.join(MANUAL, "man1")), "lowdown is not installed")
class ManualPages(unittest.TestCase):
    def test_each_operation_has_one(self):
        for page in glob.glob(os.path.join(ROOT, "docs", "operations", "[a-z]*.md")):
            name = "gridforge-" + os.path.basename(page)[:-3]
            with self.subTest(name):
                path = os.path.join(MANUAL, "man1", name + ".1")
                shown = subprocess.run(["man", "--warnings", "--local-file", path], capture_output=True, text=True, check=True,
                                       env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "120", "MAN_KEEP_FORMATTING": ""})
                self.assertEqual(shown.stderr, "")
                title = read(page).split("\n")[0].removeprefix("# ").replace("`", "")
                self.assertIn(f"{name} - {title}", re.sub(r"\s+", " ", shown.stdout[:400]))
                for heading in re.findall("^## (.*)$", read(page), re.MULTILINE):
                    self.assertIn(heading.upper(), shown.stdout)
                self.assertNotIn("](", shown.stdout)
                self.assertNotIn("<!--", shown.stdout)


if __name__ == "__main__":
    unittest.main()
