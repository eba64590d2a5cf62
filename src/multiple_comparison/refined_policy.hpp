// The refined forms test their arguments before anything is computed. What Boost.Math could still
// detect, such as an underflow, is ignored: the value reached is returned.
#ifndef ORVANTH_MULTIPLE_COMPARISON_REFINED_POLICY_HPP
#define ORVANTH_MULTIPLE_COMPARISON_REFINED_POLICY_HPP

#include <boost/math/policies/policy.hpp>

namespace orvanth {

using RefinedPolicy = boost::math::policies::policy<
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::pole_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::underflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::denorm_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>,
    boost::math::policies::rounding_error<boost::math::policies::ignore_error>,
    boost::math::policies::indeterminate_result_error<boost::math::policies::ignore_error>,
    boost::math::policies::promote_float<true>, boost::math::policies::promote_double<false>>;

}  // namespace orvanth

#endif
