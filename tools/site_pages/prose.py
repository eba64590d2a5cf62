"""Plain texts of the manual as Markdown: special characters kept, names of exports and pages turned into links."""
import re

from hosts import table

from site_pages.tex import tex

NAMES = {e.name for e in table.functions()}
# Names that are also words or letters of mathematics are links only where they are called.
AMBIGUOUS = {"Beta", "Gamma", "QR", "LS", "OLS", "Erf", "Xb"}


def escape(text):
    return re.sub(r"([\\`*_{}\[\]<>#$])", r"\\\1", text)


def inline(text, here="", prefix=""):
    """One paragraph. `here` is the export of the page, `prefix` leads from the page to the folder of the reference."""
    def replace(match):
        word = match[0]
        if word.startswith("docs/"):
            return f"[]({'../' if not prefix else ''}{word[len('docs/'):]})"
        if word.startswith("`"):
            return word
        if word in NAMES and word != here and word not in AMBIGUOUS:
            return f"[`{word}`]({prefix}{word}.md)"
        return escape(word)
    return re.sub(r"`[^`\n]+`|docs/[\w/]+\.md|\b\w+\b|[^\w]", replace, text)


def code_words(text):
    """A line on equivalents: what looks like a call or a dotted name is set as code."""
    call = r"[A-Za-z_][\w.]*\((?:[^()]|\([^()]*\))*\)(?:\[\d\])?|(?:scipy|numpy|stats|base)\.[\w.]*\w"
    parts, end = [], 0
    for match in re.finditer(call, text):
        parts += [inline(text[end:match.start()]), f"`{match[0]}`"]
        end = match.end()
    return "".join(parts) + inline(text[end:])


def blocks(text, here="", prefix=""):
    """Several paragraphs; tables and indented code stay as they are."""
    lines, raw, before = [], False, ""
    for line in text.splitlines():
        raw = line.startswith("|") or (re.match(r" {4}", line) is not None and (raw or not before.strip())) or \
            (raw and not line.strip())
        lines.append(line if raw else inline(line, here, prefix))
        before = line
    return "\n".join(lines)


def sentences(text, here=""):
    """A list where lines end with a sentence or a sentence begins with a case ('x = 0: '), otherwise one paragraph."""
    items = [""]
    for line in text.splitlines():
        items[-1] += (" " if items[-1] else "") + line
        if line.endswith("."):
            items.append("")
    case = r"(?<=\.) (?=[\w, ]{1,20} (?:=|<|>|<=|>=) [^:.]{1,40}: )"
    items = [inline(piece, here) for item in items if item for piece in re.split(case, item)]
    return items[0] if len(items) == 1 else "\n".join("- " + item for item in items)


def formula(entry):
    """The formula, set as mathematics: one that stands alone as a display, others in the text."""
    pieces = entry.formula_pieces()
    if len(pieces) == 1 and pieces[0][0]:
        return f"$$\n{tex(pieces[0][1])}\n$$"
    text = "".join(f"\x02{tex(t)}\x03" if mathematics else inline(t, entry.name) for mathematics, t in pieces)
    # A line that is one formula is a display; elsewhere sums, integrals and fractions keep their full height.
    text = re.sub(r"^\x02([^\x03]*)\x03(\.?)$", r"\n$$\n\1\2\n$$\n", text, flags=re.M)
    return re.sub(r"\x02([^\x03]*)\x03", r"$\\displaystyle \1$", text)
