// The symmetric eigenproblem. `offset` is ignored: the view starts at the pointer itself.
#include "linalg/finite.hpp"
#include "linalg/lapack.hpp"
#include "linalg/matrix_descriptor.hpp"
#include "linalg/scratch.hpp"
#include "orvanth/linalg.h"

namespace {

using namespace orvanth;

// The answer to a matrix that is not finite; dsyevr itself gives it to a bad leading dimension of the matrix.
constexpr std::int32_t kMatrixRejected = -6;

// The arguments that the query and the real call have in common.
struct Eigenproblem {
    double* a;
    const MatrixDescriptor* aDescriptor;
    double* w;
    std::int32_t* m;
    double* z;
    const MatrixDescriptor* zDescriptor;
    std::int32_t* support;
};

std::int32_t CallDsyevr(const char* jobz, const Eigenproblem& p, double* work, const std::int32_t* workLength,
                        std::int32_t* intWork, const std::int32_t* intWorkLength) {
    // All eigenvalues are wanted, so neither bounds nor indices are read; 0 leaves the tolerance to LAPACK.
    const double bound = 0, tolerance = 0;
    const std::int32_t index = 0;
    const std::int32_t* const n = &p.aDescriptor->columns;
    std::int32_t info = 0;
    LAPACK_dsyevr(jobz, "A", "L", n, p.a, &p.aDescriptor->leadingDimension, &bound, &bound, &index, &index,
                  &tolerance, p.m, p.w, p.z, &p.zDescriptor->leadingDimension, p.support, work, workLength, intWork,
                  intWorkLength, &info);
    return info;
}

}  // namespace

ORVANTH_API(int32_t)
EigenSymmetric(double* a, const MatrixDescriptor* aDescriptor, double* w, int32_t* m, double* z,
               const MatrixDescriptor* zDescriptor) {
    const std::int32_t n = aDescriptor->columns;
    auto* const support = AllocateScratch<std::int32_t>(2 * std::int64_t{n});
    const Eigenproblem problem{a, aDescriptor, w, m, z, zDescriptor, support};

    // The query asks for vectors whether or not `z` is null, so it always checks the leading dimension of `z`.
    const std::int32_t query = -1;
    double optimalLength = 0;
    std::int32_t optimalIntLength = 0;
    const std::int32_t queryInfo = CallDsyevr("V", problem, &optimalLength, &query, &optimalIntLength, &query);
    if (queryInfo != 0) return queryInfo;  // `support` is left standing: this exit has no clean-up

    // dsyevr does not return from a NaN or an infinity.
    if (!IsLowerTriangleFinite(a, n, aDescriptor->leadingDimension)) {
        ReleaseScratch(support);
        return kMatrixRejected;
    }

    const auto workLength = static_cast<std::int32_t>(optimalLength);
    double* const work = AllocateScratch<double>(workLength);
    auto* const intWork = AllocateScratch<std::int32_t>(optimalIntLength);
    const std::int32_t info =
        CallDsyevr(z != nullptr ? "V" : "N", problem, work, &workLength, intWork, &optimalIntLength);
    ReleaseScratch(work);
    ReleaseScratch(intWork);
    ReleaseScratch(support);
    return info;
}
