// The symmetric eigenproblem. `offset` is ignored: the view starts at the pointer itself.
#include "frame/failure.hpp"
#include "linalg/finite.hpp"
#include "linalg/lapack.hpp"
#include "linalg/matrix_descriptor.hpp"
#include "linalg/scratch.hpp"
#include "orvanth/linalg.h"

namespace {

using namespace orvanth;

// Argument 5 of dsyevr, A, as rejected.
constexpr std::int32_t kEigenMatrixRejected = -5;

// What the query and the real call have in common.
struct Eigenproblem {
    MatrixView a;
    double* w;
    std::int32_t* found;
    MatrixView z;
    std::int32_t* support;
};

// The workspace of one call; a length of -1 makes it a query, which leaves the lengths in the first elements.
struct Work {
    double* work;
    std::int32_t length;
    std::int32_t* intWork;
    std::int32_t intLength;
};

std::int32_t CallDsyevr(const char* jobz, const Eigenproblem& p, const Work& w) {
    // All eigenvalues are wanted, so neither bounds nor indices are read; 0 leaves the tolerance to LAPACK.
    const double bound = 0, tolerance = 0;
    const std::int32_t index = 0;
    std::int32_t info = 0;
    LAPACK_dsyevr(jobz, "A", "L", &p.a.columns, p.a.first, &p.a.leadingDimension, &bound, &bound, &index, &index,
                  &tolerance, p.found, p.w, p.z.first, &p.z.leadingDimension, p.support, w.work, &w.length, w.intWork,
                  &w.intLength, &info);
    return info;
}

}  // namespace

ORVANTH_API(int32_t)
EigenSymmetric(double* a, const MatrixDescriptor* aDescriptor, double* w, int32_t* m, double* z,
               const MatrixDescriptor* zDescriptor) {
    Silent silent;
    const bool wantsVectors = z != nullptr;
    auto support = AllocateScratch<std::int32_t>(2 * std::int64_t{aDescriptor->columns});
    const Eigenproblem problem{ViewFromPointer(a, aDescriptor), w, m, ViewFromPointer(z, zDescriptor), support.get()};

    // The query asks for vectors whether or not `z` is null, so it always checks the leading dimension of `z`.
    double optimalLength = 0;
    std::int32_t optimalIntLength = 0;
    const std::int32_t queryInfo = CallDsyevr("V", problem, {&optimalLength, -1, &optimalIntLength, -1});
    if (queryInfo != 0) {
        support.release();  // deliberate: this exit leaves the block allocated
        return queryInfo;
    }

    // With vectors, dsyevr may not return from a NaN once its order is 3. Everything else comes back by itself.
    if (wantsVectors && problem.a.columns >= 3 && HasNaNInLowerTriangle(problem.a)) return kEigenMatrixRejected;

    const auto workLength = static_cast<std::int32_t>(optimalLength);
    const auto intWork = AllocateScratch<std::int32_t>(optimalIntLength);
    const auto work = AllocateScratch<double>(workLength);
    if (!support || !work || !intWork) return kNoMemory;
    return CallDsyevr(wantsVectors ? "V" : "N", problem, {work.get(), workLength, intWork.get(), optimalIntLength});
}
