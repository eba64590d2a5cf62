// The steps of the factorisation and the workspace of least squares, below the exports.
#include "linalg/collinearity_qr.hpp"

#include <array>
#include <utility>

#include "linalg/allocation_count.hpp"
#include "linalg/collinearity_qr_step.hpp"
#include "linalg/matrices.hpp"

namespace orvanth::test {
namespace {

MatrixView ViewOf(Matrix& a) { return {a.Data(), a.Rows(), a.Columns(), a.descriptor.leadingDimension}; }

struct Step {
    explicit Step(Matrix matrix) : a(std::move(matrix)), tau(RogueVector(a.Columns() + 1)) {
        for (int j = 0; j < a.Columns(); ++j) {
            double sum = 0;
            for (int i = 0; i < a.Rows(); ++i) sum += a(i, j) * a(i, j);
            vn1.push_back(std::sqrt(sum));
        }
        vn2 = initialNorm = vn1;
        std::ranges::replace(initialNorm, 0.0, 1.0);
        room = RogueVector(a.Columns() + 1);
    }
    int Run(double tolerance) {
        return CollinearityQRStep(ViewOf(a), tau.data(), tolerance, {vn1.data(), vn2.data(), initialNorm.data()},
                                  {room.data(), a.Columns()});
    }
    Matrix a;
    std::vector<double> tau, vn1, vn2, initialNorm, room;
};

TEST(CollinearityQRStep, DowndatesThePartialNormsOfLaterColumns) {
    Matrix a(3, 2);
    a(0, 0) = 1, a(1, 0) = 0, a(2, 0) = 0;
    a(0, 1) = 3, a(1, 1) = 4, a(2, 1) = 12;
    Step step(a);
    EXPECT_EQ(step.Run(0.5), 0);
    EXPECT_DOUBLE_EQ(step.vn1[1], 13 * std::sqrt(1 - (3.0 / 13) * (3.0 / 13)));
    EXPECT_EQ(step.vn2[1], 13);  // downdated, not recomputed
    EXPECT_EQ(step.vn1[0], 1);
}

TEST(CollinearityQRStep, RecomputesTheNormWhenTheDowndateCancels) {
    // 1 - (1 / 1)^2 cancels to nothing, and the norm of what is left is 1e-9.
    Matrix a(3, 2);
    a(0, 0) = 1, a(1, 0) = 0, a(2, 0) = 0;
    a(0, 1) = 1, a(1, 1) = 0, a(2, 1) = 1e-9;
    Step step(a);
    EXPECT_EQ(step.Run(1e-10), 0);
    EXPECT_EQ(step.vn1[1], 1e-9);
    EXPECT_EQ(step.vn2[1], 1e-9);
    Step stopped(a);
    EXPECT_EQ(stopped.Run(1e-8), 2);
}

TEST(CollinearityQRStep, CancellationIsJudgedAgainstTheRootOfTheRoundingUnit) {
    // temp2 = 1 - cos^2 is on either side of sqrt(2^-53) = 1.05e-8.
    for (double rest : {0.9e-4, 1.1e-4}) {
        Matrix a(2, 2);
        a(0, 0) = 1, a(1, 0) = 0, a(0, 1) = 1, a(1, 1) = rest;
        Step step(a);
        EXPECT_EQ(step.Run(1e-10), 0);
        if (rest < 1e-4)
            EXPECT_EQ(step.vn2[1], rest);
        else
            EXPECT_GT(step.vn2[1], 0.9);
    }
}

TEST(CollinearityQRStep, AccumulatedDowndatesAreJudgedAgainstTheLastExactNorm) {
    // vn1 / vn2 = 1e-4 beforehand, so that a harmless downdate is recomputed all the same.
    Matrix a(2, 2);
    a(0, 0) = 1, a(1, 0) = 0, a(0, 1) = 3, a(1, 1) = 4;
    Step step(a);
    step.vn2[1] = 5e4;
    EXPECT_EQ(step.Run(-1), 0);
    EXPECT_EQ(step.vn1[1], 4);
    EXPECT_EQ(step.vn2[1], 4);
}

TEST(CollinearityQRStep, ANormOfZeroIsNeverUpdated) {
    Matrix a(2, 2);
    a(0, 0) = 1, a(1, 0) = 0, a(0, 1) = 3, a(1, 1) = 4;
    Step step(a);
    step.vn1[1] = 0;
    EXPECT_EQ(step.Run(-1), 0);
    EXPECT_EQ(step.vn1[1], 0);
    EXPECT_EQ(step.vn2[1], 5);
}

TEST(CollinearityQRStep, LastRowLeavesNoNorm) {
    // A wide matrix: after its last row nothing is left of the later columns, and a cancelled norm becomes 0.
    Matrix a(1, 3);
    a(0, 0) = 2, a(0, 1) = 3, a(0, 2) = 0;
    Step step(a);
    EXPECT_EQ(step.Run(0.5), 0);
    EXPECT_EQ(step.tau[0], 0);  // a reflection of order 1 is the identity
    EXPECT_EQ(step.a(0, 0), 2);
    EXPECT_EQ(step.vn1[1], 0);
    EXPECT_EQ(step.vn2[1], 0);
    EXPECT_EQ(step.vn1[2], 0);  // a norm of 0 is left alone
}

TEST(CollinearityQRStep, NothingIsDoneForAnEmptyMatrix) {
    Step step(Matrix(0, 3));
    step.vn1 = step.vn2 = RogueVector(3);
    EXPECT_EQ(step.Run(1), 0);
    EXPECT_TRUE(IsRogue(step.vn1[0]) && IsRogue(step.tau[0]));
}

struct LeastSquares {
    int Run(int m, int n, int nrhs, int lda, int ldb, int length, double tolerance = 1e-9) {
        int info = 0;
        report = Rejected([&] {
                     info = CollinearityLeastSquares({a.Data(), m, n, lda}, {b.Data(), m, nrhs, ldb},
                                                     {x.Data(), n, nrhs, 4}, tau, tolerance, {work.data(), length});
                     return 0;
                 }).report;
        return info;
    }
    Matrix a = Identity(4), b = Identity(4), x = Identity(4);
    double tau[4] = {};
    std::vector<double> work = RogueVector(40);
    std::string report;
};

TEST(CollinearityLeastSquares, WorkIsCheckedInBothRoutines) {
    // For 4 x 3 with one right-hand side the first check wants 3 + max(6, 4, 4) = 9, the second 3 + 10.
    LeastSquares f;
    EXPECT_EQ(f.Run(4, 3, 1, 4, 4, 8), -12);
    EXPECT_NE(f.report.find("DGELSY"), std::string::npos);
    EXPECT_EQ(f.Run(4, 3, 1, 4, 4, 9), -8);
    EXPECT_NE(f.report.find("DGEQP3"), std::string::npos);
    EXPECT_EQ(f.Run(4, 3, 1, 4, 4, 12), -8);
    EXPECT_EQ(f.Run(4, 3, 1, 4, 4, 13), 0);
    EXPECT_EQ(f.report, "");
    for (std::size_t k = 13; k < f.work.size(); ++k) EXPECT_TRUE(IsRogue(f.work[k]));
}

TEST(CollinearityLeastSquares, WorkOfAWideMatrixGrowsWithItsColumns) {
    // 1 + max(2, 4 + 1, 2) = 6; the second check then wants 1 + 13.
    LeastSquares f;
    EXPECT_EQ(f.Run(1, 4, 1, 4, 4, 5), -12);
    EXPECT_EQ(f.Run(1, 4, 1, 4, 4, 6), -8);
    EXPECT_EQ(f.Run(1, 4, 1, 4, 4, 13), -8);
    EXPECT_EQ(f.Run(1, 4, 1, 4, 4, 14), -5);
}

TEST(CollinearityLeastSquares, AnEmptyProblemWantsAnElementAllTheSame) {
    LeastSquares f;
    EXPECT_EQ(f.Run(4, 0, 1, 4, 4, 0), -12);
    EXPECT_EQ(f.Run(4, 0, 1, 4, 4, 1), 0);
}

TEST(CollinearityQR, RejectedArgumentsAreReportedUnderDgeqp3) {
    for (const std::array<int, 5>& row : {std::array{-1, 3, 4, 20, -1},
                                          {4, -1, 4, 20, -2},
                                          {4, 3, 3, 20, -4},
                                          {0, 3, 0, 20, -4},
                                          {4, 3, 4, 12, -8},
                                          {0, 3, 1, 0, -8},
                                          {-1, -1, 0, 0, -1}}) {
        const int m = row[0], n = row[1], lda = row[2], length = row[3], info = row[4];
        Matrix a = Identity(4);
        const std::vector<double> before = a.storage;
        double tau[4], work[20];
        const Rejection r = Rejected([&] {
            return CollinearityQR({a.Data(), m, n, lda}, tau, 1e-9, {work, length});
        });
        EXPECT_EQ(r.info, info);
        EXPECT_NE(r.report.find("DGEQP3"), std::string::npos) << r.report;
        EXPECT_TRUE(SameBits(a.storage, before));
    }
}

TEST(CollinearityQR, AMatrixWithoutElementsIsLeftAlone) {
    for (const auto& [m, n] : {std::pair{0, 3}, {4, 0}, {0, 0}}) {
        Matrix a = Identity(4);
        const std::vector<double> before = a.storage;
        double tau[] = {7, 7, 7}, work[20] = {};
        EXPECT_EQ(CollinearityQR({a.Data(), m, n, 4}, tau, 1e-9, {work, 20}), 0);
        EXPECT_TRUE(SameBits(a.storage, before));
        EXPECT_EQ(tau[0], 7);
    }
}

TEST(OLS, AllocatesNothing) {
    std::mt19937_64 random(kSeed);
    for (int n : {10, 100}) {
        Matrix a(200, n), b(200, 1), x(n, 1);
        FillRandom(a, random);
        FillRandom(b, random);
        double tau[100];
        const long before = AllocationCount();
        const int info = OLS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor(), x.Data(), x.Descriptor(), tau, 1e-9);
        EXPECT_EQ(AllocationCount() - before, 0);
        EXPECT_EQ(info, 0);
    }
}

}  // namespace
}  // namespace orvanth::test
