#include "random/mersenne_twister.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "frame/platform.hpp"

namespace orvanth {

namespace {

constexpr std::int32_t kShift = 397;
constexpr double kTwoToMinus32 = 2.3283064365386963e-10;

// The state from which every seed starts: that of the plain seeding by 19650218.
constexpr std::array<std::uint32_t, kStateWords> kUnseeded = [] {
    std::array<std::uint32_t, kStateWords> mt{};
    mt[0] = 19650218u;
    for (std::uint32_t i = 1; i < kStateWords; ++i) mt[i] = 1812433253u * (mt[i - 1] ^ (mt[i - 1] >> 30)) + i;
    return mt;
}();

inline std::uint32_t Twist(std::uint32_t upper, std::uint32_t lower) {
    const std::uint32_t y = (upper & 0x80000000u) | (lower & 0x7fffffffu);
    return (y >> 1) ^ ((0u - (y & 1u)) & 0x9908b0dfu);
}

inline std::uint32_t TemperWord(std::uint32_t y) {
    y ^= y >> 11;
    y ^= (y << 7) & 0x9d2c5680u;
    y ^= (y << 15) & 0xefc60000u;
    return y ^ (y >> 18);
}

// The next block in place of the last. Each loop reads a word that it has written only at a distance of 227 words,
// so the compiler may take vectors of words.
ORVANTH_VECTOR_CLONES
void RefillTwisterState(std::uint32_t* mt) {
    for (std::int32_t k = 0; k < kStateWords - kShift; ++k) mt[k] = mt[k + kShift] ^ Twist(mt[k], mt[k + 1]);
    for (std::int32_t k = kStateWords - kShift; k < kStateWords - 1; ++k)
        mt[k] = mt[k - (kStateWords - kShift)] ^ Twist(mt[k], mt[k + 1]);
    mt[kStateWords - 1] = mt[kShift - 1] ^ Twist(mt[kStateWords - 1], mt[0]);
}

ORVANTH_VECTOR_CLONES
void TemperWords(const std::uint32_t* __restrict state, std::int32_t count, std::uint32_t* __restrict words) {
    for (std::int32_t i = 0; i < count; ++i) words[i] = TemperWord(state[i]);
}

// An unsigned word as a double, exactly, through the signed conversion that vectors have.
inline double ToDouble(std::uint32_t word) {
    return static_cast<double>(static_cast<std::int32_t>(word ^ 0x80000000u)) + 2147483648.0;
}

ORVANTH_VECTOR_CLONES
void TemperDoubles(const std::uint32_t* __restrict state, std::int32_t count, double* __restrict values, double a,
                   double scale) {
    for (std::int32_t i = 0; i < count; ++i) values[i] = ToDouble(TemperWord(state[i])) * scale + a;
}

// The values are not negative, so the conversion, which truncates, is the floor.
ORVANTH_VECTOR_CLONES
void TemperIntegers(const std::uint32_t* __restrict state, std::int32_t count, std::int32_t* __restrict values,
                    double scale) {
    for (std::int32_t i = 0; i < count; ++i)
        values[i] = static_cast<std::int32_t>(ToDouble(TemperWord(state[i])) * scale);
}

// Calls temper(state, n, to) for stretches of the block until `numbers` are made. The block is refilled at the
// moment the next word is needed.
template <class Number, class Temper>
void Draw(MersenneTwister& twister, std::span<Number> numbers, Temper temper) {
    while (!numbers.empty()) {
        if (twister.position >= kStateWords) {
            RefillTwisterState(twister.state);
            twister.position = 0;
        }
        const std::size_t left = static_cast<std::size_t>(kStateWords - twister.position);
        const std::size_t n = std::min(left, numbers.size());
        temper(twister.state + twister.position, static_cast<std::int32_t>(n), numbers.data());
        twister.position += static_cast<std::int32_t>(n);
        numbers = numbers.subspan(n);
    }
}

}  // namespace

MersenneTwister::MersenneTwister(std::uint32_t seed) noexcept : position(kStateWords) {
    std::ranges::copy(kUnseeded, state);
    // Both passes go round the words 1 to 623. Word 0 stands for the last one at each turn.
    std::int32_t i = 1;
    const auto advance = [&] {
        if (++i == kStateWords) {
            state[0] = state[kStateWords - 1];
            i = 1;
        }
    };
    for (std::int32_t n = kStateWords; n > 0; --n) {
        state[i] = (state[i] ^ ((state[i - 1] ^ (state[i - 1] >> 30)) * 1664525u)) + seed;
        advance();
    }
    for (std::int32_t n = kStateWords - 1; n > 0; --n) {
        state[i] = (state[i] ^ ((state[i - 1] ^ (state[i - 1] >> 30)) * 1566083941u)) - static_cast<std::uint32_t>(i);
        advance();
    }
    state[0] = 0x80000000u;
}

void FillUniformWords(MersenneTwister& twister, std::span<std::uint32_t> words) { Draw(twister, words, TemperWords); }

void FillUniformDoubles(MersenneTwister& twister, std::span<double> values, double a, double b) {
    const double scale = (b - a) * kTwoToMinus32;
    Draw(twister, values, [a, scale](const std::uint32_t* state, std::int32_t n, double* to) {
        TemperDoubles(state, n, to, a, scale);
    });
}

void FillUniformIntegers(MersenneTwister& twister, std::span<std::int32_t> values, std::int32_t bound) {
    const double scale = bound * kTwoToMinus32;
    Draw(twister, values, [scale](const std::uint32_t* state, std::int32_t n, std::int32_t* to) {
        TemperIntegers(state, n, to, scale);
    });
}

}  // namespace orvanth
