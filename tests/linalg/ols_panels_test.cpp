// OLS works on panels of columns; the same problem one column at a time is the reference.
//
// Both are backward stable, so what differs is rounding: in the factors by the condition of the columns before,
// each scaled to length one. Designs with a condition near 1 are compared at 1e-13 as they are, all others at 1e-13
// times their condition, and at 1e-13 in what does not depend on it: the columns that the factors stand for.
#include <array>

#include "linalg/column_by_column.hpp"

namespace orvanth::test {
namespace {

constexpr double kRounding = 1e-13;

struct Problem {
    Problem(int m, int n) : a(m, n, 3, 2), b(std::max(m, n), 1), x(n, 1), tau(RogueVector(std::min(m, n) + 1)) {}
    int Solve(double tolerance) {
        return OLS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor(), x.Data(), x.Descriptor(), tau.data(),
                   tolerance);
    }
    Matrix a, b, x;
    std::vector<double> tau;
};

Problem RandomProblem(int m, int n, std::mt19937_64& random) {
    Problem p(m, n);
    FillRandom(p.a, random);
    FillRandom(p.b, random);
    FillRandom(p.x, random);
    return p;
}

double Length(const Matrix& a, int j) {
    long double sum = 0;
    double largest = 0;
    for (int i = 0; i < a.Rows(); ++i) largest = std::max(largest, std::fabs(a(i, j)));
    if (largest == 0) return 0;
    for (int i = 0; i < a.Rows(); ++i) sum += static_cast<long double>(a(i, j) / largest) * (a(i, j) / largest);
    return largest * static_cast<double>(std::sqrt(sum));
}

// The largest difference in a column of R, relative to the length of the column that was given, and of the
// reflectors, whose elements are at most 1 in size.
double DifferenceOfFactors(const Matrix& a, const Matrix& reference, const Matrix& given, int reflected) {
    double largest = 0;
    for (int j = 0; j < a.Columns(); ++j) {
        const double length = Length(given, j);
        for (int i = 0; i < a.Rows(); ++i) {
            const double difference = std::fabs(a(i, j) - reference(i, j));
            const bool isReflector = i > j && j < reflected;
            largest = std::max(largest, isReflector || length == 0 ? difference : difference / length);
        }
    }
    return largest;
}

// The columns of Q R, relative to the given ones.
double BackwardError(const Problem& p, const Matrix& given) {
    Matrix product = UpperTriangle(p.a, p.a.Rows());
    Matrix factors = p.a;
    std::vector<double> tau = p.tau;
    if (QR_Qy(factors.Data(), factors.Descriptor(), 0, tau.data(), product.Data(), product.Descriptor()) != 0)
        return 1e300;
    double largest = 0;
    for (int j = 0; j < given.Columns(); ++j) {
        Matrix difference(given.Rows(), 1);
        FillBy(difference, [&](int i, int) { return product(i, j) - given(i, j); });
        largest = std::max(largest, Length(difference, 0) / Length(given, j));
    }
    return largest;
}

// Compares the solved problem and its reference; returns the largest ratio to what rounding allows.
void ExpectAgreement(const Problem& given, double tolerance, double condition) {
    Problem p = given, q = given;
    const ColumnByColumn reference(q.a, q.b, q.x, tolerance);
    ASSERT_EQ(p.Solve(tolerance), reference.info);
    ASSERT_EQ(reference.info, 0);
    const int n = p.a.Columns();
    EXPECT_LT(DifferenceOfFactors(p.a, q.a, given.a, n), kRounding * condition);
    for (std::size_t k = 0; k < reference.tau.size(); ++k)
        EXPECT_NEAR(p.tau[k], reference.tau[k], 2 * kRounding * condition);
    const double lengthOfB = Length(given.b, 0);
    for (int i = 0; i < p.b.Rows(); ++i) EXPECT_NEAR(p.b(i, 0), q.b(i, 0), kRounding * condition * lengthOfB);
    double largest = 0;
    for (int j = 0; j < n; ++j) largest = std::max(largest, std::fabs(q.x(j, 0)) * Length(given.a, j));
    for (int j = 0; j < n; ++j)
        EXPECT_LT(std::fabs(p.x(j, 0) - q.x(j, 0)) * Length(given.a, j), kRounding * condition * largest);
    EXPECT_LT(BackwardError(p, given.a), kRounding);
    EXPECT_TRUE(p.a.IsPaddingIntact());
    EXPECT_TRUE(IsRogue(p.tau.back()));
}

constexpr std::pair<int, int> kShapes[] = {{60, 49},  {49, 49},   {90, 64},   {100, 65}, {300, 97},
                                           {500, 20}, {20000, 7}, {6000, 31}, {5000, 50}};

TEST(OLSPanels, RandomDesignsAgreeWithOneColumnAtATime) {
    std::mt19937_64 random(kSeed);
    for (auto [m, n] : kShapes) {
        SCOPED_TRACE(testing::Message() << m << " x " << n);
        // A square random design has a condition of some times its order.
        ExpectAgreement(RandomProblem(m, n, random), 1e-9, m < 2 * n ? 1e3 : 1.0);
    }
}

TEST(OLSPanels, BadlyScaledDesignsAgreeWithOneColumnAtATime) {
    std::mt19937_64 random(kSeed + 1);
    std::uniform_int_distribution exponents(-900, 900);
    for (auto [m, n] : kShapes) {
        SCOPED_TRACE(testing::Message() << m << " x " << n);
        Problem p = RandomProblem(m, n, random);
        for (int j = 0; j < n; ++j) {
            const int exponent = exponents(random);
            for (int i = 0; i < m; ++i) p.a(i, j) = std::ldexp(p.a(i, j), exponent);
        }
        ExpectAgreement(p, 1e-9, m < 2 * n ? 1e3 : 1.0);
    }
}

TEST(OLSPanels, NearlyCollinearDesignsAgreeWithOneColumnAtATime) {
    std::mt19937_64 random(kSeed + 2);
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (double distance : {1e-2, 1e-4, 1e-6, 1e-8})
        for (auto [m, n] : kShapes) {
            SCOPED_TRACE(testing::Message() << m << " x " << n << " distance " << distance);
            Problem p = RandomProblem(m, n, random);
            // The last third of the columns each stands near one of the first third.
            for (int j = n - n / 3; j < n; ++j)
                for (int i = 0; i < m; ++i) p.a(i, j) = p.a(i, j - n / 2) + distance * uniform(random);
            ExpectAgreement(p, 1e-12, (m < 2 * n ? 1e3 : 1.0) * 10 / distance);
        }
}

// A polynomial in a few hundred points: every column is nearer to those before it.
TEST(OLSPanels, PowersOfARegressorAgreeWithOneColumnAtATime) {
    std::mt19937_64 random(kSeed + 3);
    for (int degree : {3, 6, 9}) {
        Problem p = RandomProblem(4000, degree + 1, random);
        FillBy(p.a, [&](int i, int j) { return std::pow(1900 + i / 40.0, j); });
        Problem q = p;
        const ColumnByColumn reference(q.a, q.b, q.x, -1);
        const Matrix given = p.a;
        ASSERT_EQ(p.Solve(-1), 0);
        EXPECT_LT(BackwardError(p, given), kRounding);
    }
}

// Exactly and nearly collinear columns, on either side of the tolerance and never near it, at every place of a
// panel and its halves. The tests of ten thousand designs stop at the same column.
TEST(OLSPanels, TheSameColumnStopsTenThousandDesigns) {
    std::mt19937_64 random(kSeed + 4);
    std::uniform_real_distribution<double> uniform(-1, 1), exponent(-12, 0);
    int compared = 0, stopped = 0;
    for (int trial = 0; compared < 10000 * Multiplier(); ++trial) {
        const int n = std::uniform_int_distribution(2, trial % 4 == 0 ? 110 : 60)(random);
        const int m = n + std::uniform_int_distribution(0, 20)(random);
        Problem p = RandomProblem(m, n, random);
        const int planted = std::uniform_int_distribution(0, 3)(random);
        for (int k = 0; k < planted; ++k) {
            const int j = std::uniform_int_distribution(1, n - 1)(random);
            const int near = std::uniform_int_distribution(0, j - 1)(random);
            const double distance = trial % 3 == 0 ? 0.0 : std::pow(10, exponent(random));
            const double scale = std::ldexp(1.0, std::uniform_int_distribution(-200, 200)(random));
            for (int i = 0; i < m; ++i) p.a(i, j) = scale * (p.a(i, near) + distance * uniform(random));
        }
        Problem q = p;
        const double tolerance = std::pow(10, exponent(random));
        const ColumnByColumn reference(q.a, q.b, q.x, tolerance);
        if (reference.narrowest < 1 + 1e-5) continue;  // within rounding of the threshold
        const Problem given = p;
        ASSERT_EQ(p.Solve(tolerance), reference.info) << "trial " << trial << " " << m << " x " << n;
        ++compared;
        if (reference.info == 0) continue;
        ++stopped;
        EXPECT_TRUE(SameBits(p.b.storage, given.b.storage));
        EXPECT_TRUE(SameBits(p.x.storage, given.x.storage));
        EXPECT_TRUE(IsRogue(p.tau[static_cast<std::size_t>(reference.info) - 1]));
        EXPECT_TRUE(p.a.IsPaddingIntact());
    }
    EXPECT_GT(stopped, compared / 4);
    EXPECT_LT(stopped, compared * 9 / 10);
}

TEST(OLSPanels, AStopLeavesTheColumnsBehindItWithAllReflectionsSoFar) {
    std::mt19937_64 random(kSeed + 5);
    for (int stop : {1, 2, 7, 8, 9, 15, 16, 17, 30, 31, 32, 33, 40, 63, 64, 79}) {
        Problem p = RandomProblem(200, 80, random);
        for (int i = 0; i < 200; ++i) p.a(i, stop) = 2 * p.a(i, stop - 1);
        const Matrix given = p.a;
        Problem q = p;
        const ColumnByColumn reference(q.a, q.b, q.x, 1e-9);
        ASSERT_EQ(reference.info, stop + 1);
        ASSERT_EQ(p.Solve(1e-9), stop + 1);
        EXPECT_LT(DifferenceOfFactors(p.a, q.a, given, stop), kRounding) << stop;
        for (int k = 0; k < stop; ++k)
            EXPECT_NEAR(p.tau[static_cast<std::size_t>(k)], reference.tau[static_cast<std::size_t>(k)], kRounding);
    }
}

TEST(OLSPanels, WideDesignsAreFactoredLikeOneColumnAtATime) {
    std::mt19937_64 random(kSeed + 6);
    for (auto [m, n] : {std::pair{40, 60}, {50, 51}, {70, 200}, {40, 3319}}) {
        Problem p = RandomProblem(m, n, random), q = p;
        const Matrix given = p.a;
        Rejected([&] {
            const ColumnByColumn reference(q.a, q.b, q.x, 1e-9);
            EXPECT_EQ(p.Solve(1e-9), -5);
            return 0;
        });
        EXPECT_LT(DifferenceOfFactors(p.a, q.a, given, m), 1e3 * kRounding) << m << " x " << n;
    }
}

// The panels live in what the norms leave of the 10000 elements.
TEST(OLSPanels, TheMostColumnsThatFitAreFactoredToo) {
    std::mt19937_64 random(kSeed + 7);
    const int n = 2499;
    Problem p = RandomProblem(n, n, random);
    for (int i = 0; i < n; ++i) p.a(i, 40) = p.a(i, 0) - p.a(i, 39);
    Problem q = p;
    const Matrix given = p.a;
    const ColumnByColumn reference(q.a, q.b, q.x, 1e-9);
    EXPECT_EQ(p.Solve(1e-9), 41);
    EXPECT_LT(DifferenceOfFactors(p.a, q.a, given, 40), kRounding);
}

}  // namespace
}  // namespace orvanth::test
