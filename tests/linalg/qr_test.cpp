#include <cstring>
#include <functional>
#include <numeric>

#include "linalg/matrices.hpp"

namespace orvanth::test {
namespace {

struct Factored {
    Matrix given, compact;
    std::vector<double> tau;
    std::vector<std::int32_t> jpvt;
};

Factored Factor(int m, int n, std::mt19937_64& random, bool pivoting, double scale = 1.0) {
    Matrix a(m, n, 5, 3);
    FillRandom(a, random, scale);
    Factored f{a, a, RogueVector(std::min(m, n) + 2), std::vector<std::int32_t>(static_cast<std::size_t>(n) + 1, 0)};
    f.jpvt.back() = 4711;
    const int info = pivoting ? QRP(f.compact.Data(), f.compact.Descriptor(), f.tau.data(), f.jpvt.data())
                              : QR(f.compact.Data(), f.compact.Descriptor(), f.tau.data());
    EXPECT_EQ(info, 0);
    return f;
}

// The whole Q, from the identity.
Matrix WholeQ(Factored& f) {
    Matrix q = Identity(f.compact.Rows());
    EXPECT_EQ(QR_Qy(f.compact.Data(), f.compact.Descriptor(), 0, f.tau.data(), q.Data(), q.Descriptor()), 0);
    return q;
}

TEST(QR, FactorsReproduceTheMatrixAndQIsOrthogonal) {
    std::mt19937_64 random(kSeed);
    for (int m : kSizes)
        for (int n : kSizes) {
            if (n > m) continue;  // QR_Qy takes as many reflectors as the matrix has columns
            for (double scale : {1.0, 1e-150, 1e150}) {
                SCOPED_TRACE(testing::Message() << m << " x " << n << " scale " << scale << " seed " << kSeed);
                Factored f = Factor(m, n, random, false, scale);
                const Matrix q = WholeQ(f);
                EXPECT_LT(ScaledResidual(Product(q, UpperTriangle(f.compact, m)), f.given, f.given), kResidualBound);
                EXPECT_LT(Orthogonality(q), kResidualBound);
                EXPECT_TRUE(f.compact.IsPaddingIntact());
                EXPECT_TRUE(IsRogue(f.tau[static_cast<std::size_t>(std::min(m, n))]));
            }
        }
}

// An offset added to a null pointer is undefined, and the sanitizers say so.
TEST(QR, AnEmptyMatrixMayBeNullWhateverItsOffset) {
    const MatrixDescriptor empty{7, 1, 0, 0};
    std::int32_t pivots = 0;
    double tau = 0;
    EXPECT_EQ(QR(nullptr, &empty, &tau), 0);
    EXPECT_EQ(QRP(nullptr, &empty, &tau, &pivots), 0);
    EXPECT_EQ(LS(nullptr, &empty, nullptr, &empty), 0);
}

TEST(QR, WideMatrixIsFactoredByItsFirstColumns) {
    std::mt19937_64 random(kSeed);
    for (auto [m, n] : {std::pair{1, 2}, {2, 5}, {3, 50}, {10, 50}, {0, 3}}) {
        Factored f = Factor(m, n, random, false);
        f.compact.descriptor.columns = m;  // the reflectors stand in the leading square
        const Matrix q = WholeQ(f);
        f.compact.descriptor.columns = n;
        EXPECT_LT(ScaledResidual(Product(q, UpperTriangle(f.compact, m)), f.given, f.given), kResidualBound);
        EXPECT_TRUE(f.compact.IsPaddingIntact());
    }
}

TEST(QR, DiagonalOfRHasTheSignOppositeToThePivot) {
    for (double first : {2.0, -2.0}) {
        Matrix a(3, 1);
        a(0, 0) = first, a(1, 0) = 1, a(2, 0) = 2;
        double tau = 0;
        ASSERT_EQ(QR(a.Data(), a.Descriptor(), &tau), 0);
        EXPECT_NEAR(a(0, 0), first > 0 ? -3 : 3, 1e-15);
        EXPECT_NEAR(tau, 5.0 / 3, 1e-15);
        EXPECT_NEAR(a(1, 0), (first > 0 ? 1 : -1) / 5.0, 1e-15);
    }
}

TEST(QR, OffsetShiftsTheView) {
    Matrix shifted(4, 2, 3), plain(4, 2);
    FillBy(shifted, [](int i, int j) { return 1.0 / (i + 2 * j + 1); });
    FillBy(plain, [](int i, int j) { return 1.0 / (i + 2 * j + 1); });
    double tauShifted[2], tauPlain[2];
    ASSERT_EQ(QR(shifted.Data(), shifted.Descriptor(), tauShifted), 0);
    ASSERT_EQ(QR(plain.Data(), plain.Descriptor(), tauPlain), 0);
    for (int j = 0; j < 2; ++j)
        // Some kernels of OpenBLAS add in another order at another address.
        for (int i = 0; i < 4; ++i) EXPECT_DOUBLE_EQ(shifted(i, j), plain(i, j));
    EXPECT_TRUE(shifted.IsPaddingIntact());
}

TEST(QR, TwoCallsOnTheSameDataGiveTheSameBits) {
    std::mt19937_64 random(kSeed);
    Matrix first(40, 33);
    FillRandom(first, random);
    Matrix second = first, between(50, 50);
    FillRandom(between, random);
    std::vector<double> tauFirst(33), tauSecond(33), tauBetween(50);
    QR(first.Data(), first.Descriptor(), tauFirst.data());
    QR(between.Data(), between.Descriptor(), tauBetween.data());
    QR(second.Data(), second.Descriptor(), tauSecond.data());
    EXPECT_TRUE(SameBits(first.storage, second.storage));
    EXPECT_TRUE(SameBits(tauFirst, tauSecond));
}

TEST(QR, DescriptorIsNeverWritten) {
    std::mt19937_64 random(kSeed);
    Matrix a(5, 3, 2, 1), c(5, 2, 4, 2);
    FillRandom(a, random);
    FillRandom(c, random);
    const MatrixDescriptor aBefore = a.descriptor, cBefore = c.descriptor;
    double tau[3];
    QR(a.Data(), a.Descriptor(), tau);
    QR_Qy(a.Data(), a.Descriptor(), 1, tau, c.Data(), c.Descriptor());
    QR_Q(a.Data(), a.Descriptor(), tau);
    EXPECT_EQ(std::memcmp(&aBefore, &a.descriptor, sizeof aBefore), 0);
    EXPECT_EQ(std::memcmp(&cBefore, &c.descriptor, sizeof cBefore), 0);
}

TEST(QR, MatrixWithNoColumnsReturnsZeroAndChangesNothing) {
    for (int rows : {0, 1, 7}) {
        Matrix a(rows, 0, 2);
        std::vector<double> tau = RogueVector(2);
        std::int32_t jpvt = 17;
        EXPECT_EQ(QR(a.Data(), a.Descriptor(), tau.data()), 0);
        EXPECT_EQ(QRP(a.Data(), a.Descriptor(), tau.data(), &jpvt), 0);
        EXPECT_EQ(QR_Q(a.Data(), a.Descriptor(), tau.data()), 0);
        Matrix c(rows, 2);
        FillBy(c, [](int i, int j) { return i + 10.0 * j; });
        const std::vector<double> before = c.storage;
        EXPECT_EQ(QR_Qy(a.Data(), a.Descriptor(), 1, tau.data(), c.Data(), c.Descriptor()), 0);
        EXPECT_TRUE(SameBits(c.storage, before));
        EXPECT_TRUE(a.IsPaddingIntact());
        EXPECT_TRUE(IsRogue(tau[0]));
        EXPECT_EQ(jpvt, 17);
    }
}

TEST(QRP, FactorsReproduceThePermutedMatrix) {
    std::mt19937_64 random(kSeed + 1);
    for (int m : kSizes)
        for (int n : kSizes) {
            SCOPED_TRACE(testing::Message() << m << " x " << n);
            Factored f = Factor(m, n, random, true);
            EXPECT_TRUE(f.compact.IsPaddingIntact());
            EXPECT_EQ(f.jpvt.back(), 4711);
            if (m == 0) continue;
            std::vector<std::int32_t> sorted(f.jpvt.begin(), f.jpvt.end() - 1), counted(sorted.size());
            std::ranges::sort(sorted);
            std::iota(counted.begin(), counted.end(), 1);
            EXPECT_EQ(sorted, counted);
            for (int k = 1; k < std::min(m, n); ++k)
                EXPECT_LE(std::fabs(f.compact(k, k)), std::fabs(f.compact(k - 1, k - 1)) * (1 + 1e-12));

            Matrix permuted(m, n);
            FillBy(permuted, [&](int i, int j) { return f.given(i, f.jpvt[static_cast<std::size_t>(j)] - 1); });
            f.compact.descriptor.columns = std::min(m, n);
            const Matrix q = WholeQ(f);
            f.compact.descriptor.columns = n;
            EXPECT_LT(ScaledResidual(Product(q, UpperTriangle(f.compact, m)), permuted, permuted), kResidualBound);
        }
}

TEST(QRP, NonZeroElementsOfJpvtFixTheirColumnsAtTheFront) {
    std::mt19937_64 random(kSeed);
    Matrix a(6, 4);
    FillRandom(a, random);
    for (int i = 0; i < 6; ++i) a(i, 0) *= 1e-6;  // the last choice of a free pivoting
    double tau[4];
    Matrix pivotedFreely = a;
    std::int32_t jpvt[4] = {0, 0, 0, 0};
    ASSERT_EQ(QRP(pivotedFreely.Data(), pivotedFreely.Descriptor(), tau, jpvt), 0);
    EXPECT_EQ(jpvt[3], 1);

    Matrix fixed = a;
    std::int32_t leading[4] = {1, 0, 0, 0};
    ASSERT_EQ(QRP(fixed.Data(), fixed.Descriptor(), tau, leading), 0);
    EXPECT_EQ(leading[0], 1);

    // Contents left over from an earlier call are all non-zero, so nothing moves.
    Matrix stale = a;
    ASSERT_EQ(QRP(stale.Data(), stale.Descriptor(), tau, jpvt), 0);
    for (int j = 0; j < 4; ++j) EXPECT_EQ(jpvt[j], j + 1);
}

TEST(QR_Q, FormsTheThinQInPlace) {
    std::mt19937_64 random(kSeed);
    for (int m : kSizes)
        for (int n : kSizes) {
            if (n > m) continue;
            SCOPED_TRACE(testing::Message() << m << " x " << n);
            Factored f = Factor(m, n, random, false);
            const Matrix r = UpperTriangle(f.compact, n);
            const std::vector<double> tau = f.tau;
            ASSERT_EQ(QR_Q(f.compact.Data(), f.compact.Descriptor(), f.tau.data()), 0);
            EXPECT_TRUE(SameBits(tau, f.tau));
            EXPECT_LT(Orthogonality(f.compact), kResidualBound);
            EXPECT_LT(ScaledResidual(Product(f.compact, r), f.given, f.given), kResidualBound);
            EXPECT_TRUE(f.compact.IsPaddingIntact());
        }
}

TEST(QR_Q, OfAPivotedFactorisationIsTheQOfThePermutedMatrix) {
    std::mt19937_64 random(kSeed);
    Factored f = Factor(10, 5, random, true);
    const Matrix r = UpperTriangle(f.compact, 5);
    const std::vector<std::int32_t> jpvt = f.jpvt;
    ASSERT_EQ(QR_Q(f.compact.Data(), f.compact.Descriptor(), f.tau.data()), 0);
    Matrix permuted(10, 5);
    FillBy(permuted, [&](int i, int j) { return f.given(i, jpvt[static_cast<std::size_t>(j)] - 1); });
    EXPECT_LT(ScaledResidual(Product(f.compact, r), permuted, permuted), kResidualBound);
    EXPECT_EQ(f.jpvt, jpvt);
}

TEST(QR_Qy, WithoutTransposeAfterWithTransposeRestoresTheMatrix) {
    std::mt19937_64 random(kSeed);
    for (int columns : {0, 1, 3, 40}) {
        Factored f = Factor(50, 10, random, false);
        Matrix c(50, columns, 9, 4);
        FillRandom(c, random);
        const Matrix given = c;
        ASSERT_EQ(QR_Qy(f.compact.Data(), f.compact.Descriptor(), 1, f.tau.data(), c.Data(), c.Descriptor()), 0);
        if (columns > 0) {
            EXPECT_GT(ScaledResidual(c, given, given), 1e6);
        }
        ASSERT_EQ(QR_Qy(f.compact.Data(), f.compact.Descriptor(), 0, f.tau.data(), c.Data(), c.Descriptor()), 0);
        EXPECT_LT(ScaledResidual(c, given, given), kResidualBound);
        EXPECT_TRUE(c.IsPaddingIntact());
    }
}

TEST(QR_Qy, LeavesTheFactorsAsTheyWere) {
    std::mt19937_64 random(kSeed);
    Factored f = Factor(50, 40, random, false);
    Matrix c(50, 45);
    FillRandom(c, random);
    const std::vector<double> before = f.compact.storage, tau = f.tau;
    ASSERT_EQ(QR_Qy(f.compact.Data(), f.compact.Descriptor(), 1, f.tau.data(), c.Data(), c.Descriptor()), 0);
    EXPECT_TRUE(SameBits(f.compact.storage, before));
    EXPECT_TRUE(SameBits(f.tau, tau));
}

TEST(QR_Qy, TransposeIsTestedAsAWholeWord) {
    std::mt19937_64 random(kSeed);
    Factored f = Factor(6, 3, random, false);
    Matrix one(6, 2);
    FillRandom(one, random);
    Matrix highByte = one;
    QR_Qy(f.compact.Data(), f.compact.Descriptor(), 1, f.tau.data(), one.Data(), one.Descriptor());
    QR_Qy(f.compact.Data(), f.compact.Descriptor(), 0x100, f.tau.data(), highByte.Data(), highByte.Descriptor());
    EXPECT_TRUE(SameBits(one.storage, highByte.storage));
}

TEST(QR_Qy, RowsOfTheSecondMatrixAreNotRead) {
    std::mt19937_64 random(kSeed);
    Factored f = Factor(6, 3, random, false);
    Matrix c(6, 2);
    FillRandom(c, random);
    Matrix other = c;
    other.descriptor.rows = -12345;
    QR_Qy(f.compact.Data(), f.compact.Descriptor(), 1, f.tau.data(), c.Data(), c.Descriptor());
    EXPECT_EQ(QR_Qy(f.compact.Data(), f.compact.Descriptor(), 1, f.tau.data(), other.Data(), other.Descriptor()), 0);
    EXPECT_TRUE(SameBits(c.storage, other.storage));
}

// Every rejected argument, by its number; storage stays as it was.
int CallRejected(Matrix& a, const std::function<int(double*)>& call) {
    std::vector<double> tau = RogueVector(8);
    const std::vector<double> before = a.storage;
    const int info = Rejected([&] { return call(tau.data()); }).info;
    EXPECT_TRUE(SameBits(a.storage, before));
    EXPECT_TRUE(IsRogue(tau[0]));
    return info;
}

Matrix Described(int rows, int columns, int leadingDimension) {
    Matrix a(4, 4);
    FillBy(a, [](int i, int j) { return 1.0 / (i + j + 1); });
    a.descriptor = {0, leadingDimension, rows, columns};
    return a;
}

TEST(QR, RejectedArgumentsComeBackAsTheirNumber) {
    const auto info = [](int rows, int columns, int ld) {
        Matrix a = Described(rows, columns, ld);
        return CallRejected(a, [&](double* tau) { return QR(a.Data(), a.Descriptor(), tau); });
    };
    EXPECT_EQ(info(-1, 2, 4), -1);
    EXPECT_EQ(info(4, -1, 4), -2);
    EXPECT_EQ(info(4, 2, 3), -4);
    EXPECT_EQ(info(0, 2, 0), -4);
}

TEST(QRP, RejectedArgumentsComeBackAsTheirNumber) {
    const auto info = [](int rows, int columns, int ld) {
        Matrix a = Described(rows, columns, ld);
        std::int32_t jpvt[4] = {};
        return CallRejected(a, [&](double* tau) { return QRP(a.Data(), a.Descriptor(), tau, jpvt); });
    };
    EXPECT_EQ(info(-1, 2, 4), -1);
    EXPECT_EQ(info(4, -1, 4), -2);
    EXPECT_EQ(info(4, 2, 3), -4);
}

TEST(QR_Q, FewerRowsThanColumnsIsRejectedAsArgumentTwo) {
    const auto info = [](int rows, int columns, int ld) {
        Matrix a = Described(rows, columns, ld);
        return CallRejected(a, [&](double* tau) { return QR_Q(a.Data(), a.Descriptor(), tau); });
    };
    EXPECT_EQ(info(2, 3, 4), -2);
    EXPECT_EQ(info(-1, 2, 4), -1);
    EXPECT_EQ(info(4, -1, 4), -2);
    EXPECT_EQ(info(4, 2, 3), -5);
}

TEST(QR_Qy, RejectedArgumentsComeBackAsTheirNumber) {
    const auto info = [](MatrixDescriptor aDescriptor, MatrixDescriptor cDescriptor) {
        Matrix a = Described(4, 2, 4), c = Described(4, 2, 4);
        return CallRejected(
            c, [&](double* tau) { return QR_Qy(a.Data(), &aDescriptor, 1, tau, c.Data(), &cDescriptor); });
    };
    const MatrixDescriptor good{0, 4, 4, 2};
    EXPECT_EQ(info({0, 4, -1, 2}, good), -3);
    EXPECT_EQ(info(good, {0, 4, 4, -1}), -4);
    EXPECT_EQ(info({0, 4, 4, -1}, good), -5);
    EXPECT_EQ(info({0, 4, 2, 3}, good), -5);
    EXPECT_EQ(info({0, 3, 4, 2}, good), -7);
    EXPECT_EQ(info(good, {0, 3, 4, 2}), -10);
}

}  // namespace
}  // namespace orvanth::test
