// What 10000 elements allow: the largest problem that passes and the smallest that is turned down.
#include "linalg/matrices.hpp"
#include "linalg/scratch.hpp"

namespace orvanth::test {
namespace {

// One row and many columns: what counts is the workspace.
struct Row {
    explicit Row(int columns) : a(1, columns) {
        FillBy(a, [](int, int j) { return 1.0 + j % 7; });
    }
    void ExpectUntouched(const Row& given) const {
        EXPECT_TRUE(SameBits(a.storage, given.a.storage));
        EXPECT_TRUE(IsRogue(tau[0]));
    }
    Matrix a;
    std::vector<double> tau = RogueVector(4);
};

// In 32 bits the support array of EigenSymmetric can be that long, for a matrix that is rejected later.
TEST(Workspace, ScratchBeyondTheAddressSpaceIsNotThere) {
    constexpr std::int64_t kWrapsToNothing = sizeof(void*) == 8 ? std::int64_t{1} << 61 : std::int64_t{1} << 29;
    EXPECT_EQ(AllocateScratch<double>(kWrapsToNothing), nullptr);
    EXPECT_EQ(AllocateScratch<double>(kWrapsToNothing + 1), nullptr);
    EXPECT_EQ(AllocateScratch<double>(kWrapsToNothing / 2), nullptr) << "half of the addresses";
    EXPECT_NE(AllocateScratch<double>(1), nullptr);
    EXPECT_NE(AllocateScratch<double>(-1), nullptr);
}

TEST(Workspace, QRTakesTenThousandColumnsAndNoMore) {
    Row fits(10000), beyond(10001);
    const Row given = beyond;
    EXPECT_EQ(QR(fits.a.Data(), fits.a.Descriptor(), fits.tau.data()), 0);
    const Rejection r = Rejected([&] { return QR(beyond.a.Data(), beyond.a.Descriptor(), beyond.tau.data()); });
    EXPECT_EQ(r.info, -7);
    EXPECT_NE(r.report.find("DGEQRF"), std::string::npos) << r.report;
    beyond.ExpectUntouched(given);
}

TEST(Workspace, QRPTakes3333ColumnsAndNoMore) {
    Row fits(3333), beyond(3334);
    const Row given = beyond;
    std::vector<std::int32_t> jpvt(3334, 0);
    EXPECT_EQ(
        Rejected([&] { return QRP(beyond.a.Data(), beyond.a.Descriptor(), beyond.tau.data(), jpvt.data()); }).info,
        -8);
    beyond.ExpectUntouched(given);
    EXPECT_EQ(jpvt, std::vector<std::int32_t>(3334, 0));
    EXPECT_EQ(QRP(fits.a.Data(), fits.a.Descriptor(), fits.tau.data(), jpvt.data()), 0);
    EXPECT_EQ(jpvt[0], 7);
}

TEST(Workspace, QR_QTurnsDown10001ColumnsBeforeItReadsAnything) {
    Matrix a(1, 1);
    a.descriptor = {0, 10001, 10001, 10001};
    EXPECT_EQ(Rejected([&] { return QR_Q(a.Data(), a.Descriptor(), nullptr); }).info, -8);
    EXPECT_TRUE(IsRogue(a.storage[0]));
}

TEST(Workspace, QR_QyTakesTenThousandColumnsOfTheSecondMatrixAndNoMore) {
    Matrix a(1, 1);
    a(0, 0) = 1;
    const double tau = 0;
    Row fits(10000), beyond(10001);
    const Row given = beyond;
    EXPECT_EQ(QR_Qy(a.Data(), a.Descriptor(), 1, &tau, fits.a.Data(), fits.a.Descriptor()), 0);
    EXPECT_EQ(Rejected([&] {
                  return QR_Qy(a.Data(), a.Descriptor(), 1, &tau, beyond.a.Data(), beyond.a.Descriptor());
              }).info,
              -12);
    beyond.ExpectUntouched(given);
}

TEST(Workspace, LSTakesMinimumPlusTheLargerOfItAndTheRightHandSides) {
    for (auto [nrhs, info] : {std::pair{9999, 0}, {10000, -10}}) {
        Matrix a(1, 1), b(1, nrhs);
        a(0, 0) = 2;
        FillBy(b, [](int, int) { return 3.0; });
        EXPECT_EQ(Rejected([&] { return LS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor()); }).info, info);
        EXPECT_EQ(b(0, nrhs - 1), info == 0 ? 1.5 : 3.0);
        EXPECT_EQ(std::fabs(a(0, 0)), 2);
    }
}

TEST(Workspace, FullSVDGrowsWithTheSquareOfTheSmallerDimension) {
    std::mt19937_64 random(kSeed);
    int largest = 0;
    for (int n = 1; n <= 70; ++n) {
        Matrix a(n, n), u(n, n), vt(n, n);
        FillRandom(a, random);
        std::vector<double> s = RogueVector(n);
        const int info = Rejected([&] {
                             return FullSVD(a.Data(), a.Descriptor(), s.data(), u.Data(), u.Descriptor(), vt.Data(),
                                            vt.Descriptor());
                         }).info;
        ASSERT_TRUE(info == 0 || info == -12) << n;
        if (info == 0) {
            EXPECT_EQ(largest, n - 1);
            largest = n;
        }
    }
    EXPECT_GE(largest, 50);
    EXPECT_LT(largest, 60);
}

int SolveZeroColumns(int n, std::string& report) {
    // The zero column stops the factorisation at once, so that only the checks take part.
    const auto order = static_cast<std::size_t>(n);
    std::vector<double> a(order * order, 0.0), b(order, 1.0), x(order, 2.0), tau(order);
    const MatrixDescriptor square{0, n, n, n}, column{0, n, n, 1};
    const Rejection r =
        Rejected([&] { return OLS(a.data(), &square, b.data(), &column, x.data(), &column, tau.data(), 0); });
    EXPECT_EQ(b, std::vector<double>(order, 1.0));
    EXPECT_EQ(x, std::vector<double>(order, 2.0));
    report = r.report;
    return r.info;
}

TEST(Workspace, OLSTakes2499ColumnsAndReportsDgeqp3Beyond) {
    std::string report;
    EXPECT_EQ(SolveZeroColumns(2499, report), 1);
    EXPECT_EQ(report, "");
    EXPECT_EQ(SolveZeroColumns(2500, report), -8);
    EXPECT_NE(report.find("DGEQP3"), std::string::npos) << report;
    EXPECT_EQ(SolveZeroColumns(3333, report), -8);
    EXPECT_EQ(SolveZeroColumns(3334, report), -12);  // 3334 + 2 x 3334
    EXPECT_NE(report.find("DGELSY"), std::string::npos) << report;
}

TEST(Workspace, OLSTakes9998RightHandSidesOfASingleColumn) {
    for (auto [nrhs, info] : {std::pair{9998, 0}, {9999, -12}}) {
        Matrix a(1, 1), b(1, nrhs), x(1, nrhs);
        a(0, 0) = 2;
        FillBy(b, [](int, int j) { return j + 1.0; });
        double tau = 0;
        const Rejection r = Rejected([&] {
            return OLS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor(), x.Data(), x.Descriptor(), &tau, 1e-9);
        });
        EXPECT_EQ(r.info, info);
        if (info == 0) {
            EXPECT_EQ(x(0, nrhs - 1), nrhs / 2.0);
        } else {
            EXPECT_TRUE(IsRogue(x(0, 0)));
        }
    }
}

TEST(Workspace, DimensionsNearTheLargestIntegerAreTurnedDownAndNotWrappedAround) {
    double element = 1;
    const MatrixDescriptor a{0, INT32_MAX, INT32_MAX, 1}, b{0, INT32_MAX, INT32_MAX, INT32_MAX};
    EXPECT_EQ(Rejected([&] { return OLS(&element, &a, &element, &b, &element, &b, &element, 0); }).info, -12);
    EXPECT_EQ(element, 1);
}

}  // namespace
}  // namespace orvanth::test
