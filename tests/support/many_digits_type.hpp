// The types of Boost.Multiprecision behind many_digits.hpp, for its own two sources.
#ifndef ORVANTH_TESTS_SUPPORT_MANY_DIGITS_TYPE_HPP
#define ORVANTH_TESTS_SUPPORT_MANY_DIGITS_TYPE_HPP

#include <new>

#include <boost/multiprecision/cpp_bin_float.hpp>
#include <boost/multiprecision/cpp_int.hpp>

#include "support/many_digits.hpp"

namespace orvanth::test {

namespace bmp = boost::multiprecision;

// Without expression templates, which take longer to compile.
template <NumberKind kind>
struct TypeOf;
template <>
struct TypeOf<NumberKind::kDigits50> {
    using Type = bmp::number<bmp::cpp_bin_float<50>, bmp::et_off>;
};
template <>
struct TypeOf<NumberKind::kBits320> {
    using Type = bmp::number<bmp::cpp_bin_float<320, bmp::digit_base_2>, bmp::et_off>;
};
template <>
struct TypeOf<NumberKind::kInteger> {
    using Type = bmp::number<bmp::cpp_int_backend<>, bmp::et_off>;
};
template <>
struct TypeOf<NumberKind::kRational> {
    using Type = bmp::number<bmp::rational_adaptor<bmp::cpp_int_backend<>>, bmp::et_off>;
};

template <NumberKind kind>
typename TypeOf<kind>::Type& Of(Number<kind>& number) {
    return *std::launder(static_cast<typename TypeOf<kind>::Type*>(number.Storage()));
}
template <NumberKind kind>
const typename TypeOf<kind>::Type& Of(const Number<kind>& number) {
    return *std::launder(static_cast<const typename TypeOf<kind>::Type*>(number.Storage()));
}

template <NumberKind kind>
Number<kind> Wrap(const typename TypeOf<kind>::Type& value) {
    Number<kind> result;
    Of(result) = value;
    return result;
}

}  // namespace orvanth::test

#endif
