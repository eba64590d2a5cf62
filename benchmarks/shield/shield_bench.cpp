// What the shield costs: the export, its Safe form and its array form over the same arguments in one run.
// Rows are named "shield <export>/<form>"; hosts.py makes the table of them.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <exception>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

constexpr int kElements = 1024;

std::vector<double> Between(double low, double high) {
    std::vector<double> values(kElements);
    for (int i = 0; i < kElements; ++i)
        values[static_cast<std::size_t>((i * 389) % kElements)] = low + (high - low) * (i + 0.5) / kElements;
    return values;
}

template <class Call>
void Loop(benchmark::State& state, double low, double high, Call call) {
    const std::vector<double> x = Between(low, high);
    for (auto _ : state) {
        double sum = 0;
        for (double value : x) sum += call(value);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kElements);
}

using Each = void (*)(char* const*, const intptr_t*, const intptr_t*, EachReport*);

// The first argument runs through the values, the others stay.
template <std::size_t Others>
void Array(benchmark::State& state, double low, double high, Each each, std::array<double, Others> others,
           bool hasTail) {
    std::vector<double> x = Between(low, high), results(kElements);
    std::int64_t tail = 0;
    std::vector<char*> pointers{reinterpret_cast<char*>(x.data())};
    std::vector<intptr_t> steps{sizeof(double)};
    for (double& other : others) pointers.push_back(reinterpret_cast<char*>(&other)), steps.push_back(0);
    if (hasTail) pointers.push_back(reinterpret_cast<char*>(&tail)), steps.push_back(0);
    pointers.push_back(reinterpret_cast<char*>(results.data()));
    steps.push_back(sizeof(double));
    const intptr_t count = kElements;
    EachReport report;
    for (auto _ : state) {
        each(pointers.data(), &count, steps.data(), &report);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kElements);
}

const bool registered = [] {
    const auto add = [](const char* name, auto body) { benchmark::RegisterBenchmark(name, body); };
    using State = benchmark::State;
    add("shield Erf/export", [](State& s) { Loop(s, -3, 3, [](double x) { return Erf(x); }); });
    add("shield Erf/Safe", [](State& s) { Loop(s, -3, 3, [](double x) { return SafeErf(x); }); });
    add("shield Erf/Each", [](State& s) { Array<0>(s, -3, 3, EachErf, {}, false); });
    add("shield NormalCDF/export", [](State& s) { Loop(s, -4, 4, [](double x) { return NormalCDF(x, 0, 1, 0); }); });
    add("shield NormalCDF/Safe",
        [](State& s) { Loop(s, -4, 4, [](double x) { return SafeNormalCDF(x, 0, 1, 0); }); });
    add("shield NormalCDF/Each", [](State& s) { Array<2>(s, -4, 4, EachNormalCDF, {0, 1}, true); });
    add("shield StudentTCDF/export",
        [](State& s) { Loop(s, -4, 4, [](double x) { return StudentTCDF(x, 17, 0); }); });
    add("shield StudentTCDF/Safe",
        [](State& s) { Loop(s, -4, 4, [](double x) { return SafeStudentTCDF(x, 17, 0); }); });
    add("shield StudentTCDF/Each", [](State& s) { Array<1>(s, -4, 4, EachStudentTCDF, {17}, true); });
    add("shield LogXplus1/export", [](State& s) { Loop(s, -0.5, 4, [](double x) { return LogXplus1(x); }); });
    add("shield LogXplus1/Safe", [](State& s) { Loop(s, -0.5, 4, [](double x) { return SafeLogXplus1(x); }); });
    add("shield LogXplus1/Each", [](State& s) { Array<0>(s, -0.5, 4, EachLogXplus1, {}, false); });

    // A failing call: thrown and caught by the caller itself, and through the shield.
    add("shield failing BinomialCDF/export", [](State& s) {
        Loop(s, 11, 12, [](double k) {
            try {
                return BinomialCDF(k, 10, 0.5, 0);
            } catch (const std::exception&) {
                return 0.0;
            }
        });
    });
    add("shield failing BinomialCDF/Safe", [](State& s) {
        Loop(s, 11, 12, [](double k) { return std::isnan(SafeBinomialCDF(k, 10, 0.5, 0)) ? 0.0 : 1.0; });
    });
    add("shield failing BinomialCDF/Each", [](State& s) { Array<2>(s, 11, 12, EachBinomialCDF, {10, 0.5}, true); });
    add("shield failing NormalCDF/export",
        [](State& s) { Loop(s, -4, 4, [](double x) { return std::isnan(NormalCDF(x, 0, -1, 0)) ? 0.0 : 1.0; }); });
    add("shield failing NormalCDF/Safe", [](State& s) {
        Loop(s, -4, 4, [](double x) { return std::isnan(SafeNormalCDF(x, 0, -1, 0)) ? 0.0 : 1.0; });
    });
    add("shield failing NormalCDF/Each", [](State& s) { Array<2>(s, -4, 4, EachNormalCDF, {0, -1}, true); });

    add("shield RandomUniformInteger 1/export", [](State& s) {
        const RandomStreamHandle stream = CreateRandomStream(1);
        std::int32_t index = 0;
        for (auto _ : s) RandomUniformInteger(stream, &index, 1);
        s.SetItemsProcessed(s.iterations());
        DeleteRandomStream(stream);
    });
    add("shield RandomUniformInteger 1/Safe", [](State& s) {
        const RandomStreamHandle stream = SafeCreateRandomStream(1);
        std::int32_t index = 0;
        for (auto _ : s) SafeRandomUniformInteger(stream, &index, 1);
        s.SetItemsProcessed(s.iterations());
        SafeDeleteRandomStream(stream);
    });
    return true;
}();

}  // namespace
