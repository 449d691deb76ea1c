// SPDX-License-Identifier: BSD-3-Clause
// Classes that a user derives from the published ones are used for what they are: the same camera's functions behind a
// class that knows nothing of cameras give the same bits.
#include "framework/derived_classes.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "framework/camera_position_grad_func_hybrid.h"
#include "support/matchers.h"

namespace {

using derived_classes::Camera_jacobian, derived_classes::Distorted, derived_classes::Plain_jacobian;
using derived_classes::jacobian, derived_classes::objective, derived_classes::pixels, derived_classes::set_up;
using derived_classes::K, derived_classes::num_equations, derived_classes::points;
using derived_classes::Prediction, derived_classes::Scaled;
using derived_classes::Row_scaled, derived_classes::start, derived_classes::truth, derived_classes::Vector;

template <typename Jacobian, typename Objective>
Vector refined(bool is_plain) {
  fw::Linear_taylor_solver solver;
  set_up(solver, jacobian<Jacobian, Objective>(is_plain));
  return solver.optimise(start, pixels());
}

TEST(DerivedPrediction, IsUsedForTheEquations) {
  const Vector x = refined<Camera_jacobian, Distorted>(false);
  EXPECT_EQ(x, (refined<Camera_jacobian, Distorted>(true)));
  EXPECT_GT(std::abs(x[5] - truth[5]), 1e-4) << "the lens moves the optimum";
}

TEST(DerivedPrediction, IsUsedForDifferences) {
  const auto by_differences = [](bool is_plain) {
    fw::Linear_taylor_solver solver;
    solver.set_num_dimensions(6);
    solver.set_num_equations(static_cast<int>(num_equations));
    solver.set_max_iters(3);
    solver.set_funcs({objective<Distorted>(is_plain)});
    solver.set_finite_difference_steps({Vector(6, 1e-6)});
    return solver.optimise(start, pixels());
  };
  EXPECT_EQ(by_differences(false), by_differences(true));
}

TEST(DerivedJacobian, IsUsedForTheEquations) {
  EXPECT_EQ((refined<Row_scaled, Prediction>(false)), (refined<Row_scaled, Prediction>(true)));
  EXPECT_NE((refined<Row_scaled, Prediction>(false)), (refined<Camera_jacobian, Prediction>(false)));
}

/// How a hybrid is given to a solver.
struct Hybrid_use {
  bool is_derived, is_plain;
};

template <typename Hybrid>
Vector refined_by_hybrid(int type, const Vector& x0, const Hybrid_use& use) {
  auto* const base = new Prediction(points, K, type);
  std::unique_ptr<fw::Grad_func> g;
  if (use.is_derived) {
    g = std::make_unique<Scaled<Hybrid>>(points, K, use.is_plain ? nullptr : base);
  } else {
    g = std::make_unique<Hybrid>(points, K, use.is_plain ? nullptr : base);
  }
  if (use.is_plain) g = std::make_unique<Plain_jacobian>(std::move(g), base);
  fw::Linear_taylor_solver solver;
  set_up(solver, g.release());
  solver.set_num_dimensions(static_cast<int>(x0.size()));
  solver.set_num_equations(3 * static_cast<int>(num_equations));
  Vector target;
  for (int k = 0; k < 3; ++k) {
    const Vector block = pixels();
    target.insert(target.end(), block.begin(), block.end());
  }
  return solver.optimise(x0, target);
}

Vector refined_by_hybrid(int type, const Hybrid_use& use) {
  if (type == -2) return refined_by_hybrid<Camera_position_grad_func_aau_qu_aan>(type, start, use);
  if (type == -1) {
    return refined_by_hybrid<Camera_position_grad_func_qu_aau_aan>(type, {0.27, 0.31, 0.28, 0.8, -3.8, 2.1, -4.1}, use);
  }
  return refined_by_hybrid<Camera_position_grad_func_aan_qu_aau>(type, {0.55, 0.6, 0.58, 1.0, -3.8, 2.1, -4.1}, use);
}

class DerivedHybrid : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Types, DerivedHybrid, testing::Values(-1, -2, -3));

TEST_P(DerivedHybrid, IsUsedForTheEquations) {
  const Vector x = refined_by_hybrid(GetParam(), {true, false});
  EXPECT_EQ(x, refined_by_hybrid(GetParam(), {true, true}));
  EXPECT_NE(x, refined_by_hybrid(GetParam(), {false, false}));
}

/// Calls the hook before each iteration, which may change all that the iteration is given.
class Hooked final : public fw::Linear_taylor_solver {
 public:
  using Hook = std::function<void(Hooked& solver, Vector& x, int& iter)>;
  explicit Hooked(Hook hook) : hook_(std::move(hook)) {}
  void inner_optimise(const Vector& x0, const Vector& target, Vector& x_out, double& err, int iter) override {
    Vector x = x0;
    hook_(*this, x, iter);
    Linear_taylor_solver::inner_optimise(x, target, x_out, err, iter);
  }
  void reset() override {
    if (resets) Linear_taylor_solver::reset();
  }
  bool resets = true;

 private:
  Hook hook_;
};

/// After three iterations, twice over, with a camera's classes or with those of nobody.
Vector refined_by(const Hooked::Hook& hook, bool is_plain, bool resets = true) {
  Hooked solver(hook);
  set_up(solver, jacobian<Camera_jacobian, Prediction>(is_plain));
  const Vector first = solver.optimise(start, pixels());
  solver.resets = resets;
  const Vector second = solver.optimise(start, pixels());
  Vector both = first;
  both.insert(both.end(), second.begin(), second.end());
  return both;
}

void expect_same(const Hooked::Hook& hook, bool resets = true) {
  EXPECT_EQ(refined_by(hook, false, resets), refined_by(hook, true, resets));
}

TEST(DerivedSolver, MayMoveThePointBetweenIterations) {
  expect_same([](Hooked&, Vector& x, int& iter) { x[0] += 0.01 * iter; });
}

TEST(DerivedSolver, MayChangeWeightsBetweenIterations) {
  expect_same([](Hooked& solver, Vector&, int& iter) {
    Vector weights(num_equations, 1.0);
    weights[static_cast<std::size_t>(iter)] = 0.25;
    solver.get_grad_funcs()[0]->set_weights(weights);
  });
}

TEST(DerivedSolver, MayChangeFunctionsBetweenIterations) {
  for (const int when : {1, 2}) {
    const auto with_other = [when](bool is_plain) {
      return [when, is_plain](Hooked& solver, Vector&, int& iter) {
        if (iter != when) return;
        const std::unique_ptr<fw::Grad_func> dropped(
            solver.get_grad_funcs()[0]);  // the caller's again, and he deletes it
        solver.set_grad_funcs({jacobian<Row_scaled, Distorted>(is_plain)});
      };
    };
    EXPECT_EQ(refined_by(with_other(false), false), refined_by(with_other(true), true));
  }
}

TEST(DerivedSolver, MayCountIterationsAsItLikes) {
  for (const int told : {0, 1, 7}) {
    const Hooked::Hook hook = [told](Hooked&, Vector&, int& iter) { iter = told; };
    expect_same(hook);
    EXPECT_EQ(refined_by(hook, false), refined_by([](Hooked&, Vector&, int&) {}, false)) << "steps are not damped";
  }
}

TEST(DerivedSolver, CountsTheDecreasingStepsByTheIterationThatItTells) {
  const auto first_step = [](int told, bool is_plain) {
    Hooked solver([told](Hooked&, Vector&, int& iter) { iter = told; });
    set_up(solver, jacobian<Camera_jacobian, Prediction>(is_plain));
    solver.set_max_iters(1);
    solver.set_decreasing_step_size(true);
    return solver.optimise(start, pixels());
  };
  const Vector whole = first_step(0, false);
  for (const int told : {0, 1, 2, 7}) {
    const Vector x = first_step(told, false);
    EXPECT_EQ(x, first_step(told, true));
    for (std::size_t d = 0; d < x.size(); ++d) {
      EXPECT_NEAR(x[d] - start[d], 2.0 / (told + 2) * (whole[d] - start[d]), 1e-12) << "told " << told;
    }
  }
}

TEST(DerivedSolver, MayKeepWhatAResetWouldForget) {
  const Hooked::Hook nothing = [](Hooked&, Vector&, int&) {};
  expect_same(nothing, false);
  EXPECT_NE(refined_by(nothing, false, false), refined_by(nothing, false, true));
}

TEST(DerivedSolver, MayResetBetweenIterations) {
  expect_same([](Hooked& solver, Vector& x, int&) {
    x[3] += 0.01;
    solver.reset();
  });
}

TEST(BearingTypes, CheckKAtEveryEvaluation) {
  const fw::matrix<double> identity = support::matrix_of({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  for (const int when : {0, 1, 2}) {
    auto* const prediction = new Camera_position_opt_func(points, identity, 10);
    Hooked solver([prediction, when](Hooked&, Vector&, int& iter) {
      if (iter == when) *prediction = Camera_position_opt_func(points, K, 10);
    });
    set_up(solver, new Camera_position_grad_func_aau_bv(points, identity, prediction));
    solver.set_num_equations(3 * static_cast<int>(points.size()));
    const support::Caught caught = support::caught_by([&] { solver.optimise(start, Vector(3 * points.size(), 0.5)); });
    EXPECT_NE(caught.text.find("kelvane_mex.cpp(1662)"), std::string::npos) << "changed before iteration " << when;
  }
}

}  // namespace
