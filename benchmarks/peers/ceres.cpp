// SPDX-License-Identifier: BSD-3-Clause
// Ceres Solver with all residuals in one block.
#include <ceres/ceres.h>

#include <array>

#include "benchmarks/peers/peers.h"
#include "benchmarks/peers/pixel_residuals.h"

namespace bench {
namespace {

class Residuals final : public ceres::CostFunction {
 public:
  Residuals(const Scene& scene, int& num_jacobians) : scene_(scene), num_jacobians_(num_jacobians) {
    set_num_residuals(2 * scene.num_points);
    mutable_parameter_block_sizes()->push_back(6);
  }

  bool Evaluate(const double* const* x, double* residuals, double** jacobians) const override {
    double* jacobian = jacobians != nullptr ? jacobians[0] : nullptr;
    if (jacobian != nullptr) ++num_jacobians_;
    pixel_residuals(scene_, x[0], residuals, jacobian, 6, 1);
    return true;
  }

 private:
  const Scene& scene_;
  int& num_jacobians_;
};

class Ceres final : public Competitor {
 public:
  explicit Ceres(const Scene& scene) {
    const World_to_camera start = world_to_camera(scene.start);
    std::copy_n(start.rotation.val, 3, start_.begin());
    std::copy_n(start.translation.val, 3, start_.begin() + 3);
    problem_.AddResidualBlock(new Residuals(scene, num_jacobians_), nullptr, x_.data());  // the problem owns it
    options_.linear_solver_type = ceres::DENSE_QR;
    options_.max_num_iterations = 10;
    options_.num_threads = 1;
    options_.function_tolerance = 0;
    options_.gradient_tolerance = 0;
    options_.parameter_tolerance = 0;
    options_.logging_type = ceres::SILENT;
  }

  void refine() override {
    num_jacobians_ = 0;
    x_ = start_;
    ceres::Solver::Summary summary;
    ceres::Solve(options_, &problem_, &summary);
  }

  std::vector<double> refined() const override {
    return search_vector(0, pose_of(World_to_camera{{x_[0], x_[1], x_[2]}, {x_[3], x_[4], x_[5]}}));
  }

  int num_jacobians() const override { return num_jacobians_; }

 private:
  int num_jacobians_ = 0;
  std::array<double, 6> start_ = {};
  std::array<double, 6> x_ = {};
  ceres::Problem problem_;
  ceres::Solver::Options options_;
};

}  // namespace

Entry ceres_solver() {
  return {"Ceres", [](const Scene& scene, const Task& /*task*/) { return std::make_unique<Ceres>(scene); }};
}

}  // namespace bench
