// What may never happen, by the rules that the manual gives for every export.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <xmmintrin.h>

#include "fuzz/call.hpp"

namespace orvanth::fuzz {
namespace {

bool IsDomain(int code) { return code == 33; }
bool IsRange(int code) { return code == 34; }

std::string JudgeErrno(const Export& which, const Call& call, const Outcome& outcome) {
    if (outcome.errnoAfter == call.errnoBefore) return {};
    const bool told = (which.documented.errno33 && IsDomain(outcome.errnoAfter)) ||
                      (which.documented.errno34 && IsRange(outcome.errnoAfter));
    return told ? "" : "an errno that is not documented";
}

std::string JudgeException(const Export& which, const Outcome& outcome) {
    if (outcome.exceptionClass.empty()) return {};
    if (outcome.exceptionClass == "std::bad_alloc")
        return which.documented.memory ? "" : "no memory, though the manual says that none is needed";
    if (!outcome.text.starts_with("Error in function ")) return "a text that does not begin as all do";
    bool classTold = false;
    for (const DocumentedText& told : which.documented.texts) {
        if (outcome.exceptionClass != told.exceptionClass) continue;
        classTold = true;
        std::size_t at = 0;
        for (const char* piece : told.pieces) {
            if (at != std::string::npos) at = outcome.text.find(piece, at);
            if (at != std::string::npos) at += std::strlen(piece);
        }
        if (at != std::string::npos) return {};
    }
    return classTold ? "a text that is not documented" : "an exception class that is not documented";
}

std::string JudgeStatus(const Export& which, const Outcome& outcome) {
    if (which.result != "int32_t") return {};
    const auto status = static_cast<std::int64_t>(outcome.result);
    const auto& told = which.documented.statuses;
    if (status == 0 || std::find(told.begin(), told.end(), status) != told.end()) return {};
    if (status > 0 && which.documented.positiveStatus) return {};
    return "a status that is not documented";
}

// Values that stand for "no result".
bool IsReserved(const Export& which, double value) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const auto isOf = [&](const char* name, double reserved) {
        return std::strcmp(name, which.name) == 0 &&
               (value == reserved || (std::isnan(value) && std::isnan(reserved)));
    };
#define RESERVED(name, reserved, words) \
    if (isOf(#name, reserved)) return true;
#include "shield/shield.def"
    return false;
}

// How far outside [0, 1] the manual lets a probability be; nothing where the statistic has no probability.
double Slack(const Export& which, const Call& call) {
    const std::string name = which.name;
    const bool plain = name.ends_with("CDF") && !name.ends_with("ICDF");
    if (name == "GammaRegularized" || name == "GammaRegularizedC" || name == "BetaRegularized" ||
        name == "BetaRegularizedC" || name == "HypergeometricPDF")
        return 0;
    if (!plain) return std::numeric_limits<double>::infinity();
    if (name == "KolmogorovCDF") return 1e-5;          // the series is not clamped; its error is 3e-5 relative
    if (name == "FNCHypergeometricCDF") return 4e-16;  // "1 within rounding"
    if (!name.starts_with("MC")) return 0;
    // Below 0 the two-sided forms are powers and products of negative numbers. A few degrees of freedom are too few
    // for the rule over the scale.
    const double x = AsDouble(call.words[0]), df = AsDouble(call.words[2]);
    if ((x < 0 && name != "MCbCDF") || name == "MCaCDF" || df < 1) return std::numeric_limits<double>::infinity();
    return 5e-3;
}

// Where the manual gives a NaN to arguments that hold none, and no mark.
bool NaNIsDocumented(const Export& which, const Call& call) {
    const std::string name = which.name;
    const auto d = [&](std::size_t at) { return AsDouble(call.words[at]); };
    if (name == "Gamma") return d(0) < 0 || d(0) > 171;
    if (name.starts_with("GammaRegularized") || name.starts_with("BetaRegularized") || name.ends_with("Derivative"))
        return std::isinf(d(0)) && std::isinf(d(1));
    if (name == "LogXplus1") return std::isinf(d(0));
    if (name == "KolmogorovCDF") return d(1) <= -1 || d(1) >= 2147483648.0;
    return false;
}

// Where the manual gives an infinity without a mark.
bool InfinityIsDocumented(const Export& which, const Call& call) {
    const std::string name = which.name;
    if (name == "Gamma") return AsDouble(call.words[0]) == 0;
    if (name == "FisherFICDF") return true;  // where the complement of the inverse beta function underflows
    return name == "NormalICDF" || name == "GammaICDF" || name == "ChiSquaredICDF";  // beyond the largest double
}

bool HasNaNArgument(const Export& which, const Call& call) {
    for (std::size_t i = 0; i < which.parameters.size(); ++i)
        if (which.parameters[i].type == "double" && std::isnan(AsDouble(call.words[i]))) return true;
    return false;
}

std::string JudgeValue(const Export& which, const Call& call, const Outcome& outcome) {
    if (which.result != "double" || !outcome.exceptionClass.empty() || which.failure == "Status") return {};
    const double value = AsDouble(outcome.result);
    if (which.Find("descriptor") >= 0 || IsReserved(which, value)) return {};
    const double slack = Slack(which, call);
    if (value < -slack || value > 1 + slack) return "a probability outside [0, 1]";
    const bool marked =
        outcome.errnoAfter != call.errnoBefore || IsDomain(call.errnoBefore) || IsRange(call.errnoBefore);
    if (std::isnan(value) && !marked && !HasNaNArgument(which, call) && !NaNIsDocumented(which, call))
        return "a NaN without a mark";
    if (std::isinf(value) && which.failure == "Throws") return "an infinity from an export that throws";
    if (std::isinf(value) && !marked && !InfinityIsDocumented(which, call)) return "an infinity without a mark";
    return {};
}

}  // namespace

std::string Judge(const Export& which, const Call& call, const Outcome& outcome) {
    // The control bits of the floating-point unit: rounding, masks, no flush to zero.
    if ((_mm_getcsr() & 0xFFC0u) != 0x1F80u) {
        _mm_setcsr(0x1F80);
        return "the mode of the floating-point unit changed";
    }
    for (const std::string& fault :
         {outcome.violation, JudgeErrno(which, call, outcome), JudgeException(which, outcome),
          JudgeStatus(which, outcome), JudgeValue(which, call, outcome)})
        if (!fault.empty()) return fault;
    return {};
}

}  // namespace orvanth::fuzz
