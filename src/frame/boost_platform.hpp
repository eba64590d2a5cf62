// Boost's description of this platform with two changes. BOOST_PLATFORM_CONFIG names this file to Boost.
#undef BOOST_PLATFORM_CONFIG
#include <boost/config/detail/select_platform_config.hpp>
#ifdef BOOST_PLATFORM_CONFIG
#include BOOST_PLATFORM_CONFIG
#endif

// Boost.Math takes its own rational form of log1p, whose last digits are the same with every C runtime.
#undef BOOST_HAS_LOG1P

// Boost's tables of factorials and primes become static. As constexpr locals they are copied to the stack in every
// call: 2.7 kB for one factorial, several times in one call of the incomplete beta function.
#ifndef BOOST_NO_CXX11_HDR_ARRAY
#define BOOST_NO_CXX11_HDR_ARRAY
#endif
// Boost takes the macro above for a sign of an old compiler and would warn.
#define BOOST_MATH_DISABLE_DEPRECATED_03_WARNING
