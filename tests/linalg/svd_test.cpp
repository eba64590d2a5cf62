#include <functional>

#include "linalg/matrices.hpp"

namespace orvanth::test {
namespace {

using Export = int32_t (*)(double*, const MatrixDescriptor*, double*, double*, const MatrixDescriptor*, double*,
                           const MatrixDescriptor*);

struct Result {
    int info;
    std::vector<double> s;
    Matrix u, vt;
};

Result Decompose(Export function, Matrix a, int uColumns, int vtRows) {
    const int mn = std::min(a.Rows(), a.Columns());
    Result r{0, RogueVector(std::max(0, mn) + 2), Matrix(a.Rows(), uColumns, 0, 2),
             Matrix(vtRows, a.Columns(), 0, 1)};
    r.info =
        function(a.Data(), a.Descriptor(), r.s.data(), r.u.Data(), r.u.Descriptor(), r.vt.Data(), r.vt.Descriptor());
    EXPECT_TRUE(a.IsPaddingIntact());
    EXPECT_TRUE(r.u.IsPaddingIntact());
    EXPECT_TRUE(r.vt.IsPaddingIntact());
    EXPECT_TRUE(IsRogue(r.s[static_cast<std::size_t>(std::max(0, mn))]));
    return r;
}

Result Full(const Matrix& a) { return Decompose(FullSVD, a, a.Rows(), a.Columns()); }
Result Thin(const Matrix& a) {
    const int mn = std::min(a.Rows(), a.Columns());
    return Decompose(ThinSVD, a, mn, mn);
}

void ExpectDecomposes(const Matrix& a, const Result& r) {
    ASSERT_EQ(r.info, 0);
    const int mn = std::min(a.Rows(), a.Columns());
    Matrix scaled(r.u.Rows(), mn), head(mn, a.Columns());
    for (int k = 0; k < mn; ++k) {
        EXPECT_GE(r.s[static_cast<std::size_t>(k)], 0);
    }
    EXPECT_TRUE(std::is_sorted(r.s.begin(), r.s.begin() + mn, std::greater<>()));
    FillBy(scaled, [&](int i, int k) { return r.u(i, k) * r.s[static_cast<std::size_t>(k)]; });
    FillBy(head, [&](int k, int j) { return r.vt(k, j); });
    EXPECT_LT(ScaledResidual(Product(scaled, head), a, a), kResidualBound);
    EXPECT_LT(Orthogonality(r.u), kResidualBound);
    EXPECT_LT(Orthogonality(Transposed(r.vt)), kResidualBound);
}

TEST(FullSVD, DecomposesEveryShapeThatFitsTheWorkspace) {
    std::mt19937_64 random(kSeed);
    for (int m : kSizes)
        for (int n : kSizes)
            for (double scale : {1.0, 1e-300, 1e300}) {
                SCOPED_TRACE(testing::Message() << m << " x " << n << " scale " << scale << " seed " << kSeed);
                Matrix a(m, n, 0, 2);
                FillRandom(a, random, scale);
                if (m == 0 || n == 0)
                    EXPECT_EQ(Full(a).info, 0);
                else
                    ExpectDecomposes(a, Full(a));
            }
}

TEST(ThinSVD, DecomposesEveryShape) {
    std::mt19937_64 random(kSeed);
    for (int m : {0, 1, 2, 3, 5, 10, 50, 120})
        for (int n : {0, 1, 2, 3, 5, 10, 50, 120}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " seed " << kSeed);
            Matrix a(m, n, 0, 2);
            FillRandom(a, random);
            if (m == 0 || n == 0)
                EXPECT_EQ(Thin(a).info, 0);
            else
                ExpectDecomposes(a, Thin(a));
        }
}

TEST(ThinSVD, OfAWideMatrixGivesASquareUAndAWideVt) {
    std::mt19937_64 random(kSeed);
    Matrix a(3, 7);
    FillRandom(a, random);
    const Result r = Thin(a);
    EXPECT_EQ(r.u.Columns(), 3);
    EXPECT_EQ(r.vt.Rows(), 3);
    ExpectDecomposes(a, r);
}

TEST(ThinSVD, FindsTheSingularValuesOfAKnownMatrix) {
    // [[3, 0], [4, 5]] has singular values 3 sqrt 5 and sqrt 5.
    Matrix a(2, 2);
    a(0, 0) = 3, a(1, 0) = 4, a(0, 1) = 0, a(1, 1) = 5;
    for (const Result& r : {Thin(a), Full(a)}) {
        EXPECT_NEAR(r.s[0], 3 * std::sqrt(5.0), 1e-14);
        EXPECT_NEAR(r.s[1], std::sqrt(5.0), 1e-14);
    }
}

TEST(ThinSVD, RankIsSeenInTheSingularValues) {
    Matrix a(6, 4);
    FillBy(a, [](int i, int j) { return (i + 1.0) * (j + 1) + (i - 2.0) * (j == 2); });
    const Result r = Thin(a);
    EXPECT_GT(r.s[1], 0.1);
    EXPECT_LT(r.s[2], 1e-14 * r.s[0]);
}

TEST(FullSVD, TooLargeForTheWorkspaceReturnsMinusTwelveAndThinSVDSucceeds) {
    std::mt19937_64 random(kSeed);
    Matrix a(80, 80);
    FillRandom(a, random);
    Matrix given = a;
    std::vector<double> s = RogueVector(80);
    Matrix u(80, 80), vt(80, 80);
    EXPECT_EQ(Rejected([&] {
                  return FullSVD(a.Data(), a.Descriptor(), s.data(), u.Data(), u.Descriptor(), vt.Data(),
                                 vt.Descriptor());
              }).info,
              -12);
    EXPECT_TRUE(SameBits(a.storage, given.storage));
    EXPECT_TRUE(SameBits(s, RogueVector(80)));
    EXPECT_TRUE(std::ranges::all_of(u.storage, IsRogue));
    EXPECT_TRUE(std::ranges::all_of(vt.storage, IsRogue));
    ExpectDecomposes(given, Thin(given));
}

TEST(FullSVD, OffsetOfEveryDescriptorIsIgnored) {
    std::mt19937_64 random(kSeed);
    Matrix a(5, 3);
    FillRandom(a, random);
    for (Export function : {Export{FullSVD}, Export{ThinSVD}}) {
        Matrix plainA = a, shiftedA = a;
        Matrix u(5, 5), vt(3, 3), shiftedU(5, 5), shiftedVt(3, 3);
        shiftedA.descriptor.offset = 4, shiftedU.descriptor.offset = -3, shiftedVt.descriptor.offset = 1000000;
        double s[3], shiftedS[3];
        ASSERT_EQ(
            function(plainA.Data(), plainA.Descriptor(), s, u.Data(), u.Descriptor(), vt.Data(), vt.Descriptor()), 0);
        ASSERT_EQ(function(shiftedA.Data(), shiftedA.Descriptor(), shiftedS, shiftedU.Data(), shiftedU.Descriptor(),
                           shiftedVt.Data(), shiftedVt.Descriptor()),
                  0);
        EXPECT_TRUE(SameBits(u.storage, shiftedU.storage));
        EXPECT_TRUE(SameBits(vt.storage, shiftedVt.storage));
        EXPECT_TRUE(std::ranges::equal(s, shiftedS));
    }
}

TEST(FullSVD, OnlyTheLeadingDimensionsOfUAndVtAreRead) {
    std::mt19937_64 random(kSeed);
    Matrix a(4, 4);
    FillRandom(a, random);
    for (Export function : {Export{FullSVD}, Export{ThinSVD}}) {
        Matrix copy = a, u(4, 4), vt(4, 4);
        const MatrixDescriptor odd{-1, 4, -5, 99};
        double s[4];
        EXPECT_EQ(function(copy.Data(), copy.Descriptor(), s, u.Data(), &odd, vt.Data(), &odd), 0);
    }
}

TEST(FullSVD, RejectedArgumentsComeBackAsTheirNumber) {
    for (Export function : {Export{FullSVD}, Export{ThinSVD}}) {
        const auto info = [&](MatrixDescriptor aDescriptor, int ldu, int ldvt) {
            Matrix a = Identity(4), u(4, 4), vt(4, 4);
            u.descriptor.leadingDimension = ldu, vt.descriptor.leadingDimension = ldvt;
            const std::vector<double> before = a.storage;
            std::vector<double> s = RogueVector(4);
            const int result = Rejected([&] {
                                   return function(a.Data(), &aDescriptor, s.data(), u.Data(), u.Descriptor(),
                                                   vt.Data(), vt.Descriptor());
                               }).info;
            EXPECT_TRUE(SameBits(a.storage, before));
            EXPECT_TRUE(IsRogue(s[0]));
            EXPECT_TRUE(IsRogue(u.storage[0]));
            EXPECT_TRUE(IsRogue(vt.storage[0]));
            return result;
        };
        EXPECT_EQ(info({0, 4, -1, 4}, 4, 4), -2);
        EXPECT_EQ(info({0, 4, 4, -1}, 4, 4), -3);
        EXPECT_EQ(info({0, 3, 4, 4}, 4, 4), -5);
        EXPECT_EQ(info({0, 4, 4, 4}, 3, 4), -8);
        EXPECT_EQ(info({0, 4, 4, 4}, 4, 3), -10);
    }
}

}  // namespace
}  // namespace orvanth::test
