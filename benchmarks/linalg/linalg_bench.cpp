// Each export beside the same LAPACK call made directly, on copies of the same data: the difference is the
// price of the boundary. Then OLS beside LS on designs of statistical size; peers.py times other systems on
// the same designs. Run with OPENBLAS_NUM_THREADS=1.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "frame/load_state.hpp"
#include "linalg/finite.hpp"
#include "linalg/lapack.hpp"
#include "orvanth/linalg.h"

namespace {

using namespace orvanth;

// A problem of m by n with everything an export may ask for. Reset() is timed with both sides of a pair.
struct Problem {
    Problem(int m, int n)
        : shape{0, m, m, n},
          square{0, n, n, n},
          large{0, m, m, m},
          column{0, m, m, 1},
          given(static_cast<std::size_t>(m) * static_cast<std::size_t>(n)),
          response(static_cast<std::size_t>(m)),
          u(static_cast<std::size_t>(m) * static_cast<std::size_t>(m <= 200 ? m : n)),
          vt(static_cast<std::size_t>(n) * static_cast<std::size_t>(n)),
          x(static_cast<std::size_t>(n)),
          s(x),
          tau(x),
          jpvt(static_cast<std::size_t>(n)) {
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> uniform(-1, 1);
        for (double& element : given) element = uniform(random);
        for (double& element : response) element = uniform(random);
        for (int j = 0; j < n; ++j) given[static_cast<std::size_t>(j) * static_cast<std::size_t>(m + 1)] += 3;
        Reset();
        // Factors for the exports that take them.
        QR(a.data(), &shape, tau.data());
        factored = a;
        Reset();
    }
    void Reset() {
        a = given;
        b = response;
        std::ranges::fill(jpvt, 0);
    }

    MatrixDescriptor shape, square, large, column;
    std::vector<double> given, response, u, vt, x, s, tau, a, b, factored;
    std::vector<std::int32_t> jpvt;
};

template <class Call>
void Time(const char* name, const char* side, int m, int n, Call call) {
    const std::string title = std::string(name) + "/" + side + "/" + std::to_string(m) + "x" + std::to_string(n);
    benchmark::RegisterBenchmark(title.c_str(), [=](benchmark::State& state) {
        Problem p(m, n);
        for (auto _ : state) {
            p.Reset();
            benchmark::DoNotOptimize(call(p));
        }
    });
}

// What ThinSVD and EigenSymmetric do without the boundary and without the pass over the matrix.
int DirectThinSvd(Problem& p) {
    const std::int32_t query = -1, *m = &p.shape.rows, *n = &p.shape.columns;
    std::int32_t info = 0;
    double size = 0;
    LAPACK_dgesdd("S", m, n, p.a.data(), m, p.s.data(), p.u.data(), m, p.vt.data(), n, &size, &query, LapackIntWork,
                  &info);
    const auto length = static_cast<std::int32_t>(size);
    auto* const work = static_cast<double*>(std::malloc(sizeof(double) * static_cast<std::size_t>(length)));
    auto* const intWork = static_cast<std::int32_t*>(std::malloc(32 * static_cast<std::size_t>(*n)));
    LAPACK_dgesdd("S", m, n, p.a.data(), m, p.s.data(), p.u.data(), m, p.vt.data(), n, work, &length, intWork, &info);
    std::free(work);
    std::free(intWork);
    return info;
}

int DirectEigen(Problem& p) {
    const std::int32_t query = -1, index = 0, *lda = &p.shape.leadingDimension, *n = &p.shape.columns;
    const double zero = 0;
    std::int32_t info = 0, found = 0, intLength = 0;
    double size = 0;
    auto* const support = static_cast<std::int32_t*>(std::malloc(8 * static_cast<std::size_t>(*n)));
    LAPACK_dsyevr("V", "A", "L", n, p.a.data(), lda, &zero, &zero, &index, &index, &zero, &found, p.s.data(),
                  p.vt.data(), n, support, &size, &query, &intLength, &query, &info);
    const auto length = static_cast<std::int32_t>(size);
    auto* const work = static_cast<double*>(std::malloc(sizeof(double) * static_cast<std::size_t>(length)));
    auto* const intWork = static_cast<std::int32_t*>(std::malloc(4 * static_cast<std::size_t>(intLength)));
    LAPACK_dsyevr("V", "A", "L", n, p.a.data(), lda, &zero, &zero, &index, &index, &zero, &found, p.s.data(),
                  p.vt.data(), n, support, work, &length, intWork, &intLength, &info);
    std::free(work);
    std::free(intWork);
    std::free(support);
    return info;
}

double PlainResidualSum(const Problem& p) {
    double total = 0;
    for (std::size_t i = 0; i < p.response.size(); ++i) {
        double sum = 0;
        for (std::size_t j = 0; j < p.x.size(); ++j) sum += p.x[j] * p.given[i + j * p.response.size()];
        total += (p.response[i] - sum) * (p.response[i] - sum);
    }
    return total;
}

void RegisterBoundary(int m, int n) {
    Time("QR", "export", m, n, [](Problem& p) { return QR(p.a.data(), &p.shape, p.tau.data()); });
    Time("QR", "direct", m, n, [](Problem& p) {
        std::int32_t info = 0;
        LAPACK_dgeqrf(&p.shape.rows, &p.shape.columns, p.a.data(), &p.shape.rows, p.tau.data(), LapackWork,
                      &LapackWorkLength, &info);
        return info;
    });
    Time("QRP", "export", m, n, [](Problem& p) { return QRP(p.a.data(), &p.shape, p.tau.data(), p.jpvt.data()); });
    Time("QRP", "direct", m, n, [](Problem& p) {
        std::int32_t info = 0;
        LAPACK_dgeqp3(&p.shape.rows, &p.shape.columns, p.a.data(), &p.shape.rows, p.jpvt.data(), p.tau.data(),
                      LapackWork, &LapackWorkLength, &info);
        return info;
    });
    Time("QR_Q", "export", m, n, [](Problem& p) {
        p.a = p.factored;
        return QR_Q(p.a.data(), &p.shape, p.tau.data());
    });
    Time("QR_Q", "direct", m, n, [](Problem& p) {
        p.a = p.factored;
        std::int32_t info = 0;
        LAPACK_dorgqr(&p.shape.rows, &p.shape.columns, &p.shape.columns, p.a.data(), &p.shape.rows, p.tau.data(),
                      LapackWork, &LapackWorkLength, &info);
        return info;
    });
    Time("QR_Qy", "export", m, n,
         [](Problem& p) { return QR_Qy(p.factored.data(), &p.shape, 1, p.tau.data(), p.b.data(), &p.column); });
    Time("QR_Qy", "direct", m, n, [](Problem& p) {
        std::int32_t info = 0;
        LAPACK_dormqr("L", "T", &p.shape.rows, &p.column.columns, &p.shape.columns, p.factored.data(), &p.shape.rows,
                      p.tau.data(), p.b.data(), &p.shape.rows, LapackWork, &LapackWorkLength, &info);
        return info;
    });
    Time("LS", "export", m, n, [](Problem& p) { return LS(p.a.data(), &p.shape, p.b.data(), &p.column); });
    Time("LS", "direct", m, n, [](Problem& p) {
        std::int32_t info = 0;
        LAPACK_dgels("N", &p.shape.rows, &p.shape.columns, &p.column.columns, p.a.data(), &p.shape.rows, p.b.data(),
                     &p.shape.rows, LapackWork, &LapackWorkLength, &info);
        return info;
    });
    Time("SolveTriangularSystem", "export", m, n,
         [](Problem& p) { return SolveTriangularSystem(p.factored.data(), &p.shape, 1, 0, p.b.data(), &p.column); });
    Time("SolveTriangularSystem", "direct", m, n, [](Problem& p) {
        std::int32_t info = 0;
        LAPACK_dtrtrs("U", "N", "N", &p.shape.columns, &p.column.columns, p.factored.data(), &p.shape.rows,
                      p.b.data(), &p.shape.rows, &info);
        return info;
    });
    Time("Xb", "export", m, n,
         [](Problem& p) { return Xb(p.given.data(), &p.shape, p.x.data(), p.response.data()); });
    Time("Xb", "loop", m, n, [](Problem& p) { return PlainResidualSum(p); });
    Time("ThinSVD", "export", m, n, [](Problem& p) {
        return ThinSVD(p.a.data(), &p.shape, p.s.data(), p.u.data(), &p.shape, p.vt.data(), &p.square);
    });
    Time("ThinSVD", "direct", m, n, [](Problem& p) { return DirectThinSvd(p); });
    Time("EigenSymmetric", "export", m, n, [](Problem& p) {
        std::int32_t found = 0;
        return EigenSymmetric(p.a.data(), &p.shape, p.s.data(), &found, p.vt.data(), &p.square);
    });
    Time("EigenSymmetric", "direct", m, n, [](Problem& p) { return DirectEigen(p); });
    Time("IsFinite", "alone", m, n, [](Problem& p) {
        return IsFinite({p.given.data(), p.shape.rows, p.shape.columns, p.shape.rows});
    });
    if (m > 200) return;  // the workspace and the square of the rows forbid more
    Time("FullSVD", "export", m, n, [](Problem& p) {
        return FullSVD(p.a.data(), &p.shape, p.s.data(), p.u.data(), &p.large, p.vt.data(), &p.square);
    });
    Time("FullSVD", "direct", m, n, [](Problem& p) {
        std::int32_t info = 0;
        LAPACK_dgesdd("A", &p.shape.rows, &p.shape.columns, p.a.data(), &p.shape.rows, p.s.data(), p.u.data(),
                      &p.shape.rows, p.vt.data(), &p.shape.columns, LapackWork, &LapackWorkLength, LapackIntWork,
                      &info);
        return info;
    });
}

void RegisterLeastSquares(int m, int n) {
    Time("least squares: copy", "alone", m, n, [](Problem& p) { return p.a[0]; });
    Time("least squares: OLS", "export", m, n, [](Problem& p) {
        const MatrixDescriptor x{0, p.shape.columns, p.shape.columns, 1};
        return OLS(p.a.data(), &p.shape, p.b.data(), &p.column, p.x.data(), &x, p.tau.data(), 1e-7);
    });
    Time("least squares: LS", "export", m, n,
         [](Problem& p) { return LS(p.a.data(), &p.shape, p.b.data(), &p.column); });
}

const bool registered = [] {
    RegisterBoundary(100, 10);
    RegisterBoundary(1000, 20);
    for (auto [m, n] : {std::pair{100, 5}, {200, 40}, {1000, 20}, {20000, 60}, {100000, 20}, {2000, 500}})
        RegisterLeastSquares(m, n);
    return true;
}();

}  // namespace
