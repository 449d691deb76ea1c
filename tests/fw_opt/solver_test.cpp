// SPDX-License-Identifier: BSD-3-Clause
// Tests of the solver frame: settings, overloads, the iteration loop and the best point.
#include "fw_opt/solver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/functions.h"
#include "support/scripted_solver.h"

namespace {

using support::Scripted_solver;
using support::Vector;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

struct Bare_solver : fw::Solver {
  using Solver::has_decreasing_step_size;
  void reset() override {}
  void inner_optimise(const Vector&, const Vector&, Vector&, double&, int) override {}
};

TEST(Solver, StartsWithItsDefaults) {
  const Bare_solver solver;
  EXPECT_EQ(solver.get_num_dimensions(), 0);
  EXPECT_EQ(solver.get_num_equations(), 0);
  EXPECT_EQ(solver.get_max_iters(), 1);
  EXPECT_EQ(solver.get_min_x_step(), 0.0F);
  EXPECT_EQ(solver.get_min_y_step(), -100000.0F);
  EXPECT_TRUE(solver.get_funcs().empty());
  EXPECT_TRUE(solver.get_grad_funcs().empty());
  EXPECT_TRUE(solver.get_finite_difference_steps().empty());
  EXPECT_FALSE(solver.has_decreasing_step_size());
}

TEST(Solver, StoresItsSettings) {
  Bare_solver solver;
  solver.set_num_dimensions(-3);
  solver.set_num_equations(12);
  solver.set_max_iters(-7);
  solver.set_min_x_step(0.1F);
  solver.set_min_y_step(-0.2F);
  solver.set_decreasing_step_size(true);
  solver.set_finite_difference_steps({{1.0, 2.0}, {}});
  EXPECT_EQ(solver.get_num_dimensions(), -3);
  EXPECT_EQ(solver.get_num_equations(), 12);
  EXPECT_EQ(solver.get_max_iters(), -7);
  EXPECT_EQ(solver.get_min_x_step(), 0.1F);
  EXPECT_EQ(solver.get_min_y_step(), -0.2F);
  EXPECT_TRUE(solver.has_decreasing_step_size());
  EXPECT_EQ(solver.get_finite_difference_steps(), (support::Rows{{1.0, 2.0}, {}}));
}

TEST(Solver, ReturnsTheStartWithoutIterations) {
  for (const int max_iters : {0, -1}) {
    Scripted_solver solver({});
    solver.set_max_iters(max_iters);
    solver.set_num_equations(2);
    EXPECT_EQ(solver.optimise({1.0, 2.0, 3.0}, {0.0, 0.0}), (Vector{1.0, 2.0, 3.0}));
    EXPECT_EQ(solver.calls, (std::vector<std::string>{"reset"}));
  }
}

TEST(Solver, HandsEachIterationTheLastPointInPlaceAndItsNumber) {
  Scripted_solver solver({{{1.0}, 3.0}, {{2.0}, 2.0}, {{3.0}, 1.0}});
  solver.set_num_equations(2);
  EXPECT_EQ(solver.optimise({0.0}, {7.0, 8.0}), (Vector{3.0}));
  EXPECT_EQ(solver.calls, (std::vector<std::string>{"reset", "iteration", "iteration", "iteration"}));
  EXPECT_EQ(solver.starts, (std::vector<Vector>{{0.0}, {1.0}, {2.0}}));
  EXPECT_EQ(solver.iters, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(solver.targets, (std::vector<Vector>{{7.0, 8.0}, {7.0, 8.0}, {7.0, 8.0}}));
  EXPECT_TRUE(solver.points_alias);
}

TEST(Solver, BeginsEveryRunWithAReset) {
  Scripted_solver solver({{{1.0}, 3.0}});
  solver.optimise({0.0}, {});
  solver.optimise({5.0}, {});
  EXPECT_EQ(solver.calls, (std::vector<std::string>{"reset", "iteration", "reset", "iteration"}));
  EXPECT_EQ(solver.starts, (std::vector<Vector>{{0.0}, {5.0}}));
}

TEST(Solver, ReturnsTheBestPointNotTheLast) {
  Scripted_solver solver({{{1.0}, 3.0}, {{2.0}, 1.0}, {{3.0}, 2.0}});
  EXPECT_EQ(solver.optimise({0.0}, {}), (Vector{2.0}));
}

TEST(Solver, TakesTheLaterOfTwoEquallyGoodPoints) {
  Scripted_solver solver({{{1.0}, 3.0}, {{2.0}, 3.0}});
  EXPECT_EQ(solver.optimise({0.0}, {}), (Vector{2.0}));
}

TEST(Solver, TakesAnyFirstPointWithAFiniteError) {
  EXPECT_EQ(Scripted_solver({{{1.0}, largest}}).optimise({0.0}, {}), (Vector{1.0}));
  EXPECT_EQ(Scripted_solver({{{1.0}, infinity}}).optimise({0.0}, {}), (Vector{0.0}));
}

TEST(Solver, NeverTakesAPointWithANanError) {
  EXPECT_EQ(Scripted_solver({{{1.0}, nan}}).optimise({0.0}, {}), (Vector{0.0}));
  EXPECT_EQ(Scripted_solver({{{1.0}, nan}, {{nan}, nan}}).optimise({0.0}, {}), (Vector{0.0}));
  EXPECT_EQ(Scripted_solver({{{1.0}, 5.0}, {{2.0}, nan}, {{3.0}, 4.0}}).optimise({0.0}, {}), (Vector{3.0}));
  EXPECT_EQ(Scripted_solver({{{1.0}, 5.0}, {{2.0}, nan}, {{3.0}, 6.0}}).optimise({0.0}, {}), (Vector{1.0}));
}

TEST(Solver, StartsFromZerosAgainstATargetOfZerosByDefault) {
  Scripted_solver solver({{{1.0, 1.0}, 0.0}});
  solver.set_num_dimensions(2);
  solver.set_num_equations(3);
  EXPECT_EQ(solver.optimise(), (Vector{1.0, 1.0}));
  EXPECT_EQ(solver.optimise(Vector{4.0, 5.0}), (Vector{1.0, 1.0}));
  EXPECT_EQ(solver.starts, (std::vector<Vector>{{0.0, 0.0}, {4.0, 5.0}}));
  EXPECT_EQ(solver.targets, (std::vector<Vector>{{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}}));
}

struct Overriding_solver : Bare_solver {
  using Solver::optimise;
  std::vector<std::string> calls;
  std::vector<double> optimise(const Vector& x0) override {
    calls.push_back("start of " + std::to_string(x0.size()));
    return Solver::optimise(x0);
  }
  std::vector<double> optimise(const Vector& x0, const Vector& target) override {
    calls.push_back("start of " + std::to_string(x0.size()) + ", target of " + std::to_string(target.size()));
    return {42.0};
  }
};

TEST(Solver, GoesThroughItsVirtualOverloads) {
  Overriding_solver solver;
  solver.set_num_dimensions(2);
  solver.set_num_equations(3);
  fw::Solver& as_base = solver;
  EXPECT_EQ(as_base.optimise(), (Vector{42.0}));
  EXPECT_EQ(solver.calls, (std::vector<std::string>{"start of 2", "start of 2, target of 3"}));
}

}  // namespace
