// What differs between platforms, and nothing else.
#ifndef ORVANTH_FRAME_PLATFORM_HPP
#define ORVANTH_FRAME_PLATFORM_HPP

// Thread-local words of the library are few and small, so on ELF they may take the short road.
#if defined(__ELF__)
#define ORVANTH_THREAD_LOCAL __attribute__((tls_model("initial-exec"))) thread_local
#else
#define ORVANTH_THREAD_LOCAL thread_local
#endif

// A loop kernel compiled twice, the wider one chosen at load time by what the processor has. Bits
// agree: contraction is off, and vector lanes only take elements that are independent.
#if defined(__ELF__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ORVANTH_VECTOR_CLONES __attribute__((target_clones("avx2", "default"), optimize("O3")))
#else
#define ORVANTH_VECTOR_CLONES
#endif

#endif
