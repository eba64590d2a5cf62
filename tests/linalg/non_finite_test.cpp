// Infinities and NaNs come back with a status. A call that does not return is ended by the alarm.
#include <unistd.h>

#include <array>
#include <csignal>

#include "linalg/matrices.hpp"

namespace orvanth::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kQuiet = std::numeric_limits<double>::quiet_NaN();
constexpr std::array kBad = {kInf, -kInf, kQuiet, -kQuiet};

class NonFinite : public testing::Test {
protected:
    void SetUp() override { alarm(60); }
    void TearDown() override { alarm(0); }
    std::mt19937_64 random{kSeed};
};

using Svd = int32_t (*)(double*, const MatrixDescriptor*, double*, double*, const MatrixDescriptor*, double*,
                        const MatrixDescriptor*);

struct SvdCall {
    explicit SvdCall(Matrix matrix)
        : a(std::move(matrix)), u(a.Rows(), a.Rows()), vt(a.Columns(), a.Columns()), s(RogueVector(60)) {}
    int Run(Svd function) {
        const std::vector<double> before = a.storage;
        const int info = Rejected([&] {
                             return function(a.Data(), a.Descriptor(), s.data(), u.Data(), u.Descriptor(), vt.Data(),
                                             vt.Descriptor());
                         }).info;
        if (info != 0) {
            EXPECT_TRUE(SameBits(a.storage, before));
            EXPECT_TRUE(std::ranges::all_of(s, IsRogue));
            EXPECT_TRUE(std::ranges::all_of(u.storage, IsRogue));
            EXPECT_TRUE(std::ranges::all_of(vt.storage, IsRogue));
        }
        return info;
    }
    Matrix a, u, vt;
    std::vector<double> s;
};

TEST_F(NonFinite, EveryPlaceOfAnSVDsMatrixGivesMinusFourAndNothingIsWritten) {
    for (Svd function : {Svd{FullSVD}, Svd{ThinSVD}})
        for (auto [m, n] : {std::pair{1, 1}, {3, 3}, {5, 2}, {2, 5}, {9, 6}})
            for (double bad : kBad)
                for (int j = 0; j < n; ++j)
                    for (int i = 0; i < m; ++i) {
                        Matrix a(m, n, 0, 2);
                        FillRandom(a, random);
                        a(i, j) = bad;
                        EXPECT_EQ(SvdCall(a).Run(function), -4)
                            << m << " x " << n << " at " << i << " " << j << " " << bad;
                    }
}

TEST_F(NonFinite, OpposedInfinitiesAndMatricesFullOfThemAreFoundToo) {
    for (Svd function : {Svd{FullSVD}, Svd{ThinSVD}}) {
        Matrix opposed(4, 4), full(4, 4);
        FillBy(opposed, [](int i, int j) { return j == 1 ? (i % 2 == 0 ? kInf : -kInf) : 1.0 + i; });
        FillBy(full, [](int, int) { return kInf; });
        EXPECT_EQ(SvdCall(opposed).Run(function), -4);
        EXPECT_EQ(SvdCall(full).Run(function), -4);
    }
}

TEST_F(NonFinite, RejectedArgumentsAndShortWorkspaceOfAnSVDKeepTheirPlaceAhead) {
    Matrix a(3, 3), large(80, 80);
    FillRandom(a, random);
    FillRandom(large, random);
    a(1, 1) = large(1, 1) = kInf;
    for (Svd function : {Svd{FullSVD}, Svd{ThinSVD}}) {
        SvdCall call(a);
        call.u.descriptor.leadingDimension = 2;
        EXPECT_EQ(call.Run(function), -8);
        SvdCall narrow(a);
        narrow.a.descriptor.leadingDimension = 2;
        EXPECT_EQ(narrow.Run(function), -5);
    }
    SvdCall tooLarge(large);
    tooLarge.s = RogueVector(80);
    EXPECT_EQ(tooLarge.Run(FullSVD), -12);
    EXPECT_EQ(tooLarge.Run(ThinSVD), -4);
}

TEST_F(NonFinite, RejectedLeadingDimensionIsNotFollowedThroughMemory) {
    double a = 1, other = 0;
    std::int32_t m = 0;
    const MatrixDescriptor tall{0, 1, INT32_MAX / 2, 1}, wide{0, 1, 1, INT32_MAX / 2}, one{0, 1, 1, 1};
    EXPECT_EQ(Rejected([&] { return FullSVD(&a, &tall, &other, &other, &one, &other, &one); }).info, -5);
    EXPECT_EQ(Rejected([&] { return EigenSymmetric(&a, &wide, &other, &m, nullptr, &one); }).info, -6);
}

TEST_F(NonFinite, PaddingOfAnSVDsMatrixMayHoldAnything) {
    Matrix a(3, 3, 0, 4);
    FillRandom(a, random);
    for (double& element : a.storage)
        if (IsRogue(element)) element = kInf;
    EXPECT_EQ(SvdCall(a).Run(ThinSVD), 0);
    EXPECT_EQ(SvdCall(a).Run(FullSVD), 0);
}

struct EigenCall {
    int Run(bool vectors = true) {
        const std::vector<double> before = a.storage;
        const int info = Rejected([&] {
                             return EigenSymmetric(a.Data(), a.Descriptor(), w.data(), &m,
                                                   vectors ? z.Data() : nullptr, z.Descriptor());
                         }).info;
        if (info != 0) {
            EXPECT_TRUE(SameBits(a.storage, before));
            EXPECT_TRUE(std::ranges::all_of(w, IsRogue));
            EXPECT_TRUE(std::ranges::all_of(z.storage, IsRogue));
            EXPECT_EQ(m, -4711);
        }
        return info;
    }
    Matrix a;
    Matrix z{a.Rows(), a.Columns()};
    std::vector<double> w = RogueVector(a.Columns());
    std::int32_t m = -4711;
};

TEST_F(NonFinite, EveryPlaceOfTheLowerTriangleGivesMinusSixAndNothingIsWritten) {
    for (int n : {1, 2, 3, 8})
        for (double bad : kBad)
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i)
                    for (bool vectors : {true, false}) {
                        Matrix a(n, n, 0, 1);
                        FillRandom(a, random);
                        a(i, j) = bad;
                        EXPECT_EQ(EigenCall{a}.Run(vectors), i >= j ? -6 : 0) << n << " at " << i << " " << j;
                    }
}

TEST_F(NonFinite, RejectedArgumentsOfEigenSymmetricKeepTheirPlaceAhead) {
    Matrix a(3, 3);
    FillRandom(a, random);
    a(2, 0) = kQuiet;
    EigenCall call{a};
    call.z.descriptor.leadingDimension = 2;
    EXPECT_EQ(call.Run(), -15);
}

TEST_F(NonFinite, FiniteElementsOfAnySizeAreAccepted) {
    for (double size : {std::numeric_limits<double>::max(), std::numeric_limits<double>::denorm_min(), 0.0, -0.0}) {
        for (int n : {1, 2, 3, 10}) {
            Matrix a(n, n);
            FillBy(a, [&](int i, int j) { return (i + j) % 2 == 0 ? size : -size; });
            EXPECT_EQ(EigenCall{a}.Run(), 0) << n << " " << size;
            EXPECT_EQ(SvdCall(a).Run(FullSVD), 0) << n << " " << size;
            EXPECT_EQ(SvdCall(a).Run(ThinSVD), 0) << n << " " << size;
        }
    }
}

TEST_F(NonFinite, QRFamilyAndLeastSquaresReturnAndKeepToTheirStorage) {
    for (double bad : kBad)
        for (bool everywhere : {false, true})
            for (int n : {1, 2, 5, 40}) {
                const int m = n + 3;
                Matrix a(m, n, 3, 2), b(m, 1, 3, 2), x(n, 1, 1);
                FillRandom(a, random);
                FillRandom(b, random);
                if (everywhere)
                    FillBy(a, [&](int, int) { return bad; });
                else
                    a(m / 2, n / 2) = bad;
                std::vector<double> tau = RogueVector(n + 1);
                std::vector<std::int32_t> jpvt(static_cast<std::size_t>(n) + 1, 0);
                jpvt.back() = 4711;

                Matrix copy = a;
                EXPECT_EQ(QR(copy.Data(), copy.Descriptor(), tau.data()), 0);
                EXPECT_EQ(QR_Q(copy.Data(), copy.Descriptor(), tau.data()), 0);
                EXPECT_TRUE(copy.IsPaddingIntact());
                copy = a;
                EXPECT_EQ(QRP(copy.Data(), copy.Descriptor(), tau.data(), jpvt.data()), 0);
                EXPECT_TRUE(copy.IsPaddingIntact());
                EXPECT_EQ(jpvt.back(), 4711);
                copy = a;
                Matrix right = b;
                EXPECT_GE(LS(copy.Data(), copy.Descriptor(), right.Data(), right.Descriptor()), 0);
                EXPECT_TRUE(copy.IsPaddingIntact() && right.IsPaddingIntact());
                copy = a, right = b;
                EXPECT_GE(OLS(copy.Data(), copy.Descriptor(), right.Data(), right.Descriptor(), x.Data(),
                              x.Descriptor(), tau.data(), 1e-7),
                          0);
                EXPECT_TRUE(copy.IsPaddingIntact() && right.IsPaddingIntact() && x.IsPaddingIntact());
                EXPECT_TRUE(IsRogue(tau.back()));
            }
}

}  // namespace
}  // namespace orvanth::test
