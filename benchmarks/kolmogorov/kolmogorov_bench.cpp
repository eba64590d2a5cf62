// KolmogorovCDF and KolmogorovICDF over sample size and probability, in both tails. Beside the peers
// of the same run: benchmarks/kolmogorov/peers.py.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <vector>

#include "orvanth/kolmogorov.h"

namespace {

constexpr double kProbabilities[] = {0.01, 0.5, 0.95, 0.999};

void SetLabel(benchmark::State& state, std::int32_t complement) {
    char text[80];
    std::snprintf(text, sizeof text, "%s tail, n = %d, p = %g", complement != 0 ? "upper" : "lower",
                  static_cast<int>(state.range(0)), kProbabilities[state.range(1)]);
    state.SetLabel(text);
}

// The point whose lower probability is that of the row, moved a little from call to call.
void Tail(benchmark::State& state, std::int32_t complement) {
    const double n = static_cast<double>(state.range(0));
    const double x = KolmogorovICDF(kProbabilities[state.range(1)], n, 0);
    SetLabel(state, complement);
    double step = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(KolmogorovCDF(x * (1 + 1e-9 * step), n, complement));
        step = step < 7 ? step + 1 : 0;
    }
}

void Quantile(benchmark::State& state, std::int32_t complement) {
    const double n = static_cast<double>(state.range(0));
    const double lower = kProbabilities[state.range(1)];
    const double p = complement != 0 ? 1 - lower : lower;
    SetLabel(state, complement);
    for (auto _ : state) benchmark::DoNotOptimize(KolmogorovICDF(p, n, complement));
}

const std::vector<std::vector<std::int64_t>> kGrid = {{10, 100, 1000, 100000, 1000000}, {0, 1, 2, 3}};

BENCHMARK_CAPTURE(Tail, lower, 0)->ArgsProduct(kGrid)->ArgNames({"n", "p"});
BENCHMARK_CAPTURE(Tail, upper, 1)->ArgsProduct(kGrid)->ArgNames({"n", "p"});
BENCHMARK_CAPTURE(Quantile, lower, 0)->ArgsProduct(kGrid)->ArgNames({"n", "p"});
BENCHMARK_CAPTURE(Quantile, upper, 1)->ArgsProduct(kGrid)->ArgNames({"n", "p"});

}  // namespace
