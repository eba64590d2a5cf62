"""The plots of results. matplotlib is needed here and nowhere else."""
import numpy as np

INSIDE, OUTSIDE, MUTED, BAND = "#1f5fa8", "#c23b22", "#56606d", "#dce8f5"


def axes(ax=None, rows=None):
    """The axes to draw on: the given ones, or those of a new figure high enough for ``rows`` lines."""
    try:
        import matplotlib.pyplot as plt
    except ImportError:
        raise ImportError("plots need matplotlib: install python3-matplotlib (Debian) or matplotlib (pip)") from None
    if ax is not None:
        return ax
    height = 4.0 if rows is None else 1.5 + 0.4 * max(rows, 2)
    return plt.subplots(figsize=(6.4, height), constrained_layout=True)[1]


def _lines(ax, names, title, label):
    """Named horizontal lines, the first one at the top, with 0 marked."""
    ax.set_yticks(range(len(names)), names)
    ax.set_ylim(len(names) - 0.5, -0.5)
    ax.axvline(0, color=MUTED, linestyle=":", zorder=0)
    ax.set_xlabel(label)
    ax.set_title(title, fontsize="medium")
    for side in ("top", "right"):
        ax.spines[side].set_visible(False)
    return ax


def _interval(ax, y, low, high, colour):
    """An interval with its ends; an infinite end is an arrow at the edge."""
    left, right = ax.get_xlim()
    ends = max(low, left), min(high, right)
    ax.plot(ends, (y, y), color=colour, linewidth=2, solid_capstyle="butt")
    ax.plot([e for e in (low, high) if np.isfinite(e)], [y] * int(np.isfinite([low, high]).sum()), "|", color=colour,
            markersize=10, markeredgewidth=2)
    for end, mark, there in ((low, "<", left), (high, ">", right)):
        if np.isinf(end):
            ax.plot(there, y, mark, color=colour, clip_on=False)


def _range(ax, values):
    values = np.append(np.asarray(values, dtype=float).ravel(), 0.0)
    values = values[np.isfinite(values)]
    margin = 0.08 * (np.ptp(values) or 1.0)
    ax.set_xlim(values.min() - margin, values.max() + margin)


def intervals(ax, rows, title, label):
    """Rows are (name, estimate, p, low, high); an interval that leaves 0 out is red."""
    rows = list(rows)
    ax = axes(ax, len(rows))
    _range(ax, [(r[1], r[3], r[4]) for r in rows])
    for y, (_, estimate, _, low, high) in enumerate(rows):
        colour = OUTSIDE if low > 0 or high < 0 else INSIDE
        _interval(ax, y, low, high, colour)
        ax.plot(estimate, y, "o", color=colour)
    return _lines(ax, [r[0] for r in rows], title, label)


def with_the_best(ax, rows, may, best, title):
    """Rows are (name, estimate, p, low, high); groups that cannot be the best are red."""
    ax = axes(ax, len(rows))
    _range(ax, [(r[1], r[3], r[4]) for r in rows])
    for y, ((_, estimate, _, low, high), possible) in enumerate(zip(rows, np.atleast_1d(may))):
        colour = INSIDE if possible else OUTSIDE
        _interval(ax, y, low, high, colour)
        ax.plot(estimate, y, "o", color=colour)
    return _lines(ax, [r[0] for r in rows], title, f"less the {best} mean of the others")


def empirical(ax, x, half, cdf, place, title):
    """The steps of sorted observations with a band of half-width ``half``, and a distribution function."""
    ax = axes(ax)
    margin = 0.1 * (x[-1] - x[0] or 1.0)
    ends = x[0] - margin, x[-1] + margin
    steps = np.arange(len(x) + 1.0) / len(x)
    at, heights = np.concatenate([[ends[0]], x, [ends[1]]]), np.append(steps, 1.0)
    ax.fill_between(at, np.clip(heights - half, 0, 1), np.clip(heights + half, 0, 1), step="post", color=BAND,
                    label="band")
    ax.step(at, heights, where="post", color=OUTSIDE, label="sample")
    grid = np.linspace(*ends, 400)
    ax.plot(grid, cdf(grid), color=INSIDE, label="distribution")
    ax.axvline(place, color=MUTED, linestyle=":", label="largest distance")
    ax.set_xlim(*ends)
    ax.set_ylim(-0.02, 1.02)
    ax.set_ylabel("probability")
    ax.set_xlabel("observation")
    ax.set_title(title, fontsize="medium")
    ax.legend(fontsize="small", loc="best", frameon=False)
    for side in ("top", "right"):
        ax.spines[side].set_visible(False)
    return ax


def distribution(ax, values, statistic, interval, title):
    """A histogram of resampled statistics with their interval."""
    ax = axes(ax)
    ax.hist(values, bins=min(60, max(10, int(np.sqrt(len(values))))), color=BAND, edgecolor=INSIDE, linewidth=0.4)
    ax.axvline(statistic, color=INSIDE, label="statistic")
    for end, label in ((interval.low, "interval"), (interval.high, None)):
        ax.axvline(end, color=OUTSIDE, linestyle="--", label=label)
    ax.set_xlabel("statistic")
    ax.set_ylabel("resamples")
    ax.set_title(title, fontsize="medium")
    ax.legend(fontsize="small", frameon=False)
    for side in ("top", "right"):
        ax.spines[side].set_visible(False)
    return ax


def power(ax, sizes, values, errors, title):
    """Power against size, with twice the standard error of the simulation."""
    ax = axes(ax)
    ax.errorbar(sizes, values, yerr=2 * errors, fmt="o-", color=INSIDE, capsize=3)
    ax.axhline(0.8, color=MUTED, linestyle=":")
    ax.set_ylim(0, 1.02)
    ax.set_xlabel("observations in each group")
    ax.set_ylabel("power")
    ax.set_title(title, fontsize="medium")
    for side in ("top", "right"):
        ax.spines[side].set_visible(False)
    return ax
