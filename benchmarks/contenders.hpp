// Rows of scalar exports: this library and its peers over the same arguments, named <export>/<contender>.
// The arguments are those of tests/data/accuracy/reference.tsv: a stratified random sample.
#ifndef ORVANTH_BENCH_CONTENDERS_HPP
#define ORVANTH_BENCH_CONTENDERS_HPP

#include <benchmark/benchmark.h>

#include <boost/math/policies/policy.hpp>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvanth::bench {

// Boost as a user would call it who wants 64-bit evaluation and no exceptions.
using BoostPolicy =
    boost::math::policies::policy<boost::math::policies::promote_double<false>,
                                  boost::math::policies::domain_error<boost::math::policies::ignore_error>,
                                  boost::math::policies::pole_error<boost::math::policies::ignore_error>,
                                  boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
                                  boost::math::policies::evaluation_error<boost::math::policies::ignore_error>>;

using Arguments = std::vector<std::vector<double>>;
using Function = double (*)(const double*);

inline Arguments ReadArguments(const std::string& name) {
    std::ifstream file(ORVANTH_ACCURACY_REFERENCE);
    if (!file) throw std::runtime_error("cannot read " ORVANTH_ACCURACY_REFERENCE);
    Arguments arguments;
    for (std::string line; std::getline(file, line);) {
        if (line.compare(0, name.size() + 1, name + "\t") != 0) continue;
        const std::size_t begin = name.size() + 1;
        std::istringstream cells(line.substr(begin, line.find('\t', begin) - begin));
        arguments.emplace_back();
        for (std::string cell; cells >> cell;) arguments.back().push_back(std::stod(cell));
    }
    if (arguments.empty()) throw std::runtime_error("no arguments for " + name + " in " ORVANTH_ACCURACY_REFERENCE);
    return arguments;
}

// `from` names the export whose arguments serve, where it is not `name` itself.
inline int Contend(const std::string& name, const char* contender, Function function, const char* from = nullptr) {
    const Arguments arguments = ReadArguments(from != nullptr ? from : name);
    benchmark::RegisterBenchmark((name + "/" + contender).c_str(), [=](benchmark::State& state) {
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(function(arguments[i].data()));
            if (++i == arguments.size()) i = 0;
        }
    });
    return 0;
}

}  // namespace orvanth::bench

#define ORVANTH_JOIN_(a, b) a##b
#define ORVANTH_JOIN(a, b) ORVANTH_JOIN_(a, b)
// The expression sees its arguments as a[0], a[1], ...
#define CONTENDER(name, contender, expression)               \
    static const int ORVANTH_JOIN(registered, __COUNTER__) = \
        orvanth::bench::Contend(name, contender, [](const double* a) -> double { return (void)a, (expression); })

#endif
