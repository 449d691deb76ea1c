// SPDX-License-Identifier: BSD-3-Clause
// Tests of systems that cannot be solved: NaN, infinity, fewer equations than unknowns.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/functions.h"
#include "support/inner_optimise.h"
#include "support/matchers.h"

namespace {

using fw::Linear_taylor_solver;
using support::Rows;
using support::Vector;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A solver with this Jacobian, whatever x, and the function (x0 + x1, ...), so that a NaN in x shows in the error.
Linear_taylor_solver solver_with_jacobian(const Rows& J, double value_added) {
  Linear_taylor_solver solver;
  const auto sums = [size = J.size(), value_added](const Vector& x) { return Vector(size, x[0] + x[1] + value_added); };
  solver.set_grad_funcs({new support::Jacobian(sums, [J](const Vector&) { return J; })});
  solver.set_num_equations(static_cast<int>(J.size()));
  solver.set_num_dimensions(2);
  return solver;
}

/// The step is NaN in every parameter, and a run returns its start, bit for bit.
void expect_no_step(Linear_taylor_solver solver, const Vector& target) {
  const Vector start{0.1, -0.2, 7.0};
  Vector x = start;
  double err = 0.0;
  solver.inner_optimise(x, target, x, err, 0);
  EXPECT_TRUE(std::isnan(x[0]));
  EXPECT_TRUE(std::isnan(x[1]));
  EXPECT_EQ(x[2], 7.0);
  EXPECT_TRUE(std::isnan(err));
  for (const int max_iters : {1, 4}) {
    solver.set_max_iters(max_iters);
    EXPECT_EQ(solver.optimise(start, target), start);
  }
}

Rows full_rank(std::size_t size) {
  Rows J;
  for (std::size_t i = 0; i < size; ++i) J.push_back({1.0, static_cast<double>(i)});
  return J;
}

// Both sides of 25 rows, from where a linear algebra library behind OpenCV may take over.
const std::vector<std::size_t> sizes = {2, 3, 40, 400};

TEST(LinearTaylorSolverNonfinite, TakesNoStepWhenTheJacobianIsNotFinite) {
  for (const std::size_t size : sizes) {
    for (const double bad : {nan, infinity, -infinity}) {
      for (const std::size_t row : {std::size_t{0}, size - 1}) {
        SCOPED_TRACE(testing::Message() << bad << " in row " << row << " of " << size);
        Rows J = full_rank(size);
        J[row][1] = bad;
        expect_no_step(solver_with_jacobian(J, 0.0), Vector(size, 1.0));
      }
    }
  }
}

TEST(LinearTaylorSolverNonfinite, TakesNoStepWhenTheTargetIsNotFinite) {
  for (const std::size_t size : sizes) {
    for (const double bad : {nan, infinity, -infinity}) {
      SCOPED_TRACE(testing::Message() << bad << " in the last of " << size);
      Vector target(size, 1.0);
      target.back() = bad;
      expect_no_step(solver_with_jacobian(full_rank(size), 0.0), target);
    }
  }
}

TEST(LinearTaylorSolverNonfinite, TakesNoStepWhenTheFunctionIsNotFinite) {
  for (const double bad : {nan, infinity, -infinity}) {
    SCOPED_TRACE(bad);
    expect_no_step(solver_with_jacobian(full_rank(30), bad), Vector(30, 1.0));
  }
}

TEST(LinearTaylorSolverNonfinite, KeepsTheBestPointWhenALaterSystemIsNotFinite) {
  // The second derivative that is asked for is NaN.
  int calls = 0;
  Linear_taylor_solver solver;
  solver.set_grad_funcs({new support::Jacobian([](const Vector& x) { return x; },
                                               [&](const Vector&) { return Rows{{++calls == 1 ? 2.0 : nan}}; })});
  solver.set_num_equations(1);
  solver.set_num_dimensions(1);
  solver.set_max_iters(3);
  EXPECT_EQ(solver.optimise({0.0}, {8.0}), (Vector{4.0}));
  EXPECT_EQ(calls, 3);
}

/// OpenCV's own text holds its version and a path; only what lies between the context and those is compared.
void expect_refused_by_opencv(Linear_taylor_solver& solver, const Vector& target) {
  Vector x{0.0, 0.0};
  double err = 0.0;
  const support::Caught caught = support::caught_by([&] { solver.inner_optimise(x, target, x, err, 0); });
  const std::string context = support::inner_optimise_block(200, "");
  EXPECT_EQ(caught.text.substr(0, context.size()), context);
  EXPECT_NE(caught.text.find("The function can not solve under-determined linear systems"), std::string::npos)
      << caught.text;
  EXPECT_EQ(caught.level, 0);
  EXPECT_EQ(x, (Vector{0.0, 0.0}));
}

TEST(LinearTaylorSolverUnderDetermined, ReportsWhatOpencvSays) {
  Linear_taylor_solver solver = solver_with_jacobian({{1.0, 2.0}}, 0.0);
  expect_refused_by_opencv(solver, {1.0});
}

TEST(LinearTaylorSolverUnderDetermined, ReportsTheSameWhateverTheSystemHolds) {
  for (const double bad : {nan, infinity}) {
    Linear_taylor_solver bad_jacobian = solver_with_jacobian({{bad, 2.0}}, 0.0);
    expect_refused_by_opencv(bad_jacobian, {1.0});
    Linear_taylor_solver bad_values = solver_with_jacobian({{1.0, 2.0}}, bad);
    expect_refused_by_opencv(bad_values, {1.0});
  }
}

TEST(LinearTaylorSolverUnderDetermined, ReportsTheSameWithoutEquations) {
  Linear_taylor_solver solver;
  solver.set_num_dimensions(2);
  expect_refused_by_opencv(solver, {});
}

}  // namespace
