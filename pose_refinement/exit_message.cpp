// SPDX-License-Identifier: BSD-3-Clause
// The sentences of a refinement's end.
#include <cmath>
#include <cstdio>

#include "pose_refinement/report.h"

namespace kelvane {
namespace {

/// As printf's %g. No stream: it would keep quiet where memory runs out.
std::string text(double value) {
  char digits[32];
  static_cast<void>(std::snprintf(digits, sizeof digits, "%g", value));
  return digits;
}

/// Which point of the start has no finite cost, and why.
std::string reason_of_no_cost(const Report_input& input) {
  std::size_t worst = 0;
  bool is_nan = false;
  double largest = 0.0;
  Pose_cost cost(input.data, input.rows);
  const std::vector<double>& lengths = cost.lengths(input.data.world().from_users(input.start));
  const double* s = lengths.data();
  for (const Sights& sights : input.data.sights()) {
    for (std::size_t i = 0; i < sights.num_points && !is_nan; ++i, ++s) {
      is_nan = std::isnan(*s);
      if (!is_nan && !(*s > largest)) continue;
      largest = *s;
      worst = sights.index[i];
    }
  }
  const std::string point = "point " + std::to_string(worst);
  if (is_nan) return point + " lies in the plane of the camera centre, and its prediction is not finite.";
  return "the residual of " + point + ", " + text(largest) + ", is too large: the sum of squares is not finite.";
}

std::string reason(const Report_input& input, const Refine_result& result, const Point_sums& sums) {
  constexpr std::size_t least_points = 3;
  const Refine_options& options = input.options;
  switch (result.exit) {
    case Refine_exit::step:
      return "Converged: the step is below step_tolerance = " + text(options.step_tolerance) + ".";
    case Refine_exit::rounding:
      return "Converged: rounding hides any further decrease.";
    case Refine_exit::decrease:
      return "Converged: the decrease is below function_tolerance = " + text(options.function_tolerance) + ".";
    case Refine_exit::max_iterations:
      return "Not converged: stopped after max_iterations = " + std::to_string(options.max_iterations) + ".";
    case Refine_exit::stopped:
      return "Not converged: stopped by watch.";
    case Refine_exit::uphill:
      return "Not converged: no part of the step lowers the cost.";
    case Refine_exit::no_cost:
      return "Not refined: at the start " + reason_of_no_cost(input);
    case Refine_exit::undetermined:
      if (sums.num_pulling >= least_points) {
        return "The points do not determine the pose: some direction of motion leaves all predictions as they are.";
      }
      return "The points do not determine the pose: " + std::to_string(sums.num_pulling) +
             " have residuals below loss_scale = " + text(options.loss_scale) + ", the others no pull.";
    case Refine_exit::behind:
      return "Not found: more than half of the weight lies behind the camera, and the mirrored pose led to nothing "
             "better.";
    case Refine_exit::failed:
      break;
  }
  return {};
}

}  // namespace

std::string exit_message(const Report_input& input, const Refine_result& result, const Point_sums& sums) {
  std::string message = reason(input, result, sums);
  if (result.num_behind == 0) return message;
  const char* lie = result.num_behind == 1 ? " point lies" : " points lie";
  return message + " " + std::to_string(result.num_behind) + lie +
         " behind the camera: this is hardly the pose that took the picture.";
}

}  // namespace kelvane
