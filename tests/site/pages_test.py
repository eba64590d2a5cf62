#!/usr/bin/env python3
"""The built pages: every export has one, every link leads to a file and a place in it, every picture has a text.

    pages_test.py FOLDER
"""
import sys
import unittest
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from signature_table import exports  # noqa: E402

FOLDER = Path(sys.argv.pop(1)).resolve() if len(sys.argv) > 1 else ROOT / "build/docs/html"
HEADINGS = ("formula", "parameters", "edges", "failure", "threads", "memory", "accuracy", "equivalents", "example", "source")


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.ids, self.links, self.pictures = set(), [], []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if "id" in values:
            self.ids.add(values["id"])
        if tag == "a" and "href" in values:
            self.links.append(values["href"])
        if tag == "img":
            self.pictures.append((values.get("src"), values.get("alt")))


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pages = {path: Page(path) for path in FOLDER.rglob("*.html") if "_static" not in path.parts}

    def test_every_export_has_all_sections(self):
        for export in exports():
            page = self.pages[FOLDER / "reference" / f"{export.name}.html"]
            self.assertEqual([h for h in HEADINGS if h not in page.ids], [], export.name)

    def test_no_link_inside_is_dead(self):
        dead = []
        for path, page in self.pages.items():
            for link in page.links:
                address, _, anchor = unquote(link).partition("#")
                if ":" in address:
                    continue
                target = (path.parent / address).resolve() if address else path
                if not target.exists() or anchor and target in self.pages and anchor not in self.pages[target].ids:
                    dead.append(f"{path.relative_to(FOLDER)}: {link}")
        self.assertEqual(dead, [])

    def test_every_picture_is_there_and_has_a_text(self):
        count = 0
        for path, page in self.pages.items():
            for source, text in page.pictures:
                self.assertTrue((path.parent / unquote(source)).exists(), f"{path}: {source}")
                self.assertGreater(len(text or ""), 20, f"{path}: {source}")
                count += 1
        self.assertGreater(count, 50)

    def test_nothing_is_loaded_from_the_network(self):
        for path in self.pages:
            text = path.read_text()
            for part in ('src="http', '<link rel="stylesheet" href="http', "cdn."):
                self.assertNotIn(part, text, path)


if __name__ == "__main__":
    unittest.main()
