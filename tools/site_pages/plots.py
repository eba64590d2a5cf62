"""The plots of the pages: SVG as wide as the text, once for light and once for dark pages.

A module plot_*.py registers its plots with @plot(name, text). The text is what a reader hears who does not see the plot.
"""
import hashlib
import importlib
import multiprocessing
import os
import re
from pathlib import Path

from signature_table import ROOT

# A palette for colour-blind readers, with enough contrast on a light page; series differ in line style or marker too.
COLOURS = ["#0063a5", "#b34700", "#00755a", "#8a3b7a", "#5c5c5c"]
INK, FAINT = "#22262b", "#d5d9de"
# The same on a dark page.
DARK = {"#0063a5": "#6cb8f0", "#b34700": "#f0a050", "#00755a": "#4fd1a5", "#8a3b7a": "#e29fd0", "#5c5c5c": "#b8b8b8",
        INK: "#d5d9de", FAINT: "#3a4048"}
LINES = ["-", "--", "-.", ":"]
MARKERS = ["o", "s", "^", "D"]
MODULES = ("plot_laws", "plot_tasks", "plot_accuracy", "plot_exact")

_plots = {}  # name: (function, text)
_pages = {}  # export or family: [(plot, caption)]


def plot(name, text, pages=(), caption=""):
    """Registers a function of the core that returns a figure; `pages` names exports and families that show it."""
    def register(function):
        _plots[name] = (function, text)
        for page in pages:
            _pages.setdefault(page, []).append((name, caption))
        return function
    return register


def of_page(name):
    return _pages.get(name, ())


def axes(rows=1, columns=1, height=2.9, **options):
    import matplotlib.pyplot as plt
    figure, made = plt.subplots(rows, columns, figsize=(6.9, height), layout="constrained", **options)
    return figure, made


def label(axis, title=None, x=None, y=None, legend=False):
    if title:
        axis.set_title(title, fontsize="medium", loc="left")
    if x:
        axis.set_xlabel(x)
    if y:
        axis.set_ylabel(y)
    if legend:
        axis.legend(frameon=False, fontsize="small")


def _style():
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    plt.rcParams.update({
        "font.size": 11, "svg.fonttype": "path", "svg.hashsalt": "orvanth", "savefig.transparent": True,
        "text.color": INK, "axes.labelcolor": INK, "axes.edgecolor": INK, "xtick.color": INK, "ytick.color": INK,
        "axes.titlecolor": INK, "axes.spines.top": False, "axes.spines.right": False, "axes.grid": True,
        "grid.color": FAINT, "grid.linewidth": 0.6, "axes.axisbelow": True, "lines.linewidth": 1.8,
        "axes.prop_cycle": plt.cycler(color=COLOURS), "figure.facecolor": "none", "axes.facecolor": "none"})
    return plt


def _draw(task):
    name, library, folder = task
    from host import Core
    plt = _style()
    figure = _plots[name][0](Core(library))
    path = os.path.join(folder, f"{name}-light.svg")
    figure.savefig(path, metadata={"Date": None})
    plt.close(figure)
    with open(path) as file:
        text = file.read()
    with open(os.path.join(folder, f"{name}-dark.svg"), "w") as file:
        file.write(re.sub("|".join(DARK), lambda m: DARK[m[0]], text))


def _state(library):
    sources = [Path(library), *Path(__file__).parent.glob("plot*.py"), ROOT / "docs" / "benchmarks.md",
               *sorted((ROOT / "tests" / "data" / "accuracy").glob("*.tsv")), *sorted((ROOT / "docs" / "site" / "examples").glob("*.py"))]
    parts = b"".join(hashlib.sha256(path.read_bytes()).digest() for path in sources)
    return hashlib.sha256(parts + repr({name: text for name, (_, text) in _plots.items()}).encode()).hexdigest()


def make_all(library, folder):
    """{name of the plot: its alternative text}; the files are NAME-light.svg and NAME-dark.svg."""
    for module in MODULES:
        made = importlib.import_module("site_pages." + module)
        if hasattr(made, "prepare"):
            made.prepare(library)
    os.makedirs(folder, exist_ok=True)
    texts = {name: text for name, (_, text) in _plots.items()}
    # Drawn again only if the library, the data or the drawing changed.
    stamp, wanted = os.path.join(folder, "stamp"), _state(library)
    if os.path.exists(stamp) and open(stamp).read() == wanted:
        return texts
    for old in os.listdir(folder):
        os.remove(os.path.join(folder, old))
    with multiprocessing.get_context("fork").Pool(2) as pool:
        for _ in pool.imap_unordered(_draw, [(name, library, folder) for name in _plots], chunksize=4):
            pass
    with open(stamp, "w") as file:
        file.write(wanted)
    return texts
