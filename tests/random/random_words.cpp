// The words of a stream as bytes on standard output until the reader stops:  random_words [seed] | ...
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "random/mersenne_twister.hpp"

int main(int argc, char** argv) {
    orvanth::MersenneTwister twister(static_cast<std::uint32_t>(argc > 1 ? std::strtoul(argv[1], nullptr, 0) : 1));
    std::vector<std::uint32_t> words(1 << 16);
    do FillUniformWords(twister, words);
    while (std::fwrite(words.data(), sizeof words[0], words.size(), stdout) == words.size());
}
