#include <array>

#include "linalg/matrices.hpp"
#include "linalg/ols_model.hpp"

namespace orvanth::test {
namespace {

struct Problem {
    Problem(int m, int n, int nrhs, int offset = 0, int padding = 0)
        : a(m, n, offset, padding),
          b(std::max(m, n), nrhs, offset, padding),
          x(n, nrhs, offset, padding),
          tau(RogueVector(std::max(0, std::min(m, n)) + 2)) {}

    int Solve(double tolerance) {
        return OLS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor(), x.Data(), x.Descriptor(), tau.data(),
                   tolerance);
    }

    Matrix a, b, x;
    std::vector<double> tau;
};

Problem RandomProblem(int m, int n, int nrhs, std::mt19937_64& random, int offset = 0, int padding = 0) {
    Problem p(m, n, nrhs, offset, padding);
    FillRandom(p.a, random);
    FillRandom(p.b, random);
    FillRandom(p.x, random);
    return p;
}

void ExpectClose(double computed, long double expected, double scale, const char* what) {
    EXPECT_NEAR(computed, static_cast<double>(expected), scale * kEpsilon) << what;
}

// Condition-free bounds: the designs below are random, so a generous multiple of m is enough.
void ExpectFactorsLikeTheModel(const Problem& p, const OlsModel& model) {
    for (int j = 0; j < model.n; ++j)
        for (int i = 0; i < model.m; ++i)
            ExpectClose(p.a(i, j), model.a[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)],
                        1e4 * (1 + model.m), "a");
    for (std::size_t k = 0; k < model.tau.size(); ++k)
        ExpectClose(p.tau[k], model.tau[k], 1e4 * (1 + model.m), "tau");
}

TEST(OLS, AgreesWithAPlainLoopModelOnRandomDesigns) {
    std::mt19937_64 random(kSeed);
    std::uniform_int_distribution<int> columns(1, 12), extra(0, 20), padding(0, 3);
    int solved = 0;
    for (int trial = 0; trial < 300 * Multiplier(); ++trial) {
        const int n = columns(random), m = n + 3 + extra(random);
        Problem p = RandomProblem(m, n, 1, random, padding(random), padding(random));
        const Problem given = p;
        SCOPED_TRACE(testing::Message() << "trial " << trial << " " << m << " x " << n << " seed " << kSeed);
        const OlsModel model(given.a, given.b, 1e-9);
        ASSERT_EQ(p.Solve(1e-9), model.info);
        ASSERT_EQ(model.info, 0);
        ExpectFactorsLikeTheModel(p, model);
        for (int i = 0; i < m; ++i) ExpectClose(p.b(i, 0), model.b[0][static_cast<std::size_t>(i)], 1e4 * m, "b");
        const auto x = SolvedStorage(model, model.b[0], std::vector<long double>(static_cast<std::size_t>(n)), n, 1);
        double largest = 0, narrowestPivot = 1e300;
        for (int i = 0; i < n; ++i) {
            largest = std::max(largest, std::fabs(static_cast<double>(x[static_cast<std::size_t>(i)])));
            narrowestPivot = std::min(narrowestPivot, std::fabs(p.a(i, i)));
        }
        for (int i = 0; i < n; ++i)
            ExpectClose(p.x(i, 0), x[static_cast<std::size_t>(i)], 1e4 * m * (1 + largest) / narrowestPivot, "x");
        EXPECT_TRUE(p.a.IsPaddingIntact() && p.b.IsPaddingIntact() && p.x.IsPaddingIntact());
        EXPECT_TRUE(IsRogue(p.tau[static_cast<std::size_t>(n)]));
        ++solved;
    }
    EXPECT_EQ(solved, 300 * Multiplier());
}

TEST(OLS, StopsWhereTheModelStopsAtPlantedCollinearColumns) {
    std::mt19937_64 random(kSeed + 7);
    std::uniform_int_distribution<int> columns(2, 15), extra(0, 20);
    std::uniform_real_distribution<double> uniform(-2, 2);
    for (int trial = 0; trial < 300 * Multiplier(); ++trial) {
        const int n = columns(random), m = n + extra(random);
        Problem p = RandomProblem(m, n, 2, random, 3, 2);
        const int planted = std::uniform_int_distribution<int>(1, n - 1)(random);
        // A combination of all the earlier columns, off by a ten-thousandth of the tolerance at most.
        std::vector<double> weights(static_cast<std::size_t>(planted));
        for (double& weight : weights) weight = uniform(random);
        for (int i = 0; i < m; ++i) {
            double sum = 0;
            for (int k = 0; k < planted; ++k) sum += weights[static_cast<std::size_t>(k)] * p.a(i, k);
            p.a(i, planted) = sum * (trial % 2 == 0 ? 1 : 1 + 1e-11 * uniform(random));
        }
        const Problem given = p;
        SCOPED_TRACE(testing::Message() << "trial " << trial << " " << m << " x " << n << " planted " << planted + 1);
        const OlsModel model(given.a, given.b, 1e-7);
        if (model.narrowest < 10) continue;  // too near to call
        ASSERT_EQ(p.Solve(1e-7), model.info);
        ASSERT_GT(model.info, 0);
        EXPECT_LE(model.info, planted + 1);
        ExpectFactorsLikeTheModel(p, model);
        EXPECT_TRUE(SameBits(p.b.storage, given.b.storage));
        EXPECT_TRUE(SameBits(p.x.storage, given.x.storage));
        EXPECT_TRUE(IsRogue(p.tau[model.tau.size()]));
        EXPECT_TRUE(p.a.IsPaddingIntact());
    }
}

TEST(OLS, SecondOfTwoIdenticalColumnsIsReported) {
    std::mt19937_64 random(kSeed);
    Problem p = RandomProblem(9, 6, 1, random);
    for (int i = 0; i < 9; ++i) p.a(i, 4) = p.a(i, 1);
    const Problem given = p;
    EXPECT_EQ(p.Solve(1e-10), 5);
    EXPECT_TRUE(SameBits(p.b.storage, given.b.storage));
    EXPECT_TRUE(SameBits(p.x.storage, given.x.storage));
}

TEST(OLS, ToleranceZeroStopsOnlyAtAPartialNormOfExactlyZero) {
    std::mt19937_64 random(kSeed);
    Problem p = RandomProblem(6, 3, 1, random);
    for (int i = 0; i < 6; ++i) p.a(i, 1) *= 1e-200;
    EXPECT_EQ(p.Solve(0), 0);

    Problem zero = RandomProblem(6, 3, 1, random);
    for (int i = 0; i < 6; ++i) zero.a(i, 1) = 0;
    EXPECT_EQ(zero.Solve(0), 2);

    // The second column is a multiple of the first, and its rest is exactly 0 as well.
    Problem aligned(3, 2, 1);
    FillBy(aligned.a, [](int i, int j) { return i == 0 ? 1.0 + j : 0.0; });
    FillBy(aligned.b, [](int i, int) { return i + 1.0; });
    EXPECT_EQ(aligned.Solve(0), 2);
}

TEST(OLS, NegativeToleranceNeverStops) {
    std::mt19937_64 random(kSeed);
    Problem p = RandomProblem(6, 3, 1, random);
    for (int i = 0; i < 6; ++i) p.a(i, 1) = 0, p.a(i, 2) = p.a(i, 0);
    EXPECT_EQ(p.Solve(-1e-300), 0);
    Problem huge = RandomProblem(6, 3, 1, random);
    for (int i = 0; i < 6; ++i) huge.a(i, 1) = huge.a(i, 0);
    EXPECT_EQ(huge.Solve(-std::numeric_limits<double>::infinity()), 0);
}

TEST(OLS, TheTestIsGreaterThanOrEqual) {
    // A single column of norm 5: the threshold 1 x 5 equals the partial norm.
    for (auto [tolerance, expected] : {std::pair{1.0, 1}, {std::nextafter(1.0, 0.0), 0}, {2.0, 1}}) {
        Problem p(2, 1, 1);
        p.a(0, 0) = 3, p.a(1, 0) = 4, p.b(0, 0) = 1, p.b(1, 0) = 1;
        EXPECT_EQ(p.Solve(tolerance), expected) << tolerance;
    }
}

TEST(OLS, ZeroColumnIsCaughtAgainstALengthOfOne) {
    Problem p(3, 1, 1);
    FillBy(p.a, [](int, int) { return 0.0; });
    FillBy(p.b, [](int, int) { return 1.0; });
    Problem negative = p;
    EXPECT_EQ(p.Solve(0), 1);
    EXPECT_EQ(negative.Solve(-1e-9), 0);
}

TEST(OLS, ToleranceThatIsNoNumberCountsAsPassed) {
    std::mt19937_64 random(kSeed);
    Problem p = RandomProblem(6, 3, 1, random);
    for (int i = 0; i < 6; ++i) p.a(i, 2) = p.a(i, 0);
    EXPECT_EQ(p.Solve(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(OLS, SeveralRightHandSidesGetTheShiftedCopy) {
    std::mt19937_64 random(kSeed);
    for (int nrhs : {2, 3, 5})
        for (int padding : {0, 2, 9}) {
            const int n = 4, m = n + nrhs;
            Problem p = RandomProblem(m, n, nrhs, random);
            p.x = Matrix(n, nrhs, 0, padding);
            std::uniform_real_distribution<double> uniform(-1, 1);
            for (double& element : p.x.storage) element = uniform(random);
            const Problem given = p;
            const OlsModel model(given.a, given.b, 1e-9);
            ASSERT_EQ(p.Solve(1e-9), 0);
            for (int k = 0; k < nrhs; ++k)
                for (int i = 0; i < m; ++i)
                    ExpectClose(p.b(i, k), model.b[static_cast<std::size_t>(k)][static_cast<std::size_t>(i)], 1e4,
                                "b");

            std::vector<long double> storage(given.x.storage.begin(), given.x.storage.end());
            storage = SolvedStorage(model, model.b[0], storage, given.x.descriptor.leadingDimension, nrhs);
            for (std::size_t k = 0; k < storage.size(); ++k)
                ExpectClose(p.x.storage[k], storage[k], 1e6 * (1 + std::fabs(static_cast<double>(storage[k]))), "x");
        }
}

TEST(OLS, FewerRowsThanColumnsReturnsMinusFiveAfterTheLaterSteps) {
    std::mt19937_64 random(kSeed);
    const int m = 3, n = 5;
    Problem p(m, n, 1);
    p.a = Matrix(m, n, 0, n - m);  // storage for the square that the triangular solve reads
    FillRandom(p.a, random);
    for (int j = 0; j < n; ++j)
        for (int i = m; i < n; ++i) p.a.storage[static_cast<std::size_t>(i + j * n)] = i == j ? 2.0 : 0.5;
    FillRandom(p.b, random);
    const Problem given = p;
    const Rejection r = Rejected([&] { return p.Solve(1e-9); });
    EXPECT_EQ(r.info, -5);
    EXPECT_NE(r.report.find("DORMQR"), std::string::npos) << r.report;

    // m columns are factored, b is not multiplied, and x is b solved with what stands in the upper triangle.
    const OlsModel model(given.a, given.b, 1e-9);
    ExpectFactorsLikeTheModel(p, model);
    EXPECT_TRUE(SameBits(p.b.storage, given.b.storage));
    std::array<double, 5> x{};
    for (int i = n - 1; i >= 0; --i) {
        double sum = given.b(i, 0);
        for (int j = i + 1; j < n; ++j)
            sum -= p.a.storage[static_cast<std::size_t>(i + j * n)] * x[static_cast<std::size_t>(j)];
        x[static_cast<std::size_t>(i)] = sum / p.a.storage[static_cast<std::size_t>(i + i * n)];
        EXPECT_NEAR(p.x(i, 0), x[static_cast<std::size_t>(i)],
                    1e-11 * (1 + std::fabs(x[static_cast<std::size_t>(i)])));
    }
}

TEST(OLS, FewerRowsThanColumnsInTightStorageStillReturnsMinusFive) {
    // The triangular solve rejects the leading dimension by itself, so x is the copy of b.
    std::mt19937_64 random(kSeed);
    Problem p = RandomProblem(3, 5, 1, random);
    const Problem given = p;
    const Rejection r = Rejected([&] { return p.Solve(1e-9); });
    EXPECT_EQ(r.info, -5);
    EXPECT_NE(r.report.find("DTRSM"), std::string::npos) << r.report;
    for (int i = 0; i < 5; ++i) EXPECT_EQ(p.x(i, 0), given.b(i, 0));
    EXPECT_TRUE(p.a.IsPaddingIntact() && p.x.IsPaddingIntact());
}

TEST(OLS, NoRightHandSideOrAnEmptyMatrixReturnsZeroAndFactorsNothing) {
    std::mt19937_64 random(kSeed);
    for (auto [m, n, nrhs] : {std::array{5, 3, 0}, {5, 0, 1}, {0, 3, 1}, {0, 0, 0}}) {
        Problem p = RandomProblem(m, n, nrhs, random);
        const Problem given = p;
        EXPECT_EQ(p.Solve(0.5), 0);
        EXPECT_TRUE(SameBits(p.a.storage, given.a.storage));
        EXPECT_TRUE(SameBits(p.b.storage, given.b.storage));
        EXPECT_TRUE(SameBits(p.x.storage, given.x.storage));
        EXPECT_TRUE(SameBits(p.tau, given.tau));
    }
}

TEST(OLS, RejectedArgumentsAreReportedUnderDgelsy) {
    const auto expect = [](int info, MatrixDescriptor a, MatrixDescriptor b) {
        std::mt19937_64 random(kSeed);
        Problem p = RandomProblem(4, 3, 1, random);
        const Problem given = p;
        const Rejection r = Rejected(
            [&] { return OLS(p.a.Data(), &a, p.b.Data(), &b, p.x.Data(), p.x.Descriptor(), p.tau.data(), 1e-9); });
        EXPECT_EQ(r.info, info);
        EXPECT_NE(r.report.find("DGELSY"), std::string::npos) << r.report;
        EXPECT_NE(r.report.find(std::to_string(-info)), std::string::npos) << r.report;
        EXPECT_TRUE(SameBits(p.a.storage, given.a.storage));
        EXPECT_TRUE(SameBits(p.b.storage, given.b.storage));
        EXPECT_TRUE(SameBits(p.x.storage, given.x.storage));
        EXPECT_TRUE(SameBits(p.tau, given.tau));
    };
    const MatrixDescriptor a{0, 4, 4, 3}, b{0, 4, 4, 1};
    expect(-1, {0, 4, -1, 3}, b);
    expect(-2, {0, 4, 4, -1}, b);
    expect(-3, a, {0, 4, 4, -1});
    expect(-5, {0, 3, 4, 3}, b);
    expect(-7, a, {0, 3, 4, 1});
    expect(-7, {0, 4, 2, 4}, {0, 3, 4, 1});     // the rows of b must hold the larger of both dimensions
    expect(-1, {0, 0, -1, -1}, {0, 0, 0, -1});  // the first of several
}

TEST(OLS, SecondCallOnTheSameStorageSolvesAnotherProblem) {
    std::mt19937_64 random(kSeed);
    Problem p = RandomProblem(8, 3, 1, random);
    ASSERT_EQ(p.Solve(1e-9), 0);
    const std::vector<double> first = p.x.storage;
    ASSERT_EQ(p.Solve(1e-9), 0);
    EXPECT_FALSE(SameBits(first, p.x.storage));
}

TEST(OLS, HasTheFactorsOfQRUpToRounding) {
    std::mt19937_64 random(kSeed);
    Problem p = RandomProblem(50, 10, 1, random);
    Matrix a = p.a;
    std::vector<double> tau(10);
    ASSERT_EQ(QR(a.Data(), a.Descriptor(), tau.data()), 0);
    ASSERT_EQ(p.Solve(1e-9), 0);
    EXPECT_LT(ScaledResidual(p.a, a, a), kResidualBound);
    for (std::size_t k = 0; k < 10; ++k) EXPECT_NEAR(p.tau[k], tau[k], 1e-13);
}

}  // namespace
}  // namespace orvanth::test
