// What a minimisation prints and writes: nothing, but for two messages about the direction of
// descent that its Fortran sources print whatever they are told.
#include <gtest/gtest.h>

#include <unistd.h>
#include <cmath>

#include <filesystem>
#include <string>
#include <vector>

#include "optimise/driver_state.hpp"
#include "optimise/problems.hpp"

extern "C" void _gfortran_flush_i4(std::int32_t* unit);  // all units if null

namespace {

using namespace orvanth::test;

template <class Function>
std::string Printed(Function function) {
    _gfortran_flush_i4(nullptr);
    testing::internal::CaptureStdout();
    function();
    _gfortran_flush_i4(nullptr);
    std::string text = testing::internal::GetCapturedStdout();
    std::erase(text, '\r');  // Fortran ends a line on Windows with two characters
    return text;
}

TEST(Output, SoundRunsPrintNothing) {
    EXPECT_EQ(Printed([] {
                  for (const char* name : {"rosenbrock_chain", "powell", "quadratic"}) {
                      Minimisation run(Boxed({3, -1, 0, 1}, -4, 4));
                      EXPECT_EQ(run.Drive(NamedObjective(name)), 3);
                      Minimisation abandoned(Boxed({3, -1, 0, 1}, -4, 4));
                      abandoned.Drive(NamedObjective(name), 7);
                  }
                  Minimisation rejected(Boxed({1}, 2, 1));
                  EXPECT_EQ(rejected.Step(), 5);
              }),
              "");
}

TEST(Output, DirectionThatDoesNotDescendIsPrintedAndFailsTheLineSearch) {
    // The step of 1 is lost in the point's last place, so the direction is zero.
    const std::string text = Printed([] {
        Minimisation run(Unbounded({1e20}));
        EXPECT_EQ(run.Drive([](const std::vector<double>&, std::vector<double>& g) {
            g[0] = 1;
            return 5.0;
        }),
                  4);
        EXPECT_EQ(run.x[0], 1e20);
        EXPECT_EQ(run.f, 5.0);
    });
    EXPECT_EQ(text.find("  ascent direction in projection gd = "), 0u) << text;
    EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
}

TEST(Output, ProjectedStepThatDoesNotDescendIsPrintedAndTheRunGoesOn) {
    const std::string text = Printed([] {
        Problem problem = Boxed({0.6, 0.5}, 0, 0);
        problem.lower = {0, -0.7};
        problem.upper = {1.6, 0.9};
        problem.pairs = 6;
        problem.factr = 10;
        problem.pgtol = 1e-8;
        Minimisation run(problem);
        EXPECT_EQ(run.Drive([](const std::vector<double>& x, std::vector<double>& g) {
            const double a = -1.7 - 0.6 * x[0] + 0.1 * x[1], b = -1.5 - 1.8 * x[0] + 0.8 * x[1];
            g[0] = 5 * (-0.6 * std::cos(a) - 1.8 * std::cos(b)) + 0.2 * x[0];
            g[1] = 5 * (0.1 * std::cos(a) + 0.8 * std::cos(b)) + 0.2 * x[1];
            return 5 * (std::sin(a) + std::sin(b)) + 0.1 * (x[0] * x[0] + x[1] * x[1]);
        }),
                  3);
    });
    EXPECT_EQ(text, "  Positive dir derivative in projection \n  Using the backtracking step \n");
}

TEST(Output, NothingIsWrittenToDisk) {
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path();
    const fs::path empty = fs::path(testing::TempDir()) / ("optimise_" + std::to_string(::getpid()));
    fs::create_directory(empty);
    fs::current_path(empty);
    {
        Minimisation run(Boxed(std::vector<double>(25, 3.0), 1, 100));
        EXPECT_EQ(run.Drive(NamedObjective("rosenbrock_chain")), 3);
        Minimisation rejected(Boxed({1}, 2, 1));
        EXPECT_EQ(rejected.Step(), 5);
        Minimisation never(Boxed({1}, 0, 1));
    }
    EXPECT_TRUE(fs::is_empty(empty));
    fs::current_path(before);
    fs::remove_all(empty);
}

}  // namespace
