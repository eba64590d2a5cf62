// Every allocation of every export fails once, alone and with all behind it: a documented failure follows, no crash,
// and the next call is right.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/call.hpp"
#include "fuzz/random_values.hpp"
#include "support/heap.hpp"

#if defined(ORVANTH_HEAP_IS_PLAIN)  // not under a sanitizer, which has a heap of its own

namespace {

thread_local bool inside = false;  // of an export
thread_local long asked = 0;       // allocations of the call
thread_local long failing = 0;     // the one that fails, from 1; 0 is none
thread_local bool andAllBehind = false;

bool Fails() {
    if (!inside) return false;
    ++asked;
    const bool fails = failing > 0 && (andAllBehind ? asked >= failing : asked == failing);
    if (fails) errno = ENOMEM;
    return fails;
}

}  // namespace

// The program's own functions take the place of the C library's, in all libraries.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);
void* malloc(std::size_t bytes) { return Fails() ? nullptr : __libc_malloc(bytes); }
void* calloc(std::size_t count, std::size_t bytes) { return Fails() ? nullptr : __libc_calloc(count, bytes); }
void* realloc(void* block, std::size_t bytes) { return Fails() ? nullptr : __libc_realloc(block, bytes); }
void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return Fails() ? nullptr : __libc_memalign(alignment, bytes);
}
int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
    if (Fails()) return ENOMEM;
    *block = __libc_memalign(alignment, bytes);
    return *block != nullptr ? 0 : ENOMEM;
}
}

namespace orvanth::fuzz {
namespace {

constexpr int kCalls = 25;
constexpr long kMostAllocations = 40;  // of one call; a call that asks for more asks for the same again

Outcome WithFailing(const Export& which, const Call& call, long number, bool onward) {
    failing = number;
    andAllBehind = onward;
    asked = 0;
    const Outcome outcome = Make(which, call);
    failing = 0;
    return outcome;
}

// Without memory for its text an exception cannot be made; std::bad_alloc takes its place.
bool IsDocumented(const Export& which, const Outcome& undisturbed, const Outcome& outcome, const std::string& fault) {
    if (outcome.exceptionClass == "std::bad_alloc")
        return which.documented.memory || !undisturbed.exceptionClass.empty();
    return fault.empty();
}

class FailingMemory : public testing::TestWithParam<const Export*> {};

TEST_P(FailingMemory, IsReportedAndLeavesTheNextCallRight) {
    const Export& which = *GetParam();
    aroundExport = [](bool enters) { inside = enters; };
    Random random(20261121);
    long most = 0, calls = 0;
    for (int i = 0; i < kCalls && !HasFailure(); ++i) {
        const Call call = RandomCall(which, random.Next());
        Make(which, call);  // what is made once for the whole process is made here
        const Outcome undisturbed = WithFailing(which, call, 0, false);
        const long needed = asked;
        most = std::max(most, needed);
        SCOPED_TRACE(Describe(which, call) + "\n    " + RepeatLine(which, call));
        for (long number = 1; number <= std::min(needed, kMostAllocations); ++number)
            for (bool onward : {false, true}) {
                const Outcome outcome = WithFailing(which, call, number, onward);
                const std::string fault = Judge(which, call, outcome);
                EXPECT_TRUE(IsDocumented(which, undisturbed, outcome, fault))
                    << number << " of " << needed << ": " << fault << ", " << Describe(outcome);
                EXPECT_TRUE(Make(which, call) == undisturbed) << "after " << number << " of " << needed;
                ++calls;
            }
    }
    aroundExport = nullptr;
    std::printf("  at most %ld allocations a call, %ld calls with a failing one\n", most, calls);
    // Where the manual speaks of memory for a call, there is some.
    const std::string name = which.name;
    if (which.documented.memory && name != "DeleteRandomStream") {
        EXPECT_GT(calls, 0);
    }
}

std::vector<const Export*> Callable() {
    std::vector<const Export*> callable;
    for (const Export& which : Exports())
        if (which.run != nullptr) callable.push_back(&which);
    return callable;
}

INSTANTIATE_TEST_SUITE_P(Exports, FailingMemory, testing::ValuesIn(Callable()),
                         [](const testing::TestParamInfo<const Export*>& which) { return which.param->name; });

}  // namespace
}  // namespace orvanth::fuzz

#endif
