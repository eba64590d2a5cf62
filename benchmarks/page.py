"""The page of the benchmarks: a summary, a bar for each row with a peer, the tables, and how cost grows."""
import base64
import html
import io
import math

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

STYLE = """
body{font:15px/1.45 sans-serif;max-width:72em;margin:2em auto;padding:0 1em}
table{border-collapse:collapse;font-size:13px} td,th{border-bottom:1px solid #ddd;padding:2px 8px;text-align:left}
img{max-width:100%} pre{font-size:12px;overflow:auto}
.lane{width:26em;position:relative;height:1em;background:linear-gradient(90deg,transparent 49.8%,#888 49.8%,#888 50.2%,transparent 50.2%)}
.lane i{position:absolute;top:.1em;bottom:.1em} .ahead{background:#2a7f62} .level{background:#999} .behind{background:#b00020}
"""
REACH = 2.0  # a bar ends at 10^2


def bar(ratio, level):
    """A bar from the middle: to the right as much as we are faster, on a logarithmic scale."""
    length = max(-REACH, min(REACH, math.log10(ratio))) / REACH * 50
    kind = "ahead" if ratio > 1 / level else "behind" if ratio < level else "level"
    left, width = (50, length) if length >= 0 else (50 + length, -length)
    return f'<div class=lane><i class={kind} style="left:{left:.2f}%;width:{max(width, 0.4):.2f}%"></i></div>'


def table(rows):
    cells = ["".join(f"<{tag}>{html.escape(c)}</{tag}>" for c in r)
             for tag, r in zip(["th"] + ["td"] * len(rows), rows)]
    return "<table>" + "".join(f"<tr>{c}</tr>" for c in cells) + "</table>"


def growth(curves):
    figure, axes = plt.subplots(figsize=(8, 5))
    for label, points in curves:
        if len(points) > 1:
            axes.loglog(*zip(*points), "o-", label=label)
    axes.set_xlabel("size")
    axes.set_ylabel("nanoseconds")
    axes.legend(fontsize=8)
    buffer = io.BytesIO()
    figure.savefig(buffer, format="svg", bbox_inches="tight")
    plt.close(figure)
    return f'<img src="data:image/svg+xml;base64,{base64.b64encode(buffer.getvalue()).decode()}">'


def page(total, by_peer, why, intro, rows, tables, curves, extra, level=0.95):
    """The whole page. rows: (export, case, peer, ratio)."""
    parts = [f"<!doctype html><meta charset=utf-8><title>Benchmarks</title><style>{STYLE}</style><h1>Benchmarks</h1>",
             f"<p><b>{html.escape(total)}.</b></p>", table(by_peer),
             "<h2>Which rows are behind, and why</h2>", table(why),
             *[f"<p>{html.escape(line)}</p>" for line in intro],
             "<h2>A bar a row</h2><p>To the right this library is faster, to the left the peer is; the scale is "
             "logarithmic and ends at a factor of 100.</p><table><tr><th>export<th>case<th>peer<th>ratio<th></tr>"]
    parts += [f"<tr><td>{html.escape(export)}<td>{html.escape(case)}<td>{html.escape(peer)}<td>{ratio:.2f}"
              f"<td>{bar(ratio, level)}</tr>" for export, case, peer, ratio in rows]
    parts.append("</table>")
    for title, lines in tables:
        parts.append(f"<h2>{html.escape(title)}</h2>")
        if title == "How cost grows":
            parts.append(growth(curves))
        parts.append(table(lines))
    parts += [f"<h2>{html.escape(title)}</h2><pre>{html.escape(text)}</pre>" for title, text in extra]
    return "\n".join(parts) + "\n"
