// The caller's loop in C++: the state is released on every way out, exceptions of the objective included.
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "orvanth/optimise.h"

struct Bounds {
    std::vector<double> lower, upper;
    std::vector<std::int32_t> kind;  // 0 none, 1 lower, 2 both, 3 upper
};

// Returns f and leaves the solution in x.
double Minimise(const std::function<double(const std::vector<double>&, std::vector<double>&)>& objective,
                std::vector<double>& x, const Bounds& bounds) {
    const auto n = static_cast<std::int32_t>(x.size());
    const std::unique_ptr<LBFGSBDriverState, decltype(&LBFGSBEnd)> state(
        LBFGSBStart(n, 5, bounds.lower.data(), bounds.upper.data(), bounds.kind.data(), 1e7, 1e-5), &LBFGSBEnd);
    std::vector<double> g(x.size());
    double f = 0;
    while (true) {
        switch (LBFGSBStep(state.get(), x.data(), &f, g.data())) {
            case 1:
                f = objective(x, g);
                break;  // at the x just returned, not at the old one
            case 2:
                break;  // a finished iterate: report, count or stop here
            case 3:
                return f;
            case 4:
                throw std::runtime_error("no descent: is the gradient that of the function?");
            default:
                throw std::invalid_argument("bounds, tolerance or size make no sense");
        }
    }
}

int main() {
    std::vector<double> x{3, 3, 3};
    const Bounds bounds{{-1, -1, -1}, {1, 1, 1}, {2, 0, 1}};
    const double f = Minimise(
        [](const std::vector<double>& at, std::vector<double>& g) {
            double sum = 0;
            for (std::size_t i = 0; i < at.size(); ++i) {
                const double distance = at[i] - 2 + 2 * static_cast<double>(i);  // wants 2, 0, -2
                sum += distance * distance;
                g[i] = 2 * distance;
            }
            return sum;
        },
        x, bounds);
    std::printf("f = %.6f at (%.6f, %.6f, %.6f)\n", f, x[0], x[1], x[2]);
    return std::abs(f - 2) < 1e-9 ? 0 : 1;
}
