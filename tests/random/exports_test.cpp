// The five exports as a host meets them: order of the checks, statuses, messages, errno, memory.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "orvanth/random.h"
#include "random/bad_parameter.hpp"
#include "random/random_stream.hpp"
#include "streams.hpp"
#if !defined(_WIN32)
#include "support/broken_output.hpp"
#endif
#include "support/controlled_new.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

constexpr double kUntouched = -77.25;
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

// What RandomNormalVariable prints; the result is always 0 and the array untouched.
std::string NormalRefusal(double* values, std::int32_t count, double sigma) {
    return Printed([&] { EXPECT_EQ(RandomNormalVariable(values, count, 0, sigma, 1), 0); });
}

TEST(RandomNormalVariable, ReportsTheFirstBadParameterOfCountValuesAndSigma) {
    double z[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    EXPECT_EQ(NormalRefusal(nullptr, -1, 0), Message(3, "vdRngGaussian"));
    EXPECT_EQ(NormalRefusal(nullptr, 0, 0), "");
    EXPECT_EQ(NormalRefusal(nullptr, 1, 0), Message(4, "vdRngGaussian"));
    EXPECT_EQ(NormalRefusal(z, 4, 0), Message(6, "vdRngGaussian"));
    EXPECT_EQ(NormalRefusal(z, 4, -1e-300), Message(6, "vdRngGaussian"));
    for (const double value : z) EXPECT_EQ(value, kUntouched);
}

TEST(RandomNormalVariables, ReportsABadParameterOnceForEachColumn) {
    const auto refusal = [](double* values, std::int32_t rows, std::int32_t columns, double sigma) {
        return Printed([&] { EXPECT_EQ(RandomNormalVariables(values, rows, columns, 0, sigma, 1), 0); });
    };
    double z[6] = {kUntouched, kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};
    const auto three = [](int parameter) {
        const std::string one = Message(parameter, "vdRngGaussian");
        return one + one + one;
    };
    EXPECT_EQ(refusal(z, -1, 3, 0), three(3));
    EXPECT_EQ(refusal(nullptr, 2, 3, 0), three(4));
    EXPECT_EQ(refusal(z, 2, 3, 0), three(6));
    for (const std::int32_t columns : {0, -1, std::numeric_limits<std::int32_t>::min()})
        EXPECT_EQ(refusal(nullptr, -1, columns, 0), "") << columns;
    for (const double value : z) EXPECT_EQ(value, kUntouched);
}

// A thousand calls that go through the columns one by one would take hours and end by the time limit of the test.
TEST(RandomNormalVariables, WithoutRowsTheNumberOfColumnsCostsNothing) {
    double untouched = kUntouched;
    EXPECT_EQ(Printed([&] {
                  for (int i = 0; i < 1000; ++i)
                      EXPECT_EQ(RandomNormalVariables(i % 2 == 0 ? &untouched : nullptr, 0, kMost, 0, -1, 1), 0);
              }),
              "");
    EXPECT_EQ(untouched, kUntouched);
}

TEST(RandomNormalVariable, TakesNothingFromTheHeap) {
    double whole[1000], starved[1000] = {}, columns[1000] = {};
    RandomNormalVariable(whole, 1000, 0, 1, 3);
    const std::string printed = Printed([&] {
        const NewFailsAfter heap(0);
        RandomNormalVariable(starved, 1000, 0, 1, 3);
        RandomNormalVariables(columns, 250, 4, 0, 1, 3);
    });
    EXPECT_EQ(printed, "");
    EXPECT_EQ(std::memcmp(whole, starved, sizeof whole), 0);
    EXPECT_EQ(std::memcmp(whole, columns, sizeof whole), 0);
}

TEST(CreateRandomStream, WithoutMemoryIsZeroWithoutAMessageAndLeavesErrno) {
    RandomStreamHandle stream = 1;
    int errnoAfter = 0;
    const std::string printed = Printed([&] {
        const NewFailsAfter heap(0);
        errno = 7;
        stream = CreateRandomStream(1);
        errnoAfter = errno;
    });
    EXPECT_EQ(stream, RandomStreamHandle{0});
    EXPECT_EQ(errnoAfter, 7);
    EXPECT_EQ(printed, "");
}

TEST(RandomUniformInteger, ReportsTheFirstBadParameterOfStreamCountAndValues) {
    const RandomStreamHandle live = CreateRandomStream(1);
    std::int32_t v[4] = {-9, -9, -9, -9};
    const auto refused = [&](RandomStreamHandle stream, std::int32_t* values, std::int32_t count) {
        std::int32_t status = 0;
        const std::string text = Printed([&] { status = RandomUniformInteger(stream, values, count); });
        return std::to_string(status) + text;
    };
    EXPECT_EQ(refused(0, nullptr, -1), "-5" + Message(2, "viRngUniform"));
    EXPECT_EQ(refused(live, nullptr, -1), "-3" + Message(3, "viRngUniform"));
    EXPECT_EQ(refused(live, nullptr, 0), "0");
    EXPECT_EQ(refused(live, nullptr, 1), "-3" + Message(4, "viRngUniform"));
    EXPECT_EQ(refused(live, v, std::numeric_limits<std::int32_t>::min()), "-3" + Message(3, "viRngUniform"));
    EXPECT_EQ(v[0], -9);
    EXPECT_EQ(refused(live, v, 4), "0");
    std::int32_t fresh[4];
    const RandomStreamHandle other = CreateRandomStream(1);
    RandomUniformInteger(other, fresh, 4);
    EXPECT_EQ(std::memcmp(v, fresh, sizeof v), 0) << "the refused calls took no word";
    DeleteRandomStream(other);
    DeleteRandomStream(live);
}

TEST(DeleteRandomStream, ReportsAHandleOfZero) {
    EXPECT_EQ(Printed([] { EXPECT_EQ(DeleteRandomStream(0), -5); }), Message(1, "vslDeleteStream"));
}

// The byte at offset 4 decides, in memory of any origin.
TEST(RandomStream, AMarkerByteThatIsNotOneIsNoStream) {
    alignas(64) unsigned char memory[sizeof(RandomStream)];
    for (const int marker : {0, 2, 255}) {
        std::memset(memory, 1, sizeof memory);
        memory[4] = static_cast<unsigned char>(marker);
        const auto handle = reinterpret_cast<RandomStreamHandle>(memory);
        std::int32_t values[2] = {-9, -9};
        EXPECT_EQ(Printed([&] { EXPECT_EQ(RandomUniformInteger(handle, values, 2), -1006); }),
                  Message(2, "viRngUniform"));
        EXPECT_EQ(Printed([&] { EXPECT_EQ(DeleteRandomStream(handle), -1006); }), Message(1, "vslDeleteStream"));
        EXPECT_EQ(values[0], -9);
        for (std::size_t i = 0; i < sizeof memory; ++i) EXPECT_EQ(memory[i], i == 4 ? marker : 1) << i;
    }
}

TEST(RandomStream, RecordsAreAlignedToSixtyFourBytes) {
    for (int i = 0; i < 20; ++i) {
        const RandomStreamHandle stream = CreateRandomStream(i);
        EXPECT_EQ(static_cast<std::uintptr_t>(stream) % 64, 0u);
        EXPECT_EQ(DeleteRandomStream(stream), 0);
    }
}

TEST(RandomStream, ThousandsAreMadeAndDeletedAndNoneStaysAllocated) {
    const long before = LiveBlocks();
    for (std::int32_t i = 0; i < 5000; ++i) {
        std::int32_t values[3];
        const RandomStreamHandle stream = CreateRandomStream(i);
        EXPECT_EQ(RandomUniformInteger(stream, values, 3), 0);
        EXPECT_EQ(DeleteRandomStream(stream), 0);
    }
    EXPECT_EQ(LiveBlocks(), before);
}

TEST(RandomStream, ANegativeSeedIsItsBitPattern) {
    std::int32_t drawn[20], made[20];
    const RandomStreamHandle stream = CreateRandomStream(-7);
    RandomUniformInteger(stream, drawn, 20);
    DeleteRandomStream(stream);
    MersenneTwister twister(0xfffffff9u);
    FillUniformIntegers(twister, made, 20);
    EXPECT_EQ(std::memcmp(drawn, made, sizeof drawn), 0);
}

#if !defined(_WIN32)  // which has no device that is always full
TEST(RandomMessages, LeaveErrnoWhereStandardOutputTakesNothing) {
    const RandomStreamHandle live = CreateRandomStream(1);
    double z = 0;
    for (const auto state : {BrokenOutput::kClosed, BrokenOutput::kFull})
        for (const int before : {0, 7}) {
            std::vector<int> after;
            const auto note = [&](auto call) {
                errno = before;
                call();
                after.push_back(errno);
            };
            {
                const BrokenOutput output(state);
                note([&] { RandomNormalVariable(&z, -1, 0, 1, 1); });
                note([&] { RandomNormalVariables(&z, 1, 2, 0, 0, 1); });
                note([&] { DeleteRandomStream(0); });
                note([&] { RandomUniformInteger(live, nullptr, 1); });
            }
            EXPECT_EQ(after, std::vector<int>(4, before));
        }
    DeleteRandomStream(live);
}
#endif

}  // namespace
