// The hypergeometric probability as a ratio of nine factorials, each by the Lanczos approximation
//   k! = (k + g + 1/2)^(k + 1/2) e^-(k + g + 1/2) S(k + 1).
// The powers are combined before they are taken, larger exponents reduced by smaller ones, so that
// neither overflow nor underflow comes up on the way. The order of the operations is that of
// Boost.Math's own Lanczos form of this probability, because its digits are kept, errors included.
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include <boost/math/special_functions/lanczos.hpp>

#include "distributions/hypergeometric_kernel.hpp"

namespace orvanth {

namespace {

using Lanczos = boost::math::lanczos::lanczos13m53;

constexpr double kSmallest = std::numeric_limits<double>::min();

// Up to this many repeated products are taken one by one, as the digits demand; above it, where
// populations are beyond a million and the form keeps ten digits at best, by one power: the loop
// would take seconds for small counts in a large population.
constexpr double kMostProducts = 0x1p20;

// Most quotients of two exponents are small, and found faster by counting than by a division.
constexpr double kFewTimes = 4;

// (base e^eFactor)^exponent
struct Power {
    double base;
    double exponent;
    double eFactor;

    double Value() const {
        const double scaled = base * std::exp(eFactor);
        if (exponent == 1) return scaled;
        if (exponent == 0.5) return std::sqrt(scaled);
        return std::pow(scaled, exponent);
    }
};

bool IsLarger(const Power& a, const Power& b) { return a.exponent > b.exponent; }

class PowerList {
public:
    PowerList(std::int64_t x, const HypergeometricCounts& c)
        : powers_{Above(c.n), Above(c.r),     Above(c.N - c.n), Above(c.N - c.r),          Below(c.N),
                  Below(x),   Below(c.n - x), Below(c.r - x),   Below(c.N - c.n - c.r + x)} {
        for (std::size_t i = 1; i < powers_.size(); ++i)
            for (std::size_t j = i; j > 0 && IsLarger(powers_[j], powers_[j - 1]); --j)
                std::swap(powers_[j], powers_[j - 1]);
    }

    // The product of all powers; 0 where it is below the normal range.
    double Product() {
        do {
            if (!ReduceLargest()) return 0;
        } while (powers_[1].exponent > 1);
        JoinEqualExponents();
        // Here, and only here, the first power is taken as a power whatever its exponent.
        double result = std::pow(powers_[0].base * std::exp(powers_[0].eFactor), powers_[0].exponent);
        for (std::size_t i = 1; i < powers_.size() && powers_[i].exponent > 0; ++i) {
            if (result < kSmallest) return 0;
            result *= powers_[i].Value();
        }
        return result;
    }

private:
    static double Base(std::int64_t k) { return static_cast<double>(k) + Lanczos::g() + 0.5; }
    static Power Above(std::int64_t k) { return {Base(k), static_cast<double>(k) + 0.5, -1}; }
    static Power Below(std::int64_t k) { return {1 / Base(k), static_cast<double>(k) + 0.5, 1}; }

    // a^p b^q = a^(p - mq) (a^m b)^q, with the m that leaves p - mq no larger than q.
    bool ReduceLargest() {
        Power& first = powers_[0];
        Power& second = powers_[1];
        double times = 1;
        while (times < kFewTimes && first.exponent > (times + 1) * second.exponent) ++times;
        if (times == kFewTimes) times = std::ceil(first.exponent / second.exponent) - 1;
        first.exponent -= times * second.exponent;
        second.eFactor += times * first.eFactor;
        if (times <= kMostProducts)
            for (double i = 0; i < times; ++i) second.base *= first.base;
        else
            second.base *= std::pow(first.base, times);
        if (second.base < kSmallest) return false;
        SinkFrom(0);
        return true;
    }

    void SinkFrom(std::size_t i) {
        for (; i + 1 < powers_.size() && !IsLarger(powers_[i], powers_[i + 1]); ++i)
            std::swap(powers_[i], powers_[i + 1]);
    }

    void JoinEqualExponents() {
        for (std::size_t j = powers_.size() - 1; j > 0; --j) {
            Power& left = powers_[j - 1];
            Power& right = powers_[j];
            if (right.exponent == 0 || left.exponent != right.exponent) continue;
            left.base *= right.base;
            left.eFactor += right.eFactor;
            right.exponent = 0;
            SinkFrom(j);
        }
    }

    std::array<Power, 9> powers_;
};

double Sum(std::int64_t k) { return Lanczos::lanczos_sum_expG_scaled(static_cast<double>(k + 1)); }

}  // namespace

double ProbabilityByLanczos(std::int64_t x, const HypergeometricCounts& c) {
    const double product = PowerList(x, c).Product();
    if (product == 0) return 0;
    return product * (Sum(c.n) * Sum(c.r) * Sum(c.N - c.n) * Sum(c.N - c.r) /
                      (Sum(c.N) * Sum(x) * Sum(c.n - x) * Sum(c.r - x) * Sum(c.N - c.n - c.r + x)));
}

}  // namespace orvanth
