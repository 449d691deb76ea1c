// SPDX-License-Identifier: BSD-3-Clause
// Reflections at a plane through the points.
#include "pose_refinement/mirrored.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "least_squares/singular_values.h"
#include "pose_refinement/pose_cost.h"

namespace kelvane {
namespace {

using Vector = std::array<double, 3>;

double dot(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// The plane next to the points, whose middle is 0.
struct Plane {
  Vector normal;
  double flatness;  ///< mean square distance from it, in parts of that along it
};

Plane plane_of(const Observed_points& data) {
  double scatter[3][4] = {};  // and a right-hand side of zero
  for (const Sights& sights : data.sights()) {
    for (const double* X = sights.points; X != sights.points + 3 * sights.num_points; X += 3) {
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) scatter[i][j] += X[i] * X[j];
      }
    }
  }
  Singular_values values;
  values.decompose(&scatter[0][0], 3, 3);
  std::size_t least = 0;
  for (std::size_t k = 1; k < 3; ++k) least = values.sigma(k) < values.sigma(least) ? k : least;
  const double* n = values.v(least);
  return {{n[0], n[1], n[2]}, values.sigma(least) / values.largest()};
}

/// x <- (I - 2 n n') x
void reflect(const Vector& n, double* x) {
  const double twice = 2.0 * dot(n.data(), x);
  for (std::size_t i = 0; i < 3; ++i) x[i] -= twice * n[i];
}

void reflect_columns(const Vector& n, double (&R)[3][3]) {
  for (int j = 0; j < 3; ++j) {
    double column[] = {R[0][j], R[1][j], R[2][j]};
    reflect(n, column);
    for (int i = 0; i < 3; ++i) R[i][j] = column[i];
  }
}

}  // namespace

/// With M = I - 2 n n' for the plane's normal n, p = R' (X - t) and M X = X in the plane: -p = -R' M (X - M t).
Pose mirrored(const Pose& pose, const Observed_points& data) {
  const Vector n = plane_of(data).normal;
  Pose other = pose;
  reflect(n, other.centre);
  reflect_columns(n, other.rotation);
  for (auto& row : other.rotation) {
    for (double& entry : row) entry = -entry;
  }
  return other;
}

Pose tilted(const Pose& pose, const Observed_points& data) {
  const Vector n = plane_of(data).normal;
  const auto& R = pose.rotation;
  const double distance = std::sqrt(dot(pose.centre, pose.centre));
  Vector line;  // of sight to the middle, in the camera frame
  for (std::size_t j = 0; j < 3; ++j) {
    line[j] = (R[0][j] * pose.centre[0] + R[1][j] * pose.centre[1] + R[2][j] * pose.centre[2]) / distance;
  }
  Pose other = pose;
  reflect(n, other.centre);
  for (double& entry : other.centre) entry = -entry;
  for (auto& row : other.rotation) reflect(line, row);
  reflect_columns(n, other.rotation);
  return other;
}

bool is_seen_flat(const Pose& pose, const Refine_input& input, double most) {
  constexpr double rounding = 1e-15;
  const Plane plane = plane_of(input.data);
  if (plane.flatness <= rounding) return true;
  const Vector& n = plane.normal;
  const double limit = most * most * static_cast<double>(input.data.num_used());
  alignas(cache_line) double seen[Block::max_rows];
  alignas(cache_line) double flat[Block::max_rows];
  double lengths[Sights::most_points];
  double square = 0.0;
  for (Sights sights : input.data.sights()) {
    input.rows.residuals(sights, pose, seen);
    for (double* X = sights.points; X != sights.points + 3 * group_size * sights.num_groups(); X += 3) {
      const double height = dot(n.data(), X);
      for (std::size_t i = 0; i < 3; ++i) X[i] -= height * n[i];
    }
    input.rows.residuals(sights, pose, flat);
    for (std::size_t row = 0; row < sights.num_rows(); ++row) flat[row] -= seen[row];
    lengths_of_sights(sights, input.rows.sight_kernels(), flat, lengths);
    for (std::size_t i = 0; i < sights.num_points; ++i) square += lengths[i] * lengths[i];
    if (square > limit) return false;
  }
  return true;
}

}  // namespace kelvane
