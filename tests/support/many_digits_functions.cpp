#include <boost/math/constants/constants.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include "support/many_digits_type.hpp"

namespace orvanth::test {

namespace {

using Type = TypeOf<NumberKind::kDigits50>::Type;

Wide Make(const Type& value) { return Wrap<NumberKind::kDigits50>(value); }

}  // namespace

Wide Pi() { return Make(boost::math::constants::pi<Type>()); }
Wide sqrt(const Wide& x) { return Make(sqrt(Of(x))); }
Wide exp(const Wide& x) { return Make(exp(Of(x))); }
Wide log(const Wide& x) { return Make(log(Of(x))); }
Wide log1p(const Wide& x) { return Make(log1p(Of(x))); }
Wide pow(const Wide& base, int exponent) { return Make(pow(Of(base), exponent)); }

Wide erf(const Wide& x) { return Make(boost::math::erf(Of(x))); }
Wide erfc(const Wide& x) { return Make(boost::math::erfc(Of(x))); }
Wide tgamma(const Wide& x) { return Make(boost::math::tgamma(Of(x))); }
Wide lgamma(const Wide& x) { return Make(boost::math::lgamma(Of(x))); }
Wide beta(const Wide& a, const Wide& b) { return Make(boost::math::beta(Of(a), Of(b))); }

Wide GammaP(const Wide& a, const Wide& x) { return Make(boost::math::gamma_p(Of(a), Of(x))); }
Wide GammaQ(const Wide& a, const Wide& x) { return Make(boost::math::gamma_q(Of(a), Of(x))); }
Wide GammaPDerivative(const Wide& a, const Wide& x) { return Make(boost::math::gamma_p_derivative(Of(a), Of(x))); }
Wide IncompleteBeta(const Wide& a, const Wide& b, const Wide& x) {
    return Make(boost::math::ibeta(Of(a), Of(b), Of(x)));
}
Wide IncompleteBetaC(const Wide& a, const Wide& b, const Wide& x) {
    return Make(boost::math::ibetac(Of(a), Of(b), Of(x)));
}
Wide IncompleteBetaDerivative(const Wide& a, const Wide& b, const Wide& x) {
    return Make(boost::math::ibeta_derivative(Of(a), Of(b), Of(x)));
}

}  // namespace orvanth::test
