// ThinSVD and EigenSymmetric when the heap has nothing for their scratch.
#include <cstdlib>

#include "linalg/matrices.hpp"

namespace {

// Which allocation of the call under test fails, counted from zero; -1 outside such a call.
int failing = -1;
int allocated = 0, released = 0;

}  // namespace

// The linker sends malloc and free of the library's objects here.
extern "C" {
void* __real_malloc(std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size) {
    if (failing < 0) return __real_malloc(size);
    if (failing-- == 0) {
        failing = 1000;
        return nullptr;
    }
    ++allocated;
    return __real_malloc(size);
}
void __wrap_free(void* block) {
    if (failing >= 0 && block != nullptr) ++released;
    __real_free(block);
}
}

namespace orvanth::test {
namespace {

template <class Call>
int WithFailingAllocation(int number, Call call) {
    failing = number;
    allocated = released = 0;
    const int info = call();
    failing = -1;
    EXPECT_EQ(allocated, released);
    return info;
}

TEST(NoMemory, ThinSVDAnswersMinus1010AndWritesNothing) {
    std::mt19937_64 random(kSeed);
    Matrix a(6, 4), u(6, 4), vt(4, 4);
    FillRandom(a, random);
    const Matrix given = a;
    std::vector<double> s = RogueVector(4);
    const auto call = [&] {
        return ThinSVD(a.Data(), a.Descriptor(), s.data(), u.Data(), u.Descriptor(), vt.Data(), vt.Descriptor());
    };
    for (int number : {0, 1}) {
        EXPECT_EQ(WithFailingAllocation(number, call), -1010);
        EXPECT_TRUE(SameBits(a.storage, given.storage));
        EXPECT_TRUE(std::ranges::all_of(s, IsRogue));
        EXPECT_TRUE(std::ranges::all_of(u.storage, IsRogue));
        EXPECT_TRUE(std::ranges::all_of(vt.storage, IsRogue));
    }
    EXPECT_EQ(WithFailingAllocation(2, call), 0);
    EXPECT_EQ(allocated, 2);
}

TEST(NoMemory, EigenSymmetricAnswersMinus1010AndWritesNothing) {
    std::mt19937_64 random(kSeed);
    for (bool vectors : {true, false}) {
        Matrix a(5, 5), z(5, 5);
        FillRandom(a, random);
        const Matrix given = a;
        std::vector<double> w = RogueVector(5);
        std::int32_t m = -4711;
        const auto call = [&] {
            return EigenSymmetric(a.Data(), a.Descriptor(), w.data(), &m, vectors ? z.Data() : nullptr,
                                  z.Descriptor());
        };
        for (int number : {0, 1, 2}) {
            EXPECT_EQ(WithFailingAllocation(number, call), -1010);
            EXPECT_TRUE(SameBits(a.storage, given.storage));
            EXPECT_TRUE(std::ranges::all_of(w, IsRogue));
            EXPECT_TRUE(std::ranges::all_of(z.storage, IsRogue));
            EXPECT_EQ(m, -4711);
        }
        EXPECT_EQ(WithFailingAllocation(3, call), 0);
        EXPECT_EQ(allocated, 3);
    }
}

TEST(NoMemory, RejectedArgumentsComeAheadOfMissingMemory) {
    Matrix a = Identity(3);
    double w = 0;
    std::int32_t m = 0;
    const MatrixDescriptor narrow{0, 2, 3, 3};
    failing = 0;
    const int eigen =
        Rejected([&] { return EigenSymmetric(a.Data(), &narrow, &w, &m, nullptr, a.Descriptor()); }).info;
    const int svd =
        Rejected([&] { return ThinSVD(a.Data(), &narrow, &w, &w, a.Descriptor(), &w, a.Descriptor()); }).info;
    failing = -1;
    EXPECT_EQ(eigen, -6);
    EXPECT_EQ(svd, -5);
}

}  // namespace
}  // namespace orvanth::test
