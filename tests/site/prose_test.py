#!/usr/bin/env python3
"""Texts of the manual as Markdown, and programs as tabs."""
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
import manual  # noqa: E402
from site_pages import packages, programs, prose, reference  # noqa: E402
from signature_table import exports  # noqa: E402


class Prose(unittest.TestCase):
    def test_characters_keep_their_meaning(self):
        self.assertEqual(prose.inline("I_x(a, b) * <c> [d] # `e_f`"), r"I\_x(a, b) \* \<c\> \[d\] \# `e_f`")

    def test_names_of_exports_are_links_except_on_their_own_page(self):
        self.assertEqual(prose.inline("as NormalCDF", "NormalPDF"), "as [`NormalCDF`](NormalCDF.md)")
        self.assertEqual(prose.inline("as NormalCDF", "NormalCDF"), "as NormalCDF")
        self.assertEqual(prose.inline("Beta is a word"), "Beta is a word")

    def test_pages_are_links(self):
        self.assertEqual(prose.inline("docs/accuracy/linalg.md"), "[](../accuracy/linalg.md)")

    def test_lines_that_end_a_sentence_and_cases_are_items(self):
        self.assertEqual(prose.sentences("One. Two\nthree.\nFour."), "- One. Two three.\n- Four.")
        self.assertEqual(prose.sentences("x = 0: 1. x = 1: 2."), "- x = 0: 1.\n- x = 1: 2.")
        self.assertEqual(prose.sentences("One line"), "One line")

    def test_tables_and_indented_code_stay(self):
        text = "Words a_b:\n\n    code a_b\n\n| a_b |\n"
        self.assertEqual(prose.blocks(text), "Words a\\_b:\n\n    code a_b\n\n| a_b |")

    def test_calls_are_code(self):
        self.assertEqual(prose.code_words("R: pt(x, df) or a_b; scipy.stats.t"), r"R: `pt(x, df)` or a\_b; `scipy.stats.t`")

    def test_formulas_in_the_text_and_alone(self):
        def entry(formula):
            return manual.Entry("F", manual._blocks(f"What.\n\n@par Formula\n{formula}"))
        self.assertEqual(prose.formula(entry("$x/2$")), "$$\n\\frac{x}{2}\n$$")
        self.assertEqual(prose.formula(entry("the x with $x < 1$")), "the x with $\\displaystyle x < 1$")
        self.assertIn("\n$$\nx < 1.\n$$\n", prose.formula(entry("first:\n$x < 1$.\nthen")))

    def test_docstrings_become_lists_and_sessions(self):
        text = "What ``f`` does.\n\nParameters\n----------\na : int\n    The b_c.\n\nExamples\n--------\n>>> f(1)\n2\n"
        self.assertEqual(packages.described(text, 2), "What `f` does.\n\n**Parameters**\n\n- `a`: int. The b\\_c.\n\n"
                         "**Examples**\n\n```pycon\n>>> f(1)\n2\n```")
        self.assertIn("## dunnett\n", packages.pages()["packages/python-stats.md"])

    def test_synonyms_lead_to_exports_and_pages(self):
        for term, _, places in reference.synonyms():
            for place in places:
                here = place in prose.NAMES or any((ROOT / "docs" / folder / f"{place}.md").exists()
                                                   for folder in (".", "site")) or place == "shield"
                self.assertTrue(here, f"{term}: {place}")

    def test_every_export_has_a_page(self):
        pages = reference.pages(lambda name: ())
        for export in exports():
            self.assertIn(f"reference/{export.name}.md", pages)

    def test_programs_end_before_what_they_print(self):
        source = next(f for language, _, f in programs.sources("survive") if language == "C")
        self.assertTrue(programs.shown(source).endswith("}"))
        self.assertTrue(programs.printed("survive", source).startswith("nan, status 1\n"))
        with self.assertRaisesRegex(ValueError, "different things"):
            programs.tabs("survive")


if __name__ == "__main__":
    unittest.main()
