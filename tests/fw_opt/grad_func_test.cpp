// SPDX-License-Identifier: BSD-3-Clause
// Tests of a Jacobian's base function and weights.
#include "fw_opt/grad_func.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/functions.h"
#include "support/matchers.h"

namespace {

using support::Baseless_jacobian;
using support::Vector;

/// Takes its base through the constructor.
struct With_base : fw::Grad_func {
  using Grad_func::Grad_func;
  int operator()(const Vector&, cv::Mat&, int) const override { return 0; }
};

void expect_no_base(const fw::Grad_func& g) {
  const support::Caught caught = support::caught_by([&] { g.base_function(); });
  EXPECT_EQ(caught.text,
            support::block("fw_opt/grad_func.cpp", 35, "const fw::Opt_func* fw::Grad_func::base_function() const",
                           "Tried to access base function for a Grad_func, but none has been set"));
  EXPECT_EQ(caught.level, 0);
}

fw::Opt_func* identity() {
  return new support::Objective([](const Vector& x) { return x; });
}

TEST(GradFunc, IsAbstractAndDestroyedThroughItsBase) {
  EXPECT_TRUE(std::is_abstract_v<fw::Grad_func>);
  EXPECT_TRUE(std::has_virtual_destructor_v<fw::Grad_func>);
  EXPECT_FALSE((std::is_base_of_v<fw::Opt_func, fw::Grad_func>));
}

TEST(GradFunc, ReportsAMissingBaseFunction) { expect_no_base(Baseless_jacobian()); }

TEST(GradFunc, GivesTheBaseFunctionItWasBuiltWith) {
  fw::Opt_func* base = identity();
  const With_base g(base);
  EXPECT_EQ(g.base_function(), base);
}

TEST(GradFunc, WeighsEveryEquationOneUntilAWeightIsSet) {
  const Baseless_jacobian g;
  EXPECT_EQ(g.get_weight(0), 1.0);
  EXPECT_EQ(g.get_weight(-1), 1.0);
}

TEST(GradFunc, KeepsItsWeightsAndThoseOfItsBaseEqual) {
  With_base g(identity());
  g.set_weights({2.0, 3.0, 4.0});
  for (const int i : {0, 1, 2}) {
    EXPECT_EQ(g.get_weight(i), 2.0 + i);
    EXPECT_EQ(g.base_function()->get_weight(i), 2.0 + i);
  }
  g.set_weight(4, 7.0);
  const Vector grown{2.0, 3.0, 4.0, 0.0, 7.0};
  for (const int i : {0, 1, 2, 3, 4}) {
    EXPECT_EQ(g.get_weight(i), grown[static_cast<std::size_t>(i)]);
    EXPECT_EQ(g.base_function()->get_weight(i), grown[static_cast<std::size_t>(i)]);
  }
}

TEST(GradFunc, GrowsItsListAndItsBasesEachFromItsOwnLength) {
  fw::Opt_func* base = identity();
  base->set_weights({5.0, 6.0, 7.0});
  With_base g(base);
  EXPECT_EQ(g.get_weight(2), 1.0);
  g.set_weight(1, 9.0);
  EXPECT_EQ(g.get_weight(0), 0.0);
  EXPECT_EQ(base->get_weight(0), 5.0);
  EXPECT_EQ(base->get_weight(1), 9.0);
  EXPECT_EQ(base->get_weight(2), 7.0);
  EXPECT_EQ(support::caught_by([&] { g.get_weight(2); }).text, "vector::_M_range_check");
}

TEST(GradFunc, TakesWeightsWithoutABase) {
  Baseless_jacobian g;
  g.set_weights({2.0});
  g.set_weight(1, 3.0);
  EXPECT_EQ(g.get_weight(0), 2.0);
  EXPECT_EQ(g.get_weight(1), 3.0);
  EXPECT_THROW(g.get_weight(2), std::out_of_range);
}

TEST(GradFunc, RefusesANegativeIndexAndChangesNothing) {
  With_base g(identity());
  EXPECT_THROW(g.set_weight(-1, 2.0), std::out_of_range);
  EXPECT_EQ(support::caught_by([&] { g.set_weight(-1, 2.0); }).text, "vector::_M_range_check");
  EXPECT_EQ(g.get_weight(0), 1.0);
  EXPECT_EQ(g.base_function()->get_weight(0), 1.0);
}

TEST(GradFunc, GivesACopyNeitherBaseNorWeights) {
  With_base g(identity());
  g.set_weights({2.0});
  const With_base copy(g);
  expect_no_base(copy);
  EXPECT_EQ(copy.get_weight(0), 1.0);
  EXPECT_EQ(g.get_weight(0), 2.0);
}

TEST(GradFunc, ChangesNothingWhenItIsAssigned) {
  With_base source(identity());
  source.set_weights({2.0});
  fw::Opt_func* base = identity();
  With_base target(base);
  target.set_weights({5.0});
  fw::Grad_func& as_base = target;
  EXPECT_EQ(&(as_base = source), &as_base);
  EXPECT_EQ(target.base_function(), base);
  EXPECT_EQ(target.get_weight(0), 5.0);
  EXPECT_NE(source.base_function(), base);
}

TEST(GradFunc, DestroysItsBaseOnce) {
  std::vector<std::string> log;
  std::unique_ptr<fw::Grad_func> g = std::make_unique<support::Logged_jacobian>(log, "g");
  EXPECT_TRUE(log.empty());
  g.reset();
  EXPECT_EQ(log, (std::vector<std::string>{"g", "g base"}));
}

TEST(GradFunc, LeavesTheBaseOfItsSourceAloneWhenACopyIsDestroyed) {
  std::vector<std::string> log;
  {
    const support::Logged_jacobian g(log, "g");
    { const support::Logged_jacobian copy(g); }
    EXPECT_EQ(log, (std::vector<std::string>{"g"}));  // the copy itself, but no base
  }
  EXPECT_EQ(log, (std::vector<std::string>{"g", "g", "g base"}));
}

}  // namespace
