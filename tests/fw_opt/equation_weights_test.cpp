// SPDX-License-Identifier: BSD-3-Clause
// Tests of the rules of a list of weights.
#include "fw_opt/equation_weights.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#include <vector>

#include "support/matchers.h"

namespace {

using Weights = std::vector<double>;

/// The text of a std::out_of_range, which is the whole message and no report.
void expect_out_of_range(const std::function<void()>& action) {
  EXPECT_THROW(action(), std::out_of_range);
  const support::Caught caught = support::caught_by(action);
  EXPECT_EQ(caught.text, "vector::_M_range_check");
  EXPECT_EQ(caught.level, -1);
}

TEST(EquationWeight, IsOneForAnyIndexOfAnEmptyList) {
  for (const int i : {0, 5, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_EQ(fw::equation_weight({}, i), 1.0) << i;
  }
}

TEST(EquationWeight, IsTheEntryOfTheList) {
  const Weights weights{2.0, -3.0};
  EXPECT_EQ(fw::equation_weight(weights, 0), 2.0);
  EXPECT_EQ(fw::equation_weight(weights, 1), -3.0);
}

TEST(EquationWeight, RefusesIndicesBeyondTheList) {
  const Weights weights{2.0, -3.0};
  for (const int i : {2, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    SCOPED_TRACE(i);
    expect_out_of_range([&] { fw::equation_weight(weights, i); });
  }
}

TEST(SetEquationWeight, ReplacesAnEntry) {
  Weights weights{2.0, 3.0};
  fw::set_equation_weight(weights, 0, 7.0);
  EXPECT_EQ(weights, (Weights{7.0, 3.0}));
}

TEST(SetEquationWeight, GrowsTheListWithZeros) {
  Weights weights;
  fw::set_equation_weight(weights, 3, 2.0);
  EXPECT_EQ(weights, (Weights{0.0, 0.0, 0.0, 2.0}));
  fw::set_equation_weight(weights, 4, 5.0);
  EXPECT_EQ(weights, (Weights{0.0, 0.0, 0.0, 2.0, 5.0}));
}

TEST(SetEquationWeight, RefusesNegativeIndicesAndChangesNothing) {
  Weights weights{2.0};
  for (const int i : {-1, std::numeric_limits<int>::min()}) {
    SCOPED_TRACE(i);
    expect_out_of_range([&] { fw::set_equation_weight(weights, i, 9.0); });
    EXPECT_EQ(weights, (Weights{2.0}));
  }
}

}  // namespace
