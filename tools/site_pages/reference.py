"""The reference: an overview by family, a page for each family, a page for each export, and the page of the shield."""
import csv

import manual
from generate_interface import threads_text
from hosts import dotnet, python, r, table
from signature_table import ROOT, exports, folders

from site_pages import prose

SITE = ROOT / "docs" / "site"
TITLES = {"special": "Special functions", "distributions": "Classical distributions",
          "kolmogorov": "Kolmogorov's distribution", "multiple_comparison": "Multiple comparisons",
          "noncentral_hypergeometric": "Noncentral hypergeometric distribution", "linalg": "Linear algebra",
          "random": "Random numbers", "optimise": "Minimisation under bounds"}
FAILURES = {"Silent": "NaN or infinity, `errno` 33 or 34", "Throws": "C++ exception", "Status": "integer status",
            "InBand": "reserved value", "None": "none reported"}
RULES = {"Reentrant": "reentrant", "Workspace": "one call at a time", "Handle": "one thread a handle"}


def title(folder):
    return TITLES.get(folder, folder.replace("_", " ").capitalize())


def synonyms():
    """[(term, what it is, names of exports or pages)] of docs/site/synonyms.tsv."""
    with open(SITE / "synonyms.tsv", newline="") as file:
        rows = [row for row in csv.reader(file, delimiter="\t") if row and not row[0].startswith("#")]
    return [(term, text, places.split()) for term, text, places in rows]


def link(place, prefix):
    """A link to an export, or to a page of the site given by its path and the title that it has."""
    if place in prose.NAMES:
        return f"[`{place}`]({prefix}reference/{place}.md)"
    return f"[]({prefix}{place}.md)"


def failure(export):
    return " or ".join(FAILURES[f] for f in export.failures)


def declaration(export):
    arguments = [f"{a.type} {a.name}" for a in export.arguments]
    one_line = f"{export.result} {export.name}({', '.join(arguments)});"
    if len(one_line) <= 76:
        return one_line
    return f"{export.result} {export.name}(\n    " + ",\n    ".join(arguments) + ");"


def host_names(export):
    """[(host, how the export is called there)]"""
    plain = f"`{export.name}` in `orvanth/{export.folder}.h`; " if export in exports() else ""
    found = [("C, C++", f"{plain}`Safe{export.name}` in `orvanth/shield.h`")]
    if table.has_array_form(export):
        found.append(("Python", f"`orvanth.{python.snake(export.name)}`"))
        found.append(("C#", "`" + ".".join(dotnet.place(export)) + "`"))
        found.append(("R", f"`{r.Function(export).name}`"))
    else:
        found.append(("Python, C#, R", "in the form of the [language packages](../hosts.md)"))
    return found


def plot_lines(plots):
    return [text for name, caption in plots for text in (f"{{plot}} {name} {caption}", "")]


def example(entry):
    if entry.scalar_examples():
        width = max(len(call) for call, _ in entry.scalar_examples())
        lines = [f"{call:{width}} = {value}" for call, value in entry.scalar_examples()]
        return "```text\n" + "\n".join(lines) + "\n```"
    parts = []
    for code, printed in entry.code_examples():
        lines = code.rstrip().splitlines()
        indent = min(len(line) - len(line.lstrip()) for line in lines if line.strip())
        parts.append("```c\n" + "\n".join(line[indent:] for line in lines) + "\n```")
        if printed:
            parts.append("It prints\n\n```text\n" + "\n".join(printed).strip("\n") + "\n```")
    return "\n\n".join(parts)


def export_page(export, entry, plots=()):
    here = export.name
    opening = entry.blocks[0].text.split("\n", 1)
    lines = [f"# {here}", "", prose.inline(opening[0], here), "",
             f"```c\n{declaration(export)}\n```", ""]
    if len(opening) > 1:
        lines += [prose.blocks(opening[1].strip(), here), ""]
    lines += plot_lines(p for p in plots if p[0].startswith("law-"))
    lines += ["## Formula", "", prose.formula(entry), ""]
    lines += ["## Parameters", ""]
    directions = {p.name: p.direction for p in entry.parameters}
    for parameter in entry.parameters:
        way = {"in": "", "out": ", written", "in,out": ", read and written"}[directions[parameter.name]]
        kind = next(a.type for a in export.arguments if a.name == parameter.name)
        lines += [f"`{parameter.name}` ({prose.escape(kind)}{way})",
                  f": {prose.inline(' '.join(parameter.text.split()), here)}", ""]
    if entry.section("return"):
        lines += [f"**Returns** {prose.inline(' '.join(entry.section('return').split()), here)}", ""]
    lines += ["## Edges", "", prose.sentences(entry.section("Edges"), here), "",
              "## Failure", "", f"Form: {failure(export)}.", "", prose.sentences(entry.section("Failure"), here), "",
              "## Threads", "", prose.inline(" ".join(threads_text(export).split()), here), "",
              "## Memory", "", prose.inline(" ".join(entry.section("Memory").split()), here), "",
              "## Accuracy", "", prose.inline(" ".join(entry.section("Accuracy").split()), here), ""]
    lines += plot_lines(p for p in plots if not p[0].startswith("law-"))
    lines += ["## Equivalents", ""]
    equivalents, current = [], ""
    for line in entry.section("Equivalents").splitlines():
        if line.split(":")[0] in ("R", "SciPy") and ":" in line:
            equivalents.append(line)
        elif equivalents:
            equivalents[-1] += " " + line
        else:
            current += " " + line
    lines += [current.strip()] if current.strip() else []
    lines += ["- " + prose.code_words(line) for line in equivalents]
    lines += ["", "## Example", "", example(entry), ""]
    lines += ["## In each language", "", "| language | name |", "|---|---|"]
    lines += [f"| {host} | {name} |" for host, name in host_names(export)]
    lines += ["", "## Source", "", prose.inline(" ".join(entry.section("Source").split()), here), ""]
    terms = [term for term, _, places in synonyms() if here in places]
    if terms:
        lines += [f"Also searched for as: {prose.escape(', '.join(terms))}.", ""]
    return "\n".join(lines)


def family_page(folder, introduction, entries, plots=()):
    lines = [f"# {title(folder)}", "", f"Header `orvanth/{folder}.h`.", "", prose.blocks(introduction), "",
             "| export | what it does | failure | threads |", "|---|---|---|---|"]
    for export in exports():
        if export.folder == folder:
            rule = ", ".join(RULES[t] for t in export.threads)
            brief = prose.inline(entries[export.name].brief, export.name)
            lines.append(f"| [`{export.name}`]({export.name}.md) | {brief} | {failure(export)} | {rule} |")
    lines.append("")
    lines += plot_lines(plots)
    lines += ["```{toctree}", ":hidden:", ""] + [e.name for e in exports() if e.folder == folder] + ["```", ""]
    return "\n".join(lines)


def index_page():
    lines = ["# Reference", "", f"The {len(exports())} exports by family. A page says how to call the export, what it "
             "gives at every edge, how it fails, which threads may call it, how accurate it is and what R and SciPy "
             "call it.", ""]
    for folder in folders():
        entries = manual.read(folder)[1]
        lines += [f"## {title(folder)}", "", f"All of this family: [{title(folder)}]({folder}.md).", "",
                  "| export | what it does |", "|---|---|"]
        lines += [f"| [`{e.name}`]({e.name}.md) | {prose.inline(entries[e.name].brief, e.name)} |"
                  for e in exports() if e.folder == folder]
        lines.append("")
    if table.refined():
        lines += ["## Refined forms", "", "In the shield alone: [Refined forms](refined.md).", ""]
    lines += ["```{toctree}", ":hidden:", ""] + folders() + (["refined"] if table.refined() else []) + ["```", ""]
    return "\n".join(lines)


def refined_page():
    entries = table.manual_entries()
    lines = ["# Refined forms", "", "Functions of [the shield](../shield.md), beside the exports of "
             "[multiple comparisons](multiple_comparison.md).", "", prose.blocks(table.refined_introduction()), "",
             "| function | what it does |", "|---|---|"]
    lines += [f"| [`{f.name}`]({f.name}.md) | {prose.inline(entries[f.name].brief, f.name)} |" for f in table.refined()]
    lines += ["", "```{toctree}", ":hidden:", ""] + [f.name for f in table.refined()] + ["```", ""]
    return "\n".join(lines)


def shield_page():
    lines = ["# The shield", "",
             "`libOrvanth.Core.Math.Shield.so` is the library that hosts bind. No exception leaves it. "
             "[Hosts](hosts.md) tells how a host uses it; this page lists what it has beside the exports. "
             "The header is `orvanth/shield.h`.", "",
             "## Functions of its own", "", "| function | what it does |", "|---|---|"]
    for own in table.own_functions():
        arguments = ", ".join(f"{a.type} {a.name}" for a in own.arguments) or "void"
        lines.append(f"| `{own.result} {own.name}({arguments})` | {prose.inline(own.sentence, prefix='reference/')} |")
    lines += ["", "## Kinds of failure", "", "| status | name | meaning |", "|---|---|---|"]
    lines += [f"| {s.value} | `{s.name}` | {prose.escape(s.words)} |" for s in table.statuses()]
    lines += ["", "## Values that stand for no result", "", "| export | value | what LastErrorText says |",
              "|---|---|---|"]
    for export in exports():
        if table.reserved(export):
            value, words = table.reserved(export)
            lines.append(f"| [`{export.name}`](reference/{export.name}.md) | {value} | {prose.escape(words)} |")
    lines += ["", "## Where an integer status comes from", "",
              "A negative status -i of LAPACK names argument i of the routine behind the export. A positive status is i "
              "in the last column.", "",
              "| export | routine | its arguments, from 1 | a positive status |", "|---|---|---|---|"]
    for export in exports():
        if table.info(export):
            routine, names, meaning = table.info(export)
            lines.append(f"| [`{export.name}`](reference/{export.name}.md) | `{routine}` | "
                         f"{prose.escape(names.replace(',', ', '))} | {prose.escape(meaning.replace('%', 'i')) or 'none'} |")
    lines += ["", "## Forms over arrays", "",
              "`Each<Export>` calls the export for each element of strided arrays. These exports have one: "
              + ", ".join(f"[`{e.name}`](reference/{e.name}.md)" for e in exports() if table.has_array_form(e)) + ".",
              ""]
    return "\n".join(lines)


def glossary_page():
    lines = ["# Words and names", "",
             "Words of the field, names of people and other names of the same thing, with the pages that answer them.", ""]
    for term, text, places in sorted(synonyms(), key=lambda row: row[0].lower()):
        links = ", ".join(link(place, "") for place in places)
        lines += [prose.escape(term), f": {prose.escape(text)} See {links}.", ""]
    return "\n".join(lines)


def pages(plots):
    """{path below the site's root: text}; plots(export or family name) gives the plots of a page."""
    found = {"reference/index.md": index_page(), "shield.md": shield_page(), "glossary.md": glossary_page()}
    for folder in folders():
        introduction, entries = manual.read(folder)
        found[f"reference/{folder}.md"] = family_page(folder, introduction, entries, plots(folder))
        for export in exports():
            if export.folder == folder:
                found[f"reference/{export.name}.md"] = export_page(export, entries[export.name], plots(export.name))
    for function in table.refined():
        found["reference/refined.md"] = refined_page()
        found[f"reference/{function.name}.md"] = export_page(function, table.manual_entries()[function.name])
    return found
