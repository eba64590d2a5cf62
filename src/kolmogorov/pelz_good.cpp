#include "kolmogorov/pelz_good.hpp"

#include <cmath>

namespace orvanth::kolmogorov {

namespace {

constexpr double kPi2 = 9.869604401089358;
constexpr double kThreePi2 = 29.608813203268074;
constexpr double kPi4 = 97.40909103400243;
constexpr double kPi6 = 961.3891935753043;
constexpr double kRootTwoPi = 2.506628274631001;
constexpr double kRootHalfPi = 1.2533141373155001;
constexpr double kEpsilon = 1e-10;
constexpr int kLastTerm = 20;

// Sums term(j) for j from `first` while the term before counts against the sum. The plain test
// compares signed values, the absolute one magnitudes.
template <class Term>
double SumPlain(int first, Term term) {
    double sum = 0.0, last = 1.0;
    for (int j = first; j <= kLastTerm && last > kEpsilon * sum; ++j) sum += last = term(j);
    return sum;
}

template <class Term>
double SumAbsolute(int first, Term term) {
    double sum = 0.0, last = 1.0;
    for (int j = first; j <= kLastTerm && std::fabs(last) > kEpsilon * std::fabs(sum); ++j) sum += last = term(j);
    return sum;
}

}  // namespace

double PelzGood(std::int32_t n, double x) {
    const double nd = n;
    const double r = std::sqrt(nd);
    const double z = r * x;
    const double z2 = z * z;
    const double z4 = z2 * z2;
    const double z6 = z4 * z2;
    const double w = kPi2 / ((2.0 * z) * z);

    double total = SumPlain(0, [&](int j) {
        const double ti = j + 0.5;
        return std::exp(-ti * ti * w);
    });
    total = (kRootTwoPi / z) * total;

    double sum = SumAbsolute(0, [&](int j) {
        const double ti = j + 0.5;
        return std::exp(-ti * ti * w) * (kPi2 * ti * ti - z2);
    });
    total += (sum * kRootHalfPi) / (3.0 * r * z4);

    sum = SumAbsolute(0, [&](int j) {
        const double ti = j + 0.5;
        const double t2 = ti * ti;
        return std::exp(-t2 * w) *
               (6.0 * z6 + 2.0 * z4 + kPi2 * (2.0 * z4 - 5.0 * z2) * t2 + kPi4 * (1.0 - 2.0 * z2) * t2 * t2);
    });
    total += (sum * kRootHalfPi) / (36.0 * nd * z * z6);

    sum = SumPlain(1, [&](int j) {
        const double j2 = static_cast<double>(j) * j;
        return std::exp(-j2 * w) * kPi2 * j2;
    });
    total -= (sum * kRootHalfPi) / (18.0 * nd * z * z2);

    sum = SumAbsolute(0, [&](int j) {
        const double ti = j + 0.5;
        const double t2 = ti * ti;
        const double t4 = t2 * t2;
        return std::exp(-t2 * w) * (-30.0 * z6 - 90.0 * z6 * z2 + kPi2 * (135.0 * z4 - 96.0 * z6) * t2 +
                                    kPi4 * (212.0 * z4 - 60.0 * z2) * t4 + kPi6 * (5.0 - 30.0 * z2) * t4 * t2);
    });
    total += (sum * kRootHalfPi) / (3240.0 * nd * r * z4 * z6);

    sum = SumAbsolute(1, [&](int j) {
        const double j2 = static_cast<double>(j) * j;
        return std::exp(-j2 * w) * (kThreePi2 * j2 * z2 - kPi4 * j2 * j2);
    });
    total += (sum * kRootHalfPi) / (108.0 * nd * r * z6);
    return total;
}

}  // namespace orvanth::kolmogorov
