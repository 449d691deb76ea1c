// SPDX-License-Identifier: BSD-3-Clause
// The frame of an iterative least-squares solver: settings, checks, iteration loop, stopping rules, best point.
#pragma once

#include <vector>

#include "fw_opt/grad_func.h"
#include "fw_opt/opt_func.h"
#include "fw_opt/shared_functions.h"
#include "fw_tools/report.h"

namespace fw {

/// Minimises the sum of squares of target minus prediction. One iteration is the pure operation inner_optimise().
///
/// The solver owns the functions it is given and deletes them at its end (first the objectives, then the Jacobians);
/// copies of a solver share the functions, and the last of them deletes each once. Setters delete nothing. Null entries
/// are tolerated in the lists as long as nothing is optimised.
class Solver {
 public:
  /// Starts from zeros, against a target of zeros.
  virtual std::vector<double> optimise();

  /// Optimises against a target of zeros. Errors get the context of fw_opt/solver.cpp, 18.
  virtual std::vector<double> optimise(const std::vector<double>& x0);

  /// Runs up to max_iters iterations from x0 and returns the best point found, x0 itself when none had a finite error.
  /// With more than one iteration allowed it stops early, without taking the new point, when
  ///   - the L1 distance of the new point from the best one is below min_x_step, or
  ///   - from the second iteration on, the squared error fell by less than min_y_step;
  /// a NaN on either side never stops it.
  /// Raises (fw_opt/solver.cpp): 30 when functions and finite-difference steps differ in number, 33 when the target
  /// does not have num_equations entries; errors from inside the loop get the context of line 80.
  virtual std::vector<double> optimise(const std::vector<double>& x0, const std::vector<double>& target);

  /// Deletes the functions that no copy shares.
  virtual ~Solver();

  /// Forgets everything that belongs to a run; called at the start of each.
  virtual void reset() = 0;

  /// One iteration: linearises at x0, writes the new point to x_out (which may be x0 itself) and its squared error to
  /// err. `iter` counts from 0 within the run.
  virtual void inner_optimise(const std::vector<double>& x0, const std::vector<double>& target,
                              std::vector<double>& x_out, double& err, int iter) = 0;

  /// No functions, no dimensions, no equations, one iteration.
  Solver();
  /// Takes over every setting and shares the functions.
  Solver(const Solver& source);
  /// Takes over every setting and shares the functions; those that this solver alone owned are deleted.
  Solver& operator=(const Solver& source);

  /// The length of the search vector x.
  void set_num_dimensions(int value) { num_dimensions = value; }
  /// As set; 0 at first.
  int get_num_dimensions() const { return num_dimensions; }
  /// The length of the target, and of the values of all functions together.
  void set_num_equations(int value) { num_equations = value; }
  /// As set; 0 at first.
  int get_num_equations() const { return num_equations; }
  /// How many iterations a run may make.
  void set_max_iters(int value) { max_iters = value; }
  /// As set; 1 at first.
  int get_max_iters() const { return max_iters; }
  /// The L1 distance of points, in the units of x, below which a run stops. 0 or less: never.
  void set_min_x_step(float value) { min_x_step = value; }
  /// As set; 0 at first.
  float get_min_x_step() const { return min_x_step; }
  /// The decrease of the squared error, in squared units of the target, below which a run stops. A negative one lets
  /// the error grow by as much.
  void set_min_y_step(float value) { min_y_step = value; }
  /// As set; -100000 at first.
  float get_min_y_step() const { return min_y_step; }
  /// Whether the step of iteration i, from 0, is multiplied by 2 / (i + 2); the first one is whole.
  void set_decreasing_step_size(bool value) { decreasing_step_size = value; }

  /// The objectives to differentiate by forward differences. The solver owns them from now on.
  void set_funcs(const std::vector<Opt_func*>& value) { funcs.set(value); }
  /// As set.
  const std::vector<Opt_func*>& get_funcs() const { return funcs.get(); }
  /// The Jacobians, each with its base function. The solver owns them from now on.
  void set_grad_funcs(const std::vector<Grad_func*>& value) { grad_funcs.set(value); }
  /// As set.
  const std::vector<Grad_func*>& get_grad_funcs() const { return grad_funcs.get(); }
  /// One vector of steps (one for each entry of x, in its units) for each objective.
  void set_finite_difference_steps(const std::vector<std::vector<double>>& value) { finite_difference_steps = value; }
  /// As set.
  const std::vector<std::vector<double>>& get_finite_difference_steps() const { return finite_difference_steps; }

 protected:
  /// As set; no at first.
  bool has_decreasing_step_size() const { return decreasing_step_size; }

  /// The loop of optimise(x0, target), without reset() and checks.
  std::vector<double> iterate(const std::vector<double>& x0, const std::vector<double>& target);

 private:
  bool is_finished(const std::vector<double>& best, const std::vector<double>& x, double decrease, int iter) const;

  std::vector<std::vector<double>> finite_difference_steps;
  int num_dimensions = 0;
  int num_equations = 0;
  Shared_functions<Opt_func> funcs;
  Shared_functions<Grad_func> grad_funcs;
  int max_iters = 1;
  float min_x_step = 0.0F;
  float min_y_step = -100000.0F;
  bool decreasing_step_size = false;
};

namespace site {
inline constexpr Site optimise_from_start{
    "fw_opt/solver.cpp", 18,
    "virtual std::vector<double, std::allocator<double> > fw::Solver::optimise(const std::vector<double, "
    "std::allocator<double> >&)"};
inline constexpr Site num_step_vectors{
    "fw_opt/solver.cpp", 30,
    "virtual std::vector<double, std::allocator<double> > fw::Solver::optimise(const std::vector<double, "
    "std::allocator<double> >&, const std::vector<double, std::allocator<double> >&)"};
inline constexpr Site target_size{num_step_vectors.file, 33, num_step_vectors.signature};
inline constexpr Site iteration_loop{num_step_vectors.file, 80, num_step_vectors.signature};
}  // namespace site

}  // namespace fw
