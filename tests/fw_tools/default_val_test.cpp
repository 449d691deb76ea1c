// SPDX-License-Identifier: BSD-3-Clause
// Tests of the default values of element types.
#include "fw_tools/default_val.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

template <typename T>
T defaulted(T value) {
  fw::default_val(value);
  return value;
}

TEST(DefaultVal, IsZeroForEveryElementType) {
  EXPECT_EQ(defaulted(-3.5), 0.0);
  EXPECT_EQ(defaulted(-3.5F), 0.0F);
  EXPECT_EQ(defaulted(-3), 0);
}

TEST(DefaultVal, IsThePositiveZero) {
  EXPECT_FALSE(std::signbit(defaulted(-0.0)));
  EXPECT_FALSE(std::signbit(defaulted(-0.0F)));
}

}  // namespace
