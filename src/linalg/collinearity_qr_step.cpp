#include "linalg/collinearity_qr_step.hpp"

#include <algorithm>
#include <cmath>

#include "linalg/block_reflector.hpp"
#include "linalg/lapack.hpp"

namespace orvanth {
namespace {

// Panels are halved down to this width. Within it the columns are reflected one at a time.
constexpr std::int32_t kNarrowPanel = 8;

// A run of columns.
struct Columns {
    std::int32_t first, end;
    std::int32_t Count() const noexcept { return end - first; }
};

class Factorisation {
public:
    Factorisation(const MatrixView& a, double* tau, double tolerance, const PartialNorms& norms,
                  const Workspace& room)
        : a_(a), tau_(tau), tolerance_(tolerance), norms_(norms), room_(room) {}

    std::int32_t CollinearColumn();

private:
    bool IsCollinear(std::int32_t i) const;
    void Reflect(std::int32_t i, const Columns& later);
    void DowndateNorms(const Columns& rows, const Columns& columns);
    void ApplyPanel(const BlockReflector& panel, std::int32_t first, const Columns& columns);
    std::int32_t FactorNarrowPanel(const BlockReflector& panel, std::int32_t first);
    std::int32_t FactorPanel(const BlockReflector& panel, std::int32_t first);
    BlockReflector Part(const BlockReflector& panel, std::int32_t skipped, std::int32_t columns) const;

    MatrixView a_;
    double* tau_;
    double tolerance_;
    PartialNorms norms_;
    Workspace room_;
    const double smallRatio_ = std::sqrt(LAPACK_dlamch("Epsilon"));
};

// A NaN passes, and the factorisation goes on.
bool Factorisation::IsCollinear(std::int32_t i) const { return tolerance_ * norms_.initialNorm[i] >= norms_.vn1[i]; }

// Reflection i, applied to the later columns, and their norms with it.
void Factorisation::Reflect(std::int32_t i, const Columns& later) {
    const std::int32_t one = 1, order = a_.rows - i, count = later.Count();
    double* const column = &a_(i, i);
    LAPACK_dlarfg(&order, column, order > 1 ? column + 1 : column, &one, &tau_[i]);
    if (count == 0) return;
    const double diagonal = *column;
    *column = 1.0;
    LAPACK_dlarf("Left", &order, &count, column, &one, &tau_[i], &a_(i, later.first), &a_.leadingDimension,
                 room_.first);
    *column = diagonal;
    DowndateNorms({i, i + 1}, later);
}

// Brings the norms of columns up to date from finished rows of R, in order. Cancellation is caught by the ratio to
// the norm that was last formed from the elements. The norm below row i does not depend on reflections of rows
// further down, so it may be formed from a column that has them already.
void Factorisation::DowndateNorms(const Columns& rows, const Columns& columns) {
    for (std::int32_t i = rows.first; i < rows.end; ++i)
        for (std::int32_t j = columns.first; j < columns.end; ++j) {
            double &vn1 = norms_.vn1[j], &vn2 = norms_.vn2[j];
            if (vn1 == 0) continue;
            const double quotient = std::fabs(a_(i, j)) / vn1;
            const double temp = std::max(0.0, 1.0 - quotient * quotient);
            const double ratio = vn1 / vn2;
            const double temp2 = temp * (ratio * ratio);
            if (temp2 <= smallRatio_)
                vn1 = vn2 = i + 1 < a_.rows ? Norm2(a_.rows - i - 1, &a_(i, j) + 1) : 0.0;
            else
                vn1 *= std::sqrt(temp);
        }
}

void Factorisation::ApplyPanel(const BlockReflector& panel, std::int32_t first, const Columns& columns) {
    if (columns.Count() == 0) return;
    ApplyTransposed(panel, a_.Block(first, columns.first, a_.rows - first, columns.Count()), room_.first,
                    room_.length);
    DowndateNorms({first, first + panel.v.columns}, columns);
}

BlockReflector Factorisation::Part(const BlockReflector& panel, std::int32_t skipped, std::int32_t columns) const {
    return {panel.v.Block(skipped, skipped, panel.v.rows - skipped, columns),
            panel.t.Block(skipped, skipped, columns, columns)};
}

// Both return the number of reflections, which is that of the columns unless one of them is collinear. The
// triangular factor of these reflections is filled, and all columns of the panel have them.
std::int32_t Factorisation::FactorNarrowPanel(const BlockReflector& panel, std::int32_t first) {
    for (std::int32_t k = 0; k < panel.v.columns; ++k) {
        const std::int32_t i = first + k;
        if (IsCollinear(i)) return k;
        Reflect(i, {i + 1, first + panel.v.columns});
        ExtendTriangularFactor(panel, k, tau_[i]);
    }
    return panel.v.columns;
}

std::int32_t Factorisation::FactorPanel(const BlockReflector& panel, std::int32_t first) {
    const std::int32_t width = panel.v.columns;
    if (width <= kNarrowPanel) return FactorNarrowPanel(panel, first);

    const std::int32_t half = width / 2;
    const std::int32_t left = FactorPanel(Part(panel, 0, half), first);
    ApplyPanel(Part(panel, 0, left), first, {first + half, first + width});
    if (left < half) return left;

    const std::int32_t right = FactorPanel(Part(panel, half, width - half), first + half);
    JoinTriangularFactors(Part(panel, 0, half + right), half);
    return half + right;
}

std::int32_t Factorisation::CollinearColumn() {
    const std::int32_t reflections = std::min(a_.rows, a_.columns);
    if (a_.columns <= kPlainColumns) {
        for (std::int32_t i = 0; i < reflections; ++i) {
            if (IsCollinear(i)) return i + 1;
            Reflect(i, {i + 1, a_.columns});
        }
        return 0;
    }

    double* const triangle = room_.first;
    constexpr std::int32_t kTriangle = kPanelColumns * kPanelColumns;
    room_ = {room_.first + kTriangle, room_.length - kTriangle};
    for (std::int32_t first = 0; first < reflections; first += kPanelColumns) {
        const std::int32_t width = std::min(kPanelColumns, reflections - first);
        const BlockReflector panel{a_.Block(first, first, a_.rows - first, width),
                                   {triangle, width, width, kPanelColumns}};
        const std::int32_t done = FactorPanel(panel, first);
        ApplyPanel(Part(panel, 0, done), first, {first + width, a_.columns});
        if (done < width) return first + done + 1;
    }
    return 0;
}

}  // namespace

std::int32_t CollinearityQRStep(const MatrixView& a, double* tau, double tolerance, const PartialNorms& norms,
                                const Workspace& room) {
    return Factorisation(a, tau, tolerance, norms, room).CollinearColumn();
}

}  // namespace orvanth
