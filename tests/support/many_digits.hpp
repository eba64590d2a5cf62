// Numbers of many digits, whole numbers and fractions: the judges of results in double. Boost.Multiprecision
// calculates them in a library of its own: its templates take 5 to 10 seconds in each file that includes them.
#ifndef ORVANTH_TESTS_SUPPORT_MANY_DIGITS_HPP
#define ORVANTH_TESTS_SUPPORT_MANY_DIGITS_HPP

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>

namespace orvanth::test {

enum class NumberKind { kDigits50, kBits320, kInteger, kRational };

template <NumberKind kind>
class Number {
public:
    Number();
    Number(double value);
    Number(std::int64_t value);
    Number(std::uint64_t value);
    Number(std::signed_integral auto value) : Number(std::int64_t{value}) {}
    Number(std::unsigned_integral auto value) : Number(std::uint64_t{value}) {}
    Number(const Number& other);
    Number& operator=(const Number& other);
    ~Number();

    Number& operator+=(const Number& b);
    Number& operator-=(const Number& b);
    Number& operator*=(const Number& b);
    // Of integers: cut off towards zero.
    Number& operator/=(const Number& b);

    explicit operator double() const;
    // Cut off towards zero.
    explicit operator std::int64_t() const;
    std::string Text() const;

    // What this file has no type for.
    void* Storage() { return storage_; }
    const void* Storage() const { return storage_; }

    friend Number operator+(Number a, const Number& b) { return a += b; }
    friend Number operator-(Number a, const Number& b) { return a -= b; }
    friend Number operator*(Number a, const Number& b) { return a *= b; }
    friend Number operator/(Number a, const Number& b) { return a /= b; }
    friend Number operator-(const Number& a) { return Number() - a; }
    friend Number abs(const Number& a) { return a < Number() ? -a : a; }

    friend std::partial_ordering operator<=>(const Number& a, const Number& b) { return a.Compare(b); }
    friend bool operator==(const Number& a, const Number& b) {
        return a.Compare(b) == std::partial_ordering::equivalent;
    }

    friend std::ostream& operator<<(std::ostream& stream, const Number& a) { return stream << a.Text(); }

private:
    std::partial_ordering Compare(const Number& b) const;

    alignas(16) std::byte storage_[80];
};

// Floating point, with 50 decimal digits and with 320 bits.
using Wide = Number<NumberKind::kDigits50>;
using Wide320 = Number<NumberKind::kBits320>;
// Exact, of any size.
using Integer = Number<NumberKind::kInteger>;
using Rational = Number<NumberKind::kRational>;

// Wide, Wide320 or Rational.
template <class Target>
Target ConvertTo(const Integer& value);

Wide320 ldexp(const Wide320& x, int exponent);
int ilogb(const Wide320& x);

Integer operator<<(const Integer& a, unsigned bits);
Integer operator>>(const Integer& a, unsigned bits);
Integer pow(const Integer& base, unsigned exponent);

Wide Pi();
Wide sqrt(const Wide& x);
Wide exp(const Wide& x);
Wide log(const Wide& x);
Wide log1p(const Wide& x);
Wide pow(const Wide& base, int exponent);

Wide erf(const Wide& x);
Wide erfc(const Wide& x);
Wide tgamma(const Wide& x);
Wide lgamma(const Wide& x);
Wide beta(const Wide& a, const Wide& b);

// The regularized incomplete functions, their complements and derivatives with respect to x.
Wide GammaP(const Wide& a, const Wide& x);
Wide GammaQ(const Wide& a, const Wide& x);
Wide GammaPDerivative(const Wide& a, const Wide& x);
Wide IncompleteBeta(const Wide& a, const Wide& b, const Wide& x);
Wide IncompleteBetaC(const Wide& a, const Wide& b, const Wide& x);
Wide IncompleteBetaDerivative(const Wide& a, const Wide& b, const Wide& x);

}  // namespace orvanth::test

#endif
