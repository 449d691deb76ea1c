// SPDX-License-Identifier: BSD-3-Clause
// Gauss-Newton iterations over one packed function.
#pragma once

#include <cstddef>
#include <vector>

#include "fw_opt/least_squares.h"
#include "fw_opt/packed_equations.h"
#include "fw_opt/solver.h"
#include "fw_tools/aligned_buffer.h"

namespace fw {

/// The iterations of Linear_taylor_solver for the common case: a single function, which is packed, and everything of
/// the right size. The order of the equations is the packed one, and nothing is allocated after the first iteration.
class Packed_gauss_newton {
 public:
  /// Whether the solver holds such a case. Otherwise the iterations have to go through the published operators, which
  /// also report what is wrong.
  bool begin(const Solver& solver, const std::vector<double>& target);
  /// Whether a run has begun and not ended.
  bool is_active() const { return function_ != nullptr; }
  /// Ends the run.
  void end() { function_ = nullptr; }
  /// Where the last iteration ended; empty when none did.
  const std::vector<double>& last_point() const { return last_point_; }
  /// The weighted target of the run in published order.
  std::vector<double> published_target() const;

  /// One iteration of a run; the first after begin() weighs values and target. Where another one follows, x0 is what
  /// x_out was before.
  void iterate(Least_squares& least_squares, const std::vector<double>& x0, double step_factor, bool is_last,
               std::vector<double>& x_out, double& err);

 private:
  class Rows;
  class Predicting_rows;
  class Jacobian_rows;
  class Difference_rows;

  bool find_functions(const Solver& solver);
  void pack(const std::vector<double>& target);
  template <typename Some_rows>
  void solve(Least_squares& least_squares, Some_rows&& rows);
  double advance(Least_squares& least_squares, const std::vector<double>& x, bool is_last);
  bool is_predicted_at(const std::vector<double>& x) const { return is_predicted_ && jacobian_->predicts_base_at(x); }
  void make_differences(const std::vector<double>& x0);
  double evaluate(const std::vector<double>& x, double* values) const;
  double* kept_values();
  void weigh(double* values) const;
  const double* weighted_target() const { return weights_.empty() ? target_.data() : weighted_target_.data(); }

  const Packed_function* function_ = nullptr;  // null: no run is active
  const Packed_jacobian* jacobian_ = nullptr;  // null: derivatives by differences
  bool is_predicted_ = false;                  // the Jacobian makes the values of the function on the way
  const std::vector<double>* steps_ = nullptr;
  const std::vector<double>* published_weights_ = nullptr;
  Packed_layout layout_;
  std::size_t num_dimensions_ = 0;
  bool is_first_ = true;
  bool is_reduced_ = false;  // the rows at the current point have gone into the reduction

  Aligned_buffer values_;           // at the current point: weighted in the first iteration, then unweighted
  Aligned_buffer target_;           // unweighted
  Aligned_buffer weighted_target_;  // only with weights; as of the first iteration
  Aligned_buffer weights_;          // empty: all 1.0
  Aligned_buffer differences_;      // column by column
  std::vector<double> x_;
  std::vector<double> last_point_;
  Small_buffer<8> dx_;
  const Reduction_kernels* kernels_ = &reduction_kernels(best_instruction_set());
};

}  // namespace fw
