// SPDX-License-Identifier: BSD-3-Clause
// Runs over a packed function against those of a twin that has the published operators only.
#include "fw_opt/packed_gauss_newton.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/packed_fit.h"

namespace {

using fw::Linear_taylor_solver;
using support::Curve;
using support::Fit_calls;
using support::Predicts;
using support::Random;
using Vector = std::vector<double>;

constexpr std::uint64_t seed = 71101;
constexpr double rounding = 1e-12;
const Vector start = {0.8, -0.2, 0.5};

/// What a run is made of.
struct Setting {
  Curve curve;
  bool has_jacobian = true;
  Predicts predicts = Predicts::nowhere;
  Vector weights = {};
  int max_iters = 4;  // later ones change the squared error by its rounding only, which decides whether a point counts
  bool is_damped = false;
};

/// Items short of, at and beyond whole groups, several stacks and outputs, in pieces short and long.
std::vector<Curve> curves() {
  return {{{3, 1, 1}}, {{8, 2, 1}}, {{13, 2, 3}, 16}, {{41, 3, 2}, 24}, {{257, 1, 2}, 240}, {{1000, 2, 1}, 120}};
}

/// Values of the curve near {2, 0.5, -1}, with noise, so that the squared error does not vanish.
Vector target_of(const Curve& curve) {
  Random random(seed);
  Vector target;
  curve.visit_all([&](auto... place) { target.push_back(curve.value({2.0, 0.5, -1.0}, place...)); });
  for (double& value : target) value += random.uniform(-0.05, 0.05);
  return target;
}

Vector random_weights(std::size_t size) {
  Random random(seed + 1);
  Vector weights;
  while (weights.size() < size) weights.push_back(random.uniform(0.5, 2.0));
  return weights;
}

/// A solver for the setting, with the packed operators or without, and what it called.
struct Fit_run {
  Fit_calls function_calls, jacobian_calls;
  Linear_taylor_solver solver;
  support::Fit_jacobian* jacobian = nullptr;

  Fit_run(const Setting& setting, bool is_packed) {
    if (setting.has_jacobian) {
      jacobian = new support::Fit_jacobian(setting.curve, is_packed, setting.predicts, jacobian_calls, function_calls);
      jacobian->set_weights(setting.weights);
      solver.set_grad_funcs({jacobian});
    } else {
      auto* function = new support::Fit_function(setting.curve, is_packed, function_calls);
      function->set_weights(setting.weights);
      solver.set_funcs({function});
      solver.set_finite_difference_steps({{0.01, 0.01, 0.1}});
    }
    solver.set_num_equations(static_cast<int>(setting.curve.layout.num_equations()));
    solver.set_num_dimensions(3);
    solver.set_max_iters(setting.max_iters);
    solver.set_decreasing_step_size(setting.is_damped);
  }
};

/// Every number of iterations up to that of the setting, so that one that comes out right by luck does not hide one
/// that does not.
void expect_like_twin(Setting setting) {
  const Vector target = target_of(setting.curve);
  for (const int last = setting.max_iters; setting.max_iters > 0; --setting.max_iters) {
    const auto& layout = setting.curve.layout;
    SCOPED_TRACE(testing::Message() << layout.num_items << " items, " << setting.max_iters << " of " << last);
    Fit_run packed(setting, true);
    Fit_run twin(setting, false);
    const Vector expected = twin.solver.optimise(start, target);
    EXPECT_TRUE(support::is_close(packed.solver.optimise(start, target), expected, rounding));
    EXPECT_EQ(packed.function_calls.published + packed.jacobian_calls.published, 0);
    EXPECT_EQ(twin.function_calls.packed + twin.jacobian_calls.packed, 0);
    EXPECT_NE(expected, start);
  }
}

constexpr Predicts all_predictions[] = {Predicts::nowhere, Predicts::everywhere, Predicts::at_first,
                                        Predicts::at_large_x0};

TEST(PackedGaussNewton, TakesTheStepsOfItsTwin) {
  for (const Curve& curve : curves()) {
    for (const Predicts predicts : all_predictions) expect_like_twin({curve, true, predicts});
  }
}

TEST(PackedGaussNewton, WeighsWhatItsTwinWeighs) {
  for (const Curve& curve : curves()) {
    const Vector weights = random_weights(curve.layout.num_equations() + 2);  // more than needed
    for (const Predicts predicts : all_predictions) expect_like_twin({curve, true, predicts, weights});
  }
}

TEST(PackedGaussNewton, TakesTheDifferencesOfItsTwin) {
  for (const Curve& curve : curves()) {
    expect_like_twin({curve, false});
    expect_like_twin({curve, false, Predicts::nowhere, random_weights(curve.layout.num_equations()), 1});
  }
}

TEST(PackedGaussNewton, ShortensItsStepsLikeItsTwin) {
  for (const Curve& curve : curves()) {
    for (const Predicts predicts : all_predictions) {
      expect_like_twin({curve, true, predicts, {}, 4, true});
      expect_like_twin({curve, true, predicts, random_weights(curve.layout.num_equations()), 4, true});
    }
  }
}

TEST(PackedGaussNewton, StopsWhereItsTwinStops) {
  for (const Predicts predicts : all_predictions) {
    const Setting setting{curves()[3], true, predicts, {}, 30};
    Fit_run packed(setting, true);
    Fit_run twin(setting, false);
    for (Fit_run* run : {&packed, &twin}) run->solver.set_min_x_step(1e-3F);
    const Vector target = target_of(setting.curve);
    for (const double x0 : {1.2, 1.9}) {  // nothing that the first run had in store for a next iteration stays
      const Vector x = {x0, 0.4, -0.5};
      EXPECT_TRUE(support::is_close(packed.solver.optimise(x, target), twin.solver.optimise(x, target), rounding));
    }
    EXPECT_LT(twin.jacobian_calls.published, 20);
  }
}

TEST(PackedGaussNewton, RunsAgainFromAnotherStartAndWithOtherWeights) {
  const Setting setting{curves()[2], true, Predicts::at_large_x0};
  const Vector target = target_of(setting.curve);
  Fit_run packed(setting, true);
  for (const Vector& weights : {Vector{}, random_weights(setting.curve.layout.num_equations()), Vector{}}) {
    for (const double x0 : {1.2, 1.7}) {
      Fit_run twin(setting, false);
      for (Fit_run* run : {&packed, &twin}) run->jacobian->set_weights(weights);
      const Vector expected = twin.solver.optimise({x0, 0.4, -0.5}, target);
      EXPECT_TRUE(support::is_close(packed.solver.optimise({x0, 0.4, -0.5}, target), expected, rounding));
    }
  }
  EXPECT_EQ(packed.jacobian_calls.published, 0);
}

TEST(PackedGaussNewton, CanBeGoneOnWithByHand) {
  for (const Predicts predicts : all_predictions) {
    for (const bool has_jacobian : {true, false}) {
      const Setting setting{curves()[2], has_jacobian, predicts, {}, 2};
      const Vector target = target_of(setting.curve);
      Fit_run packed(setting, true);
      Fit_run twin(setting, false);
      std::vector<Vector> results;
      for (Fit_run* run : {&packed, &twin}) {
        Vector x = run->solver.optimise(start, target);
        double err = 0.0;
        for (int iter = 2; iter < 4; ++iter) run->solver.inner_optimise(x, target, x, err, iter);
        results.push_back(x);
        results.back().push_back(err);
      }
      EXPECT_TRUE(support::is_close(results[0], results[1], rounding));
      EXPECT_GT(packed.function_calls.published, 0);
    }
  }
}

TEST(PackedGaussNewton, LeavesThePointAndTheTargetOfTheRunToWhoGoesOnByHand) {
  for (const Predicts predicts : all_predictions) {
    const Setting setting{curves()[2], true, predicts, random_weights(78), 2};
    Vector other_target = target_of(setting.curve);
    Fit_run packed(setting, true);
    Fit_run twin(setting, false);
    for (Fit_run* run : {&packed, &twin}) run->solver.optimise(start, other_target);
    for (double& value : other_target) value += 0.1;
    Vector x;
    Vector expected;
    double err = 0.0;
    double expected_err = 0.0;
    // The residual of this step still is that of the last point of the run.
    packed.solver.inner_optimise({1.8, 0.3, -0.8}, other_target, x, err, 2);
    twin.solver.inner_optimise({1.8, 0.3, -0.8}, other_target, expected, expected_err, 2);
    EXPECT_TRUE(support::is_close(x, expected, rounding));
    EXPECT_NEAR(err, expected_err, rounding * expected_err);
  }
}

TEST(PackedGaussNewton, TakesNoStepWhereSomethingIsNotFinite) {
  for (const Predicts predicts : all_predictions) {
    for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
      const Setting setting{curves()[2], true, predicts};
      Fit_run packed(setting, true);
      Vector target = target_of(setting.curve);
      target[50] = bad;
      EXPECT_EQ(packed.solver.optimise(start, target), start);
      EXPECT_GT(packed.jacobian_calls.packed, 0);
    }
  }
}

TEST(PackedGaussNewton, FollowsItsTwinToExtremeValues) {
  for (const double size : {1e-250, 1e-100, 1e100, 1e150}) {
    for (const Predicts predicts : all_predictions) {
      const Setting setting{curves()[2], true, predicts, Vector(78, size), 1};
      Fit_run packed(setting, true);
      Fit_run twin(setting, false);
      const Vector target = target_of(setting.curve);
      EXPECT_TRUE(
          support::is_close(packed.solver.optimise(start, target), twin.solver.optimise(start, target), rounding))
          << size;
    }
  }
}

TEST(PackedGaussNewton, IsNotWhatASingleStepByHandGoesThrough) {
  Fit_run run({curves()[2], true, Predicts::everywhere}, true);
  Vector x = start;
  double err = 0.0;
  run.solver.inner_optimise(x, target_of(curves()[2]), x, err, 0);
  EXPECT_EQ(run.jacobian_calls.packed + run.function_calls.packed, 0);
  EXPECT_EQ(run.jacobian_calls.published, 1);
}

}  // namespace
