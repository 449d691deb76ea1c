// SPDX-License-Identifier: BSD-3-Clause
// Tests of the Gauss-Newton step with unit weights, and of the caches that live across the steps of a run.
#include "fw_opt/linear_taylor_solver.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "support/functions.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using fw::Linear_taylor_solver;
using support::is_close;
using support::Rows;
using support::Vector;

/// A solver of one analytic function.
Linear_taylor_solver solver_of(fw::Grad_func* g, int num_equations, int num_dimensions) {
  Linear_taylor_solver solver;
  solver.set_grad_funcs({g});
  solver.set_num_equations(num_equations);
  solver.set_num_dimensions(num_dimensions);
  return solver;
}

struct Step {
  Vector x;
  double err;
};

Step step(Linear_taylor_solver& solver, const Vector& x0, const Vector& target, int iter) {
  Step result{{}, -1.0};
  solver.inner_optimise(x0, target, result.x, result.err, iter);
  return result;
}

Vector curved(const Vector& x) { return {x[0] * x[0], x[0] * x[1], x[1] - x[0]}; }
Rows curved_derivatives(const Vector& x) { return {{2 * x[0], 0.0}, {x[1], x[0]}, {-1.0, 1.0}}; }

double squared_distance(const Vector& a, const Vector& b) {
  double total = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) total += (a[i] - b[i]) * (a[i] - b[i]);
  return total;
}

/// x + dx for two parameters, by Cramer's rule on the normal equations J'J dx = J'(target - f).
Vector gauss_newton(const Vector& x, const Vector& target) {
  const Vector f = curved(x);
  const Rows J = curved_derivatives(x);
  double a = 0, b = 0, c = 0, p = 0, q = 0;
  for (std::size_t i = 0; i < f.size(); ++i) {
    a += J[i][0] * J[i][0];
    b += J[i][0] * J[i][1];
    c += J[i][1] * J[i][1];
    p += J[i][0] * (target[i] - f[i]);
    q += J[i][1] * (target[i] - f[i]);
  }
  const double determinant = a * c - b * b;
  return {x[0] + (c * p - b * q) / determinant, x[1] + (a * q - b * p) / determinant};
}

TEST(LinearTaylorSolver, TakesPlainGaussNewtonSteps) {
  Linear_taylor_solver solver = solver_of(new support::Jacobian(curved, curved_derivatives), 3, 2);
  const Vector target{4.5, 6.5, 0.25};
  Vector x{1.0, 2.0};
  for (int iter = 0; iter < 4; ++iter) {
    SCOPED_TRACE(iter);
    const Vector expected = gauss_newton(x, target);
    const Step result = step(solver, x, target, iter);
    EXPECT_TRUE(is_close(result.x, expected, tolerance::identity));
    EXPECT_NEAR(result.err, squared_distance(curved(expected), target), tolerance::identity);
    x = result.x;
  }
}

TEST(LinearTaylorSolver, SolvesAsManyEquationsAsUnknowns) {
  const auto line = [](const Vector& x) { return Vector{2.0 * x[0] + x[1], x[0] - x[1]}; };
  const auto slope = [](const Vector& /*x*/) { return Rows{{2.0, 1.0}, {1.0, -1.0}}; };
  Linear_taylor_solver solver = solver_of(new support::Jacobian(line, slope), 2, 2);
  const Step result = step(solver, {0.0, 0.0}, {5.0, 1.0}, 0);
  EXPECT_TRUE(is_close(result.x, Vector{2.0, 1.0}, tolerance::identity));
}

TEST(LinearTaylorSolver, FindsTheMinimumWhenItIterates) {
  // The valley of Rosenbrock as residuals: 10 (y - x^2) and 1 - x.
  auto* valley = new support::Jacobian(
      [](const Vector& x) {
        return Vector{10 * (x[1] - x[0] * x[0]), 1 - x[0]};
      },
      [](const Vector& x) {
        return Rows{{-20 * x[0], 10.0}, {-1.0, 0.0}};
      });
  Linear_taylor_solver solver = solver_of(valley, 2, 2);
  solver.set_max_iters(5);
  EXPECT_TRUE(is_close(solver.optimise(Vector{-1.2, 1.0}), Vector{1.0, 1.0}, tolerance::solved));
}

TEST(LinearTaylorSolver, StacksItsFunctionsInOrder) {
  // Rows 1, 2 from the Jacobians and 3 from the objective; each determines another parameter.
  Linear_taylor_solver solver;
  solver.set_grad_funcs({support::linear_jacobian({{1, 0, 0}}), support::linear_jacobian({{0, 1, 0}})});
  solver.set_funcs({new support::Objective(support::linear({{0, 0, 1}}))});
  solver.set_finite_difference_steps({{0.5, 0.5, 0.5}});
  solver.set_num_equations(3);
  solver.set_num_dimensions(3);
  const Step result = step(solver, {0, 0, 0}, {3, 4, 5}, 0);
  EXPECT_TRUE(is_close(result.x, Vector{3, 4, 5}, tolerance::identity));
  EXPECT_NEAR(result.err, 0.0, tolerance::identity);
}

TEST(LinearTaylorSolver, DampsTheStepsAfterTheFirstOnRequest) {
  Linear_taylor_solver solver = solver_of(support::linear_jacobian({{1.0}}), 1, 1);
  solver.set_decreasing_step_size(true);
  const Linear_taylor_solver damped_copy(solver);
  Linear_taylor_solver damped_by_assignment;
  damped_by_assignment = solver;
  const Vector factors{1.0, 2.0 / 3, 0.5, 0.4, 1.0 / 3};
  for (Linear_taylor_solver damped : {solver, damped_copy, damped_by_assignment}) {
    for (int iter = 0; iter < 5; ++iter) {
      damped.reset();
      EXPECT_NEAR(step(damped, {1.0}, {7.0}, iter).x[0], 1 + 6 * factors[static_cast<std::size_t>(iter)],
                  7 * tolerance::identity);
    }
  }
}

TEST(LinearTaylorSolver, TakesFullStepsByDefault) {
  Linear_taylor_solver solver = solver_of(support::linear_jacobian({{1.0}}), 1, 1);
  for (const int iter : {0, 1, 2, 50}) {
    solver.reset();
    EXPECT_NEAR(step(solver, {1.0}, {7.0}, iter).x[0], 7.0, 7 * tolerance::identity);
  }
}

TEST(LinearTaylorSolver, LeavesAParameterAloneThatNothingDependsOn) {
  Linear_taylor_solver solver = solver_of(support::linear_jacobian({{2, 0}, {1, 0}}), 2, 2);
  EXPECT_TRUE(is_close(step(solver, {0, 8}, {4, 2}, 0).x, Vector{2, 8}, tolerance::identity));
}

TEST(LinearTaylorSolver, TakesTheShortestOfManySolutions) {
  // Only x + 2 y is determined: the shortest way from (1, 1) to x + 2 y = 13 is along (1, 2).
  Linear_taylor_solver solver = solver_of(support::linear_jacobian({{1, 2}, {2, 4}, {-1, -2}}), 3, 2);
  EXPECT_TRUE(is_close(step(solver, {1, 1}, {13, 26, -13}, 0).x, Vector{3, 5}, tolerance::identity));
}

TEST(LinearTaylorSolver, StandsStillWhenNothingDependsOnAnything) {
  Linear_taylor_solver solver = solver_of(support::linear_jacobian({{0, 0}, {0, 0}}), 2, 2);
  const Step result = step(solver, {3, 4}, {1, 2}, 0);
  EXPECT_EQ(result.x, (Vector{3, 4}));
  EXPECT_EQ(result.err, 5.0);
}

TEST(LinearTaylorSolver, KeepsEntriesBeyondTheDimensions) {
  Linear_taylor_solver solver = solver_of(support::linear_jacobian({{1.0}}), 1, 1);
  const Step result = step(solver, {0.0, 55.0, -66.0}, {3.0}, 0);
  ASSERT_EQ(result.x.size(), 3U);
  EXPECT_NEAR(result.x[0], 3.0, 3 * tolerance::identity);
  EXPECT_EQ(result.x[1], 55.0);
  EXPECT_EQ(result.x[2], -66.0);
}

TEST(LinearTaylorSolver, MayWriteTheNewPointOverTheOld) {
  const Vector target{4.5, 6.5, 0.25};
  const auto make = [] {
    Linear_taylor_solver solver = solver_of(new support::Jacobian(curved, curved_derivatives), 6, 2);
    solver.set_funcs({new support::Objective(curved)});
    solver.set_finite_difference_steps({{1e-3, 1e-3}});
    return solver;
  };
  const Vector doubled{4.5, 6.5, 0.25, 4.5, 6.5, 0.25};
  Linear_taylor_solver apart = make();
  Linear_taylor_solver in_place = make();
  Vector x{1.0, 2.0};
  for (int iter = 0; iter < 3; ++iter) {
    const Step expected = step(apart, x, doubled, iter);
    double err = -1.0;
    in_place.inner_optimise(x, doubled, x, err, iter);
    EXPECT_EQ(x, expected.x);
    EXPECT_EQ(err, expected.err);
  }
}

TEST(LinearTaylorSolver, EvaluatesEachFunctionOnceForEachNewPoint) {
  int base_calls = 0;
  int objective_calls = 0;
  const auto counted = [](int& calls) {
    return [&calls](const Vector& x) {
      ++calls;
      return x;
    };
  };
  Linear_taylor_solver solver = solver_of(new support::Jacobian(counted(base_calls),
                                                                [](const Vector&) {
                                                                  return Rows{{1, 0}, {0, 1}};
                                                                }),
                                          4, 2);
  solver.set_funcs({new support::Objective(counted(objective_calls))});
  solver.set_finite_difference_steps({{1e-3, 1e-3}});
  step(solver, {0, 0}, {1, 2, 1, 2}, 0);
  EXPECT_EQ(base_calls, 2);           // at the start and at the new point
  EXPECT_EQ(objective_calls, 2 + 2);  // and once for each parameter
  step(solver, {1, 2}, {1, 2, 1, 2}, 1);
  EXPECT_EQ(base_calls, 3);
  EXPECT_EQ(objective_calls, 4 + 1 + 2);
}

/// A function of weight 2, so that the first step of a run differs from later ones: x + 6 / 1 against x + 6 + x / 2.
Linear_taylor_solver weighted_solver() {
  auto* g = support::linear_jacobian({{1.0}});
  g->set_weights({2.0});
  return solver_of(g, 1, 1);
}
void expect_first_step(Linear_taylor_solver& solver) {
  EXPECT_NEAR(step(solver, {4.0}, {10.0}, 0).x[0], 10.0, 10 * tolerance::identity);
}
void expect_later_step(Linear_taylor_solver& solver) {
  // The cached value is the one at 10: 2 dx = 2 * 10 - 10.
  EXPECT_NEAR(step(solver, {10.0}, {10.0}, 1).x[0], 15.0, 15 * tolerance::identity);
}

TEST(LinearTaylorSolverCaches, AreEmptyInACopy) {
  Linear_taylor_solver solver = weighted_solver();
  expect_first_step(solver);
  Linear_taylor_solver copy(solver);
  expect_first_step(copy);
  expect_later_step(solver);
  expect_later_step(copy);
}

TEST(LinearTaylorSolverCaches, StayAsTheyWereInAnAssignment) {
  Linear_taylor_solver fresh = weighted_solver();
  Linear_taylor_solver started = weighted_solver();
  expect_first_step(started);
  const Linear_taylor_solver other = weighted_solver();
  started = other;
  expect_later_step(started);
  fresh = started;
  expect_first_step(fresh);
}

TEST(LinearTaylorSolverCaches, AreForgottenByAReset) {
  Linear_taylor_solver solver = weighted_solver();
  expect_first_step(solver);
  solver.reset();
  expect_first_step(solver);
}

TEST(LinearTaylorSolverCaches, DoNotPassFromRunToRun) {
  Linear_taylor_solver solver = weighted_solver();
  for (int run = 0; run < 3; ++run) {
    EXPECT_NEAR(solver.optimise({4.0}, {10.0})[0], 10.0, 10 * tolerance::identity);
  }
}

TEST(LinearTaylorSolverCaches, AreRecoveredByTheNextRunAfterAFailure) {
  Linear_taylor_solver solver = weighted_solver();
  solver.set_num_equations(2);
  EXPECT_EQ(support::caught_by([&] { solver.optimise({4.0}, {10.0, 0.0}); }).level, 2);
  solver.set_num_equations(1);
  EXPECT_NEAR(solver.optimise({4.0}, {10.0})[0], 10.0, 10 * tolerance::identity);
}

}  // namespace
