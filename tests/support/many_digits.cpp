#include "support/many_digits.hpp"

#include <memory>

#include "support/many_digits_type.hpp"

namespace orvanth::test {

template <NumberKind kind>
Number<kind>::Number() {
    using Type = typename TypeOf<kind>::Type;
    static_assert(sizeof(Type) <= sizeof storage_ && alignof(Type) <= alignof(Number));
    new (storage_) Type();
}

template <NumberKind kind>
Number<kind>::Number(double value) {
    new (storage_) typename TypeOf<kind>::Type(value);
}

template <NumberKind kind>
Number<kind>::Number(std::int64_t value) {
    new (storage_) typename TypeOf<kind>::Type(value);
}

template <NumberKind kind>
Number<kind>::Number(std::uint64_t value) {
    new (storage_) typename TypeOf<kind>::Type(value);
}

template <NumberKind kind>
Number<kind>::Number(const Number& other) {
    new (storage_) typename TypeOf<kind>::Type(Of(other));
}

template <NumberKind kind>
Number<kind>& Number<kind>::operator=(const Number& other) {
    Of(*this) = Of(other);
    return *this;
}

template <NumberKind kind>
Number<kind>::~Number() {
    std::destroy_at(&Of(*this));
}

template <NumberKind kind>
Number<kind>& Number<kind>::operator+=(const Number& b) {
    Of(*this) += Of(b);
    return *this;
}

template <NumberKind kind>
Number<kind>& Number<kind>::operator-=(const Number& b) {
    Of(*this) -= Of(b);
    return *this;
}

template <NumberKind kind>
Number<kind>& Number<kind>::operator*=(const Number& b) {
    Of(*this) *= Of(b);
    return *this;
}

template <NumberKind kind>
Number<kind>& Number<kind>::operator/=(const Number& b) {
    Of(*this) /= Of(b);
    return *this;
}

template <NumberKind kind>
Number<kind>::operator double() const {
    return static_cast<double>(Of(*this));
}

template <NumberKind kind>
Number<kind>::operator std::int64_t() const {
    return static_cast<std::int64_t>(Of(*this));
}

template <NumberKind kind>
std::string Number<kind>::Text() const {
    return Of(*this).str();
}

template <NumberKind kind>
std::partial_ordering Number<kind>::Compare(const Number& b) const {
    if (Of(*this) < Of(b)) return std::partial_ordering::less;
    if (Of(*this) > Of(b)) return std::partial_ordering::greater;
    if (Of(*this) == Of(b)) return std::partial_ordering::equivalent;
    return std::partial_ordering::unordered;
}

template class Number<NumberKind::kDigits50>;
template class Number<NumberKind::kBits320>;
template class Number<NumberKind::kInteger>;
template class Number<NumberKind::kRational>;

template <>
Wide ConvertTo(const Integer& value) {
    return Wrap<NumberKind::kDigits50>(TypeOf<NumberKind::kDigits50>::Type(Of(value)));
}
template <>
Wide320 ConvertTo(const Integer& value) {
    return Wrap<NumberKind::kBits320>(TypeOf<NumberKind::kBits320>::Type(Of(value)));
}
template <>
Rational ConvertTo(const Integer& value) {
    return Wrap<NumberKind::kRational>(TypeOf<NumberKind::kRational>::Type(Of(value)));
}

Wide320 ldexp(const Wide320& x, int exponent) { return Wrap<NumberKind::kBits320>(ldexp(Of(x), exponent)); }
int ilogb(const Wide320& x) { return static_cast<int>(ilogb(Of(x))); }

Integer operator<<(const Integer& a, unsigned bits) { return Wrap<NumberKind::kInteger>(Of(a) << bits); }
Integer operator>>(const Integer& a, unsigned bits) { return Wrap<NumberKind::kInteger>(Of(a) >> bits); }
Integer pow(const Integer& base, unsigned exponent) { return Wrap<NumberKind::kInteger>(pow(Of(base), exponent)); }

}  // namespace orvanth::test
