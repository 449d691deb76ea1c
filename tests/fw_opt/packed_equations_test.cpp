// SPDX-License-Identifier: BSD-3-Clause
// The packed order: where every published equation goes, and the zeros behind the last item of each stack.
#include "fw_opt/packed_equations.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <numeric>
#include <vector>

namespace {

using fw::Packed_layout;

/// The published equations 1, 2, 3, ... in packed order, in memory full of -1 that is longer than needed.
std::vector<double> packed_numbers(const Packed_layout& layout) {
  std::vector<double> published(layout.num_equations());
  std::iota(published.begin(), published.end(), 1.0);
  std::vector<double> packed(layout.packed_size() + 8, -1.0);
  layout.pack(published.data(), packed.data());
  return packed;
}

TEST(PackedLayout, CountsEquationsAndRoomForWholeGroups) {
  const Packed_layout layout{9, 2, 3};
  EXPECT_EQ(layout.num_groups(), 2U);
  EXPECT_EQ(layout.num_equations(), 54U);
  EXPECT_EQ(layout.packed_size(), 96U);
  const Packed_layout full{16, 3, 1};
  EXPECT_EQ(full.num_groups(), 2U);
  EXPECT_EQ(full.packed_size(), full.num_equations());
}

TEST(PackedLayout, PutsTheOutputsOfEightItemsNextToEachOther) {
  const std::vector<double> expected = {1,  3,  5,  7,  9,  11, 13, 15, 2,  4, 6, 8, 10, 12, 14, 16,  //
                                        17, 0,  0,  0,  0,  0,  0,  0,  18, 0, 0, 0, 0,  0,  0,  0,
                                        -1, -1, -1, -1, -1, -1, -1, -1};
  EXPECT_EQ(packed_numbers({9, 2, 1}), expected);
}

TEST(PackedLayout, KnowsThePlaceOfEveryEquation) {
  for (std::size_t num_items = 1; num_items <= 25; ++num_items) {
    for (std::size_t num_outputs = 1; num_outputs <= 3; ++num_outputs) {
      for (std::size_t num_stacks = 1; num_stacks <= 3; ++num_stacks) {
        SCOPED_TRACE(testing::Message() << num_items << " items, " << num_outputs << ", " << num_stacks);
        const Packed_layout layout{num_items, num_outputs, num_stacks};
        std::vector<double> expected(layout.packed_size(), 0.0);
        for (std::size_t k = 0; k < layout.num_equations(); ++k) {
          const std::size_t output = k % num_outputs;
          const std::size_t item = k / num_outputs % num_items;
          const std::size_t stack = k / num_outputs / num_items;
          const std::size_t group = stack * layout.num_groups() + item / 8;
          expected[(group * num_outputs + output) * 8 + item % 8] = static_cast<double>(k + 1);
        }
        expected.resize(expected.size() + 8, -1.0);
        EXPECT_EQ(packed_numbers(layout), expected);
      }
    }
  }
}

TEST(PackedLayout, MayBeEmpty) {
  for (const Packed_layout& layout : {Packed_layout{}, Packed_layout{0, 2, 3}}) {
    EXPECT_EQ(layout.num_groups(), 0U);
    EXPECT_EQ(layout.num_equations(), 0U);
    EXPECT_EQ(layout.packed_size(), 0U);
    EXPECT_EQ(packed_numbers(layout), std::vector<double>(8, -1.0));
  }
}

TEST(PackedLayout, IsEqualWhereAllThreeNumbersAre) {
  const Packed_layout layout{4, 3, 2};
  EXPECT_TRUE((layout == Packed_layout{4, 3, 2}));
  EXPECT_FALSE((layout == Packed_layout{5, 3, 2}));
  EXPECT_FALSE((layout == Packed_layout{4, 2, 2}));
  EXPECT_FALSE((layout == Packed_layout{4, 3, 1}));
  EXPECT_FALSE((layout == Packed_layout{2, 3, 4}));
}

}  // namespace
