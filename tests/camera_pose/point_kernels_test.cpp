// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points, in every variant that the processor has: the quotient rule, last groups, equal bits.
#include "camera_pose/point_kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "camera_pose/packed_points.h"
#include "fw_tools/aligned_buffer.h"
#include "support/cases.h"
#include "support/dual.h"
#include "support/instruction_sets.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using support::Case;
using support::Random;

constexpr std::uint64_t seed = 60611;
constexpr std::size_t max_points = 24;
constexpr std::size_t stride = 3 * max_points + 8;
constexpr double untouched = -1.5;

/// A camera that looks along the third axis at points 2 to 4 units away, seen from t; the derivatives are arbitrary.
template <std::size_t n_r>
struct Scene {
  Projection<n_r> projection;
  double P[3][4];
  std::vector<std::vector<double>> points;

  Scene(std::size_t num_points, Random& random) {
    for (auto& matrix : projection.dM) fill(random, matrix, 300.0);
    fill(random, projection.M, 0.1);
    projection.M[0][0] += 800.0;
    projection.M[1][1] += 800.0;
    projection.M[2][2] += 1.0;
    for (double& coordinate : projection.t) coordinate = random.uniform(-1.0, 1.0);
    for (int i = 0; i < 3; ++i) {
      const auto& M = projection.M[i];
      std::copy_n(M, 3, P[i]);
      P[i][3] = -(M[0] * projection.t[0] + M[1] * projection.t[1] + M[2] * projection.t[2]);
    }
    for (std::size_t k = 0; k < num_points; ++k) {
      points.push_back({projection.t[0] + random.uniform(-1, 1), projection.t[1] + random.uniform(-1, 1),
                        projection.t[2] + random.uniform(2, 4)});
    }
  }

  static void fill(Random& random, double (&matrix)[3][3], double size) {
    for (auto& row : matrix) {
      for (double& entry : row) entry = random.uniform(-size, size);
    }
  }

  /// M (X - t) as dual numbers in the rotation parameters and t.
  std::vector<support::Dual<n_r + 3>> image(std::size_t k) const {
    std::vector<support::Dual<n_r + 3>> result;
    for (int i = 0; i < 3; ++i) {
      support::Dual<n_r + 3> row = 0.0;
      for (std::size_t c = 0; c < 3; ++c) {
        const double d = points[k][c] - projection.t[c];
        row.value += projection.M[i][c] * d;
        for (std::size_t j = 0; j < n_r; ++j) row.derivatives[j] += projection.dM[j][i][c] * d;
        row.derivatives[n_r + c] = -projection.M[i][c];
      }
      result.push_back(row);
    }
    return result;
  }
};

/// Columns of rows, or values in one column, as a kernel wrote them.
struct Output {
  fw::Aligned_buffer memory;
  explicit Output(std::size_t num_columns) : memory(num_columns * stride) {
    std::fill_n(memory.data(), memory.size(), untouched);
  }
  double at(std::size_t column, std::size_t k, std::size_t output, std::size_t num_outputs) const {
    return memory[column * stride + (k / 8 * num_outputs + output) * 8 + k % 8];
  }
  bool operator==(const Output& other) const {
    return std::memcmp(memory.data(), other.memory.data(), memory.size() * sizeof(double)) == 0;
  }
};

template <std::size_t n_r>
Output rows_of(fw::Instruction_set set, const Scene<n_r>& scene, bool is_bearing) {
  const Point_kernels& kernels = point_kernels(set);
  const Packed_points points(scene.points);
  Output output(n_r + 4);
  if constexpr (n_r == 3) {
    (is_bearing ? kernels.bearing_rows_3 : kernels.pixel_rows_3)(points.group(0), points.size(), scene.projection,
                                                                 output.memory.data(), stride);
  } else {
    (is_bearing ? kernels.bearing_rows_4 : kernels.pixel_rows_4)(points.group(0), points.size(), scene.projection,
                                                                 output.memory.data(), stride);
  }
  return output;
}

template <std::size_t n_r>
Output prediction_of(fw::Instruction_set set, const Scene<n_r>& scene, bool is_bearing) {
  const Point_kernels& kernels = point_kernels(set);
  const Packed_points points(scene.points);
  Output output(1);
  (is_bearing ? kernels.predict_bearings : kernels.predict_pixels)(points.group(0), points.size(), scene.P,
                                                                   output.memory.data());
  return output;
}

template <std::size_t n_r>
void expect_rows(fw::Instruction_set set, std::uint64_t number, bool is_bearing) {
  Case which(seed, number);
  SCOPED_TRACE(which);
  const Scene<n_r> scene(1 + number % max_points, which.random);
  const std::size_t m = is_bearing ? 3 : 2;
  const Output rows = rows_of(set, scene, is_bearing);
  const Output prediction = prediction_of(set, scene, is_bearing);
  for (std::size_t k = 0; k < scene.points.size(); ++k) {
    const auto image = scene.image(k);
    for (std::size_t output = 0; output < m; ++output) {
      const auto expected = is_bearing ? image[output] : image[output] / image[2];
      std::vector<double> row;
      for (std::size_t c = 0; c < n_r + 3; ++c) row.push_back(rows.at(c, k, output, m));
      const std::vector<double> derivatives(expected.derivatives.begin(), expected.derivatives.end());
      EXPECT_TRUE(support::is_close(row, derivatives, tolerance::closed_form)) << "point " << k << " row " << output;
      EXPECT_NEAR(rows.at(n_r + 3, k, output, m), expected.value, 1e-12 * std::fmax(1.0, std::abs(expected.value)));
      EXPECT_NEAR(prediction.at(0, k, output, m), expected.value, 1e-11 * std::fmax(1.0, std::abs(expected.value)));
    }
  }
}

class PointKernels : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, PointKernels, testing::ValuesIn(fw::instruction_sets), support::name_of_instruction_set);

TEST_P(PointKernels, WriteWhatDualNumbersGive) {
  for (std::uint64_t number = 0; number < 4 * max_points; ++number) {
    for (const bool is_bearing : {false, true}) {
      expect_rows<3>(GetParam(), number, is_bearing);
      expect_rows<4>(GetParam(), number, is_bearing);
    }
  }
}

TEST_P(PointKernels, ClearThePlacesBehindTheLastPointAndNoMore) {
  for (std::size_t num_points = 1; num_points < max_points; ++num_points) {
    SCOPED_TRACE(num_points);
    Random random(seed);
    Scene<3> scene(num_points, random);
    scene.points.back() = {scene.projection.t[0], scene.projection.t[1], scene.projection.t[2]};  // 0 / 0
    for (const bool is_bearing : {false, true}) {
      const std::size_t m = is_bearing ? 3 : 2;
      const std::size_t end = (num_points + 7) / 8 * 8;
      const Output prediction = prediction_of(GetParam(), scene, is_bearing);
      const Output rows = rows_of(GetParam(), scene, true);  // pixel rows: see NotFinite below
      for (std::size_t k = num_points; k < end; ++k) {
        for (std::size_t output = 0; output < m; ++output) EXPECT_EQ(prediction.at(0, k, output, m), 0.0);
        for (std::size_t c = 0; c < 7; ++c) EXPECT_EQ(rows.at(c, k, 2, 3), 0.0);
      }
      EXPECT_EQ(prediction.memory[end * m], untouched);
      EXPECT_EQ(rows.memory[end * 3], untouched);
    }
  }
}

TEST_P(PointKernels, ClearThePixelRowsBehindALastPointInView) {
  for (std::size_t num_points = 1; num_points < max_points; ++num_points) {
    SCOPED_TRACE(num_points);
    Random random(seed);
    const Output rows = rows_of(GetParam(), Scene<3>(num_points, random), false);
    for (std::size_t k = num_points; k < (num_points + 7) / 8 * 8; ++k) {
      for (std::size_t c = 0; c < 7; ++c) {
        EXPECT_EQ(rows.at(c, k, 0, 2), 0.0);
        EXPECT_EQ(rows.at(c, k, 1, 2), 0.0);
      }
    }
  }
}

TEST_P(PointKernels, GiveNothingFiniteAtDepthZero) {
  Random random(seed);
  Scene<3> scene(3, random);
  scene.points[1] = {scene.projection.t[0], scene.projection.t[1], scene.projection.t[2]};
  const Output rows = rows_of(GetParam(), scene, false);
  const Output prediction = prediction_of(GetParam(), scene, false);
  for (std::size_t output = 0; output < 2; ++output) {
    EXPECT_FALSE(std::isfinite(prediction.at(0, 1, output, 2)));
    EXPECT_TRUE(std::isfinite(prediction.at(0, 2, output, 2)));
    for (std::size_t c = 0; c < 7; ++c) {
      EXPECT_FALSE(std::isfinite(rows.at(c, 1, output, 2)));
      EXPECT_TRUE(std::isfinite(rows.at(c, 2, output, 2)));
    }
  }
}

TEST_P(PointKernels, GiveTheBitsOfTheSmallestSet) {
  for (std::uint64_t number = 0; number < 20 * max_points; ++number) {
    Case which(seed + 7, number);
    SCOPED_TRACE(which);
    Scene<4> four(1 + number % max_points, which.random);
    Scene<3> three(1 + number % max_points, which.random);
    if (number % 5 == 0) three.points[0][2] = three.projection.t[2] = 0.0;  // infinities
    for (const bool is_bearing : {false, true}) {
      EXPECT_TRUE(rows_of(GetParam(), four, is_bearing) == rows_of(fw::Instruction_set::sse2, four, is_bearing));
      EXPECT_TRUE(rows_of(GetParam(), three, is_bearing) == rows_of(fw::Instruction_set::sse2, three, is_bearing));
      EXPECT_TRUE(prediction_of(GetParam(), three, is_bearing) ==
                  prediction_of(fw::Instruction_set::sse2, three, is_bearing));
    }
  }
}

}  // namespace
