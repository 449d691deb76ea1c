// SPDX-License-Identifier: BSD-3-Clause
// From what the iteration found to what the caller gets.
#pragma once

#include <string>

#include "pose_refinement/descent.h"

namespace kelvane {

/// What a refinement is told about, in one place.
struct Report_input {
  const Refine_problem& problem;
  const Refine_options& options;
  const Observed_points& data;
  const Camera_rows& rows;
  Pose start;  ///< with the rotation next to the problem's
};

/// The result in the caller's world.
Refine_result report(const Report_input& input, const Descent_outcome& outcome);

/// The sums over the points of a result that its covariance and message need.
struct Point_sums {
  double weight_and_slope = 0.0;  ///< w + s w' / 2, of all points
  double pull = 0.0;              ///< (w s)^2
  std::size_t num_pulling = 0;    ///< with w above 0
};

/// Sets covariance, noise_sigma and is_determined: docs/derivations.md, Eqs. 43 to 45. `lengths` are those of the
/// residuals; they change places.
bool set_covariance(const Report_input& input, const Robust_loss& loss, const Point_sums& sums,
                    std::vector<double>& lengths, Refine_result& result);

/// Why the refinement ended, in words.
std::string exit_message(const Report_input& input, const Refine_result& result, const Point_sums& sums);

}  // namespace kelvane
