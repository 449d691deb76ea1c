// SPDX-License-Identifier: BSD-3-Clause
// Tests of the weights of an objective.
#include "fw_opt/opt_func.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

#include "support/functions.h"
#include "support/matchers.h"

namespace {

using support::Objective;
using support::Vector;

Objective objective() {
  return Objective([](const Vector& x) { return x; });
}

TEST(OptFunc, IsAbstractAndDestroyedThroughItsBase) {
  EXPECT_TRUE(std::is_abstract_v<fw::Opt_func>);
  EXPECT_TRUE(std::has_virtual_destructor_v<fw::Opt_func>);
}

TEST(OptFunc, WeighsEveryEquationOneUntilAWeightIsSet) {
  const Objective fresh = objective();
  EXPECT_EQ(fresh.get_weight(0), 1.0);
  EXPECT_EQ(fresh.get_weight(1000), 1.0);
  EXPECT_EQ(fresh.get_weight(-1), 1.0);
}

TEST(OptFunc, HasToCoverEveryEquationOnceAWeightIsSet) {
  Objective f = objective();
  f.set_weight(3, 2.0);
  for (const int i : {0, 1, 2}) EXPECT_EQ(f.get_weight(i), 0.0) << i;
  EXPECT_EQ(f.get_weight(3), 2.0);
  EXPECT_THROW(f.get_weight(4), std::out_of_range);
  EXPECT_EQ(support::caught_by([&] { f.get_weight(4); }).text, "vector::_M_range_check");
  EXPECT_EQ(support::caught_by([&] { f.get_weight(-1); }).text, "vector::_M_range_check");
}

TEST(OptFunc, CopiesTheWeightsItIsGiven) {
  Objective f = objective();
  Vector weights{2.0, 3.0};
  f.set_weights(weights);
  weights[0] = 9.0;
  EXPECT_EQ(f.get_weight(0), 2.0);
  EXPECT_EQ(f.get_weight(1), 3.0);
  f.set_weights({});
  EXPECT_EQ(f.get_weight(7), 1.0);
}

TEST(OptFunc, RefusesANegativeIndex) {
  Objective f = objective();
  EXPECT_THROW(f.set_weight(-1, 2.0), std::out_of_range);
  EXPECT_EQ(support::caught_by([&] { f.set_weight(-1, 2.0); }).text, "vector::_M_range_check");
  EXPECT_EQ(f.get_weight(0), 1.0);
}

TEST(OptFunc, GivesACopyNoWeights) {
  Objective f = objective();
  f.set_weights({2.0, 3.0});
  const Objective copy(f);
  EXPECT_EQ(copy.get_weight(0), 1.0);
  EXPECT_EQ(copy.get_weight(2), 1.0);
  EXPECT_EQ(f.get_weight(0), 2.0);
}

TEST(OptFunc, ChangesNothingWhenItIsAssigned) {
  Objective source = objective();
  source.set_weights({2.0});
  Objective target = objective();
  target.set_weights({5.0, 6.0});
  fw::Opt_func& as_base = target;
  EXPECT_EQ(&(as_base = source), &as_base);
  EXPECT_EQ(target.get_weight(0), 5.0);
  EXPECT_EQ(target.get_weight(1), 6.0);
  EXPECT_EQ(source.get_weight(0), 2.0);
}

}  // namespace
