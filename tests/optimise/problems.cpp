#include "optimise/problems.hpp"

#include <cmath>
#include <map>

namespace orvanth::test {

namespace {

// The sample problem of the minimiser's authors.
double RosenbrockChain(const std::vector<double>& x, std::vector<double>& g) {
    const std::size_t n = x.size();
    double f = 0.25 * (x[0] - 1) * (x[0] - 1);
    for (std::size_t i = 1; i < n; ++i) f += (x[i] - x[i - 1] * x[i - 1]) * (x[i] - x[i - 1] * x[i - 1]);
    double t1 = x[1] - x[0] * x[0];
    g[0] = 2 * (x[0] - 1) - 16 * x[0] * t1;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double t2 = t1;
        t1 = x[i + 1] - x[i] * x[i];
        g[i] = 8 * t2 - 16 * x[i] * t1;
    }
    g[n - 1] = 8 * t1;
    return 4 * f;
}

double Beale(const std::vector<double>& p, std::vector<double>& g) {
    const double x = p[0], y = p[1];
    const double a = 1.5 - x * (1 - y), b = 2.25 - x * (1 - y * y), c = 2.625 - x * (1 - y * y * y);
    g[0] = -2 * (a * (1 - y) + b * (1 - y * y) + c * (1 - y * y * y));
    g[1] = 2 * x * (a + 2 * b * y + 3 * c * y * y);
    return a * a + b * b + c * c;
}

double Booth(const std::vector<double>& p, std::vector<double>& g) {
    const double a = p[0] + 2 * p[1] - 7, b = 2 * p[0] + p[1] - 5;
    g[0] = 2 * a + 4 * b;
    g[1] = 4 * a + 2 * b;
    return a * a + b * b;
}

double Quadratic(const std::vector<double>& x, std::vector<double>& g) {
    double f = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double weight = static_cast<double>(i + 1);
        const double distance = x[i] - 3 * std::cos(weight);
        f += 0.5 * weight * distance * distance;
        g[i] = weight * distance;
    }
    return f;
}

// Powell's singular function, in blocks of four.
double Powell(const std::vector<double>& x, std::vector<double>& g) {
    double f = 0;
    for (std::size_t i = 0; i + 3 < x.size(); i += 4) {
        const double p = x[i] + 10 * x[i + 1], q = x[i + 2] - x[i + 3];
        const double r = x[i + 1] - 2 * x[i + 2], s = x[i] - x[i + 3];
        f += p * p + 5 * q * q + r * r * r * r + 10 * s * s * s * s;
        g[i] = 2 * p + 40 * s * s * s;
        g[i + 1] = 20 * p + 4 * r * r * r;
        g[i + 2] = 10 * q - 8 * r * r * r;
        g[i + 3] = -10 * q - 40 * s * s * s;
    }
    return f;
}

double Flat(const std::vector<double>&, std::vector<double>& g) {
    g.assign(g.size(), 0.0);
    return 7;
}

}  // namespace

Objective NamedObjective(const std::string& name) {
    static const std::map<std::string, Objective> kByName = {{"rosenbrock_chain", RosenbrockChain},
                                                             {"beale", Beale},
                                                             {"booth", Booth},
                                                             {"quadratic", Quadratic},
                                                             {"powell", Powell},
                                                             {"flat", Flat}};
    return kByName.at(name);
}

Problem Unbounded(std::vector<double> start) {
    const std::size_t n = start.size();
    return {std::move(start), std::vector<double>(n, kNone), std::vector<double>(n, kNone),
            std::vector<std::int32_t>(n, 0)};
}

Problem Boxed(std::vector<double> start, double lower, double upper) {
    const std::size_t n = start.size();
    return {std::move(start), std::vector<double>(n, lower), std::vector<double>(n, upper),
            std::vector<std::int32_t>(n, 2)};
}

std::int32_t Minimisation::Drive(const Objective& objective, int mostSteps) {
    std::int32_t code = 0;
    for (int step = 0; step < mostSteps; ++step) {
        code = Step();
        if (code == 1) {
            f = objective(x, g);
            ++evaluations;
        } else if (code == 2) {
            ++iterations;
        } else {
            break;
        }
    }
    return code;
}

}  // namespace orvanth::test
