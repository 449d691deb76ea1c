// SPDX-License-Identifier: BSD-3-Clause
// Ceres' TinySolver: Levenberg-Marquardt on the normal equations, in a header.
#include <ceres/tiny_solver.h>

#include <stdexcept>

#include "benchmarks/peers/peers.h"
#include "benchmarks/peers/pixel_residuals.h"

namespace bench {
namespace {

class Residuals {
 public:
  using Scalar = double;
  enum { NUM_RESIDUALS = Eigen::Dynamic, NUM_PARAMETERS = 6 };

  explicit Residuals(const Scene& scene) : scene_(scene) {}
  int NumResiduals() const { return 2 * scene_.num_points; }
  bool operator()(const double* x, double* residuals, double* jacobian) const {
    if (jacobian != nullptr) ++num_jacobians;
    pixel_residuals(scene_, x, residuals, jacobian, 1, static_cast<std::size_t>(NumResiduals()));
    return true;
  }

  mutable int num_jacobians = 0;

 private:
  const Scene& scene_;
};

class Tiny_solver final : public Competitor {
 public:
  explicit Tiny_solver(const Scene& scene) : residuals_(scene) {
    const World_to_camera start = world_to_camera(scene.start);
    start_ << start.rotation[0], start.rotation[1], start.rotation[2], start.translation[0], start.translation[1],
        start.translation[2];
    auto& options = solver_.options;
    options.max_num_iterations = 11;  // it counts from 1 and stops before the last
    options.gradient_tolerance = 0;
    options.parameter_tolerance = 0;
    options.function_tolerance = 0;
    options.cost_threshold = 0;
  }

  void refine() override {
    residuals_.num_jacobians = 0;
    x_ = start_;
    const auto& summary = solver_.Solve(residuals_, &x_);
    if (summary.status != Solver::HIT_MAX_ITERATIONS) throw std::runtime_error("TinySolver stopped early");
  }

  std::vector<double> refined() const override {
    return search_vector(0, pose_of(World_to_camera{{x_[0], x_[1], x_[2]}, {x_[3], x_[4], x_[5]}}));
  }

  int num_jacobians() const override { return residuals_.num_jacobians; }

 private:
  using Solver = ceres::TinySolver<Residuals>;
  Residuals residuals_;
  Solver solver_;  // keeps its storage from call to call
  Solver::Parameters start_, x_;
};

}  // namespace

#ifdef KELVANE_FOR_THIS_CPU
Entry tiny_solver_for_this_cpu() {
  return {
    "TinySolver native",
#else
Entry tiny_solver() {
  return {"TinySolver",
#endif
        [](const Scene& scene, const Task& /*task*/) { return std::make_unique<Tiny_solver>(scene); }
  };
}

}  // namespace bench
