// The reference traces: whole minimisations, compared step by step.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "optimise/driver_state.hpp"
#include "optimise/problems.hpp"

namespace {

using namespace orvanth::test;
using nlohmann::json;

constexpr std::size_t kComparedSteps = 12;
constexpr double kStepTolerance = 1e-9;
constexpr double kEndTolerance = 1e-7;

std::vector<json> ReadTraces() {
    std::ifstream file(std::string(ORVANTH_TEST_DATA) + "/golden/minimiser.jsonl");
    std::vector<json> traces;
    std::string line;
    std::getline(file, line);  // says what is compared
    while (std::getline(file, line)) traces.push_back(json::parse(line));
    return traces;
}

void ExpectNear(double got, double want, double tolerance, const std::string& what) {
    EXPECT_LE(std::fabs(got - want), tolerance * std::max(1.0, std::fabs(want))) << what << ": " << got;
}

std::string NameOf(const testing::TestParamInfo<json>& trace) {
    return std::to_string(trace.index) + "_" + trace.param["function"].get<std::string>();
}

class Trace : public testing::TestWithParam<json> {};

TEST_P(Trace, EveryStepIsAsRecorded) {
    const json& wanted = GetParam();
    Problem problem{wanted["x0"], wanted["l"], wanted["u"], wanted["nbd"]};
    problem.pairs = wanted["m"];
    problem.factr = wanted["factr"];
    problem.pgtol = wanted["pgtol"];
    const Objective objective = NamedObjective(wanted["function"]);
    const json& steps = wanted["trace"];
    Minimisation run(problem);
    std::int32_t code = 0;
    for (std::size_t step = 0; step < 10 * steps.size() + 100; ++step) {
        code = run.Step();
        if (step < std::min(kComparedSteps, steps.size())) {
            const std::string place = "step " + std::to_string(step);
            ASSERT_EQ(code, steps[step]["code"].get<int>()) << place;
            ExpectNear(run.f, steps[step]["f"], kStepTolerance, place + ", f");
            for (std::size_t i = 0; i < run.x.size(); ++i)
                ExpectNear(run.x[i], steps[step]["x"][i], kStepTolerance, place + ", x" + std::to_string(i));
        }
        if (code == 1) run.f = objective(run.x, run.g);
        if (code != 1 && code != 2) break;
    }
    EXPECT_EQ(code, steps.back()["code"].get<int>());
    ExpectNear(run.f, steps.back()["f"], kEndTolerance, "last f");
    EXPECT_TRUE(orvanth::TaskHasPrefix(run.state(), wanted["last_task"].get<std::string>())) << run.state().task;
}

INSTANTIATE_TEST_SUITE_P(Minimiser, Trace, testing::ValuesIn(ReadTraces()), NameOf);

TEST(Traces, AllAreRead) { EXPECT_EQ(ReadTraces().size(), 29u); }

}  // namespace
