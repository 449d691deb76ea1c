// SPDX-License-Identifier: BSD-3-Clause
// Scenes some of whose observations are of other points.
#pragma once

#include <cstddef>
#include <utility>

#include "pose_estimation/estimate.h"
#include "support/refined_problems.h"

namespace support {

inline kelvane::Estimate_problem without_start(const Refined_problem& problem) {
  return {problem.points, problem.observations, problem.camera};
}

/// n points with noise; of each ten, `wrong` in a row have exchanged observations.
inline Refined_problem scene_with_outliers(Random& random, std::size_t n, bool sees_directions, std::size_t wrong) {
  Refined_problem problem = random_scene(random, n, sees_directions, sees_directions ? 1e-3 : 1.0);
  const std::size_t d = problem.d();
  for (std::size_t i = 0; i + 1 < n; ++i) {
    if (i % 10 + 1 >= wrong) continue;
    for (std::size_t k = 0; k < d; ++k) {
      std::swap(problem.observations[d * i + k], problem.observations[d * (i + 1) + k]);
    }
  }
  return problem;
}

inline bool have_same_bits(const kelvane::Estimate_result& a, const kelvane::Estimate_result& b) {
  return have_same_bits(static_cast<const kelvane::Refine_result&>(a), static_cast<const kelvane::Refine_result&>(b)) &&
         a.num_trials == b.num_trials && std::memcmp(&a.log10_chance, &b.log10_chance, sizeof(double)) == 0;
}

}  // namespace support
