"""Reads the manual texts src/<folder>/exports.txt.

A file begins with an introduction to the family. A line '== Name' begins the entry of an export:

    a sentence of one line that says what the export does
    further paragraphs, if needed
    @par Formula       plain ASCII; mathematics between two $, which only the pages show as such
    @param[in] name    one for each argument; [in], [out] or [in,out]
    @return            what is returned
    @par Edges         the value at each edge
    @par Failure       each failure: class or status, beginning of the text, errno, what is already written
    @par Memory        what is allocated or kept; "None."
    @par Accuracy      one line with a link to docs/accuracy
    @par Equivalents   a line 'R: ...', a line 'SciPy: ...', or "None in R or SciPy."
    @par Example       lines 'Name(arguments) = value', or C statements between @code and @endcode
                       followed by one line '// prints: TEXT' for each line that they print
    @par Source        author, title, journal or book, year

The paragraph on threads is not written by hand; generate_interface.py adds it from the signature table.
"""
import re
from dataclasses import dataclass

from signature_table import ROOT, exports

# With True a missing section is an error in `generate_interface.py --check`, with False a warning.
REQUIRE_EVERY_SECTION = True

SECTIONS = ("Formula", "Edges", "Failure", "Memory", "Accuracy", "Equivalents", "Example", "Source")


@dataclass(frozen=True)
class Parameter:
    direction: str
    name: str
    text: str


@dataclass(frozen=True)
class Block:
    """A tag and its text: '' for the opening paragraphs, 'param', 'return', or the title of a @par."""
    tag: str
    text: str
    marked: str = ""  # the text of a formula with the $ around its mathematics


@dataclass(frozen=True)
class Entry:
    name: str
    blocks: tuple

    @property
    def brief(self):
        return self.blocks[0].text.split("\n")[0]

    @property
    def parameters(self):
        found = []
        for block in self.blocks:
            if block.tag == "param":
                match = re.match(r"\[(in|out|in,out)\]\s+(\w+)\s*(.*)", block.text, re.S)
                if not match:
                    raise ValueError(f"{self.name}: cannot read '@param{block.text}'")
                found.append(Parameter(*match.groups()))
        return found

    def section(self, tag):
        """The text under a tag, or None."""
        texts = [block.text for block in self.blocks if block.tag == tag]
        return texts[0] if texts else None

    def formula_pieces(self):
        """[(whether it is mathematics, text)] of the formula."""
        marked = next((block.marked for block in self.blocks if block.tag == "Formula"), "")
        pieces = marked.split("$")
        if len(pieces) % 2 == 0:
            raise ValueError(f"{self.name}: Formula: a $ has no partner")
        return [(i % 2 == 1, piece) for i, piece in enumerate(pieces) if piece]

    def scalar_examples(self):
        """[(call, value)] of the lines 'Name(arguments) = value'."""
        text = self.section("Example") or ""
        if "@code" in text:
            return []
        pairs = []
        for line in text.splitlines():
            match = re.fullmatch(r"(.*\)) = (\S+)", line.strip())
            if not match:
                raise ValueError(f"{self.name}: cannot read the example '{line}'; write 'Name(arguments) = value'")
            pairs.append(match.groups())
        return pairs

    def code_examples(self):
        """[(statements, lines printed)] of the blocks between @code and @endcode."""
        text = self.section("Example") or ""
        pieces = re.split(r"^@code(?:\{\.c\})?\n(.*?)^@endcode$", text, flags=re.M | re.S)
        return [(code, [line[len("// prints:"):].strip() for line in after.splitlines()
                        if line.startswith("// prints:")])
                for code, after in zip(pieces[1::2], pieces[2::2])]


def _blocks(text):
    blocks, tag, lines, in_code = [], "", [], False
    for line in text.splitlines():
        in_code = (in_code or line.startswith("@code")) and not line.startswith("@endcode")
        match = None if in_code else re.match(r"@(?:par (\w+)|(param)|(return))\b(.*)", line)
        if match:
            blocks.append(Block(tag, "\n".join(lines).strip()))
            tag = match[1] or match[2] or match[3]
            lines = [match[4].strip()]
        else:
            lines.append(line)
    blocks.append(Block(tag, "\n".join(lines).strip()))
    return tuple(Block("Formula", b.text.replace("$", ""), b.text) if b.tag == "Formula" else b for b in blocks)


def read(folder):
    """The introduction of a folder's exports and the manual entry of each, by name."""
    return read_file(ROOT / "src" / folder / "exports.txt", {e.name for e in exports() if e.folder == folder})


def read_file(path, known):
    """The introduction and the entries of a file of manual texts. `known` are the names that may have one."""
    if not path.exists():
        return "", {}
    parts = re.split(r"^== (\w+)\s*$", path.read_text(), flags=re.M)
    entries = {}
    for name, text in zip(parts[1::2], parts[2::2]):
        if name not in known:
            raise ValueError(f"{path}: '{name}' has no row in its table; add the row first")
        if name in entries:
            raise ValueError(f"{path}: '{name}' is described twice")
        entries[name] = Entry(name, _blocks(text.strip()))
    return parts[0].strip(), entries


def gaps(export, entry):
    """What the entry of an export lacks, as a list of short texts."""
    lacks = []
    if not entry.brief.endswith(".") or len(entry.brief) > 100:
        lacks.append("a first line that is one sentence")
    described = {p.name: p for p in entry.parameters}
    for argument in export.arguments:
        if argument.name not in described:
            lacks.append(f"@param {argument.name}")
        elif not argument.written and described[argument.name].direction != "in":
            lacks.append(f"the right direction of {argument.name}")
    lacks += [f"no @param {name}, which is no argument" for name in described
              if name not in {a.name for a in export.arguments}]
    if export.result != "void" and not entry.section("return"):
        lacks.append("@return")
    lacks += [section for section in SECTIONS if not entry.section(section)]
    if entry.section("Example") and not entry.scalar_examples() and not entry.code_examples():
        lacks.append("an example that can be run")
    if any(len(line) > 100 for block in entry.blocks for line in block.text.splitlines()):
        lacks.append("lines of at most 100 columns")
    return lacks
