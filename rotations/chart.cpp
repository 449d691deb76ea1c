// SPDX-License-Identifier: BSD-3-Clause
// Twists and parameters.
#include "rotations/chart.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kelvane {
namespace {

/// Column i of a times column j of b.
double product_of_columns(const double (&a)[3][3], int i, const double (&b)[3][3], int j) {
  return a[0][i] * b[0][j] + a[1][i] * b[1][j] + a[2][i] * b[2][j];
}

template <std::size_t n>
double dot(const double* a, const double* b) {
  double total = 0.0;
#pragma GCC unroll 4
  for (std::size_t i = 0; i < n; ++i) total += a[i] * b[i];
  return total;
}

/// Gram and Schmidt: W = L Q with orthogonal rows q_i and a unit triangle L.
template <std::size_t n>
struct Orthogonal_rows {
  double Q[3][4];
  double L[3][3] = {};
  double inverse[3];  // 1 / q_i'q_i

  [[gnu::always_inline]] explicit Orthogonal_rows(const double (&W)[3][4]) {
#pragma GCC unroll 3
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t d = 0; d < n; ++d) Q[i][d] = W[i][d];
      const double before = dot<n>(Q[i], Q[i]);
      double left = i == 0 ? before : cleaned(i);
      if (__builtin_expect(left < 0.5 * before, 0)) left = cleaned(i);  // once more where it cancelled
      inverse[i] = 1.0 / left;
    }
  }

 private:
  /// Takes from row i what lies along the rows in front; returns what is left of its squared length.
  [[gnu::always_inline]] double cleaned(std::size_t i) {
#pragma GCC unroll 2
    for (std::size_t j = 0; j < i; ++j) {
      const double along = dot<n>(Q[i], Q[j]) * inverse[j];
      L[i][j] += along;
#pragma GCC unroll 4
      for (std::size_t d = 0; d < n; ++d) Q[i][d] -= along * Q[j][d];
    }
    return dot<n>(Q[i], Q[i]);
  }
};

/// dr = Q' (Q Q')^-1 L^-1 omega
template <std::size_t n>
bool shortest_turn(const double (&W)[3][4], const double* omega, double* dr) {
  constexpr double largest_condition = 1e8;
  const Orthogonal_rows<n> rows(W);
  const auto& [Q, L, inverse] = rows;
  const double m10 = -L[1][0];  // of L^-1
  const double m21 = -L[2][1];
  const double m20 = -L[2][0] - L[2][1] * m10;
  const double squared_norm = dot<n>(W[0], W[0]) + dot<n>(W[1], W[1]) + dot<n>(W[2], W[2]);
  const double squared_norm_of_inverse =
      inverse[0] + (1.0 + m10 * m10) * inverse[1] + (1.0 + m21 * m21 + m20 * m20) * inverse[2];
  if (!(squared_norm * squared_norm_of_inverse <= largest_condition * largest_condition)) return false;
  const double y[3] = {inverse[0] * omega[0], inverse[1] * (m10 * omega[0] + omega[1]),
                       inverse[2] * (m20 * omega[0] + m21 * omega[1] + omega[2])};
#pragma GCC unroll 4
  for (std::size_t d = 0; d < n; ++d) dr[d] = Q[0][d] * y[0] + Q[1][d] * y[1] + Q[2][d] * y[2];
  return true;
}

}  // namespace

bool Chart::make() {
  if (!model.turns) return false;
  double size = 0.0;
  for (std::size_t j = 0; j < model.n; ++j) {
    // R' dR/dr_j = [W_j]x                                                     (Eq. 46)
    W[0][j] = product_of_columns(model.R, 2, model.dR[j], 1);
    W[1][j] = product_of_columns(model.R, 0, model.dR[j], 2);
    W[2][j] = product_of_columns(model.R, 1, model.dR[j], 0);
    size += std::abs(W[0][j]) + std::abs(W[1][j]) + std::abs(W[2][j]);
  }
  return size <= std::numeric_limits<double>::max();  // not so for NaN
}

bool turn_parameters(const Chart& chart, const double* omega, double* dr) {
  return chart.model.n == 3 ? shortest_turn<3>(chart.W, omega, dr) : shortest_turn<4>(chart.W, omega, dr);
}

Chart_column column_of(const Chart& chart, std::size_t j) {
  const std::size_t n = chart.model.n;
  if (j < n) return {3, {chart.W[0][j], chart.W[1][j], chart.W[2][j]}};
  const auto& row = chart.model.R[j - n];  // column j - n of R'
  return {0, {row[0], row[1], row[2]}};
}

void shift_parameters(const Chart& chart, const double* v, double* dt) {
  for (std::size_t j = 0; j < 3; ++j) {
    dt[j] = chart.model.R[j][0] * v[0] + chart.model.R[j][1] * v[1] + chart.model.R[j][2] * v[2];
  }
}

}  // namespace kelvane
