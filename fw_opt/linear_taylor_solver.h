// SPDX-License-Identifier: BSD-3-Clause
// The Gauss-Newton solver: first-order Taylor steps, each the shortest solution of a linear least-squares problem.
#pragma once

#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

#include "fw_opt/solver.h"

namespace fw {

/// Gauss-Newton steps (docs/derivations.md, Eq. 1). The equations are stacked function by function: first the base
/// functions of the Jacobians, then the objectives that are differentiated by forward differences.
///
/// Weights are applied to function values and target in the first iteration of a run only; from the second on, the
/// function values are unweighted while target and Jacobian rows stay weighted. With all weights 1.0 every iteration
/// is a plain Gauss-Newton step; the squared error is unweighted throughout.
/// Everything goes through the functions' operators, so whatever is derived from them is used.
class Linear_taylor_solver : public Solver {
 public:
  /// Makes the next iteration the first of a run.
  void reset() override;

  /// One step; see Solver::inner_optimise. A system with a NaN or an infinity gives a NaN step, so the new point has a
  /// NaN error.
  /// Raises (fw_opt/linear_taylor_solver.cpp, all inside the context of line 200): 57 when a function returns more
  /// equations than the target has left, 80 when the functions' equations or 83 when the target's do not number
  /// num_equations, 106 when a step vector does not have num_dimensions entries.
  void inner_optimise(const std::vector<double>& x0, const std::vector<double>& target, std::vector<double>& x_out,
                      double& err, int iter) override;

  /// One iteration, no function; everything else is set as in Solver.
  Linear_taylor_solver();
  /// Copies the settings and shares the functions; the caches of the copy start empty.
  Linear_taylor_solver(const Linear_taylor_solver& source);
  /// Takes over settings and functions; the caches of this solver stay as they were.
  Linear_taylor_solver& operator=(const Linear_taylor_solver& source);

 private:
  void weigh_first_point(const std::vector<double>& x0, const std::vector<double>& target);
  template <typename Weighted>
  void append_weighted(std::vector<double> values, const Weighted& weighted, std::size_t function_index,
                       const std::vector<double>& target);
  void check_number_of_equations() const;
  cv::Mat residual() const;
  int fill_analytic_rows(const std::vector<double>& x0, cv::Mat& J) const;
  void fill_difference_rows(const std::vector<double>& x0, cv::Mat& J, int row) const;
  int fill_difference_rows(const Opt_func& f, const std::vector<double>& steps, const std::vector<double>& x0,
                           cv::Mat& J, int row) const;
  double step_factor(int iter) const;
  void evaluate(const std::vector<double>& x);

  std::vector<double> func_values;      // at the current point: weighted in the first iteration, then unweighted
  std::vector<double> weighted_target;  // made in the first iteration of a run
};

}  // namespace fw
