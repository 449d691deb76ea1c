// SPDX-License-Identifier: BSD-3-Clause
// Tests of the rows that the solver fills by forward differences, to the last bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/functions.h"
#include "support/matchers.h"
#include "support/matrix_of.h"

namespace {

using fw::Linear_taylor_solver;
using support::is_close;
using support::Rows;
using support::Vector;

Vector curved(const Vector& x) { return {std::sin(x[0]) * x[1], std::exp(x[1]) - x[0], x[0] * x[1]}; }

/// One analytic row, which shows the matrix that the differences are written to, then one differenced function.
class Differences {
 public:
  Linear_taylor_solver solver;
  std::vector<Vector> points;  // where the differenced function was evaluated
  cv::Mat J;

  Differences(const Vector& steps, const Vector& weights) {
    auto* f = new support::Objective([this](const Vector& x) {
      points.push_back(x);
      return curved(x);
    });
    f->set_weights(weights);
    solver.set_grad_funcs({support::linear_jacobian({{1.0, 1.0}}, &J)});
    solver.set_funcs({f});
    solver.set_finite_difference_steps({steps});
    solver.set_num_equations(4);
    solver.set_num_dimensions(2);
  }

  Vector step(const Vector& x, int iter) {
    points.clear();
    Vector x_out;
    double err = -1.0;
    solver.inner_optimise(x, {1.0, 0.5, 0.25, 0.125}, x_out, err, iter);
    return x_out;
  }
};

constexpr double h0 = 1.0;
constexpr double h1 = 7e-3;  // no power of ten, whose reciprocal would give the same digits

/// The points the differences are taken at: each step is added and subtracted again, with the rounding that leaves.
std::vector<Vector> perturbed(const Vector& x) {
  const double restored = (x[0] + h0) - h0;
  return {{x[0] + h0, x[1]}, {restored, x[1] + h1}};
}

/// (w_new f(perturbed) - w_cached f(x)) / h, row by row; the analytic row above.
fw::matrix<double> expected_rows(const Vector& x, const Vector& new_weights, const Vector& cached_weights) {
  const Vector steps{h0, h1};
  const std::vector<Vector> at = perturbed(x);
  Rows rows{{1.0, 1.0}, {0, 0}, {0, 0}, {0, 0}};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t d = 0; d < 2; ++d) {
      rows[1 + i][d] = (curved(at[d])[i] * new_weights[i] - curved(x)[i] * cached_weights[i]) / steps[d];
    }
  }
  return support::matrix_of(rows);
}

TEST(LinearTaylorSolverDifferences, AreForwardDifferencesToTheLastBit) {
  Differences differences({h0, h1}, {});
  const Vector x{0.1, 0.7};
  const Vector x_out = differences.step(x, 0);
  const Vector ones(3, 1.0);
  EXPECT_TRUE(is_close(differences.J, expected_rows(x, ones, ones), 0));
  ASSERT_EQ(differences.points.size(), 4U);
  EXPECT_EQ(differences.points[0], x);
  EXPECT_EQ(differences.points[3], x_out);
}

TEST(LinearTaylorSolverDifferences, TakeTheStepBackBySubtraction) {
  Differences differences({h0, h1}, {});
  const Vector x{0.1, 0.7};
  ASSERT_NE((x[0] + h0) - h0, x[0]);  // the round trip leaves a rounding behind
  differences.step(x, 0);
  EXPECT_EQ(differences.points[1], perturbed(x)[0]);
  EXPECT_EQ(differences.points[2], perturbed(x)[1]);
}

TEST(LinearTaylorSolverDifferences, AreWeightedInTheFirstIterationAndMixedInTheSecond) {
  // The analytic row in front shifts the target's weights by one, so the list needs one entry more.
  const Vector weights{3.0, 0.3, 7.0, 1.0};
  Differences differences({h0, h1}, weights);
  const Vector x{0.1, 0.7};
  const Vector next = differences.step(x, 0);
  EXPECT_TRUE(is_close(differences.J, expected_rows(x, weights, weights), 0));
  differences.step(next, 1);
  EXPECT_TRUE(is_close(differences.J, expected_rows(next, weights, Vector(3, 1.0)), 0));
}

TEST(LinearTaylorSolverDifferences, MayGoBackwards) {
  cv::Mat J;
  Linear_taylor_solver solver;
  solver.set_grad_funcs({support::linear_jacobian({{1.0}}, &J)});
  solver.set_funcs({new support::Objective([](const Vector& x) { return Vector{x[0] * x[0]}; })});
  solver.set_finite_difference_steps({{-0.5}});
  solver.set_num_equations(2);
  solver.set_num_dimensions(1);
  solver.optimise({3.0}, {0.0, 0.0});
  EXPECT_EQ(J.at<double>(1, 0), (2.5 * 2.5 - 9.0) / -0.5);
}

TEST(LinearTaylorSolverDifferences, UseTheStepsOfEachFunction) {
  cv::Mat J;
  Linear_taylor_solver solver;
  const support::Map parabola = [](const Vector& x) { return Vector{x[0] * x[0]}; };
  solver.set_grad_funcs({support::linear_jacobian({{1.0}}, &J)});
  solver.set_funcs({new support::Objective(parabola), new support::Objective(parabola)});
  solver.set_finite_difference_steps({{0.5}, {0.25}});
  solver.set_num_equations(3);
  solver.set_num_dimensions(1);
  solver.optimise({1.0}, {0.0, 0.0, 0.0});
  EXPECT_TRUE(is_close(J, support::matrix_of({{1.0}, {2.5}, {2.25}}), 0));
}

TEST(LinearTaylorSolverDifferences, LeaveEntriesBeyondTheDimensionsAlone) {
  std::vector<Vector> points;
  Linear_taylor_solver solver;
  solver.set_funcs({new support::Objective([&](const Vector& x) {
    points.push_back(x);
    return Vector{x[0] + x[1]};
  })});
  solver.set_finite_difference_steps({{0.5}});
  solver.set_num_equations(1);
  solver.set_num_dimensions(1);
  solver.optimise({1.0, 8.0}, {13.0});
  ASSERT_EQ(points.size(), 3U);
  EXPECT_EQ(points[1], (Vector{1.5, 8.0}));
  EXPECT_EQ(points[2][1], 8.0);
}

}  // namespace
