// Every form of the shield beside the export itself, on every golden row: the same bits, the same errno, and a
// status and text wherever the row fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <set>

#include "golden/golden_row.hpp"
#include "golden/invoke.hpp"
#include "orvanth/shield.h"
#include "support/precision_word.hpp"

namespace {

using namespace orvanth::golden;

constexpr const char* kFiles[] = {"special.tsv",    "continuous.tsv",          "discrete.tsv",
                                  "kolmogorov.tsv", "multiple_comparison.tsv", "noncentral_hypergeometric.tsv"};

const std::map<std::string, std::vector<Row>>& Rows() {
    static const auto rows = [] {
        std::map<std::string, std::vector<Row>> found;
        for (const char* file : kFiles)
            for (Row& row : ReadRows(std::string(ORVANTH_TEST_DATA) + "/golden/" + file))
                found[row.name].push_back(std::move(row));
        return found;
    }();
    return rows;
}

// All NaNs are one: where the export throws, the shield gives a quiet one.
std::uint64_t Bits(double value) {
    return std::isnan(value) ? 0x7FF8000000000000 : std::bit_cast<std::uint64_t>(value);
}

std::int32_t StatusOf(const std::string& exceptionClass) {
    if (exceptionClass == "std::domain_error") return ORVANTH_STATUS_DOMAIN;
    if (exceptionClass == "std::overflow_error") return ORVANTH_STATUS_OVERFLOW;
    if (exceptionClass == "boost::math::evaluation_error") return ORVANTH_STATUS_EVALUATION;
    if (exceptionClass == "boost::math::rounding_error") return ORVANTH_STATUS_ROUNDING;
    return ORVANTH_STATUS_OTHER;
}

// What the shield is to answer where the export answered `plain`.
void ExpectSafe(const Row& row, const Outcome& plain, const Outcome& safe, int errnoBefore) {
    const std::int32_t status = LastStatus();
    const std::string text = LastErrorText();
    EXPECT_EQ(safe.exceptionClass, "") << row.place;
    if (!plain.exceptionClass.empty()) {
        for (double value : safe.values) EXPECT_TRUE(std::isnan(value)) << row.place;
        EXPECT_EQ(status, StatusOf(plain.exceptionClass)) << row.place;
        EXPECT_EQ(text, plain.text) << row.place;
        EXPECT_EQ(safe.errnoAfter, status == ORVANTH_STATUS_OVERFLOW ? 34 : 33) << row.place;
        return;
    }
    ASSERT_EQ(safe.values.size(), plain.values.size()) << row.place;
    for (std::size_t i = 0; i < plain.values.size(); ++i)
        EXPECT_EQ(Bits(safe.values[i]), Bits(plain.values[i])) << row.place;
    EXPECT_EQ(safe.errnoAfter, plain.errnoAfter) << row.place;
    if (plain.errnoAfter != errnoBefore) {
        EXPECT_EQ(status, plain.errnoAfter == 34 ? ORVANTH_STATUS_OVERFLOW : ORVANTH_STATUS_DOMAIN) << row.place;
        EXPECT_TRUE(text.starts_with(row.name + "(")) << row.place << ": " << text;
    } else if (status != ORVANTH_STATUS_OK) {
        EXPECT_EQ(status, ORVANTH_STATUS_NO_VALUE) << row.place << ": " << text;
    } else {
        EXPECT_EQ(text, "") << row.place;
    }
}

template <class Function>
void CompareSafe(const char* name, Function function, Function safe) {
    if constexpr (Signature<Function>::kHasRows) {
        const auto rows = Rows().find(name);
        ASSERT_NE(rows, Rows().end()) << name << " has no golden row";
        for (const Row& row : rows->second)
            for (int errnoBefore : {0, 7}) {
                const Outcome plain = Invoke(function, row, errnoBefore);
                const orvanth::test::PrecisionWord word;
                const Outcome shielded = Invoke(safe, row, errnoBefore);
                ExpectSafe(row, plain, shielded, errnoBefore);
            }
    }
}

TEST(ShieldGolden, SafeFormsEqualTheExports) {
#define EXPORT(folder, name, result, arguments, failure, threads) \
    CompareSafe<result(*) arguments>(#name, &name, &Safe##name);
#include "frame/exports.def"
#undef EXPORT
}

// The arguments of one row as an array form takes them: each in eight bytes.
struct Cells {
    std::vector<std::uint64_t> words;
    std::vector<double> array;
};

template <class... Arguments>
Cells CellsOf(const Row& row, double (*)(Arguments...)) {
    Cells cells;
    std::size_t at = 0;
    const auto add = [&](auto argument) {
        using Argument = decltype(argument);
        if constexpr (kIsOutput<Argument>) {
            return;
        } else {
            const std::string& text = row.arguments.at(at++);
            if constexpr (std::is_same_v<Argument, double>) {
                cells.words.push_back(std::bit_cast<std::uint64_t>(ParseDouble(text)));
            } else if constexpr (std::is_same_v<Argument, std::int32_t>) {
                cells.words.push_back(static_cast<std::uint64_t>(std::stoll(text)));
            } else {
                cells.array = ParseArray(text);
                cells.words.push_back(0);  // its place is taken by a pointer
            }
        }
    };
    (add(Arguments{}), ...);
    return cells;
}

template <class... Arguments>
Cells CellsOf(const Row& row, void (*)(Arguments...)) {
    return CellsOf(row, static_cast<double (*)(Arguments...)>(nullptr));
}

// A TailFlag of a row that no byte holds is refused by the array forms: that is tested elsewhere.
bool HasWideFlag(const Row& row) {
    return std::any_of(row.arguments.begin(), row.arguments.end(), [](const std::string& text) {
        return text == "256" || text == "257" || text == "512" || text == "-256";
    });
}

using Each = void (*)(char* const*, const intptr_t*, const intptr_t*, EachReport*);

// All rows in one call, each compared with the Safe form; arrays, which differ in length, row by row.
template <class Result, class... Arguments>
void CompareEach(const char* name, Result (*safe)(Arguments...), Each each) {
    constexpr bool hasArray = (std::is_same_v<Arguments, const double*> || ...);
    constexpr std::size_t outputs = (std::is_same_v<Arguments, double*> + ...) + !std::is_void_v<Result>;
    std::vector<Row> rows;
    for (const Row& row : Rows().at(name))
        if (!HasWideFlag(row)) rows.push_back(row);
    std::vector<Cells> cells;
    for (const Row& row : rows) cells.push_back(CellsOf(row, safe));
    const std::size_t inputs = cells.front().words.size();
    const std::size_t batch = hasArray ? 1 : rows.size();
    for (std::size_t first = 0; first < rows.size(); first += batch) {
        std::vector<std::vector<std::uint64_t>> columns(inputs, std::vector<std::uint64_t>(batch));
        std::vector<std::vector<double>> results(outputs, std::vector<double>(batch, kOutputBefore));
        std::vector<char*> pointers;
        std::vector<intptr_t> steps(inputs + outputs, sizeof(double));
        intptr_t dimensions[2] = {static_cast<intptr_t>(batch), 0};
        for (std::size_t j = 0; j < inputs; ++j) {
            for (std::size_t i = 0; i < batch; ++i) columns[j][i] = cells[first + i].words[j];
            pointers.push_back(reinterpret_cast<char*>(columns[j].data()));
        }
        for (auto& result : results) pointers.push_back(reinterpret_cast<char*>(result.data()));
        if constexpr (hasArray) {
            constexpr bool isArray[] = {std::is_same_v<Arguments, const double*>...};
            const auto at = static_cast<std::size_t>(std::find(isArray, std::end(isArray), true) - isArray);
            pointers[at] = reinterpret_cast<char*>(cells[first].array.data());
            dimensions[1] = static_cast<intptr_t>(cells[first].array.size());
            steps.push_back(sizeof(double));
        }
        EachReport report;
        errno = 7;
        each(pointers.data(), dimensions, steps.data(), &report);
        EXPECT_EQ(errno, 7) << name;
        intptr_t failures = 0;
        for (std::size_t i = 0; i < batch; ++i) {
            const Outcome alone = Invoke(safe, rows[first + i], 0);
            for (std::size_t k = 0; k < outputs; ++k)
                // Where a call leaves an out-pointer as it was, the array has a NaN.
                EXPECT_EQ(Bits(results[k][i]), Bits(alone.values[k] == kOutputBefore ? NAN : alone.values[k]))
                    << rows[first + i].place;
            if (LastStatus() != ORVANTH_STATUS_OK && failures++ == 0) {
                EXPECT_EQ(report.first, static_cast<intptr_t>(i)) << rows[first + i].place;
                EXPECT_EQ(report.status, LastStatus()) << rows[first + i].place;
                EXPECT_STREQ(report.text, LastErrorText()) << rows[first + i].place;
            }
        }
        EXPECT_EQ(report.failures, failures) << name;
        if (failures == 0) {
            EXPECT_STREQ(report.text, "") << name;
        }
    }
}

TEST(ShieldGolden, ArrayFormsEqualTheSafeForms) {
#define EACH(name) CompareEach(#name, &Safe##name, &Each##name);
#include "shield/each_forms.inc"
#undef EACH
}

}  // namespace
