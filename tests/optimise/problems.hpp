// Objective functions of the minimiser's tests, and a caller's loop around the three exports.
#ifndef ORVANTH_TESTS_OPTIMISE_PROBLEMS_HPP
#define ORVANTH_TESTS_OPTIMISE_PROBLEMS_HPP

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "orvanth/optimise.h"

namespace orvanth::test {

inline constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// f at x; the gradient goes to g.
using Objective = std::function<double(const std::vector<double>& x, std::vector<double>& g)>;

// By the names of the reference traces: rosenbrock_chain, beale, booth, quadratic, powell, flat.
Objective NamedObjective(const std::string& name);

struct Problem {
    std::vector<double> start;
    std::vector<double> lower, upper;
    std::vector<std::int32_t> kind;  // 0 none, 1 lower, 2 both, 3 upper
    std::int32_t pairs = 5;
    double factr = 1e7;
    double pgtol = 1e-5;
};

// No bounds at all; the bound arrays hold NaN, which nobody may read.
Problem Unbounded(std::vector<double> start);
Problem Boxed(std::vector<double> start, double lower, double upper);

// One minimisation from LBFGSBStart to LBFGSBEnd.
class Minimisation {
public:
    explicit Minimisation(const Problem& problem)
        : x(problem.start),
          g(x.size(), 0.0),
          state_(LBFGSBStart(static_cast<std::int32_t>(x.size()), problem.pairs, problem.lower.data(),
                             problem.upper.data(), problem.kind.data(), problem.factr, problem.pgtol)) {}
    ~Minimisation() { LBFGSBEnd(state_); }
    Minimisation(const Minimisation&) = delete;
    Minimisation& operator=(const Minimisation&) = delete;

    std::int32_t Step() { return LBFGSBStep(state_, x.data(), &f, g.data()); }
    // Steps and evaluates until the minimiser has finished or `mostSteps` are done: the last code.
    std::int32_t Drive(const Objective& objective, int mostSteps = 100000);
    const LBFGSBDriverState& state() const { return *state_; }

    std::vector<double> x, g;
    double f = 0.0;
    int evaluations = 0;
    int iterations = 0;

private:
    LBFGSBDriverState* state_;
};

}  // namespace orvanth::test

#endif
