// The three exports over growing supports. The argument is the number of points of the support, of which a table
// holds those that matter; per_entry is the cost of one entry.
//
// GSL and Rmath have no counterpart. The peers are two ways to form the sums with what there is:
//   Rmath      log-probabilities of the central distribution, dhyper, weighted with odds^x and summed over the
//              support, as R's fisher.test does
//   exact sum  whole numbers of any size; the odds 1.7 stand as 17/10
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include <boost/multiprecision/cpp_bin_float.hpp>
#include <boost/multiprecision/cpp_int.hpp>

#include "noncentral_hypergeometric/fnc_record.hpp"
#include "noncentral_hypergeometric/fnc_table.hpp"
#include "orvanth/noncentral_hypergeometric.h"

#ifdef BENCH_RMATH
#define MATHLIB_STANDALONE
#include <Rmath.h>
#endif

namespace {

using namespace orvanth;

constexpr double kOdds = 1.7;
constexpr int kOddsTimesTen = 17;
constexpr double kAccuracy = 1e-10;
constexpr double kProbability = 0.95;

struct Case {
    explicit Case(std::int64_t support)
        : n(static_cast<std::int32_t>(support - 1)), m(2 * n), N(5 * n), record(n, m, N, kOdds, kAccuracy) {}
    std::int32_t n, m, N;  // the support is 0 to n
    FNCRecord record;
};

template <class Call>
void Measure(benchmark::State& state, Call call) {
    const Case c(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(call(c));
    const double entries = FNCTableLength(c.record).value_or(0);
    state.counters["entries"] = entries;
    state.counters["per_entry"] =
        benchmark::Counter(entries, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Cumulative(benchmark::State& state) {
    const std::int32_t x = static_cast<std::int32_t>(FNCMean(Case(state.range(0)).record));
    Measure(state, [=](const Case& c) { return FNCHypergeometricCDF(x, c.n, c.m, c.N, kOdds, 0, kAccuracy); });
}

void Quantile(benchmark::State& state) {
    Measure(state,
            [](const Case& c) { return FNCHypergeometricICDF(kProbability, c.n, c.m, c.N, kOdds, 0, kAccuracy); });
}

void Moments(benchmark::State& state) {
    Measure(state, [](const Case& c) {
        double mean, variance;
        FNCHypergeometricMoments(c.n, c.m, c.N, kOdds, &mean, &variance);
        return mean + variance;
    });
}

// What the exports give, from relative weights of the whole support.
template <class Number>
double CumulativeOf(const std::vector<Number>& weights, std::int32_t x) {
    const Number lower = std::accumulate(weights.begin(), weights.begin() + x + 1, Number(0));
    return static_cast<double>(lower / std::accumulate(weights.begin() + x + 1, weights.end(), lower));
}

template <class Number>
double QuantileOf(std::vector<Number> weights) {
    std::partial_sum(weights.begin(), weights.end(), weights.begin());
    const Number target = weights.back() * kProbability;
    return static_cast<double>(std::lower_bound(weights.begin(), weights.end(), target) - weights.begin());
}

template <class Number>
double MomentsOf(const std::vector<Number>& weights) {
    Number s0 = 0, s1 = 0, s2 = 0;
    for (std::size_t x = 0; x < weights.size(); ++x) {
        s0 += weights[x];
        s1 += weights[x] * x;
        s2 += weights[x] * x * x;
    }
    const Number mean = s1 / s0;
    return static_cast<double>(mean + (s2 / s0 - mean * mean));
}

#ifdef BENCH_RMATH
std::vector<double> RmathWeights(const Case& c) {
    std::vector<double> weights(static_cast<std::size_t>(c.n) + 1);
    const double logOdds = std::log(kOdds);
    for (std::int32_t x = 0; x <= c.n; ++x)
        weights[static_cast<std::size_t>(x)] = dhyper(x, c.m, c.N - c.m, c.n, 1) + x * logOdds;
    const double largest = *std::max_element(weights.begin(), weights.end());
    for (double& weight : weights) weight = std::exp(weight - largest);
    return weights;
}
#endif

// The terms in whole numbers, rounded to 50 digits for the few operations that follow.
using Wide = boost::multiprecision::cpp_bin_float_50;
std::vector<Wide> ExactWeights(const Case& c) {
    using Integer = boost::multiprecision::cpp_int;
    std::vector<Wide> weights;
    // The term at 0, C(N - m, n), times 10^n, so that every term is a whole number.
    Integer term = boost::multiprecision::pow(Integer(10), static_cast<unsigned>(c.n));
    for (std::int32_t i = 1; i <= c.n; ++i) term = term * (c.N - c.m - c.n + i) / i;
    for (std::int32_t x = 0; x <= c.n; ++x) {
        weights.emplace_back(term);
        term = term * (std::int64_t{c.m} - x) * (c.n - x) * kOddsTimesTen /
               (10 * (x + std::int64_t{1}) * (c.N - c.m - c.n + x + 1));
    }
    return weights;
}

template <class Weights>
void CumulativeBy(benchmark::State& state, Weights weights) {
    const std::int32_t x = static_cast<std::int32_t>(FNCMean(Case(state.range(0)).record));
    Measure(state, [=](const Case& c) { return CumulativeOf(weights(c), x); });
}

template <class Weights>
void QuantileBy(benchmark::State& state, Weights weights) {
    Measure(state, [=](const Case& c) { return QuantileOf(weights(c)); });
}

template <class Weights>
void MomentsBy(benchmark::State& state, Weights weights) {
    Measure(state, [=](const Case& c) { return MomentsOf(weights(c)); });
}

BENCHMARK(Cumulative)->Name("FNCHypergeometricCDF/here")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(Quantile)->Name("FNCHypergeometricICDF/here")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(Moments)->Name("FNCHypergeometricMoments/here")->Arg(10)->Arg(1000)->Arg(100000);
#ifdef BENCH_RMATH
BENCHMARK_CAPTURE(CumulativeBy, Rmath, RmathWeights)
    ->Name("FNCHypergeometricCDF/Rmath")
    ->Arg(10)
    ->Arg(1000)
    ->Arg(100000);
BENCHMARK_CAPTURE(QuantileBy, Rmath, RmathWeights)
    ->Name("FNCHypergeometricICDF/Rmath")
    ->Arg(10)
    ->Arg(1000)
    ->Arg(100000);
BENCHMARK_CAPTURE(MomentsBy, Rmath, RmathWeights)
    ->Name("FNCHypergeometricMoments/Rmath")
    ->Arg(10)
    ->Arg(1000)
    ->Arg(100000);
#endif
BENCHMARK_CAPTURE(CumulativeBy, exact, ExactWeights)->Name("FNCHypergeometricCDF/exact sum")->Arg(10)->Arg(1000);
BENCHMARK_CAPTURE(QuantileBy, exact, ExactWeights)->Name("FNCHypergeometricICDF/exact sum")->Arg(10)->Arg(1000);
BENCHMARK_CAPTURE(MomentsBy, exact, ExactWeights)->Name("FNCHypergeometricMoments/exact sum")->Arg(10)->Arg(1000);

}  // namespace
