#include "random/random_stream.hpp"

#include <algorithm>
#include <array>
#include <new>

#include "frame/platform.hpp"
#include "random/transforms.hpp"

namespace orvanth {

namespace {

constexpr std::int32_t kShift = 397;
constexpr double kTwoToMinus32 = 2.3283064365386963e-10;

// Where every seeding by a key starts.
constexpr std::array<std::uint32_t, kStateWords> kBeforeTheKey = [] {
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

// Each loop reads no word that it has overwritten within the width of a vector.
ORVANTH_VECTOR_CLONES
void Refill(std::uint32_t* mt) {
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

// The floor by truncation and a correction below zero.
ORVANTH_VECTOR_CLONES
void TemperIntegers(const std::uint32_t* __restrict state, std::int32_t count, std::int32_t* __restrict values,
                    double a, double scale) {
    for (std::int32_t i = 0; i < count; ++i) {
        const double value = ToDouble(TemperWord(state[i])) * scale + a;
        const std::int32_t truncated = static_cast<std::int32_t>(value);
        values[i] = truncated - (static_cast<double>(truncated) > value ? 1 : 0);
    }
}

// Calls temper(state, n, done) for stretches of the block that make up `count` words; a block is
// refilled at the moment the next word is needed.
template <class Temper>
void Draw(RandomStream* stream, std::int32_t count, Temper temper) {
    for (std::int32_t done = 0; done < count;) {
        if (stream->position >= kStateWords) {
            RefillTwisterState(stream);
            stream->position = 0;
        }
        const std::int32_t n = std::min(kStateWords - stream->position, count - done);
        temper(stream->state + stream->position, n, done);
        stream->position += n;
        done += n;
    }
}

}  // namespace

std::int32_t vslNewStream(RandomStream** stream, std::int32_t generator, std::uint32_t seed) {
    if (generator != kMersenneTwister) {
        ReportBadParameter("vslNewStream", 2);
        return kStatusBadGenerator;
    }
    *stream = new (std::nothrow) RandomStream;
    if (*stream == nullptr) return kStatusNoMemory;
    (*stream)->generator = generator;
    (*stream)->attachments = nullptr;
    (*stream)->attachmentsWord = 0;
    (*stream)->marker = 1;
    return SeedMersenneTwister(0, *stream, 1, &seed);
}

std::int32_t vslDeleteStream(RandomStream** stream) {
    const std::int32_t status = CheckStream(*stream);
    if (status < 0) {
        ReportBadParameter("vslDeleteStream", 1);
        return status;
    }
    delete *stream;
    *stream = nullptr;
    return kStatusOk;
}

std::int32_t CheckStream(const RandomStream* stream) {
    if (stream == nullptr) return kStatusNullStream;
    return stream->marker == 1 ? kStatusOk : kStatusNotAStream;
}

std::int32_t SeedMersenneTwister(std::int32_t method, RandomStream* stream, std::int32_t length,
                                 const std::uint32_t* key) {
    if (method == 1) return kStatusNoLeapfrog;
    if (method == 2) return kStatusNoSkipAhead;
    if (method != 0) return kStatusUnknownMethod;
    constexpr std::uint32_t one = 1;
    if (length < 1) {
        key = &one;
        length = 1;
    }
    std::uint32_t* const mt = stream->state;
    std::ranges::copy(kBeforeTheKey, mt);
    stream->position = kStateWords;

    std::int32_t i = 1, j = 0;
    const auto advance = [&] {
        if (++i == kStateWords) {
            mt[0] = mt[kStateWords - 1];
            i = 1;
        }
    };
    for (std::int32_t n = std::max(kStateWords, length); n > 0; --n) {
        mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1664525u)) + key[j] + static_cast<std::uint32_t>(j);
        advance();
        if (++j == length) j = 0;
    }
    for (std::int32_t n = kStateWords - 1; n > 0; --n) {
        mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1566083941u)) - static_cast<std::uint32_t>(i);
        advance();
    }
    mt[0] = 0x80000000u;
    return kStatusOk;
}

void RefillTwisterState(RandomStream* stream) { Refill(stream->state); }

std::int32_t FillUniformWords(RandomStream* stream, std::int32_t count, std::uint32_t* words) {
    Draw(stream, count,
         [&](const std::uint32_t* state, std::int32_t n, std::int32_t done) { TemperWords(state, n, words + done); });
    return kStatusOk;
}

std::int32_t FillUniformDoubles(RandomStream* stream, std::int32_t count, double* values, double a, double b) {
    const double scale = (b - a) * kTwoToMinus32;
    Draw(stream, count, [&](const std::uint32_t* state, std::int32_t n, std::int32_t done) {
        TemperDoubles(state, n, values + done, a, scale);
    });
    return kStatusOk;
}

void FillUniformIntegers(RandomStream* stream, std::int32_t count, std::int32_t* values, double a, double b) {
    const double scale = (b - a) * kTwoToMinus32;
    Draw(stream, count, [&](const std::uint32_t* state, std::int32_t n, std::int32_t done) {
        TemperIntegers(state, n, values + done, a, scale);
    });
}

}  // namespace orvanth
