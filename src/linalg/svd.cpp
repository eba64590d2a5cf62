// Singular value decompositions. `offset` is ignored: the view starts at the pointer itself.
#include <algorithm>
#include <limits>

#include "frame/load_state.hpp"
#include "linalg/finite.hpp"
#include "linalg/lapack.hpp"
#include "linalg/matrix_descriptor.hpp"
#include "linalg/scratch.hpp"
#include "orvanth/linalg.h"

namespace {

using namespace orvanth;

// The matrices of one call.
struct Decomposition {
    double* a;
    const MatrixDescriptor* aDescriptor;
    double* s;
    double* u;
    const MatrixDescriptor* uDescriptor;
    double* vt;
    const MatrixDescriptor* vtDescriptor;
};

std::int32_t CallDgesdd(const char* jobz, const Decomposition& d, double* work, const std::int32_t* workLength,
                        std::int32_t* intWork) {
    std::int32_t info = 0;
    LAPACK_dgesdd(jobz, &d.aDescriptor->rows, &d.aDescriptor->columns, d.a, &d.aDescriptor->leadingDimension, d.s,
                  d.u, &d.uDescriptor->leadingDimension, d.vt, &d.vtDescriptor->leadingDimension, work, workLength,
                  intWork, &info);
    return info;
}

// dgesdd rejects a NaN before it writes anything, but never returns from an infinity. A matrix that is not
// finite is therefore answered as a NaN is: it shows one to dgesdd, whose tests of the arguments and the
// workspace keep their place ahead of the -4, and gets its element back.
std::int32_t Decompose(const char* jobz, const Decomposition& d, double* work, const std::int32_t* workLength,
                       std::int32_t* intWork) {
    const MatrixDescriptor& shape = *d.aDescriptor;
    if (IsFinite(d.a, shape.rows, shape.columns, shape.leadingDimension))
        return CallDgesdd(jobz, d, work, workLength, intWork);
    const double first = d.a[0];
    d.a[0] = std::numeric_limits<double>::quiet_NaN();
    const std::int32_t info = CallDgesdd(jobz, d, work, workLength, intWork);
    d.a[0] = first;
    return info;
}

}  // namespace

ORVANTH_API(int32_t)
FullSVD(double* a, const MatrixDescriptor* aDescriptor, double* s, double* u, const MatrixDescriptor* uDescriptor,
        double* vt, const MatrixDescriptor* vtDescriptor) {
    return Decompose("A", {a, aDescriptor, s, u, uDescriptor, vt, vtDescriptor}, LapackWork, &LapackWorkLength,
                     LapackIntWork);
}

ORVANTH_API(int32_t)
ThinSVD(double* a, const MatrixDescriptor* aDescriptor, double* s, double* u, const MatrixDescriptor* uDescriptor,
        double* vt, const MatrixDescriptor* vtDescriptor) {
    const Decomposition d{a, aDescriptor, s, u, uDescriptor, vt, vtDescriptor};

    // The query's own INFO is not looked at: an argument error shows up again in the call that follows.
    const std::int32_t query = -1;
    double optimalLength = 0;
    CallDgesdd("S", d, &optimalLength, &query, LapackIntWork);
    const auto workLength = static_cast<std::int32_t>(optimalLength);

    double* const work = AllocateScratch<double>(workLength);
    auto* const intWork =
        AllocateScratch<std::int32_t>(8 * std::int64_t{std::min(aDescriptor->rows, aDescriptor->columns)});
    const std::int32_t info = Decompose("S", d, work, &workLength, intWork);
    ReleaseScratch(work);
    ReleaseScratch(intWork);
    return info;
}
