// SPDX-License-Identifier: BSD-3-Clause
// One-sided Jacobi.
#include "least_squares/singular_values.h"

#include <algorithm>
#include <cmath>

namespace kelvane {
namespace {

double product(const double* a, const double* b, std::size_t size) {
  double total = 0.0;
  for (std::size_t i = 0; i < size; ++i) total += a[i] * b[i];
  return total;
}

/// (a, b) becomes (cosine a - sine b, sine a + cosine b).
void turn(double* a, double* b, double cosine, double sine, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    const double old_a = a[i];
    a[i] = cosine * old_a - sine * b[i];
    b[i] = sine * old_a + cosine * b[i];
  }
}

}  // namespace

void Singular_values::decompose(const double* rows, std::size_t num_rows, std::size_t n) {
  num_rows_ = num_rows;
  n_ = n;
  columns_.resize(n * num_rows);
  v_.resize(n * n);
  sigma_.resize(n);
  component_.resize(n);
  for (std::size_t c = 0; c < n; ++c) {
    for (std::size_t i = 0; i < num_rows; ++i) columns_[c * num_rows + i] = rows[i * (n + 1) + c];
    for (std::size_t i = 0; i < n; ++i) v_[c * n + i] = i == c ? 1.0 : 0.0;
  }
  double longest = 0.0;
  for (std::size_t c = 0; c < n; ++c) {
    longest = std::max(longest, product(&columns_[c * num_rows], &columns_[c * num_rows], num_rows));
  }
  negligible_ = eps * eps * longest;
  constexpr int most_sweeps = 40;  // six to eight are usual
  bool has_turned = true;
  for (int sweep = 0; has_turned && sweep < most_sweeps; ++sweep) {
    has_turned = false;
    for (std::size_t p = 0; p + 1 < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) has_turned |= rotate(p, q);
    }
  }
  for (std::size_t c = 0; c < n; ++c) {
    const double* column = &columns_[c * num_rows];
    sigma_[c] = std::sqrt(product(column, column, num_rows));
    double along = 0.0;
    for (std::size_t i = 0; i < num_rows; ++i) along += column[i] * rows[i * (n + 1) + n];
    component_[c] = sigma_[c] > 0.0 ? along / sigma_[c] : 0.0;
  }
}

/// Turns columns p and q until they are orthogonal; false when they were, or when all that is left of one of them is
/// rounding, which no number of turns would end.
bool Singular_values::rotate(std::size_t p, std::size_t q) {
  double* a = &columns_[p * num_rows_];
  double* b = &columns_[q * num_rows_];
  const double aa = product(a, a, num_rows_);
  const double bb = product(b, b, num_rows_);
  const double ab = product(a, b, num_rows_);
  if (aa <= negligible_ || bb <= negligible_) return false;
  if (!(std::abs(ab) > eps * std::sqrt(aa) * std::sqrt(bb))) return false;
  const double zeta = (bb - aa) / (2.0 * ab);
  const double tangent = std::copysign(1.0, zeta) / (std::abs(zeta) + std::sqrt(1.0 + zeta * zeta));
  const double cosine = 1.0 / std::sqrt(1.0 + tangent * tangent);
  turn(a, b, cosine, cosine * tangent, num_rows_);
  turn(&v_[p * n_], &v_[q * n_], cosine, cosine * tangent, n_);
  return true;
}

double Singular_values::largest() const { return *std::max_element(sigma_.data(), sigma_.data() + n_); }

double Singular_values::usual_limit() const {
  double sum = 0.0;
  for (std::size_t i = 0; i < n_; ++i) sum += sigma_[i];
  return 2.0 * eps * sum;
}

}  // namespace kelvane
