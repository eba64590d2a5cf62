#include "noncentral_hypergeometric/log_factorial.hpp"

#include <array>
#include <atomic>
#include <cmath>

#include "frame/load_state.hpp"

namespace orvanth {

namespace {

// No lock: threads in their first call may all fill the table, and all store the same values.
// Relaxed atomics are plain loads and stores that are allowed to meet.
std::array<std::atomic<double>, kFNCLogFactorialEntries> FNCLogFactorialTable;
std::atomic<std::int32_t> FNCLogFactorialTableReady;

void FillTable() {
    double running = 0.0;
    FNCLogFactorialTable[0].store(0.0, std::memory_order_relaxed);
    for (std::int32_t i = 1; i < kFNCLogFactorialEntries; ++i) {
        running += std::log(i);
        FNCLogFactorialTable[static_cast<std::size_t>(i)].store(running, std::memory_order_relaxed);
    }
    FNCLogFactorialTableReady.store(1, std::memory_order_release);
}

}  // namespace

double FNCLogFactorial(std::int32_t k) {
    if (k >= kFNCLogFactorialEntries) {
        const double x = k;
        const double r = 1.0 / x;
        return std::log(x) * (x + 0.5) - x + 0.9189385332046727 +
               (0.08333333333333333 - r * r * 0.002777777777777778) * r;
    }
    if (k < 2) return k < 0 ? FncInvalidValue : 0.0;
    if (FNCLogFactorialTableReady.load(std::memory_order_acquire) == 0) FillTable();
    return FNCLogFactorialTable[static_cast<std::size_t>(k)].load(std::memory_order_relaxed);
}

bool FNCLogFactorialTableIsReady() { return FNCLogFactorialTableReady.load(std::memory_order_acquire) != 0; }

}  // namespace orvanth
