// The protocol of steps: codes, copies, wrong arguments, abandoned runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "optimise/driver_state.hpp"
#include "optimise/problems.hpp"

namespace {

using namespace orvanth::test;
using orvanth::TaskHasPrefix;

const double kInf = std::numeric_limits<double>::infinity();

std::string Padded(std::string text) { return text.append(60 - text.size(), ' '); }

Problem BoothProblem() { return Boxed({1, 1}, -10, 10); }

TEST(LBFGSBStep, NoHandleIsRejectedAndLeavesTheArrays) {
    double x = 1, f = 2, g = 3;
    EXPECT_EQ(LBFGSBStep(nullptr, &x, &f, &g), 5);
    EXPECT_EQ(x + f + g, 6);
    LBFGSBEnd(nullptr);
}

TEST(LBFGSBStep, FirstStepAsksForAnEvaluationAndReadsNeitherFNorG) {
    Minimisation run(BoothProblem());
    run.f = kInf;
    run.g = {kNone, -kInf};
    EXPECT_EQ(run.Step(), 1);
    EXPECT_TRUE(TaskHasPrefix(run.state(), "FG_START"));
    EXPECT_EQ(run.x, (std::vector<double>{1, 1}));
    EXPECT_EQ(run.f, kInf);  // handed back as they came
    EXPECT_TRUE(std::isnan(run.g[0]));
    run.f = NamedObjective("booth")(run.x, run.g);
    EXPECT_EQ(run.Drive(NamedObjective("booth")), 3);
    EXPECT_NEAR(run.x[0], 1, 1e-5);
    EXPECT_NEAR(run.x[1], 3, 1e-5);
}

TEST(LBFGSBStep, StartOutsideTheBoundsIsProjectedByTheKindOfEach) {
    Problem problem;
    problem.start = {-9, -9, -9, -9, 9, 9, 9, 9};
    problem.lower = {kNone, -1, -1, kNone, kNone, -1, -1, kNone};
    problem.upper = {kNone, kNone, 2, 2, kNone, kNone, 2, 2};
    problem.kind = {0, 1, 2, 3, 0, 1, 2, 3};
    Minimisation run(problem);
    EXPECT_EQ(run.Step(), 1);
    EXPECT_EQ(run.x, (std::vector<double>{-9, -1, -1, -9, 9, 9, 2, 2}));
}

TEST(LBFGSBStep, UnboundedVariablesDoNotReadTheirBounds) {
    Minimisation run(Unbounded({1, 1}));
    EXPECT_EQ(run.Drive(NamedObjective("booth")), 3);
    EXPECT_NEAR(run.x[0], 1, 1e-5);
    EXPECT_NEAR(run.x[1], 3, 1e-5);
}

TEST(LBFGSBStep, EachKindOfBoundHoldsTheSolution) {
    // The separable quadratic: its minimum within bounds is the free minimum, clamped.
    const std::size_t n = 8;
    Problem problem;
    for (std::size_t i = 0; i < n; ++i) {
        problem.start.push_back(0.25);
        problem.lower.push_back(-1.0);
        problem.upper.push_back(0.5);
        problem.kind.push_back(static_cast<std::int32_t>(i % 4));
    }
    problem.factr = 0;
    problem.pgtol = 1e-9;
    Minimisation run(problem);
    EXPECT_EQ(run.Drive(NamedObjective("quadratic")), 3);
    for (std::size_t i = 0; i < n; ++i) {
        const bool hasLower = problem.kind[i] == 1 || problem.kind[i] == 2;
        const bool hasUpper = problem.kind[i] == 2 || problem.kind[i] == 3;
        const double free = 3 * std::cos(static_cast<double>(i + 1));
        // f is flat to its last bit within about the root of the spacing.
        if (hasLower && free < -1.0)
            EXPECT_EQ(run.x[i], -1.0) << i;
        else if (hasUpper && free > 0.5)
            EXPECT_EQ(run.x[i], 0.5) << i;
        else
            EXPECT_NEAR(run.x[i], free, 1e-7) << i;
    }
}

struct Rejected {
    const char* task;
    Problem problem;
};

std::vector<Rejected> RejectedProblems() {
    std::vector<Rejected> all;
    all.push_back({"ERROR: N .LE. 0", Boxed({}, 0, 1)});
    for (const std::int32_t pairs : {0, -3, std::numeric_limits<std::int32_t>::min()}) {
        all.push_back({"ERROR: M .LE. 0", BoothProblem()});
        all.back().problem.pairs = pairs;
    }
    all.push_back({"ERROR: FACTR .LT. 0", BoothProblem()});
    all.back().problem.factr = -1e-300;
    for (const std::int32_t kind : {-1, 4}) {
        all.push_back({"ERROR: INVALID NBD", BoothProblem()});
        all.back().problem.kind[1] = kind;
    }
    all.push_back({"ERROR: NO FEASIBLE SOLUTION", Boxed({1, 1}, 2, 1.5)});
    // Of several errors the last one tested names the task.
    all.push_back({"ERROR: M .LE. 0", Boxed({}, 0, 1)});
    all.back().problem.pairs = 0;
    all.push_back({"ERROR: FACTR .LT. 0", BoothProblem()});
    all.back().problem.pairs = 0;
    all.back().problem.factr = -1;
    all.push_back({"ERROR: INVALID NBD", Boxed({1, 1}, 2, 1.5)});
    all.back().problem.kind[1] = 7;
    all.back().problem.factr = -1;
    return all;
}

TEST(LBFGSBStep, WrongArgumentsAreRejectedByTheFirstStep) {
    for (const Rejected& rejected : RejectedProblems()) {
        Minimisation run(rejected.problem);
        EXPECT_EQ(run.Step(), 5) << rejected.task;
        EXPECT_EQ(std::string(run.state().task, 60), Padded(rejected.task));
        EXPECT_EQ(run.x, rejected.problem.start);  // nothing was projected
    }
}

TEST(LBFGSBStep, CrossedBoundsAreRejectedOnlyWhereBothCount) {
    Problem problem = Boxed({1, 1}, 3, 2);
    problem.kind = {1, 3};
    Minimisation run(problem);
    EXPECT_EQ(run.Step(), 1);
    EXPECT_EQ(run.x, (std::vector<double>{3, 1}));
}

TEST(LBFGSBStep, ZeroGradientAtTheStartConvergesWithoutAnIterate) {
    Minimisation run(BoothProblem());
    EXPECT_EQ(run.Step(), 1);
    run.f = 7;
    run.g = {0, 0};
    EXPECT_EQ(run.Step(), 3);
    EXPECT_EQ(run.f, 7);
}

TEST(LBFGSBStep, GradientThatOnlyPointsOutOfTheBoxConvergesAtOnce) {
    Minimisation run(Boxed({-10, 10}, -10, 10));
    EXPECT_EQ(run.Step(), 1);
    run.f = 0;
    run.g = {5, -5};
    EXPECT_EQ(run.Step(), 3);
}

TEST(LBFGSBStep, ConvergenceComesAfterTheIterateNeverWithIt) {
    Minimisation run(BoothProblem());
    const Objective objective = NamedObjective("booth");
    std::vector<std::int32_t> codes;
    do {
        codes.push_back(run.Step());
        if (codes.back() == 1) run.f = objective(run.x, run.g);
    } while (codes.back() == 1 || codes.back() == 2);
    ASSERT_GE(codes.size(), 4u);
    EXPECT_EQ(codes[codes.size() - 1], 3);
    EXPECT_EQ(codes[codes.size() - 2], 2);
}

TEST(LBFGSBStep, ToleranceOfZeroStopsOnlyAtAnExactlyZeroGradient) {
    Problem problem = BoothProblem();
    problem.factr = 0;
    problem.pgtol = 0;
    Minimisation run(problem);
    EXPECT_EQ(run.Drive(NamedObjective("booth")), 3);
    EXPECT_EQ(run.f, 0);
    EXPECT_EQ(run.g, (std::vector<double>{0, 0}));
}

TEST(LBFGSBStep, ReductionTestUsesTheSpacingOfOne) {
    Minimisation run(BoothProblem());
    run.Step();
    EXPECT_EQ(run.state().dsave[4], std::numeric_limits<double>::epsilon());
    EXPECT_EQ(run.state().dsave[2], 1e7 * std::numeric_limits<double>::epsilon());
}

TEST(LBFGSBStep, TakesThePointFromTheCallerEachTime) {
    Minimisation moved(BoothProblem()), direct(Boxed({4, -2}, -10, 10));
    EXPECT_EQ(moved.Step(), 1);
    moved.x = {4, -2};
    moved.f = NamedObjective("booth")(moved.x, moved.g);
    EXPECT_EQ(moved.Drive(NamedObjective("booth")), 3);
    EXPECT_EQ(direct.Drive(NamedObjective("booth")), 3);
    EXPECT_EQ(moved.x, direct.x);
}

// A gradient with the wrong sign: every trial point is worse than the start.
double Misled(const std::vector<double>& x, std::vector<double>& g) {
    const double f = NamedObjective("booth")(x, g);
    for (double& component : g) component = -component;
    return f;
}

TEST(LBFGSBStep, FailedLineSearchHandsBackTheLastGoodPoint) {
    Minimisation run(BoothProblem());
    std::vector<double> gradient(2);
    const double f = Misled({1, 1}, gradient);
    EXPECT_EQ(run.Drive(Misled), 4);
    EXPECT_EQ(std::string(run.state().task, 60), Padded("ABNORMAL_TERMINATION_IN_LNSRCH"));
    EXPECT_EQ(run.x, (std::vector<double>{1, 1}));
    EXPECT_EQ(run.f, f);
    EXPECT_EQ(run.g, gradient);
    EXPECT_EQ(run.iterations, 0);
    EXPECT_EQ(run.evaluations, 21);  // the start and twenty trial points
}

TEST(LBFGSBStep, FailedLineSearchRestoresFAndGOverThoseOfTheLastTrial) {
    Minimisation run(Boxed({1, 1.3}, -10, 10));
    struct Evaluation {
        std::vector<double> x, g;
        double f;
    };
    std::vector<Evaluation> all;
    EXPECT_EQ(run.Drive([&](const std::vector<double>& x, std::vector<double>& g) {
        const double f = NamedObjective("rosenbrock_chain")(x, g);
        if (all.size() >= 7)
            for (double& component : g) component = -component;
        all.push_back({x, g, f});
        return f;
    }),
              4);
    EXPECT_NE(run.f, all.back().f);
    EXPECT_NE(run.g, all.back().g);
    EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const Evaluation& evaluation) {
        return evaluation.x == run.x && evaluation.f == run.f && evaluation.g == run.g;
    }));
}

// After five steps every trial point is worse than the iterate, with the gradient turned round: each trial halves the
// step. The rise follows the slope along the search, so that the last digits of the BLAS in use decide nothing.
TEST(LBFGSBStep, LineSearchThatFailsWithAMemoryStartsAnewUnseen) {
    Minimisation run(Boxed({-1.2, 1, -1.2, 1}, -5, 5));
    int sound = 0;
    std::vector<double> iterate, gradient;
    double value = 0;
    EXPECT_EQ(run.Drive([&](const std::vector<double>& x, std::vector<double>& g) {
        if (run.iterations < 5) {
            ++sound;
            value = NamedObjective("rosenbrock_chain")(x, g);
            iterate = x;
            gradient = g;
            return value;
        }
        double fall = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            fall -= gradient[i] * (x[i] - iterate[i]);
            g[i] = -gradient[i];
        }
        return value + 0.01 * fall;
    }),
              4);
    EXPECT_EQ(run.iterations, 5);
    EXPECT_EQ(run.x, iterate);
    EXPECT_EQ(run.f, value);
    EXPECT_EQ(run.evaluations, sound + 2 * 20);  // twenty with the memory and twenty without it
}

TEST(LBFGSBStep, StepAfterConvergenceAsksForAFreshEvaluation) {
    Minimisation run(BoothProblem());
    EXPECT_EQ(run.Drive(NamedObjective("booth")), 3);
    EXPECT_EQ(run.Step(), 1);
    EXPECT_TRUE(TaskHasPrefix(run.state(), "FG_START"));
}

// Without the guard the second step divides by m, or writes outside the workspace.
TEST(LBFGSBStep, RejectedArgumentsStayRejectedAndNothingIsTouched) {
    for (const Rejected& rejected : RejectedProblems()) {
        Minimisation run(rejected.problem);
        EXPECT_EQ(run.Step(), 5) << rejected.task;
        for (int further = 0; further < 3; ++further) {
            const std::vector<double> x(run.x.size(), 0.5 + further), g(run.x.size(), -1.0);
            run.x = x;
            run.g = g;
            run.f = 3.25;
            EXPECT_EQ(run.Step(), 5) << rejected.task;
            EXPECT_EQ(run.x, x);
            EXPECT_EQ(run.g, g);
            EXPECT_EQ(run.f, 3.25);
            EXPECT_EQ(std::string(run.state().task, 60), Padded(rejected.task));
        }
    }
}

TEST(LBFGSBStep, StepAfterAFailedLineSearchAsksForAFreshEvaluation) {
    Minimisation run(BoothProblem());
    EXPECT_EQ(run.Drive(Misled), 4);
    EXPECT_EQ(run.Step(), 1);
    EXPECT_TRUE(TaskHasPrefix(run.state(), "FG_START"));
}

TEST(LBFGSBStep, LeavesErrnoAlone) {
    for (const int before : {0, 7}) {
        Minimisation run(Boxed(std::vector<double>(25, 3.0), 1, 100));
        errno = before;
        EXPECT_EQ(run.Drive(NamedObjective("rosenbrock_chain")), 3);
        EXPECT_EQ(errno, before);
    }
}

TEST(LBFGSBStep, NotANumberNeverHangs) {
    const Objective sound = NamedObjective("rosenbrock_chain");
    for (const double poison : {kNone, kInf, -kInf})
        for (const int from : {1, 2, 3, 7, 20})
            for (const bool inGradient : {false, true})
                for (const bool forGood : {false, true})
                    for (const bool bounded : {false, true}) {
                        const std::vector<double> start{-1.2, 1, -1.2, 1, 0.5};
                        Minimisation run(bounded ? Boxed(start, -2, 2) : Unbounded(start));
                        int calls = 0;
                        const int code = run.Drive(
                            [&](const std::vector<double>& x, std::vector<double>& g) {
                                const double f = sound(x, g);
                                ++calls;
                                if (calls < from || (calls > from && !forGood)) return f;
                                if (inGradient) g[2] = poison;
                                return inGradient ? f : poison;
                            },
                            5000);
                        EXPECT_TRUE(code == 3 || code == 4)
                            << code << ": " << poison << " from evaluation " << from
                            << (inGradient ? " in g" : " in f") << (forGood ? " on" : " once")
                            << (bounded ? ", bounded" : ", unbounded");
                    }
}

TEST(LBFGSBEnd, IsRightAfterAnyCodeAndWithoutAStep) {
    const Objective objective = NamedObjective("rosenbrock_chain");
    for (int steps = 0; steps < 60; ++steps) {
        Minimisation run(Boxed(std::vector<double>(25, 3.0), 1, 100));
        run.Drive(objective, steps);
    }
    {
        Minimisation failed(BoothProblem());
        EXPECT_EQ(failed.Drive(Misled), 4);
    }
    for (const Rejected& rejected : RejectedProblems()) {
        Minimisation never(rejected.problem), once(rejected.problem);
        once.Step();
    }
}

TEST(LBFGSBEnd, AbandonedRunsDoNotDisturbOthers) {
    const Objective objective = NamedObjective("rosenbrock_chain");
    const Problem problem = Boxed(std::vector<double>(25, 3.0), 1, 100);
    Minimisation alone(problem), disturbed(problem);
    alone.Drive(objective);
    for (int code = 1; code == 1 || code == 2;) {
        Minimisation other(Boxed({-1.2, 1, 1}, -5, 5));
        other.Drive(objective, 4);
        code = disturbed.Drive(objective, 1);
    }
    EXPECT_EQ(alone.x, disturbed.x);
    EXPECT_EQ(alone.f, disturbed.f);
}

TEST(LBFGSBEnd, ThousandsOfRecordsAreMadeUsedAndReleased) {
    const Objective objective = NamedObjective("beale");
    for (int i = 0; i < 5000; ++i) {
        Minimisation run(Boxed({1, 1}, -4.5, 4.5));
        run.Drive(objective, i % 30);
    }
}

TEST(Interleaved, RecordsGiveTheSameBitsAsAlone) {
    const std::vector<std::string> names{"rosenbrock_chain", "powell", "quadratic", "beale", "booth"};
    std::vector<Problem> problems{Boxed(std::vector<double>(25, 3.0), 1, 100), Unbounded({3, -1, 0, 1}),
                                  Boxed(std::vector<double>(40, 2.0), -1, 4), Boxed({1, 1}, -4.5, 4.5),
                                  Unbounded({7, -3})};
    problems[1].pairs = 17;
    std::vector<std::unique_ptr<Minimisation>> together;
    for (const Problem& problem : problems) together.push_back(std::make_unique<Minimisation>(problem));
    for (int turn = 0; turn < 400; ++turn)
        for (std::size_t i = 0; i < problems.size(); ++i)
            if (turn == 0 || !TaskHasPrefix(together[i]->state(), "CONV"))
                together[i]->Drive(NamedObjective(names[i]), 1);
    for (std::size_t i = 0; i < problems.size(); ++i) {
        Minimisation alone(problems[i]);
        EXPECT_EQ(alone.Drive(NamedObjective(names[i])), 3) << names[i];
        EXPECT_EQ(alone.x, together[i]->x) << names[i];
        EXPECT_EQ(alone.f, together[i]->f) << names[i];
    }
}

}  // namespace
