"""The programs of the pages: one task in several languages, with what all of them print."""
import re

from signature_table import ROOT

LANGUAGES = (("Python", "py", "python"), ("C", "c", "c"), ("C++", "cpp", "cpp"), ("C#", "cs", "csharp"), ("R", "R", "r"))
FOLDERS = (ROOT / "docs" / "site" / "examples", ROOT / "examples" / "hosts")


def sources(task):
    """[(language, lexer, file)]; a program written for the pages goes before one of the README."""
    found = []
    for language, ending, lexer in LANGUAGES:
        files = [folder / f"{task}.{ending}" for folder in FOLDERS if (folder / f"{task}.{ending}").exists()]
        found += [(language, lexer, file) for file in files[:1]]
    if not found:
        raise FileNotFoundError(f"there is no program of the task '{task}'")
    return found


def shown(file):
    """The program without the lines at its end that say what it prints."""
    return re.split(r"^.*prints:$", file.read_text(), flags=re.M)[0].rstrip()


def printed(task, file):
    """What a program prints: the text beside it, or the lines at its end."""
    text = ROOT / "docs" / "site" / "examples" / f"{task}.txt"
    if text.exists():
        return text.read_text().rstrip()
    said = re.split(r"^.*prints:$", file.read_text(), flags=re.M)[1]
    return re.sub(r'\n(?:"""|\*/|"\))\s*$', "", said).strip("\n")


def tabs(task, only=None):
    """The programs as tabs, or the one of a language, and their output."""
    chosen = [source for source in sources(task) if only in (None, source[0])]
    outputs = {printed(task, file) for _, _, file in chosen}
    if len(outputs) != 1:
        raise ValueError(f"the programs of '{task}' print different things and cannot share a page")
    blocks = [(language, f"```{lexer}\n{shown(file)}\n```") for language, lexer, file in chosen]
    code = blocks[0][1] if only else "\n".join(f"````{{tab}} {name}\n{text}\n````" for name, text in blocks)
    return f"{code}\n\n{'It prints' if only else 'Each of them prints'}\n\n```text\n{outputs.pop()}\n```"
