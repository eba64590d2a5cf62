#include <array>

#include "linalg/matrices.hpp"

namespace orvanth::test {
namespace {

TEST(LS, ResidualOfATallSystemIsOrthogonalToItsColumns) {
    std::mt19937_64 random(kSeed);
    for (int m : kSizes)
        for (int n : kSizes) {
            if (m < n || n == 0) continue;
            SCOPED_TRACE(testing::Message() << m << " x " << n << " seed " << kSeed);
            Matrix a(m, n, 4, 2), b(m, 3, 6, 1);
            FillRandom(a, random);
            FillRandom(b, random);
            const Matrix design = a, given = b;
            ASSERT_EQ(LS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor()), 0);
            Matrix x(n, 3), residual(m, 3);
            FillBy(x, [&](int i, int j) { return b(i, j); });
            const Matrix fitted = Product(design, x);
            FillBy(residual, [&](int i, int j) { return given(i, j) - fitted(i, j); });
            const Matrix gradient = Product(Transposed(design), residual);
            const double scale =
                LargestColumnSum(design) * std::max(LargestColumnSum(design) * LargestColumnSum(x), 1.0);
            EXPECT_LT(LargestColumnSum(gradient) / (m * scale * kEpsilon), kResidualBound);
            EXPECT_TRUE(a.IsPaddingIntact());
            EXPECT_TRUE(b.IsPaddingIntact());
        }
}

TEST(LS, WideSystemGetsTheSolutionOfSmallestNorm) {
    // x1 + x2 = 2 and nothing else: (1, 1).
    Matrix a(1, 2), b(2, 1);
    a(0, 0) = a(0, 1) = 1, b(0, 0) = 2, b(1, 0) = 99;
    ASSERT_EQ(LS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor()), 0);
    EXPECT_NEAR(b(0, 0), 1, 1e-15);
    EXPECT_NEAR(b(1, 0), 1, 1e-15);
}

TEST(LS, RowsOfTheRightHandSideAreNotRead) {
    Matrix a(2, 1), b(2, 1);
    a(0, 0) = 1, a(1, 0) = 1, b(0, 0) = 1, b(1, 0) = 3;
    b.descriptor.rows = -5;
    ASSERT_EQ(LS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor()), 0);
    EXPECT_NEAR(b.storage[0], 2, 1e-15);
}

TEST(LS, ExactZeroOnTheDiagonalOfTheFactorIsReportedByItsNumber) {
    Matrix a(4, 3), b(4, 1);
    FillBy(a, [](int i, int j) { return j == 1 ? 0.0 : 1.0 / (i + j + 1); });
    FillBy(b, [](int i, int) { return i + 1.0; });
    EXPECT_EQ(LS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor()), 2);
}

TEST(LS, RejectedArgumentsComeBackAsTheirNumber) {
    const auto info = [](MatrixDescriptor aDescriptor, MatrixDescriptor bDescriptor) {
        Matrix a = Identity(4), b = Identity(4);
        const std::vector<double> before = a.storage;
        const int result = Rejected([&] { return LS(a.Data(), &aDescriptor, b.Data(), &bDescriptor); }).info;
        EXPECT_TRUE(SameBits(a.storage, before) && SameBits(b.storage, before));
        return result;
    };
    const MatrixDescriptor a{0, 4, 4, 3}, b{0, 4, 4, 1};
    EXPECT_EQ(info({0, 4, -1, 3}, b), -2);
    EXPECT_EQ(info({0, 4, 4, -1}, b), -3);
    EXPECT_EQ(info(a, {0, 4, 4, -1}), -4);
    EXPECT_EQ(info({0, 3, 4, 3}, b), -6);
    EXPECT_EQ(info(a, {0, 3, 4, 1}), -8);
}

TEST(LS, NoRightHandSideOrAnEmptyMatrixReturnsZero) {
    for (auto [m, n, nrhs] : {std::array{4, 3, 0}, {0, 3, 1}, {4, 0, 1}, {0, 0, 0}}) {
        Matrix a(m, n), b(std::max(m, n), nrhs);
        FillBy(a, [](int i, int j) { return i + 2.0 * j; });
        FillBy(b, [](int i, int j) { return i + 2.0 * j; });
        EXPECT_EQ(LS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor()), 0);
        EXPECT_TRUE(a.IsPaddingIntact() && b.IsPaddingIntact());
    }
}

// The matrix of an order with something in each triangle, and its four systems.
Matrix BothTriangles(int n, std::mt19937_64& random) {
    Matrix a(n, n, 0, 2);
    FillRandom(a, random);
    for (int i = 0; i < n; ++i) a(i, i) += a(i, i) > 0 ? 2 : -2;
    return a;
}

TEST(SolveTriangularSystem, SolvesWithTheTriangleAndTheTransposeAskedFor) {
    std::mt19937_64 random(kSeed);
    for (int n : kSizes)
        for (int nrhs : {0, 1, 3, 50})
            for (bool upper : {false, true})
                for (bool transpose : {false, true}) {
                    SCOPED_TRACE(testing::Message() << n << " " << nrhs << " " << upper << transpose);
                    Matrix a = BothTriangles(n, random), b(n, nrhs, 0, 3);
                    FillRandom(b, random);
                    Matrix triangle(n, n);
                    FillBy(triangle, [&](int i, int j) { return (upper ? i <= j : i >= j) ? a(i, j) : 0.0; });
                    // The other triangle is never read.
                    for (int j = 0; j < n; ++j)
                        for (int i = 0; i < n; ++i)
                            if (upper ? i > j : i < j) a(i, j) = kRogue;
                    if (transpose) triangle = Transposed(triangle);
                    const Matrix givenA = a, givenB = b;
                    ASSERT_EQ(
                        SolveTriangularSystem(a.Data(), a.Descriptor(), upper, transpose, b.Data(), b.Descriptor()),
                        0);
                    const double scale = 1 + LargestColumnSum(triangle) * LargestColumnSum(b);
                    const Matrix product = Product(triangle, b);
                    for (int j = 0; j < nrhs; ++j)
                        for (int i = 0; i < n; ++i)
                            EXPECT_NEAR(product(i, j), givenB(i, j), kResidualBound * n * kEpsilon * scale);
                    EXPECT_TRUE(SameBits(a.storage, givenA.storage));
                    EXPECT_TRUE(b.IsPaddingIntact());
                }
}

TEST(SolveTriangularSystem, BothFlagsZeroSolvesWithTheLowerTriangleNotTransposed) {
    Matrix a(2, 2), b(2, 1);
    a(0, 0) = 2, a(1, 0) = 3, a(0, 1) = 1e300, a(1, 1) = 4, b(0, 0) = 2, b(1, 0) = 11;
    ASSERT_EQ(SolveTriangularSystem(a.Data(), a.Descriptor(), 0, 0, b.Data(), b.Descriptor()), 0);
    EXPECT_EQ(b(0, 0), 1);
    EXPECT_EQ(b(1, 0), 2);
}

TEST(SolveTriangularSystem, FlagsAreTestedAsWholeWords) {
    std::mt19937_64 random(kSeed);
    const Matrix a = BothTriangles(4, random);
    Matrix one(4, 1);
    FillRandom(one, random);
    Matrix highByte = one, negative = one;
    SolveTriangularSystem(a.storage.data(), a.Descriptor(), 1, 1, one.Data(), one.Descriptor());
    SolveTriangularSystem(a.storage.data(), a.Descriptor(), 0x100, 0x10000, highByte.Data(), highByte.Descriptor());
    SolveTriangularSystem(a.storage.data(), a.Descriptor(), -1, INT32_MIN, negative.Data(), negative.Descriptor());
    EXPECT_TRUE(SameBits(one.storage, highByte.storage));
    EXPECT_TRUE(SameBits(one.storage, negative.storage));
}

TEST(SolveTriangularSystem, OffsetsAndRowsAreNotRead) {
    std::mt19937_64 random(kSeed);
    Matrix a = BothTriangles(4, random), b(4, 1);
    FillRandom(b, random);
    Matrix other = b;
    const MatrixDescriptor aOdd{99999, a.descriptor.leadingDimension, -3, 4}, bOdd{-99999, 4, -3, 1};
    SolveTriangularSystem(a.Data(), a.Descriptor(), 1, 0, b.Data(), b.Descriptor());
    EXPECT_EQ(SolveTriangularSystem(a.Data(), &aOdd, 1, 0, other.Data(), &bOdd), 0);
    EXPECT_TRUE(SameBits(b.storage, other.storage));
}

TEST(SolveTriangularSystem, ExactZeroOnTheDiagonalIsReportedAndLeavesTheRightHandSide) {
    for (int upper : {0, 1})
        for (int zero : {0, 2, 4}) {
            std::mt19937_64 random(kSeed);
            Matrix a = BothTriangles(5, random), b(5, 2);
            a(zero, zero) = 0;
            FillRandom(b, random);
            const Matrix given = b;
            EXPECT_EQ(SolveTriangularSystem(a.Data(), a.Descriptor(), upper, 0, b.Data(), b.Descriptor()), zero + 1);
            EXPECT_TRUE(SameBits(b.storage, given.storage));
        }
}

TEST(SolveTriangularSystem, RejectedArgumentsComeBackAsTheirNumber) {
    const auto info = [](MatrixDescriptor aDescriptor, MatrixDescriptor bDescriptor) {
        Matrix a = Identity(4), b = Identity(4);
        const std::vector<double> before = b.storage;
        const int result = Rejected([&] {
                               return SolveTriangularSystem(a.Data(), &aDescriptor, 1, 0, b.Data(), &bDescriptor);
                           }).info;
        EXPECT_TRUE(SameBits(b.storage, before));
        return result;
    };
    const MatrixDescriptor good{0, 4, 4, 4};
    EXPECT_EQ(info({0, 4, 4, -1}, good), -4);
    EXPECT_EQ(info(good, {0, 4, 4, -1}), -5);
    EXPECT_EQ(info({0, 3, 4, 4}, good), -7);
    EXPECT_EQ(info(good, {0, 3, 4, 4}), -9);
}

// The definition, one row after the other.
double ResidualSum(const Matrix& x, const std::vector<double>& b, const std::vector<double>& y) {
    double total = 0;
    for (int i = 0; i < x.Rows(); ++i) {
        double s = 0;
        for (int j = 0; j < x.Columns(); ++j) s = s + b[static_cast<std::size_t>(j)] * x(i, j);
        const double d = y[static_cast<std::size_t>(i)] - s;
        total = total + d * d;
    }
    return total;
}

TEST(Xb, AddsInTheOrderOfRowsAndColumnsBitForBit) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (int m : {0, 1, 2, 3, 5, 10, 31, 32, 33, 50, 64, 65, 200})
        for (int n : kSizes) {
            Matrix x(m, n, 0, 3);
            FillRandom(x, random);
            std::vector<double> b(static_cast<std::size_t>(n)), y(static_cast<std::size_t>(m));
            for (double& element : b)
                element = std::ldexp(uniform(random), std::uniform_int_distribution(-30, 30)(random));
            for (double& element : y) element = uniform(random);
            EXPECT_EQ(Xb(x.Data(), x.Descriptor(), b.data(), y.data()), ResidualSum(x, b, y)) << m << " x " << n;
            EXPECT_TRUE(x.IsPaddingIntact());
        }
}

TEST(Xb, NoRowsGivesZeroAndReadsNothing) {
    for (int rows : {0, -1, INT32_MIN}) {
        const MatrixDescriptor descriptor{0, 1, rows, 3};
        const double result = Xb(nullptr, &descriptor, nullptr, nullptr);
        EXPECT_EQ(result, 0);
        EXPECT_FALSE(std::signbit(result));
    }
}

TEST(Xb, NoColumnsGivesTheSumOfSquaresOfY) {
    const MatrixDescriptor descriptor{0, 3, 3, 0};
    const std::array y{1.0, -2.0, 3.0};
    EXPECT_EQ(Xb(nullptr, &descriptor, nullptr, y.data()), 14);
}

TEST(Xb, OffsetIsNotUsed) {
    Matrix x = Identity(2);
    x.descriptor.offset = 100000;
    const std::array b{1.0, 2.0}, y{3.0, 5.0};
    EXPECT_EQ(Xb(x.storage.data(), x.Descriptor(), b.data(), y.data()), 4 + 9);
}

}  // namespace
}  // namespace orvanth::test
