"""The bootstrap and simulated power."""
import numpy as np
import pandas as pd
import pytest
from orvanth import RandomStream, random, stats

MICE = np.array([94.0, 197, 16, 38, 99, 141, 23])
CONTROL = np.array([52.0, 104, 146, 10, 51, 30, 40, 46, 27])


def test_resamples_are_those_of_the_stream():
    result = stats.bootstrap(MICE, np.mean, n_resamples=50, seed=11)
    with RandomStream(11) as stream:
        expected = [MICE[stream.indices(7)].mean() for _ in range(50)]
    assert np.allclose(result.bootstrap_distribution, expected, rtol=1e-15)
    assert result.standard_error == pytest.approx(np.std(expected, ddof=1))
    assert np.allclose(result.confidence_interval, np.quantile(expected, [0.025, 0.975]))
    basic = result.interval(0.9, "basic")
    assert np.allclose(basic, 2 * MICE.mean() - np.quantile(expected, [0.95, 0.05]))
    assert np.array_equal(basic, stats.bootstrap(MICE, np.mean, n_resamples=50, seed=11, method="basic",
                                                 confidence_level=0.9).confidence_interval)


@pytest.mark.parametrize("batch", [1, 7, 1000])
def test_batches_change_no_digit(batch):
    whole = stats.bootstrap((MICE, CONTROL), lambda a, b, axis=-1: a.mean(axis) - b.mean(axis), n_resamples=30, seed=3)
    parts = stats.bootstrap((MICE, CONTROL), lambda a, b, axis=-1: a.mean(axis) - b.mean(axis), n_resamples=30, seed=3,
                            batch=batch)
    assert np.array_equal(whole.bootstrap_distribution, parts.bootstrap_distribution)
    fewer = stats.bootstrap((MICE, CONTROL), lambda a, b: a.mean() - b.mean(), n_resamples=10, seed=3)
    assert np.allclose(fewer.bootstrap_distribution, whole.bootstrap_distribution[:10], rtol=1e-13)


def test_forms_of_data():
    by_list = stats.bootstrap(list(MICE), np.median, n_resamples=40)
    assert np.array_equal(by_list.bootstrap_distribution,
                          stats.bootstrap(pd.Series(MICE), np.median, n_resamples=40).bootstrap_distribution)
    assert np.array_equal(by_list.bootstrap_distribution,
                          stats.bootstrap((MICE,), np.median, n_resamples=40).bootstrap_distribution)
    many = np.stack([MICE, 2 * MICE, MICE + 5])
    together = stats.bootstrap(many, np.median, n_resamples=40)
    assert together.bootstrap_distribution.shape == (3, 40) and together.confidence_interval.low.shape == (3,)
    assert np.array_equal(together.bootstrap_distribution[1], 2 * by_list.bootstrap_distribution)
    columns = stats.bootstrap(many.T, np.median, n_resamples=40, axis=0)
    assert np.array_equal(columns.bootstrap_distribution, together.bootstrap_distribution)


@pytest.mark.parametrize("statistic", [np.sum, lambda values: values.sum()])
def test_a_data_set_has_the_same_bits_in_any_company(statistic):
    many = random.normals(1, 5 * 37).reshape(5, 37)
    together = stats.bootstrap(many, statistic, n_resamples=50).bootstrap_distribution
    for i in range(5):
        alone = stats.bootstrap(many[i:i + 1], statistic, n_resamples=50)
        assert np.array_equal(together[i:i + 1], alone.bootstrap_distribution)
        assert np.array_equal(together[i], stats.bootstrap(many[i], statistic, n_resamples=50).bootstrap_distribution)


def test_pairs_stay_together():
    x = np.arange(10.0)
    result = stats.bootstrap((x, 3 * x + 1), lambda a, b: np.corrcoef(a, b)[0, 1], n_resamples=20, paired=True)
    assert np.allclose(result.bootstrap_distribution, 1)
    both = stats.bootstrap((x, x[::-1]), lambda a, b: a.mean() + b[0], n_resamples=5, paired=True, seed=4)
    with RandomStream(4) as stream:
        indices = [stream.indices(10) for _ in range(5)]
    assert np.allclose(both.bootstrap_distribution, [x[i].mean() + 9 - i[0] for i in indices])


def test_power_of_a_t_test():
    # R, power.t.test(n, delta = 1, sd = 1): 10, 20, 30
    result = stats.simulate_power([0, 1], 1, [10, 20, 30], n_simulations=4000, seed=2)
    assert (np.abs(result.power - [0.5619846, 0.8689528, 0.9677083]) < 4 * result.standard_error).all()
    assert (np.diff(result.power) > 0).all()
    one_sided = stats.simulate_power([0, 1], 1, 10, test="dunnett", alternative="greater", n_simulations=4000, seed=2)
    assert one_sided.power[0] > result.power[0]
    assert "4000 simulated experiments" in str(result)


def test_errors_say_what_is_wrong():
    for call, text in ((lambda: stats.bootstrap([1.0], np.mean), "at least 2 observations"),
                       (lambda: stats.bootstrap(MICE, np.mean, n_resamples=0), "n_resamples"),
                       (lambda: stats.bootstrap(MICE, np.mean, method="BCa"), "percentile"),
                       (lambda: stats.bootstrap((MICE, CONTROL), np.mean, paired=True), "one size"),
                       (lambda: stats.bootstrap(MICE, np.mean, nan_policy="omit"), "omit"),
                       (lambda: stats.bootstrap([1.0, np.nan], np.mean, nan_policy="raise"), "contains NaN"),
                       (lambda: stats.simulate_power([1, 1], 1, 10), "no difference"),
                       (lambda: stats.simulate_power([0, 1], 0, 10), "sd"),
                       (lambda: stats.simulate_power([0, 1], 1, 1), "at least 2 observations"),
                       (lambda: stats.simulate_power([0, 1], 1, 5, test="hsu_mcb"), "tukey_hsd")):
        with pytest.raises(ValueError, match=text):
            call()
