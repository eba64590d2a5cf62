// With the heap exhausted every form still answers: nothing is allocated while an exception is handled.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"
#include "support/heap.hpp"

#if defined(ORVANTH_HEAP_IS_PLAIN)  // not under a sanitizer, which has a heap of its own

namespace {

constexpr int kNever = -1;
thread_local int allocationsLeft = kNever;

// Within it a number of allocations succeed and no further one.
struct Exhausted {
    explicit Exhausted(int allocations = 0) { allocationsLeft = allocations; }
    ~Exhausted() { allocationsLeft = kNever; }
};

bool HeapGives() { return allocationsLeft == kNever || (allocationsLeft != 0 && allocationsLeft-- > 0); }

}  // namespace

// The program's own malloc takes the place of the C library's, in the libraries as well.
extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_memalign(std::size_t, std::size_t);
extern "C" void* malloc(std::size_t bytes) { return HeapGives() ? __libc_malloc(bytes) : nullptr; }
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return HeapGives() ? __libc_memalign(alignment, bytes) : nullptr;
}

namespace {

TEST(ShieldMemory, WithoutAHeapTheExportsThatNeedOneSaySo) {
    const double lambda[] = {0.5, 0.5, 0.5};
    double result = 0, refined = 0, a[] = {1, 2, 3, 5}, s[2], u[4], vt[4];
    const MatrixDescriptor square{0, 2, 2, 2};
    std::int32_t status[5], info = 0;
    const char* text = nullptr;
    bool sameText = true;
    {
        Exhausted now;
        result = SafeMCcCDF(1, 3, 10, lambda, 0);
        status[0] = LastStatus();
        text = LastErrorText();
        for (const char *want = "out of memory", *got = text; *want || *got; ++want, ++got)
            if (*want != *got) {
                sameText = false;
                break;
            }
        info = SafeThinSVD(a, &square, s, u, &square, vt, &square);
        status[1] = LastStatus();
        SafeFNCHypergeometricCDF(3, 5, 10, 20, 2, 0, 1e-7);
        status[2] = LastStatus();
        SafeCreateRandomStream(1);
        status[3] = LastStatus();
        refined = SafeRefinedMCcICDF(0.5, 3, 10, lambda, 0);
        status[4] = LastStatus();
    }
    EXPECT_TRUE(std::isnan(result) && std::isnan(refined));
    EXPECT_TRUE(sameText);
    EXPECT_EQ(info, ORVANTH_NO_MEMORY);
    for (std::int32_t one : status) EXPECT_EQ(one, ORVANTH_STATUS_MEMORY);
    EXPECT_EQ(SafeMCcCDF(1, 3, 10, lambda, 0), MCcCDF(1, 3, 10, lambda, 0)) << "and afterwards all is as before";
}

// Every allocation fails once, also that of room for handles, which one in 1024 handles needs.
TEST(ShieldMemory, EachAllocationOfAHandleMayFail) {
    const double bound = 0;
    const std::int32_t free = 0;
    std::vector<RandomStreamHandle> streams;
    std::vector<LBFGSBDriverState*> states;
    const auto expect = [](bool isMade) {
        EXPECT_EQ(LastStatus(), isMade ? ORVANTH_STATUS_OK : ORVANTH_STATUS_MEMORY);
        return isMade;
    };
    int mostNeeded[2] = {0, 0};
    for (int i = 0; i < 1100; ++i) {
        for (int enough = 0;; ++enough) {
            RandomStreamHandle stream = 0;
            {
                Exhausted after(enough);
                stream = SafeCreateRandomStream(i);
            }
            if (!expect(stream != 0)) continue;
            streams.push_back(stream);
            mostNeeded[0] = std::max(mostNeeded[0], enough);
            break;
        }
        for (int enough = 0;; ++enough) {
            LBFGSBDriverState* state = nullptr;
            {
                Exhausted after(enough);
                state = SafeLBFGSBStart(1, 5, &bound, &bound, &free, 1, 0);
            }
            if (!expect(state != nullptr)) continue;
            states.push_back(state);
            mostNeeded[1] = std::max(mostNeeded[1], enough);
            break;
        }
    }
    // The handles after the first 1024 needed one allocation more than the others.
    EXPECT_GE(std::max(mostNeeded[0] - 1, mostNeeded[1] - 7), 1);
    for (RandomStreamHandle stream : streams) EXPECT_EQ(SafeDeleteRandomStream(stream), 0);
    for (LBFGSBDriverState* state : states) SafeLBFGSBEnd(state);
}

TEST(ShieldMemory, AnArrayFormGoesOnBehindAnElementWithoutMemory) {
    double x[] = {1, 1}, df = 10, lambda[] = {0.5, 0, 0.5, 0, 0.5, 0}, results[2] = {0, 0};
    std::int64_t k = 3, tail = 0;
    char* pointers[] = {reinterpret_cast<char*>(x),     reinterpret_cast<char*>(&k),
                        reinterpret_cast<char*>(&df),   reinterpret_cast<char*>(lambda),
                        reinterpret_cast<char*>(&tail), reinterpret_cast<char*>(results)};
    const intptr_t dimensions[] = {2, 3};
    for (intptr_t innerStep : {8, 16}) {  // the second one has to be gathered, which takes memory of its own
        const intptr_t steps[] = {8, 0, 0, 0, 0, 8, innerStep};
        EachReport report;
        {
            Exhausted now;
            EachMCcCDF(pointers, dimensions, steps, &report);
        }
        EXPECT_EQ(report.failures, 2);
        EXPECT_EQ(report.status, ORVANTH_STATUS_MEMORY);
        EXPECT_TRUE(std::isnan(results[0]) && std::isnan(results[1]));
    }
}

}  // namespace

#endif
