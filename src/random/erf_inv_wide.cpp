#include "random/erf_inv_rows.hpp"

#ifdef ORVANTH_WIDE_VECTORS

#include <immintrin.h>

#include <bit>
#include <cstring>

namespace orvanth::erf_inv {

namespace {

typedef double Doubles __attribute__((vector_size(kWideLanes * sizeof(double))));
typedef std::uint64_t Words __attribute__((vector_size(kWideLanes * sizeof(std::uint64_t))));
typedef std::int64_t Places __attribute__((vector_size(kWideLanes * sizeof(std::int64_t))));

ORVANTH_WIDE_VECTORS inline Doubles Find(const double* column, Places row) {
    Doubles first, second;
    std::memcpy(&first, column, sizeof first);
    std::memcpy(&second, column + kWideLanes, sizeof second);
    return __builtin_shuffle(first, second, row);  // the row's low four bits
}

}  // namespace

ORVANTH_WIDE_VECTORS std::int32_t FromSixteenRows(const SixteenRows& rows, std::int32_t count,
                                                  const double* arguments, double* values, double* others,
                                                  std::int32_t* places) {
    const __m512i first = _mm512_set1_epi64(static_cast<std::int64_t>(rows.first));
    const __m512i width = _mm512_set1_epi64(static_cast<std::int64_t>(rows.last - rows.first));
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    std::int32_t collected = 0;
    for (std::int32_t i = 0; i < count; i += kWideLanes) {
        Doubles x;
        std::memcpy(&x, arguments + i, sizeof x);
        const Doubles v = (Doubles)((Words)x & ~kSignBit);

        const __mmask8 outside = _mm512_cmpgt_epu64_mask(_mm512_sub_epi64((__m512i)v, first), width);
        _mm512_storeu_pd(others + collected, _mm512_maskz_compress_pd(outside, x));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(places + collected),
                            _mm256_maskz_compress_epi32(outside, _mm256_add_epi32(lanes, _mm256_set1_epi32(i))));
        collected += std::popcount(static_cast<unsigned>(outside));

        const Doubles w = 1.0 - v;
        const Doubles e = (1.0 - w) - v;
        const Words bits = (Words)w;
        const Places row = (Places)(kFirstInterval - (bits >> kIntervalShift));

        const Doubles m = (Doubles)((bits & kMantissaBelowQuarter) | kOne);
        const Doubles reciprocal = (Doubles)(kReciprocal - (bits & kExponentBits));
        const Doubles t0 = m - 1.125;
        const Doubles t = t0 + e * reciprocal;
        const Doubles high = (Doubles)((Words)t0 & kHighBits);
        const Doubles low = t - high;
        Doubles q = Find(rows.coefficients[kDegree], row);
#pragma GCC unroll 16
        for (int j = kDegree - 1; j >= 0; --j) q = q * t + Find(rows.coefficients[j], row);
        const Doubles h = Find(rows.head, row), g = Find(rows.slope, row);
        const Doubles aHigh = (Doubles)((Words)(h + g * high) & kHighBits);
        const Doubles l = ((h - aHigh) + g * high) + g * low + q;

        const Doubles xHigh = (Doubles)((Words)x & kHighBits);
        const Doubles xLow = x - xHigh;
        const Doubles value = xHigh * aHigh + (xLow * aHigh + x * l);
        std::memcpy(values + i, &value, sizeof value);
    }
    return collected;
}

}  // namespace orvanth::erf_inv

#endif
