// SPDX-License-Identifier: BSD-3-Clause
// A refinement in packed order and one through the published operators take the same steps.
#include <gtest/gtest.h>

#include <memory>

#include "camera_pose/rotation_type.h"
#include "pose_refinement/refinement.h"
#include "support/cases.h"
#include "support/fake_input.h"
#include "support/matchers.h"

namespace {

using pose_refinement::Problem;
using pose_refinement::Settings;
using support::Case;

constexpr std::uint64_t seed = 515151;
constexpr double same_step = 1e-9;  // relative; conditions up to 1e5, over up to ten iterations

/// Has the operator of another objective and nothing else.
class Plain_objective final : public fw::Opt_func {
 public:
  explicit Plain_objective(const fw::Opt_func& objective) : objective_(objective) {}
  std::vector<double> operator()(const std::vector<double>& x) const override { return objective_(x); }

 private:
  const fw::Opt_func& objective_;
};

class Plain_jacobian final : public fw::Grad_func {
 public:
  explicit Plain_jacobian(const fw::Grad_func& jacobian)
      : fw::Grad_func(new Plain_objective(*jacobian.base_function())), jacobian_(jacobian) {}
  int operator()(const std::vector<double>& x, cv::Mat& J, int start_row) const override {
    return jacobian_(x, J, start_row);
  }

 private:
  const fw::Grad_func& jacobian_;
};

/// The same refinement with functions that have only the published operators.
std::vector<double> refine_by_operators(const Problem& problem, const Settings& settings) {
  fw::Linear_taylor_solver holder;
  fw::Linear_taylor_solver solver;
  pose_refinement::configure(solver, problem, settings);
  if (settings.is_analytic) {
    pose_refinement::add_jacobian(holder, problem);
    auto* jacobian = new Plain_jacobian(*holder.get_grad_funcs().at(0));
    jacobian->set_weights(problem.weights);
    solver.set_grad_funcs({jacobian});
  } else {
    pose_refinement::add_objective(holder, problem);
    auto* objective = new Plain_objective(*holder.get_funcs().at(0));
    objective->set_weights(problem.weights);
    solver.set_funcs({objective});
    solver.set_finite_difference_steps(holder.get_finite_difference_steps());
  }
  return solver.optimise(problem.x0, problem.target);
}

/// Points some units in front of a camera close to the world's axes, with observations near their images.
support::Fake_call random_call(int type, std::size_t num_points, bool is_weighted, bool is_analytic, Case& which) {
  const Rotation_type& row = *find_rotation_type(type);
  std::vector<double> camera = which.random.vector_in_cube(static_cast<std::size_t>(row.num_dimensions()), 0.3);
  if (row.rotation_size() == 4) camera[3] += row.representation == Representation::quaternion ? 0.8 : 0.0;
  if (row.representation == Representation::angle_axis) camera[2] += 1.0;
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

class PackedRoute : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(AllTypes, PackedRoute, testing::Values(0, 1, 2, 3, 10, 11, 12, -1, -2, -3));

TEST_P(PackedRoute, TakesTheStepsOfTheOperators) {
  for (const std::size_t num_points : {5U, 7U, 8U, 9U, 16U, 61U, 130U, 500U}) {
    for (const bool is_weighted : {false, true}) {
      for (const bool is_analytic : {true, false}) {
        Case which(seed + num_points, (is_weighted ? 2U : 0U) + (is_analytic ? 1U : 0U));
        SCOPED_TRACE(which);
        const support::Fake_call call = random_call(GetParam(), num_points, is_weighted, is_analytic, which);
        const auto arguments = call.check();
        const Problem problem(arguments);
        Settings settings(arguments);
        // With a free length the first step by differences goes far along it, and a second one cannot be foreseen.
        const bool is_chaotic = !is_analytic && find_rotation_type(GetParam())->rotation_size() == 4;
        for (const int max_iters : is_chaotic ? std::vector<int>{1} : std::vector<int>{1, 3}) {
          settings.max_iters = max_iters;
          settings.min_y_step = -1e30F;
          EXPECT_TRUE(support::is_close(pose_refinement::refine(problem, settings),
                                        refine_by_operators(problem, settings), same_step))
              << num_points << " points, " << max_iters << " iterations, " << (is_weighted ? "weighted, " : "")
              << (is_analytic ? "analytic" : "differences");
        }
      }
    }
  }
}

}  // namespace
