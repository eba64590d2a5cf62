// The record behind a RandomStreamHandle.
#ifndef ORVANTH_RANDOM_RANDOM_STREAM_HPP
#define ORVANTH_RANDOM_RANDOM_STREAM_HPP

#include <cstddef>
#include <cstdint>

#include "random/bad_parameter.hpp"
#include "random/mersenne_twister.hpp"

namespace orvanth {

struct alignas(64) RandomStream {
    explicit RandomStream(std::uint32_t seed) noexcept : twister(seed) {}

    std::int32_t generator = 0x800000;  // MT19937
    std::uint8_t marker = 1;            // of a live stream
    MersenneTwister twister;
};

// A host can pass any address as a handle. The marker is looked for at this place and nowhere else.
static_assert(offsetof(RandomStream, marker) == 4);

inline std::int32_t CheckStream(const RandomStream* stream) {
    if (stream == nullptr) return kStatusNullStream;
    return stream->marker == 1 ? kStatusOk : kStatusNotAStream;
}

}  // namespace orvanth

#endif
