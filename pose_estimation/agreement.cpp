// SPDX-License-Identifier: BSD-3-Clause
// The kernels over all matches, or over as many as are needed.
#include "pose_estimation/agreement.h"

#include <algorithm>
#include <cmath>

namespace kelvane {
namespace {

struct World_to_camera {
  double A[3][3], b[3];

  explicit World_to_camera(const Pose& pose) {
    for (int i = 0; i < 3; ++i) {
      b[i] = 0.0;
      for (int j = 0; j < 3; ++j) {
        A[i][j] = pose.rotation[j][i];
        b[i] -= A[i][j] * pose.centre[j];
      }
    }
  }
};

}  // namespace

Agreement::Agreement(const Matches& matches) : matches_(matches), kernels_(consensus_kernels(best_instruction_set())) {}

double Agreement::gain(const Pose& pose, double least) const {
  constexpr std::size_t groups_of_part = 16;
  constexpr double num_sigma = 4.0;
  const World_to_camera to_camera(pose);
  const double part = least / static_cast<double>(matches_.size());
  double sums[group_size] = {};
  double sum = 0.0;
  for (std::size_t first = 0; first < matches_.num_groups(); first += groups_of_part) {
    const std::size_t num_groups = std::min(groups_of_part, matches_.num_groups() - first);
    kernels_.add_gains(matches_.groups() + first * numbers_of_match * group_size, num_groups, to_camera.A, to_camera.b,
                       sums);
    sum = 0.0;
    for (const double value : sums) sum += value;
    const std::size_t num_seen = std::min((first + num_groups) * group_size, matches_.size());
    const double expected = part * static_cast<double>(num_seen);
    if (sum < expected - num_sigma * std::sqrt(expected * (1.0 - part))) return 0.0;
  }
  return sum > least ? sum : 0.0;
}

std::vector<double> Agreement::squares(const Pose& pose) const {
  const World_to_camera to_camera(pose);
  std::vector<double> values(matches_.num_groups() * group_size);
  kernels_.squares(matches_.groups(), matches_.num_groups(), to_camera.A, to_camera.b, values.data());
  values.resize(matches_.size());
  return values;
}

double Agreement::crowd(const Pose& pose, const std::vector<std::size_t>& chosen, double square) const {
  constexpr std::size_t most_chosen = 64, most_groups = 512;
  const double none[3][3] = {};  // the same point for all
  const World_to_camera to_camera(pose);
  const std::size_t num_groups = std::min(matches_.num_groups(), most_groups);
  const std::size_t num_others = std::min(matches_.size(), num_groups * group_size);
  std::vector<double> values(num_groups * group_size);
  double count = 0.0, num_pairs = 0.0;
  for (std::size_t k = 0; k < std::min(chosen.size(), most_chosen); ++k) {
    const double* X = matches_.point(chosen[k]);
    double p[3];
    for (int i = 0; i < 3; ++i) {
      p[i] = to_camera.A[i][0] * X[0] + to_camera.A[i][1] * X[1] + to_camera.A[i][2] * X[2] + to_camera.b[i];
    }
    kernels_.squares(matches_.groups(), num_groups, none, p, values.data());
    for (std::size_t j = 0; j < num_others; ++j) count += j != chosen[k] && values[j] <= square ? 1.0 : 0.0;
    num_pairs += static_cast<double>(num_others);
  }
  return std::max(0.0, count - 3.0 * std::sqrt(count)) / std::max(num_pairs, 1.0);
}

}  // namespace kelvane
