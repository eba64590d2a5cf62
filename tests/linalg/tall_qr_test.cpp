// Large narrow designs: which are factored in three passes, which are left to one column at a time, and that the
// caller cannot tell them apart. OLSPanels compares the results.
#include "linalg/tall_qr.hpp"

#include "linalg/column_by_column.hpp"
#include "linalg/column_products.hpp"

namespace orvanth::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kQuiet = std::numeric_limits<double>::quiet_NaN();

MatrixView ViewOf(Matrix& a) {
    return {a.Data() + a.descriptor.offset, a.Rows(), a.Columns(), a.descriptor.leadingDimension};
}

Matrix RandomDesign(int m = 6000, int n = 24) {
    std::mt19937_64 random(kSeed);
    Matrix a(m, n, 1, 2);
    FillRandom(a, random);
    return a;
}

bool IsFactored(Matrix a, double tolerance = 1e-7) {
    const Matrix given = a;
    std::vector<double> tau = RogueVector(a.Columns() + 1);
    const bool isFactored = FactorTall(ViewOf(a), tau.data(), tolerance);
    EXPECT_EQ(SameBits(a.storage, given.storage), !isFactored);
    EXPECT_EQ(IsRogue(tau[0]), !isFactored);
    EXPECT_TRUE(a.IsPaddingIntact());
    EXPECT_TRUE(IsRogue(tau.back()));
    return isFactored;
}

TEST(ColumnProducts, AreAddedToTheUpperTriangleAlone) {
    std::mt19937_64 random(kSeed);
    for (int n : {1, 2, 3, 4, 5, 7, 8, 20, 31, 32})
        for (int m : {1, 7, 8, 9, 40, 63, 512}) {
            Matrix a(m, n, 3, 2), g(n, n, 1, 3);
            FillRandom(a, random);
            FillBy(g, [](int i, int j) { return (i + 32.0 * j) / 1024; });
            AddColumnProducts(ViewOf(a), ViewOf(g));
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i) {
                    long double sum = (i + 32.0L * j) / 1024;
                    for (int row = 0; i <= j && row < m; ++row)
                        sum += static_cast<long double>(a(row, i)) * a(row, j);
                    EXPECT_NEAR(g(i, j), static_cast<double>(sum), 1e-12) << m << " x " << n << " " << i << " " << j;
                }
            EXPECT_TRUE(g.IsPaddingIntact());
        }
}

TEST(TallQR, OnlyLargeNarrowDesignsAreTall) {
    const auto isTall = [](int m, int n) { return IsTall({nullptr, m, n, m}); };
    EXPECT_TRUE(isTall(100000, 20));
    EXPECT_TRUE(isTall(4096, 32));
    EXPECT_FALSE(isTall(4095, 32));
    EXPECT_FALSE(isTall(100000, 33));
    EXPECT_TRUE(isTall(1 << 17, 1));
    EXPECT_FALSE(isTall((1 << 17) - 1, 1));
    EXPECT_FALSE(isTall(0, 0));
    EXPECT_TRUE(isTall(INT32_MAX, 32));
}

TEST(TallQR, AnOrdinaryDesignIsFactored) {
    for (double tolerance : {1e-7, 0.0, -1.0, 0.1, kQuiet}) EXPECT_TRUE(IsFactored(RandomDesign(), tolerance));
    EXPECT_TRUE(IsFactored(RandomDesign(1 << 17, 1)));
}

TEST(TallQR, ATestThatIsNearIsLeftToOneColumnAtATime) {
    // Of a random column nearly all is left: more than 0.99 and less than 1 of its length.
    EXPECT_TRUE(IsFactored(RandomDesign(), 0.49));
    EXPECT_FALSE(IsFactored(RandomDesign(), 0.51));
    EXPECT_FALSE(IsFactored(RandomDesign(), kInf));
    // A single column keeps all of its length.
    EXPECT_TRUE(IsFactored(RandomDesign(6000, 1), 0.49));
    EXPECT_FALSE(IsFactored(RandomDesign(6000, 1), 0.51));
}

TEST(TallQR, ColumnsNearToCollinearAreLeftToOneColumnAtATime) {
    std::mt19937_64 random(kSeed + 2);
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (auto [distance, isFactored] :
         {std::pair{0.0, false}, {1e-8, false}, {5e-7, false}, {2e-6, true}, {1e-4, true}}) {
        Matrix a = RandomDesign();
        for (int i = 0; i < a.Rows(); ++i) a(i, 20) = a(i, 3) + distance * uniform(random);
        EXPECT_EQ(IsFactored(a, -1), isFactored) << distance;
    }
    Matrix zero = RandomDesign();
    for (int i = 0; i < zero.Rows(); ++i) zero(i, 5) = 0;
    EXPECT_FALSE(IsFactored(zero, -1));
}

TEST(TallQR, ElementsThatAreNotFiniteOrOfExtremeSizeAreLeftToOneColumnAtATime) {
    for (double bad : {kInf, -kInf, kQuiet}) {
        Matrix a = RandomDesign();
        a(4711, 17) = bad;
        EXPECT_FALSE(IsFactored(a));
    }
    for (auto [exponent, isFactored] : {std::pair{-345, false}, {-300, true}, {300, true}, {345, false}}) {
        Matrix a = RandomDesign();
        for (int i = 0; i < a.Rows(); ++i) a(i, 7) = std::ldexp(a(i, 7), exponent);
        EXPECT_EQ(IsFactored(a), isFactored) << exponent;
    }
}

// The first column has nothing below its diagonal: LAPACK leaves it and sets its factor to 0.
TEST(TallQR, AColumnThatIsReducedAlreadyIsLeftToOneColumnAtATime) {
    Matrix a = RandomDesign();
    for (int i = 1; i < a.Rows(); ++i) a(i, 0) = 0;
    EXPECT_FALSE(IsFactored(a));
    Matrix b(a.Rows(), 1), x(a.Columns(), 1);
    FillBy(b, [](int i, int) { return i % 7; });
    std::vector<double> tau(24);
    ASSERT_EQ(OLS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor(), x.Data(), x.Descriptor(), tau.data(), 1e-7), 0);
    EXPECT_EQ(tau[0], 0);
}

TEST(TallQR, DesignsThatStopDoSoAtTheSameColumn) {
    std::mt19937_64 random(kSeed + 1);
    std::uniform_real_distribution<double> uniform(-1, 1), exponent(-9, 0);
    int stopped = 0, solved = 0;
    for (int trial = 0; trial < 100 * Multiplier(); ++trial) {
        Matrix a = RandomDesign(4400, 30);
        for (int k = 0; k < 2; ++k) {
            const int j = std::uniform_int_distribution(1, 29)(random);
            const int near = std::uniform_int_distribution(0, j - 1)(random);
            const double distance = trial % 3 == 0 ? 0.0 : std::pow(10, exponent(random));
            for (int i = 0; i < a.Rows(); ++i) a(i, j) = a(i, near) + distance * uniform(random);
        }
        Matrix b(a.Rows(), 1), x(30, 1);
        FillBy(b, [](int i, int) { return i % 7; });
        FillBy(x, [](int, int) { return 1.0; });
        const double tolerance = std::pow(10, exponent(random));
        Matrix referenceA = a, referenceB = b, referenceX = x;
        const ColumnByColumn reference(referenceA, referenceB, referenceX, tolerance);
        if (reference.narrowest < 1 + 1e-5) continue;  // within rounding of the threshold
        std::vector<double> tau(30);
        ASSERT_EQ(
            OLS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor(), x.Data(), x.Descriptor(), tau.data(), tolerance),
            reference.info);
        ++(reference.info == 0 ? solved : stopped);
        if (reference.info == 0) continue;
        EXPECT_TRUE(SameBits(a.storage, referenceA.storage));
        EXPECT_EQ(b(6, 0), 6);
    }
    EXPECT_GT(stopped, 10);
    EXPECT_GT(solved, 10);
}

}  // namespace
}  // namespace orvanth::test
