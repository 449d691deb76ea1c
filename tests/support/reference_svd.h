// SPDX-License-Identifier: BSD-3-Clause
// Minimum-norm least squares by a one-sided Jacobi decomposition, in more digits than the solver that is tested has.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace reference {

/// Eleven bits more than double: the rounding of a reference does not count beside that of what is compared with it,
/// and a matrix that is singular by construction has a singular value far below the cut, not near it.
using Real = long double;
using Vector = std::vector<Real>;
using Matrix = std::vector<Vector>;  // a list of rows, or of columns where it says so

inline Real dot(const Vector& a, const Vector& b) {
  Real sum = 0.0L;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

inline Matrix transposed(const Matrix& rows) {
  Matrix columns(rows.at(0).size(), Vector(rows.size()));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows[i].size(); ++j) columns[j][i] = rows[i][j];
  }
  return columns;
}

inline Matrix identity(std::size_t size) {
  Matrix I(size, Vector(size, 0.0L));
  for (std::size_t i = 0; i < size; ++i) I[i][i] = 1.0L;
  return I;
}

/// (a, b) becomes (c a - s b, s a + c b)
inline void rotate(Vector& a, Vector& b, Real c, Real s) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    const Real old_a = a[i];
    a[i] = c * old_a - s * b[i];
    b[i] = s * old_a + c * b[i];
  }
}

/// Turns each pair of the columns of A by right angles, and V with it, until they are orthogonal: the lengths of the
/// columns are then the singular values, and V holds the right singular vectors.
inline void orthogonalise(Matrix& A, Matrix& V) {
  constexpr int most_sweeps = 60;  // about six are needed; the bound ends it when rounding keeps a null column busy
  bool has_turned = true;
  for (int sweep = 0; has_turned && sweep < most_sweeps; ++sweep) {
    has_turned = false;
    for (std::size_t p = 0; p + 1 < A.size(); ++p) {
      for (std::size_t q = p + 1; q < A.size(); ++q) {
        const Real pp = dot(A[p], A[p]);
        const Real qq = dot(A[q], A[q]);
        const Real pq = dot(A[p], A[q]);
        if (std::abs(pq) <= std::numeric_limits<Real>::epsilon() * std::sqrt(pp * qq)) continue;
        has_turned = true;
        const Real zeta = (qq - pp) / (2.0L * pq);
        const Real tangent = std::copysign(1.0L, zeta) / (std::abs(zeta) + std::sqrt(1.0L + zeta * zeta));
        const Real cosine = 1.0L / std::sqrt(1.0L + tangent * tangent);
        rotate(A[p], A[q], cosine, cosine * tangent);
        rotate(V[p], V[q], cosine, cosine * tangent);
      }
    }
  }
}

struct Least_squares {
  Vector solution;
  std::size_t rank;
  Real condition;  // the largest singular value by the smallest that is not cut
};

/// The shortest x that minimises |J x - b|. Singular values up to 2 eps times their sum, or up to num_rows eps times
/// the largest, count as zero, with the eps of double: that is where the solver cuts.
inline Least_squares least_squares(const Matrix& J, const Vector& b, std::size_t num_rows = 0) {
  Matrix A = transposed(J);
  Matrix V = identity(A.size());
  orthogonalise(A, V);
  Vector singular_values;
  Real sum = 0.0L;
  for (const Vector& column : A) {
    singular_values.push_back(std::sqrt(dot(column, column)));
    sum += singular_values.back();
  }
  const Real largest = *std::max_element(singular_values.begin(), singular_values.end());
  const Real cut = std::max(2.0L * sum, static_cast<Real>(num_rows) * largest) * std::numeric_limits<double>::epsilon();
  Least_squares result{Vector(A.size(), 0.0L), 0, 1.0L};
  for (std::size_t k = 0; k < A.size(); ++k) {
    const Real sigma = singular_values[k];
    if (sigma <= cut) continue;
    ++result.rank;
    result.condition = std::max(result.condition, largest / sigma);
    const Real component = dot(A[k], b) / (sigma * sigma);
    for (std::size_t i = 0; i < A.size(); ++i) result.solution[i] += component * V[k][i];
  }
  return result;
}

}  // namespace reference
