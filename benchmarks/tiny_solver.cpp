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

  Residuals(const Scene& scene, double loss_scale) : scene_(scene), loss_scale_(loss_scale) {}
  int NumResiduals() const { return static_cast<int>(2 * scene_.size()); }
  bool operator()(const double* x, double* residuals, double* jacobian) const {
    pixel_residuals(scene_.all.points.data(), scene_.all.pixels.data(), scene_.size(), x, residuals, jacobian, 1,
                    2 * scene_.size());
    if (loss_scale_ > 0) reweigh(residuals, jacobian);
    return true;
  }

 private:
  /// To residuals whose squares are Huber's loss, and rows whose product with them is its gradient.
  void reweigh(double* residuals, double* jacobian) const {
    const std::size_t num_rows = 2 * scene_.size();
    for (std::size_t i = 0; i < num_rows; i += 2) {
      const double s = std::hypot(residuals[i], residuals[i + 1]);
      if (s <= loss_scale_) continue;
      const double factor = std::sqrt(loss_scale_ * (2 * s - loss_scale_)) / s;
      for (std::size_t row = i; row < i + 2; ++row) {
        residuals[row] *= factor;
        for (std::size_t c = 0; jacobian != nullptr && c < 6; ++c)
          jacobian[c * num_rows + row] *= loss_scale_ / s / factor;
      }
    }
  }

  const Scene& scene_;
  double loss_scale_;
};

/// The solver with its storage is made beforehand.
class Tiny_solver {
 public:
  Tiny_solver(const Scene& scene, const Method& method)
      : residuals_(scene, method.loss_scale), start_(parameters_of(scene.start)), x_(start_) {
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
