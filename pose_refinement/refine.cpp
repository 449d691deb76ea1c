// SPDX-License-Identifier: BSD-3-Clause
// Checks, the descent, and the report.
#include "pose_refinement/refine.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "pose_refinement/descent.h"
#include "pose_refinement/mirrored.h"
#include "pose_refinement/options.h"
#include "pose_refinement/report.h"

namespace kelvane {
namespace {

void check(bool is_good, const char* name, const char* wanted) {
  if (!is_good) throw std::invalid_argument(std::string("options.") + name + " must be " + wanted + ".");
}

}  // namespace

void check(const Refine_options& options) {
  constexpr const char* positive = "a finite number above 0, or 0 for none";
  check(options.max_iterations >= 0, "max_iterations", "0 or more");
  check(options.step_tolerance >= 0.0, "step_tolerance", "0 or more");
  check(options.function_tolerance >= 0.0, "function_tolerance", "0 or more");
  check(options.loss_scale >= 0.0 && std::isfinite(options.loss_scale), "loss_scale", positive);
  check(options.noise_sigma >= 0.0 && std::isfinite(options.noise_sigma), "noise_sigma", positive);
}

namespace {

/// Where most of the weight ends behind the camera, the mirrored pose is tried as well: a flat target has the same
/// pixels there. It is taken if it has the points in front of it and is no worse than the start.
void look_from_other_side(const Report_input& input, Descent& descent, Descent_outcome& outcome) {
  constexpr double half = 0.5;
  const bool is_over = outcome.exit == Refine_exit::no_cost || outcome.exit == Refine_exit::stopped ||
                       outcome.exit == Refine_exit::max_iterations;
  if (input.rows.camera().sees_directions || is_over) return;
  Pose_cost cost(input.data, input.rows);
  const Pose& last = outcome.history.back().pose;
  if (cost.part_behind(last) <= half) return;
  const Descent_outcome other = descent.run(mirrored(last, input.data), outcome.history);
  const Pose& found = other.history.back().pose;
  if (cost.part_behind(found) > half) return;
  if (cost.cost(found, other.loss) <= cost.cost(outcome.history.front().pose, other.loss)) outcome = other;
}

}  // namespace

Refine_result refine(const Refine_problem& problem, const Refine_options& options) {
  check(options);
  check(problem.camera);
  const Pose start = checked(problem.start);
  const Observed_points data(problem, start);
  const Camera_rows rows(problem.camera);
  const Report_input input{problem, options, data, rows, start};
  Descent descent(data, rows, options);
  Descent_outcome outcome = descent.run(data.world().from_users(start));
  look_from_other_side(input, descent, outcome);
  return report(input, outcome);
}

}  // namespace kelvane
