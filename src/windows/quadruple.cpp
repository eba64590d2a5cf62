// The Fortran run-time library names these for numbers of quadruple precision, which nothing here prints or reads.
// Without them libquadmath would be linked in, whose licence asks for more than those of the other parts.
#include <cstddef>

// NOLINTBEGIN(readability-identifier-naming): the names are the linker's.
extern "C" {
int quadmath_snprintf(char* text, std::size_t size, const char* format, ...);
__float128 strtoflt128(const char* text, char** end);

int quadmath_snprintf(char* text, std::size_t size, const char*, ...) {
    if (size > 0) *text = '\0';
    return 0;
}

__float128 strtoflt128(const char* text, char** end) {
    if (end != nullptr) *end = const_cast<char*>(text);
    return 0;
}
}
// NOLINTEND(readability-identifier-naming)
