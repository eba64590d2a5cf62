#include <algorithm>
#include <bit>
#include <cstdint>

#include <boost/math/special_functions/factorials.hpp>

#include "distributions/hypergeometric_kernel.hpp"
#include "frame/policies.hpp"

namespace orvanth {

namespace {

// A factorial with digits in [1, 2) and exponent apart: a product of five digits stays in range.
struct SplitNumber {
    double digits;
    int exponent;
};

// k! for k up to 170; the factorial is one of Boost's constants.
SplitNumber SplitFactorial(std::int64_t k) {
    constexpr std::uint64_t kDigits = 0x000FFFFFFFFFFFFF;
    constexpr std::uint64_t kOne = 0x3FF0000000000000;
    const auto bits =
        std::bit_cast<std::uint64_t>(boost::math::unchecked_factorial<double>(static_cast<unsigned>(k)));
    return {std::bit_cast<double>((bits & kDigits) | kOne), static_cast<int>(bits >> 52) - 1023};
}

// 2^exponent, for the exponent of a normal number.
double PowerOfTwo(int exponent) { return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52); }

}  // namespace

double ProbabilityByFactorials(std::int64_t x, const HypergeometricCounts& c) {
    double above = 1;
    double below = 1;
    int exponent = 0;
    for (const std::int64_t k : {c.n, c.r, c.N - c.n, c.N - c.r}) {
        const SplitNumber factorial = SplitFactorial(k);
        above *= factorial.digits;
        exponent += factorial.exponent;
    }
    for (const std::int64_t k : {c.N, x, c.n - x, c.r - x, c.N - c.n - c.r + x}) {
        const SplitNumber factorial = SplitFactorial(k);
        below *= factorial.digits;
        exponent -= factorial.exponent;
    }
    return above / below * PowerOfTwo(exponent);  // a probability of at least 1e-51
}

double HypergeometricProbability(std::int64_t x, const HypergeometricCounts& c) {
    if (x < c.Lowest() || x > c.Highest()) return 0;
    const double result = c.N <= kLargestFactorialPopulation ? ProbabilityByFactorials(x, c)
                          : c.N <= kLargestLongFactorial     ? ProbabilityByLongFactorials(x, c)
                                                             : ProbabilityByLanczos(x, c);
    return Narrow(std::clamp(result, 0.0, 1.0), "boost::math::hypergeometric_pdf<%1%>(%1%,%1%,%1%,%1%)");
}

}  // namespace orvanth
