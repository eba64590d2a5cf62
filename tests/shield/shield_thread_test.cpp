// Several threads: failures belong to the thread, the shared workspace is locked, handles serve one call at a time.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

#include "orvanth/core_math.h"
#include "orvanth/shield.h"

namespace {

#if defined(__SANITIZE_THREAD__) || defined(ORVANTH_ADDRESS_SANITIZER)
constexpr int kRounds = 200, kLeastSquaresCalls = 200;
#else
constexpr int kRounds = 2500, kLeastSquaresCalls = 25000;
#endif

template <class Work>
void InThreads(int count, Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

TEST(ShieldThreads, TenThousandFailuresKeepToTheirThreads) {
    std::atomic<int> wrong = 0;
    InThreads(4, [&](int thread) {
        const double bad = -1 - thread;
        const std::string end = "(got a=" + std::to_string(static_cast<int>(bad)) + ").";
        for (int i = 0; i < kRounds; ++i) {
            const bool isNaN = std::isnan(SafeBeta(bad, 1));
            std::this_thread::yield();
            if (!isNaN || LastStatus() != ORVANTH_STATUS_DOMAIN || !std::string(LastErrorText()).ends_with(end))
                ++wrong;
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(LastStatus(), ORVANTH_STATUS_OK) << "and not to this one";
}

std::vector<double> Solution(int seed) {
    std::vector<double> a(200 * 5), b(200);
    for (std::size_t i = 0; i < a.size(); ++i) a[i] = std::sin(1.3 * static_cast<double>(i) + seed);
    for (std::size_t i = 0; i < b.size(); ++i) b[i] = std::cos(0.7 * static_cast<double>(i));
    const MatrixDescriptor shape{0, 200, 200, 5}, column{0, 200, 200, 1};
    if (SafeLS(a.data(), &shape, b.data(), &column) != 0) b.clear();
    b.resize(5);
    return b;
}

TEST(ShieldThreads, EachThreadHasAStatusAddressOfItsOwn) {
    const std::int32_t* const here = LastStatusAddress();
    SafeErf(0.5);
    std::atomic<int> wrong = 0;
    InThreads(4, [&](int) {
        const std::int32_t* const own = LastStatusAddress();
        if (own == here) ++wrong;
        for (int i = 0; i < kRounds; ++i) {
            SafeNormalCDF(0, 0, i % 2 == 0 ? 1 : -1, 0);
            if (*own != LastStatus() || *own != (i % 2 == 0 ? ORVANTH_STATUS_OK : ORVANTH_STATUS_DOMAIN)) ++wrong;
        }
        if (LastStatusAddress() != own) ++wrong;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(*here, ORVANTH_STATUS_OK);
}

TEST(ShieldThreads, LeastSquaresFromManyThreadsAreRightEveryTime) {
    const std::vector<double> want[] = {Solution(0), Solution(1), Solution(2), Solution(3)};
    std::atomic<int> wrong = 0;
    InThreads(4, [&](int thread) {
        for (int i = 0; i < kLeastSquaresCalls; ++i)
            if (Solution(thread) != want[thread]) ++wrong;
    });
    EXPECT_EQ(wrong, 0);
}

// Rosenbrock's function in a chain.
double Valley(const std::vector<double>& x, std::vector<double>& g) {
    double f = 0;
    std::fill(g.begin(), g.end(), 0.0);
    for (std::size_t i = 0; i + 1 < x.size(); ++i) {
        const double s = x[i + 1] - x[i] * x[i], t = 1 - x[i];
        f += 100 * s * s + t * t;
        g[i] += -400 * x[i] * s - 2 * t;
        g[i + 1] += 200 * s;
    }
    return f;
}

std::vector<double> Minimum(int seed) {
    const std::int32_t n = 10 + seed;
    std::vector<double> x(static_cast<std::size_t>(n), -1.2), g(x.size()), low(x.size(), -5), high(x.size(), 5);
    const std::vector<std::int32_t> kinds(x.size(), 2);
    LBFGSBDriverState* state = SafeLBFGSBStart(n, 5, low.data(), high.data(), kinds.data(), 10, 1e-8);
    double f = 0;
    for (std::int32_t code = 1; code == 1 || code == 2;) {
        code = SafeLBFGSBStep(state, x.data(), &f, g.data());
        if (code == 1) f = Valley(x, g);
    }
    SafeLBFGSBEnd(state);
    x.push_back(f);
    return x;
}

// No lock is taken here: the minimiser keeps everything in its state.
TEST(ShieldThreads, EightMinimisationsOnStatesOfTheirOwn) {
    std::vector<std::vector<double>> want;
    for (int i = 0; i < 8; ++i) want.push_back(Minimum(i));
    std::atomic<int> wrong = 0;
    InThreads(8, [&](int thread) {
        for (int i = 0; i < kRounds / 50; ++i)
            if (Minimum(thread) != want[static_cast<std::size_t>(thread)]) ++wrong;
    });
    EXPECT_EQ(wrong, 0);
}

TEST(ShieldThreads, AStreamInUseElsewhereIsRefusedAndStaysWhole) {
    const RandomStreamHandle stream = SafeCreateRandomStream(3);
    std::atomic<int> drawn = 0, refused = 0, other = 0;
    InThreads(4, [&](int) {
        std::int32_t values[64];
        for (int i = 0; i < kRounds; ++i) {
            const std::int32_t status = SafeRandomUniformInteger(stream, values, 64);
            if (status == 0)
                ++drawn;
            else if (status == ORVANTH_REFUSED - 1 && LastStatus() == ORVANTH_STATUS_NOT_REENTRANT)
                ++refused;
            else
                ++other;
        }
    });
    EXPECT_EQ(other, 0);
    EXPECT_EQ(drawn + refused, 4 * kRounds);
    // Exactly the calls that were answered have moved the stream on.
    const RandomStreamHandle alone = SafeCreateRandomStream(3);
    std::int32_t values[64], next[64];
    for (int i = 0; i < drawn; ++i) SafeRandomUniformInteger(alone, values, 64);
    EXPECT_EQ(SafeRandomUniformInteger(alone, values, 64), 0);
    EXPECT_EQ(SafeRandomUniformInteger(stream, next, 64), 0);
    EXPECT_EQ(std::memcmp(values, next, sizeof values), 0);
    SafeDeleteRandomStream(alone);
    SafeDeleteRandomStream(stream);
}

TEST(ShieldThreads, OfManyDeletionsOneSucceeds) {
    for (int round = 0; round < kRounds / 25; ++round) {
        const RandomStreamHandle stream = SafeCreateRandomStream(round);
        std::atomic<int> deleted = 0;
        InThreads(3, [&](int) { deleted += SafeDeleteRandomStream(stream) == 0; });
        EXPECT_EQ(deleted, 1);
    }
}

}  // namespace
