// Judges every export by the golden rows, through the shared library as a host loads it. The
// signature table gives each export its runner; a new case is a line in tests/data/golden.
//
// random.tsv and minimiser.jsonl hold forms of use rather than single calls and are judged in
// tests/random and tests/optimise.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "golden/golden_row.hpp"
#include "golden/invoke.hpp"
#include "support/library.hpp"
#include "support/precision_word.hpp"

namespace {

using namespace orvanth::golden;

constexpr const char* kFiles[] = {"special.tsv",    "continuous.tsv",          "discrete.tsv",
                                  "kolmogorov.tsv", "multiple_comparison.tsv", "noncentral_hypergeometric.tsv"};

using Runner = std::function<Outcome(const Row&, int errnoBefore)>;

struct Entry {
    bool present = false;
    Runner run;  // empty where rows cannot write the signature down
};

template <class Function>
Entry MakeEntry(const orvanth::test::Library& library, const char* name, Function linkedIn) {
    Entry entry;
    const auto function = library.Find<Function>(name);
    entry.present = function != nullptr;
    if constexpr (Signature<Function>::kHasRows)
        if (entry.present)
            entry.run = [=](const Row& row, int before) {
                const orvanth::test::PrecisionWord word;
                return Invoke(FunctionFor(row, function, linkedIn), row, before);
            };
    return entry;
}

const orvanth::test::Library& CoreMath() {
    // Another build of the library is judged by naming it in the environment.
    const char* other = std::getenv("ORVANTH_LIBRARY");
    static const orvanth::test::Library library(other != nullptr ? other : ORVANTH_LIBRARY);
    return library;
}

const std::map<std::string, Entry>& Entries() {
    static const std::map<std::string, Entry> entries{
#define EXPORT(folder, name, result, arguments, ...) \
    {#name, MakeEntry<result(*) arguments>(CoreMath(), #name, ORVANTH_FOR_ROWS_THAT_THROW(name))},
#include "frame/exports.def"
#undef EXPORT
    };
    return entries;
}

std::map<std::string, std::vector<Row>> RowsByExport() {
    std::map<std::string, std::vector<Row>> rows;
    for (const char* file : kFiles)
        for (Row& row : ReadRows(std::string(ORVANTH_TEST_DATA) + "/golden/" + file))
            rows[row.name].push_back(std::move(row));
    return rows;
}

class GoldenRows : public testing::Test {
public:
    GoldenRows(std::string name, std::vector<Row> rows) : name_(std::move(name)), rows_(std::move(rows)) {}

    void TestBody() override {
        const auto entry = Entries().find(name_);
        ASSERT_NE(entry, Entries().end()) << name_ << " is no export: correct the row or the signature table";
        if (!entry->second.present) GTEST_SKIP() << "PENDING: " << name_ << " is not built yet";
        ASSERT_TRUE(entry->second.run) << "rows cannot write down the arguments of " << name_;
        double worst = 0;
        const Row* worstRow = &rows_.front();
        for (const Row& row : rows_) {
            for (int errnoBefore : {0, 7}) {  // errno is only ever set, never cleared
                double error = 0;
                const std::string wrong = Judge(row, entry->second.run(row, errnoBefore), errnoBefore, error);
                EXPECT_TRUE(wrong.empty()) << row.place << ": " << name_ << Join(row.arguments) << ": " << wrong;
                if (error > worst) {
                    worst = error;
                    worstRow = &row;
                }
            }
        }
        std::printf("  %zu rows; worst relative error %.2e at %s\n", rows_.size(), worst, worstRow->place.c_str());
    }

private:
    static std::string Join(const std::vector<std::string>& arguments) {
        std::string text;
        for (const std::string& argument : arguments) text += (text.empty() ? "(" : ", ") + argument;
        return text + ")";
    }

    std::string name_;
    std::vector<Row> rows_;
};

TEST(Golden, EveryExportOfTheTableIsBuilt) {
    std::string pending;
    for (const auto& [name, entry] : Entries())
        if (!entry.present) pending += " " + name;
    EXPECT_TRUE(pending.empty()) << "pending:" << pending;
}

TEST(Golden, TheTableHas77Exports) { EXPECT_EQ(Entries().size(), 77u); }

// Rows that fail on purpose: the judge must see a wrong value, class, text and errno.
TEST(Golden, TheJudgeRejectsWhatDiffers) {
    const Row value{"here", "f", {}, false, "1", "0", "", "1e-13"};
    const Row thrown{"here", "f", {}, true, "std::domain_error", "0", "Error *", "exact"};
    double error = 0;
    EXPECT_EQ(Judge(value, {"", "", {1.0}, 7, true}, 7, error), "");
    EXPECT_NE(Judge(value, {"", "", {1.0 + 1e-12}, 0, true}, 0, error), "");
    EXPECT_NE(Judge(value, {"", "", {1.0}, 0, true}, 7, error), "") << "errno was cleared";
    EXPECT_NE(Judge(value, {"", "", {1.0}, 33, true}, 0, error), "") << "errno was set";
    EXPECT_NE(Judge(value, {"std::domain_error", "Error x", {}, 0, true}, 0, error), "");
    EXPECT_EQ(Judge(thrown, {"std::domain_error", "Error x", {}, 0, true}, 0, error), "");
    EXPECT_NE(Judge(thrown, {"std::domain_error", "x", {}, 0, true}, 0, error), "");
    EXPECT_NE(Judge(thrown, {"std::overflow_error", "Error x", {}, 0, true}, 0, error), "");
    EXPECT_NE(Judge(thrown, {"", "", {0.0}, 0, true}, 0, error), "");
    EXPECT_NE(Judge(thrown, {"std::domain_error", "Error x", {}, 0, false}, 0, error), "");
    const Row zero{"here", "f", {}, false, "-0", "0", "", "exact"};
    EXPECT_NE(Judge(zero, {"", "", {0.0}, 0, true}, 0, error), "") << "the sign of zero counts";
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    for (auto& [name, rows] : RowsByExport())
        testing::RegisterTest("GoldenRows", name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [name = name, rows = rows]() -> testing::Test* { return new GoldenRows(name, rows); });
    return orvanth::test::OnAThreadOfTheHost([] { return RUN_ALL_TESTS(); });
}
