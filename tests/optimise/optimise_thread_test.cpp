// Minimisations on several threads, each on a state of its own, and one state that moves between threads.
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "optimise/problems.hpp"

namespace {

using namespace orvanth::test;

constexpr std::size_t kThreads = 8;

struct Work {
    const char* objective;
    Problem problem;
};

// Different sizes, pairs and bounds, so that values of one thread would be wrong in any other.
std::vector<Work> DifferentProblems() {
    std::vector<Work> all;
    for (std::size_t i = 0; i < kThreads / 2; ++i) {
        all.push_back({"rosenbrock_chain", Boxed(std::vector<double>(25 + 9 * i, 3.0), 1, 100)});
        all.back().problem.pairs = static_cast<std::int32_t>(3 + 2 * i);
        all.push_back({"quadratic", i % 2 == 0 ? Unbounded(std::vector<double>(40 + i, 2.0))
                                               : Boxed(std::vector<double>(40 + i, 2.0), -1, 4)});
    }
    return all;
}

TEST(OptimiseThreads, EightThreadsAtOnceOnStatesOfTheirOwnGiveTheBitsOfOneThread) {
    const std::vector<Work> work = DifferentProblems();
    std::vector<std::unique_ptr<Minimisation>> alone, together;
    for (const Work& one : work) {
        alone.push_back(std::make_unique<Minimisation>(one.problem));
        ASSERT_EQ(alone.back()->Drive(NamedObjective(one.objective)), 3);
    }
    together.resize(work.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < work.size(); ++i)
        threads.emplace_back([&, i] {
            const Objective objective = NamedObjective(work[i].objective);
            for (int round = 0; round < 20; ++round) {
                together[i] = std::make_unique<Minimisation>(work[i].problem);
                together[i]->Drive(objective);
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 0; i < work.size(); ++i) {
        EXPECT_EQ(together[i]->x, alone[i]->x) << i;
        EXPECT_EQ(together[i]->f, alone[i]->f) << i;
        EXPECT_EQ(together[i]->evaluations, alone[i]->evaluations) << i;
    }
}

TEST(OptimiseThreads, RecordMovesFromThreadToThread) {
    const Objective objective = NamedObjective("powell");
    const Problem problem = Unbounded({3, -1, 0, 1});
    Minimisation alone(problem), moving(problem);
    ASSERT_EQ(alone.Drive(objective), 3);
    for (int code = 1; code == 1 || code == 2;) std::thread([&] { code = moving.Drive(objective, 3); }).join();
    EXPECT_EQ(moving.x, alone.x);
}

}  // namespace
