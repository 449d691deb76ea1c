// SPDX-License-Identifier: BSD-3-Clause
// What the kernels over points write, in every variant that the processor has: derivatives, differences, what is left.
#include "camera_pose/point_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "camera_pose/point_kernel_scene.h"
#include "support/instruction_sets.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using kelvane::Instruction_set;
using point_kernels::Kernel, point_kernels::Output, point_kernels::output_of, point_kernels::Scene;
using point_kernels::max_points, point_kernels::seed;
using support::Case, support::Random;

template <std::size_t n>
void expect_row(const Output& rows, std::size_t num_columns, std::size_t k, std::size_t output, std::size_t m,
                const support::Dual<n>& expected) {
  std::vector<double> row;
  for (std::size_t c = 0; c < num_columns; ++c) row.push_back(rows.at(c, k, output, m));
  const std::vector<double> derivatives(expected.derivatives.begin(),
                                        expected.derivatives.begin() + static_cast<std::ptrdiff_t>(num_columns));
  EXPECT_TRUE(support::is_close(row, derivatives, tolerance::closed_form)) << "point " << k << " row " << output;
}

class PointKernels : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, PointKernels, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(PointKernels, WriteWhatDualNumbersGive) {
  for (std::uint64_t number = 0; number < 4 * max_points; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const Scene scene(1 + number % max_points, 3 + number % 2, which.random);
    for (const bool is_bearing : {false, true}) {
      const std::size_t m = is_bearing ? 3 : 2;
      const Output twist = output_of(GetParam(), scene, Kernel::twist, is_bearing);
      const Output parameters = output_of(GetParam(), scene, Kernel::parameters, is_bearing);
      const Output prediction = output_of(GetParam(), scene, Kernel::prediction, is_bearing);
      for (std::size_t k = 0; k < scene.num_points; ++k) {
        const auto by_twist = scene.twisted(k);
        const auto by_parameters = scene.moved(k);
        for (std::size_t output = 0; output < m; ++output) {
          const auto expected = is_bearing ? by_twist[output] : by_twist[output] / by_twist[2];
          expect_row(twist, 6, k, output, m, expected);
          expect_row(parameters, scene.projection.n + 3, k, output, m,
                     is_bearing ? by_parameters[output] : by_parameters[output] / by_parameters[2]);
          const double tolerance = 1e-12 * std::fmax(1.0, std::abs(expected.value));
          EXPECT_NEAR(twist.at(6, k, output, m), expected.value, tolerance);
          EXPECT_EQ(twist.at(6, k, output, m), prediction.at(0, k, output, m)) << "one prediction, two ways to it";
        }
      }
    }
  }
}

TEST_P(PointKernels, WriteDifferencesOfThePredictions) {
  for (std::size_t num_points = 1; num_points <= max_points; ++num_points) {
    Random random(seed + num_points);
    Scene scene(num_points, 3 + num_points % 2, random);
    const kelvane::Camera here = scene.camera;
    const std::size_t n = scene.cameras.n;
    for (const bool is_bearing : {false, true}) {
      const std::size_t m = is_bearing ? 3 : 2;
      const Output rows = output_of(GetParam(), scene, Kernel::differences, is_bearing);
      const Output prediction = output_of(GetParam(), scene, Kernel::prediction, is_bearing);
      for (std::size_t j = 0; j < n; ++j) {
        scene.camera = scene.cameras.moved[j];
        const Output moved = output_of(GetParam(), scene, Kernel::prediction, is_bearing);
        scene.camera = here;
        for (std::size_t i = 0; i < m * num_points; ++i) {
          const double difference = moved.at(0, i / m, i % m, m) - prediction.at(0, i / m, i % m, m);
          EXPECT_EQ(rows.at(j, i / m, i % m, m), difference * scene.cameras.inverse_step[j]);
        }
      }
      for (std::size_t i = 0; i < m * num_points; ++i) {
        EXPECT_EQ(rows.at(n, i / m, i % m, m), prediction.at(0, i / m, i % m, m));
      }
    }
  }
}

TEST_P(PointKernels, GiveNothingFiniteAtDepthZero) {
  Random random(seed);
  Scene scene(3, 3, random);
  for (std::size_t i = 0; i < 3; ++i) scene.points[3 + i] = scene.camera.t[i];
  const Output rows = output_of(GetParam(), scene, Kernel::twist, false);
  const Output prediction = output_of(GetParam(), scene, Kernel::prediction, false);
  for (std::size_t output = 0; output < 2; ++output) {
    EXPECT_FALSE(std::isfinite(prediction.at(0, 1, output, 2)));
    EXPECT_TRUE(std::isfinite(prediction.at(0, 2, output, 2)));
    EXPECT_FALSE(std::isfinite(rows.at(6, 1, output, 2)));
    for (std::size_t c = 0; c < 7; ++c) EXPECT_TRUE(std::isfinite(rows.at(c, 2, output, 2)));
  }
}

TEST_P(PointKernels, SubtractPredictionsFromObservationsAndSumUpSquares) {
  const kelvane::Point_kernels& kernels = kelvane::point_kernels(GetParam());
  const kelvane::Point_kernels& smallest = kelvane::point_kernels(Instruction_set::sse2);
  for (std::size_t num_groups = 1; num_groups <= 15; ++num_groups) {
    for (const std::size_t m : {2U, 3U}) {
      Random random(seed + num_groups);
      const std::vector<double> observations = random.vector_in_cube(8 * m * num_groups, 100.0);
      const std::size_t size = 8 * m * num_groups;
      alignas(kelvane::cache_line) double values[360];
      for (std::size_t i = 0; i < size; ++i) values[i] = random.uniform(-100.0, 100.0);
      alignas(kelvane::cache_line) double other[360];
      std::copy_n(values, size, other);
      std::vector<double> expected;
      long double sum = 0.0L;
      for (std::size_t place = 0; place < size; ++place) {
        const std::size_t k = place / (8 * m) * 8 + place % 8;
        expected.push_back(observations[m * k + place / 8 % m] - values[place]);
        sum += static_cast<long double>(expected.back()) * expected.back();
      }
      const auto subtract = m == 2 ? kernels.subtract_pixels : kernels.subtract_bearings;
      const double error = subtract(observations.data(), num_groups, values);
      EXPECT_NEAR(error, static_cast<double>(sum), 1e-14 * static_cast<double>(sum));
      EXPECT_EQ(std::vector<double>(values, values + size), expected);
      EXPECT_EQ(error, (m == 2 ? smallest.subtract_pixels : smallest.subtract_bearings)(observations.data(), num_groups,
                                                                                        other));
    }
  }
}

}  // namespace
