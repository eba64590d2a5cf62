// What differs between platforms, and nothing else.
#ifndef ORVANTH_FRAME_PLATFORM_HPP
#define ORVANTH_FRAME_PLATFORM_HPP

// Thread-local words of the library are few and small, so on ELF they may take the short road.
#if defined(__ELF__)
#define ORVANTH_THREAD_LOCAL __attribute__((tls_model("initial-exec"))) thread_local
#else
#define ORVANTH_THREAD_LOCAL thread_local
#endif

#endif
