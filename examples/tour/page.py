"""The report: what a section says goes to the terminal and to one self-contained HTML page."""
import html
import io
import math
import re
from pathlib import Path

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plt  # noqa: E402

DATA = Path(__file__).resolve().parents[2] / "tests" / "data"
STYLE = """
body{font:16px/1.5 system-ui,sans-serif;max-width:60rem;margin:2rem auto;padding:0 1rem;color:#1c2430}
h1,h2{line-height:1.2} h2{margin-top:3rem;border-top:1px solid #d5dae1;padding-top:1.5rem}
table{border-collapse:collapse;margin:1rem 0;font-variant-numeric:tabular-nums} caption{text-align:left;font-weight:600}
td,th{padding:.25rem .75rem;border-bottom:1px solid #e3e7ec;text-align:right} td:first-child,th:first-child{text-align:left}
.off{color:#b00020;font-weight:600} figure{margin:1.5rem 0} figure svg{max-width:100%;height:auto}
figcaption{color:#56606d} nav a{margin-right:1rem;white-space:nowrap}
"""

plt.rcParams.update({"svg.fonttype": "path", "svg.hashsalt": "tour", "figure.figsize": (8, 4),
                     "axes.spines.top": False, "axes.spines.right": False, "axes.grid": True,
                     "grid.alpha": 0.3, "font.size": 11})


def show(value):
    """A number as a report shows it: seven significant digits."""
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        return str(value)
    return str(value) if isinstance(value, int) else f"{value:.7g}"


class Page:
    def __init__(self, title):
        self.title = title
        self.disagreements = []
        self.compared = 0
        self._sections = []
        self._body = []

    @staticmethod
    def data(name):
        return DATA / name

    def section(self, title, text=""):
        print(f"\n{title}\n{'=' * len(title)}")
        anchor = f"s{len(self._sections)}"
        self._sections.append((anchor, title))
        self._body.append(f'<h2 id="{anchor}">{html.escape(title)}</h2>')
        if text:
            self.text(text)

    def text(self, text):
        text = " ".join(text.split())
        print(text)
        self._body.append(f"<p>{html.escape(text)}</p>")

    def table(self, headers, rows, caption=None, marks=()):
        """rows: sequences of strings or numbers; the rows numbered in `marks` stand out."""
        cells = [[show(v) for v in row] for row in rows]
        widths = [max(len(str(c)) for c in column) for column in zip(headers, *cells)]
        if caption:
            print(f"\n{caption}")
        for row in [list(headers)] + cells:
            print("  " + "  ".join(c.ljust(w) if i == 0 else c.rjust(w)
                                   for i, (c, w) in enumerate(zip(row, widths))))
        head = "".join(f"<th>{html.escape(str(h))}</th>" for h in headers)
        body = "".join(("<tr class=off>" if i in marks else "<tr>")
                       + "".join(f"<td>{html.escape(c)}</td>" for c in row) + "</tr>"
                       for i, row in enumerate(cells))
        self._body.append(f"<table>{f'<caption>{html.escape(caption)}</caption>' if caption else ''}"
                          f"<thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>")

    def compare(self, rows, caption=None, tolerance=1e-4):
        """rows of (what, computed, published): shown side by side, and each held to the tolerance."""
        lines, marks = [], []
        for i, (what, computed, published) in enumerate(rows):
            difference = abs(computed - published) / (abs(published) or 1.0)
            self.compared += 1
            if not difference <= tolerance or math.isnan(difference):
                marks.append(i)
                self.disagreements.append(f"{what}: computed {computed!r}, published {published!r}, "
                                          f"relative difference {difference:.1e}, allowed {tolerance:.0e}")
            lines.append((what, float(computed), float(published), f"{difference:.1e}"))
        self.table(("", "computed", "published", "rel. difference"), lines, caption, marks)

    def figure(self, figure, caption):
        buffer = io.StringIO()
        figure.savefig(buffer, format="svg", bbox_inches="tight", metadata={"Date": None})
        plt.close(figure)
        svg = buffer.getvalue()
        svg = svg[svg.index("<svg"):]
        # Identifiers are unique on the page although each figure numbers its own.
        prefix = f"f{len(self._body)}-"
        svg = re.sub(r'(id="|href="#|url\(#)', lambda m: m.group(1) + prefix, svg)
        print(f"  [plot: {caption}]")
        self._body.append(f"<figure>{svg}<figcaption>{html.escape(caption)}</figcaption></figure>")

    def write(self, path):
        links = "".join(f'<a href="#{a}">{html.escape(t)}</a>' for a, t in self._sections)
        path.write_text(f"<!doctype html><html lang=en><meta charset=utf-8><title>{html.escape(self.title)}</title>"
                        f"<style>{STYLE}</style><h1>{html.escape(self.title)}</h1><nav>{links}</nav>"
                        + "\n".join(self._body) + "</html>\n", encoding="utf-8")
