#include "orvanth/random.h"
#include "random/random_stream.hpp"
#include "random/transforms.hpp"

using namespace orvanth;

namespace {

RandomStream* FromHandle(RandomStreamHandle handle) { return reinterpret_cast<RandomStream*>(handle); }

}  // namespace

ORVANTH_API(RandomStreamHandle) CreateRandomStream(int32_t seed) {
    RandomStream* stream = nullptr;
    vslNewStream(&stream, kMersenneTwister, static_cast<std::uint32_t>(seed));
    return reinterpret_cast<RandomStreamHandle>(stream);
}

ORVANTH_API(int32_t) DeleteRandomStream(RandomStreamHandle stream) {
    RandomStream* copy = FromHandle(stream);  // the host drops its own handle
    return vslDeleteStream(&copy);
}

// Both normal exports make a private stream from the seed and answer 0 whatever happened.

ORVANTH_API(int32_t) RandomNormalVariable(double* values, int32_t count, double mean, double sigma, int32_t seed) {
    RandomStream* stream = nullptr;
    vslNewStream(&stream, kMersenneTwister, static_cast<std::uint32_t>(seed));
    vdRngGaussian(kInverseCdfMethod, stream, count, values, mean, sigma);
    vslDeleteStream(&stream);
    return 0;
}

ORVANTH_API(int32_t)
RandomNormalVariables(double* values, int32_t rows, int32_t columns, double mean, double sigma, int32_t seed) {
    RandomStream* stream = nullptr;
    vslNewStream(&stream, kMersenneTwister, static_cast<std::uint32_t>(seed));
    double* column = values;
    for (int32_t j = 0; j < columns; ++j) {
        vdRngGaussian(kInverseCdfMethod, stream, rows, column, mean, sigma);
        if (rows > 0 && column != nullptr) column += rows;
    }
    vslDeleteStream(&stream);
    return 0;
}

// The count is both the number of draws and the exclusive upper bound: an index vector.
ORVANTH_API(int32_t) RandomUniformInteger(RandomStreamHandle stream, int32_t* values, int32_t count) {
    return viRngUniform(kUniformMethod, FromHandle(stream), count, values, 0, count);
}
