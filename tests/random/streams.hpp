#pragma once
// What the tests of the random streams share.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "random/numeric_mode.hpp"
#include "random/random_stream.hpp"

namespace orvanth::test {

struct Stream {
    RandomStream* stream = nullptr;
    explicit Stream(std::uint32_t seed) { vslNewStream(&stream, kMersenneTwister, seed); }
    ~Stream() { vslDeleteStream(&stream); }
    std::vector<std::uint32_t> Words(std::int32_t count) {
        std::vector<std::uint32_t> words(static_cast<std::size_t>(count));
        FillUniformWords(stream, count, words.data());
        return words;
    }
};

inline std::uint32_t Untemper(std::uint32_t y) {
    y ^= y >> 18;
    y ^= (y << 15) & 0xefc60000u;
    std::uint32_t z = y;
    for (int i = 0; i < 5; ++i) z = y ^ ((z << 7) & 0x9d2c5680u);
    y = z;
    for (int i = 0; i < 3; ++i) z = y ^ (z >> 11);
    return z;
}

// A stream whose next words are those given: tempering is undone.
struct ScriptedStream : Stream {
    explicit ScriptedStream(const std::vector<std::uint32_t>& words) : Stream(1) {
        stream->position = 0;
        for (std::size_t i = 0; i < words.size(); ++i) stream->state[i] = Untemper(words[i]);
    }
};
template <class Function>
std::string Printed(Function function) {
    testing::internal::CaptureStdout();
    function();
    return testing::internal::GetCapturedStdout();
}

// Stands for a callback of the host's: keeps what it was told and answers 42.
inline std::int32_t lastCode, lastIndex;
inline std::int32_t NoteError(NumericError* error) {
    lastCode = error->code;
    lastIndex = error->index;
    error->result1 = 42;
    return 0;
}

}  // namespace orvanth::test
