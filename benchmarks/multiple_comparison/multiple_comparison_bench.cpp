// The three statistics against the plain double loop and against the standalone Rmath library, in one
// run. SciPy's times: benchmarks/multiple_comparison/peers.py.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

#include "multiple_comparison/plain_mc.hpp"
#include "multiple_comparison/refined.hpp"
#include "orvanth/multiple_comparison.h"

#ifdef BENCH_RMATH
extern "C" {
double ptukey(double q, double ranges, double k, double df, int lower, int logarithm);
double qtukey(double p, double ranges, double k, double df, int lower, int logarithm);
}
#endif

namespace {

using namespace orvanth;
using plain::Statistic;
using Export = double (*)(double, std::int32_t, double, const double*, TailFlag);

std::vector<double> Lambda(std::int64_t k, bool equal) {
    std::vector<double> lambda(static_cast<std::size_t>(k), 1 / std::sqrt(2.0));
    for (std::size_t j = 0; j < lambda.size() && !equal; ++j) lambda[j] = 0.4 + 0.03 * static_cast<double>(j);
    return lambda;
}

double Vary(int& step) {
    step = (step + 1) % 8;
    return 2.2 + 0.1 * step;
}

void Ours(benchmark::State& state, Export function, bool equal) {
    const std::int32_t k = static_cast<std::int32_t>(state.range(0));
    const std::vector<double> lambda = Lambda(k, equal);
    int step = 0;
    for (auto _ : state) benchmark::DoNotOptimize(function(Vary(step), k, 10, lambda.data(), 0));
}

void Plain(benchmark::State& state, Statistic statistic, bool equal) {
    const std::int32_t k = static_cast<std::int32_t>(state.range(0));
    const std::vector<double> lambda = Lambda(k, equal);
    int step = 0;
    for (auto _ : state) benchmark::DoNotOptimize(plain::Cumulative(statistic, Vary(step), k, 10, lambda.data()));
}

void Quantile(benchmark::State& state, Export function, bool equal) {
    const std::int32_t k = static_cast<std::int32_t>(state.range(0));
    const std::vector<double> lambda = Lambda(k, equal);
    for (auto _ : state) benchmark::DoNotOptimize(function(0.95, k, 10, lambda.data(), 0));
}

BENCHMARK_CAPTURE(Ours, Tukey, MCaCDF, true)->Name("MCaCDF/here")->Arg(3)->Arg(10);
BENCHMARK_CAPTURE(Plain, Tukey, Statistic::kTukey, true)->Name("MCaCDF/plain")->Arg(3)->Arg(10);
BENCHMARK_CAPTURE(Ours, Hsu_balanced, MCbCDF, true)->Name("MCbCDF/here")->Arg(3)->Arg(10)->Arg(40);
BENCHMARK_CAPTURE(Plain, Hsu_balanced, Statistic::kHsu, true)->Name("MCbCDF/plain")->Arg(3)->Arg(10)->Arg(40);
BENCHMARK_CAPTURE(Ours, Hsu_unbalanced, MCbCDF, false)->Name("MCbCDF/here/unequal")->Arg(3)->Arg(10);
BENCHMARK_CAPTURE(Plain, Hsu_unbalanced, Statistic::kHsu, false)->Name("MCbCDF/plain/unequal")->Arg(3)->Arg(10);
BENCHMARK_CAPTURE(Ours, Dunnett_balanced, MCcCDF, true)->Name("MCcCDF/here")->Arg(3)->Arg(10)->Arg(40);
BENCHMARK_CAPTURE(Plain, Dunnett_balanced, Statistic::kDunnett, true)->Name("MCcCDF/plain")->Arg(3)->Arg(10)->Arg(40);
BENCHMARK_CAPTURE(Ours, Dunnett_unbalanced, MCcCDF, false)->Name("MCcCDF/here/unequal")->Arg(3)->Arg(10);
BENCHMARK_CAPTURE(Plain, Dunnett_unbalanced, Statistic::kDunnett, false)
    ->Name("MCcCDF/plain/unequal")
    ->Arg(3)
    ->Arg(10);
BENCHMARK_CAPTURE(Quantile, Tukey, MCaICDF, true)->Name("MCaICDF/here")->Arg(3)->Arg(10);
BENCHMARK_CAPTURE(Quantile, Hsu, MCbICDF, true)->Name("MCbICDF/here")->Arg(3)->Arg(10);
BENCHMARK_CAPTURE(Quantile, Dunnett, MCcICDF, true)->Name("MCcICDF/here")->Arg(3)->Arg(10);

// The refined forms beside the plain exports, where the plain sum is shortest and longest.
using Refined = double (*)(double, std::int32_t, double, std::span<const double>, bool);

struct RefinedPair {
    const char* name;
    Refined refined;
    Export plain;
    bool isQuantile;
};

const RefinedPair kRefined[] = {
    {"RefinedMCaCDF", RefinedTukeyCDF, MCaCDF, false},   {"RefinedMCaICDF", RefinedTukeyICDF, MCaICDF, true},
    {"RefinedMCbCDF", RefinedHsuCDF, MCbCDF, false},     {"RefinedMCbICDF", RefinedHsuICDF, MCbICDF, true},
    {"RefinedMCcCDF", RefinedDunnettCDF, MCcCDF, false}, {"RefinedMCcICDF", RefinedDunnettICDF, MCcICDF, true},
};

void RegisterRefined(const RefinedPair& pair, std::int32_t k, double df) {
    const std::vector<double> lambda = Lambda(k, true);
    const double first = pair.isQuantile ? 0.95 : RefinedDunnettICDF(0.95, k, df, lambda, false);
    const std::string place = "/df:" + std::to_string(static_cast<int>(df)) + "/" + std::to_string(k);
    benchmark::RegisterBenchmark((pair.name + ("/here" + place)).c_str(), [=](benchmark::State& state) {
        for (auto _ : state) benchmark::DoNotOptimize(pair.refined(first, k, df, lambda, false));
    });
    benchmark::RegisterBenchmark((pair.name + ("/plain form" + place)).c_str(), [=](benchmark::State& state) {
        for (auto _ : state) benchmark::DoNotOptimize(pair.plain(first, k, df, lambda.data(), 0));
    });
}

const bool kRegistered = [] {
    for (const RefinedPair& pair : kRefined)
        for (const std::int32_t k : {3, 100})
            for (const double df : {1.0, 10.0, 999.0, 1000.0}) RegisterRefined(pair, k, df);
    return true;
}();

#ifdef BENCH_RMATH
void RmathCumulative(benchmark::State& state) {
    int step = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            ptukey(Vary(step) * std::sqrt(2.0), 1, static_cast<double>(state.range(0)), 10, 1, 0));
}
void RmathQuantile(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(qtukey(0.95, 1, static_cast<double>(state.range(0)), 10, 1, 0));
}
BENCHMARK(RmathCumulative)->Name("MCaCDF/Rmath")->Arg(3)->Arg(10);
BENCHMARK(RmathQuantile)->Name("MCaICDF/Rmath")->Arg(3)->Arg(10);
#endif

}  // namespace
