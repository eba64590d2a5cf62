// The three exports over growing supports; per_entry is the cost of one entry of the table. The argument is the
// number of points of the support, of which a table holds those that matter.
#include <benchmark/benchmark.h>

#include "noncentral_hypergeometric/fnc_record.hpp"
#include "noncentral_hypergeometric/fnc_table.hpp"
#include "orvanth/noncentral_hypergeometric.h"

namespace {

using namespace orvanth;

constexpr double kOdds = 1.7;
constexpr double kAccuracy = 1e-10;

struct Table {
    explicit Table(std::int64_t support)
        : n(static_cast<std::int32_t>(support - 1)), m(2 * n), N(5 * n), record(n, m, N, kOdds, kAccuracy) {
        std::int32_t first, last;
        entries = FNCMakeTable(record, nullptr, 0, &first, &last, kAccuracy * 0.001);
        mean = FNCMean(record);
    }
    std::int32_t n, m, N;
    FNCRecord record;
    double entries, mean;
};

template <class Call>
void Measure(benchmark::State& state, Call call) {
    const Table table(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(call(table));
    state.counters["entries"] = table.entries;
    state.counters["per_entry"] = benchmark::Counter(
        table.entries, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Cumulative(benchmark::State& state) {
    Measure(state, [](const Table& t) {
        return FNCHypergeometricCDF(static_cast<std::int32_t>(t.mean), t.n, t.m, t.N, kOdds, 0, kAccuracy);
    });
}

void Quantile(benchmark::State& state) {
    Measure(state, [](const Table& t) { return FNCHypergeometricICDF(0.95, t.n, t.m, t.N, kOdds, 0, kAccuracy); });
}

void Moments(benchmark::State& state) {
    Measure(state, [](const Table& t) {
        double mean, variance;
        FNCHypergeometricMoments(t.n, t.m, t.N, kOdds, &mean, &variance);
        return mean;
    });
}

}  // namespace

BENCHMARK(Cumulative)->Name("FNCHypergeometricCDF/here")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(Quantile)->Name("FNCHypergeometricICDF/here")->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(Moments)->Name("FNCHypergeometricMoments/here")->Arg(10)->Arg(1000)->Arg(100000);
