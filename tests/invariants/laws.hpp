// The distributions as an invariant sees them: a law with random parameters, and a random point near which it has
// probability.
#ifndef ORVANTH_TESTS_INVARIANTS_LAWS_HPP
#define ORVANTH_TESTS_INVARIANTS_LAWS_HPP

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <ostream>
#include <random>
#include <vector>

#include "orvanth/core_math.h"

namespace orvanth::test {

class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    double Unit() { return std::uniform_real_distribution<double>(0, 1)(engine_); }
    double Between(double low, double high) { return low + (high - low) * Unit(); }
    double PowerOfTen(double low, double high) { return std::pow(10.0, Between(low, high)); }
    double Whole(double low, double high) { return std::floor(Between(low, high + 1)); }
    double Degrees() { return Unit() < 0.5 ? PowerOfTen(-1, 2.5) : Whole(1, 300); }

private:
    std::mt19937_64 engine_;
};

inline constexpr int kMostParameters = 4;
inline constexpr int kMostGroups = 12;
using Parameters = double[kMostParameters];

struct EqualGroups {
    double lambda[kMostGroups];
    EqualGroups() { std::fill_n(lambda, kMostGroups, std::numbers::sqrt2 / 2); }
};
inline const EqualGroups kEqual;

struct Law {
    const char* name;
    friend void PrintTo(const Law& law, std::ostream* out) { *out << law.name; }
    double (*cdf)(double x, const double* p, TailFlag tail);
    double (*icdf)(double q, const double* p, TailFlag tail);
    void (*parameters)(Dice&, double* p);
    double (*point)(Dice&, const double* p);
    bool discrete;
    double sum;   // how far the tails may add up beside 1
    double step;  // how far a probability may fall along x, relative
    double trip;  // relative error of a probability that went through the quantile
};

inline double NearMean(Dice& dice, double mean, double sd) { return mean + 6 * sd * dice.Between(-1, 1); }
inline double WholeNearMean(Dice& dice, double mean, double sd, double low, double high) {
    return std::clamp(std::floor(NearMean(dice, mean, sd)), low, high);
}

// The tolerances are those of docs/accuracy: exports.md for the continuous laws, discrete.md, kolmogorov.md (tails
// off by 5.2e-7, 3e-5 of the series), noncentral_hypergeometric.md, multiple_comparison.md.
// The multiple comparisons stay below df = 1000: from there on the scale counts as known, but not for two groups'
// quantile.
inline const Law kLaws[] = {
    {"Beta", [](double x, const double* p, TailFlag t) { return BetaCDF(x, p[0], p[1], t); },
     [](double q, const double* p, TailFlag t) { return BetaICDF(q, p[0], p[1], t); },
     [](Dice& dice, double* p) { p[0] = dice.Degrees(), p[1] = dice.Degrees(); },
     [](Dice& dice, const double* p) {
         const double mean = p[0] / (p[0] + p[1]);
         const double x = NearMean(dice, mean, std::sqrt(mean * (1 - mean) / (p[0] + p[1] + 1)));
         return x > 0 && x < 1 ? x : dice.Unit();
     },
     false, 1e-12, 1e-12, 1e-9},
    {"ChiSquared", [](double x, const double* p, TailFlag t) { return ChiSquaredCDF(x, p[0], t); },
     [](double q, const double* p, TailFlag t) { return ChiSquaredICDF(q, p[0], t); },
     [](Dice& dice, double* p) { p[0] = dice.Degrees(); },
     [](Dice& dice, const double* p) { return std::fabs(NearMean(dice, p[0], std::sqrt(2 * p[0]))); }, false, 1e-12,
     1e-12, 1e-9},
    {"FisherF", [](double x, const double* p, TailFlag t) { return FisherFCDF(x, p[0], p[1], t); },
     [](double q, const double* p, TailFlag t) { return FisherFICDF(q, p[0], p[1], t); },
     [](Dice& dice, double* p) { p[0] = dice.Degrees(), p[1] = dice.Degrees(); },
     [](Dice& dice, const double*) { return dice.PowerOfTen(-1.5, 1.5); }, false, 1e-12, 1e-12, 1e-9},
    {"Gamma", [](double x, const double* p, TailFlag t) { return GammaCDF(x, p[0], p[1], t); },
     [](double q, const double* p, TailFlag t) { return GammaICDF(q, p[0], p[1], t); },
     [](Dice& dice, double* p) { p[0] = dice.Degrees(), p[1] = dice.PowerOfTen(-3, 3); },
     [](Dice& dice, const double* p) { return std::fabs(NearMean(dice, p[0], std::sqrt(p[0]))) * p[1]; }, false,
     1e-12, 1e-12, 1e-9},
    {"Normal", [](double x, const double* p, TailFlag t) { return NormalCDF(x, p[0], p[1], t); },
     [](double q, const double* p, TailFlag t) { return NormalICDF(q, p[0], p[1], t); },
     [](Dice& dice, double* p) { p[0] = dice.Between(-5, 5), p[1] = dice.PowerOfTen(-2, 2); },
     [](Dice& dice, const double* p) { return NearMean(dice, p[0], p[1]); }, false, 1e-14, 1e-12, 1e-9},
    {"StudentT", [](double x, const double* p, TailFlag t) { return StudentTCDF(x, p[0], t); },
     [](double q, const double* p, TailFlag t) { return StudentTICDF(q, p[0], t); },
     [](Dice& dice, double* p) { p[0] = dice.Degrees(); },
     [](Dice& dice, const double*) { return NearMean(dice, 0, 1.5); }, false, 1e-12, 1e-12, 1e-9},
    {"Binomial", [](double x, const double* p, TailFlag t) { return BinomialCDF(x, p[0], p[1], t); },
     [](double q, const double* p, TailFlag t) { return BinomialICDF(q, p[0], p[1], t, 1); },
     [](Dice& dice, double* p) { p[0] = dice.Whole(1, 1000), p[1] = dice.Between(0.001, 0.999); },
     [](Dice& dice, const double* p) {
         return WholeNearMean(dice, p[0] * p[1], std::sqrt(p[0] * p[1] * (1 - p[1])), 0, p[0]);
     },
     true, 1e-12, 1e-12, 1e-9},
    {"Hypergeometric",
     [](double x, const double* p, TailFlag t) { return HypergeometricCDF(x, p[0], p[1], p[2], t); },
     [](double q, const double* p, TailFlag t) { return HypergeometricICDF(q, p[0], p[1], p[2], t); },
     [](Dice& dice, double* p) {
         p[2] = dice.Whole(1, dice.Unit() < 0.7 ? 170 : 20000), p[0] = dice.Whole(0, p[2]),
         p[1] = dice.Whole(0, p[2]);
     },
     [](Dice& dice, const double* p) {
         const double mean = p[0] * p[1] / p[2];
         return WholeNearMean(dice, mean, std::sqrt(mean + 1), std::max(0.0, p[0] + p[1] - p[2]),
                              std::min(p[0], p[1]));
     },
     true, 1e-12, 1e-12, 1e-9},
    {"Kolmogorov", [](double x, const double* p, TailFlag t) { return KolmogorovCDF(x, p[0], t); },
     [](double q, const double* p, TailFlag t) { return KolmogorovICDF(q, p[0], t); },
     [](Dice& dice, double* p) { p[0] = std::floor(dice.PowerOfTen(0, dice.Unit() < 0.8 ? 2.15 : 4)); },
     [](Dice& dice, const double* p) { return dice.Between(0.3, 2.2) / std::sqrt(p[0]); }, false, 6e-7, 3e-5, 1e-5},
    {"FNCHypergeometric",
     [](double x, const double* p, TailFlag t) {
         return FNCHypergeometricCDF(static_cast<int>(x), static_cast<int>(p[0]), static_cast<int>(p[1]),
                                     static_cast<int>(p[2]), p[3], t, 1e-12);
     },
     [](double q, const double* p, TailFlag t) {
         return FNCHypergeometricICDF(q, static_cast<int>(p[0]), static_cast<int>(p[1]), static_cast<int>(p[2]), p[3],
                                      t, 1e-12);
     },
     [](Dice& dice, double* p) {
         p[2] = dice.Whole(2, 500), p[0] = dice.Whole(0, p[2]), p[1] = dice.Whole(0, p[2]),
         p[3] = dice.PowerOfTen(-2, 2);
     },
     [](Dice& dice, const double* p) { return dice.Whole(std::max(0.0, p[0] + p[1] - p[2]), std::min(p[0], p[1])); },
     true, 1e-12, 1e-12, 1e-9},
    {"MCa",
     [](double x, const double* p, TailFlag t) { return MCaCDF(x, static_cast<int>(p[0]), p[1], kEqual.lambda, t); },
     [](double q, const double* p, TailFlag t) { return MCaICDF(q, static_cast<int>(p[0]), p[1], kEqual.lambda, t); },
     [](Dice& dice, double* p) { p[0] = dice.Whole(2, kMostGroups), p[1] = dice.PowerOfTen(0.5, 2.99); },
     [](Dice& dice, const double*) { return dice.Between(0.5, 6); }, false, 1e-15, 1e-12, 1e-4},
    {"MCb",
     [](double x, const double* p, TailFlag t) { return MCbCDF(x, static_cast<int>(p[0]), p[1], kEqual.lambda, t); },
     [](double q, const double* p, TailFlag t) { return MCbICDF(q, static_cast<int>(p[0]), p[1], kEqual.lambda, t); },
     [](Dice& dice, double* p) { p[0] = dice.Whole(2, kMostGroups), p[1] = dice.PowerOfTen(0.5, 2.99); },
     [](Dice& dice, const double*) { return dice.Between(-1, 6); }, false, 1e-15, 1e-12, 1e-4},
    {"MCc",
     [](double x, const double* p, TailFlag t) { return MCcCDF(x, static_cast<int>(p[0]), p[1], kEqual.lambda, t); },
     [](double q, const double* p, TailFlag t) { return MCcICDF(q, static_cast<int>(p[0]), p[1], kEqual.lambda, t); },
     [](Dice& dice, double* p) { p[0] = dice.Whole(2, kMostGroups), p[1] = dice.PowerOfTen(0.5, 2.99); },
     [](Dice& dice, const double*) { return dice.Between(0.5, 6); }, false, 1e-15, 1e-12, 1e-4},
};

}  // namespace orvanth::test

#endif
