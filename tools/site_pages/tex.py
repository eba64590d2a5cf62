"""Turns the plain formulas of the manual texts into TeX.

    x^(a-1) exp(-x) / Gamma(a)               a slash between spaces is a fraction of all that stands before it
    df1/df2                                  a slash without spaces is a small fraction, in brackets one line
    integral of E for t from A to B          integral over s > 0 of E ds, sum over i of E, product over j < k of E
    max over j of |T_j|, sup over t of E     C(n, k) is a binomial coefficient, x[i] an index, A' a transpose
"""
import re

GREEK = {"alpha", "beta", "lambda", "mu", "phi", "pi", "sigma", "tau", "Gamma", "Phi"}
FUNCTIONS = {"exp": r"\exp", "ln": r"\ln", "min": r"\min", "max": r"\max", "erf": r"\operatorname{erf}",
             "erfc": r"\operatorname{erfc}", "erfinv": r"\operatorname{erf}^{-1}"}
RELATIONS = {"=": "=", "<": "<", ">": ">", "<=": r"\le", ">=": r"\ge", ":=": r"\leftarrow"}
LARGE = {"integral": r"\int", "sum": r"\sum", "product": r"\prod", "max": r"\max", "sup": r"\sup"}
WORDS = {"of", "for", "from", "to", "over"}
TOKEN = re.compile(r"(\s*)(chi-squared|\.\.\.|\d+(?:\.\d+)?(?:e-?\d+)?|[A-Za-z]+\d*|<=|>=|:=|[-+*/^_=<>()\[\]|,'])")


def tex(text):
    """The TeX of a formula; ValueError names the place that cannot be read."""
    return _Reader(" ".join(text.split())).all()


class _Reader:
    def __init__(self, text):
        self.text, self.tokens, self.depth, self.at = text, [], 0, 0
        self.in_bars = False
        place = 0
        while place < len(text):
            match = TOKEN.match(text, place)
            if not match:
                raise self.error(text[place:])
            spaced_after = text[match.end():match.end() + 1] == " "
            self.tokens.append((match[2], bool(match[1]), spaced_after))
            place = match.end()

    def error(self, rest):
        return ValueError(f"the formula '{self.text}' cannot be read at '{rest}'")

    @property
    def next(self):
        return self.tokens[self.at][0] if self.at < len(self.tokens) else ""

    @property
    def adjacent(self):
        """Whether the next token follows without a space."""
        return self.at < len(self.tokens) and not self.tokens[self.at][1]

    def take(self, wanted=None):
        token = self.next
        if not token or (wanted is not None and token != wanted):
            raise self.error(token or "the end")
        self.at += 1
        return token

    def all(self):
        found = self.list()
        if self.next:
            raise self.error(self.next)
        return found

    def list(self):
        parts = [self.relation()]
        while self.next == ",":
            self.take()
            parts.append(self.relation())
        return ",\\, ".join(parts)

    def relation(self):
        text = self.sum()
        while self.next in RELATIONS:
            text += f" {RELATIONS[self.take()]} " + self.sum()
        return text

    def sum(self):
        text = self.take() if self.next == "-" else ""
        text += self.product()
        while self.next in ("+", "-"):
            text += f" {self.take()} " + self.product()
        return text

    def product(self):
        parts = [self.quotient()]
        while True:
            token = self.next
            if token == "/":
                self.take()
                parts = [_fraction("\\,".join(parts), self.quotient())]
            elif token == "*":
                self.take()
                parts.append(self.quotient())
            elif token and token not in WORDS and token not in RELATIONS and token not in "+-,)]" and \
                    not (token == "|" and self.in_bars):
                parts.append(self.quotient())
            else:
                return "\\,".join(parts)

    def quotient(self):
        """A power, or two joined by a slash without spaces."""
        text = self.power()
        while self.next == "/" and self.adjacent and not self.tokens[self.at][2]:
            self.take()
            below = self.power()
            text = _fraction(text, below) if self.depth == 0 else f"{text}/{below}"
        return text

    def power(self):
        token = self.next
        if token in LARGE and self.tokens[self.at + 1][0] in ("of", "over"):
            return self.large()
        name = re.fullmatch(r"[A-Za-z]+\d*", token) is not None
        text = self.atom()
        while True:
            if self.next == "^":
                self.take()
                text += "^{" + self.script() + "}"
            elif self.next == "_":
                self.take()
                text += "_{" + self.script(index=True) + "}"
            elif self.next == "'":
                self.take()
                text += "^{\\mathsf T}"
            elif name and self.next == "(" and self.adjacent:
                text = self.call(token, text)
            elif name and self.next == "[" and self.adjacent:
                text += "_{" + self.inside("[", "]") + "}"
            else:
                return text

    def call(self, name, text):
        if name in ("sqrt", "floor"):
            inner = self.inside("(", ")")
            return f"\\sqrt{{{inner}}}" if name == "sqrt" else f"\\left\\lfloor {inner} \\right\\rfloor"
        if name == "C" and self.arguments() == 2:
            above, below = self.inside("(", ")").split(",\\, ")
            return f"\\binom{{{above}}}{{{below}}}"
        return text + _brackets("(", self.inside("(", ")"), ")")

    def arguments(self):
        """How many arguments the brackets that begin here hold."""
        depth, commas = 0, 0
        for token, _, _ in self.tokens[self.at:]:
            depth += (token in "([") - (token in ")]")
            commas += token == "," and depth == 1
            if depth == 0:
                return commas + 1
        raise self.error("(")

    def inside(self, opening, closing):
        self.take(opening)
        self.depth += 1
        inner = self.list()
        self.depth -= 1
        self.take(closing)
        return inner

    def script(self, index=False):
        """An exponent or an index; its brackets are not shown."""
        self.depth += 1
        sign = self.take() if self.next == "-" else ""
        text = self.inside("(", ")") if self.next == "(" else self.atom(index)
        self.depth -= 1
        return sign + text

    def atom(self, index=False):
        token = self.next
        if token == "(":
            return _brackets("(", self.inside("(", ")"), ")")
        if token == "[":
            return _brackets("[", self.inside("[", "]"), "]")
        if token == "|":
            self.take()
            self.in_bars = True
            inner = self.sum()
            self.in_bars = False
            self.take("|")
            return f"\\lvert {inner} \\rvert"
        self.take()
        if token == "...":
            return "\\cdots"
        if token == "chi-squared":
            return "\\chi^2"
        if token == "infinity":
            return "\\infty"
        number = re.fullmatch(r"(\d+(?:\.\d+)?)(?:e(-?\d+))?", token)
        if number:
            return number[1] if number[2] is None else f"{number[1]} \\cdot 10^{{{number[2]}}}"
        match = re.fullmatch(r"([A-Za-z]+)(\d*)", token)
        if not match or token in WORDS:
            raise self.error(token)
        return self.name(match[1], match[2], index)

    @staticmethod
    def name(word, digits, index):
        if word in GREEK:
            text = "\\" + word
        elif word in FUNCTIONS:
            text = FUNCTIONS[word]
        elif re.fullmatch(r"d[stxy]", word):
            text = f"\\mathrm{{d}}{word[1]}"
        elif len(word) == 1 or index:
            text = word
        elif word.endswith("CDF"):
            text = f"\\mathrm{{{word}}}"
        else:
            text = f"\\mathit{{{word}}}"
        return text + (f"_{digits}" if digits else "")

    def large(self):
        """integral, sum, product, max or sup with what it runs over"""
        sign = LARGE[self.take()]
        below = ""
        if self.next == "over":
            self.take()
            below = "_{" + self.relation() + "}"
        self.take("of")
        body = self.product()
        if self.next == "for":
            self.take()
            variable = self.atom()
            self.take("from")
            low = self.sum()
            self.take("to")
            return f"{sign}_{{{low}}}^{{{self.sum()}}} {body}\\,\\mathrm{{d}}{variable}"
        return f"{sign}{below} {body}"


def _bare(text):
    """Without the brackets, if one pair encloses all of the text."""
    for left, right in (("\\left(", "\\right)"), ("(", ")")):
        if text.startswith(left) and text.endswith(right):
            inner, depth = text[len(left):-len(right)], 0
            for c in inner:
                depth += (c == "(") - (c == ")")
                if depth < 0:
                    return text
            return inner if depth == 0 else text
    return text


def _fraction(above, below):
    # A fraction inside a fraction keeps its size.
    above, below = (text.replace("\\frac", "\\dfrac") for text in (above, below))
    return f"\\frac{{{_bare(above)}}}{{{_bare(below)}}}"


def _brackets(left, inner, right):
    tall = any(word in inner for word in ("\\frac", "\\left", "\\sum", "\\max", "\\binom", "\\sqrt"))
    return f"\\left{left}{inner}\\right{right}" if tall else left + inner + right
