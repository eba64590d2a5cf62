"""The colours of the report, each for light and for dark mode. Plots name a colour of the light column; on the page it
becomes a variable of the style sheet. The blues and the red are told apart with any kind of colour vision."""
import io
import re

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plt  # noqa: E402

PALETTE = {
    "paper": ("#ffffff", "#14181f"),
    "panel": ("#f4f6f9", "#1c222b"),
    "line": ("#d5dae1", "#36404d"),
    "ink": ("#1c2430", "#e6e9ee"),
    "soft": ("#56606d", "#a9b4c0"),
    "grey": ("#7b8794", "#8b97a5"),
    "navy": ("#08306b", "#c6dcf7"),
    "blue": ("#1f5fa8", "#7db3f0"),
    "mid": ("#4292c6", "#4f9bd6"),
    "sky": ("#9ecae1", "#3d6f97"),
    "pale": ("#dce8f5", "#24384f"),
    "red": ("#c23b22", "#ff8a70"),
    "green": ("#1a6b3c", "#6fcf97"),
}
INK, SOFT, GREY, NAVY, BLUE, MID, SKY, PALE, RED = (
    PALETTE[name][0] for name in ("ink", "soft", "grey", "navy", "blue", "mid", "sky", "pale", "red"))

plt.rcParams.update({
    "svg.fonttype": "path", "svg.hashsalt": "tour", "font.size": 10, "axes.titlesize": 10, "legend.fontsize": 9,
    "figure.figsize": (8, 4), "figure.constrained_layout.use": True, "savefig.transparent": True,
    "axes.spines.top": False, "axes.spines.right": False, "axes.grid": True, "grid.alpha": 0.3, "grid.color": GREY,
    "axes.prop_cycle": plt.cycler(color=[BLUE, RED, NAVY, MID, GREY]),
    "text.color": INK, "axes.labelcolor": INK, "axes.edgecolor": SOFT, "xtick.color": SOFT, "ytick.color": SOFT,
    "xtick.labelcolor": INK, "ytick.labelcolor": INK, "legend.frameon": False})

_VARIABLES = {light: name for name, (light, _) in PALETTE.items()} | {"#000000": "ink"}


def drawing(figure, prefix, **options):
    """The figure as an SVG element. Colours of the palette are variables; identifiers begin with the prefix, because each
    figure numbers its own."""
    buffer = io.StringIO()
    figure.savefig(buffer, format="svg", metadata={"Date": None}, **options)
    svg = buffer.getvalue()
    svg = re.sub(r"\s*<metadata>.*?</metadata>|<style .*?</style>", "", svg[svg.index("<svg"):], flags=re.S)
    svg = re.sub(r'(id="|href="#|url\(#)', lambda m: f"{m[1]}{prefix}-", svg)
    return re.sub(r"(?<=: )#[0-9a-f]{6}\b", lambda m: f"var(--{_VARIABLES[m[0]]})" if m[0] in _VARIABLES else m[0], svg)


def variables():
    """The style sheet's part that gives the variables their values."""
    light, dark = ("".join(f"--{name}:{both[mode]};" for name, both in PALETTE.items()) for mode in (0, 1))
    return f":root{{color-scheme:light dark;{light}}}\n@media(prefers-color-scheme:dark){{:root{{{dark}}}}}\n"
