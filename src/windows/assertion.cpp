// A failed assertion of Boost ends the process as abort does, with its line on standard error. The run-time library's
// own assert would open a dialog box in a program with windows and wait there.
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <boost/assert.hpp>

namespace boost {

void assertion_failed(const char* expression, const char* function, const char* file, long line) {
    assertion_failed_msg(expression, "", function, file, line);
}

void assertion_failed_msg(const char* expression, const char* message, const char* function, const char* file,
                          long line) {
    std::fprintf(stderr, "Assertion failed: %s, file %s, line %ld, in %s %s\n", expression, file, line, function,
                 message);
    std::fflush(stderr);
    std::raise(SIGABRT);  // a handler of the host, if there is one; abort itself may open a box before it
    std::_Exit(3);
}

}  // namespace boost
