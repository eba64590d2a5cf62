// What a call did: value, errno, exception class and text, in one object for one EXPECT.
#ifndef ORVANTH_TESTS_SUPPORT_CALL_HPP
#define ORVANTH_TESTS_SUPPORT_CALL_HPP

#include <cerrno>
#include <exception>
#include <string>

namespace orvanth::test {

struct Returned {
    double value;
    int errnoAfter;
};

// The call's result with errno as it was before the call set to `before`.
template <class Function>
Returned CallWithErrno(int before, Function function) {
    errno = before;
    const double value = function();
    return {value, errno};
}

// The text of the Error thrown, "" if nothing was thrown; any other exception passes on.
template <class Error, class Function>
std::string ThrownText(Function function) {
    try {
        function();
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

}  // namespace orvanth::test

#endif
