"""The report: what a section says goes to the terminal and to one self-contained HTML page."""
import html
import math
import sys
from pathlib import Path

from listing import Listing, marked
from palette import drawing, plt, variables

DATA = Path(__file__).resolve().parents[2] / "tests" / "data"
NARROW = (4.8, 3.4)  # inches of one panel where panels stand below each other
# On a phone the code is folded away; without scripts it stays open.
FOLD = ('<script>if(matchMedia("(max-width:62rem)").matches)'
        'for(const d of document.querySelectorAll("details"))d.open=false</script>')


def show(value):
    """A number as a report shows it: seven significant digits."""
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        return str(value)
    return str(value) if isinstance(value, int) else f"{value:.7g}"


def equal_digits(computed, published):
    """How many significant digits agree when both are rounded to them; 17 if both are the same number."""
    if computed == published:
        return 17
    return max((n for n in range(1, 17) if f"{computed:.{n - 1}e}" == f"{published:.{n - 1}e}"), default=0)


class Section:
    def __init__(self, anchor, title):
        self.anchor, self.title = anchor, title
        self.digits, self.held, self.off = [], 0, []


class Page:
    def __init__(self, title):
        self.title = title
        self.sections = []
        self._body = []
        self._listing = Listing()

    @staticmethod
    def data(name):
        return DATA / name

    @property
    def disagreements(self):
        return [line for section in self.sections for line in section.off]

    @property
    def checked(self):
        return sum(len(section.digits) + section.held for section in self.sections)

    def section(self, title, text=""):
        """Begins a section; the part of the title before a colon is its name in the navigation."""
        print(f"\n{title}\n{'=' * len(title)}")
        self.sections.append(Section(f"s{len(self.sections) + 1}", title))
        self._body.append(f'<h2 id="{self.sections[-1].anchor}">{html.escape(title)}</h2>')
        self._listing.skip(self._caller())
        if text:
            self._paragraph(text)

    def text(self, text):
        self._paragraph(text, self._code())

    def table(self, headers, rows, caption=None):
        """rows: sequences of strings or numbers."""
        self._table(headers, rows, caption, code=self._code())

    def compare(self, rows, caption=None, tolerance=1e-4, headers=("computed", "published")):
        """rows of (what, computed, published): shown side by side, and each held to the tolerance."""
        lines, marks = [], []
        for i, (what, computed, published) in enumerate(rows):
            difference = abs(computed - published) / (abs(published) or 1.0)
            digits = equal_digits(computed, published)
            self.sections[-1].digits.append(digits)
            if not difference <= tolerance or math.isnan(difference):
                marks.append(i)
                self.sections[-1].off.append(f"{what}: {headers[0]} {computed!r}, {headers[1]} {published!r}, "
                                             f"relative difference {difference:.1e}, allowed {tolerance:.0e}")
            shown = min(10, max(7, digits + 1))
            lines.append((what, f"{computed:.{shown}g}", f"{published:.{shown}g}",
                          ("all" if digits > 16 else str(digits)) + (" ✗" if i in marks else ""), f"{difference:.1e}"))
        self._table(("", *headers, "equal digits", "rel. difference"), lines, caption, marks, self._code())

    def holds(self, what, condition):
        """A statement that the numbers have to fulfil."""
        self.sections[-1].held += 1
        if not condition:
            self.sections[-1].off.append(f"does not hold: {what}")
        print(f"  {'holds' if condition else 'DOES NOT HOLD'}: {what}")
        mark = "<span class=good>✓ holds:</span>" if condition else "<span class=off>✗ does not hold:</span>"
        self._block(f"<p>{mark} {html.escape(what)}</p>", self._code())

    def figure(self, figure, caption):
        """One or more panels side by side; on a phone they stand below each other."""
        print(f"  [plot: {caption}]")
        label = f"f{len(self._body)}"
        wide = self._svg(figure, "wide", label)
        panels = figure.axes
        for panel, place in zip(panels, figure.add_gridspec(len(panels), 1)):
            panel.set_subplotspec(place)
        figure.set_layout_engine("constrained")
        figure.set_size_inches(NARROW[0], NARROW[1] * len(panels))
        narrow = self._svg(figure, "narrow", label)
        plt.close(figure)
        self._block(f"<figure>{wide}{narrow}<figcaption id={label}>{html.escape(caption)}</figcaption></figure>",
                    self._code(), "code of the plot", folded=True)

    def write(self, path):
        links = "".join(f'<li><a href="#{s.anchor}">{html.escape(s.title.split(":")[0])}</a></li>' for s in self.sections)
        style = variables() + Path(__file__).with_name("page.css").read_text(encoding="utf-8")
        path.write_text(
            f'<!doctype html>\n<html lang="en"><head><meta charset="utf-8">'
            f'<meta name="viewport" content="width=device-width,initial-scale=1"><title>{html.escape(self.title)}</title>'
            f"<style>{style}</style></head><body><header><h1>{html.escape(self.title)}</h1>"
            '<p class=lead>Each number below was computed while this page was made; the code beside it is the code that '
            "ran. Published values stand beside computed ones wherever there are any.</p>"
            f'<nav aria-label="Sections"><ul>{links}</ul></nav></header>\n<main>{self._summary()}'
            + "\n".join(self._body)
            + f'</main>\n<footer><a href="#summary">Back to the summary</a></footer>{FOLD}</body></html>\n',
            encoding="utf-8")

    def _summary(self):
        bad = self.disagreements
        if bad:
            verdict = (f"<p class=off>✗ {len(bad)} of {self.checked} checks fail.</p><ul>"
                       + "".join(f"<li>{html.escape(line)}</li>" for line in bad) + "</ul>")
        else:
            verdict = (f"<p><span class=good>✓ All {self.checked} checks hold:</span> computed values agree with published "
                       "ones, or with the same value reached on another way.</p>")
        rows = ""
        for s in self.sections:
            seen = sorted(s.digits)
            span = "" if not seen else f"{seen[0]} to {seen[-1]}" if seen[0] < seen[-1] else f"{seen[0]}"
            rows += (f'<tr><th scope=row><a href="#{s.anchor}">{html.escape(s.title)}</a></th>'
                     f"<td>{len(s.digits) + s.held}</td><td class=desk>{span.replace('17', 'all')}</td>"
                     + (f"<td class=off>✗ {len(s.off)} fail</td></tr>" if s.off else "<td class=good>✓ holds</td></tr>"))
        return (f'<section id="summary" aria-label="Summary"><div class="verdict{" bad" if bad else ""}">{verdict}</div>'
                '<table><thead><tr><th scope=col>section</th><th scope=col>checks</th>'
                '<th scope=col class=desk>equal digits</th><th scope=col>verdict</th></tr></thead>'
                f"<tbody>{rows}</tbody></table></section>")

    @staticmethod
    def _caller():
        frame = sys._getframe(1)
        while frame.f_code.co_filename == __file__:
            frame = frame.f_back
        return frame

    def _code(self):
        return self._listing.take(self._caller())

    def _block(self, content, code="", label="code", folded=False):
        beside = (f"<details class=code{'' if folded else ' open'}><summary>{label}</summary>"
                  f'<pre tabindex=0 aria-label="{label}">{marked(code)}</pre></details>') if code else ""
        self._body.append(f"<div class=block><div>{content}</div>{beside}</div>")

    def _paragraph(self, text, code=""):
        text = " ".join(text.split())
        print(text)
        self._block(f"<p>{html.escape(text)}</p>", code)

    def _table(self, headers, rows, caption=None, marks=(), code=""):
        """The rows numbered in `marks` stand out."""
        cells = [[show(v) for v in row] for row in rows]
        widths = [max(len(str(c)) for c in column) for column in zip(headers, *cells)]
        if caption:
            print(f"\n{caption}")
        for row in [list(headers)] + cells:
            print("  " + "  ".join(c.ljust(w) if i == 0 else c.rjust(w)
                                   for i, (c, w) in enumerate(zip(row, widths))))
        # On the page the equal digits tell what the relative difference tells, and take less room.
        shown = [i for i, h in enumerate(headers) if h != "rel. difference"]
        head = "".join(f"<th scope=col>{html.escape(headers[i])}</th>" if headers[i] else "<td></td>" for i in shown)
        body = "".join(f"<tr{' class=off' if i in marks else ''}><th scope=row>{html.escape(row[0])}</th>"
                       + "".join(f"<td>{html.escape(row[j])}</td>" for j in shown[1:]) + "</tr>"
                       for i, row in enumerate(cells))
        title = f"<caption>{html.escape(caption)}</caption>" if caption else ""
        self._block(f'<div class=scroll tabindex=0 role=group aria-label="{html.escape(caption or "table")}"><table>{title}'
                    f"<thead><tr>{head}</tr></thead><tbody>{body}</tbody></table></div>", code)

    @staticmethod
    def _svg(figure, kind, label):
        svg = drawing(figure, f"{label}-{kind}")
        return svg.replace("<svg ", f"<svg class={kind} role=img aria-labelledby={label} ", 1)
