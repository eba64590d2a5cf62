// Infinities and NaNs come back with a status. A call that does not return is ended by the alarm.
#if !defined(_WIN32)
#include <unistd.h>
#endif

#include <array>
#include <csignal>

#include "linalg/lapack.hpp"
#include "linalg/matrices.hpp"
#include "linalg/svd_workspace.hpp"

namespace orvanth::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kQuiet = std::numeric_limits<double>::quiet_NaN();
constexpr std::array kBad = {kInf, -kInf, kQuiet, -kQuiet};

class NonFinite : public testing::Test {
protected:
#if !defined(_WIN32)  // there the limit of ctest ends it
    void SetUp() override { alarm(60); }
    void TearDown() override { alarm(0); }
#endif
    std::mt19937_64 random{kSeed};
};

using Svd = int32_t (*)(double*, const MatrixDescriptor*, double*, double*, const MatrixDescriptor*, double*,
                        const MatrixDescriptor*);

struct SvdCall {
    explicit SvdCall(Matrix matrix)
        : a(std::move(matrix)), u(a.Rows(), a.Rows()), vt(a.Columns(), a.Columns()), s(RogueVector(60)) {}
    int RunAnyStatus(Svd function) {
        return Rejected([&] {
                   return function(a.Data(), a.Descriptor(), s.data(), u.Data(), u.Descriptor(), vt.Data(),
                                   vt.Descriptor());
               })
            .info;
    }
    int Run(Svd function) {
        const std::vector<double> before = a.storage;
        const int info = RunAnyStatus(function);
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

// What LAPACK itself answers.
int DirectStatus(Matrix a, char jobz) {
    Matrix u(a.Rows(), a.Rows()), vt(a.Columns(), a.Columns());
    std::vector<double> s(60), work(10000);
    std::vector<std::int32_t> intWork(1000);
    const std::int32_t length = 10000;
    std::int32_t info = 0;
    LAPACK_dgesdd(&jobz, &a.descriptor.rows, &a.descriptor.columns, a.Data(), &a.descriptor.leadingDimension,
                  s.data(), u.Data(), &u.descriptor.leadingDimension, vt.Data(), &vt.descriptor.leadingDimension,
                  work.data(), &length, intWork.data(), &info);
    return info;
}

// An infinity is turned away where the iteration might not end, a NaN everywhere.
TEST_F(NonFinite, EveryPlaceOfAnSVDsMatrixOfOrderThreeGivesMinusFourAndNothingIsWritten) {
    for (Svd function : {Svd{FullSVD}, Svd{ThinSVD}})
        for (auto [m, n] : {std::pair{3, 3}, {9, 6}, {4, 20}})
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

// LAPACK returns by itself from lower orders, and its answer is passed on.
TEST_F(NonFinite, AnInfinityInAnSVDOfALowerOrderGetsLapacksAnswer) {
    for (Svd function : {Svd{FullSVD}, Svd{ThinSVD}})
        for (auto [m, n] : {std::pair{1, 1}, {5, 2}, {2, 5}, {2, 2}, {1, 7}})
            for (double bad : kBad)
                for (int j = 0; j < n; ++j)
                    for (int i = 0; i < m; ++i) {
                        Matrix a(m, n, 0, 2);
                        FillRandom(a, random);
                        a(i, j) = bad;
                        SvdCall call(a);
                        EXPECT_EQ(std::isnan(bad) ? call.Run(function) : call.RunAnyStatus(function),
                                  std::isnan(bad) ? -4 : DirectStatus(a, function == FullSVD ? 'A' : 'S'))
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

// A null matrix: reading it would end the program.
TEST_F(NonFinite, MatrixOfARejectedDescriptorIsNeverRead) {
    double other = 0;
    std::int32_t m = 0;
    const MatrixDescriptor good{0, 5, 5, 5}, low{0, 4, 5, 5}, one{0, 1, 1, 1};
    const MatrixDescriptor tall{0, 1, INT32_MAX / 2, 1}, wide{0, 1, 1, INT32_MAX / 2};
    const MatrixDescriptor negative{0, 5, -1, 5}, large{0, 57, 57, 57}, flat{0, 3, 3, 10000};
    for (Svd function : {Svd{FullSVD}, Svd{ThinSVD}}) {
        const auto info = [&](const MatrixDescriptor& a, const MatrixDescriptor& u, const MatrixDescriptor& vt) {
            return Rejected([&] { return function(nullptr, &a, &other, &other, &u, &other, &vt); }).info;
        };
        EXPECT_EQ(info(negative, good, good), -2);
        EXPECT_EQ(info(low, good, good), -5);
        EXPECT_EQ(info(tall, one, one), -5);
        EXPECT_EQ(info(good, low, good), -8);
        EXPECT_EQ(info(good, good, low), -10);
        if (function == FullSVD) {
            EXPECT_EQ(info(large, large, large), -12);
            EXPECT_EQ(info(flat, flat, {0, 10000, 0, 0}), -12);
        }
    }
    EXPECT_EQ(Rejected([&] { return EigenSymmetric(nullptr, &wide, &other, &m, nullptr, &one); }).info, -6);
    EXPECT_EQ(Rejected([&] { return EigenSymmetric(nullptr, &good, &other, &m, &other, &low); }).info, -15);
}

// The length that decides between reading the matrix and leaving it to LAPACK.
TEST_F(NonFinite, WorkLengthOfAnSVDIsTheSmallestThatLapackAccepts) {
    const auto status = [](SvdVectors vectors, int m, int n, std::int64_t length) {
        Matrix a(m, n), u(m, m), vt(n, n);
        FillBy(a, [](int i, int j) { return i == j ? 1.0 : 0.0; });
        std::vector<double> s(60), work(static_cast<std::size_t>(length) + 1);
        std::vector<std::int32_t> intWork(1000);
        const char jobz = static_cast<char>(vectors);
        const auto workLength = static_cast<std::int32_t>(length);
        std::int32_t info = 0;
        Rejected([&] {
            LAPACK_dgesdd(&jobz, &m, &n, a.Data(), &a.descriptor.leadingDimension, s.data(), u.Data(),
                          &u.descriptor.leadingDimension, vt.Data(), &vt.descriptor.leadingDimension, work.data(),
                          &workLength, intWork.data(), &info);
            return 0;
        });
        return info;
    };
    for (SvdVectors vectors : {SvdVectors::kAll, SvdVectors::kThin})
        for (int m : {0, 1, 2, 3, 5, 6, 9, 11, 12, 18, 40, 300})
            for (int n : {0, 1, 2, 3, 5, 6, 9, 11, 12, 18, 40, 300}) {
                if (std::min(m, n) > 40) continue;
                const std::int64_t needed = SvdWorkLength(vectors, m, n);
                EXPECT_EQ(status(vectors, m, n, needed), 0) << m << " x " << n;
                EXPECT_EQ(status(vectors, m, n, needed - 1), -12) << m << " x " << n;
            }
}

// LAPACK would count such a workspace in 32 bits. The matrix is null: nothing may be read or written.
TEST_F(NonFinite, ThinSVDWhoseWorkspaceNo32BitsCanCountGivesMinusTwelve) {
    EXPECT_EQ(SvdWorkLength(SvdVectors::kThin, 26753, 26753), 2147356298);
    for (auto [m, n] : {std::pair{26754, 26754}, {60000, 30000}, {30000, 60000}, {INT32_MAX, INT32_MAX}}) {
        const MatrixDescriptor a{0, m, m, n}, vt{0, n, n, n};
        const Rejection r = Rejected([&] { return ThinSVD(nullptr, &a, nullptr, nullptr, &a, nullptr, &vt); });
        EXPECT_EQ(r.info, -12);
        EXPECT_NE(r.report.find("DGESDD"), std::string::npos) << r.report;
    }
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
    int RunAnyStatus(bool vectors) {
        return Rejected([&] {
                   return EigenSymmetric(a.Data(), a.Descriptor(), w.data(), &m, vectors ? z.Data() : nullptr,
                                         z.Descriptor());
               })
            .info;
    }
    int Run(bool vectors = true) {
        const std::vector<double> before = a.storage;
        const int info = RunAnyStatus(vectors);
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

int DirectEigenStatus(Matrix a, bool vectors) {
    const int n = a.Columns();
    Matrix z(n, n);
    std::vector<double> w(60), work(10000);
    std::vector<std::int32_t> intWork(1000), support(200);
    const std::int32_t length = 10000, intLength = 1000, index = 0;
    const double bound = 0;
    std::int32_t found = 0, info = 0;
    LAPACK_dsyevr(vectors ? "V" : "N", "A", "L", &n, a.Data(), &a.descriptor.leadingDimension, &bound, &bound, &index,
                  &index, &bound, &found, w.data(), z.Data(), &n, support.data(), work.data(), &length,
                  intWork.data(), &intLength, &info);
    return info;
}

// dsyevr may not return from a NaN when vectors are wanted from order 3 on.
TEST_F(NonFinite, NaNInTheLowerTriangleGivesMinusFiveWithVectorsFromOrderThree) {
    for (int n : {1, 2, 3, 8})
        for (double bad : kBad)
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i)
                    for (bool vectors : {true, false}) {
                        Matrix a(n, n, 0, 1);
                        FillRandom(a, random);
                        a(i, j) = bad;
                        const bool isTurnedAway = std::isnan(bad) && i >= j && n >= 3 && vectors;
                        EigenCall call{a};
                        EXPECT_EQ(isTurnedAway ? call.Run() : call.RunAnyStatus(vectors),
                                  isTurnedAway ? -5 : DirectEigenStatus(a, vectors))
                            << n << " at " << i << " " << j << " " << bad;
                    }
}

// An infinity before the NaN, in the same column or an earlier one, does not hide it.
TEST_F(NonFinite, NaNBehindInfinitiesIsFoundInTheLowerTriangle) {
    for (double sign : {1.0, -1.0}) {
        Matrix a(6, 6);
        FillBy(a, [&](int i, int j) { return i == j ? sign * kInf : 1.0; });
        EXPECT_EQ(EigenCall{a}.RunAnyStatus(true), DirectEigenStatus(a, true));
        a(5, 4) = kQuiet;
        EXPECT_EQ(EigenCall{a}.Run(), -5);
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
