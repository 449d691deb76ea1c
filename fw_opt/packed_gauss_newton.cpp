// SPDX-License-Identifier: BSD-3-Clause
// Iterations whose rows are made, weighted and reduced piece by piece; the Jacobian never exists as a whole.
#include "fw_opt/packed_gauss_newton.h"

#include <algorithm>

#include "fw_opt/packed_rows.h"

namespace fw {
namespace {

/// Keeps the values, if wanted, and sums up their squared distance from the target.
class Comparing_sink final : public Value_sink {
 public:
  Comparing_sink(const Reduction_kernels& kernels, const double* target, double* values)
      : kernels_(kernels), target_(target), values_(values) {}

  void take(std::size_t first, const double* values, std::size_t size) override {
    if (values_ != nullptr) std::copy_n(values, size, values_ + first);
    squared_distance_ += kernels_.squared_distance(values, target_ + first, size);
  }

  double squared_distance() const { return squared_distance_; }

 private:
  const Reduction_kernels& kernels_;
  const double* target_;
  double* values_;
  double squared_distance_ = 0.0;
};

}  // namespace

bool Packed_gauss_newton::begin(const Solver& solver, const std::vector<double>& target) {
  end();
  num_dimensions_ = static_cast<std::size_t>(std::max(solver.get_num_dimensions(), 0));
  if (!find_functions(solver)) return false;
  const std::size_t m = layout_.num_equations();
  const bool fits = m == target.size() && m == static_cast<std::size_t>(solver.get_num_equations()) &&
                    num_dimensions_ >= 1 && m >= num_dimensions_ &&
                    (published_weights_->empty() || published_weights_->size() >= m);
  if (!fits) {
    end();
    return false;
  }
  pack(target);
  dx_.resize(num_dimensions_);
  last_point_.clear();
  is_first_ = true;
  is_reduced_ = false;
  return true;
}

bool Packed_gauss_newton::find_functions(const Solver& solver) {
  const auto& G = solver.get_grad_funcs();
  const auto& F = solver.get_funcs();
  if (G.size() + F.size() != 1) return false;
  const Packed_function* function = nullptr;
  if (F.empty()) {
    jacobian_ = G[0]->packed();
    if (jacobian_ == nullptr || !G[0]->has_base_function()) return false;
    function = G[0]->base_function()->packed();
    if (function == nullptr || !(jacobian_->layout() == function->layout())) return false;
    if (static_cast<std::size_t>(jacobian_->num_columns()) != num_dimensions_) return false;
    is_predicted_ = jacobian_->predicts_base();
    published_weights_ = &G[0]->get_weights();
  } else {
    jacobian_ = nullptr;
    is_predicted_ = false;
    function = F[0]->packed();
    steps_ = &solver.get_finite_difference_steps().front();
    if (function == nullptr || steps_->size() != num_dimensions_) return false;
    published_weights_ = &F[0]->get_weights();
  }
  layout_ = function->layout();
  function_ = function;
  return true;
}

void Packed_gauss_newton::pack(const std::vector<double>& target) {
  const std::size_t size = layout_.packed_size();
  target_.resize(size);
  layout_.pack(target.data(), target_.data());
  weights_.resize(published_weights_->empty() ? 0 : size);
  if (weights_.empty()) return;
  layout_.pack(published_weights_->data(), weights_.data());
  weighted_target_.resize(size);
  for (std::size_t i = 0; i < size; ++i) weighted_target_[i] = target_[i] * weights_[i];
}

void Packed_gauss_newton::iterate(Least_squares& least_squares, const std::vector<double>& x0, double step_factor,
                                  bool is_last, std::vector<double>& x_out, double& err) {
  if (is_first_ && !is_predicted_at(x0)) {
    evaluate(x0, kept_values());
    weigh(values_.data());
  }
  if (jacobian_ == nullptr) {
    make_differences(x0);
    solve(least_squares, Difference_rows(*this));
  } else if (is_predicted_at(x0)) {
    solve(least_squares, Predicting_rows(*this, x0));
  } else {
    solve(least_squares, Jacobian_rows(*this, x0));
  }
  is_first_ = false;
  x_out = x0;
  for (std::size_t d = 0; d < num_dimensions_; ++d) x_out.at(d) += step_factor * dx_[d];
  err = advance(least_squares, x_out, is_last);
  last_point_ = x_out;
}

std::vector<double> Packed_gauss_newton::published_target() const {
  std::vector<double> target(layout_.num_equations());
  layout_.unpack(weighted_target(), target.data());
  return target;
}

template <typename Some_rows>
void Packed_gauss_newton::solve(Least_squares& least_squares, Some_rows&& rows) {
  if (!is_reduced_) least_squares.reduce(rows, num_dimensions_);
  least_squares.solve(rows, num_dimensions_, layout_.num_equations(), dx_.data());
  is_reduced_ = false;
}

/// The squared error at the new point. Where another iteration follows, its rows are made on the way: they need the
/// same predictions.
double Packed_gauss_newton::advance(Least_squares& least_squares, const std::vector<double>& x, bool is_last) {
  if (is_last) return evaluate(x, nullptr);
  if (!is_predicted_at(x)) return evaluate(x, kept_values());
  Predicting_rows rows(*this, x);
  least_squares.reduce(rows, num_dimensions_);
  is_reduced_ = true;
  return rows.squared_distance();
}

void Packed_gauss_newton::make_differences(const std::vector<double>& x0) {
  const std::size_t size = layout_.packed_size();
  differences_.resize(size * num_dimensions_);
  x_ = x0;
  for (std::size_t d = 0; d < num_dimensions_; ++d) {
    const double step = (*steps_)[d];
    double* column = differences_.data() + d * size;
    x_.at(d) += step;
    evaluate(x_, column);
    // From the second iteration of a run on, the cached value is unweighted while the new one is weighted.
    weigh(column);
    for (std::size_t i = 0; i < size; ++i) column[i] = (column[i] - values_[i]) / step;
    x_[d] -= step;  // not a copy of x0[d]: the rounding of the round trip stays
  }
}

double Packed_gauss_newton::evaluate(const std::vector<double>& x, double* values) const {
  Comparing_sink sink(*kernels_, target_.data(), values);
  function_->evaluate(x, sink);
  return sink.squared_distance();
}

double* Packed_gauss_newton::kept_values() {
  values_.resize(layout_.packed_size());
  return values_.data();
}

void Packed_gauss_newton::weigh(double* values) const {
  for (std::size_t i = 0; i < weights_.size(); ++i) values[i] *= weights_[i];
}

}  // namespace fw
