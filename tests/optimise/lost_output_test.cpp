// A program of its own: messages that could not be written stay in the buffer of the Fortran runtime, where other
// tests would find them.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <vector>

#include "optimise/problems.hpp"
#include "support/broken_output.hpp"

extern "C" void _gfortran_flush_i4(std::int32_t* unit);  // all units if null

namespace {

using namespace orvanth::test;

// Enough messages to fill the output buffer of the Fortran runtime several times.
TEST(Output, WhereStandardOutputTakesNothingTheMessagesAreLostSilently) {
    for (const auto state : {BrokenOutput::kClosed, BrokenOutput::kFull}) {
        int wrong = 0;
        {
            const BrokenOutput output(state);
            for (int i = 0; i < 1000; ++i) {
                errno = 7;
                Minimisation run(Unbounded({1e20}));
                const std::int32_t code = run.Drive([](const std::vector<double>&, std::vector<double>& g) {
                    g[0] = 1;
                    return 5.0;
                });
                if (code != 4 || errno != 7) ++wrong;
            }
            _gfortran_flush_i4(nullptr);
        }
        EXPECT_EQ(wrong, 0);
    }
}

}  // namespace
