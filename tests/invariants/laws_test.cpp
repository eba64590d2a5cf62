// What holds for every law: tails that add to 1, probabilities that grow, quantiles that lead back.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "invariants/laws.hpp"

namespace orvanth::test {
namespace {

// Another one is taken from GTEST_RANDOM_SEED, which ./check sets and prints.
unsigned Seed() { return static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()) + 20261121u; }

class Laws : public testing::TestWithParam<Law> {
protected:
    int Points() const { return std::string(GetParam().name).starts_with("MC") ? 60 : 400; }

    // Parameters, two points in order, and a text that repeats them.
    template <class Check>
    void ForRandomPoints(Check check) const {
        const Law& law = GetParam();
        std::printf("  seed %u\n", Seed());
        Dice dice(Seed());
        for (int i = 0; i < Points() && !HasFailure(); ++i) {
            Parameters p = {};
            law.parameters(dice, p);
            double x = law.point(dice, p), y = law.point(dice, p);
            if (y < x) std::swap(x, y);
            char text[200];
            std::snprintf(text, sizeof text, "%s x %.17g y %.17g parameters %.17g %.17g %.17g %.17g", law.name, x, y,
                          p[0], p[1], p[2], p[3]);
            SCOPED_TRACE(text);
            check(law, x, y, p);
        }
    }
};

TEST_P(Laws, TheTailsAddToOne) {
    ForRandomPoints([](const Law& law, double x, double, const double* p) {
        EXPECT_NEAR(law.cdf(x, p, 0) + law.cdf(x, p, 1), 1, law.sum);
    });
}

TEST_P(Laws, ProbabilitiesStayBetweenZeroAndOneAndGrow) {
    ForRandomPoints([](const Law& law, double x, double y, const double* p) {
        for (double at : {x, y})
            for (TailFlag tail : {0, 1}) {
                EXPECT_GE(law.cdf(at, p, tail), -law.sum);
                EXPECT_LE(law.cdf(at, p, tail), 1 + law.sum);
            }
        EXPECT_LE(law.cdf(x, p, 0), law.cdf(y, p, 0) * (1 + law.step) + law.sum);
        EXPECT_LE(law.cdf(y, p, 1), law.cdf(x, p, 1) * (1 + law.step) + law.sum);
    });
}

TEST_P(Laws, ANeighbouringDoubleIsNoStepBack) {
    if (GetParam().discrete) GTEST_SKIP() << "whole numbers";
    ForRandomPoints([](const Law& law, double x, double, const double* p) {
        const double next = std::nextafter(x, 1e300);
        EXPECT_GE(law.cdf(next, p, 0), law.cdf(x, p, 0) * (1 - law.step) - 1e-300);
        EXPECT_LE(law.cdf(next, p, 1), law.cdf(x, p, 1) * (1 + law.step) + 1e-300);
    });
}

// The smaller tail leads to a point whose tail it is; a whole number may stand at its side.
TEST_P(Laws, QuantilesLeadBack) {
    ForRandomPoints([](const Law& law, double x, double, const double* p) {
        const TailFlag tail = law.cdf(x, p, 0) <= law.cdf(x, p, 1) ? 0 : 1;
        const double q = law.cdf(x, p, tail);
        const bool solver = !std::strncmp(law.name, "MC", 2) || !std::strcmp(law.name, "Kolmogorov");
        if (!(q > (solver ? 0.02 : 1e-290)) || q >= 1) return;
        const double back = law.icdf(q, p, tail);
        if (law.discrete)
            EXPECT_TRUE(std::fabs(back - x) <= 1 || std::fabs(law.cdf(back, p, tail) - q) <= law.trip * q) << back;
        else
            EXPECT_NEAR(law.cdf(back, p, tail), q, law.trip * q);
    });
}

INSTANTIATE_TEST_SUITE_P(Invariants, Laws, testing::ValuesIn(kLaws),
                         [](const testing::TestParamInfo<Law>& law) { return std::string(law.param.name); });

}  // namespace
}  // namespace orvanth::test
