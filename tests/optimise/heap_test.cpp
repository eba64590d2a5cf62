// What a minimisation has from the heap: nothing depends on what it held, and a heap without memory gives no state.
#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

#include "optimise/problems.hpp"
#include "support/controlled_new.hpp"

namespace {

using namespace orvanth::test;

// Three variables and two pairs within bounds of three kinds; the minimiser reads a word of its workspace here that
// it has not written.
Problem ReadsUnwrittenWorkspace() {
    Problem problem;
    problem.start = {2.6, -2.4, -2.9};
    problem.lower = {-2.8, 0.8, -2.7};
    problem.upper = {-1.7, 1.5, -0.2};
    problem.kind = {3, 1, 3};
    problem.pairs = 2;
    return problem;
}

struct Path {
    std::int32_t code;
    int evaluations;
    double f;
    std::vector<double> x;
    bool operator==(const Path&) const = default;
};

void PrintTo(const Path& path, std::ostream* out) {
    *out << "code " << path.code << " after " << path.evaluations << " evaluations, f = " << path.f;
}

Path TakeWith(unsigned char byte) {
    const NewFilledWith filled(byte);
    Minimisation run(ReadsUnwrittenWorkspace());
    const std::int32_t code = run.Drive(NamedObjective("rosenbrock_chain"));
    return {code, run.evaluations, run.f, run.x};
}

TEST(LBFGSBStep, TakesTheSamePathWhateverTheHeapHeld) {
    const Path path = TakeWith(0x00);
    EXPECT_EQ(path.code, 3);
    for (const unsigned char byte : {0x40, 0x3f, 0x7f, 0x80, 0xff}) EXPECT_EQ(TakeWith(byte), path) << int{byte};
}

TEST(LBFGSBStart, WithoutMemoryThereIsNoStateAndNothingStaysAllocated) {
    const std::vector<double> lower(3, -1.0), upper(3, 1.0);
    const std::vector<std::int32_t> kind(3, 2);
    const auto start = [&] { return LBFGSBStart(3, 2, lower.data(), upper.data(), kind.data(), 1e7, 1e-5); };
    const long before = LiveBlocks();
    int allocations = 0;
    for (bool made = false; !made; ++allocations) {
        ASSERT_LT(allocations, 20);
        LBFGSBDriverState* state = nullptr;
        {
            const NewFailsAfter heap(allocations);
            errno = 7;
            state = start();
        }
        EXPECT_EQ(errno, 7);
        made = state != nullptr;
        if (!made) {
            EXPECT_EQ(LiveBlocks(), before) << allocations;
        }
        LBFGSBEnd(state);
    }
    EXPECT_GT(allocations, 3) << "every allocation has failed once";
    EXPECT_EQ(LiveBlocks(), before);
}

// The largest number of variables for which the workspace is in range: in 32 bits its arrays are beyond the address
// space. In 64 bits they might be found, and nothing is asked.
TEST(LBFGSBStart, ArraysBeyondTheAddressSpaceAreNoMemory) {
    if (sizeof(void*) == 8) GTEST_SKIP() << "an address space of 64 bits holds them";
    const double bound = 0;
    const std::int32_t kind = 0;
    for (std::int32_t n : {300000000, 1 << 28, 1 << 29})
        EXPECT_EQ(LBFGSBStart(n, 1, &bound, &bound, &kind, 1e7, 1e-5), nullptr) << n;
}

// A step has no memory to ask for, so none can be refused.
TEST(LBFGSBStep, NeedsNoMemoryOfTheLibrarysOwn) {
    const Objective objective = NamedObjective("booth");
    const Problem problem = Boxed({1, 1}, -10, 10);
    Minimisation run(problem), starved(problem);
    EXPECT_EQ(run.Drive(objective), 3);
    std::int32_t code = 2;
    while (code == 1 || code == 2) {
        {
            const NewFailsAfter heap(0);
            code = starved.Step();
        }
        if (code == 1) starved.f = objective(starved.x, starved.g);
    }
    EXPECT_EQ(code, 3);
    EXPECT_EQ(starved.x, run.x);
    EXPECT_EQ(starved.f, run.f);
}

}  // namespace
