// SPDX-License-Identifier: BSD-3-Clause
// The bits and places that the kernels over points write: those of the smallest instruction set, of pairs, of last
// groups.
#include <gtest/gtest.h>

#include <limits>

#include "camera_pose/point_kernel_scene.h"
#include "support/instruction_sets.h"

namespace {

using kelvane::Instruction_set;
using point_kernels::Kernel, point_kernels::Output, point_kernels::output_of, point_kernels::Scene;
using point_kernels::max_points, point_kernels::seed, point_kernels::stride, point_kernels::untouched;
using support::Case, support::Random;

class PointKernelsBits : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, PointKernelsBits, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(PointKernelsBits, WritePairsWithTheBitsOfTheirRows) {
  for (std::size_t num_points = 1; num_points <= max_points; ++num_points) {
    Random random(seed + num_points);
    const Scene scene(num_points, 3, random);
    const Output rows = output_of(GetParam(), scene, Kernel::twist, false);
    Output pairs;
    kelvane::point_kernels(GetParam()).pixel_pairs(scene.points.data(), num_points, scene.camera, pairs.memory, stride);
    for (std::size_t k = 0; k < num_points; ++k) {
      EXPECT_EQ(pairs.at(0, k, 0, 1), rows.at(0, k, 0, 2));
      EXPECT_EQ(pairs.at(0, k, 0, 1), rows.at(1, k, 1, 2));
      EXPECT_EQ(rows.at(0, k, 1, 2), 0.0);
      EXPECT_EQ(rows.at(1, k, 0, 2), 0.0);
      for (std::size_t c = 2; c < 7; ++c) {
        for (std::size_t output = 0; output < 2; ++output) {
          EXPECT_EQ(pairs.at(c - 1, k, output, 2), rows.at(c, k, output, 2));
        }
      }
    }
    for (std::size_t k = num_points; k < (num_points + 7) / 8 * 8; ++k) {
      EXPECT_EQ(pairs.at(0, k, 0, 1), 0.0);
      for (std::size_t c = 1; c < 6; ++c) EXPECT_EQ(pairs.at(c, k, 1, 2), 0.0);
    }
  }
}

TEST_P(PointKernelsBits, ClearThePlacesBehindTheLastPointAndNoMore) {
  for (std::size_t num_points = 1; num_points < max_points; ++num_points) {
    SCOPED_TRACE(num_points);
    Random random(seed);
    const Scene scene(num_points, 4, random);
    for (const bool is_bearing : {false, true}) {
      const std::size_t m = is_bearing ? 3 : 2;
      const std::size_t end = (num_points + 7) / 8 * 8;
      for (const Kernel kernel : {Kernel::twist, Kernel::parameters, Kernel::differences, Kernel::prediction}) {
        const Output output = output_of(GetParam(), scene, kernel, is_bearing);
        const std::size_t num_columns = kernel == Kernel::prediction ? 1 : kernel == Kernel::differences ? 8 : 7;
        for (std::size_t c = 0; c < num_columns; ++c) {
          for (std::size_t k = num_points; k < end; ++k) {
            for (std::size_t row = 0; row < m; ++row) EXPECT_EQ(output.at(c, k, row, m), 0.0);
          }
          EXPECT_EQ(output.memory[c * stride + end * m], untouched);
        }
      }
    }
  }
}

TEST_P(PointKernelsBits, GiveTheBitsOfTheSmallestSet) {
  for (std::uint64_t number = 0; number < 20 * max_points; ++number) {
    Case which(seed + 7, number);
    SCOPED_TRACE(which);
    Scene scene(1 + number % max_points, 3 + number % 2, which.random);
    if (number % 5 == 0) scene.points[2] = scene.camera.t[2] = std::numeric_limits<double>::infinity();
    for (const bool is_bearing : {false, true}) {
      for (const Kernel kernel : {Kernel::twist, Kernel::parameters, Kernel::differences, Kernel::prediction}) {
        EXPECT_TRUE(output_of(GetParam(), scene, kernel, is_bearing) ==
                    output_of(Instruction_set::sse2, scene, kernel, is_bearing));
      }
    }
  }
}

}  // namespace
