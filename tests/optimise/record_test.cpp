// The record of one minimisation as LBFGSBStart makes it.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "optimise/driver_state.hpp"
#include "optimise/problems.hpp"

namespace {

using namespace orvanth::test;
using orvanth::TaskHasPrefix;

std::string Padded(std::string text) { return text.append(60 - text.size(), ' '); }

TEST(LBFGSBStart, TaskIsStartAndFiftyFiveBlanksBeforeAZeroByte) {
    const Minimisation run(Boxed({1, 1}, -10, 10));
    EXPECT_EQ(std::string(run.state().task, 61), Padded("START") + '\0');
    EXPECT_EQ(run.state().iprint, -1);
}

TEST(LBFGSBStart, KeepsNoPointerIntoTheCallersArrays) {
    Problem problem = Boxed(std::vector<double>(25, 3.0), 1, 100);
    Minimisation left(problem), right(problem);
    problem = Boxed(std::vector<double>(25, 3.0), -5, -4);
    const Objective objective = NamedObjective("rosenbrock_chain");
    EXPECT_EQ(left.Drive(objective), 3);
    EXPECT_EQ(right.Drive(objective), 3);
    EXPECT_EQ(left.x, right.x);
    EXPECT_GE(*std::min_element(left.x.begin(), left.x.end()), 1.0);
}

TEST(LBFGSBStart, WorkspaceHasTheSizeThatTheMinimiserDividesUp) {
    EXPECT_EQ(orvanth::WorkspaceLength(25, 5), 2 * 5 * 25 + 5 * 25 + 11 * 25 + 8 * 5);
    EXPECT_EQ(orvanth::WorkspaceLength(1, 1), 26);
    EXPECT_EQ(orvanth::WorkspaceLength(0, 5), 0);
    EXPECT_EQ(orvanth::WorkspaceLength(25, -5), 0);
    EXPECT_EQ(orvanth::WorkspaceLength(10, 20000), -1);
    EXPECT_EQ(orvanth::WorkspaceLength(2000000000, 1), -1);
    EXPECT_EQ(orvanth::WorkspaceLength(429496725, 1), -1);
}

TEST(LBFGSBStart, WhatCannotBeAllocatedGivesNoHandle) {
    EXPECT_EQ(LBFGSBStart(-1, 5, nullptr, nullptr, nullptr, 1e7, 1e-5), nullptr);
    EXPECT_EQ(LBFGSBStart(std::numeric_limits<std::int32_t>::min(), 5, nullptr, nullptr, nullptr, 1e7, 1e-5),
              nullptr);
    const double bound = 0;
    const std::int32_t kind = 0;
    EXPECT_EQ(LBFGSBStart(1, 2000000, &bound, &bound, &kind, 1e7, 1e-5), nullptr);
}

TEST(Task, PrefixIsComparedOverItsOwnLength) {
    LBFGSBDriverState state;
    orvanth::SetTask(state, "FG_LNSRCH");
    EXPECT_TRUE(TaskHasPrefix(state, "FG"));
    EXPECT_FALSE(TaskHasPrefix(state, "FG_START"));
    EXPECT_EQ(std::string(state.task, 61), Padded("FG_LNSRCH") + '\0');
    state.task[60] = 'z';
    orvanth::SetTask(state, "STOP");
    EXPECT_EQ(std::string(state.task, 61), Padded("STOP") + 'z');  // not SetTask's to touch
}

}  // namespace
