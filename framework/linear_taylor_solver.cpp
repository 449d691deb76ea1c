// SPDX-License-Identifier: BSD-3-Clause
// One Gauss-Newton iteration.
#include "fw_opt/linear_taylor_solver.h"

#include <stdexcept>

#include "fw_opt/linear_taylor_solver_sites.h"
#include "fw_opt/underdetermined_system.h"
#include "fw_tools/IplImage_overloads.h"
#include "fw_tools/std_vector_overloads.h"
#include "least_squares/matrix_solution.h"

namespace fw {
namespace {

void append(const std::vector<double>& values, std::vector<double>& stack) {
  stack.insert(stack.end(), values.begin(), values.end());
}

/// The step of J dx = b: the minimum-norm least-squares solution.
std::vector<double> solve(cv::Mat J, const cv::Mat& b) {
  if (J.rows < J.cols || J.cols < 1) throw Underdetermined_system();
  if (J.type() != b.type() || J.rows != b.rows) {
    throw std::invalid_argument("A Jacobian has put a matrix of another size or type in the place of J");
  }
  if (!J.isContinuous()) J = J.clone();
  std::vector<double> dx(static_cast<std::size_t>(J.cols));
  kelvane::solve_least_squares(J.ptr<double>(), b.ptr<double>(), static_cast<std::size_t>(J.rows), dx.size(),
                               dx.data());
  return dx;
}

double squared_norm(const std::vector<double>& values) {
  double total = 0.0;
  for (const double value : values) total += square(value);
  return total;
}

template <typename Weighted>
void weigh(std::vector<double>& values, const Weighted& weighted) {
  for (std::size_t i = 0; i < values.size(); ++i) values[i] *= weighted.get_weight(static_cast<int>(i));
}

}  // namespace

Linear_taylor_solver::Linear_taylor_solver() = default;
Linear_taylor_solver::Linear_taylor_solver(const Linear_taylor_solver& source) : Solver(source) {}

Linear_taylor_solver& Linear_taylor_solver::operator=(const Linear_taylor_solver& source) {
  Solver::operator=(source);
  return *this;
}

void Linear_taylor_solver::reset() { func_values.clear(); }

void Linear_taylor_solver::inner_optimise(const std::vector<double>& x0, const std::vector<double>& target,
                                          std::vector<double>& x_out, double& err, int iter) try {
  if (func_values.empty()) weigh_first_point(x0, target);
  check_number_of_equations();
  const cv::Mat b = residual();

  cv::Mat J;
  J.create(get_num_equations(), get_num_dimensions(), CV_64F);
  const int first_difference_row = fill_analytic_rows(x0, J);
  fill_difference_rows(x0, J, first_difference_row);

  const std::vector<double> dx = solve(J, b);
  const double s = step_factor(iter);
  x_out = x0;
  for (std::size_t d = 0; d < dx.size(); ++d) x_out.at(d) += s * dx[d];

  evaluate(x_out);
  err = squared_norm(func_values - target);
}
FW_ADD_CONTEXT(site::inner_optimise, "")

void Linear_taylor_solver::weigh_first_point(const std::vector<double>& x0, const std::vector<double>& target) {
  weighted_target.resize(target.size());
  const auto G = get_grad_funcs();  // copies here and below: a function may set other ones while it is called
  for (std::size_t k = 0; k < G.size(); ++k) append_weighted((*G[k]->base_function())(x0), *G[k], k, target);
  const auto F = get_funcs();
  for (std::size_t k = 0; k < F.size(); ++k) append_weighted((*F[k])(x0), *F[k], k, target);
}

template <typename Weighted>
void Linear_taylor_solver::append_weighted(std::vector<double> values, const Weighted& weighted,
                                           std::size_t function_index, const std::vector<double>& target) {
  const std::size_t row = func_values.size();
  weigh(values, weighted);
  append(values, func_values);
  if (row + values.size() > weighted_target.size()) {
    raise(site::too_many_outputs,
          text("Mismatch in number of equations. From target size, expected at most ", weighted_target.size(),
               " equations, however base_function ", function_index, " is returned ", values.size(),
               " equations to be inserted starting from index ", row));
  }
  // Values are weighted by the function's own index, the target by the stacked one. They differ from the second
  // function of the stack on.
  for (std::size_t i = row; i < row + values.size(); ++i) {
    weighted_target[i] = target[i] * weighted.get_weight(static_cast<int>(i));
  }
}

void Linear_taylor_solver::check_number_of_equations() const {
  const auto expected = static_cast<std::size_t>(get_num_equations());
  if (func_values.size() != expected) {
    raise(site::num_outputs, text("number of equations was set to ", get_num_equations(),
                                  " but functions only returned a total of", func_values.size(), " equations"));
  }
  if (weighted_target.size() != expected) {
    raise(site::num_targets, text("number of equations was set to ", get_num_equations(), " but target has a total of",
                                  weighted_target.size(), " equations"));
  }
}

cv::Mat Linear_taylor_solver::residual() const {
  cv::Mat b;
  b.create(get_num_equations(), 1, CV_64F);
  for (int i = 0; i < b.rows; ++i) {
    const auto k = static_cast<std::size_t>(i);
    get_pix<double>(b, i) = weighted_target[k] - func_values[k];
  }
  return b;
}

int Linear_taylor_solver::fill_analytic_rows(const std::vector<double>& x0, cv::Mat& J) const {
  int row = 0;
  for (const Grad_func* g : std::vector<Grad_func*>(get_grad_funcs())) {
    const int num_written = (*g)(x0, J, row);
    // The rows weighted are the first ones of J, not those just written. For the first function they are the same.
    for (int j = 0; j < num_written; ++j) {
      const double weight = g->get_weight(j);
      for (int c = 0; c < get_num_dimensions(); ++c) get_pix<double>(J, c, j, 0) *= weight;
    }
    row += num_written;
  }
  return row;
}

void Linear_taylor_solver::fill_difference_rows(const std::vector<double>& x0, cv::Mat& J, int row) const {
  const auto F = get_funcs();
  const auto H = get_finite_difference_steps();
  for (std::size_t k = 0; k < F.size(); ++k) {
    if (H.at(k).size() != static_cast<std::size_t>(get_num_dimensions())) {
      raise(site::num_steps, text("for function ", k, " finite difference step had ", H[k].size(),
                                  " elements, but num dimensions should be ", get_num_dimensions()));
    }
    row = fill_difference_rows(*F[k], H[k], x0, J, row);
  }
}

int Linear_taylor_solver::fill_difference_rows(const Opt_func& f, const std::vector<double>& steps,
                                               const std::vector<double>& x0, cv::Mat& J, int row) const {
  std::vector<double> xp = x0;
  std::size_t num_outputs = 0;
  for (std::size_t d = 0; d < steps.size(); ++d) {
    xp.at(d) += steps[d];
    std::vector<double> values = f(xp);
    weigh(values, f);
    num_outputs = values.size();
    for (std::size_t i = 0; i < num_outputs; ++i) {
      const int r = row + static_cast<int>(i);
      double& derivative = get_pix<double>(J, static_cast<int>(d), r, 0);
      // From the second iteration of a run on, the cached value is unweighted while the new one is weighted.
      derivative = (values[i] - func_values[static_cast<std::size_t>(r)]) / steps[d];
    }
    xp[d] -= steps[d];  // not a copy of x0[d]: the rounding of the round trip stays in xp
  }
  return row + static_cast<int>(num_outputs);
}

double Linear_taylor_solver::step_factor(int iter) const {
  return has_decreasing_step_size() && iter > 0 ? 2.0 / (iter + 2.0) : 1.0;
}

void Linear_taylor_solver::evaluate(const std::vector<double>& x) {
  func_values.clear();
  for (const Grad_func* g : std::vector<Grad_func*>(get_grad_funcs())) append((*g->base_function())(x), func_values);
  for (const Opt_func* f : std::vector<Opt_func*>(get_funcs())) append((*f)(x), func_values);
}

}  // namespace fw
