// errno of the calling thread, at the price of a load.
#ifndef ORVANTH_FRAME_ERRNO_OF_THREAD_HPP
#define ORVANTH_FRAME_ERRNO_OF_THREAD_HPP

#include <cerrno>

#include "frame/platform.hpp"

namespace orvanth {

#if defined(__ELF__)

// The C library gives the address of errno by a call, which is a good part of the cost of a short export. The address
// holds as long as the thread lives, so each thread asks once.
inline constinit ORVANTH_THREAD_LOCAL int* errnoAddress = nullptr;

[[gnu::cold, gnu::noinline]] inline int* AskErrnoAddress() noexcept { return errnoAddress = &errno; }

inline int& ErrnoOfThread() noexcept {
    int* const address = errnoAddress;
    return address != nullptr ? *address : *AskErrnoAddress();
}

#else

inline int& ErrnoOfThread() noexcept { return errno; }

#endif

}  // namespace orvanth

#endif
