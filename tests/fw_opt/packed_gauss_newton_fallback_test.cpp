// SPDX-License-Identifier: BSD-3-Clause
// Runs that the packed iterations leave to the published operators, and the allocations of those that they take.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/failing_allocation.h"
#include "support/inner_optimise.h"
#include "support/matchers.h"
#include "support/packed_fit.h"
#include "support/scripted_solver.h"

namespace {

using fw::Linear_taylor_solver;
using support::Curve;
using support::Fit_calls;
using support::Predicts;
using Vector = std::vector<double>;

const Curve curve = {{13, 2, 3}, 16};
const std::size_t num_equations = curve.layout.num_equations();
const Vector start = {1.2, 0.4, -0.5};

Vector target() {
  Vector values;
  curve.visit_all([&](auto... place) { values.push_back(curve.value({2.0, 0.5, -1.0}, place...)); });
  return values;
}

struct Fit_run {
  Fit_calls function_calls, jacobian_calls;
  Linear_taylor_solver solver;
  support::Fit_jacobian* jacobian;

  explicit Fit_run(bool is_packed = true, Predicts predicts = Predicts::everywhere)
      : jacobian(new support::Fit_jacobian(curve, is_packed, predicts, jacobian_calls, function_calls)) {
    solver.set_grad_funcs({jacobian});
    solver.set_num_equations(static_cast<int>(num_equations));
    solver.set_num_dimensions(3);
  }

  bool is_packed() const { return jacobian_calls.packed + function_calls.packed > 0; }
};

std::string in_the_loop(const std::string& rest) {
  return support::block("fw_opt/solver.cpp", 80, support::optimise_signature, "", 1) + rest;
}

TEST(PackedGaussNewtonFallback, ReportsThatTheEquationsAreNotAsManyAsTheSolverHas) {
  for (const bool is_packed : {true, false}) {
    Fit_run run(is_packed);
    run.solver.set_num_equations(80);
    const auto caught = support::caught_by([&] { run.solver.optimise(start, Vector(80)); });
    EXPECT_NE(caught.text.find(support::inner_optimise_block(
                  80, "number of equations was set to 80 but functions only returned a total of78 equations")),
              std::string::npos)
        << caught.text;
    EXPECT_FALSE(run.is_packed());
  }
}

TEST(PackedGaussNewtonFallback, ReportsThatWeightsDoNotReachTheLastEquation) {
  for (const bool is_packed : {true, false}) {
    for (const std::size_t size : {std::size_t{1}, num_equations - 1}) {
      Fit_run run(is_packed);
      run.jacobian->set_weights(Vector(size, 1.0));
      const auto caught = support::caught_by([&] { run.solver.optimise(start, target()); });
      EXPECT_EQ(caught.text, in_the_loop(support::inner_optimise_block(200, "")) + "vector::_M_range_check\n\n");
      EXPECT_FALSE(run.is_packed());
    }
  }
}

TEST(PackedGaussNewtonFallback, GoesThroughTheOperatorsWhereLayoutsDiffer) {
  Fit_run run;
  run.jacobian->packed_layout = {26, 1, 3};
  Fit_run twin(false);
  EXPECT_EQ(run.solver.optimise(start, target()), twin.solver.optimise(start, target()));
  EXPECT_FALSE(run.is_packed());
}

TEST(PackedGaussNewtonFallback, GoesThroughTheOperatorsWithMoreThanOneFunction) {
  Fit_calls calls;
  const Curve nothing = {{0, 2, 3}};  // so that all sizes fit those of the first function alone
  Fit_run run;
  run.solver.set_grad_funcs(
      {run.jacobian, new support::Fit_jacobian(nothing, true, Predicts::everywhere, calls, calls)});
  Fit_run twin(false);
  EXPECT_EQ(run.solver.optimise(start, target()), twin.solver.optimise(start, target()));
  EXPECT_FALSE(run.is_packed());
}

/// Allocations of a run of so many iterations, and of one after it.
std::vector<int> allocations(Linear_taylor_solver& solver, int max_iters) {
  constexpr int plenty = 1'000'000;
  const Vector values = target();
  solver.set_max_iters(max_iters);
  std::vector<int> counts(2);
  for (int& count : counts) {
    const support::Failing_allocation counting(plenty);
    const Vector x = solver.optimise(start, values);
    count = plenty - support::allocations_left;
  }
  return counts;
}

TEST(PackedGaussNewtonAllocations, AreAsManyForTenIterationsAsForThree) {
  for (const Predicts predicts : {Predicts::nowhere, Predicts::everywhere, Predicts::at_first, Predicts::at_large_x0}) {
    for (const bool is_weighted : {false, true}) {
      Fit_run few(true, predicts);
      Fit_run many(true, predicts);
      if (is_weighted) {
        for (Fit_run* run : {&few, &many}) run->jacobian->set_weights(Vector(num_equations, 0.5));
      }
      const std::vector<int> of_many = allocations(many.solver, 10);
      EXPECT_EQ(allocations(few.solver, 3), of_many);
      EXPECT_LT(of_many[1], of_many[0]);  // the buffers are there
      EXPECT_TRUE(many.is_packed());
    }
  }
}

TEST(PackedGaussNewtonAllocations, AreAsManyWithDifferences) {
  std::vector<std::vector<int>> counts;
  for (const int max_iters : {3, 10}) {
    Fit_calls calls;
    Linear_taylor_solver solver;
    solver.set_funcs({new support::Fit_function(curve, true, calls)});
    solver.set_finite_difference_steps({{1e-4, 1e-4, 1e-4}});
    solver.set_num_equations(static_cast<int>(num_equations));
    solver.set_num_dimensions(3);
    counts.push_back(allocations(solver, max_iters));
    EXPECT_EQ(calls.published, 0);
  }
  EXPECT_EQ(counts[0], counts[1]);
}

}  // namespace
