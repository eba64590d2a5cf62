#include "random/numeric_mode.hpp"

#include <initializer_list>

#include "frame/platform.hpp"

namespace orvanth {

namespace {

ORVANTH_THREAD_LOCAL std::uint32_t modeOfThread = kDefaultNumericMode;
ORVANTH_THREAD_LOCAL NumericErrorCallback callbackOfThread = nullptr;

}  // namespace

std::uint32_t NumericMode() { return modeOfThread; }

std::uint32_t SetNumericMode(std::uint32_t mode) {
    const std::uint32_t old = modeOfThread;
    for (std::uint32_t field : {kAccuracyField, kErrorField, kFloatingPointField})
        if ((mode & field) != 0) modeOfThread = (modeOfThread & ~field) | (mode & field);
    return old;
}

NumericErrorCallback SetNumericErrorCallback(NumericErrorCallback callback) {
    const NumericErrorCallback old = callbackOfThread;
    callbackOfThread = callback;
    if (callback != nullptr)
        modeOfThread |= kCallbackBit;
    else
        modeOfThread &= ~kCallbackBit;
    return old;
}

double ReportNumericError(std::int32_t code, std::int32_t index, double argument, double result,
                          const char* function) {
    if (callbackOfThread == nullptr || (modeOfThread & kCallbackBit) == 0) return result;
    NumericError error{code, index, argument, 0.0, result, 0.0, function};
    callbackOfThread(&error);
    return error.result1;
}

}  // namespace orvanth
