// SPDX-License-Identifier: BSD-3-Clause
// Ceres Solver, whose problem is made beforehand.
#include <ceres/ceres.h>

#include "benchmarks/pixel_residuals.h"
#include "benchmarks/race.h"

namespace bench {
namespace {

/// Of points side by side.
class Block final : public ceres::CostFunction {
 public:
  Block(const Scene& scene, std::size_t first, std::size_t num_points)
      : points_(&scene.all.points[3 * first]), pixels_(&scene.all.pixels[2 * first]), num_points_(num_points) {
    set_num_residuals(static_cast<int>(2 * num_points));
    mutable_parameter_block_sizes()->push_back(6);
  }
  bool Evaluate(const double* const* x, double* residuals, double** jacobians) const override {
    double* jacobian = jacobians != nullptr ? jacobians[0] : nullptr;
    pixel_residuals(points_, pixels_, num_points_, x[0], residuals, jacobian, 6, 1);
    return true;
  }

 private:
  const double* points_;
  const double* pixels_;
  std::size_t num_points_;
};

}  // namespace

Contestant ceres_solver(const Scene& scene, const Method& method) {
  const auto found = std::make_shared<Parameters>();
  const auto problem = std::make_shared<ceres::Problem>();
  // ceres::HuberLoss bounds the residual of a block. The problem owns what it is given.
  const std::size_t in_block = method.loss_scale > 0 ? 1 : scene.size();
  for (std::size_t i = 0; i < scene.size(); i += in_block) {
    problem->AddResidualBlock(new Block(scene, i, in_block),
                              in_block == 1 ? new ceres::HuberLoss(method.loss_scale) : nullptr, found->data());
  }
  ceres::Solver::Options options;
  options.linear_solver_type = ceres::DENSE_QR;
  options.max_num_iterations = method.max_iterations;
  options.num_threads = 1;
  options.function_tolerance = options.gradient_tolerance = 0;
  options.parameter_tolerance = method.step_tolerance;
  options.logging_type = ceres::SILENT;
  const auto refine = [=, start = parameters_of(scene.start)] {
    *found = start;
    ceres::Solver::Summary summary;
    ceres::Solve(options, problem.get(), &summary);
  };
  return {"Ceres", refine, [=] { return pose_of(&(*found)[0], &(*found)[3]); }};
}

}  // namespace bench
