// Exports that are promised reentrant give the same bits, errno and texts when several threads call
// them at once. The golden rows serve as arguments; under the thread sanitizer every race shows.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "golden/golden_row.hpp"
#include "golden/invoke.hpp"
#include "support/library.hpp"

namespace {

using namespace orvanth::golden;

constexpr const char* kFiles[] = {"special.tsv",    "continuous.tsv",          "discrete.tsv",
                                  "kolmogorov.tsv", "multiple_comparison.tsv", "noncentral_hypergeometric.tsv"};
constexpr std::size_t kThreads = 4;
constexpr std::size_t kRowsPerExport = 24;

struct Call {
    Row row;
    std::function<Outcome()> run;
};

bool Same(const Outcome& a, const Outcome& b) {
    if (a.exceptionClass != b.exceptionClass || a.text != b.text || a.errnoAfter != b.errnoAfter ||
        a.values.size() != b.values.size())
        return false;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        if (std::bit_cast<std::uint64_t>(a.values[i]) != std::bit_cast<std::uint64_t>(b.values[i])) return false;
    return true;
}

template <class Function>
void AddCalls(const orvanth::test::Library& library, const char* name, const std::vector<Row>& rows,
              std::vector<Call>& calls, Function linkedIn) {
    if constexpr (Signature<Function>::kHasRows) {
        const auto function = library.Find<Function>(name);
        const std::size_t step = rows.size() / kRowsPerExport + 1;
        for (std::size_t i = 0; function != nullptr && i < rows.size(); i += step) {
            const Row row = rows[i];
            calls.push_back({row, [=] { return Invoke(FunctionFor(row, function, linkedIn), row, 0); }});
        }
    }
}

TEST(GoldenThreads, ConcurrentCallsAgreeWithCallsAlone) {
    const orvanth::test::Library library(ORVANTH_LIBRARY);
    std::map<std::string, std::vector<Row>> rows;
    for (const char* file : kFiles)
        for (Row& row : ReadRows(std::string(ORVANTH_TEST_DATA) + "/golden/" + file))
            rows[row.name].push_back(std::move(row));
    std::vector<Call> calls;
#define EXPORT(folder, name, result, arguments, ...) \
    AddCalls<result(*) arguments>(library, #name, rows[#name], calls, ORVANTH_FOR_ROWS_THAT_THROW(name));
#include "frame/exports.def"
#undef EXPORT
    ASSERT_GT(calls.size(), 500u);

    // The threads come first: a table that is filled at first need is then filled in a race.
    std::vector<std::vector<Outcome>> together(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (const Call& call : calls) together[t].push_back(call.run());
        });
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const Outcome alone = calls[i].run();
        for (std::size_t t = 0; t < kThreads; ++t)
            EXPECT_TRUE(Same(together[t][i], alone)) << calls[i].row.place << " in thread " << t;
    }
}

}  // namespace
