// The discrete exports beside the same call made to Boost.Math, Rmath and GSL, over varied arguments
// of three sizes: 30, 1000 and 100000 trials, and populations of 150, 20000 and a million.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/hypergeometric.hpp>

#include "frame/policies.hpp"
#include "orvanth/distributions.h"

#ifdef BENCH_RMATH
#define MATHLIB_STANDALONE
#include <Rmath.h>
#endif
#ifdef BENCH_GSL
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_randist.h>
#endif

namespace {

constexpr std::size_t kCount = 256;
constexpr std::array<double, 3> kTrials = {30, 1000, 100000};
constexpr std::array<double, 3> kPopulations = {150, 20000, 1000000};

struct Binomial {
    double k, n, p, probability;
};
struct Hypergeometric {
    double x, r, n, N, probability;
};

std::vector<Binomial> BinomialArguments(double trials) {
    std::mt19937_64 random(20240908);
    std::uniform_real_distribution<> uniform(0, 1);
    std::vector<Binomial> arguments;
    while (arguments.size() < kCount) {
        const double n = std::floor(trials * (0.5 + 0.5 * uniform(random)));
        const double p = 0.02 + 0.96 * uniform(random);
        const double sd = std::sqrt(n * p * (1 - p));
        const double k = std::fmin(n - 1, std::fmax(1, std::round(n * p + sd * (6 * uniform(random) - 3))));
        arguments.push_back({k, n, p, 0.001 + 0.998 * uniform(random)});
    }
    return arguments;
}

std::vector<Hypergeometric> HypergeometricArguments(double population) {
    std::mt19937_64 random(20240909);
    std::uniform_real_distribution<> uniform(0, 1);
    std::vector<Hypergeometric> arguments;
    while (arguments.size() < kCount) {
        const double N = std::floor(population * (0.8 + 0.2 * uniform(random)));
        const double r = std::floor(N * (0.05 + 0.9 * uniform(random)));
        const double n = std::floor(N * (0.05 + 0.9 * uniform(random)));
        const double sd = std::sqrt(n * r / N * (1 - r / N) * (1 - n / N));
        const double x =
            std::fmin(std::fmin(n, r) - 1,
                      std::fmax(std::fmax(0, n + r - N) + 1, std::round(n * r / N + sd * (4 * uniform(random) - 2))));
        arguments.push_back({x, r, n, N, 0.001 + 0.998 * uniform(random)});
    }
    return arguments;
}

template <class Arguments, class Call>
void Measure(benchmark::State& state, const Arguments& arguments, Call call) {
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(call(arguments[i]));
        i = (i + 1) % kCount;
    }
}

template <class Call>
void OverTrials(benchmark::State& state, Call call) {
    const double trials = kTrials[static_cast<std::size_t>(state.range(0))];
    state.SetLabel("n to " + std::to_string(static_cast<int>(trials)));
    Measure(state, BinomialArguments(trials), call);
}
template <class Call>
void OverPopulations(benchmark::State& state, Call call) {
    const double population = kPopulations[static_cast<std::size_t>(state.range(0))];
    state.SetLabel("N to " + std::to_string(static_cast<int>(population)));
    Measure(state, HypergeometricArguments(population), call);
}

using orvanth::DefaultPolicy;
using BoostBinomial = boost::math::binomial_distribution<double, DefaultPolicy>;
using BoostRoundedUp = boost::math::binomial_distribution<double, orvanth::RoundUpPolicy>;
using BoostHypergeometric = boost::math::hypergeometric_distribution<double, orvanth::RoundUpPolicy>;

BoostHypergeometric Direct(const Hypergeometric& a) {
    return {static_cast<unsigned>(a.r), static_cast<unsigned>(a.n), static_cast<unsigned>(a.N)};
}

#define ROW(over, name, contender, expression)                                         \
    BENCHMARK_CAPTURE(over, name##contender, [](const auto& a) { return expression; }) \
        ->Name(#name "/" #contender)                                                   \
        ->DenseRange(0, 2)

ROW(OverTrials, BinomialPDF, here, BinomialPDF(a.k, a.n, a.p));
ROW(OverTrials, BinomialPDF, Boost, pdf(BoostBinomial(a.n, a.p), a.k));
ROW(OverTrials, BinomialCDF, here, BinomialCDF(a.k, a.n, a.p, 0));
ROW(OverTrials, BinomialCDF, Boost, cdf(BoostBinomial(a.n, a.p), a.k));
ROW(OverTrials, BinomialICDF, here, BinomialICDF(a.probability, a.n, a.p, 0, 1));
ROW(OverTrials, BinomialICDF, Boost, quantile(BoostRoundedUp(a.n, a.p), a.probability));
ROW(OverTrials, BinomialPS, here, BinomialPS(a.probability, a.k, a.n, 0));
ROW(OverTrials, BinomialPS, Boost, BoostBinomial::find_lower_bound_on_p(a.n, a.k, a.probability));
ROW(OverPopulations, HypergeometricPDF, here, HypergeometricPDF(a.x, a.r, a.n, a.N));
ROW(OverPopulations, HypergeometricPDF, Boost, pdf(Direct(a), a.x));
ROW(OverPopulations, HypergeometricCDF, here, HypergeometricCDF(a.x, a.r, a.n, a.N, 0));
ROW(OverPopulations, HypergeometricCDF, Boost, cdf(Direct(a), a.x));
ROW(OverPopulations, HypergeometricICDF, here, HypergeometricICDF(a.probability, a.r, a.n, a.N, 0));
ROW(OverPopulations, HypergeometricICDF, Boost, quantile(Direct(a), a.probability));

#ifdef BENCH_RMATH
ROW(OverTrials, BinomialPDF, Rmath, dbinom(a.k, a.n, a.p, 0));
ROW(OverTrials, BinomialCDF, Rmath, pbinom(a.k, a.n, a.p, 1, 0));
ROW(OverTrials, BinomialICDF, Rmath, qbinom(a.probability, a.n, a.p, 1, 0));
ROW(OverTrials, BinomialPS, Rmath, qbeta(a.probability, a.k, a.n - a.k + 1, 1, 0));
ROW(OverPopulations, HypergeometricPDF, Rmath, dhyper(a.x, a.r, a.N - a.r, a.n, 0));
ROW(OverPopulations, HypergeometricCDF, Rmath, phyper(a.x, a.r, a.N - a.r, a.n, 1, 0));
ROW(OverPopulations, HypergeometricICDF, Rmath, qhyper(a.probability, a.r, a.N - a.r, a.n, 1, 0));
#endif

#ifdef BENCH_GSL
const auto kQuiet = gsl_set_error_handler_off();
unsigned Cut(double count) { return static_cast<unsigned>(count); }
ROW(OverTrials, BinomialPDF, GSL, gsl_ran_binomial_pdf(Cut(a.k), a.p, Cut(a.n)));
ROW(OverTrials, BinomialCDF, GSL, gsl_cdf_binomial_P(Cut(a.k), a.p, Cut(a.n)));
ROW(OverTrials, BinomialPS, GSL, gsl_cdf_beta_Pinv(a.probability, a.k, a.n - a.k + 1));
ROW(OverPopulations, HypergeometricPDF, GSL,
    gsl_ran_hypergeometric_pdf(Cut(a.x), Cut(a.r), Cut(a.N - a.r), Cut(a.n)));
ROW(OverPopulations, HypergeometricCDF, GSL, gsl_cdf_hypergeometric_P(Cut(a.x), Cut(a.r), Cut(a.N - a.r), Cut(a.n)));
#endif

}  // namespace
