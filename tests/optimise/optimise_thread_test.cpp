// Steps of different records may come from different threads, one at a time.
#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "optimise/problems.hpp"

namespace {

using namespace orvanth::test;

constexpr std::size_t kThreads = 4;

TEST(OptimiseThreads, SerialisedStepsGiveTheSameBitsAsOneThread) {
    const Problem problem = Boxed(std::vector<double>(25, 3.0), 1, 100);
    const Objective objective = NamedObjective("rosenbrock_chain");
    Minimisation alone(problem);
    ASSERT_EQ(alone.Drive(objective), 3);

    std::mutex inside;
    std::vector<std::unique_ptr<Minimisation>> runs;
    for (std::size_t i = 0; i < kThreads; ++i) runs.push_back(std::make_unique<Minimisation>(problem));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            for (int code = 1; code == 1 || code == 2;) {
                std::lock_guard lock(inside);
                code = runs[i]->Drive(objective, 1);
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (const auto& run : runs) {
        EXPECT_EQ(run->x, alone.x);
        EXPECT_EQ(run->f, alone.f);
        EXPECT_EQ(run->evaluations, alone.evaluations);
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
