// Every argument of the grid u = y 2^-31 - 1 against a reference in twice the digits of a double.
//   erf_inv_grid [step]     each step-th word (default 1: all 2^31 of one sign; the other mirrors them)
//
// The reference is one Newton step from the value under test: with y near erfinv(u) and r the residual
// erf(y) - u, evaluated in long double on the side that does not cancel, the error of y is
// r sqrt(pi)/2 exp(y^2) to second order in itself, which is far below a unit in the last place.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "random/erf_inv.hpp"

namespace {

long double ErrorOf(double y, double u) {
    const long double residual = u > 0.5
                                     ? -(erfcl(static_cast<long double>(y)) - (1.0L - static_cast<long double>(u)))
                                     : erfl(static_cast<long double>(y)) - static_cast<long double>(u);
    return residual * 0.886226925452758013649L * expl(static_cast<long double>(y) * y);
}

}  // namespace

int main(int argc, char** argv) {
    const std::uint64_t step = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1;
    if (step == 0) {
        std::fprintf(stderr, "erf_inv_grid: the step is a whole number of at least 1, not '%s'\n", argv[1]);
        return 2;
    }
    constexpr std::uint64_t kEnd = std::uint64_t{1} << 32;
    double worst = 0, worstAt = 0;
    std::uint64_t done = 0;
    std::vector<double> u, y;
    for (std::uint64_t word = 0x80000001u; word < kEnd;) {
        u.clear();
        for (; word < kEnd && u.size() < 65536; word += step) u.push_back(static_cast<double>(word) * 0x1p-31 - 1.0);
        y.resize(u.size());
        orvanth::ErfInv(u, y.data(), orvanth::kErfInvLargest);
        for (std::size_t i = 0; i < u.size(); ++i) {
            const double ulp = std::nextafter(y[i], 10) - y[i];
            const double error = std::fabs(static_cast<double>(ErrorOf(y[i], u[i]))) / ulp;
            if (error > worst) {
                worst = error;
                worstAt = u[i];
            }
        }
        done += u.size();
        if (done % (65536 * 512) < 65536)
            std::fprintf(stderr, "\r%5.1f %%, worst %.4f ulp",
                         100.0 * static_cast<double>(word - 0x80000000u) / 0x1p31, worst);
    }
    std::printf("\n%llu arguments, worst error %.4f ulp at u = %.17g\n", static_cast<unsigned long long>(done), worst,
                worstAt);
    return worst < 1 ? 0 : 1;
}
