"""Reads the signature table (src/frame/exports.def); every Python tool takes the exports from here."""
import re
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TABLE = ROOT / "src" / "frame" / "exports.def"
FAILURES = ("Silent", "Throws", "Status", "InBand", "None")
THREADS = ("Reentrant", "Workspace", "Handle")


@dataclass(frozen=True)
class Argument:
    type: str
    name: str

    @property
    def written(self):
        return self.type.endswith("*") and not self.type.startswith("const")


@dataclass(frozen=True)
class Export:
    folder: str
    name: str
    result: str
    arguments: tuple
    failures: tuple  # of FAILURES
    threads: tuple  # of THREADS


def _argument(text):
    match = re.fullmatch(r"((?:const )?\w+\*?) (\w+)", text.strip())
    if not match:
        raise ValueError(f"{TABLE.name}: cannot read the argument '{text}'; write 'type name'")
    return Argument(*match.groups())


def _words(name, column, text, known):
    words = tuple(text.split("|"))
    for word in words:
        if word not in known:
            raise ValueError(f"{TABLE.name}: {name}: {column} '{word}' is none of {', '.join(known)}")
    return words


def exports():
    """All rows of the table, in order."""
    rows = []
    pattern = re.compile(r"EXPORT\((\w+),\s*(\w+),\s*([\w*]+),\s*\(([^)]*)\),\s*([\w|]+),\s*([\w|]+)\)")
    for text in re.findall(r"^EXPORT\(.*?\)\s*$", TABLE.read_text(), re.M | re.S):
        match = pattern.fullmatch(text.strip())
        if not match:
            raise ValueError(f"{TABLE.name}: not a row of the form EXPORT(folder, name, result, "
                             f"(arguments), failure, threads): {text}")
        folder, name, result, arguments, failure, threads = match.groups()
        rows.append(Export(folder, name, result, tuple(_argument(a) for a in arguments.split(",")),
                           _words(name, "failure", failure, FAILURES), _words(name, "threads", threads, THREADS)))
    names = [row.name for row in rows]
    if len(set(names)) != len(names):
        raise ValueError(f"{TABLE.name}: a name stands twice")
    return rows


def folders():
    """The folders that own exports, in the order of the table."""
    return list(dict.fromkeys(row.folder for row in exports()))
