// How much of the heap calls leave behind. The sanitizers' allocators do not tell, and bring checks of their own;
// nor does the heap of Windows.
#ifndef ORVANTH_TESTS_SUPPORT_HEAP_HPP
#define ORVANTH_TESTS_SUPPORT_HEAP_HPP

#if !defined(ORVANTH_ADDRESS_SANITIZER) && !defined(__SANITIZE_THREAD__) && !defined(_WIN32)
#define ORVANTH_HEAP_IS_PLAIN

#include <malloc.h>

#include <cstddef>

namespace orvanth::test {

// What a thousand calls add to the bytes in use, after a few that fill the heap's own caches.
template <class Function>
long HeapGrowth(Function call) {
    for (int i = 0; i < 50; ++i) call();
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i) call();
    return static_cast<long>(mallinfo2().uordblks) - static_cast<long>(before);
}

}  // namespace orvanth::test

#endif
#endif
