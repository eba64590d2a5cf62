// What differs between platforms, and nothing else.
#ifndef ORVANTH_FRAME_PLATFORM_HPP
#define ORVANTH_FRAME_PLATFORM_HPP

// On ELF the few thread-local words of the library are reached by a fixed offset, without a call into the loader.
#if defined(__ELF__)
#define ORVANTH_THREAD_LOCAL __attribute__((tls_model("initial-exec"))) thread_local
#else
#define ORVANTH_THREAD_LOCAL thread_local
#endif

// A mutex is ready before any code runs. With winpthreads it is made when the DLL is loaded, which is before any
// call.
#if defined(_WIN32)
#define ORVANTH_CONSTINIT_MUTEX
#else
#define ORVANTH_CONSTINIT_MUTEX constinit
#endif

// g++ compiles such a loop kernel twice and chooses by the processor when the library is loaded. The bits agree:
// contraction is off, and vector lanes only take elements that are independent. clang compiles it once. A build that
// counts what runs defines the macro as nothing, since a machine runs one of the two only.
#if defined(ORVANTH_VECTOR_CLONES)
#elif defined(__ELF__) && defined(__x86_64__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define ORVANTH_VECTOR_CLONES __attribute__((target_clones("avx2", "default"), optimize("O3")))
#else
#define ORVANTH_VECTOR_CLONES
#endif

// A kernel of fused multiply-adds compiled twice: by the processor's own instruction, and by std::fma of the
// mathematical library where the processor has none. Both round once, so the bits agree. clang compiles it once.
#if defined(ORVANTH_FUSED_CLONES)
#elif defined(__ELF__) && defined(__x86_64__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define ORVANTH_FUSED_CLONES __attribute__((target_clones("fma", "default")))
#else
#define ORVANTH_FUSED_CLONES
#endif

// For the few kernels that use vectors of eight doubles by name. They are compiled for AVX-512 whatever the target of
// the build is, and are called only where HasWideVectors() is true. g++ for Windows has none of them: the stack is
// aligned to 16 bytes there, and it stores vectors on it as if it were aligned to 64.
#if defined(__ELF__) && defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__)
#define ORVANTH_WIDE_VECTORS __attribute__((target("avx512f,avx512dq,avx512vl,prefer-vector-width=512")))
namespace orvanth {
inline bool HasWideVectors() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512vl");
}
}  // namespace orvanth
#endif

#endif
