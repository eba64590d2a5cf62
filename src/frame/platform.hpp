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

// A kernel of fused multiply-adds compiled twice: by the processor's own instruction, and by std::fma of the
// mathematical library where the processor has none. Both round once, so the bits agree.
#if defined(__ELF__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ORVANTH_FUSED_CLONES __attribute__((target_clones("fma", "default")))
#else
#define ORVANTH_FUSED_CLONES
#endif

// For the few kernels that need vectors of eight doubles by name: compiled for them whatever the build targets, and
// called only where HasWideVectors() says so.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__)
#define ORVANTH_WIDE_VECTORS __attribute__((target("avx512f,avx512dq,avx512vl,prefer-vector-width=512")))
namespace orvanth {
inline bool HasWideVectors() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512vl");
}
}  // namespace orvanth
#endif

#endif
