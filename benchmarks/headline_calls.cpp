// One headline call, so many times, for a count of instructions:  headline_calls <call> <times>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "orvanth/core_math.h"

namespace {

double sink;

struct Call {
    std::string_view name;
    void (*run)();
};

std::vector<double>& Design() {
    static std::vector<double> design = [] {
        std::vector<double> values(100 * 5);
        for (std::size_t i = 0; i < values.size(); ++i) values[i] = std::sin(static_cast<double>(i * i + 1));
        return values;
    }();
    return design;
}

const double kLambda[10] = {0.7, 0.7, 0.7, 0.7, 0.7, 0.7, 0.7, 0.7, 0.7, 0.7};

const Call kCalls[] = {
    {"NormalCDF", [] { sink = NormalCDF(1.7, 0, 1, 0); }},
    {"NormalICDF", [] { sink = NormalICDF(0.975, 0, 1, 0); }},
    {"StudentTCDF", [] { sink = StudentTCDF(2.1, 17, 0); }},
    {"GammaICDF", [] { sink = GammaICDF(0.95, 3.5, 2, 0); }},
    {"BetaCDF", [] { sink = BetaCDF(0.3, 2.5, 4, 0); }},
    {"BinomialCDF", [] { sink = BinomialCDF(30, 100, 0.25, 0); }},
    {"KolmogorovCDF", [] { sink = KolmogorovCDF(0.1, 100, 0); }},
    {"MCaCDF", [] { sink = MCaCDF(2.5, 3, 10, kLambda, 0); }},
    {"FNCHypergeometricCDF", [] { sink = FNCHypergeometricCDF(20, 60, 80, 200, 1.4, 0, 1e-10); }},
    {"OLS",
     [] {
         const MatrixDescriptor x{0, 100, 100, 5}, y{0, 100, 100, 1}, b{0, 5, 5, 1};
         std::vector<double> design = Design(), response(100, 1.0);
         double coefficients[5], tau[5];
         OLS(design.data(), &x, response.data(), &y, coefficients, &b, tau, 1e-10);
         sink = coefficients[0];
     }},
    {"RandomNormalVariable",
     [] {
         double values[100];
         RandomNormalVariable(values, 100, 0, 1, 1);
         sink = values[99];
     }},
};

}  // namespace

int main(int argc, char** argv) {
    const int times = argc == 3 ? std::atoi(argv[2]) : 0;
    for (const Call& call : kCalls) {
        if (argc == 1) std::printf("%s\n", call.name.data());
        if (argc != 3 || call.name != argv[1]) continue;
        for (int i = 0; i < times; ++i) call.run();
        return 0;
    }
    if (argc == 1) return 0;
    std::fprintf(stderr, "headline_calls: give a call and how often; without arguments the calls are listed\n");
    return 2;
}
