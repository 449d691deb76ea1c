// SPDX-License-Identifier: BSD-3-Clause
// The sentences of a refinement's end.
#include <cmath>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/report.h"

namespace kelvane {
namespace {

/// Which point of the start has no finite cost, and why.
std::string reason_of_no_cost(const Refine_input& input) {
  std::size_t worst = 0;
  bool is_nan = false;
  double largest = 0.0;
  Pose_cost cost(input);
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
  const std::string point = "point " + std::to_string(input.words.first_number + worst);
  if (std::isfinite(cost.cost_of_points(input.data.world().from_users(input.start), Robust_loss()))) {
    return "the prior is so far away that its cost is not finite.";
  }
  if (is_nan) {
    return "a point lies in the plane of the camera centre, and its prediction is not finite: " + point + ".";
  }
  return "the residual of " + point + ", " + text_of(largest) + ", is too large: the sum of squares is not finite.";
}

/// How many points the loss leaves a pull: fewer than determine a pose.
std::string reason_of_no_pull(const Refine_input& input, const Refine_result& result, const Point_sums& sums) {
  return "The points do not determine the pose: " + std::to_string(sums.num_pulling) +
         (sums.num_pulling == 1 ? " has a residual" : " have residuals") + " below " + input.words.loss_scale + " = " +
         text_of(result.loss_scale) + ", the others no pull.";
}

std::string reason(const Refine_input& input, const Refine_result& result, const Point_sums& sums) {
  using namespace std::string_literals;
  const std::size_t least_points = num_needed_points(input.problem);
  const Refine_options& options = input.options;
  const Words& words = input.words;
  switch (result.exit) {
    case Refine_exit::step:
      return "Converged: the step is below "s + words.step_tolerance + " = " + text_of(options.step_tolerance) + ".";
    case Refine_exit::rounding:
      return "Converged: rounding hides any further decrease.";
    case Refine_exit::decrease:
      return "Converged: the decrease is below "s + words.function_tolerance + " = " +
             text_of(options.function_tolerance) + ".";
    case Refine_exit::max_iterations:
      return "Not converged: stopped after "s + words.max_iterations + " = " + std::to_string(options.max_iterations) +
             ".";
    case Refine_exit::stopped:
      return "Not converged: stopped by "s + words.watch + ".";
    case Refine_exit::uphill:
      return "Not converged: no part of the step lowers the cost.";
    case Refine_exit::no_cost:
      return "Not refined: at the start " + reason_of_no_cost(input);
    case Refine_exit::undetermined:
      if (sums.num_pulling >= least_points) {
        return "The points do not determine the pose: some direction of motion leaves all predictions as they are.";
      }
      return reason_of_no_pull(input, result, sums);
    case Refine_exit::behind:
      return "Not found: more than half of the weight lies behind the camera.";
    case Refine_exit::ambiguous:
      return "Ambiguous: the points are flat to within the noise, and another pose, tilted the other way, fits as "
             "well: "
             "RMS " +
             text_of(result.alternative->rms) + " against " + text_of(result.after.robust) + ".";
    case Refine_exit::no_consensus:
    case Refine_exit::failed:
      break;
  }
  return {};
}

}  // namespace

std::string exit_message(const Refine_input& input, const Refine_result& result, const Point_sums& sums) {
  std::string message = reason(input, result, sums);
  if (result.num_behind == 0) return message;
  const char* lie = result.num_behind == 1 ? " point lies" : " points lie";
  return message + " " + std::to_string(result.num_behind) + lie +
         " behind the camera: this is hardly the pose that took the picture.";
}

}  // namespace kelvane
