#include <numbers>
#include "linalg/matrices.hpp"
#include "support/heap.hpp"

namespace orvanth::test {
namespace {

struct Result {
    int info;
    std::vector<double> w;
    std::int32_t m;
    Matrix z;
};

// The lower triangle of `a` is given; what stands above it is the caller's.
Result Solve(Matrix a, bool vectors) {
    const int n = a.Columns();
    Result r{0, RogueVector(n + 1), -4711, Matrix(n, n, 0, 2)};
    const Matrix given = a;
    r.info =
        EigenSymmetric(a.Data(), a.Descriptor(), r.w.data(), &r.m, vectors ? r.z.Data() : nullptr, r.z.Descriptor());
    for (int j = 1; j < n; ++j)
        for (int i = 0; i < j; ++i)
            EXPECT_EQ(std::bit_cast<std::uint64_t>(a(i, j)), std::bit_cast<std::uint64_t>(given(i, j)));
    EXPECT_TRUE(a.IsPaddingIntact());
    EXPECT_TRUE(r.z.IsPaddingIntact());
    EXPECT_TRUE(IsRogue(r.w[static_cast<std::size_t>(n)]));
    return r;
}

Matrix RandomLowerTriangle(int n, std::mt19937_64& random, double scale = 1.0) {
    Matrix a(n, n, 0, 3);
    FillRandom(a, random, scale);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < j; ++i) a(i, j) = kRogue;
    return a;
}

TEST(EigenSymmetric, DecomposesAndNeverReadsTheUpperTriangle) {
    std::mt19937_64 random(kSeed);
    for (int n : kSizes)
        for (double scale : {1.0, 1e-300, 1e300}) {
            SCOPED_TRACE(testing::Message() << n << " scale " << scale << " seed " << kSeed);
            const Matrix a = RandomLowerTriangle(n, random, scale);
            const Result r = Solve(a, true);
            ASSERT_EQ(r.info, 0);
            EXPECT_EQ(r.m, n);
            Matrix whole(n, n), scaled(n, n);
            FillBy(whole, [&](int i, int j) { return i >= j ? a(i, j) : a(j, i); });
            FillBy(scaled, [&](int i, int k) { return r.z(i, k) * r.w[static_cast<std::size_t>(k)]; });
            EXPECT_LT(ScaledResidual(Product(scaled, Transposed(r.z)), whole, whole), kResidualBound);
            EXPECT_LT(Orthogonality(r.z), kResidualBound);
            EXPECT_TRUE(std::is_sorted(r.w.begin(), r.w.begin() + n));
        }
}

TEST(EigenSymmetric, NullZGivesTheEigenvaluesAloneAndStillSetsM) {
    std::mt19937_64 random(kSeed);
    for (int n : kSizes) {
        const Matrix a = RandomLowerTriangle(n, random);
        const Result with = Solve(a, true), without = Solve(a, false);
        EXPECT_EQ(without.info, 0);
        EXPECT_EQ(without.m, n);
        for (int k = 0; k < n; ++k)
            EXPECT_NEAR(without.w[static_cast<std::size_t>(k)], with.w[static_cast<std::size_t>(k)],
                        50 * n * kEpsilon);
        EXPECT_TRUE(std::ranges::all_of(without.z.storage, IsRogue));
    }
}

TEST(EigenSymmetric, FindsTheEigenvaluesOfAKnownMatrix) {
    // The second-difference matrix: 2 - 2 cos(k pi / (n + 1)).
    const int n = 12;
    Matrix a(n, n);
    FillBy(a, [](int i, int j) { return i == j ? 2.0 : i == j + 1 ? -1.0 : 0.0; });
    const Result r = Solve(a, false);
    for (int k = 1; k <= n; ++k)
        EXPECT_NEAR(r.w[static_cast<std::size_t>(k - 1)], 2 - 2 * std::cos(k * std::numbers::pi / (n + 1)), 1e-14);
}

TEST(EigenSymmetric, RowsFieldAndOffsetAreNotRead) {
    std::mt19937_64 random(kSeed);
    Matrix plain = RandomLowerTriangle(5, random), odd = plain;
    odd.descriptor.rows = -77, odd.descriptor.offset = 1000000;
    double w[5], wOdd[5];
    std::int32_t m = 0;
    Matrix z(5, 5), zOdd(5, 5);
    const MatrixDescriptor zDescriptor{-9, 5, -1, 0};
    ASSERT_EQ(EigenSymmetric(plain.Data(), plain.Descriptor(), w, &m, z.Data(), z.Descriptor()), 0);
    ASSERT_EQ(EigenSymmetric(odd.Data(), odd.Descriptor(), wOdd, &m, zOdd.Data(), &zDescriptor), 0);
    EXPECT_TRUE(std::ranges::equal(w, wOdd));
    EXPECT_TRUE(SameBits(z.storage, zOdd.storage));
}

int InfoOf(MatrixDescriptor aDescriptor, int ldz, bool vectors) {
    Matrix a = Identity(4), z(4, 4);
    z.descriptor.leadingDimension = ldz;
    const std::vector<double> before = a.storage;
    std::vector<double> w = RogueVector(4);
    std::int32_t m = -4711;
    const int info =
        Rejected([&] {
            return EigenSymmetric(a.Data(), &aDescriptor, w.data(), &m, vectors ? z.Data() : nullptr, z.Descriptor());
        }).info;
    EXPECT_TRUE(SameBits(a.storage, before));
    EXPECT_TRUE(IsRogue(w[0]));
    return info;
}

TEST(EigenSymmetric, LeadingDimensionOfZIsCheckedEvenIfZIsNull) {
    EXPECT_EQ(InfoOf({0, 4, 4, 4}, 3, true), -15);
    EXPECT_EQ(InfoOf({0, 4, 4, 4}, 3, false), -15);
}

TEST(EigenSymmetric, RejectedArgumentsComeBackAsTheirNumber) {
    EXPECT_EQ(InfoOf({0, 4, 4, -1}, 4, true), -4);
    EXPECT_EQ(InfoOf({0, 3, 4, 4}, 4, true), -6);
}

#ifdef ORVANTH_HEAP_IS_PLAIN
template <class Function>
long GrowthOfRejected(Function call) {
    long growth = 0;
    Rejected([&] {
        growth = HeapGrowth(call);
        return 0;
    });
    return growth;
}

TEST(EigenSymmetric, RejectedQueryLeavesItsBlockAndNoOtherRoadLeavesAny) {
    const Matrix given = Identity(4);
    Matrix a = given, bad = given, z(4, 4);
    bad(2, 1) = std::numeric_limits<double>::quiet_NaN();
    double w[4];
    std::int32_t m = 0;
    const MatrixDescriptor tooShort{0, 3, 4, 4};
    EXPECT_GE(GrowthOfRejected([&] { EigenSymmetric(a.Data(), a.Descriptor(), w, &m, nullptr, &tooShort); }),
              32 * 1000);
    EXPECT_LT(
        GrowthOfRejected([&] { EigenSymmetric(bad.Data(), bad.Descriptor(), w, &m, z.Data(), z.Descriptor()); }),
        16000);
    EXPECT_LT(GrowthOfRejected([&] {
                  a.storage = given.storage;
                  EigenSymmetric(a.Data(), a.Descriptor(), w, &m, z.Data(), z.Descriptor());
              }),
              16000);
}
#endif

}  // namespace
}  // namespace orvanth::test
