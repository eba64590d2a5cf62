#!/usr/bin/env python3
"""Writes what the manual says about failures as a table for the fuzz driver.

    documented.py FILE

One row for each export: the values of errno, the classes of exceptions with the texts quoted for them, the statuses,
and which fields of a descriptor are read.
"""
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
from manual import read  # noqa: E402
from signature_table import exports, folders  # noqa: E402

CLASSES = ("std::domain_error", "std::overflow_error", "boost::math::evaluation_error", "boost::math::rounding_error")


def failure_of(name, entries):
    """The section Failure, with that of the export to which 'As Name' points in front of it."""
    text = " ".join(entries[name].section("Failure").split())
    other = re.match(r"As (?:for )?([A-Z]\w+)\b", text)
    text = (failure_of(other[1], entries) + " " if other else "") + text
    return re.sub(r"with the texts of (\w+)", lambda match: failure_of(match[1], entries), text)


def quoted_texts(failure):
    """[(class, fragments)]: every quoted text belongs to the class that was named last before it."""
    found, current = [], None
    for match in re.finditer(r'"([^"]*)"|(' + "|".join(CLASSES) + r")|\bthe same (?:for|with) (\w)\b", failure):
        text, named, letter = match.groups()
        if named:
            current = named
        elif text and not text.endswith("::"):  # 'Every text begins ...' is no text by itself
            found.append((current, tuple(piece.strip() for piece in text.split("...") if piece.strip(" .:"))))
        elif found:
            # 'the same for b': the text before it with the other argument's name.
            last, fragments = found[-1]
            found.append((last, tuple(re.sub(r"\b([Aa]rgument|Parameter) \w\b", rf"\1 {letter}", piece)
                                      for piece in fragments)))
    return [(named, fragments) for named, fragments in found if named]


def literal(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def row(export, entries):
    entry = entries[export.name]
    failure = failure_of(export.name, entries)
    told = failure + " " + (entry.section("Edges") or "")
    texts = quoted_texts(failure) if "Throws" in export.failures else []
    if "Silent" in export.failures and "Throws" in export.failures:
        texts.append(("boost::math::rounding_error", ()))
    silent = "Silent" in export.failures
    memory = "std::bad_alloc" in failure or not entry.section("Memory").startswith("None")
    statuses = []
    if export.result == "int32_t":
        statuses = re.findall(r"(?<![\w.])-\d+\b", failure + " " + entry.section("return"))
    views = []
    for parameter in entry.parameters:
        if parameter.name.lower().endswith("descriptor"):
            views.append(f'{{{literal(parameter.name)}, {str("offset honoured" in parameter.text).lower()}, '
                         f'{str(bool(re.search(r"rows = ", parameter.text))).lower()}, '
                         f'{str(bool(re.search(r"columns = ", parameter.text))).lower()}}}')
    pieces = ", ".join(f'{{{literal(named)}, {{{", ".join(map(literal, fragments))}}}}}' for named, fragments in texts)
    return (f'{{{literal(export.name)}, {str(silent and bool(re.search("errno 33|sets errno", told))).lower()}, '
            f'{str(silent and bool(re.search("errno (to )?34", told))).lower()}, {str(memory).lower()}, '
            f'{str(bool(re.search(r"> 0|Above 0", failure))).lower()}, {{{", ".join(statuses)}}}, '
            f'{{{pieces}}}, {{{", ".join(views)}}}}},')


def main():
    entries = {}
    for folder in folders():
        entries.update(read(folder)[1])
    lines = ["// Made by tests/fuzz/documented.py from the manual texts."]
    lines += [row(export, entries) for export in exports()]
    Path(sys.argv[1]).write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
