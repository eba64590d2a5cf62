// KolmogorovCDF and KolmogorovICDF over sample size and probability. The peers' times on the same
// machine: bench/kolmogorov/peers.py.
#include <benchmark/benchmark.h>

#include "orvanth/kolmogorov.h"

namespace {

constexpr double kProbabilities[] = {0.01, 0.5, 0.95, 0.999};

void Cumulative(benchmark::State& state) {
    const double n = static_cast<double>(state.range(0));
    const double x = KolmogorovICDF(kProbabilities[state.range(1)], n, 0);
    double step = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(KolmogorovCDF(x * (1 + 1e-9 * step), n, 0));
        step = step < 7 ? step + 1 : 0;
    }
}

void Quantile(benchmark::State& state) {
    const double n = static_cast<double>(state.range(0));
    const double p = kProbabilities[state.range(1)];
    for (auto _ : state) benchmark::DoNotOptimize(KolmogorovICDF(p, n, 0));
}

const std::vector<std::vector<std::int64_t>> kGrid = {{10, 100, 1000, 100000, 1000000}, {0, 1, 2, 3}};

BENCHMARK(Cumulative)->ArgsProduct(kGrid)->ArgNames({"n", "p"});
BENCHMARK(Quantile)->ArgsProduct(kGrid)->ArgNames({"n", "p"});

}  // namespace
