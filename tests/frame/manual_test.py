#!/usr/bin/env python3
"""The reader of manual entries, on entries made for this test."""
import sys
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "tools")]
import generate_interface  # noqa: E402
import manual  # noqa: E402
import manual_examples  # noqa: E402
from signature_table import Argument, Export  # noqa: E402

EXPORT = Export("special", "F", "double", (Argument("double", "x"), Argument("double*", "out")), ("Silent",),
                ("Reentrant",))
TEXT = """What it does.

@par Formula
f(x) = x * x
@param[in] x  any double,
              also a NaN
@param[in,out] out  one double
@return the square
@par Edges
F(0) = 0
@par Failure
None.
@par Memory
None.
@par Accuracy
docs/accuracy/special.md
@par Equivalents
R: x^2
SciPy: x**2
@par Example
F(2, {1}) = 4
F(-inf, {1}) = inf
@par Source
Nobody, 1900."""


def entry(text=TEXT):
    return manual.Entry("F", manual._blocks(text))


class Manual(unittest.TestCase):
    def test_complete_entry_has_no_gaps(self):
        self.assertEqual(manual.gaps(EXPORT, entry()), [])

    def test_each_missing_part_is_named(self):
        for removed, named in (("@par Formula\nf(x) = x * x\n", "Formula"), ("@par Memory\nNone.\n", "Memory"),
                               ("@return the square\n", "@return"), ("@param[in,out] out  one double\n", "@param out"),
                               ("What it does.\n", "a first line that is one sentence")):
            self.assertIn(named, manual.gaps(EXPORT, entry(TEXT.replace(removed, ""))))
        self.assertIn("the right direction of x", manual.gaps(EXPORT, entry(TEXT.replace("[in] x", "[out] x"))))
        self.assertIn("no @param y, which is no argument",
                      manual.gaps(EXPORT, entry(TEXT.replace("@return", "@param[in] y  z\n@return"))))
        self.assertIn("lines of at most 100 columns", manual.gaps(EXPORT, entry(TEXT + "x" * 100)))

    def test_marks_of_mathematics_stay_out_of_the_text(self):
        marked = entry(TEXT.replace("f(x) = x * x", "$f(x) = x * x$ for all x"))
        self.assertEqual(marked.section("Formula"), "f(x) = x * x for all x")
        self.assertEqual(marked.formula_pieces(), [(True, "f(x) = x * x"), (False, " for all x")])
        self.assertNotIn("$", generate_interface.entry_text(EXPORT, marked))
        with self.assertRaisesRegex(ValueError, "no partner"):
            entry(TEXT.replace("f(x) = x * x", "$f(x) = x * x")).formula_pieces()

    def test_parameters_have_direction_and_text(self):
        x, out = entry().parameters
        self.assertEqual((x.direction, x.name, x.text.split()), ("in", "x", "any double, also a NaN".split()))
        self.assertEqual((out.direction, out.name), ("in,out", "out"))

    def test_scalar_examples_are_calls_and_values(self):
        self.assertEqual(entry().scalar_examples(), [("F(2, {1})", "4"), ("F(-inf, {1})", "inf")])
        self.assertEqual(manual_examples.arguments_in_c(EXPORT, "F(-inf, {1, 2})"), "-INFINITY, (double[]){1,2}")
        with self.assertRaises(ValueError):
            manual_examples.arguments_in_c(EXPORT, "F(1)")

    def test_code_examples_are_statements_and_what_they_print(self):
        code = entry("B.\n\n@par Example\n@code\nprintf(\"1\\n\");\n@endcode\n// prints: 1\n@par Source\nS.")
        self.assertEqual(code.code_examples(), [('printf("1\\n");\n', ["1"])])
        self.assertEqual(code.section("Source"), "S.")

    def test_values_agree_in_the_digits_shown(self):
        for got, shown, agree in (("0.12345649", "0.123456", True), ("0.1234566", "0.123456", False),
                                  ("2", "2.00000", True), ("2", "2.00001", False), ("nan", "nan", True),
                                  ("-nan", "nan", True), ("inf", "inf", True), ("-inf", "inf", False),
                                  ("1.5", "nan", False), ("1.2345678e-300", "1.23457e-300", True)):
            self.assertEqual(manual_examples.same(got, shown), agree, (got, shown))

    def test_header_entry_has_the_rule_for_threads_after_failure(self):
        text = generate_interface.entry_text(EXPORT, entry())
        self.assertIn("@par Failure\nNone.\n@par Threads\nReentrant: calls may overlap in time if they write", text)
        self.assertIn("- R: x^2\n- SciPy: x**2", text)


unittest.main()
