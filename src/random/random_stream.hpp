// The Mersenne Twister MT19937 as a stream of 32-bit words, one word to each number delivered.
// M. Matsumoto and T. Nishimura, ACM Trans. Model. Comput. Simul. 8 (1998) 3; seeding by array as
// revised in 2002.
#ifndef ORVANTH_RANDOM_RANDOM_STREAM_HPP
#define ORVANTH_RANDOM_RANDOM_STREAM_HPP

#include <cstdint>

namespace orvanth {

inline constexpr std::int32_t kMersenneTwister = 0x800000;
inline constexpr std::int32_t kStateWords = 624;

// Statuses.
inline constexpr std::int32_t kStatusOk = 0;
inline constexpr std::int32_t kStatusUnknownMethod = -2;
inline constexpr std::int32_t kStatusBadArgument = -3;
inline constexpr std::int32_t kStatusNoMemory = -4;
inline constexpr std::int32_t kStatusNullStream = -5;
inline constexpr std::int32_t kStatusBadGenerator = -1000;
inline constexpr std::int32_t kStatusNoLeapfrog = -1002;
inline constexpr std::int32_t kStatusNoSkipAhead = -1003;
inline constexpr std::int32_t kStatusNotAStream = -1006;

struct alignas(64) RandomStream {
    std::int32_t generator;
    std::uint8_t marker;  // 1 while the stream lives
    void* attachments;    // always empty for this generator
    std::uint32_t attachmentsWord;
    std::uint32_t state[kStateWords];
    std::int32_t position;  // of the next word; kStateWords: the block is used up
};

std::int32_t vslNewStream(RandomStream** stream, std::int32_t generator, std::uint32_t seed);

// Stores a null pointer through `stream` on success.
std::int32_t vslDeleteStream(RandomStream** stream);

// 0 if usable, kStatusNullStream, or kStatusNotAStream.
std::int32_t CheckStream(const RandomStream* stream);

// Method 0 seeds with `length` key words; a length below 1 stands for the key 1.
std::int32_t SeedMersenneTwister(std::int32_t method, RandomStream* stream, std::int32_t length,
                                 const std::uint32_t* key);

void RefillTwisterState(RandomStream* stream);

// A count below 1 draws nothing. Doubles are a + word * ((b - a) 2^-32).
std::int32_t FillUniformWords(RandomStream* stream, std::int32_t count, std::uint32_t* words);
std::int32_t FillUniformDoubles(RandomStream* stream, std::int32_t count, double* values, double a, double b);

// The floor of each such double, as an integer.
void FillUniformIntegers(RandomStream* stream, std::int32_t count, std::int32_t* values, double a, double b);

}  // namespace orvanth

#endif
