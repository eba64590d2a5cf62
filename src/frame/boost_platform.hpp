// Boost's description of this platform, without the C runtime's log1p: Boost.Math then takes its own rational form,
// whose last digits are the same with every runtime. Named to Boost by BOOST_PLATFORM_CONFIG.
#undef BOOST_PLATFORM_CONFIG
#include <boost/config/detail/select_platform_config.hpp>
#ifdef BOOST_PLATFORM_CONFIG
#include BOOST_PLATFORM_CONFIG
#endif
#undef BOOST_HAS_LOG1P
