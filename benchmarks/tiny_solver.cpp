// SPDX-License-Identifier: BSD-3-Clause
// Ceres' TinySolver: Levenberg-Marquardt on the normal equations, in a header.
#include <ceres/tiny_solver.h>

#include <stdexcept>

#include "benchmarks/peers.h"
#include "benchmarks/pixel_residuals.h"

namespace bench {
namespace {

class Residuals {
 public:
  using Scalar = double;
  enum { NUM_RESIDUALS = Eigen::Dynamic, NUM_PARAMETERS = 6 };

  explicit Residuals(const Scene& scene) : scene_(scene) {}
  int NumResiduals() const { return static_cast<int>(2 * scene_.size()); }
  bool operator()(const double* x, double* residuals, double* jacobian) const {
    pixel_residuals(scene_.all.points.data(), scene_.all.pixels.data(), scene_.size(), x, residuals, jacobian, 1,
                    2 * scene_.size());
    return true;
  }

 private:
  const Scene& scene_;
};

/// The solver with its storage is made beforehand.
class Tiny_solver {
 public:
  Tiny_solver(const Scene& scene, const Method& method)
      : residuals_(scene), start_(parameters_of(scene.start)), x_(start_) {
    solver_.options.max_num_iterations = method.max_iterations + 1;  // it counts from 1 and stops before the last
    solver_.options.gradient_tolerance = 0;
    solver_.options.function_tolerance = 0;
    solver_.options.cost_threshold = 0;
    solver_.options.parameter_tolerance = method.step_tolerance;
  }
  void refine() {
    Solver::Parameters x = Eigen::Map<const Solver::Parameters>(start_.data());
    const auto& summary = solver_.Solve(residuals_, &x);
    if (solver_.options.parameter_tolerance == 0 && summary.status != Solver::HIT_MAX_ITERATIONS) {
      throw std::runtime_error("TinySolver stopped early");
    }
    std::copy_n(x.data(), 6, x_.begin());
  }
  kelvane::Pose found() const { return pose_of(x_); }

 private:
  using Solver = ceres::TinySolver<Residuals>;
  Residuals residuals_;
  Solver solver_;
  Parameters start_, x_;
};

}  // namespace

// The library for this processor is compiled with another name for it.
Contestant tiny_solver(const std::string& name, const Scene& scene, const Method& method) {
  return contestant(name, std::make_shared<Tiny_solver>(scene, method));
}

}  // namespace bench
