"""Each result's plot, drawn without a screen."""
import sys

import data
import numpy as np
import pytest
from orvanth import stats
from orvanth.stats import plots

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("agg")
import matplotlib.pyplot as plt  # noqa: E402

PLANTS = data.groups("tour/plant_growth.csv")
RECOVERY = data.groups("stats/recovery.csv")
RESULTS = {"tukey_hsd": lambda: stats.tukey_hsd(PLANTS), "dunnett": lambda: stats.dunnett(RECOVERY, control="b0"),
           "one-sided": lambda: stats.dunnett(RECOVERY, control="b0", alternative="less"),
           "hsu_mcb": lambda: stats.hsu_mcb(PLANTS), "ks_1samp": lambda: stats.ks_1samp(PLANTS["ctrl"], "normal", (5, 1)),
           "ols": lambda: stats.ols([1.0, 2, 3, 4], [1.0, 3, 2, 5]),
           "bootstrap": lambda: stats.bootstrap(PLANTS["ctrl"], np.mean, n_resamples=200),
           "power": lambda: stats.simulate_power([0, 1], 1, [5, 10], n_simulations=100)}


@pytest.fixture(autouse=True)
def close():
    yield
    plt.close("all")


@pytest.mark.parametrize("name", RESULTS)
@pytest.mark.parametrize("width", [3.6, 6.4])
def test_texts_stay_inside(name, width):
    figure, ax = plt.subplots(figsize=(width, 3.6), constrained_layout=True)
    assert RESULTS[name]().plot(ax) is ax
    figure.canvas.draw()
    for text in (ax.title, ax.xaxis.label, ax.yaxis.label, *ax.get_yticklabels()):
        box = text.get_window_extent()
        assert not text.get_text() or (box.x0 >= 0 and box.x1 <= figure.bbox.x1), text.get_text()


def test_intervals_are_where_the_result_says():
    result = stats.tukey_hsd(PLANTS)
    ax = result.plot(confidence_level=0.9)
    assert [t.get_text() for t in ax.get_yticklabels()] == ["ctrl - trt1", "ctrl - trt2", "trt1 - trt2"]
    interval = result.confidence_interval(0.9)
    drawn = [line.get_xdata() for line in ax.lines if len(line.get_xdata()) == 2 and line.get_marker() == "|"]
    colours = [line.get_color() for line in ax.lines if line.get_marker() == "o"]
    assert colours == [plots.INSIDE, plots.INSIDE, plots.OUTSIDE]
    i, j = np.triu_indices(3, 1)
    assert np.allclose(drawn, np.column_stack([interval.low[i, j], interval.high[i, j]]))


def test_a_plot_shows_one_data_set():
    many = stats.tukey_hsd(*np.random.default_rng(1).normal(size=(3, 4, 5)))
    with pytest.raises(ValueError, match="one data set; this result has 4"):
        many.plot()


def test_without_matplotlib(monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib.pyplot", None)
    with pytest.raises(ImportError, match="python3-matplotlib"):
        stats.tukey_hsd(PLANTS).plot()
