#include "random/bad_parameter.hpp"

#include <cstdio>

namespace orvanth {

void ReportBadParameter(const char* routine, std::int32_t parameter) {
    std::printf("\nMKL ERROR: Parameter %d was incorrect on entry to %.20s.\n", parameter, routine);
    std::fflush(stdout);
}

}  // namespace orvanth
