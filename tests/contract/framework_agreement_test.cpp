// SPDX-License-Identifier: BSD-3-Clause
// A refinement by the engine and one by the published classes take the same steps.
#include <gtest/gtest.h>

#include <memory>

#include "contract/problem.h"
#include "contract/refinement.h"
#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_grad_func_hybrid.h"
#include "framework/camera_position_opt_func.h"
#include "fw_opt/linear_taylor_solver.h"
#include "support/cases.h"
#include "support/fake_input.h"
#include "support/matchers.h"
#include "support/matrix_of.h"

namespace {

using kelvane::contract::Arguments;
using kelvane::contract::Settings;
using support::Case;

constexpr std::uint64_t seed = 515151;
constexpr double same_step = 1e-9;  // relative; conditions up to 1e5, over up to ten iterations

using Points = std::vector<std::vector<double>>;

fw::Grad_func* jacobian_of_type(int type, const Points& points, const fw::matrix<double>& K, fw::Opt_func* base) {
  switch (type) {
    case 0:
      return new Camera_position_grad_func_aau(points, K, base);
    case 1:
      return new Camera_position_grad_func_aan(points, K, base);
    case 2:
      return new Camera_position_grad_func_qu(points, K, base);
    case 3:
      return new Camera_position_grad_func_qn(points, K, base);
    case 10:
      return new Camera_position_grad_func_aau_bv(points, K, base);
    case 11:
      return new Camera_position_grad_func_aan_bv(points, K, base);
    case 12:
      return new Camera_position_grad_func_qu_bv(points, K, base);
    case -1:
      return new Camera_position_grad_func_qu_aau_aan(points, K, base);
    case -2:
      return new Camera_position_grad_func_aau_qu_aan(points, K, base);
    default:
      return new Camera_position_grad_func_aan_qu_aau(points, K, base);
  }
}

/// The target in the published layout.
std::vector<double> target_of(const Arguments& arguments) {
  std::vector<double> target(static_cast<std::size_t>(arguments.num_equations()), 0.0);
  auto next = target.begin();
  for (int r = 0; r < arguments.type->num_representations; ++r) {
    for (int i = 0; i < arguments.num_points; ++i) {
      const double* observation = arguments.observations + arguments.type->observation_size * i;
      *next++ = observation[0];
      *next++ = observation[1];
    }
  }
  return target;
}

std::vector<double> refine_by_classes(const Arguments& arguments, const Settings& settings) {
  const kelvane::contract::Problem problem(arguments);
  Points points;
  for (int i = 0; i < arguments.num_points; ++i)
    points.emplace_back(arguments.points + 3 * i, arguments.points + 3 * i + 3);
  const auto [f, cx, cy] = problem.equations(true).intrinsics;
  const fw::matrix<double> K = support::matrix_of({{f, 0, cx}, {0, f, cy}, {0, 0, 1}});
  std::vector<double> weights;
  if (arguments.weights != nullptr) weights.assign(arguments.weights, arguments.weights + arguments.num_equations());

  fw::Linear_taylor_solver solver;
  solver.set_num_dimensions(arguments.type->num_dimensions());
  solver.set_num_equations(arguments.num_equations());
  solver.set_max_iters(settings.max_iters);
  solver.set_min_x_step(settings.min_x_step);
  solver.set_min_y_step(settings.min_y_step);
  auto* objective = new Camera_position_opt_func(points, K, arguments.type->id);
  if (settings.is_analytic) {
    fw::Grad_func* jacobian = jacobian_of_type(arguments.type->id, points, K, objective);
    jacobian->set_weights(weights);
    solver.set_grad_funcs({jacobian});
  } else {
    objective->set_weights(weights);
    solver.set_funcs({objective});
    solver.set_finite_difference_steps({{problem.difference_steps, problem.difference_steps + problem.x0.size()}});
  }
  return solver.optimise(problem.x0, target_of(arguments));
}

/// Points some units in front of a camera close to the world's axes, with observations near their images.
support::Fake_call random_call(int type, std::size_t num_points, bool is_weighted, bool is_analytic, Case& which) {
  const kelvane::Rotation_type& row = *kelvane::find_rotation_type(type);
  std::vector<double> camera = which.random.vector_in_cube(static_cast<std::size_t>(row.num_dimensions()), 0.3);
  if (row.rotation_size() == 4) camera[3] += row.representation == kelvane::Representation::quaternion ? 0.8 : 0.0;
  if (row.representation == kelvane::Representation::angle_axis) {
    camera[2] += 1.0;
    // Without an angle the axis means nothing, and differences along it are made of rounding.
    if (!is_analytic) camera[3] += 1.0;
  }
  const bool is_bearing = row.is_bearing();
  const double f = is_bearing ? 1.0 : 700.0;
  camera.insert(camera.end(), {f, is_bearing ? 0.0 : 320.0, is_bearing ? 0.0 : 240.0});
  std::vector<double> points;
  std::vector<double> observations;
  for (std::size_t i = 0; i < num_points; ++i) {
    const std::vector<double> X = {which.random.uniform(-2, 2), which.random.uniform(-2, 2),
                                   which.random.uniform(6, 9)};
    points.insert(points.end(), X.begin(), X.end());
    observations.push_back(f * X[0] / (is_bearing ? 1.0 : X[2]) + (is_bearing ? 0.0 : 320.0));
    observations.push_back(f * X[1] / (is_bearing ? 1.0 : X[2]) + (is_bearing ? 0.0 : 240.0));
    if (is_bearing) observations.push_back(X[2]);
  }
  support::Fake_call call(type, num_points);
  call.with(1, support::fake_row(camera)).with(2, {3, num_points, points});
  call.with(3, {static_cast<std::size_t>(row.observation_size), num_points, observations});
  call.with(4, support::fake_row({1, 0, -1e9, is_analytic ? 0.0 : 1.0}));
  if (!is_weighted) return call.keep(5);
  std::vector<double> weights;
  const auto equations_per_point = static_cast<std::size_t>(row.observation_size * row.num_representations);
  while (weights.size() < num_points * equations_per_point) weights.push_back(which.random.uniform(0.2, 2.0));
  return call.with(6, support::fake_row(weights));
}

class FrameworkAgreement : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(AllTypes, FrameworkAgreement, testing::Values(0, 1, 2, 3, 10, 11, 12, -1, -2, -3));

TEST_P(FrameworkAgreement, HoldsForEveryKindOfStep) {
  for (const std::size_t num_points : {5U, 7U, 8U, 9U, 16U, 61U, 130U, 500U}) {
    for (const bool is_weighted : {false, true}) {
      for (const bool is_analytic : {true, false}) {
        Case which(seed + num_points, (is_weighted ? 2U : 0U) + (is_analytic ? 1U : 0U));
        SCOPED_TRACE(which);
        const support::Fake_call call = random_call(GetParam(), num_points, is_weighted, is_analytic, which);
        const Arguments arguments = call.check();
        Settings settings(arguments);
        const bool is_about_an_axis = arguments.type->representation == kelvane::Representation::angle_axis;
        for (const int max_iters : {1, 3}) {
          // One step makes the axis so long that differences are made of rounding again, in which the two differ.
          if (max_iters > 1 && !is_analytic && is_about_an_axis) continue;
          settings.max_iters = max_iters;
          settings.min_y_step = -1e30F;
          EXPECT_TRUE(support::is_close(kelvane::contract::refine(arguments, settings),
                                        refine_by_classes(arguments, settings), same_step))
              << num_points << " points, " << max_iters << " iterations, " << (is_weighted ? "weighted, " : "")
              << (is_analytic ? "analytic" : "differences");
        }
      }
    }
  }
}

}  // namespace
