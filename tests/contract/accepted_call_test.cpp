// SPDX-License-Identifier: BSD-3-Clause
// What an accepted call gives, and that data of others are never asked for.
#include <gtest/gtest.h>

#include <cstddef>

#include "contract/argument_contract.h"
#include "support/fake_input.h"
#include "support/matchers.h"

namespace {

using support::Fake_call;
using support::fake_class;

TEST(AcceptedCall, GivesSizesAndData) {
  const Fake_call call(-1, 5);
  const kelvane::contract::Arguments accepted = call.check();
  EXPECT_EQ(accepted.type->id, -1);
  EXPECT_EQ(accepted.num_points, 5);
  EXPECT_EQ(accepted.num_equations(), 30);
  EXPECT_EQ(accepted.camera_parameters, call.inputs[0].values.data());
  EXPECT_EQ(accepted.points, call.inputs[1].values.data());
  EXPECT_EQ(accepted.observations, call.inputs[2].values.data());
  EXPECT_EQ(accepted.stopping_criteria, call.inputs[3].values.data());
  EXPECT_EQ(accepted.weights, call.inputs[5].values.data());
}

TEST(AcceptedCall, HasNoDataOfAbsentInputs) {
  const Fake_call three = Fake_call(0).keep(3);
  EXPECT_EQ(three.check().stopping_criteria, nullptr);
  EXPECT_EQ(three.check().weights, nullptr);
  EXPECT_EQ(Fake_call(0).keep(5).check().weights, nullptr);
}

TEST(DataAccess, HappensOnlyOnAcceptedArrays) {
  for (std::size_t position = 1; position <= 6; ++position) {
    SCOPED_TRACE(position);
    Fake_call call(0);
    call.with(position, fake_class("function_handle", 1, 1));
    EXPECT_EQ(support::caught_by([&] { call.check(); }).level, 0);
    EXPECT_FALSE(call.inputs[position - 1].was_read);
  }
}

}  // namespace
