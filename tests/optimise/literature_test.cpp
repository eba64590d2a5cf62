// Larger problems of the literature with known minima, and properties on random problems.
// Sources: J. J. More, B. S. Garbow, K. E. Hillstrom, "Testing unconstrained optimization software", ACM Trans.
// Math. Software 7 (1981) 17-41 (MGH); W. Hock, K. Schittkowski, "Test Examples for Nonlinear Programming Codes",
// Springer 1981 (HS); A. J. Dobson, "An Introduction to Generalized Linear Models" (beetle mortality).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "optimise/problems.hpp"

namespace {

using namespace orvanth::test;

constexpr std::uint32_t kSeed = 20240607;

Problem Tight(Problem problem) {
    problem.factr = 10;
    problem.pgtol = 1e-9;
    return problem;
}

// Where f is far from zero its last bits hide the gradient long before 1e-9.
Problem Moderate(Problem problem) {
    problem.factr = 1e3;
    problem.pgtol = 1e-6;
    return problem;
}

double ExtendedRosenbrock(const std::vector<double>& x, std::vector<double>& g) {
    double f = 0;
    for (std::size_t i = 0; i + 1 < x.size(); i += 2) {
        const double a = x[i + 1] - x[i] * x[i], b = 1 - x[i];
        f += 100 * a * a + b * b;
        g[i] = -400 * a * x[i] - 2 * b;
        g[i + 1] = 200 * a;
    }
    return f;
}

// Colville's function of four variables: HS 38, MGH 14 without bounds.
double Wood(const std::vector<double>& x, std::vector<double>& g) {
    const double a = x[1] - x[0] * x[0], b = 1 - x[0], c = x[3] - x[2] * x[2], d = 1 - x[2];
    const double e = x[1] - 1, h = x[3] - 1;
    g[0] = -400 * a * x[0] - 2 * b;
    g[1] = 200 * a + 20.2 * e + 19.8 * h;
    g[2] = -360 * c * x[2] - 2 * d;
    g[3] = 180 * c + 20.2 * h + 19.8 * e;
    return 100 * a * a + b * b + 90 * c * c + d * d + 10.1 * (e * e + h * h) + 19.8 * e * h;
}

TEST(Literature, ExtendedRosenbrockOfAThousandVariablesReachesZero) {
    std::vector<double> start(1000);
    for (std::size_t i = 0; i < start.size(); ++i) start[i] = i % 2 == 0 ? -1.2 : 1;
    Minimisation run(Tight(Unbounded(start)));
    EXPECT_EQ(run.Drive(ExtendedRosenbrock), 3);
    EXPECT_LT(run.f, 1e-14);
    for (const double x : run.x) EXPECT_NEAR(x, 1, 1e-7);
    EXPECT_LT(run.evaluations, 80);
}

TEST(Literature, RosenbrockAboveItsBoundStopsAtThePublishedPoint) {
    // HS 1 and HS 2: x2 >= -1.5 does not matter, x2 >= 1.5 does.
    Problem free = Tight(Boxed({-2, 1}, -1.5, 0));
    free.lower[0] = kNone;
    free.kind = {0, 1};
    Minimisation first(free);
    EXPECT_EQ(first.Drive(ExtendedRosenbrock), 3);
    EXPECT_NEAR(first.f, 0, 1e-14);

    // x1 is a root of 400 x^3 - 598 x - 2: the largest is the minimum, the smallest a local one.
    const double a = std::sqrt(598.0 / 1200), third = std::acos(1 / (400 * a * a * a)) / 3;
    struct Valley {
        double start, root, f;
    };
    for (const Valley& valley : {Valley{1.5, 2 * a * std::cos(third), 0.0504261879},
                                 Valley{-2, 2 * a * std::cos(third + 2 * std::numbers::pi / 3), 4.9412293}}) {
        Problem bounded = free;
        bounded.start[0] = valley.start;
        bounded.lower[1] = 1.5;
        Minimisation run(bounded);
        EXPECT_EQ(run.Drive(ExtendedRosenbrock), 3);
        EXPECT_EQ(run.x[1], 1.5);
        EXPECT_NEAR(run.x[0], valley.root, 1e-7);
        EXPECT_NEAR(run.f, valley.f, 1e-7);
    }
}

TEST(Literature, BealeReachesItsMinimum) {
    Minimisation run(Tight(Unbounded({1, 1})));
    EXPECT_EQ(run.Drive(NamedObjective("beale")), 3);
    EXPECT_NEAR(run.x[0], 3, 1e-7);
    EXPECT_NEAR(run.x[1], 0.5, 1e-7);
    EXPECT_LT(run.f, 1e-15);
}

TEST(Literature, ExtendedPowellSingularReachesZero) {
    // The Hessian is singular at the solution, so x comes slowly and f all the same.
    std::vector<double> start;
    for (int i = 0; i < 250; ++i) start.insert(start.end(), {3, -1, 0, 1});
    Minimisation run(Tight(Unbounded(start)));
    EXPECT_EQ(run.Drive(NamedObjective("powell")), 3);
    EXPECT_LT(run.f, 1e-9);
    for (const double x : run.x) EXPECT_NEAR(x, 0, 0.02);
}

TEST(Literature, WoodReachesItsMinimumInsideTheBox) {
    Minimisation run(Tight(Boxed({-3, -1, -3, -1}, -10, 10)));
    EXPECT_EQ(run.Drive(Wood), 3);
    EXPECT_LT(run.f, 1e-14);
    for (const double x : run.x) EXPECT_NEAR(x, 1, 1e-6);
}

TEST(Literature, BoundedMinimaOfTheCollection) {
    {  // HS 4: (x1 + 1)^3 / 3 + x2 at (1, 0)
        Problem problem = Tight(Boxed({1.125, 0.125}, 0, 0));
        problem.lower = {1, 0};
        problem.kind = {1, 1};
        Minimisation run(problem);
        EXPECT_EQ(run.Drive([](const std::vector<double>& x, std::vector<double>& g) {
            g = {(x[0] + 1) * (x[0] + 1), 1};
            return std::pow(x[0] + 1, 3) / 3 + x[1];
        }),
                  3);
        EXPECT_EQ(run.x, (std::vector<double>{1, 0}));
        EXPECT_NEAR(run.f, 8.0 / 3, 1e-14);
    }
    {  // HS 5
        Problem problem = Tight(Boxed({0, 0}, 0, 0));
        problem.lower = {-1.5, -3};
        problem.upper = {4, 3};
        Minimisation run(problem);
        EXPECT_EQ(run.Drive([](const std::vector<double>& x, std::vector<double>& g) {
            const double d = x[0] - x[1], c = std::cos(x[0] + x[1]);
            g = {c + 2 * d - 1.5, c - 2 * d + 2.5};
            return std::sin(x[0] + x[1]) + d * d - 1.5 * x[0] + 2.5 * x[1] + 1;
        }),
                  3);
        EXPECT_NEAR(run.f, -std::sqrt(3.0) / 2 - std::numbers::pi / 3, 1e-13);
    }
    {  // HS 45: 2 - x1 x2 x3 x4 x5 / 120 with 0 <= xi <= i
        Problem problem = Tight(Boxed({2, 2, 2, 2, 2}, 0, 0));
        problem.upper = {1, 2, 3, 4, 5};
        Minimisation run(problem);
        EXPECT_EQ(run.Drive([](const std::vector<double>& x, std::vector<double>& g) {
            double product = 1;
            for (const double value : x) product *= value;
            for (std::size_t i = 0; i < 5; ++i) {
                g[i] = -1.0 / 120;
                for (std::size_t j = 0; j < 5; ++j)
                    if (j != i) g[i] *= x[j];
            }
            return 2 - product / 120;
        }),
                  3);
        EXPECT_EQ(run.x, problem.upper);
        EXPECT_EQ(run.f, 1);
    }
    {  // HS 110: sum ln^2(xi - 2) + ln^2(10 - xi) - (prod xi)^0.2
        Minimisation run(Moderate(Boxed(std::vector<double>(10, 9.0), 2.001, 9.999)));
        EXPECT_EQ(run.Drive([](const std::vector<double>& x, std::vector<double>& g) {
            double f = 0, logs = 0;
            for (const double value : x) logs += std::log(value);
            const double root = std::exp(0.2 * logs);
            for (std::size_t i = 0; i < x.size(); ++i) {
                const double a = std::log(x[i] - 2), b = std::log(10 - x[i]);
                f += a * a + b * b;
                g[i] = 2 * a / (x[i] - 2) - 2 * b / (10 - x[i]) - 0.2 * root / x[i];
            }
            return f - root;
        }),
                  3);
        EXPECT_NEAR(run.f, -45.77846971, 1e-8);
        for (const double x : run.x) EXPECT_NEAR(x, 9.350265833, 1e-5);
    }
}

TEST(Literature, LogisticRegressionOfBeetleMortalityGivesThePublishedEstimates) {
    std::ifstream file(std::string(ORVANTH_TEST_DATA) + "/tour/beetle_mortality.csv");
    std::string line;
    std::getline(file, line);
    std::vector<double> dose, count, killed;
    for (double d, n, k; file >> d && file.ignore() && file >> n && file.ignore() && file >> k;) {
        dose.push_back(d);
        count.push_back(n);
        killed.push_back(k);
    }
    ASSERT_EQ(dose.size(), 8u);
    // The slope is bounded from below by 0, the intercept, at the mean dose, is free.
    Problem problem = Moderate(Boxed({0, 0}, 0, 0));
    problem.kind = {0, 1};
    Minimisation run(problem);
    EXPECT_EQ(run.Drive([&](const std::vector<double>& b, std::vector<double>& g) {
        double f = 0;
        g = {0, 0};
        for (std::size_t i = 0; i < dose.size(); ++i) {
            const double t = b[0] + b[1] * (dose[i] - 1.8);
            f += count[i] * std::log1p(std::exp(t)) - killed[i] * t;
            const double residual = count[i] / (1 + std::exp(-t)) - killed[i];
            g[0] += residual;
            g[1] += residual * (dose[i] - 1.8);
        }
        return f;
    }),
              3);
    EXPECT_NEAR(run.x[1], 34.270, 5e-4);
    EXPECT_NEAR(run.x[0] - 1.8 * run.x[1], -60.717, 1e-3);
}

// A random convex quadratic with random bounds of all four kinds. At the end of a run x is within its bounds and no
// component of the projected gradient exceeds pgtol, or f did not come down further; all trial points lay in the box.
TEST(Property, RandomConvexProblemsEndAtTheirSolution) {
    std::cout << "seed " << kSeed << '\n';
    std::mt19937 words(kSeed);
    const auto uniform = [&](double low, double high) {
        return low + (high - low) * (static_cast<double>(words()) / 4294967296.0);
    };
    for (int trial = 0; trial < 400; ++trial) {
        const std::size_t n = 1 + words() % 30;
        std::vector<double> diagonal(n), centre(n), link(n);
        Problem problem = Boxed(std::vector<double>(n), 0, 0);
        for (std::size_t i = 0; i < n; ++i) {
            diagonal[i] = std::exp(uniform(-3, 3));
            centre[i] = uniform(-4, 4);
            link[i] = uniform(-1, 1);
            problem.start[i] = uniform(-10, 10);
            problem.lower[i] = uniform(-3, 1);
            problem.upper[i] = problem.lower[i] + uniform(0, 4);
            problem.kind[i] = static_cast<std::int32_t>(words() % 4);
        }
        problem.pairs = 1 + static_cast<std::int32_t>(words() % 17);
        problem.factr = 0;
        problem.pgtol = 1e-6;
        const auto hasLower = [&](std::size_t i) { return problem.kind[i] == 1 || problem.kind[i] == 2; };
        const auto hasUpper = [&](std::size_t i) { return problem.kind[i] == 2 || problem.kind[i] == 3; };
        Minimisation run(problem);
        double outside = 0;
        const Objective objective = [&](const std::vector<double>& x, std::vector<double>& g) {
            double f = 0, along = 0;
            for (std::size_t i = 0; i < n; ++i) {
                if (hasLower(i)) outside = std::max(outside, problem.lower[i] - x[i]);
                if (hasUpper(i)) outside = std::max(outside, x[i] - problem.upper[i]);
                f += 0.5 * diagonal[i] * (x[i] - centre[i]) * (x[i] - centre[i]);
                along += link[i] * x[i];
            }
            for (std::size_t i = 0; i < n; ++i) g[i] = diagonal[i] * (x[i] - centre[i]) + along * link[i];
            return f + 0.5 * along * along;
        };
        ASSERT_EQ(run.Drive(objective), 3) << "trial " << trial;
        EXPECT_LE(outside, 1e-12) << "trial " << trial;
        for (std::size_t i = 0; i < n; ++i) {
            double step = -run.g[i];
            if (hasLower(i)) step = std::max(step, problem.lower[i] - run.x[i]);
            if (hasUpper(i)) step = std::min(step, problem.upper[i] - run.x[i]);
            EXPECT_LE(std::fabs(step), 2e-5) << "trial " << trial << ", variable " << i;
        }
    }
}

}  // namespace
