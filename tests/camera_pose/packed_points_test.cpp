// SPDX-License-Identifier: BSD-3-Clause
// The packed store of points: both ways in, the order in memory, filling and alignment.
#include "camera_pose/packed_points.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fw_tools/aligned_buffer.h"

namespace {

/// Coordinate c of point i.
double number(std::size_t i, std::size_t c) { return 10.0 * static_cast<double>(i + 1) + static_cast<double>(c); }

std::vector<double> columns(std::size_t num_points) {
  std::vector<double> coordinates;
  for (std::size_t k = 0; k < 3 * num_points; ++k) coordinates.push_back(number(k / 3, k % 3));
  return coordinates;
}

/// With a fourth entry in each point, which does not count.
std::vector<std::vector<double>> points(std::size_t num_points) {
  std::vector<std::vector<double>> list;
  for (std::size_t i = 0; i < num_points; ++i) list.push_back({number(i, 0), number(i, 1), number(i, 2), -7.0});
  return list;
}

void expect_order(const Packed_points& packed, std::size_t num_points) {
  SCOPED_TRACE(num_points);
  ASSERT_EQ(packed.size(), num_points);
  ASSERT_EQ(packed.num_groups(), (num_points + 7) / 8);
  for (std::size_t g = 0; g < packed.num_groups(); ++g) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(packed.group(g)) % fw::cache_line, 0U);
    EXPECT_EQ(packed.group(g), packed.group(0) + 24 * g);
    for (std::size_t place = 0; place < 24; ++place) {
      const std::size_t i = std::min(8 * g + place % 8, num_points - 1);  // the last point fills its group up
      EXPECT_EQ(packed.group(g)[place], number(i, place / 8)) << "group " << g << ", place " << place;
    }
  }
  for (std::size_t i = 0; i < num_points; ++i) {
    for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(packed.coordinate(i, c), number(i, c));
  }
}

TEST(PackedPoints, AreInGroupsOfEightFromAnArray) {
  for (std::size_t num_points = 0; num_points <= 40; ++num_points) {
    expect_order(Packed_points(columns(num_points).data(), num_points), num_points);
  }
}

TEST(PackedPoints, AreInGroupsOfEightFromAListOfPoints) {
  for (std::size_t num_points = 0; num_points <= 40; ++num_points) {
    expect_order(Packed_points(points(num_points)), num_points);
  }
}

TEST(PackedPoints, MayBeNone) {
  const Packed_points from_array(nullptr, 0);
  const Packed_points from_list(std::vector<std::vector<double>>{});
  for (const Packed_points* packed : {&from_array, &from_list}) {
    EXPECT_EQ(packed->size(), 0U);
    EXPECT_EQ(packed->num_groups(), 0U);
  }
}

}  // namespace
