#pragma once
// What the tests of the random streams share.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "random/mersenne_twister.hpp"

namespace orvanth::test {

inline std::vector<std::uint32_t> NextWords(MersenneTwister& twister, std::size_t count) {
    std::vector<std::uint32_t> words(count);
    FillUniformWords(twister, words);
    return words;
}

inline std::vector<std::uint32_t> WordsOf(std::uint32_t seed, std::size_t count) {
    MersenneTwister twister(seed);
    return NextWords(twister, count);
}

inline std::uint32_t Untemper(std::uint32_t y) {
    y ^= y >> 18;
    y ^= (y << 15) & 0xefc60000u;
    std::uint32_t z = y;
    for (int i = 0; i < 5; ++i) z = y ^ ((z << 7) & 0x9d2c5680u);
    y = z;
    for (int i = 0; i < 3; ++i) z = y ^ (z >> 11);
    return z;
}

// A generator whose next words are those given: tempering is undone.
inline MersenneTwister ScriptedTwister(const std::vector<std::uint32_t>& words) {
    MersenneTwister twister(1);
    twister.position = 0;
    for (std::size_t i = 0; i < words.size(); ++i) twister.state[i] = Untemper(words[i]);
    return twister;
}

// What a call printed on standard output.
template <class Function>
std::string Printed(Function function) {
    testing::internal::CaptureStdout();
    function();
    return testing::internal::GetCapturedStdout();
}

// The text of a failed check.
inline std::string Message(int parameter, const std::string& routine) {
    return "\nMKL ERROR: Parameter " + std::to_string(parameter) + " was incorrect on entry to " + routine + ".\n";
}

}  // namespace orvanth::test
