#include "random/transforms.hpp"

#include <cmath>
#include <cstdio>

#include "frame/platform.hpp"
#include "random/erf_inv.hpp"

namespace orvanth {

namespace {

constexpr double kRootTwo = 1.4142135623730951;
constexpr double kLogSmallest = -744.4400719213812;  // ln of the smallest positive denormal
constexpr std::uint32_t kCallbackOnly = 0x1000;
constexpr std::uint32_t kDenormalsKept = 0x140000;
constexpr std::int32_t kChunk = 4096;  // numbers that stay in the cache from pass to pass

std::int32_t Reject(const char* routine, std::int32_t parameter, std::int32_t status) {
    ReportBadParameter(routine, parameter);
    return status;
}

// One rounded product, then one rounded sum.
ORVANTH_VECTOR_CLONES
void Scale(std::int32_t n, double* values, double s, double a) {
    for (std::int32_t i = 0; i < n; ++i) values[i] = values[i] * s + a;
}

// The thread's mode and callback while normal variates are made; both stand as before afterwards.
class BoundaryMode {
public:
    BoundaryMode()
        : mode_(SetNumericMode(kCallbackOnly)), callback_(SetNumericErrorCallback(ErfInvBoundaryCallback)) {}
    ~BoundaryMode() {
        SetNumericErrorCallback(callback_);
        SetNumericMode(mode_);
    }
    BoundaryMode(const BoundaryMode&) = delete;
    BoundaryMode& operator=(const BoundaryMode&) = delete;

private:
    std::uint32_t mode_;
    NumericErrorCallback callback_;
};

}  // namespace

std::int32_t ErfInvBoundaryCallback(NumericError* error) {
    double value = error->result1;
    if (error->code == kSingularity)
        value = error->argument1 == 0.0 ? kLogSmallest : std::copysign(kErfInvLargest, error->argument1);
    else if (error->code == kDomainError)
        value = error->result1 < 0.0 ? -kErfInvLargest : kErfInvLargest;
    else
        return 0;
    error->result1 = error->result2 = value;
    return 0;
}

std::int32_t vdRngGaussian(std::int32_t method, RandomStream* stream, std::int32_t n, double* values, double a,
                           double sigma) {
    constexpr const char* routine = "vdRngGaussian";
    if (method < 0) return Reject(routine, 1, kStatusBadArgument);
    if (const std::int32_t status = CheckStream(stream); status != kStatusOk) return Reject(routine, 2, status);
    if (n < 0) return Reject(routine, 3, kStatusBadArgument);
    if (n == 0) return kStatusOk;
    if (values == nullptr) return Reject(routine, 4, kStatusBadArgument);
    if (method >= 3) return Reject(routine, 1, kStatusBadArgument);
    if (sigma <= 0.0) return Reject(routine, 6, kStatusBadArgument);  // a NaN passes, and is the result

    BoundaryMode boundaryMode;
    const double s = kRootTwo * sigma;
    for (std::int32_t done = 0; done < n; done += kChunk) {
        const std::int32_t count = n - done < kChunk ? n - done : kChunk;
        FillUniformDoubles(stream, count, values + done, -1.0, 1.0);
        const std::uint32_t mode = SetNumericMode(kDenormalsKept);
        vdErfInv(count, values + done, values + done);
        SetNumericMode(mode);
        Scale(count, values + done, s, a);
    }
    return kStatusOk;
}

std::int32_t viRngUniform(std::int32_t method, RandomStream* stream, std::int32_t n, std::int32_t* values,
                          std::int32_t a, std::int32_t b) {
    constexpr const char* routine = "viRngUniform";
    if (method < 0) return Reject(routine, 1, kStatusBadArgument);
    if (const std::int32_t status = CheckStream(stream); status != kStatusOk) return Reject(routine, 2, status);
    if (n < 0) return Reject(routine, 3, kStatusBadArgument);
    if (n == 0) return kStatusOk;
    if (values == nullptr) return Reject(routine, 4, kStatusBadArgument);
    if (method > 0) return Reject(routine, 1, kStatusBadArgument);
    if (a >= b) return Reject(routine, 5, kStatusBadArgument);
    FillUniformIntegers(stream, n, values, a, b);
    return kStatusOk;
}

void ReportBadParameter(const char* routine, std::int32_t parameter) {
    std::printf("\nMKL ERROR: Parameter %d was incorrect on entry to %.20s.\n", parameter, routine);
    std::fflush(stdout);
}

}  // namespace orvanth
