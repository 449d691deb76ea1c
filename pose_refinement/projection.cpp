// SPDX-License-Identifier: BSD-3-Clause
// The rows of a refinement without observations.
#include "pose_refinement/projection.h"

#include <algorithm>
#include <cmath>

#include "pose_refinement/camera_rows.h"

namespace kelvane {
namespace {

/// Row i of a block's point, by a twist (v, omega) of the camera frame, as derivatives by [w; dt]: w is omega, and a
/// shift dt of the centre is v = R' dt.
void copy_row(Block& block, std::size_t row, const Pose& pose, double* jacobian, std::size_t stride) {
  for (std::size_t c = 0; c < 3; ++c) {
    jacobian[c * stride] = block.column(3 + c)[row];
    double by_shift = 0.0;
    for (std::size_t k = 0; k < 3; ++k) by_shift += block.column(k)[row] * pose.rotation[c][k];
    jacobian[(3 + c) * stride] = by_shift;
  }
}

void fill_row(double value, double* jacobian, std::size_t stride) {
  for (std::size_t c = 0; c < 6; ++c) jacobian[c * stride] = value;
}

void place(const double* points, std::size_t n, Sights& sights) {
  sights.num_points = n;
  for (std::size_t i = 0; i < sights.num_groups() * group_size; ++i) {
    std::copy_n(points + 3 * std::min(i, n - 1), 3, &sights.points[3 * i]);
  }
}

}  // namespace

void project(const Pose& pose, const Camera_model& camera, const double* points, std::size_t n, double* seen,
             double* jacobian, double* depths) {
  const Camera_rows rows(camera);
  Sights sights{};  // nothing was observed: residuals are minus what is seen
  sights.d = camera.sees_directions ? 3 : 2;
  const std::size_t d = sights.d;
  const std::size_t most = Block::max_rows / d;
  Block block;
  for (std::size_t first = 0; first < n; first += most) {
    place(points + 3 * first, std::min(most, n - first), sights);
    rows.linearise(sights, pose, block);
    double some[Sights::most_points];
    rows.depths(sights, pose, some);
    if (depths != nullptr) std::copy_n(some, sights.num_points, depths + first);
    for (std::size_t i = 0; i < d * sights.num_points; ++i) {
      const std::size_t row = sights.row(i / d, i % d);
      seen[d * first + i] = 0.0 - block.column(6)[row];
      if (jacobian == nullptr) continue;
      copy_row(block, row, pose, jacobian + d * first + i, d * n);
      if (camera.lens && std::isnan(seen[d * first + i]))
        fill_row(seen[d * first + i], jacobian + d * first + i, d * n);
    }
  }
}

}  // namespace kelvane
