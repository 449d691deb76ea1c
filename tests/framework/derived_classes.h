// SPDX-License-Identifier: BSD-3-Clause
// A small scene, classes derived from the published ones, and the same functions behind classes that know nothing of
// cameras.
#pragma once

#include <memory>
#include <opencv2/core.hpp>
#include <utility>
#include <vector>

#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_opt_func.h"
#include "fw_opt/linear_taylor_solver.h"
#include "support/matrix_of.h"

namespace derived_classes {

using Vector = std::vector<double>;
using Points = std::vector<Vector>;

inline const Points points = {{-1, -1, 0}, {1, -1, 0.2}, {1, 1, 0}, {-1, 1, 0.4}, {0, 0, 1}, {0.5, 0.3, -0.5}};
inline const fw::matrix<double> K = support::matrix_of({{800, 0, 320}, {0, 800, 240}, {0, 0, 1}});
inline const Vector start = {0.55, 0.65, 0.58, -3.8, 2.1, -4.1};
inline const Vector truth = {0.6, 0.6, 0.6, -4, 2, -4};
inline const std::size_t num_equations = 2 * points.size();

using Prediction = Camera_position_opt_func;
using Camera_jacobian = Camera_position_grad_func_aau;

inline Vector pixels() { return Prediction(points, K, 0)(truth); }

/// Pixels through a lens that pulls them towards the principal point.
class Distorted final : public Prediction {
 public:
  using Prediction::Prediction;
  Vector operator()(const Vector& x) const override {
    Vector y = Prediction::operator()(x);
    for (std::size_t i = 0; i < y.size(); i += 2) {
      const double u = (y[i] - 320) / 800;
      const double v = (y[i + 1] - 240) / 800;
      const double factor = 1 - 0.1 * (u * u + v * v);
      y[i] = 320 + 800 * factor * u;
      y[i + 1] = 240 + 800 * factor * v;
    }
    return y;
  }
};

/// Every row by another factor.
template <typename Jacobian>
class Scaled final : public Jacobian {
 public:
  using Jacobian::Jacobian;
  int operator()(const Vector& x, cv::Mat& J, int start_row) const override {
    const int num_rows = Jacobian::operator()(x, J, start_row);
    for (int i = 0; i < num_rows; ++i) J.row(start_row + i) *= 1.0 / (i + 1);
    return num_rows;
  }
};
using Row_scaled = Scaled<Camera_jacobian>;

/// The same functions without their class.
class Plain_objective final : public fw::Opt_func {
 public:
  explicit Plain_objective(std::unique_ptr<fw::Opt_func> f) : f_(std::move(f)) {}
  Vector operator()(const Vector& x) const override { return (*f_)(x); }

 private:
  std::unique_ptr<fw::Opt_func> f_;
};

class Plain_jacobian final : public fw::Grad_func {
 public:
  Plain_jacobian(std::unique_ptr<fw::Grad_func> g, fw::Opt_func* the_base) : Grad_func(the_base), g_(std::move(g)) {}
  int operator()(const Vector& x, cv::Mat& J, int start_row) const override { return (*g_)(x, J, start_row); }

 private:
  std::unique_ptr<fw::Grad_func> g_;
};

template <typename Objective>
fw::Opt_func* objective(bool is_plain) {
  if (!is_plain) return new Objective(points, K, 0);
  return new Plain_objective(std::make_unique<Objective>(points, K, 0));
}

template <typename Jacobian, typename Objective>
fw::Grad_func* jacobian(bool is_plain) {
  fw::Opt_func* base = objective<Objective>(is_plain);
  if (!is_plain) return new Jacobian(points, K, base);
  return new Plain_jacobian(std::make_unique<Jacobian>(points, K, nullptr), base);
}

inline void set_up(fw::Solver& solver, fw::Grad_func* g) {
  solver.set_num_dimensions(6);
  solver.set_num_equations(static_cast<int>(num_equations));
  solver.set_max_iters(3);
  solver.set_grad_funcs({g});
}

}  // namespace derived_classes
