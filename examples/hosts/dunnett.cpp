// Dunnett's test: which of two drugs changes the blood count against the control? C. W. Dunnett, "A multiple
// comparison procedure for comparing several treatments with a control", JASA 50, 1955.
#include <cmath>
#include <cstdio>
#include <numeric>
#include <vector>

#include "orvanth/shield.h"

int main() {
    const std::vector<std::vector<double>> groups = {
        {9.76, 8.80, 7.68, 9.36},
        {12.80, 9.68, 12.16, 9.20, 10.55},
        {7.40, 8.50, 7.20, 8.24, 9.84, 8.32},  // the control last
    };
    const double controls = groups.back().size();
    std::vector<double> mean, lambda;
    double squares = 0, df = 0;
    for (const auto& group : groups) {
        const double n = group.size();
        mean.push_back(std::accumulate(group.begin(), group.end(), 0.0) / n);
        lambda.push_back(std::sqrt(n / (n + controls)));
        for (double value : group) squares += std::pow(value - mean.back(), 2);
        df += n - 1;
    }
    for (size_t i = 0; i + 1 < groups.size(); ++i) {
        const double error = std::sqrt(squares / df * (1 / double(groups[i].size()) + 1 / controls));
        const double t = (mean[i] - mean.back()) / error;
        const double p = SafeMCcCDF(std::fabs(t), int32_t(groups.size()), df, lambda.data(), 1);
        std::printf("drug %zu: t = %.3f, p = %.4f\n", i + 1, t, p);
    }
}
/* prints:
drug 1: t = 0.857, p = 0.6201
drug 2: t = 3.694, p = 0.0058
*/
