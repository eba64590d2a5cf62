"""The R package: rows of the array forms, the R functions, their pages and the tests of their examples.

A distribution has the functions d<law>, p<law> and q<law>, everything else its name in snake case. A name that base R
has already gets the prefix orv_, and then the arguments have base R's names too.
"""
import re
import textwrap

from signature_table import ROOT

from hosts import table
from hosts.python import _split, snake

PACKAGE = ROOT / "hosts" / "r"
# The names that R or the literature uses; any other law has its own name in lower case.
LAWS = {"Normal": "norm", "StudentT": "t", "ChiSquared": "chisq", "FisherF": "f", "Binomial": "binom",
        "Hypergeometric": "hypergeom", "FNCHypergeometric": "fnchypergeom", "MCa": "tukey", "MCb": "hsu",
        "MCc": "dunnett", "RefinedMCa": "tukey_refined", "RefinedMCb": "hsu_refined", "RefinedMCc": "dunnett_refined"}
IN_BASE = {"norm", "t", "chisq", "f", "beta", "gamma", "binom", "tukey"}  # each with d, p, q, and gamma, beta alone
# Arguments as base R calls them, by law and by name in the table.
RENAMED = {("beta", "a"): "shape1", ("beta", "b"): "shape2", ("binom", "n"): "size", ("binom", "p"): "prob",
           ("tukey", "k"): "nmeans", ("tukey_refined", "k"): "nmeans"}
DEFAULTS = {("norm", "mean"): "mean = 0", ("norm", "sd"): "sd = 1", ("gamma", "scale"): "rate = 1, scale = 1 / rate",
            "lambda": "lambda = sqrt(0.5)", "roundUp": "roundUp = TRUE", "accuracy": "accuracy = 0"}
TAILS = ("tail", "complement")
EXTRA = {"lower.tail": "\\code{TRUE} for \\eqn{P(X \\le x)}{P(X <= x)}, \\code{FALSE} for \\eqn{P(X > x)}{P(X > x)}.",
         "rate": "1 / scale, an alternative to scale."}
LAMBDA = " One number stands for as many as are needed; \\code{sqrt(0.5)} is right for groups of equal size."
RANGE = "The quantiles are on the scale of the studentised range, as those of \\code{\\link[stats]{ptukey}}: the " \
        "statistic below times sqrt(2)."


class Function:
    """One export as an R function."""

    def __init__(self, export):
        self.export = export
        match = re.fullmatch(r"(\w+?)(PDF|ICDF|CDF)", export.name)
        self.law = LAWS.get(match[1], match[1].lower()) if match else None
        self.letter = {"PDF": "d", "CDF": "p", "ICDF": "q"}[match[2]] if match else None
        base = self.law if match else snake(export.name)
        self.name = ("orv_" if base in IN_BASE else "") + (self.letter or "") + base
        self.topic = match[1] if match else self.name
        self.scaled = self.law in ("tukey", "tukey_refined")
        inputs = table.inputs(export)
        self.arguments = [self._name(a, i) for i, a in enumerate(inputs)]  # in the order of the table
        self.inputs = dict(zip(self.arguments, inputs))
        required = [n for n in self.arguments if n != "lower.tail" and not self._default(n)]
        tail = next((i for i, n in enumerate(self.arguments) if n == "lower.tail"), len(self.arguments))
        optional = [n for n in self.arguments if self._default(n)]
        before = [n for n in optional if self.arguments.index(n) < tail]
        self.required = required
        self.formals = required + [self._default(n) for n in before] + \
            (["lower.tail = TRUE"] if tail < len(self.arguments) else []) + \
            [self._default(n) for n in optional if n not in before]

    def _name(self, argument, index):
        if argument.name in TAILS and argument.type in ("TailFlag", "int32_t"):
            return "lower.tail"
        if index == 0 and self.law:
            first = {"d": "x", "p": "q", "q": "p"}[self.letter]
            others = [RENAMED.get((self.law, a.name), a.name) for a in table.inputs(self.export)[1:]]
            return argument.name if first in others else first
        return RENAMED.get((self.law, argument.name), argument.name)

    def _default(self, name):
        argument = self.inputs[name].name
        return DEFAULTS.get((self.law, argument)) or DEFAULTS.get(argument)

    @property
    def kinds(self):
        """A letter for each argument: a double, an integer, a tail, an array as long as the integer before it."""
        letters = {"double": "d", "int32_t": "i", table.ARRAY: "a"}
        return "".join("t" if n == "lower.tail" else letters[a.type] for n, a in self.inputs.items())

    def definition(self):
        values = list(self.arguments)
        if self.letter == "p" and self.inputs[values[0]].type == "int32_t":
            values[0] = f"floor({values[0]})"  # P(X <= 2.5) is P(X <= 2)
        if self.scaled and self.letter == "p":
            values[0] += " / sqrt(2)"
        call = f".Call(C_{self.export.name}, list({', '.join(values)}))"
        if self.scaled and self.letter == "q":
            call += " * sqrt(2)"
        return wrapped(f"{self.name} <- function(", self.formals, ")") + "\n    " + call + "\n"

    def call(self, values):
        """The call with R texts of the values in the table's order."""
        given = dict(zip(self.arguments, values))
        if "lower.tail" in given:
            given["lower.tail"] = "TRUE" if int(given["lower.tail"]) & 255 == 0 else "FALSE"
        if self.scaled and self.letter == "p":
            given[self.arguments[0]] += " * sqrt(2)"
        if set(_split(given.get("lambda", "")[2:-1])) == {"0.7071067811865476"}:
            del given["lambda"]  # the default
        texts = [given[n] for n in self.required]
        texts += [f"{n} = {v}" for n, v in given.items()
                  if n not in self.required and (n, v) != ("lower.tail", "TRUE")]
        return f"{self.name}({', '.join(texts)})" + (" / sqrt(2)" if self.scaled and self.letter == "q" else "")

    def examples(self):
        """[(call, value as R prints it with %.6g)]"""
        entry = table.manual_entries().get(self.export.name)
        found = []
        for call, value in (entry.scalar_examples() if entry else []):
            inside = call[call.index("(") + 1:call.rindex(")")]
            if re.fullmatch(r"([-+0-9.eE{}, \n]|inf|nan)+", inside):
                cells = [c.replace("{", "c(").replace("}", ")") for c in _split(inside)]
                cells = [re.sub(r"\binf\b", "Inf", re.sub(r"\bnan\b", "NaN", c)) for c in cells]
                found.append((self.call(cells), self._expected(float(value))))
        return found

    def _expected(self, value):
        reserved = table.reserved(self.export)
        if value != value or (reserved and reserved[0] != "nan" and f"{float(reserved[0]):.6g}" == f"{value:.6g}"):
            return "NaN"
        return {float("inf"): "Inf", float("-inf"): "-Inf"}.get(value) or f"{value:.6g}"


def wrapped(head, pieces, tail, width=88):
    return textwrap.fill(head + ", ".join(pieces) + tail, width, subsequent_indent=" " * 8, break_long_words=False,
                         break_on_hyphens=False)


def functions():
    return [Function(e) for e in table.functions() if table.has_array_form(e)]


def c_rows():
    lines = [f"/* {table.MARK} */"]
    for f in functions():
        reserved = table.reserved(f.export)
        value = "R_NaN" if not reserved or reserved[0] == "nan" else reserved[0]
        outputs = [a.name for a in table.outputs(f.export)] or ["", ""]
        quoted = ", ".join(f'"{n}"' for n in f.arguments)
        lines.append(f'EXPORT({f.export.name}, "{f.kinds}", {value}, "{outputs[0]}", "{outputs[1]}", {quoted})')
    return "\n".join(lines) + "\n"


def r_functions():
    return f"# {table.MARK}\n\n" + "\n".join(f.definition() for f in functions())


def helper():
    lines = [f"# {table.MARK}", "# Of each export its R function, and the names of the arguments in the export's order.",
             "exports <- list("]
    rows = []
    for f in functions():
        quoted = ", ".join(f'"{n}"' for n in f.arguments)
        rows.append(f'    {f.export.name} = list(name = "{f.name}", kinds = "{f.kinds}", arguments = c({quoted}))')
    return "\n".join(lines) + "\n" + ",\n".join(rows) + "\n)\n"


def example_tests():
    lines = [f"# {table.MARK}", "digits <- function(value) sprintf(\"%.6g\", suppressWarnings(value))"]
    for f in functions():
        if f.examples():
            lines += ["", f'test_that("the examples of {f.name} give what the manual says", {{']
            lines += [f'    expect_identical(digits({call}), "{value}")' for call, value in f.examples()]
            lines.append("})")
    return "\n".join(lines) + "\n"


def rd(text):
    return text.replace("\\", "\\\\").replace("%", "\\%").replace("{", "\\{").replace("}", "\\}")


def subsection(title, text):
    return f"\\subsection{{{title}}}{{\n\\preformatted{{\n{rd(text)}\n}}\n}}"


def page(group):
    """The help page of the functions of one law, or of one function."""
    entries = table.manual_entries()
    lines = [f"% {table.MARK}", f"\\name{{{group[0].topic}}}"]
    lines += [f"\\alias{{{name}}}" for name in dict.fromkeys([group[0].topic] + [f.name for f in group])]
    title = table.brief(group[0].export).rstrip(".")
    if len(group) > 1 and " of the " in title:
        title = "Distribution functions of the " + title.split(" of the ", 1)[1]
    title = title[0].upper() + title[1:]
    lines += [f"\\title{{{rd(title)}}}", "\\description{", *(rd(table.brief(f.export)) for f in group), "}",
              "\\usage{", *(wrapped(f.name + "(", f.formals, ")") for f in group), "}", "\\arguments{"]
    described = {}
    for f in group:
        entry = entries.get(f.export.name)
        texts = {p.name: " ".join(p.text.split()) for p in entry.parameters} if entry else {}
        for name in [re.split(r" = ", piece)[0] for formal in f.formals for piece in formal.split(", ")]:
            if name in EXTRA:
                text = EXTRA[name]
            else:
                argument = f.inputs[name].name
                text = rd(texts.get(argument, argument)) + "."
                text += LAMBDA if f.inputs[name].type == table.ARRAY else ""
            described.setdefault(name, text)
    lines += [f"  \\item{{{name}}}{{{text}}}" for name, text in described.items()] + ["}"]
    outputs = [a.name for a in table.outputs(group[0].export)]
    value = "A list of the vectors " + " and ".join(f"\\code{{{o}}}" for o in outputs) + "." if outputs else \
        "A numeric vector as long as the longest argument, with the attributes of the first argument of that length."
    lines += ["\\value{", value, "Arguments are recycled; NA and NaN pass through. An element that has no value is NaN, "
              "with the\nwarning \"NaNs produced\"; \\code{\\link{orvanth_last_error}} tells why.", "}"]
    details = [RANGE] if group[0].scaled else []
    for f in group:
        entry = entries.get(f.export.name)
        for section, heading in (("Formula", "Formula"), ("Edges", "Edges"), ("Failure", "Failure in the library's own terms")):
            text = entry.section(section) if entry else None
            if text:
                details.append(subsection(f"{heading} ({f.name})" if len(group) > 1 else heading, text))
    lines += ["\\details{", *details, "}"] if details else []
    sources = list(dict.fromkeys(s for s in ((entries[f.export.name].section("Source") if f.export.name in entries else None)
                                             for f in group) if s))
    if sources:
        lines += ["\\references{", "\n\n".join(rd(s) for s in sources), "}"]
    calls = [pair for f in group for pair in f.examples()]
    if not calls:
        calls = [(sample(f), "") for f in group]
    lines += ["\\examples{"]
    for call, value in calls:
        if value == "NaN":
            call = f"suppressWarnings({call})"
        lines.append(rd(call + (f"  # {value}" if value and len(call) < 80 else "")))
    return "\n".join(lines + ["}"]) + "\n"


def sample(function):
    """A call for a page whose entry has statements in C as its example: counts, then shares."""
    small = "special" == function.export.folder
    values = (["2", "3", "0.25"] if small else ["5", "8", "20", "2"])[:len(function.arguments)]
    return function.call(values + ["0.5"] * (len(function.arguments) - len(values)))


def description():
    version = re.search(r'VERSION_STRING "([\d.]+)"', (ROOT / "include" / "orvanth" / "version.h").read_text())[1]
    return f"""\
Package: orvanth
Type: Package
Title: Distributions, Special Functions and Least Squares of Orvanth
Version: {version}
Author: The developers of Orvanth.Core.Math
Maintainer: The developers of Orvanth.Core.Math <developers@example.org>
Description: The numerical library Orvanth.Core.Math in R. Probabilities and
    quantiles for multiple comparisons (Tukey, Hsu, Dunnett), of the
    Kolmogorov statistic and of Fisher's noncentral hypergeometric
    distribution, the classical distributions and special functions, least
    squares that names a redundant column, and a minimiser with bounds.
License: file LICENSE
Encoding: UTF-8
Depends: R (>= 4.0)
Suggests: testthat (>= 3.0.0)
Config/testthat/edition: 3
SystemRequirements: libOrvanth.Core.Math.Shield
NeedsCompilation: yes
"""


def files():
    made = {PACKAGE / "DESCRIPTION": description(), PACKAGE / "src" / "rows.h": c_rows(),
            PACKAGE / "R" / "functions.R": r_functions(),
            PACKAGE / "tests" / "testthat" / "helper-exports.R": helper(),
            PACKAGE / "tests" / "testthat" / "test-examples.R": example_tests()}
    topics = {}
    for f in functions():
        topics.setdefault(f.topic, []).append(f)
    for topic, group in topics.items():
        made[PACKAGE / "man" / f"{topic}.Rd"] = page(group)
    return made
