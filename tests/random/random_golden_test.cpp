// The rows of random.tsv: forms of use of the five exports and of the words behind them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "golden/golden_row.hpp"
#include "orvanth/random.h"
#include "random/streams.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::golden;
using namespace orvanth::test;

constexpr double kUntouched = -77.25;

std::int32_t Integer(const std::string& text) { return static_cast<std::int32_t>(std::stoll(text)); }

// [status, messages, parameter of the messages], and the routine that they name.
struct Report {
    double status = 0;
    int messages = 0;
    int parameter = 0;
    std::string routine;
};

Report ReadMessages(double status, const std::string& printed) {
    Report report;
    report.status = status;
    std::size_t at = 0;
    while ((at = printed.find("\nMKL ERROR: Parameter ", at)) != std::string::npos) {
        char routine[64] = "";
        EXPECT_EQ(std::sscanf(printed.c_str() + at, "\nMKL ERROR: Parameter %d was incorrect on entry to %63[^.].\n",
                              &report.parameter, routine),
                  2);
        report.routine = routine;
        ++report.messages;
        ++at;
    }
    return report;
}

std::vector<double> Draws(const std::vector<std::string>& arguments, const std::vector<double>& counts) {
    std::vector<double> all;
    const RandomStreamHandle stream = CreateRandomStream(Integer(arguments[0]));
    for (double count : counts) {
        std::vector<std::int32_t> values(static_cast<std::size_t>(count) + 1, -1);
        EXPECT_EQ(RandomUniformInteger(stream, values.data(), static_cast<std::int32_t>(count)), 0);
        EXPECT_EQ(values.back(), -1);
        all.insert(all.end(), values.begin(), values.end() - 1);
    }
    EXPECT_EQ(DeleteRandomStream(stream), 0);
    return all;
}

std::vector<double> Words(const std::vector<std::string>& a) {
    const std::int32_t first = Integer(a[1]), count = Integer(a[2]);
    const std::vector<std::uint32_t> words =
        WordsOf(static_cast<std::uint32_t>(Integer(a[0])), static_cast<std::size_t>(first + count));
    return {words.begin() + first, words.end()};
}

std::vector<double> Normal(const std::vector<std::string>& a) {
    const std::int32_t count = Integer(a[0]);
    std::vector<double> values(static_cast<std::size_t>(count));
    EXPECT_EQ(RandomNormalVariable(values.data(), count, ParseDouble(a[1]), ParseDouble(a[2]), Integer(a[3])), 0);
    return {values.back()};
}

std::vector<double> Normals(const std::vector<std::string>& a) {
    const std::int32_t rows = Integer(a[0]), columns = Integer(a[1]);
    std::vector<double> values(static_cast<std::size_t>(rows * columns));
    EXPECT_EQ(
        RandomNormalVariables(values.data(), rows, columns, ParseDouble(a[2]), ParseDouble(a[3]), Integer(a[4])), 0);
    return values;
}

Report Refused(const Row& row) {
    const auto& a = row.arguments;
    double cells[32];
    std::fill(std::begin(cells), std::end(cells), kUntouched);
    double status = -1;
    const std::string printed = Printed([&] {
        if (row.name == "normal_message")
            status = RandomNormalVariable(cells, Integer(a[0]), ParseDouble(a[1]), ParseDouble(a[2]), Integer(a[3]));
        else
            status = RandomNormalVariables(cells, Integer(a[0]), Integer(a[1]), ParseDouble(a[2]), ParseDouble(a[3]),
                                           Integer(a[4]));
    });
    for (double cell : cells) EXPECT_EQ(cell, kUntouched) << row.place;
    return ReadMessages(status, printed);
}

Report IntegerStatus(const Row& row) {
    const RandomStreamHandle live = CreateRandomStream(1);
    const RandomStreamHandle stream = row.arguments[0] == "1" ? live : 0;
    const std::int32_t asked = Integer(row.arguments[1]);
    std::int32_t values[16];
    double status = 0;
    const std::string printed = Printed([&] {
        status = asked == -2 ? RandomUniformInteger(stream, nullptr, 3) : RandomUniformInteger(stream, values, asked);
    });
    EXPECT_EQ(DeleteRandomStream(live), 0);
    return ReadMessages(status, printed);
}

Report DeleteStatus(const Row& row) {
    const RandomStreamHandle stream = row.arguments[0] == "1" ? CreateRandomStream(1) : 0;
    double status = 0;
    const std::string printed = Printed([&] { status = DeleteRandomStream(stream); });
    return ReadMessages(status, printed);
}

Outcome RunRow(const Row& row) {
    const auto& a = row.arguments;
    if (row.name == "words") return {"", "", Words(a), 0, true};
    if (row.name == "RandomUniformInteger") return {"", "", Draws(a, {ParseDouble(a[1])}), 0, true};
    if (row.name == "integer_calls") return {"", "", Draws(a, ParseArray(a[1])), 0, true};
    if (row.name == "RandomNormalVariable") return {"", "", Normal(a), 0, true};
    if (row.name == "RandomNormalVariables") return {"", "", Normals(a), 0, true};
    const Report report = row.name == "integer_status"  ? IntegerStatus(row)
                          : row.name == "delete_status" ? DeleteStatus(row)
                                                        : Refused(row);
    EXPECT_EQ(report.routine, row.text) << row.place;
    return {"", "", {report.status, double(report.messages), double(report.parameter)}, 0, true};
}

TEST(RandomGolden, EveryRowHolds) {
    std::map<std::string, int> seen;
    double worst = 0;
    for (const Row& row : ReadRows(std::string(ORVANTH_TEST_DATA) + "/golden/random.tsv")) {
        double error = 0;
        const std::string wrong = Judge(row, RunRow(row), 0, error);
        EXPECT_TRUE(wrong.empty()) << row.place << ": " << row.name << ": " << wrong;
        worst = std::max(worst, error);
        ++seen[row.name];
    }
    for (const auto& [name, rows] : seen) std::printf("  %4d rows of %s\n", rows, name.c_str());
    std::printf("  worst relative error %.2e\n", worst);
    EXPECT_EQ(seen.size(), 9u);
}

}  // namespace
