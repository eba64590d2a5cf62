// Standard output that takes nothing: closed, or on a full device.
#ifndef ORVANTH_TESTS_SUPPORT_BROKEN_OUTPUT_HPP
#define ORVANTH_TESTS_SUPPORT_BROKEN_OUTPUT_HPP

#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

#include <cstdio>

namespace orvanth::test {

// While it is alive file descriptor 1 is broken. Nothing may be printed by the test itself meanwhile.
class BrokenOutput {
public:
    enum State { kClosed, kFull };
    explicit BrokenOutput(State state) : saved_(dup(1)) {
        std::fflush(stdout);
        close(1);
        if (state == kFull && open("/dev/full", O_WRONLY) != 1) std::fputs("no /dev/full\n", stderr);
    }
    ~BrokenOutput() {
        __fpurge(stdout);
        std::clearerr(stdout);
        dup2(saved_, 1);
        close(saved_);
    }
    BrokenOutput(const BrokenOutput&) = delete;
    BrokenOutput& operator=(const BrokenOutput&) = delete;

private:
    int saved_;
};

}  // namespace orvanth::test

#endif
