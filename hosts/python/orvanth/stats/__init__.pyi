"""Types of ``orvanth.stats``."""
from collections.abc import Callable, Iterable
from typing import Any, Literal, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

_Alternative = Literal["two-sided", "less", "greater"]
_NanPolicy = Literal["propagate", "omit", "raise"]

class ConfidenceInterval(NamedTuple):
    low: Any
    high: Any

class KstestResult:
    statistic: Any
    pvalue: Any
    statistic_location: Any
    statistic_sign: Any
    def confidence_band(self, confidence_level: float = ...) -> tuple[NDArray[np.float64], ConfidenceInterval]: ...
    def plot(self, ax: Any = ..., confidence_level: float = ...) -> Any: ...

class DunnettResult:
    statistic: Any
    pvalue: Any
    difference: Any
    standard_error: Any
    df: NDArray[np.int64]
    names: list[str]
    alternative: str
    confidence_level: float
    def confidence_interval(self, confidence_level: float | None = ...) -> ConfidenceInterval: ...
    def plot(self, ax: Any = ..., confidence_level: float | None = ...) -> Any: ...

class HsuMCBResult:
    statistic: Any
    pvalue: Any
    df: NDArray[np.int64]
    names: list[str]
    best: str
    confidence_level: float
    def confidence_interval(self, confidence_level: float | None = ...) -> ConfidenceInterval: ...
    def may_be_best(self, confidence_level: float | None = ...) -> NDArray[np.bool_]: ...
    def plot(self, ax: Any = ..., confidence_level: float | None = ...) -> Any: ...

class TukeyHSDResult:
    statistic: Any
    pvalue: Any
    standard_error: Any
    df: NDArray[np.int64]
    names: list[str]
    confidence_level: float
    def confidence_interval(self, confidence_level: float | None = ...) -> ConfidenceInterval: ...
    def plot(self, ax: Any = ..., confidence_level: float | None = ...) -> Any: ...

class BinomTestResult:
    k: Any
    n: Any
    statistic: Any
    pvalue: Any
    p: Any
    alternative: str
    def proportion_ci(self, confidence_level: float = ...) -> ConfidenceInterval: ...
    def confidence_interval(self, confidence_level: float = ...) -> ConfidenceInterval: ...

class OLSResult:
    names: list[str]
    coefficients: Any
    standard_errors: Any
    tvalues: Any
    pvalues: Any
    residuals: Any
    df_residual: int
    residual_standard_error: Any
    r_squared: Any
    adjusted_r_squared: Any
    fvalue: Any
    f_pvalue: Any
    df_model: int
    covariance: NDArray[np.float64]
    def confidence_interval(self, confidence_level: float = ...) -> ConfidenceInterval: ...
    def plot(self, ax: Any = ..., confidence_level: float = ...) -> Any: ...

class BootstrapResult:
    confidence_interval: ConfidenceInterval
    bootstrap_distribution: Any
    standard_error: Any
    statistic: Any
    confidence_level: float
    method: str
    def interval(self, confidence_level: float = ..., method: Literal["percentile", "basic"] | None = ...) -> ConfidenceInterval: ...
    def plot(self, ax: Any = ...) -> Any: ...

class PowerResult:
    sizes: Any
    power: Any
    standard_error: Any
    n_simulations: int
    alpha: float
    test: str
    def plot(self, ax: Any = ...) -> Any: ...

class FisherExactResult:
    statistic: Any
    pvalue: Any
    sample_odds_ratio: Any
    table: Any
    alternative: str
    def confidence_interval(self, confidence_level: float = ...) -> ConfidenceInterval: ...

class HypergeomTestResult:
    statistic: Any
    expected: Any
    pvalue: Any
    alternative: str

def ks_1samp(x: Any, cdf: str | Callable[..., Any], args: tuple[Any, ...] = ..., alternative: _Alternative = ..., method: Literal["exact", "auto"] = ..., axis: int = ..., nan_policy: _NanPolicy = ...) -> KstestResult: ...
def dunnett(*samples: Any, control: Any, alternative: _Alternative = ..., axis: int = ..., nan_policy: _NanPolicy = ..., confidence_level: float = ..., names: Iterable[Any] | None = ...) -> DunnettResult: ...
def hsu_mcb(*samples: Any, best: Literal["largest", "smallest"] = ..., axis: int = ..., nan_policy: _NanPolicy = ..., confidence_level: float = ..., names: Iterable[Any] | None = ...) -> HsuMCBResult: ...
def tukey_hsd(*samples: Any, axis: int = ..., nan_policy: _NanPolicy = ..., confidence_level: float = ..., names: Iterable[Any] | None = ...) -> TukeyHSDResult: ...
def binom_test(k: ArrayLike, n: ArrayLike, p: ArrayLike = ..., alternative: _Alternative = ...) -> BinomTestResult: ...
def binomtest(k: ArrayLike, n: ArrayLike, p: ArrayLike = ..., alternative: _Alternative = ...) -> BinomTestResult: ...
def proportion_ci(k: ArrayLike, n: ArrayLike, confidence_level: float = ..., alternative: _Alternative = ...) -> ConfidenceInterval: ...
def ols(x: Any, y: ArrayLike, names: Iterable[Any] | None = ..., intercept: bool = ..., axis: int = ..., nan_policy: _NanPolicy = ..., tolerance: float = ...) -> OLSResult: ...
def bootstrap(data: Any, statistic: Callable[..., Any], *, n_resamples: int = ..., batch: int | None = ..., vectorized: bool | None = ..., paired: bool = ..., axis: int = ..., confidence_level: float = ..., method: Literal["percentile", "basic"] = ..., seed: int = ..., nan_policy: _NanPolicy = ...) -> BootstrapResult: ...
def simulate_power(means: ArrayLike, sd: float, sizes: ArrayLike, test: Literal["tukey_hsd", "dunnett"] = ..., alternative: _Alternative = ..., alpha: float = ..., n_simulations: int = ..., seed: int = ...) -> PowerResult: ...
def fisher_exact(table: ArrayLike, alternative: _Alternative = ...) -> FisherExactResult: ...
def hypergeom_test(k: ArrayLike, M: ArrayLike, n: ArrayLike, N: ArrayLike, alternative: _Alternative = ...) -> HypergeomTestResult: ...
