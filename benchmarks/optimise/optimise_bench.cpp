// The price of the three exports over a bare setulb loop, and of a whole run beside the packaged library.
//
// Problem: the authors' chained Rosenbrock function, odd variables within [1, 100], even ones within [-100, 100],
// start at 3, 5 pairs. Every loop does the same evaluations at the same points.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <vector>

#include "orvanth/optimise.h"

namespace {

using Setulb = void(const std::int32_t*, const std::int32_t*, double*, const double*, const double*,
                    const std::int32_t*, double*, double*, const double*, const double*, double*, std::int32_t*,
                    char*, const std::int32_t*, char*, std::int32_t*, std::int32_t*, double*, std::size_t,
                    std::size_t);

extern "C" Setulb setulb_;

constexpr std::int32_t kPairs = 5;
constexpr double kFactr = 1e7;
constexpr double kPgtol = 1e-5;
// Long runs are cut: the cost of a step is wanted, not that of a solution.
constexpr int kMostSteps = 200;

double Rosenbrock(const std::vector<double>& x, std::vector<double>& g) {
    const std::size_t n = x.size();
    double f = 0.25 * (x[0] - 1) * (x[0] - 1);
    double below = x[1] - x[0] * x[0];
    g[0] = 2 * (x[0] - 1) - 16 * x[0] * below;
    f += below * below;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double above = x[i + 1] - x[i] * x[i];
        f += above * above;
        g[i] = 8 * below - 16 * x[i] * above;
        below = above;
    }
    g[n - 1] = 8 * below;
    return 4 * f;
}

struct Problem {
    explicit Problem(std::size_t n) : lower(n), upper(n, 100.0), kind(n, 2) {
        for (std::size_t i = 0; i < n; ++i) lower[i] = i % 2 == 0 ? 1 : -100;
    }
    std::vector<double> lower, upper;
    std::vector<std::int32_t> kind;
};

// Steps taken.
int ThroughExports(const Problem& problem, std::vector<double>& x, std::vector<double>& g) {
    x.assign(x.size(), 3.0);
    double f = 0;
    int steps = 0;
    LBFGSBDriverState* state = LBFGSBStart(static_cast<std::int32_t>(x.size()), kPairs, problem.lower.data(),
                                           problem.upper.data(), problem.kind.data(), kFactr, kPgtol);
    for (int code = 2; code == 1 || (code == 2 && steps < kMostSteps);) {
        code = LBFGSBStep(state, x.data(), &f, g.data());
        ++steps;
        if (code == 1) f = Rosenbrock(x, g);
    }
    LBFGSBEnd(state);
    return steps;
}

// The shortest loop that does the same, on arrays of its own.
int ThroughSetulb(Setulb* setulb, const Problem& problem, std::vector<double>& x, std::vector<double>& g) {
    x.assign(x.size(), 3.0);
    const auto n = static_cast<std::int32_t>(x.size());
    const std::int32_t m = kPairs, quiet = -1;
    double f = 0;
    std::unique_ptr<double[]> wa(new double[x.size() * (2 * kPairs + 5) + 11 * kPairs * kPairs + 8 * kPairs]);
    std::unique_ptr<std::int32_t[]> iwa(new std::int32_t[3 * x.size()]);
    char task[60], csave[60];
    std::int32_t lsave[4], isave[44];
    double dsave[29];
    std::memset(task, ' ', sizeof task);
    std::memcpy(task, "START", 5);
    int steps = 0;
    for (bool iterate = true, wanted = false; wanted || (iterate && steps < kMostSteps);) {
        setulb(&n, &m, x.data(), problem.lower.data(), problem.upper.data(), problem.kind.data(), &f, g.data(),
               &kFactr, &kPgtol, wa.get(), iwa.get(), task, &quiet, csave, lsave, isave, dsave, 60, 60);
        ++steps;
        wanted = std::memcmp(task, "FG", 2) == 0;
        iterate = std::memcmp(task, "NEW_X", 5) == 0;
        if (wanted) f = Rosenbrock(x, g);
    }
    return steps;
}

template <class Loop>
void Measure(benchmark::State& state, Loop loop) {
    const Problem problem(static_cast<std::size_t>(state.range(0)));
    std::vector<double> x(problem.lower.size()), g(problem.lower.size());
    int steps = 0;
    for (auto _ : state) benchmark::DoNotOptimize(steps = loop(problem, x, g));
    state.counters["steps"] = steps;
    state.counters["per_step"] =
        benchmark::Counter(steps, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Exports(benchmark::State& state) { Measure(state, ThroughExports); }

void BareSetulb(benchmark::State& state) {
    Measure(state, [](auto&... arguments) { return ThroughSetulb(setulb_, arguments...); });
}

// Debian's binary as it comes, if it is installed.
void PackagedLibrary(benchmark::State& state) {
    void* library = dlopen("liblbfgsb.so.0", RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    if (library == nullptr) return state.SkipWithError("liblbfgsb0 is not installed");
    auto* setulb = reinterpret_cast<Setulb*>(dlsym(library, "setulb_"));
    Measure(state, [setulb](auto&... arguments) { return ThroughSetulb(setulb, arguments...); });
}

// R's driver, called from C as its manual on writing extensions describes it. It owns the loop and calls back, f and
// gradient apart; both are made by the first call and handed out by the second. R has to be running.
struct Memory {
    std::vector<double> x, g;
    double f = 0;
};

double FunctionForR(int n, double* at, void* data) {
    auto& memory = *static_cast<Memory*>(data);
    memory.x.assign(at, at + n);
    return memory.f = Rosenbrock(memory.x, memory.g);
}

void GradientForR(int n, double*, double* g, void* data) {
    std::memcpy(g, static_cast<Memory*>(data)->g.data(), sizeof(double) * static_cast<std::size_t>(n));
}

void DriverOfR(benchmark::State& state) {
    using Driver = void(int n, int m, double* x, double* l, double* u, int* nbd, double* f,
                        double (*function)(int, double*, void*), void (*gradient)(int, double*, double*, void*),
                        int* fail, void* data, double factr, double pgtol, int* functions, int* gradients,
                        int mostIterations, char* message, int trace, int report);
    setenv("R_HOME", "/usr/lib/R", 0);
    static void* library = dlopen("/usr/lib/R/lib/libR.so", RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) return state.SkipWithError("R is not installed");
    const auto find = [](const char* name) { return dlsym(library, name); };
    static const bool started = [&] {
        const char* arguments[] = {"R", "--vanilla", "--quiet", "--no-save"};
        reinterpret_cast<int (*)(int, char**)>(find("Rf_initEmbeddedR"))(4, const_cast<char**>(arguments));
        return true;
    }();
    benchmark::DoNotOptimize(started);
    auto* driver = reinterpret_cast<Driver*>(find("lbfgsb"));
    auto* mark = reinterpret_cast<void* (*)()>(find("vmaxget"));
    auto* release = reinterpret_cast<void (*)(const void*)>(find("vmaxset"));
    Problem problem(static_cast<std::size_t>(state.range(0)));
    const int n = static_cast<int>(problem.lower.size());
    Memory memory;
    memory.g.resize(problem.lower.size());
    std::vector<double> x(problem.lower.size());
    int functions = 0, gradients = 0, fail = 0;
    double f = 0;
    char message[60];
    for (auto _ : state) {
        x.assign(x.size(), 3.0);
        void* const top = mark();
        driver(n, kPairs, x.data(), problem.lower.data(), problem.upper.data(), problem.kind.data(), &f, FunctionForR,
               GradientForR, &fail, &memory, kFactr, kPgtol, &functions, &gradients, 10000, message, 0, 10);
        release(top);
    }
    state.counters["evaluations"] = functions;
    state.counters["f"] = f;
}

}  // namespace

BENCHMARK(Exports)->Name("LBFGSBStep/here")->Arg(25)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BareSetulb)->Name("LBFGSBStep/setulb")->Arg(25)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PackagedLibrary)
    ->Name("LBFGSBStep/packaged")
    ->Arg(25)
    ->Arg(1000)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(DriverOfR)->Name("LBFGSBStep/R")->Arg(25)->Arg(1000)->Unit(benchmark::kMicrosecond);
