// The inverse error function by rows of its table: what the forms for one element and for eight share.
#ifndef ORVANTH_RANDOM_ERF_INV_ROWS_HPP
#define ORVANTH_RANDOM_ERF_INV_ROWS_HPP

#include <bit>
#include <cstdint>

#include "frame/platform.hpp"
#include "random/erf_inv.hpp"

namespace orvanth::erf_inv {

inline constexpr std::uint64_t kSignBit = 0x8000000000000000u;
inline constexpr std::uint64_t kOne = 0x3FF0000000000000u;
inline constexpr std::uint64_t kHighBits = ~((std::uint64_t{1} << 27) - 1);
inline constexpr std::uint64_t kExponentBits = 0x7FF0000000000000u;
inline constexpr std::uint64_t kMantissaBelowQuarter = 0x0003FFFFFFFFFFFFu;
inline constexpr std::uint64_t kReciprocal = std::uint64_t{2046} << 52;  // less the exponent of w: that of 1 / w
inline constexpr std::uint64_t kFirstInterval = 0xFFB;
inline constexpr int kIntervalShift = 50;
inline constexpr int kDegree = 12;  // the table's fit; its two further columns are zero
inline constexpr int kHeadColumn = 15;
inline constexpr int kSlopeColumn = 16;

// The table is for magnitudes from this one up to 1, 1 excluded.
inline constexpr std::uint64_t kTableFrom = 0x3CA0000100000000u;

inline std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }
inline double Double(std::uint64_t bits) { return std::bit_cast<double>(bits); }

#ifdef ORVANTH_WIDE_VECTORS

inline constexpr std::int32_t kWideLanes = 8;

// Sixteen rows, stored by columns. A column is two vectors; one permutation finds eight of its elements.
struct SixteenRows {
    std::uint64_t first;  // bits of the smallest and the largest magnitude of these rows
    std::uint64_t last;
    alignas(64) double coefficients[kDegree + 1][16];
    alignas(64) double head[16];
    alignas(64) double slope[16];
};

constexpr SixteenRows TakeSixteenRows(const double (*rows)[kErfInvColumns], std::uint64_t first, std::uint64_t last) {
    SixteenRows columns{};
    columns.first = first;
    columns.last = last;
    for (int row = 0; row < 16; ++row) {
        for (int j = 0; j <= kDegree; ++j) columns.coefficients[j][row] = rows[row][j];
        columns.head[row] = rows[row][kHeadColumn];
        columns.slope[row] = rows[row][kSlopeColumn];
    }
    return columns;
}

// values[i] = erfinv(arguments[i]) for the arguments of these rows. The other arguments are collected in `others`
// with their indices in `places`; their values are meaningless. Returns how many others there are. The count is a
// multiple of kWideLanes; `others` and `places` have room for kWideLanes more. Needs HasWideVectors().
std::int32_t FromSixteenRows(const SixteenRows& rows, std::int32_t count, const double* arguments, double* values,
                             double* others, std::int32_t* places);

#endif

}  // namespace orvanth::erf_inv

#endif
