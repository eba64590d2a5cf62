// Products of Householder reflections in compact form: I - V T V', V unit lower trapezoidal, T upper triangular.
// R. Schreiber, C. Van Loan, A storage-efficient WY representation for products of Householder transformations,
// SIAM J. Sci. Stat. Comput. 10 (1989) 53.
#ifndef ORVANTH_LINALG_BLOCK_REFLECTOR_HPP
#define ORVANTH_LINALG_BLOCK_REFLECTOR_HPP

#include "linalg/matrix_view.hpp"

namespace orvanth {

// `v` is as a QR factorisation leaves it: the ones on its diagonal and the zeros above are not stored, and what
// stands there is not read. `t` has as many rows and columns as `v` has columns.
struct BlockReflector {
    MatrixView v, t;
};

// Fills column k of T, whose first k columns are known, from the factor of reflection k.
void ExtendTriangularFactor(const BlockReflector& q, std::int32_t k, double tau);

// Fills the block of T beside the factors of the first and of the other reflections, both known.
void JoinTriangularFactors(const BlockReflector& q, std::int32_t firstColumns);

// c := Q' c. `room` holds at least one column of `q.v.columns` elements; as many columns as fit are taken together.
void ApplyTransposed(const BlockReflector& q, const MatrixView& c, double* room, std::int32_t roomLength);

}  // namespace orvanth

#endif
