// Exact probabilities of Fisher's noncentral hypergeometric distribution in whole and rational numbers.
#ifndef ORVANTH_TESTS_NONCENTRAL_HYPERGEOMETRIC_EXACT_SUMS_HPP
#define ORVANTH_TESTS_NONCENTRAL_HYPERGEOMETRIC_EXACT_SUMS_HPP

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "support/many_digits.hpp"

namespace orvanth::test {

// Exact point probabilities by rational sums.
inline std::vector<Rational> ExactProbabilities(std::int32_t n, std::int32_t m, std::int32_t N, Rational odds) {
    const std::int32_t lo = std::max(n + m - N, 0), hi = std::min(n, m);
    const auto binomial = [](std::int32_t a, std::int32_t b) {
        Integer value = 1;
        for (std::int32_t i = 1; i <= b; ++i) value = value * (a - b + i) / i;
        return value;
    };
    std::vector<Rational> terms;
    Rational power = 1, sum = 0;
    for (std::int32_t x = lo; x <= hi; ++x, power *= odds) {
        terms.push_back(ConvertTo<Rational>(binomial(m, x) * binomial(N - m, n - x)) * power);
        sum += terms.back();
    }
    for (Rational& term : terms) term /= sum;
    return terms;
}

// P(X <= x) in whole numbers: the odds are a 53-bit integer times a power of two.
inline double ExactCumulative(std::int32_t x, std::int32_t n, std::int32_t m, std::int32_t N, double odds) {
    int exponent;
    const Integer odd = static_cast<std::int64_t>(std::ldexp(std::frexp(odds, &exponent), 53));
    exponent -= 53;
    const std::int32_t lo = std::max(n + m - N, 0), hi = std::min(n, m);
    const auto binomial = [](std::int32_t a, std::int32_t b) {
        Integer value = 1;
        for (std::int32_t i = 1; i <= b; ++i) value = value * (a - b + i) / i;
        return value;
    };
    Integer marked = binomial(m, lo), rest = binomial(N - m, n - lo), power = 1, lower = 0, sum = 0;
    for (std::int32_t k = lo; k <= hi; ++k) {
        const unsigned shift = static_cast<unsigned>(exponent < 0 ? -exponent * (hi - k) : exponent * (k - lo));
        sum += (marked * rest * power) << shift;
        if (k == x) lower = sum;
        marked = marked * (m - k) / (k + 1);
        rest = rest * (n - k) / (N - m - n + k + 1);
        power *= odd;
    }
    return static_cast<double>(ConvertTo<Wide>(lower) / ConvertTo<Wide>(sum));
}

}  // namespace orvanth::test

#endif
