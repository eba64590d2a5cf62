#include "distributions/hypergeometric_primes.hpp"

#include "support/many_digits.hpp"

namespace orvanth::test {

namespace {

std::vector<std::int32_t> Sieve() {
    std::vector<bool> composite(kLargestLongFactorial + 1);
    std::vector<std::int32_t> primes;
    for (std::int64_t i = 2; i <= kLargestLongFactorial; ++i) {
        if (composite[static_cast<std::size_t>(i)]) continue;
        primes.push_back(static_cast<std::int32_t>(i));
        for (std::int64_t j = i * i; j <= kLargestLongFactorial; j += i)
            composite[static_cast<std::size_t>(j)] = true;
    }
    return primes;
}

// The power of a prime in k!, by Legendre's formula.
int PowerInFactorial(std::int64_t k, std::int64_t prime) {
    int power = 0;
    while (k >= prime) {
        k /= prime;
        power += static_cast<int>(k);
    }
    return power;
}

}  // namespace

std::vector<std::pair<std::int32_t, int>> PrimeFactors(std::int64_t x, const HypergeometricCounts& c) {
    static const std::vector<std::int32_t> primes = Sieve();
    std::vector<std::pair<std::int32_t, int>> factors;
    for (const std::int32_t prime : primes) {
        if (prime > c.N) break;
        int power = 0;
        for (const std::int64_t k : {c.n, c.r, c.N - c.n, c.N - c.r}) power += PowerInFactorial(k, prime);
        for (const std::int64_t k : {c.N, x, c.n - x, c.r - x, c.N - c.n - c.r + x})
            power -= PowerInFactorial(k, prime);
        if (power != 0) factors.emplace_back(prime, power);
    }
    return factors;
}

// 320 bits leave room for the roundings of some ten thousand products.
double ProbabilityByPrimes(std::int64_t x, const HypergeometricCounts& counts) {
    Wide320 above = 1;
    Wide320 below = 1;
    for (const auto& [prime, power] : PrimeFactors(x, counts)) {
        for (int i = 0; i < power; ++i) above *= prime;
        for (int i = 0; i > power; --i) below *= prime;
    }
    return static_cast<double>(above / below);
}

}  // namespace orvanth::test
