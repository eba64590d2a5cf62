#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include <boost/math/special_functions/factorials.hpp>

#include "distributions/hypergeometric_kernel.hpp"
#include "frame/platform.hpp"
#include "frame/policies.hpp"

namespace orvanth {

namespace {

constexpr std::size_t kPrimeCount = 10000;

constexpr std::array<std::int32_t, kPrimeCount> Sieve() {
    std::array<bool, kLargestPrimePopulation + 1> composite{};
    std::array<std::int32_t, kPrimeCount> primes{};
    std::size_t count = 0;
    for (std::int64_t i = 2; i <= kLargestPrimePopulation; ++i) {
        if (composite[static_cast<std::size_t>(i)]) continue;
        primes[count++] = static_cast<std::int32_t>(i);
        for (std::int64_t j = i * i; j <= kLargestPrimePopulation; j += i)
            composite[static_cast<std::size_t>(j)] = true;
    }
    return primes;
}

constexpr std::array<std::int32_t, kPrimeCount> kPrimes = Sieve();
static_assert(kPrimes[0] == 2 && kPrimes[kPrimeCount - 1] == kLargestPrimePopulation);

// A product of whole numbers that neither overflows nor gathers rounding errors: twice the digits
// of a double, and a power of two apart.
class LongProduct {
public:
    // factor is at most 2^53.
    void Multiply(double factor) {
        const double product = high_ * factor;
        low_ = low_ * factor + std::fma(high_, factor, -product);
        high_ = product;
        if (high_ > kTooLarge) {
            high_ *= 1 / kTooLarge;
            low_ *= 1 / kTooLarge;
            exponent_ += kStep;
        }
    }

    // high + low divided by other's high + low.
    double Over(const LongProduct& other) const {
        const double quotient = high_ / other.high_;
        const double remainder = std::fma(-quotient, other.high_, high_) + low_ - quotient * other.low_;
        return std::ldexp(quotient + remainder / other.high_, exponent_ - other.exponent_);
    }

private:
    static constexpr int kStep = 256;
    static constexpr double kTooLarge = 0x1p256;
    double high_ = 1;
    double low_ = 0;
    int exponent_ = 0;
};

// The factorials with digits and exponent apart: products of a few stay in range without a look at
// their size.
struct SplitNumber {
    double digits;
    int exponent;
};

SplitNumber Split(double number) {  // positive and normal
    constexpr std::uint64_t kDigits = 0x000FFFFFFFFFFFFF;
    constexpr std::uint64_t kOne = 0x3FF0000000000000;
    const auto bits = std::bit_cast<std::uint64_t>(number);
    return {std::bit_cast<double>((bits & kDigits) | kOne), static_cast<int>(bits >> 52) - 1023};
}

using FactorialTable = std::array<SplitNumber, kLargestFactorialPopulation + 1>;

const FactorialTable& Factorials() {
    static const FactorialTable table = [] {
        FactorialTable split{};
        for (unsigned k = 0; k < split.size(); ++k) split[k] = Split(boost::math::unchecked_factorial<double>(k));
        return split;
    }();
    return table;
}

// Factors gathered in an exact double before they go into the long product.
class FactorList {
public:
    void Add(double factor) {
        if (pending_ * factor > kLargestExact) {
            product_.Multiply(pending_);
            pending_ = 1;
        }
        pending_ *= factor;
    }
    const LongProduct& Finish() {
        product_.Multiply(pending_);
        pending_ = 1;
        return product_;
    }

private:
    static constexpr double kLargestExact = 0x1p53;
    LongProduct product_;
    double pending_ = 1;
};

// The power of a prime in r! n! (N-r)! (N-n)! / (N! x! (n-x)! (r-x)! (N-n-r+x)!).
class PrimePower {
public:
    PrimePower(std::int64_t x, const HypergeometricCounts& c)
        : above_{Count(c.n), Count(c.r), Count(c.N - c.n), Count(c.N - c.r)},
          below_{Count(c.N), Count(x), Count(c.n - x), Count(c.r - x), Count(c.N - c.n - c.r + x)} {}

    // The part of it that the multiples of `base`, a power of the prime, contribute.
    int Of(double base) const {
        const double inverse = 1 / base;
        int power = 0;
        for (const double count : above_) power += static_cast<int>(count * inverse);
        for (const double count : below_) power -= static_cast<int>(count * inverse);
        return power;
    }

private:
    // The half keeps the product with a rounded inverse off the whole numbers, so cutting it off
    // gives the whole quotient for every count of this size.
    static double Count(std::int64_t count) { return static_cast<double>(count) + 0.5; }

    std::array<double, 4> above_;
    std::array<double, 5> below_;
};

// What the multiples of the primes themselves contribute; powers of primes are few.
ORVANTH_VECTOR_CLONES
void FirstPowers(const PrimePower& part, std::size_t count, const std::int32_t* primes, std::int32_t* powers) {
    for (std::size_t i = 0; i < count; ++i) powers[i] = part.Of(static_cast<double>(primes[i]));
}

}  // namespace

double ProbabilityByFactorials(std::int64_t x, const HypergeometricCounts& c) {
    const auto factorial = [&table = Factorials()](std::int64_t k) { return table[static_cast<std::size_t>(k)]; };
    double above = 1;
    double below = 1;
    int exponent = 0;
    for (const std::int64_t k : {c.n, c.r, c.N - c.n, c.N - c.r}) {
        above *= factorial(k).digits;
        exponent += factorial(k).exponent;
    }
    for (const std::int64_t k : {c.N, x, c.n - x, c.r - x, c.N - c.n - c.r + x}) {
        below *= factorial(k).digits;
        exponent -= factorial(k).exponent;
    }
    return std::ldexp(above / below, exponent);
}

double ProbabilityByPrimes(std::int64_t x, const HypergeometricCounts& c) {
    constexpr std::size_t kChunk = 500;
    static_assert(kPrimeCount % kChunk == 0);
    const PrimePower part(x, c);
    FactorList above;
    FactorList below;
    std::array<std::int32_t, kChunk> powers, up, down;
    for (std::size_t first = 0; first < kPrimeCount && kPrimes[first] <= c.N; first += kChunk) {
        FirstPowers(part, kChunk, kPrimes.data() + first, powers.data());
        // Signs come at random: the primes are sorted by them without a branch. Few have more than one factor left.
        std::size_t ups = 0, downs = 0;
        for (std::size_t i = 0; i < kChunk; ++i) {
            const std::int32_t prime = kPrimes[first + i];
            int power = powers[i];
            for (std::int64_t base = std::int64_t{prime} * prime; base <= c.N; base *= prime)
                power += part.Of(static_cast<double>(base));
            up[ups] = prime;
            ups += power > 0;
            down[downs] = prime;
            downs += power < 0;
            for (; power > 1; --power) above.Add(prime);
            for (; power < -1; ++power) below.Add(prime);
        }
        for (std::size_t i = 0; i < ups; ++i) above.Add(up[i]);
        for (std::size_t i = 0; i < downs; ++i) below.Add(down[i]);
    }
    return above.Finish().Over(below.Finish());
}

double HypergeometricProbability(std::int64_t x, const HypergeometricCounts& c) {
    if (x < c.Lowest() || x > c.Highest()) return 0;
    const double result = c.N <= kLargestFactorialPopulation ? ProbabilityByFactorials(x, c)
                          : c.N <= kLargestPrimePopulation   ? ProbabilityByPrimes(x, c)
                                                             : ProbabilityByLanczos(x, c);
    if (result > 1) return 1;
    if (result < 0) return 0;
    return Narrow(result, "boost::math::hypergeometric_pdf<%1%>(%1%,%1%,%1%,%1%)");
}

}  // namespace orvanth
