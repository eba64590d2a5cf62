// Words, normal variates and index draws, 2^20 at a time, beside peers in the same run: Boost.Random,
// the standard library, GSL's inversion. NumPy's times: benchmarks/random/peers.py.
#include <benchmark/benchmark.h>

#include <boost/math/special_functions/erf.hpp>
#include <boost/random/mersenne_twister.hpp>
#include <boost/random/normal_distribution.hpp>
#include <boost/random/uniform_int_distribution.hpp>
#include <cmath>
#include <random>
#include <vector>

#include "orvanth/random.h"
#include "random/mersenne_twister.hpp"

#ifdef BENCH_GSL
#include <gsl/gsl_cdf.h>
#endif

namespace {

using namespace orvanth;

constexpr std::int32_t kCount = 1 << 20;

void PerItem(benchmark::State& state) {
    state.counters["ns_each"] =
        benchmark::Counter(static_cast<double>(kCount) * 1e-9,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Words(benchmark::State& state) {
    MersenneTwister twister(1);
    std::vector<std::uint32_t> words(kCount);
    for (auto _ : state) {
        FillUniformWords(twister, words);
        benchmark::DoNotOptimize(words.data());
    }
    PerItem(state);
}

template <class Engine>
void PeerWords(benchmark::State& state) {
    Engine engine(1);
    std::vector<std::uint32_t> words(kCount);
    for (auto _ : state) {
        for (std::uint32_t& word : words) word = static_cast<std::uint32_t>(engine());
        benchmark::DoNotOptimize(words.data());
    }
    PerItem(state);
}

void Normal(benchmark::State& state) {
    std::vector<double> values(kCount);
    for (auto _ : state) {
        RandomNormalVariable(values.data(), kCount, 0, 1, 1);
        benchmark::DoNotOptimize(values.data());
    }
    PerItem(state);
}

void NormalColumns(benchmark::State& state) {
    std::vector<double> values(kCount);
    for (auto _ : state) {
        RandomNormalVariables(values.data(), kCount / 16, 16, 0, 1, 1);
        benchmark::DoNotOptimize(values.data());
    }
    PerItem(state);
}

void CreateAndDelete(benchmark::State& state) {
    for (auto _ : state) DeleteRandomStream(CreateRandomStream(1));
}

void BoostEngine(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(boost::random::mt19937(1u));
}

void BoostZiggurat(benchmark::State& state) {
    boost::random::mt19937 engine(1);
    boost::random::normal_distribution<double> normal;
    std::vector<double> values(kCount);
    for (auto _ : state) {
        for (double& value : values) value = normal(engine);
        benchmark::DoNotOptimize(values.data());
    }
    PerItem(state);
}

void BoostInversion(benchmark::State& state) {
    std::mt19937 engine(1);
    std::vector<double> values(kCount);
    for (auto _ : state) {
        for (double& value : values)
            value = std::sqrt(2.0) * boost::math::erf_inv((static_cast<double>(engine()) + 0.5) * 0x1p-31 - 1.0);
        benchmark::DoNotOptimize(values.data());
    }
    PerItem(state);
}

void Indices(benchmark::State& state) {
    std::vector<std::int32_t> values(kCount);
    const RandomStreamHandle stream = CreateRandomStream(1);
    for (auto _ : state) {
        RandomUniformInteger(stream, values.data(), kCount);
        benchmark::DoNotOptimize(values.data());
    }
    DeleteRandomStream(stream);
    PerItem(state);
}

void BoostIndices(benchmark::State& state) {
    boost::random::mt19937 engine(1);
    const boost::random::uniform_int_distribution<std::int32_t> index(0, kCount - 1);
    std::vector<std::int32_t> values(kCount);
    for (auto _ : state) {
        for (std::int32_t& value : values) value = index(engine);
        benchmark::DoNotOptimize(values.data());
    }
    PerItem(state);
}

void NormalOf(benchmark::State& state) {
    std::vector<double> values(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) RandomNormalVariable(values.data(), static_cast<std::int32_t>(state.range(0)), 0, 1, 1);
}

BENCHMARK(NormalOf)->Name("growth RandomNormalVariable/here")->RangeMultiplier(8)->Range(1 << 8, 1 << 20);
BENCHMARK(Words)->Name("words/here");
BENCHMARK_TEMPLATE(PeerWords, boost::random::mt19937)->Name("words/Boost");
BENCHMARK_TEMPLATE(PeerWords, std::mt19937)->Name("words/std");
BENCHMARK(Normal)->Name("RandomNormalVariable/here");
BENCHMARK(BoostZiggurat)->Name("RandomNormalVariable/Boost ziggurat");
BENCHMARK(BoostInversion)->Name("RandomNormalVariable/Boost inversion");
BENCHMARK(NormalColumns)->Name("RandomNormalVariables/here");
BENCHMARK(BoostZiggurat)->Name("RandomNormalVariables/Boost ziggurat");
BENCHMARK(CreateAndDelete)->Name("CreateRandomStream/here");
BENCHMARK(BoostEngine)->Name("CreateRandomStream/Boost");
BENCHMARK(BoostIndices)->Name("RandomUniformInteger/Boost");
BENCHMARK(Indices)->Name("RandomUniformInteger/here");

#ifdef BENCH_GSL
void GslInversion(benchmark::State& state) {
    boost::random::mt19937 engine(1);
    std::vector<double> values(kCount);
    for (auto _ : state) {
        for (double& value : values) value = gsl_cdf_ugaussian_Pinv((static_cast<double>(engine()) + 0.5) * 0x1p-32);
        benchmark::DoNotOptimize(values.data());
    }
    PerItem(state);
}
BENCHMARK(GslInversion)->Name("RandomNormalVariable/GSL inversion");
#endif

}  // namespace
