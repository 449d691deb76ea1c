// SPDX-License-Identifier: BSD-3-Clause
// Reflections at a plane through the points.
#include "pose_refinement/mirrored.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "least_squares/singular_values.h"
#include "pose_refinement/motion.h"
#include "pose_refinement/pose_cost.h"

namespace kelvane {
namespace {

using Vector = std::array<double, 3>;

double dot(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// The plane next to the points as their weights count them.
struct Plane {
  Vector normal;
  Vector middle;    ///< of the points
  double flatness;  ///< mean square distance from it, in parts of that along it
};

/// Of a point's observation, on average over its coordinates.
double weight_of(const Sights& sights, std::size_t i) {
  double sum = 0.0;
  if (sights.whitening == nullptr) {
    for (std::size_t k = 0; k < sights.d; ++k) sum += sights.weights[sights.row(i, k)];
  } else {
    const std::size_t count = Sights::num_of_whitening(sights.d);
    const double* W = sights.whitening + i / group_size * count * group_size + i % group_size;
    for (std::size_t k = 0; k < count; ++k) sum += W[k * group_size] * W[k * group_size];
  }
  return sum / static_cast<double>(sights.d);
}

/// `pulls`: what a loss leaves of the weights; all of them where it is empty.
Plane plane_of(const Observed_points& data, const std::vector<double>& pulls) {
  const bool is_plain = pulls.empty() && !data.has_weights() && !data.has_covariances();
  double total = 0.0;
  double middle[3] = {};
  double scatter[3][4] = {};  // and a right-hand side of zero
  std::size_t k = 0;
  for (const Sights& sights : data.sights()) {
    for (std::size_t i = 0; i < sights.num_points; ++i, ++k) {
      const double* X = &sights.points[3 * i];
      const double w = is_plain ? 1.0 : (pulls.empty() ? 1.0 : pulls[k]) * weight_of(sights, i);
      total += w;
      for (int a = 0; a < 3; ++a) {
        middle[a] += w * X[a];
        for (int b = a; b < 3; ++b) scatter[a][b] += w * X[a] * X[b];
      }
    }
  }
  for (int a = 0; a < 3; ++a) {
    for (int b = a; b < 3; ++b) scatter[b][a] = scatter[a][b] -= middle[a] * middle[b] / total;
  }
  Singular_values values;
  values.decompose(&scatter[0][0], 3, 3);
  std::size_t least = 0;
  for (std::size_t c = 1; c < 3; ++c) least = values.sigma(c) < values.sigma(least) ? c : least;
  const double* n = values.v(least);
  return {{n[0], n[1], n[2]},
          {middle[0] / total, middle[1] / total, middle[2] / total},
          values.sigma(least) / values.largest()};
}

/// x <- (I - 2 n n') x
void reflect(const Vector& n, double* x) {
  const double twice = 2.0 * dot(n.data(), x);
  for (std::size_t i = 0; i < 3; ++i) x[i] -= twice * n[i];
}

/// Turns the target until the angle of its plane's normal with the line of sight is at least so large.
void lean_further(const Vector& n, const Vector& line, double least, Pose& pose) {
  auto& R = pose.rotation;
  double seen[3];  // the normal, in the camera frame, on the side of the line
  for (int j = 0; j < 3; ++j) seen[j] = R[0][j] * n[0] + R[1][j] * n[1] + R[2][j] * n[2];
  const double side = dot(seen, line.data()) < 0.0 ? -1.0 : 1.0;
  double axis[3];
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    axis[i] = side * (line[static_cast<std::size_t>(j)] * seen[k] - line[static_cast<std::size_t>(k)] * seen[j]);
  }
  const double sine = std::sqrt(dot(axis, axis));
  const double missing = least - std::atan2(sine, side * dot(seen, line.data()));
  if (!(missing > 0.0) || sine == 0.0) return;
  double back[6] = {};  // the camera's turn is that of the target turned round
  for (int i = 0; i < 3; ++i) back[3 + i] = -missing * axis[i] / sine;
  pose = moved_by(pose, back);
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
  const Plane plane = plane_of(data, {});
  Pose other = pose;
  reflect(plane.normal, other.centre);
  reflect_columns(plane.normal, other.rotation);
  for (auto& row : other.rotation) {
    for (double& entry : row) entry = -entry;
  }
  return other;
}

/// Near the camera and nearly frontal the two minima lie close together, and from between them the way leads back: the
/// start is tilted by least_tilt at least.
Pose tilted(const Pose& pose, const Observed_points& data, const std::vector<double>& pulls) {
  constexpr double least_tilt = 0.4;
  const Plane plane = plane_of(data, pulls);
  const auto& R = pose.rotation;
  double from_middle[3];
  for (std::size_t i = 0; i < 3; ++i) from_middle[i] = pose.centre[i] - plane.middle[i];
  const double distance = std::sqrt(dot(from_middle, from_middle));
  Vector line;  // of sight to the middle, in the camera frame
  for (std::size_t j = 0; j < 3; ++j) {
    line[j] = (R[0][j] * from_middle[0] + R[1][j] * from_middle[1] + R[2][j] * from_middle[2]) / distance;
  }
  Pose other = pose;
  for (auto& row : other.rotation) reflect(line, row);
  reflect_columns(plane.normal, other.rotation);
  lean_further(plane.normal, line, least_tilt, other);
  for (std::size_t i = 0; i < 3; ++i) {  // the middle stays where it is in the camera frame
    other.centre[i] = plane.middle[i] + distance * dot(other.rotation[i], line.data());
  }
  return other;
}

bool is_seen_flat(const Pose& pose, const Refine_input& input, const std::vector<double>& pulls, double most) {
  constexpr double rounding = 1e-15;
  const Plane plane = plane_of(input.data, pulls);
  if (plane.flatness <= rounding || std::isnan(most)) return true;
  const Vector& n = plane.normal;
  alignas(cache_line) double seen[Block::max_rows];
  alignas(cache_line) double flat[Block::max_rows];
  double lengths[Sights::most_points];
  double square = 0.0;
  std::size_t k = 0;
  for (Sights sights : input.data.sights()) {
    input.rows.residuals(sights, pose, seen);
    for (double* X = sights.points; X != sights.points + 3 * group_size * sights.num_groups(); X += 3) {
      const double height = dot(n.data(), X) - dot(n.data(), plane.middle.data());
      for (std::size_t i = 0; i < 3; ++i) X[i] -= height * n[i];
    }
    input.rows.residuals(sights, pose, flat);
    for (std::size_t row = 0; row < sights.num_rows(); ++row) flat[row] -= seen[row];
    lengths_of_sights(sights, input.rows.sight_kernels(), flat, lengths);
    for (std::size_t i = 0; i < sights.num_points; ++i, ++k)
      square += (pulls.empty() ? 1.0 : pulls[k]) * lengths[i] * lengths[i];
    if (!(square <= most * most * static_cast<double>(input.data.num_used()))) return false;
  }
  return true;
}

}  // namespace kelvane
