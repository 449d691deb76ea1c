// SPDX-License-Identifier: BSD-3-Clause
// One refinement, from accepted arguments to the refined search vector.
#include "pose_refinement/refinement.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include "camera_pose/camera_position_grad_func.h"
#include "camera_pose/camera_position_grad_func_hybrid.h"
#include "camera_pose/camera_position_opt_func.h"
#include "fw_tools/report.h"
#include "pose_refinement/sites.h"

namespace pose_refinement {
namespace {

/// k: k11, k13, k23
Intrinsics intrinsics_of(const double* k) { return {k[0], k[1], k[2]}; }

std::vector<double> target_vector(const Arguments& arguments) {
  const Rotation_type& type = *arguments.type;
  std::vector<double> target(static_cast<std::size_t>(arguments.num_equations()), 0.0);
  auto next = target.begin();
  for (int r = 0; r < type.num_representations; ++r) {
    const double* observation = arguments.observations;
    for (int i = 0; i < arguments.num_points; ++i, observation += type.observation_size) {
      *next++ = observation[0];
      *next++ = observation[1];
    }
  }
  return target;
}

/// A Jacobian that owns the objective it differentiates.
template <typename Jacobian>
std::unique_ptr<fw::Grad_func> make_jacobian(const Problem& problem) {
  auto objective = std::make_unique<Camera_position_opt_func>(problem.points, problem.intrinsics, problem.type->id);
  auto jacobian = std::make_unique<Jacobian>(problem.points, problem.intrinsics, objective.get());
  static_cast<void>(objective.release());  // a constructor that fails owns nothing, so not before
  return jacobian;
}

/// The one place that knows which class belongs to which type; the last line guards against a type out of the table.
std::unique_ptr<fw::Grad_func> make_jacobian_of_type(const Problem& problem) {
  switch (problem.type->id) {
    case 0:
      return make_jacobian<Camera_position_grad_func_aau>(problem);
    case 1:
      return make_jacobian<Camera_position_grad_func_aan>(problem);
    case 2:
      return make_jacobian<Camera_position_grad_func_qu>(problem);
    case 3:
      return make_jacobian<Camera_position_grad_func_qn>(problem);
    case 10:
      return make_jacobian<Camera_position_grad_func_aau_bv>(problem);
    case 11:
      return make_jacobian<Camera_position_grad_func_aan_bv>(problem);
    case 12:
      return make_jacobian<Camera_position_grad_func_qu_bv>(problem);
    case -1:
      return make_jacobian<Camera_position_grad_func_qu_aau_aan>(problem);
    case -2:
      return make_jacobian<Camera_position_grad_func_aau_qu_aan>(problem);
    case -3:
      return make_jacobian<Camera_position_grad_func_aan_qu_aau>(problem);
    default:
      fw::raise(site::no_jacobian, "Invalid rotation type!");
  }
}

}  // namespace

Problem::Problem(const Arguments& arguments)
    : type(arguments.type),
      x0(arguments.camera_parameters, arguments.camera_parameters + type->num_dimensions()),
      intrinsics(intrinsics_of(arguments.camera_parameters + type->num_dimensions())),
      points(std::make_shared<const Packed_points>(arguments.points, static_cast<std::size_t>(arguments.num_points))),
      target(target_vector(arguments)) {
  if (arguments.weights != nullptr) weights.assign(arguments.weights, arguments.weights + target.size());
}

Settings::Settings(const Arguments& arguments) {
  const double* criteria = arguments.stopping_criteria;
  if (criteria == nullptr) return;
  max_iters = arguments.type->id == 0 ? 3 : 1;
  min_x_step = static_cast<float>(criteria[1]);
  min_y_step = static_cast<float>(criteria[2]);
  is_analytic = criteria[3] == 0.0;  // NaN selects finite differences
}

void configure(fw::Linear_taylor_solver& solver, const Problem& problem, const Settings& settings) {
  solver.set_num_dimensions(problem.type->num_dimensions());
  solver.set_num_equations(static_cast<int>(problem.target.size()));
  solver.set_max_iters(settings.max_iters);
  solver.set_min_x_step(settings.min_x_step);
  solver.set_min_y_step(settings.min_y_step);
}

void add_jacobian(fw::Linear_taylor_solver& solver, const Problem& problem) {
  auto jacobian = make_jacobian_of_type(problem);
  if (!problem.weights.empty()) jacobian->set_weights(problem.weights);
  solver.set_grad_funcs({jacobian.get()});
  static_cast<void>(jacobian.release());  // the solver owns it now
}

void add_objective(fw::Linear_taylor_solver& solver, const Problem& problem) {
  constexpr double translation_step = 0.01;
  std::vector<double> steps(static_cast<std::size_t>(problem.type->num_dimensions()), translation_step);
  std::fill_n(steps.begin(), problem.type->rotation_size(), problem.type->difference_step());
  solver.set_finite_difference_steps({steps});

  auto objective = std::make_unique<Camera_position_opt_func>(problem.points, problem.intrinsics, problem.type->id);
  if (!problem.weights.empty()) objective->set_weights(problem.weights);
  solver.set_funcs({objective.get()});
  static_cast<void>(objective.release());  // the solver owns it now
}

std::vector<double> refine(const Problem& problem, const Settings& settings) try {
  fw::Linear_taylor_solver solver;
  configure(solver, problem, settings);
  if (settings.is_analytic) {
    add_jacobian(solver, problem);
  } else {
    add_objective(solver, problem);
  }
  return solver.optimise(problem.x0, problem.target);
}
FW_ADD_CONTEXT(site::refinement, fw::text("Num points=", problem.points->size(), " num_eqs=", problem.target.size(),
                                          " (vals of -1 mean not initialised)"))

}  // namespace pose_refinement
