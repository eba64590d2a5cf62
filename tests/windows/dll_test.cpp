// The two DLLs as a host has them: loaded by name, called on threads of its own, unloaded.
#include <gtest/gtest.h>
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"
#include "support/precision_word.hpp"

namespace {

using namespace orvanth::test;

struct Dll {
    explicit Dll(const char* path) : module(LoadLibraryA(path)) { EXPECT_NE(module, nullptr) << path; }
    ~Dll() { FreeLibrary(module); }
    Dll(const Dll&) = delete;
    Dll& operator=(const Dll&) = delete;
    template <class Function>
    Function* Find(Function*, const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    }
    HMODULE module;
};
#define FIND(dll, name) (dll).Find(static_cast<decltype(&name)>(nullptr), #name)

TEST(Dll, TakesAThousandLoadsAndUnloads) {
    for (int i = 0; i < 1000; ++i) {
        const Dll core(ORVANTH_CORE_DLL), shield(ORVANTH_SHIELD_DLL);
        const auto cdf = FIND(core, NormalCDF);
        const auto safe = FIND(shield, SafeBinomialCDF);
        ASSERT_TRUE(cdf != nullptr && safe != nullptr) << "load " << i;
        ASSERT_EQ(cdf(0, 0, 1, 0), 0.5);
        ASSERT_TRUE(safe(11, 10, 0.5, 0) != 0) << "a NaN";  // a failure caught inside, and the thread's own storage
        ASSERT_EQ(FIND(shield, LastStatus)(), ORVANTH_STATUS_DOMAIN);
    }
}

// Sums over a grid, with failures in between, so that a slip of one thread into the state of another shows.
std::vector<std::uint64_t> Sweep(const Dll& core, const Dll& shield) {
    const auto normal = FIND(core, NormalCDF);
    const auto gamma = FIND(core, GammaICDF);
    const auto studentT = FIND(core, StudentTICDF);
    const auto safe = FIND(shield, SafeBinomialCDF);
    const auto hypergeometric = FIND(shield, SafeHypergeometricCDF);
    std::vector<std::uint64_t> bits;
    for (int i = 1; i < 400; ++i) {
        const double p = i / 400.0;
        for (const double value : {normal(p, 0, 1, 1), gamma(p, 2.5, 1, 0), studentT(p, 4, 0), safe(i % 12, 10, p, 0),
                                   hypergeometric(i % 20, 60, 40, 120, 0)})
            bits.push_back(value != value ? 0 : std::bit_cast<std::uint64_t>(value));
    }
    return bits;
}

struct SweepWork {
    const Dll *core, *shield;
    std::vector<std::uint64_t> bits;
};

DWORD WINAPI SweepInto(void* given) {
    SweepWork& work = *static_cast<SweepWork*>(given);
    work.bits = Sweep(*work.core, *work.shield);
    return 0;
}

TEST(Dll, EightThreadsOfTheHostAgreeWithOne) {
    const Dll core(ORVANTH_CORE_DLL), shield(ORVANTH_SHIELD_DLL);
    constexpr int kThreads = 8;
    std::vector<SweepWork> work(kThreads, SweepWork{&core, &shield, {}});
    std::vector<HANDLE> threads;
    for (SweepWork& w : work) threads.push_back(CreateThread(nullptr, 0, SweepInto, &w, 0, nullptr));
    WaitForMultipleObjects(kThreads, threads.data(), TRUE, INFINITE);
    for (HANDLE thread : threads) CloseHandle(thread);
    const std::vector<std::uint64_t> alone = Sweep(core, shield);
    for (const SweepWork& w : work) EXPECT_TRUE(w.bits == alone);
}

TEST(Dll, ResultsDoNotDependOnThePrecisionWord) {
    const Dll core(ORVANTH_CORE_DLL), shield(ORVANTH_SHIELD_DLL);
    const auto under = [&](std::uint16_t word) {
        const PrecisionWord set(word);
        return Sweep(core, shield);
    };
    EXPECT_TRUE(under(0x27f) == under(0x37f));
}

TEST(Dll, LeavesThePrecisionWordAsItIs) {
    for (const std::uint16_t word : {std::uint16_t{0x27f}, std::uint16_t{0x37f}}) {
        const PrecisionWord set(word);
        const Dll core(ORVANTH_CORE_DLL), shield(ORVANTH_SHIELD_DLL);
        EXPECT_EQ(ControlWord(), word) << "loading changed it";
        FIND(core, GammaICDF)(0.3, 2.5, 1, 0);
        FIND(shield, SafeKolmogorovCDF)(0.3, 20, 0);
        EXPECT_EQ(ControlWord(), word) << "a call changed it";
    }
}

// A handle is as wide as a pointer, and a descriptor is four 32-bit words, in both widths.
TEST(Dll, HandlesAndDescriptorsHaveTheirSizes) {
    static_assert(sizeof(RandomStreamHandle) == sizeof(void*) && sizeof(LBFGSBDriverState*) == sizeof(void*));
    static_assert(sizeof(MatrixDescriptor) == 16 && alignof(MatrixDescriptor) == 4);
    const Dll core(ORVANTH_CORE_DLL);
    std::vector<std::int32_t> indices(100, -1);
    const RandomStreamHandle stream = FIND(core, CreateRandomStream)(1);
    ASSERT_NE(stream, 0);
    EXPECT_EQ(FIND(core, RandomUniformInteger)(stream, indices.data(), 100), 0);
    EXPECT_GE(*std::ranges::min_element(indices), 0);
    EXPECT_LE(*std::ranges::max_element(indices), 99);
    EXPECT_EQ(FIND(core, DeleteRandomStream)(stream), 0);

    // A straight line with a leading dimension of 4 instead of 3: the sum of squared residuals is 1.
    const double x[8] = {1, 1, 1, 9, 0, 1, 2, 9}, b[2] = {1, 2}, y[3] = {1, 3, 6};
    const MatrixDescriptor design = {0, 4, 3, 2};
    EXPECT_EQ(FIND(core, Xb)(x, &design, b, y), 1);
}

#if defined(__i386__)
double called;
double (*target)(double, double, double, TailFlag);
void Call() { called = target(0.3, 2.5, 1, 0); }

// Compilers for 32-bit Windows keep the stack aligned to 4 bytes only.
TEST(Dll, TakesAnyAlignmentOfTheStack) {
    const Dll core(ORVANTH_CORE_DLL);
    target = FIND(core, GammaICDF);
    Call();
    const double expected = called;
    for (int shift = 0; shift < 16; shift += 4) {
        called = 0;
        asm volatile("movl %%esp, %%ebx\n\tandl $-16, %%esp\n\tsubl %0, %%esp\n\tcall *%1\n\tmovl %%ebx, %%esp"
                     :
                     : "r"(shift), "r"(static_cast<void (*)()>(Call))
                     : "eax", "ecx", "edx", "ebx", "memory", "cc");
        EXPECT_EQ(called, expected) << shift;
    }
}
#endif

}  // namespace
