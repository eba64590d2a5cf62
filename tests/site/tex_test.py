#!/usr/bin/env python3
"""Formulas as TeX: the forms that the manual texts use, and every formula of the manual."""
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
import manual  # noqa: E402
from signature_table import folders  # noqa: E402
from site_pages import tex  # noqa: E402

FORMS = {
    "x^(a-1) (1-x)^(b-1) / B(a, b)": r"\frac{x^{a - 1}\,(1 - x)^{b - 1}}{B(a,\, b)}",
    "x^(df/2-1) exp(-x/2)": r"x^{\mathit{df}/2 - 1}\,\exp(-x/2)",
    "r = df1/df2": r"r = \frac{\mathit{df}_1}{\mathit{df}_2}",
    "2/sqrt(pi) * integral of exp(-t*t) for t from 0 to x":
        r"\frac{2}{\sqrt{\pi}}\,\int_{0}^{x} \exp(-t\,t)\,\mathrm{d}t",
    "I_(1-p)(n - k, k + 1)": r"I_{1 - p}(n - k,\, k + 1)",
    "C(n, k) p^k": r"\binom{n}{k}\,p^{k}",
    "C(x s)": r"C(x\,s)",
    "T^-1 B": r"T^{-1}\,B",
    "I - tau(i) v v'": r"I - \tau(i)\,v\,v^{\mathsf T}",
    "max over i < j of |T_ij| <= x": r"\max_{i < j} \lvert T_{ij} \rvert \le x",
    "integral of phi(y) product over j < k-1 of D_j dy": r"\int \phi(y)\,\prod_{j < k - 1} D_{j}\,\mathrm{d}y",
    "values[i] = floor(w (count 2^-32))":
        r"\mathit{values}_{i} = \left\lfloor w\,(\mathit{count}\,2^{-32}) \right\rfloor",
    "ln |Gamma(x)|": r"\ln\,\lvert \Gamma(x) \rvert",
    "exp(-(x - mean)^2 / (2 sd^2))":
        r"\exp\left(-\frac{(x - \mathit{mean})^{2}}{2\,\mathit{sd}^{2}}\right)",
    "erfc(x / y) / 2": r"\frac{\operatorname{erfc}\left(\dfrac{x}{y}\right)}{2}",
    "(a + b) (c + d) / e": r"\frac{(a + b)\,(c + d)}{e}",
}


class Formulas(unittest.TestCase):
    def test_each_form(self):
        for plain, wanted in FORMS.items():
            self.assertEqual(tex.tex(plain), wanted, plain)

    def test_what_cannot_be_read_is_named(self):
        for plain, place in (("a + ", "the end"), ("a # b", "# b"), ("(a + b", "the end"), ("a of b", "of")):
            with self.assertRaisesRegex(ValueError, place):
                tex.tex(plain)

    def test_every_formula_of_the_manual_can_be_read(self):
        count = 0
        for folder in folders():
            for entry in manual.read(folder)[1].values():
                for mathematics, text in entry.formula_pieces():
                    if mathematics:
                        result = tex.tex(text)
                        self.assertEqual(result.count("{"), result.count("}"))
                        count += 1
        self.assertGreater(count, 100)


if __name__ == "__main__":
    unittest.main()
