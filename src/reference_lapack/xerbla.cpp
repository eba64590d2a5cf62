// LAPACK's report of a rejected argument, in the form of OpenBLAS: a line on standard output and a return. The
// reference's own XERBLA stops the process.
#include <cstddef>
#include <cstdint>
#include <cstdio>

// NOLINTBEGIN(readability-identifier-naming): the name is the linker's.
extern "C" void xerbla_(const char* routine, const std::int32_t* argument, std::size_t length);

extern "C" void xerbla_(const char* routine, const std::int32_t* argument, std::size_t length) {
    std::printf(" ** On entry to %.*s parameter number %2d had an illegal value\n", static_cast<int>(length), routine,
                static_cast<int>(*argument));
}
// NOLINTEND(readability-identifier-naming)
