// Singular value decompositions. `offset` is ignored: the view starts at the pointer itself.
#include <algorithm>
#include <limits>

#include "frame/failure.hpp"
#include "frame/load_state.hpp"
#include "linalg/finite.hpp"
#include "linalg/lapack.hpp"
#include "linalg/matrix_descriptor.hpp"
#include "linalg/scratch.hpp"
#include "linalg/svd_workspace.hpp"
#include "orvanth/linalg.h"

namespace {

using namespace orvanth;

// Arguments 4 and 12 of dgesdd, A and LWORK, as rejected.
constexpr std::int32_t kSvdMatrixRejected = -4;
constexpr std::int32_t kSvdWorkRejected = -12;

// One problem.
struct Decomposition {
    SvdVectors vectors;
    MatrixView a;
    double* s;
    MatrixView u, vt;
};

std::int32_t CallDgesdd(const Decomposition& d, double* work, std::int32_t workLength, std::int32_t* intWork) {
    const char jobz = static_cast<char>(d.vectors);
    std::int32_t info = 0;
    LAPACK_dgesdd(&jobz, &d.a.rows, &d.a.columns, d.a.first, &d.a.leadingDimension, d.s, d.u.first,
                  &d.u.leadingDimension, d.vt.first, &d.vt.leadingDimension, work, &workLength, intWork, &info);
    return info;
}

// Whether dgesdd accepts the dimensions, so that it goes on to its workspace and to the matrix.
bool AreDimensionsAccepted(const Decomposition& d) noexcept {
    const std::int32_t m = d.a.rows, n = d.a.columns;
    const std::int32_t rowsOfVt = d.vectors == SvdVectors::kAll ? n : std::min(m, n);
    return m >= 0 && n >= 0 && d.a.leadingDimension >= std::max(1, m) && d.u.leadingDimension >= std::max(1, m) &&
           d.vt.leadingDimension >= std::max(1, rowsOfVt);
}

// An infinity can keep the iteration for order 3 and above from its end. Lower orders return by themselves, and a
// NaN is rejected by dgesdd, with the same status.
bool MayNotEnd(const MatrixView& a) noexcept { return std::min(a.rows, a.columns) >= 3 && !IsFinite(a); }

}  // namespace

ORVANTH_API(int32_t)
FullSVD(double* a, const MatrixDescriptor* aDescriptor, double* s, double* u, const MatrixDescriptor* uDescriptor,
        double* vt, const MatrixDescriptor* vtDescriptor) {
    Silent silent;
    const Decomposition d{SvdVectors::kAll, ViewFromPointer(a, aDescriptor), s, ViewFromPointer(u, uDescriptor),
                          ViewFromPointer(vt, vtDescriptor)};
    // The elements are looked at only where dgesdd itself would read them.
    const bool isRead =
        AreDimensionsAccepted(d) && SvdWorkLength(d.vectors, d.a.rows, d.a.columns) <= LapackWorkLength;
    if (isRead && MayNotEnd(d.a)) return kSvdMatrixRejected;
    return CallDgesdd(d, LapackWork, LapackWorkLength, LapackIntWork);
}

ORVANTH_API(int32_t)
ThinSVD(double* a, const MatrixDescriptor* aDescriptor, double* s, double* u, const MatrixDescriptor* uDescriptor,
        double* vt, const MatrixDescriptor* vtDescriptor) {
    Silent silent;
    const Decomposition d{SvdVectors::kThin, ViewFromPointer(a, aDescriptor), s, ViewFromPointer(u, uDescriptor),
                          ViewFromPointer(vt, vtDescriptor)};

    // The status of the query is not looked at: an argument error shows up again in the call that follows.
    double optimalLength = 0;
    CallDgesdd(d, &optimalLength, -1, LapackIntWork);
    if (!AreDimensionsAccepted(d)) return CallDgesdd(d, &optimalLength, 1, LapackIntWork);

    if (SvdWorkLength(d.vectors, d.a.rows, d.a.columns) > std::numeric_limits<std::int32_t>::max()) {
        ReportArgument("DGESDD", -kSvdWorkRejected);
        return kSvdWorkRejected;
    }
    if (MayNotEnd(d.a)) return kSvdMatrixRejected;

    const auto workLength = static_cast<std::int32_t>(optimalLength);
    const auto intWork = AllocateScratch<std::int32_t>(8 * std::int64_t{std::min(d.a.rows, d.a.columns)});
    const auto work = AllocateScratch<double>(workLength);
    if (!work || !intWork) return kNoMemory;
    return CallDgesdd(d, work.get(), workLength, intWork.get());
}
