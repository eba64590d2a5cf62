// Boost's description of this platform with a few changes. BOOST_PLATFORM_CONFIG names this file to Boost.
#undef BOOST_PLATFORM_CONFIG
#include <boost/config/detail/select_platform_config.hpp>
#ifdef BOOST_PLATFORM_CONFIG
#include BOOST_PLATFORM_CONFIG
#endif

// Boost.Math takes its own rational form of log1p, whose last digits are the same with every C runtime.
#undef BOOST_HAS_LOG1P

// Calls inside Boost.Math that name no policy would compute in long double: on Windows in the x87 unit, whose last
// digits follow the precision word of the thread. There they compute in double, and expm1 is that of the C runtime as
// it is on Linux.
#ifdef _WIN32
#ifndef BOOST_HAS_EXPM1
#define BOOST_HAS_EXPM1
#endif
#define BOOST_MATH_PROMOTE_DOUBLE_POLICY false
#endif

// Boost's tables of factorials and primes become static. As constexpr locals they are copied to the stack in every
// call: 2.7 kB for one factorial, several times in one call of the incomplete beta function.
#ifndef BOOST_NO_CXX11_HDR_ARRAY
#define BOOST_NO_CXX11_HDR_ARRAY
#endif
// Boost takes the macro above for a sign of an old compiler and would warn.
#define BOOST_MATH_DISABLE_DEPRECATED_03_WARNING
