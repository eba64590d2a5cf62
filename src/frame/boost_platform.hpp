// Boost's description of this platform, in two things not as Boost would have it; named to Boost by
// BOOST_PLATFORM_CONFIG.
#undef BOOST_PLATFORM_CONFIG
#include <boost/config/detail/select_platform_config.hpp>
#ifdef BOOST_PLATFORM_CONFIG
#include BOOST_PLATFORM_CONFIG
#endif

// Boost.Math takes its own rational form of log1p, whose last digits are the same with every C runtime.
#undef BOOST_HAS_LOG1P

// Tables of factorials and primes become static. As constexpr locals the compiler copies them to the stack in every
// call: 2.7 kB for one factorial, several times in one incomplete beta function.
#ifndef BOOST_NO_CXX11_HDR_ARRAY
#define BOOST_NO_CXX11_HDR_ARRAY
#endif
#define BOOST_MATH_DISABLE_DEPRECATED_03_WARNING  // which it takes for a sign of an old compiler
