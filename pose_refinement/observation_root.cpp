// SPDX-License-Identifier: BSD-3-Clause
// Roots of what covariances of pixels and directions tell.
#include "pose_refinement/observation_root.h"

#include <algorithm>
#include <cmath>

#include "least_squares/small_system.h"

namespace kelvane {

Root root_of_pixel(const double* C, double* W) {
  constexpr double single = 1e-12;  // rounding of single precision, squared
  constexpr double least_pivot = 1e-10;
  const double a = C[0];
  const double b = 0.5 * (C[1] + C[2]);
  const double c = C[3];
  const double size = a * c;
  const double part = b / a;
  const double pivot = c - part * b;
  const bool is_plain = a > 0.0 && pivot > least_pivot * c && is_safe_square(size) && is_safe_square(a) &&
                        (C[1] - C[2]) * (C[1] - C[2]) <= single * size;
  if (!is_plain) return Symmetric_root<2>::of_covariance(C, W);
  const double root = 1.0 / std::sqrt(pivot);
  W[0] = 1.0 / std::sqrt(a);
  W[1] = 0.0;
  W[2] = -part * root;
  W[3] = root;
  return Root::found;
}

Root root_of_direction(const double* C, const double* n, double* W) {
  const int least = std::abs(n[0]) < std::abs(n[1]) ? (std::abs(n[0]) < std::abs(n[2]) ? 0 : 2)
                                                    : (std::abs(n[1]) < std::abs(n[2]) ? 1 : 2);
  double B[2][3] = {};  // rows across n and each other
  for (int k = 0; k < 3; ++k) B[0][k] = (k == least ? 1.0 : 0.0) - n[least] * n[k];
  const double length = std::sqrt(B[0][0] * B[0][0] + B[0][1] * B[0][1] + B[0][2] * B[0][2]);
  for (double& entry : B[0]) entry /= length;
  for (int k = 0; k < 3; ++k) B[1][k] = n[(k + 1) % 3] * B[0][(k + 2) % 3] - n[(k + 2) % 3] * B[0][(k + 1) % 3];
  double across[4] = {};
  for (int i = 0; i < 4; ++i) {
    for (int k = 0; k < 9; ++k) across[i] += B[i / 2][k / 3] * C[k] * B[i % 2][k % 3];
  }
  constexpr double single = 1e-6;
  const double size = std::max({std::abs(C[0]), std::abs(C[4]), std::abs(C[8])});
  for (const int i : {1, 2, 5}) {
    const int transposed = i % 3 * 3 + i / 3;
    if (!(std::abs(C[i] - C[transposed]) <= single * std::max(size, std::abs(C[i])))) return Root::not_symmetric;
  }
  double U[4];
  const Root found = Symmetric_root<2>::of_covariance(across, U);
  if (found != Root::found) return found;
  const double along = std::sqrt((U[0] * U[0] + U[1] * U[1] + U[2] * U[2] + U[3] * U[3]) / 2.0);
  for (int k = 0; k < 3; ++k) {
    W[k] = U[0] * B[0][k] + U[1] * B[1][k];
    W[3 + k] = U[2] * B[0][k] + U[3] * B[1][k];
    W[6 + k] = along * n[k];
  }
  return found;
}

}  // namespace kelvane
