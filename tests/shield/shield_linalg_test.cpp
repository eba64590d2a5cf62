// The matrix exports through the shield: the same numbers, and words for every INFO.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

using Matrix = std::vector<double>;

Matrix Filled(int rows, int columns, double seed) {
    Matrix m(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns));
    for (std::size_t i = 0; i < m.size(); ++i) m[i] = std::sin(seed + 1.7 * static_cast<double>(i));
    return m;
}

MatrixDescriptor Shape(int rows, int columns) { return {0, rows, rows, columns}; }

void ExpectTold(std::int32_t status, const std::string& words) {
    EXPECT_EQ(LastStatus(), status);
    EXPECT_NE(std::string(LastErrorText()).find(words), std::string::npos) << LastErrorText();
}

TEST(ShieldLinalg, SafeFormsEqualTheExports) {
    const MatrixDescriptor tall = Shape(6, 3), column = Shape(6, 1), small = Shape(3, 3), full = Shape(6, 6),
                           x3 = Shape(3, 1);
    Matrix a = Filled(6, 3, 1), b = a, y = Filled(6, 1, 2), z = y, tau(3), tau2(3), x(3), x2(3);
    std::vector<std::int32_t> p(3), p2(3);
    const auto same = [&] {
        EXPECT_EQ(a, b);
        EXPECT_EQ(tau, tau2);
        EXPECT_EQ(y, z);
        EXPECT_EQ(x, x2);
    };
    EXPECT_EQ(SafeQR(a.data(), &tall, tau.data()), QR(b.data(), &tall, tau2.data()));
    same();
    EXPECT_EQ(SafeQR_Qy(a.data(), &tall, 1, tau.data(), y.data(), &column),
              QR_Qy(b.data(), &tall, 1, tau2.data(), z.data(), &column));
    same();
    EXPECT_EQ(SafeSolveTriangularSystem(a.data(), &tall, 1, 0, y.data(), &column),
              SolveTriangularSystem(b.data(), &tall, 1, 0, z.data(), &column));
    same();
    EXPECT_EQ(SafeQR_Q(a.data(), &tall, tau.data()), QR_Q(b.data(), &tall, tau2.data()));
    same();
    EXPECT_EQ(SafeQRP(a.data(), &tall, tau.data(), p.data()), QRP(b.data(), &tall, tau2.data(), p2.data()));
    same();
    EXPECT_EQ(p, p2);
    EXPECT_EQ(SafeLS(a.data(), &tall, y.data(), &column), LS(b.data(), &tall, z.data(), &column));
    same();
    a = b = Filled(6, 3, 4);
    EXPECT_EQ(SafeXb(a.data(), &tall, x.data(), y.data()), Xb(b.data(), &tall, x2.data(), z.data()));
    EXPECT_EQ(SafeOLS(a.data(), &tall, y.data(), &column, x.data(), &x3, tau.data(), 1e-9),
              OLS(b.data(), &tall, z.data(), &column, x2.data(), &x3, tau2.data(), 1e-9));
    same();
    Matrix u(36), u2(36), v(9), v2(9), s(3), s2(3);
    a = b = Filled(6, 3, 5);
    EXPECT_EQ(SafeFullSVD(a.data(), &tall, s.data(), u.data(), &full, v.data(), &small),
              FullSVD(b.data(), &tall, s2.data(), u2.data(), &full, v2.data(), &small));
    EXPECT_EQ(u, u2);
    EXPECT_EQ(v, v2);
    EXPECT_EQ(s, s2);
    a = b = Filled(6, 3, 5);
    EXPECT_EQ(SafeThinSVD(a.data(), &tall, s.data(), u.data(), &tall, v.data(), &small),
              ThinSVD(b.data(), &tall, s2.data(), u2.data(), &tall, v2.data(), &small));
    EXPECT_EQ(u, u2);
    a = b = Filled(3, 3, 6);
    std::int32_t m = 0, m2 = 0;
    EXPECT_EQ(SafeEigenSymmetric(a.data(), &small, s.data(), &m, v.data(), &small),
              EigenSymmetric(b.data(), &small, s2.data(), &m2, v2.data(), &small));
    EXPECT_EQ(s, s2);
    EXPECT_EQ(v, v2);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
}

TEST(ShieldLinalg, AnInfoIsToldInWords) {
    Matrix a = {1, 2, 2, 4}, b = {1, 2}, x(2), tau(2);
    const MatrixDescriptor square = Shape(2, 2), column = Shape(2, 1), bad{0, 1, 2, 2};
    EXPECT_EQ(SafeOLS(a.data(), &square, b.data(), &column, x.data(), &column, tau.data(), 1e-9), 2);
    ExpectTold(ORVANTH_STATUS_NO_SOLUTION, "column 2 is collinear");
    EXPECT_EQ(SafeQR(a.data(), &bad, tau.data()), -4);
    ExpectTold(ORVANTH_STATUS_ARGUMENT, "dgeqrf rejected its argument 4, LDA");
    Matrix singular = {1, 0, 3, 0};
    EXPECT_EQ(SafeSolveTriangularSystem(singular.data(), &square, 1, 0, b.data(), &column), 2);
    ExpectTold(ORVANTH_STATUS_NO_SOLUTION, "diagonal element 2 is exactly zero");
    Matrix large(10001), reflectors(1);
    const MatrixDescriptor wide = Shape(1, 10001);
    EXPECT_EQ(SafeQR(large.data(), &wide, reflectors.data()), -7);
    ExpectTold(ORVANTH_STATUS_ARGUMENT, "workspace of 10000 doubles is too small");
}

TEST(ShieldLinalg, PointersAreNeededOnlyWhereThereAreElements) {
    Matrix a(4), tau(2), w(2);
    std::int32_t m = 0;
    const MatrixDescriptor square = Shape(2, 2), empty{0, 1, 0, 0};
    EXPECT_EQ(SafeQR(nullptr, &square, tau.data()), ORVANTH_REFUSED - 1);
    ExpectTold(ORVANTH_STATUS_ARGUMENT, "argument a is null");
    EXPECT_EQ(SafeQR(a.data(), nullptr, tau.data()), ORVANTH_REFUSED - 2);
    EXPECT_EQ(SafeQR(a.data(), &square, nullptr), ORVANTH_REFUSED - 3);
    EXPECT_EQ(SafeQR(nullptr, &empty, nullptr), 0);
    EXPECT_EQ(SafeEigenSymmetric(a.data(), &square, w.data(), &m, nullptr, &square), 0) << "no vectors are wanted";
    EXPECT_TRUE(std::isnan(SafeXb(nullptr, &square, w.data(), w.data())));
    ExpectTold(ORVANTH_STATUS_ARGUMENT, "argument x is null");
}

TEST(ShieldLinalg, WhatNobodyElseTestsIsTestedHere) {
    Matrix a = {1, 2, 3, 5}, b = {1, 2}, x = {7, 7}, tau(2);
    const MatrixDescriptor square = Shape(2, 2), column = Shape(2, 1), flat{0, 1, 2, 2};
    EXPECT_TRUE(std::isnan(SafeXb(a.data(), &flat, b.data(), b.data())));
    ExpectTold(ORVANTH_STATUS_ARGUMENT, "leadingDimension below its rows");
    EXPECT_EQ(SafeOLS(a.data(), &square, b.data(), &column, x.data(), &flat, tau.data(), 1e-9), ORVANTH_REFUSED - 6);
    ExpectTold(ORVANTH_STATUS_ARGUMENT, "leadingDimension below the columns of a");
    EXPECT_EQ(a, (Matrix{1, 2, 3, 5})) << "nothing was touched";
    const MatrixDescriptor one{0, 1, 2, 1};
    EXPECT_EQ(SafeXb(a.data(), &one, b.data(), b.data()), Xb(a.data(), &one, b.data(), b.data()))
        << "one column has no leading dimension";
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK);
}

// Without a solution to write, nothing is asked of the leading dimension of x.
TEST(ShieldLinalg, OlsWithoutElementsLooksAtNoLeadingDimension) {
    const MatrixDescriptor square = Shape(2, 2), column = Shape(2, 1), flat{0, 1, 2, 2};
    const struct {
        MatrixDescriptor a, b;
    } cases[] = {{{0, 2, 0, 2}, column}, {{0, 2, 2, 0}, column}, {square, {0, 2, 2, 0}}};
    for (const auto& [aShape, bShape] : cases) {
        Matrix a = {1, 2, 3, 5}, b = {1, 2}, x = {7, 7, 7, 7}, tau(2), plainA = a, plainB = b, plainX = x,
               plainTau = tau;
        const std::int32_t status = SafeOLS(a.data(), &aShape, b.data(), &bShape, x.data(), &flat, tau.data(), 1e-9);
        EXPECT_EQ(status,
                  OLS(plainA.data(), &aShape, plainB.data(), &bShape, plainX.data(), &flat, plainTau.data(), 1e-9));
        EXPECT_EQ(std::string(LastErrorText()).find("below the columns of a"), std::string::npos) << LastErrorText();
        EXPECT_EQ(a, plainA);
        EXPECT_EQ(x, plainX);
    }
}

}  // namespace
