// The error policies of calls to Boost.Math. What it detects is raised in failure.hpp. Evaluation is in 64-bit
// double.
#ifndef ORVANTH_FRAME_POLICIES_HPP
#define ORVANTH_FRAME_POLICIES_HPP

#include <boost/math/policies/error_handling.hpp>
#include <boost/math/policies/policy.hpp>

#include "frame/failure.hpp"

namespace orvanth {

namespace bmp = boost::math::policies;

// What Boost detects goes to the handlers at the end of this file.
using DefaultPolicy =
    bmp::policy<bmp::domain_error<bmp::user_error>, bmp::pole_error<bmp::user_error>,
                bmp::overflow_error<bmp::user_error>, bmp::underflow_error<bmp::ignore_error>,
                bmp::denorm_error<bmp::ignore_error>, bmp::evaluation_error<bmp::user_error>,
                bmp::rounding_error<bmp::user_error>, bmp::indeterminate_result_error<bmp::ignore_error>,
                bmp::promote_float<true>, bmp::promote_double<false>>;

// For a calculation whose overflow the caller reports under a text of its own: an infinity comes back.
using LateOverflowPolicy = bmp::normalise<DefaultPolicy, bmp::overflow_error<bmp::ignore_error>>::type;

using RoundDownPolicy = bmp::normalise<DefaultPolicy, bmp::discrete_quantile<bmp::integer_round_down>>::type;
using RoundUpPolicy = bmp::normalise<DefaultPolicy, bmp::discrete_quantile<bmp::integer_round_up>>::type;

// The type that Boost's own failure names, which depends on the function that reports it.
const char* TypeNamedBy(const char* function, const char* message);

}  // namespace orvanth

// Where Boost.Math delivers what it detects.
namespace boost::math::policies {

template <class T>
T user_domain_error(const char* function, const char* message, const T& value) {
    return static_cast<T>(
        orvanth::RaiseDomain(function, message, static_cast<double>(value), orvanth::TypeNamedBy(function, message)));
}
template <class T>
T user_pole_error(const char* function, const char* message, const T& value) {
    return user_domain_error(function, message, value);
}
template <class T>
T user_overflow_error(const char* function, const char* message, const T&) {
    return static_cast<T>(orvanth::RaiseOverflow(function, message, orvanth::TypeNamedBy(function, message)));
}
template <class T>
T user_evaluation_error(const char* function, const char* message, const T& value) {
    return static_cast<T>(orvanth::RaiseEvaluation(function, message, static_cast<double>(value),
                                                   orvanth::TypeNamedBy(function, message)));
}
template <class T, class Target>
T user_rounding_error(const char* function, const char* message, const T& value, const Target&) {
    orvanth::RaiseRounding(function, message, static_cast<double>(value), orvanth::TypeNamedBy(function, message));
}

}  // namespace boost::math::policies

#endif
