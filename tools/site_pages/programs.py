"""The programs of the pages: one task in several languages, with what all of them print."""
import re

from signature_table import ROOT

LANGUAGES = (("Python", "py", "python"), ("C", "c", "c"), ("C++", "cpp", "cpp"), ("C#", "cs", "csharp"), ("R", "R", "r"))
FOLDERS = (ROOT / "docs" / "site" / "examples", ROOT / "examples" / "hosts")


def sources(task):
    """[(language, lexer, file)]"""
    found = [(language, lexer, folder / f"{task}.{ending}") for language, ending, lexer in LANGUAGES
             for folder in FOLDERS if (folder / f"{task}.{ending}").exists()]
    if not found:
        raise FileNotFoundError(f"there is no program of the task '{task}'")
    return found


def shown(file):
    """The program without the lines at its end that say what it prints."""
    return re.split(r"^.*prints:$", file.read_text(), flags=re.M)[0].rstrip()


def printed(task):
    """What all programs of a task print."""
    text = ROOT / "docs" / "site" / "examples" / f"{task}.txt"
    if text.exists():
        return text.read_text().rstrip()
    source = next(file for _, _, file in sources(task) if "prints:" in file.read_text())
    return re.sub(r'(?:"""|\*/|"\))\s*$', "", re.split(r"^.*prints:$", source.read_text(), flags=re.M)[1]).strip()


def tabs(task, only=None):
    """The programs as tabs, and their output."""
    parts = []
    for language, lexer, file in sources(task):
        if only is None or language == only:
            code = f"```{lexer}\n{shown(file)}\n```"
            parts.append(code if only else f"````{{tab}} {language}\n{code}\n````")
    return "\n".join(parts) + f"\n\n{'It prints' if only else 'Each of them prints'}\n\n```text\n{printed(task)}\n```"
