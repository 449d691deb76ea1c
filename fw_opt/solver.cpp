// SPDX-License-Identifier: BSD-3-Clause
// The iteration loop of a solver.
#include "fw_opt/solver.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <sstream>

#include "fw_tools/std_vector_overloads.h"

namespace fw {
namespace {

/// sum |a - b|; vectors of different lengths get the report of operator-.
double l1_distance(const std::vector<double>& a, const std::vector<double>& b) {
  if (a.size() != b.size()) static_cast<void>(a - b);
  double total = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) total += std::abs(a[i] - b[i]);
  return total;
}

[[noreturn, gnu::cold]] void refuse_target(const std::vector<double>& target, int num_equations) {
  std::ostringstream details = classic_stream();
  details << "Passed target was " << target << " but expected " << num_equations << " equations";
  raise(site::target_size, details.str());
}

}  // namespace

Solver::Solver() = default;
Solver::Solver(const Solver& source) = default;
Solver& Solver::operator=(const Solver& source) = default;

Solver::~Solver() {
  funcs.delete_all();
  grad_funcs.delete_all();
}

std::vector<double> Solver::optimise() {
  return optimise(std::vector<double>(static_cast<std::size_t>(num_dimensions), 0.0));
}

std::vector<double> Solver::optimise(const std::vector<double>& x0) try {
  return optimise(x0, std::vector<double>(static_cast<std::size_t>(num_equations), 0.0));
}
FW_ADD_CONTEXT(site::optimise_from_start, "")

std::vector<double> Solver::optimise(const std::vector<double>& x0, const std::vector<double>& target) {
  reset();
  if (finite_difference_steps.size() != funcs.get().size()) {
    raise(site::num_step_vectors, text("function vector had size ", funcs.get().size(),
                                       " but finite difference vector had size ", finite_difference_steps.size()));
  }
  if (target.size() != static_cast<std::size_t>(num_equations)) refuse_target(target, num_equations);
  return iterate(x0, target);
}

std::vector<double> Solver::iterate(const std::vector<double>& x0, const std::vector<double>& target) try {
  std::vector<double> result = x0;
  std::vector<double> x = x0;
  double err = std::numeric_limits<double>::max();
  double best_err = err;
  for (int iter = 0; iter < max_iters; ++iter) {
    const double prev_err = err;
    inner_optimise(x, target, x, err, iter);
    if (max_iters > 1 && is_finished(result, x, prev_err - err, iter)) return result;
    if (best_err >= err) {
      result = x;
      best_err = err;
    }
  }
  return result;
}
FW_ADD_CONTEXT(site::iteration_loop, "")

bool Solver::is_finished(const std::vector<double>& best, const std::vector<double>& x, double decrease,
                         int iter) const {
  if (static_cast<double>(min_x_step) > l1_distance(best, x)) return true;
  return iter > 0 && static_cast<double>(min_y_step) > decrease;
}

}  // namespace fw
