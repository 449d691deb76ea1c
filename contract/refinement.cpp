// SPDX-License-Identifier: BSD-3-Clause
// The stopping rules of a call, and its solver.
#include "contract/refinement.h"

#include "contract/pose_solver.h"
#include "contract/problem.h"
#include "contract/sites.h"
#include "fw_tools/report.h"

namespace kelvane::contract {
namespace {

std::vector<double> refine(const Problem& problem, const Settings& settings) try {
  const Pose_problem equations = problem.equations(settings.is_analytic);
  if (settings.is_analytic && equations.type->models == nullptr) fw::raise(site::no_jacobian, "Invalid rotation type!");
  Pose_solver solver(equations);
  solver.set_max_iters(settings.max_iters);
  solver.set_min_x_step(settings.min_x_step);
  solver.set_min_y_step(settings.min_y_step);
  return solver.refine(problem.x0);
}
FW_ADD_CONTEXT(site::refinement, fw::text("Num points=", problem.num_points(), " num_eqs=", problem.num_equations(),
                                          " (vals of -1 mean not initialised)"))

}  // namespace

Settings::Settings(const Arguments& arguments) {
  const double* criteria = arguments.stopping_criteria;
  if (criteria == nullptr) return;
  max_iters = arguments.type->id == 0 ? 3 : 1;
  min_x_step = static_cast<float>(criteria[1]);
  min_y_step = static_cast<float>(criteria[2]);
  is_analytic = criteria[3] == 0.0;  // NaN selects finite differences
}

std::vector<double> refine(const Arguments& arguments, const Settings& settings) {
  return refine(Problem(arguments), settings);
}

}  // namespace kelvane::contract
