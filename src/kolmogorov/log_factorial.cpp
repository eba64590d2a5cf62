#include "kolmogorov/log_factorial.hpp"

#include <cmath>

namespace orvanth::kolmogorov {

constinit const std::array<double, 21> FactorialTable = [] {
    std::array<double, 21> table{1.0};
    for (std::size_t i = 1; i < table.size(); ++i) table[i] = table[i - 1] * static_cast<double>(i);
    return table;
}();

constinit const std::array<double, 31> LogFactorialTable = {0.0,
                                                            0.0,
                                                            0.6931471805599453,
                                                            1.791759469228055,
                                                            3.178053830347946,
                                                            4.787491742782046,
                                                            6.579251212010101,
                                                            8.525161361065415,
                                                            10.60460290274525,
                                                            12.80182748008147,
                                                            15.10441257307552,
                                                            17.50230784587389,
                                                            19.98721449566188,
                                                            22.55216385312342,
                                                            25.19122118273868,
                                                            27.89927138384088,
                                                            30.67186010608066,
                                                            33.50507345013688,
                                                            36.39544520803305,
                                                            39.33988418719949,
                                                            42.33561646075348,
                                                            45.3801388984769,
                                                            48.47118135183522,
                                                            51.60667556776437,
                                                            54.7847293981123,
                                                            58.00360522298051,
                                                            61.26170176100199,
                                                            64.55753862700632,
                                                            67.88974313718154,
                                                            71.257038967168,
                                                            74.65823634883016};

double LogFactorial(std::int32_t n) {
    if (n <= 30) return LogFactorialTable[static_cast<std::size_t>(n)];
    const double z = n + 1.0;
    const double y = 1.0 / (z * z);
    const double s = ((0.0007936500793651 - 0.000595238095238 * y) * y - 0.0027777777777778) * y + 0.083333333333333;
    return ((z - 0.5) * std::log(z) - z + 0.91893853320467) + s / z;
}

}  // namespace orvanth::kolmogorov
