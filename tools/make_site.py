#!/usr/bin/env python3
"""Makes the sources of the manual's pages and builds the pages from them.

    make_site.py [LIBRARY]      build/docs/html/index.html; without a library there are no plots

The pages come from four places: docs/site (written for the pages alone), docs/*.md and docs/accuracy/*.md, the top folder
(CHANGELOG.md, CONTRIBUTING.md), and the manual texts of the exports. Each text has its home there and is copied.
"""
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from site_pages import packages, plots, programs, reference
from signature_table import ROOT

BUILD = ROOT / "build" / "docs"
PAGES, STATIC, HTML = BUILD / "pages", BUILD / "static", BUILD / "html"
MATHJAX = Path("/usr/share/javascript/mathjax")
NORMALIZE = Path("/usr/share/javascript/normalize.css/normalize.css")
# What TeX input and HTML output of MathJax load; all of it together would be 50 MB.
MATHJAX_PARTS = ("MathJax.js", "config/TeX-AMS_CHTML.js", "extensions", "jax/element", "jax/input/TeX",
                 "jax/output/CommonHTML", "fonts/HTML-CSS/TeX/woff", "fonts/HTML-CSS/TeX/otf")
FROM_TOP = ("CHANGELOG.md", "CONTRIBUTING.md", "THIRD_PARTY_NOTICES.md")
# The overview of the exports is the reference itself here; decisions and the rest come as they are.
NOT_SHOWN = ("exports.md",)
# Plots below the title of pages that are copied.
PLOTS = {"benchmarks.md": "benchmarks", "exports.md": "accuracy-summary", "kolmogorov.md": "kolmogorov-regions",
         "multiple_comparison.md": "comparison-error"}


def put(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)


def copy_with_links(source, target, made):
    """A page with its links: to another page they stay, to a file outside docs/ they lead to a copy of the file."""
    def replace(match):
        label, address = match.groups()
        if re.match(r"\w+:|#", address):
            return match[0]
        path, _, anchor = address.partition("#")
        file = (source.parent / path).resolve()
        if not file.exists():
            raise FileNotFoundError(f"{source.relative_to(ROOT)}: the link to '{address}' leads nowhere")
        inside = page_of(file)
        if inside is None:
            inside = PAGES / "files" / file.relative_to(ROOT)
            inside.parent.mkdir(parents=True, exist_ok=True)
            if file.is_file():
                shutil.copyfile(file, inside)
            return f"{{download}}`{label.strip('`')} <{os.path.relpath(inside, target.parent)}>`" if file.is_file() \
                else label
        return f"[{label}]({os.path.relpath(inside, target.parent)}{'#' + anchor if anchor else ''})"
    text = re.sub(r"(?<!!)\[([^\]\n]+)\]\(([^)\s]+)\)", replace, source.read_text())
    if source.name in PLOTS:
        text = with_plots(re.sub(r"^(# .*)$", rf"\1\n\n{{plot}} {PLOTS[source.name]}", text, count=1, flags=re.M),
                          target.relative_to(PAGES), made)
    put(target, text)


def page_of(file):
    """Where a file of the repository is a page, or None."""
    docs = ROOT / "docs"
    if file.parent == ROOT and file.name in FROM_TOP:
        return PAGES / "project" / file.name
    if file == docs / "exports.md":
        return PAGES / "reference" / "index.md"
    if file.suffix == ".md" and docs in file.parents and docs / "site" not in file.parents:
        return PAGES / file.relative_to(docs)
    return None


def with_programs(text):
    """{programs} TASK [LANGUAGE]: the programs of a task in tabs, or the one of a language, and their output."""
    return re.sub(r"^\{programs\} (\S+) ?(\S*)$", lambda m: programs.tabs(m[1], m[2] or None), text, flags=re.M)


def with_plots(text, path, made):
    """{plot} NAME CAPTION: the plot for light and for dark pages, with its alternative text and the caption."""
    def replace(match):
        name, caption = match.groups()
        if made is None:
            return ""
        if name not in made:
            raise KeyError(f"{path}: there is no plot '{name}'")
        up = os.path.relpath(STATIC / "plots", PAGES / Path(path).parent)
        assert '"' not in made[name], name
        pictures = [f":::{{image}} {up}/{name}-{mode}.svg\n:alt: \"{made[name]}\"\n:class: only-{mode} plot\n:width: 100%\n:::"
                    for mode in ("light", "dark")]
        return "\n\n".join(pictures) + (f"\n\n:::{{rst-class}} plot-caption\n:::\n{caption}\n" if caption else "")
    return re.sub(r"^\{plot\} (\S+) ?(.*)$", replace, text, flags=re.M)


def with_pages(text):
    """{pages} FOLDER: the pages of docs/FOLDER that the list does not name, in the order of their names."""
    def replace(match):
        folder = ROOT / "docs" / match[1]
        listed = set(re.findall(r"^[\w/-]+$", text, re.M))
        names = [f.stem for f in sorted(folder.glob("*.md")) if f.name not in NOT_SHOWN or match[1] != "."]
        return "\n".join(name for name in names if name not in listed)
    return re.sub(r"^\{pages\} (\S+)$", replace, text, flags=re.M)


def collect(made):
    shutil.rmtree(PAGES, ignore_errors=True)
    texts = reference.pages(plots.of_page if made is not None else lambda name: ())
    texts |= packages.pages()
    for file in sorted((ROOT / "docs" / "site").rglob("*")):
        inside = file.relative_to(ROOT / "docs" / "site")
        if file.suffix == ".md":
            texts[str(inside)] = with_pages(with_programs(file.read_text()))
    for path, text in texts.items():
        put(PAGES / path, with_plots(text, path, made))
    for file in [*sorted((ROOT / "docs").glob("*.md")), *sorted((ROOT / "docs" / "accuracy").glob("*.md")),
                 *(ROOT / name for name in FROM_TOP)]:
        if file.name not in NOT_SHOWN or file.parent.name == "accuracy":
            copy_with_links(file, page_of(file), made)


def copy_mathjax():
    target = STATIC / "mathjax"
    if target.exists():
        return
    for part in MATHJAX_PARTS:
        source = MATHJAX / part
        if source.is_dir():
            shutil.copytree(source, target / part)
        else:
            (target / part).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(source, target / part)


def mend_theme():
    """Debian's Furo asks the web server for normalize.css, loads a module as a plain script, and lacks the rules for a system
    that is set to dark. Pages from the disk need all of it beside them."""
    styles, scripts = HTML / "_static" / "styles", HTML / "_static" / "scripts"
    wanted = "@import url(/javascript/normalize.css/normalize.css);"
    css = (styles / "furo.css").read_text()
    css = css.replace(wanted, NORMALIZE.read_text())
    if "prefers-color-scheme" not in css:
        dark = re.search(r'body\[data-theme="dark"\] \{[^}]*\}\s*html body\[data-theme="dark"\] \.only-light \{[^}]*\}\s*'
                         r'body\[data-theme="dark"\] \.only-dark \{[^}]*\}', css)[0]
        dark = dark.replace('[data-theme="dark"]', ':not([data-theme="light"])')
        css += f"\n@media not print {{ @media (prefers-color-scheme: dark) {{\n{dark}\n}} }}\n"
    (styles / "furo.css").write_text(css)
    module = 'import Gumshoe from "./gumshoe-patched.js";'
    script = (scripts / "furo.js").read_text()
    if module in script:
        (scripts / "furo.js").write_text((scripts / "gumshoe-patched.js").read_text() +
                                         script.replace(module, "const Gumshoe = window.Gumshoe;"))


def main(arguments):
    if len(arguments) > 1:
        sys.exit(__doc__)
    STATIC.mkdir(parents=True, exist_ok=True)
    copy_mathjax()
    made = plots.make_all(arguments[0], STATIC / "plots") if arguments else None
    collect(made)
    shutil.rmtree(HTML, ignore_errors=True)
    result = subprocess.run(["/usr/bin/python3", "-m", "sphinx", "-W", "--keep-going", "-q", "-j", "2", "-b", "html",
                             "-d", str(BUILD / "doctrees"), "-c", str(ROOT / "docs" / "site"), str(PAGES), str(HTML)],
                            cwd=ROOT)
    if result.returncode == 0:
        mend_theme()
    sys.exit(result.returncode)


main(sys.argv[1:])
