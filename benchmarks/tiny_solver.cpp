// SPDX-License-Identifier: BSD-3-Clause
// Ceres' TinySolver: Levenberg-Marquardt on the normal equations, in a header.
#include <ceres/tiny_solver.h>

#include <stdexcept>

#include "benchmarks/pixel_residuals.h"
#include "benchmarks/race.h"

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

using Solver = ceres::TinySolver<Residuals>;

}  // namespace

// The library for this processor is compiled with another name for it.
Contestant tiny_solver(const std::string& name, const Scene& scene, const Method& method) {
  const auto solver = std::make_shared<Solver>();                  // with its storage, made beforehand
  solver->options.max_num_iterations = method.max_iterations + 1;  // it counts from 1 and stops before the last
  solver->options.gradient_tolerance = solver->options.function_tolerance = solver->options.cost_threshold = 0;
  solver->options.parameter_tolerance = method.step_tolerance;
  const auto found = std::make_shared<Parameters>();
  const auto refine = [=, residuals = Residuals(scene, method.loss_scale), start = parameters_of(scene.start)] {
    Solver::Parameters x = Eigen::Map<const Solver::Parameters>(start.data());
    const auto& summary = solver->Solve(residuals, &x);
    if (solver->options.parameter_tolerance == 0 && summary.status != Solver::HIT_MAX_ITERATIONS) {
      throw std::runtime_error("TinySolver stopped early");
    }
    std::copy_n(x.data(), 6, found->begin());
  };
  return {name, refine, [=] { return pose_of(&(*found)[0], &(*found)[3]); }};
}

}  // namespace bench
