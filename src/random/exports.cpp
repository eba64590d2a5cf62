#include <cstddef>
#include <new>

#include "frame/failure.hpp"
#include "orvanth/random.h"
#include "random/bad_parameter.hpp"
#include "random/mersenne_twister.hpp"
#include "random/normal_variates.hpp"
#include "random/random_stream.hpp"

// No outcome of these exports is noted in errno. Their Silent objects drop what the allocator and the output of a
// message store there.

using namespace orvanth;

namespace {

// A handle is an address, as an integer of pointer width.
// NOLINTNEXTLINE(performance-no-int-to-ptr)
RandomStream* FromHandle(RandomStreamHandle handle) { return reinterpret_cast<RandomStream*>(handle); }

std::int32_t Reject(const char* routine, std::int32_t parameter, std::int32_t status) {
    ReportBadParameter(routine, parameter);
    return status;
}

// The parameter that a message has to name, or 0. A count of 0 passes whatever the other arguments are. A NaN sigma
// passes, and every variate is then NaN.
std::int32_t BadNormalParameter(std::int32_t count, const double* values, double sigma) {
    if (count < 0) return 3;
    if (count == 0) return 0;
    if (values == nullptr) return 4;
    if (sigma <= 0.0) return 6;
    return 0;
}

}  // namespace

ORVANTH_API(RandomStreamHandle) CreateRandomStream(int32_t seed) {
    Silent silent;
    return reinterpret_cast<RandomStreamHandle>(new (std::nothrow) RandomStream(static_cast<std::uint32_t>(seed)));
}

ORVANTH_API(int32_t) DeleteRandomStream(RandomStreamHandle stream) {
    Silent silent;
    const std::int32_t status = CheckStream(FromHandle(stream));
    if (status != kStatusOk) return Reject(kDeleteRoutine, 1, status);
    delete FromHandle(stream);
    return kStatusOk;
}

// Both normal exports return 0 whatever happened: the message is all that tells.

ORVANTH_API(int32_t) RandomNormalVariable(double* values, int32_t count, double mean, double sigma, int32_t seed) {
    return RandomNormalVariables(values, count, 1, mean, sigma, seed);
}

// The columns follow one another in memory and in the stream, so they are filled as one array. A bad argument is
// reported once for each column.
ORVANTH_API(int32_t)
RandomNormalVariables(double* values, int32_t rows, int32_t columns, double mean, double sigma, int32_t seed) {
    Silent silent;
    if (const std::int32_t parameter = BadNormalParameter(rows, values, sigma); parameter != 0)
        for (std::int32_t j = 0; j < columns; ++j) ReportBadParameter(kNormalRoutine, parameter);
    else if (rows > 0 && columns > 0) {
        MersenneTwister twister(static_cast<std::uint32_t>(seed));
        const std::size_t count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
        FillNormalVariates(twister, {values, count}, mean, sigma);
    }
    return 0;
}

// The count is both the number of draws and the exclusive upper bound: the result is an index vector.
ORVANTH_API(int32_t) RandomUniformInteger(RandomStreamHandle stream, int32_t* values, int32_t count) {
    Silent silent;
    if (const std::int32_t status = CheckStream(FromHandle(stream)); status != kStatusOk)
        return Reject(kIntegerRoutine, 2, status);
    if (count < 0) return Reject(kIntegerRoutine, 3, kStatusBadArgument);
    if (count == 0) return kStatusOk;
    if (values == nullptr) return Reject(kIntegerRoutine, 4, kStatusBadArgument);
    FillUniformIntegers(FromHandle(stream)->twister, {values, static_cast<std::size_t>(count)}, count);
    return kStatusOk;
}
