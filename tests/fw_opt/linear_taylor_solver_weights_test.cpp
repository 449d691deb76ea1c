// SPDX-License-Identifier: BSD-3-Clause
// Tests of weights other than 1: what they multiply in the first iteration of a run and what in the later ones.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/functions.h"
#include "support/matchers.h"
#include "support/matrix_of.h"
#include "support/tolerance.h"

namespace {

using fw::Linear_taylor_solver;
using support::is_close;
using support::Rows;
using support::Vector;

/// The least-squares solution of one unknown.
double solution(const Vector& J, const Vector& b) {
  double numerator = 0.0;
  double denominator = 0.0;
  for (std::size_t i = 0; i < J.size(); ++i) {
    numerator += J[i] * b[i];
    denominator += J[i] * J[i];
  }
  return numerator / denominator;
}

Vector parabola_and_line(const Vector& x) { return {x[0] * x[0], 3 * x[0]}; }
Rows parabola_and_line_derivatives(const Vector& x) { return {{2 * x[0]}, {3.0}}; }

TEST(LinearTaylorSolverWeights, ApplyToTheValuesOfTheFirstIterationOnly) {
  Linear_taylor_solver solver;
  auto* g = new support::Jacobian(parabola_and_line, parabola_and_line_derivatives);
  g->set_weights({2.0, 0.5});
  solver.set_grad_funcs({g});
  solver.set_num_equations(2);
  solver.set_num_dimensions(1);
  const Vector target{4.0, 7.0};

  Vector x{1.0};
  double err = -1.0;
  const double x1 = 1.0 + solution({2 * 2.0, 0.5 * 3}, {2 * 4.0 - 2 * 1.0, 0.5 * 7 - 0.5 * 3});
  solver.inner_optimise(x, target, x, err, 0);
  EXPECT_NEAR(x[0], x1, tolerance::identity);
  EXPECT_NEAR(err, (x1 * x1 - 4) * (x1 * x1 - 4) + (3 * x1 - 7) * (3 * x1 - 7), tolerance::identity);

  // From here on weighted targets meet unweighted values.
  const double x2 = x1 + solution({2 * 2 * x1, 0.5 * 3}, {2 * 4.0 - x1 * x1, 0.5 * 7 - 3 * x1});
  solver.inner_optimise(x, target, x, err, 1);
  EXPECT_NEAR(x[0], x2, 10 * tolerance::identity);
  const double x3 = x2 + solution({2 * 2 * x2, 0.5 * 3}, {2 * 4.0 - x2 * x2, 0.5 * 7 - 3 * x2});
  solver.inner_optimise(x, target, x, err, 2);
  EXPECT_NEAR(x[0], x3, 10 * tolerance::identity);
}

TEST(LinearTaylorSolverWeights, AreReadOfTheTargetsOnceARun) {
  // The target may change between iterations: the error follows it, the residual does not.
  Linear_taylor_solver solver;
  auto* g = support::linear_jacobian({{1.0}});
  g->set_weights({2.0});
  solver.set_grad_funcs({g});
  solver.set_num_equations(1);
  solver.set_num_dimensions(1);
  Vector x{0.0};
  double err = -1.0;
  solver.inner_optimise(x, {10.0}, x, err, 0);
  EXPECT_NEAR(x[0], 10.0, 10 * tolerance::identity);
  solver.inner_optimise(x, {100.0}, x, err, 1);
  EXPECT_NEAR(x[0], 10 + (2 * 10 - 10) / 2, 15 * tolerance::identity);
  EXPECT_NEAR(err, 85.0 * 85.0, 85 * 85 * tolerance::identity);
}

constexpr double x0 = 2.0;

/// Two functions, (x, 2x) and (3x, 4x), from 2 towards the target (10, 20, 30, 40).
double x_after_one_step(Linear_taylor_solver& solver) {
  solver.set_num_equations(4);
  solver.set_num_dimensions(1);
  Vector x{x0};
  double err = -1.0;
  solver.inner_optimise(x, {10, 20, 30, 40}, x, err, 0);
  EXPECT_NEAR(err, 30 * (x[0] - 10) * (x[0] - 10), tolerance::identity * err);
  return x[0];
}

TEST(LinearTaylorSolverWeights, MultiplyValuesByTheLocalAndTargetsByTheStackedIndex) {
  Linear_taylor_solver solver;
  auto* first = support::linear_jacobian({{1.0}, {2.0}});
  auto* second = support::linear_jacobian({{3.0}, {4.0}});
  first->set_weights({2.0, 3.0});
  second->set_weights({5.0, 7.0, 11.0, 13.0});
  solver.set_grad_funcs({first, second});
  const Vector b = {2.0 * 10 - 2.0 * x0, 3.0 * 20 - 3.0 * 2 * x0,         // both indices agree
                    11.0 * 30 - 5.0 * 3 * x0, 13.0 * 40 - 7.0 * 4 * x0};  // the second function's do not
  // The second function weighs the first two rows again and leaves its own as they are.
  const Vector J = {1.0 * 2 * 5, 2.0 * 3 * 7, 3.0, 4.0};
  EXPECT_NEAR(x_after_one_step(solver), x0 + solution(J, b), 100 * tolerance::identity);
}

TEST(LinearTaylorSolverWeights, OfDifferencedFunctionsFollowTheSameIndices) {
  Linear_taylor_solver solver;
  auto* first = new support::Objective(support::linear({{1.0}, {2.0}}));
  auto* second = new support::Objective(support::linear({{3.0}, {4.0}}));
  first->set_weights({2.0, 3.0});
  second->set_weights({5.0, 7.0, 11.0, 13.0});
  solver.set_funcs({first, second});
  solver.set_finite_difference_steps({{0.5}, {0.25}});
  const Vector b = {2.0 * 10 - 2.0 * x0, 3.0 * 20 - 3.0 * 2 * x0, 11.0 * 30 - 5.0 * 3 * x0, 13.0 * 40 - 7.0 * 4 * x0};
  // Here each row carries its own function's weight.
  const Vector J = {1.0 * 2, 2.0 * 3, 3.0 * 5, 4.0 * 7};
  EXPECT_NEAR(x_after_one_step(solver), x0 + solution(J, b), 100 * tolerance::identity);
}

TEST(LinearTaylorSolverWeights, OfADifferencedFunctionBehindAJacobianStartAtItsStackedRow) {
  Linear_taylor_solver solver;
  auto* second = new support::Objective(support::linear({{3.0}, {4.0}}));
  second->set_weights({5.0, 7.0, 11.0, 13.0});
  solver.set_grad_funcs({support::linear_jacobian({{1.0}, {2.0}})});
  solver.set_funcs({second});
  solver.set_finite_difference_steps({{0.5}});
  const Vector b = {10 - x0, 20 - 2 * x0, 11.0 * 30 - 5.0 * 3 * x0, 13.0 * 40 - 7.0 * 4 * x0};
  const Vector J = {1.0, 2.0, 3.0 * 5, 4.0 * 7};
  EXPECT_NEAR(x_after_one_step(solver), x0 + solution(J, b), 100 * tolerance::identity);
}

TEST(LinearTaylorSolverWeights, MultiplyTheFirstRowsOfTheJacobianWhicheverFunctionTheyBelongTo) {
  cv::Mat J;
  Linear_taylor_solver solver;
  auto* second = support::linear_jacobian({{3.0, 0.1}, {4.0, 0.2}}, &J);
  second->set_weights({5.0, 7.0, 11.0, 13.0});
  solver.set_grad_funcs({support::linear_jacobian({{1.0, -1.0}, {2.0, -2.0}}), second});
  solver.set_num_equations(4);
  solver.set_num_dimensions(2);
  Vector x{x0, 0.0};
  double err = -1.0;
  solver.inner_optimise(x, {10, 20, 30, 40}, x, err, 0);
  EXPECT_TRUE(is_close(J, support::matrix_of({{1 * 5, -1 * 5}, {2 * 7, -2 * 7}, {3, 0.1}, {4, 0.2}}), 0));
}

TEST(LinearTaylorSolverWeights, OfZeroRemoveAnEquationFromTheFirstStep) {
  Linear_taylor_solver solver;
  auto* g = support::linear_jacobian({{1.0}, {1.0}});
  g->set_weight(1, 1.0);  // leaves the first at 0
  solver.set_grad_funcs({g});
  solver.set_num_equations(2);
  solver.set_num_dimensions(1);
  EXPECT_NEAR(solver.optimise({0.0}, {1000.0, 5.0})[0], 5.0, 5 * tolerance::identity);
}

}  // namespace
