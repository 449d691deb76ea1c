// SPDX-License-Identifier: BSD-3-Clause
// From what the iteration found to what the caller gets.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "pose_refinement/descent.h"
#include "pose_refinement/refine_input.h"

namespace kelvane {

/// What the iteration came to.
struct Descent_outcome {
  Refine_exit exit;
  Robust_loss loss;                               ///< with the scale in the end
  std::vector<Descent_entry> history;             ///< with costs at that scale
  std::optional<Descent_entry> alternative = {};  ///< another minimum, likewise
};

/// The result in the caller's world.
Refine_result report(const Refine_input& input, const Descent_outcome& outcome);

/// The sums over the points of a result that its covariance and message need.
struct Point_sums {
  double weight_and_slope = 0.0;  ///< w + s w' / 2, of all points
  double pull = 0.0;              ///< (w s)^2
  std::size_t num_pulling = 0;    ///< with w above 0
};

/// Sets covariance and noise_sigma (docs/derivations.md, Eqs. 43 to 45); true where the points determine the pose.
/// `lengths` are those of the residuals; they change places.
bool set_covariance(const Refine_input& input, const Robust_loss& loss, const Point_sums& sums,
                    std::vector<double>& lengths, Refine_result& result);

/// Standard deviation of a coordinate of an observation of weight 1: the known one, or from the sum of (w s)^2 and the
/// lengths s, which change places; NaN where no equation is over.
double noise_sigma_of(const Refine_input& input, Loss loss, double sum_of_pulls, std::vector<double>& lengths);

/// Why the refinement ended, in words.
std::string exit_message(const Refine_input& input, const Refine_result& result, const Point_sums& sums);

}  // namespace kelvane
