#!/usr/bin/env python3
"""The report of the benchmarks, on times made for this test."""
import json
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "benchmarks"))
import page  # noqa: E402
import report  # noqa: E402


def run(name, time, label=""):
    return {"run_type": "iteration", "run_name": name, "cpu_time": time, "time_unit": "us", "label": label}


class Report(unittest.TestCase):
    def setUp(self):
        with tempfile.TemporaryDirectory() as folder:
            for program, runs in (("special", [run("Gamma/here", 2), run("Gamma/GSL", 4), run("Gamma/Rmath", 1)]),
                                  ("discrete", [run("BinomialPDF/here/0", 1, "n to 30"),
                                                run("BinomialPDF/GSL/0", 1.01, "n to 30")]),
                                  ("multiple_comparison", [run("MCcCDF/here/unequal/3", 5)])):
                Path(folder, f"{program}_bench.json").write_text(json.dumps({"context": {}, "benchmarks": runs}))
            self.found, _ = report.read(Path(folder))

    def test_cases_are_told_by_their_arguments(self):
        self.assertEqual(list(self.found["BinomialPDF"]), ["n to 30"])
        self.assertEqual(list(self.found["MCcCDF"]), ["unequal, k = 3"])
        self.assertEqual(report.growth_points(self.found, "MCcCDF", "unequal"), [(3, 5000.0)])

    def test_summary_counts_rows_ahead_level_and_behind(self):
        rows = report.comparisons(self.found)
        self.assertEqual([(e, p, round(r, 2)) for e, _, p, r in rows],
                         [("Gamma", "GSL", 2.0), ("Gamma", "Rmath", 0.5), ("BinomialPDF", "GSL", 1.01)])
        total, by_peer, why = report.summary(rows)
        self.assertEqual(total, "3 comparisons with peers: 1 ahead, 1 level, 1 behind")
        self.assertEqual(by_peer[1:], [["GSL", "1", "1", "0"], ["Rmath", "0", "0", "1"]])
        self.assertEqual(len(why), 2)
        self.assertIn("Gamma Rmath 0.50", why[1][1])

    def test_bars_go_right_where_we_are_faster(self):
        self.assertIn('class=ahead style="left:50.00%;width:25.00%"', page.bar(10, report.LEVEL))
        self.assertIn('class=behind style="left:25.00%;width:25.00%"', page.bar(0.1, report.LEVEL))
        self.assertIn("class=level", page.bar(1.0, report.LEVEL))

    def test_exports_without_a_row_are_named(self):
        self.assertIn("GammaLn", report.missing(self.found))
        self.assertNotIn("Gamma", report.missing(self.found))


unittest.main()
