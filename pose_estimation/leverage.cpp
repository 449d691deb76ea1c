// SPDX-License-Identifier: BSD-3-Clause
// Eigenvalues of the hat matrix of a refinement, point by point.
#include "pose_estimation/leverage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "pose_refinement/projection.h"

namespace kelvane {
namespace {

/// The largest eigenvalue of J C J' / sigma^2 for the d rows of a point, no more than two of which are independent.
double leverage(const double* J, std::size_t d, std::size_t stride, const Refine_result& refined) {
  double H[3][3] = {};
  for (std::size_t i = 0; i < d; ++i) {
    for (std::size_t j = 0; j < d; ++j) {
      for (std::size_t a = 0; a < 6; ++a) {
        for (std::size_t b = 0; b < 6; ++b) H[i][j] += J[a * stride + i] * refined.covariance[a][b] * J[b * stride + j];
      }
      H[i][j] /= refined.noise_sigma * refined.noise_sigma;
    }
  }
  const double trace = H[0][0] + H[1][1] + H[2][2];
  double minors = 0.0;
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    minors += H[i][i] * H[j][j] - H[i][j] * H[j][i];
  }
  return 0.5 * (trace + std::sqrt(std::max(0.0, trace * trace - 4.0 * minors)));
}

}  // namespace

std::vector<double> leverages(const Refine_problem& problem, const Refine_result& refined) {
  constexpr std::size_t some = 64;  // at a time
  const std::size_t d = problem.camera.sees_directions ? 3 : 2, n = problem.points.size / 3;
  std::vector<double> seen(d * some), J(6 * d * some), all;
  for (std::size_t first = 0; first < n; first += some) {
    const std::size_t count = std::min(some, n - first);
    project(refined.pose, problem.camera, problem.points.data + 3 * first, count, seen.data(), J.data(), nullptr);
    for (std::size_t i = 0; i < count; ++i) all.push_back(leverage(&J[d * i], d, d * count, refined));
  }
  return all;
}

}  // namespace kelvane
