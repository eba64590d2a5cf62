// Random arguments that look for trouble: special values, near-integers, counts about 2^31, all magnitudes, NaNs with
// a payload, and any bits at all.
#ifndef ORVANTH_TESTS_FUZZ_RANDOM_VALUES_HPP
#define ORVANTH_TESTS_FUZZ_RANDOM_VALUES_HPP

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

#include <bit>

namespace orvanth::fuzz {

inline constexpr double kInfinite = std::numeric_limits<double>::infinity();

// SplitMix64 (G. L. Steele, D. Lea, C. H. Flood, Fast splittable pseudorandom number generators, OOPSLA 2014).
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t Next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }
    double Between(double low, double high) { return low + (high - low) * Unit(); }
    int Whole(int low, int high) {
        return low +
               static_cast<int>(Next() % (static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low) + 1));
    }
    bool Chance(int percent) { return Whole(0, 99) < percent; }
    double PowerOfTen(double low, double high) { return std::pow(10.0, Between(low, high)); }
    double Sign() { return Chance(50) ? 1 : -1; }
    template <class Value, std::size_t size>
    Value Of(const Value (&values)[size]) {
        return values[Next() % size];
    }

private:
    std::uint64_t state_;
};

inline constexpr double kSpecialValues[] = {0.0,
                                            -0.0,
                                            5e-324,
                                            -5e-324,
                                            DBL_MIN,
                                            -DBL_MIN,
                                            DBL_MIN / 2,
                                            1.0,
                                            -1.0,
                                            0x1.fffffffffffffp-1,
                                            0x1.0000000000001p0,
                                            0.5,
                                            -0.5,
                                            1.5,
                                            -1.5,
                                            2,
                                            -2,
                                            2.5,
                                            3,
                                            10,
                                            20,
                                            30,
                                            100,
                                            140,
                                            141,
                                            170,
                                            171,
                                            172,
                                            1000,
                                            10000,
                                            46340,
                                            46341,
                                            1e5,
                                            100001,
                                            104729,
                                            104730,
                                            200000,
                                            200001,
                                            1e6,
                                            2147483647.0,
                                            2147483648.0,
                                            2147483649.0,
                                            -2147483648.0,
                                            -2147483649.0,
                                            4294967295.0,
                                            4294967296.0,
                                            4294967297.0,
                                            0x1p52,
                                            0x1p53,
                                            0x1p54,
                                            0x1p62,
                                            0x1p63,
                                            0x1p64,
                                            1e15,
                                            1e16,
                                            4.3e25,
                                            1e100,
                                            -1e100,
                                            1e150,
                                            1e154,
                                            1.4e154,
                                            1e-154,
                                            1e-150,
                                            1e-100,
                                            1e300,
                                            1e-300,
                                            1e307,
                                            1e308,
                                            -1e308,
                                            1e-308,
                                            DBL_MAX,
                                            -DBL_MAX,
                                            DBL_EPSILON,
                                            DBL_EPSILON / 2,
                                            1e-8,
                                            1e-16,
                                            1e-20,
                                            26.5,
                                            37.5,
                                            38.5,
                                            -38.5,
                                            709.78,
                                            710,
                                            -745.2,
                                            0.9999999,
                                            0.99999995,
                                            kInfinite,
                                            -kInfinite};
inline constexpr std::int32_t kSpecialInts[] = {
    0,    1,     -1,    2,     3,       255,       256,           257,       1023,
    1024, 46340, 46341, 65536, 1000000, INT32_MAX, INT32_MAX - 1, INT32_MIN, INT32_MIN + 1};

inline double AnyDouble(Random& random) {
    switch (random.Whole(0, 8)) {
        case 0:
        case 1:
        case 2:
            return random.Of(kSpecialValues);
        case 3:
            return std::bit_cast<double>(0x7ff8000000000000u | (random.Next() & 0x8007ffffffffffffu));
        case 4:
            return random.Sign() * random.PowerOfTen(-323, 308.25);
        case 5:
            return random.Sign() * random.PowerOfTen(-6, 6);
        case 6: {
            const double whole = random.Whole(-3, random.Chance(50) ? 40 : 2000);
            const double near[] = {
                whole,       std::nextafter(whole, kInfinite),      std::nextafter(whole, -kInfinite),
                whole + 0.5, whole + 1e-10 * random.Between(-1, 1), whole + random.Unit()};
            return random.Of(near);
        }
        case 7:
            return std::bit_cast<double>(random.Next());
        default:
            return random.Unit();
    }
}

inline std::int32_t AnyInt(Random& random) {
    if (random.Chance(40)) return random.Of(kSpecialInts);
    if (random.Chance(50)) return static_cast<std::int32_t>(random.Next());
    return random.Whole(-5, 300);
}

inline double Probability(Random& random) {
    constexpr double special[] = {0,    1,    0.5,   5e-324,   0x1.fffffffffffffp-1, 1e-300, 0.25,
                                  0.05, 0.95, 1e-17, 0.9999999};
    switch (random.Whole(0, 7)) {
        case 0:
            return random.PowerOfTen(-320, 0);
        case 1:
            return 1 - random.PowerOfTen(-16.3, 0);
        case 2:
            return random.Of(special);
        case 3:
            return random.PowerOfTen(-17, 0);
        default:
            return random.Unit();
    }
}

inline double Positive(Random& random) {
    switch (random.Whole(0, 6)) {
        case 0:
            return random.Whole(1, 200) / 2.0;
        case 1:
            return random.PowerOfTen(-12, 15);
        case 2:
            return random.PowerOfTen(2, 9);
        default:
            return random.PowerOfTen(-3, 4);
    }
}

inline double Count(Random& random) {
    if (random.Chance(8)) return 0;
    const double count = std::floor(random.PowerOfTen(0, random.Chance(60) ? 3 : 10));
    return random.Chance(10) ? count + random.Unit() : count;
}

}  // namespace orvanth::fuzz

#endif
