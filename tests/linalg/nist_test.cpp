// NIST's certified linear regressions by the three roads that a host can take. The score is the log relative
// error, about the number of correct digits.
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "linalg/matrices.hpp"

namespace orvanth::test {
namespace {

const std::string kNist = ORVANTH_TEST_DATA "/nist/";

struct Dataset {
    Matrix design, response;
    std::vector<double> coefficients, deviations;  // certified
};

std::map<std::string, double> Certified(const std::string& name) {
    std::ifstream file(kNist + "certified.tsv");
    std::map<std::string, double> values;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::string set, quantity, printed, exact;
        std::getline(fields, set, '\t'), std::getline(fields, quantity, '\t');
        std::getline(fields, printed, '\t'), std::getline(fields, exact, '\t');
        if (set == name) values[quantity] = std::stod(exact);
    }
    return values;
}

// Rows of numbers stand from line 61 on; y comes first.
std::vector<std::vector<double>> Rows(const std::string& name) {
    std::ifstream file(kNist + "linear/" + name + ".dat");
    std::vector<std::vector<double>> rows;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (number < 61) continue;
        std::istringstream fields(line);
        std::vector<double> row;
        for (double value; fields >> value;) row.push_back(value);
        if (!row.empty()) rows.push_back(row);
    }
    return rows;
}

Dataset Load(const std::string& name) {
    const auto values = Certified(name);
    std::vector<double> coefficients, deviations;
    const bool constant = values.contains("B0");
    for (int j = constant ? 0 : 1; values.contains("B" + std::to_string(j)); ++j) {
        coefficients.push_back(values.at("B" + std::to_string(j)));
        deviations.push_back(values.at("B" + std::to_string(j) + "_sd"));
    }
    const auto rows = Rows(name);
    Dataset set{Matrix(static_cast<int>(rows.size()), static_cast<int>(coefficients.size())),
                Matrix(static_cast<int>(rows.size()), 1), coefficients, deviations};
    const bool polynomial = rows.at(0).size() == 2;
    for (int i = 0; i < set.design.Rows(); ++i) {
        const auto& row = rows[static_cast<std::size_t>(i)];
        set.response(i, 0) = row[0];
        double power = 1;
        for (int j = 0; j < set.design.Columns(); ++j) {
            if (!constant)
                set.design(i, j) = row[static_cast<std::size_t>(j) + 1];
            else if (polynomial)
                set.design(i, j) = power, power *= row[1];
            else
                set.design(i, j) = j == 0 ? 1 : row[static_cast<std::size_t>(j)];
        }
    }
    return set;
}

struct Fit {
    std::vector<double> coefficients, deviations;
};

// Coefficients of the columns as factored, with their standard deviations: s times the lengths of the rows of
// the inverse of R.
Fit Finish(const Dataset& set, const Matrix& factored, const std::vector<double>& x, double residualSum) {
    const int n = set.design.Columns();
    Matrix inverse = Identity(n);
    EXPECT_EQ(SolveTriangularSystem(factored.storage.data(), factored.Descriptor(), 1, 0, inverse.Data(),
                                    inverse.Descriptor()),
              0);
    const double variance = residualSum / (set.design.Rows() - n);
    Fit fit{x, {}};
    for (int i = 0; i < n; ++i) {
        double sum = 0;
        for (int j = i; j < n; ++j) sum += inverse(i, j) * inverse(i, j);
        fit.deviations.push_back(std::sqrt(variance * sum));
    }
    return fit;
}

double ResidualSum(const Dataset& set, const std::vector<double>& x) {
    return Xb(set.design.storage.data(), set.design.Descriptor(), x.data(), set.response.storage.data());
}

Fit ByLS(const Dataset& set) {
    Matrix a = set.design, b = set.response;
    EXPECT_EQ(LS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor()), 0);
    const std::vector<double> x(b.storage.begin(), b.storage.begin() + a.Columns());
    return Finish(set, a, x, ResidualSum(set, x));
}

Fit ByOLS(const Dataset& set) {
    Matrix a = set.design, b = set.response, x(a.Columns(), 1);
    std::vector<double> tau(static_cast<std::size_t>(a.Columns()));
    EXPECT_EQ(OLS(a.Data(), a.Descriptor(), b.Data(), b.Descriptor(), x.Data(), x.Descriptor(), tau.data(), 0), 0);
    const std::vector<double> coefficients(x.storage.begin(), x.storage.begin() + a.Columns());
    return Finish(set, a, coefficients, ResidualSum(set, coefficients));
}

Fit ByQRP(const Dataset& set) {
    Matrix a = set.design, b = set.response;
    const int n = a.Columns();
    std::vector<double> tau(static_cast<std::size_t>(n)), x(tau), deviations(tau);
    std::vector<std::int32_t> jpvt(static_cast<std::size_t>(n), 0);
    EXPECT_EQ(QRP(a.Data(), a.Descriptor(), tau.data(), jpvt.data()), 0);
    EXPECT_EQ(QR_Qy(a.Data(), a.Descriptor(), 1, tau.data(), b.Data(), b.Descriptor()), 0);
    EXPECT_EQ(SolveTriangularSystem(a.Data(), a.Descriptor(), 1, 0, b.Data(), b.Descriptor()), 0);
    for (int j = 0; j < n; ++j) x[static_cast<std::size_t>(jpvt[static_cast<std::size_t>(j)] - 1)] = b(j, 0);
    const Fit permuted = Finish(set, a, x, ResidualSum(set, x));
    for (std::size_t j = 0; j < jpvt.size(); ++j)
        deviations[static_cast<std::size_t>(jpvt[j] - 1)] = permuted.deviations[j];
    return {x, deviations};
}

double LogRelativeError(double computed, double certified) {
    const double error = std::fabs(computed - certified) / (certified == 0 ? 1 : std::fabs(certified));
    return error == 0 ? 15 : std::min(15.0, -std::log10(error));
}

struct Floor {
    const char* name;
    double coefficients, deviations;  // digits that every road must reach
};

// Below what Householder QR in double reaches on the raw designs by about one digit; the condition number
// takes log10 of itself from the sixteen digits that there are. The exact fits of Wampler1 and 2 have
// certified deviations of 0, where the score counts the zeros of what is left of the residuals.
constexpr Floor kFloors[] = {
    {"Norris", 12, 13},    {"Pontius", 11.5, 12}, {"NoInt1", 14, 14},     {"NoInt2", 14, 14},
    {"Filip", 7, 6.5},     {"Longley", 10, 11.5}, {"Wampler1", 8.5, 8.5}, {"Wampler2", 12, 13},
    {"Wampler3", 9, 12.5}, {"Wampler4", 7, 12.5}, {"Wampler5", 5, 12.5},
};

class Nist : public testing::TestWithParam<Floor> {};

TEST_P(Nist, EveryRoadReachesTheDigitsOfHouseholderQR) {
    const Dataset set = Load(GetParam().name);
    ASSERT_GT(set.design.Rows(), set.design.Columns());
    const std::pair<const char*, Fit> fits[] = {{"LS", ByLS(set)}, {"OLS", ByOLS(set)}, {"QRP", ByQRP(set)}};
    for (const auto& [road, fit] : fits) {
        std::printf("%-9s %-4s coefficients", GetParam().name, road);
        for (std::size_t j = 0; j < fit.coefficients.size(); ++j) {
            const double digits = LogRelativeError(fit.coefficients[j], set.coefficients[j]);
            std::printf(" %.1f", digits);
            EXPECT_GE(digits, GetParam().coefficients) << road << " coefficient " << j;
        }
        std::printf("; deviations");
        for (std::size_t j = 0; j < fit.deviations.size(); ++j) {
            const double digits = LogRelativeError(fit.deviations[j], set.deviations[j]);
            std::printf(" %.1f", digits);
            EXPECT_GE(digits, GetParam().deviations) << road << " deviation " << j;
        }
        std::printf("\n");
    }
}

INSTANTIATE_TEST_SUITE_P(Linear, Nist, testing::ValuesIn(kFloors),
                         [](const auto& instance) { return std::string(instance.param.name); });

int StopOf(const char* name, double tolerance) {
    Dataset set = Load(name);
    Matrix x(set.design.Columns(), 1);
    std::vector<double> tau(static_cast<std::size_t>(set.design.Columns()));
    return OLS(set.design.Data(), set.design.Descriptor(), set.response.Data(), set.response.Descriptor(), x.Data(),
               x.Descriptor(), tau.data(), tolerance);
}

TEST(NistCollinearity, FilipStopsAtItsTenthDegreeUnderTheUsualTolerance) {
    // Under 1e-7 the powers of x up to the ninth pass, and the tenth repeats them.
    EXPECT_EQ(StopOf("Filip", 1e-7), 11);
    EXPECT_EQ(StopOf("Filip", 1e-6), 10);
    EXPECT_EQ(StopOf("Filip", 1e-3), 6);
    EXPECT_EQ(StopOf("Filip", 1e-9), 0);
}

TEST(NistCollinearity, LongleyIsSolvedUnderTheUsualToleranceAndStopsAtTheYearUnderACoarseOne) {
    EXPECT_EQ(StopOf("Longley", 1e-7), 0);
    EXPECT_EQ(StopOf("Longley", 1e-5), 0);
    EXPECT_EQ(StopOf("Longley", 1e-3), 7);
    EXPECT_EQ(StopOf("Longley", 1e-2), 6);
}

}  // namespace
}  // namespace orvanth::test
