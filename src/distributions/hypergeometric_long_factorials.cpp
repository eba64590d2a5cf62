// The hypergeometric probability as a ratio of nine factorials that are known to 77 bits: each is an
// unevaluated sum of two doubles and a power of two. Products and the quotient are those of
// T. J. Dekker, A floating-point technique for extending the available precision, Numer. Math. 18
// (1971) 224, with the fused multiply-add for the error of a product. The quotient is rounded once.
#include <array>
#include <cmath>
#include <cstdint>

#include "distributions/hypergeometric_kernel.hpp"
#include "frame/platform.hpp"

namespace orvanth {

namespace {

// value = (high + low) 2^exponent
struct TableEntry {
    double high;
    float low;
    std::int32_t exponent;
};

constexpr std::uint32_t kStride = 6;

// k! for every multiple k of kStride; 280 kB, where all factorials would take 1.7 MB.
constexpr TableEntry kFactorials[] = {
#include "distributions/factorial_table.inc"
};
static_assert(std::size(kFactorials) == kLargestLongFactorial / kStride + 1);

// The functions below are part of each clone of the kernel, so that the multiply-add of its processor is
// an instruction there.
struct LongNumber {
    double high;
    double low;
    std::int32_t exponent;
};

[[gnu::always_inline]] inline LongNumber operator*(const LongNumber& a, double b) {
    const double high = a.high * b;
    return {high, a.low * b + std::fma(a.high, b, -high), a.exponent};
}

[[gnu::always_inline]] inline LongNumber operator*(const LongNumber& a, const LongNumber& b) {
    const double high = a.high * b.high;
    return {high, a.low * b.high + a.high * b.low + std::fma(a.high, b.high, -high), a.exponent + b.exponent};
}

[[gnu::always_inline]] inline double Quotient(const LongNumber& a, const LongNumber& b) {
    const double quotient = a.high / b.high;
    const double remainder = std::fma(-quotient, b.high, a.high) + a.low - quotient * b.low;
    return std::ldexp(quotient + remainder / b.high, a.exponent - b.exponent);
}

// kTaken[m][i] tells whether the factor q + 1 + i belongs to (q + m)! / q!. The factors are chosen by
// multiplication because a branch on m would be mispredicted.
constexpr double kTaken[kStride][kStride - 1] = {{0, 0, 0, 0, 0}, {1, 0, 0, 0, 0}, {1, 1, 0, 0, 0},
                                                 {1, 1, 1, 0, 0}, {1, 1, 1, 1, 0}, {1, 1, 1, 1, 1}};

[[gnu::always_inline]] inline LongNumber LongFactorial(std::int64_t k) {
    const auto count = static_cast<std::uint32_t>(k);
    const TableEntry& below = kFactorials[count / kStride];
    const double* taken = kTaken[count % kStride];
    const auto q = static_cast<double>(count / kStride * kStride);
    // q + 1 + i or 1. Three factors below 2^17 have an exact product.
    const auto factor = [taken, q](int i) { return taken[i] * (q + i) + 1; };
    return LongNumber{below.high, below.low, below.exponent} * (factor(0) * factor(1) * factor(2)) *
           (factor(3) * factor(4));
}

}  // namespace

ORVANTH_FUSED_CLONES
double ProbabilityByLongFactorials(std::int64_t x, const HypergeometricCounts& c) {
    const LongNumber above =
        (LongFactorial(c.n) * LongFactorial(c.r)) * (LongFactorial(c.N - c.n) * LongFactorial(c.N - c.r));
    const LongNumber below = (LongFactorial(x) * LongFactorial(c.n - x)) *
                             (LongFactorial(c.r - x) * LongFactorial(c.N - c.n - c.r + x)) * LongFactorial(c.N);
    return Quotient(above, below);
}

}  // namespace orvanth
