// The Mersenne Twister MT19937: a seed gives one sequence of 32-bit words.
// M. Matsumoto and T. Nishimura, "Mersenne Twister: a 623-dimensionally equidistributed uniform pseudo-random
// number generator", ACM Transactions on Modeling and Computer Simulation 8 (1998) 3-30. Seeding is that of the
// authors' revision of 2002, by an array of one word.
#ifndef ORVANTH_RANDOM_MERSENNE_TWISTER_HPP
#define ORVANTH_RANDOM_MERSENNE_TWISTER_HPP

#include <cstdint>
#include <span>

namespace orvanth {

inline constexpr std::int32_t kStateWords = 624;

struct MersenneTwister {
    explicit MersenneTwister(std::uint32_t seed) noexcept;

    std::uint32_t state[kStateWords];
    std::int32_t position;  // of the next word; kStateWords: the block is used up
};

// Each function takes one word for each number, in order. How the numbers are divided among calls changes nothing.

void FillUniformWords(MersenneTwister& twister, std::span<std::uint32_t> words);

// a + word * ((b - a) 2^-32), in two rounded operations.
void FillUniformDoubles(MersenneTwister& twister, std::span<double> values, double a, double b);

// floor(word * (bound 2^-32)), from 0 to bound - 1, without rejection.
void FillUniformIntegers(MersenneTwister& twister, std::span<std::int32_t> values, std::int32_t bound);

}  // namespace orvanth

#endif
