// The words of a stream as bytes on standard output, until no one reads them:  random_words [seed] | ...
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "random/random_stream.hpp"

int main(int argc, char** argv) {
    orvanth::RandomStream* stream = nullptr;
    const auto seed = static_cast<std::uint32_t>(argc > 1 ? std::strtoul(argv[1], nullptr, 0) : 1);
    if (orvanth::vslNewStream(&stream, orvanth::kMersenneTwister, seed) != orvanth::kStatusOk) return 1;
    std::vector<std::uint32_t> words(1 << 16);
    do {
        orvanth::FillUniformWords(stream, static_cast<std::int32_t>(words.size()), words.data());
    } while (std::fwrite(words.data(), sizeof words[0], words.size(), stdout) == words.size());
}
