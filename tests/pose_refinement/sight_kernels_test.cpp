// SPDX-License-Identifier: BSD-3-Clause
// The kernels over residuals: their formulas, point by point, and the same bits from every instruction set.
#include "pose_refinement/sight_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "least_squares/aligned_buffer.h"
#include "support/cases.h"
#include "support/instruction_sets.h"

namespace {

using kelvane::group_size, kelvane::Loss, kelvane::Robust_loss, kelvane::Sight_kernels;
using support::Case;

constexpr std::size_t num_groups = 3;
constexpr std::size_t num_points = num_groups * group_size;
constexpr std::size_t num_rows = 3 * num_points;
constexpr std::size_t stride = num_rows + group_size;
constexpr Loss losses[] = {Loss::none, Loss::huber, Loss::cauchy, Loss::tukey};
constexpr unsigned seed = 1515;

/// Residuals of 1e-3 to 1e3 with weights, some of which are 0, behind seven columns.
struct Data {
  std::size_t d;
  double weights[num_rows];
  double lengths[num_points];
  alignas(kelvane::cache_line) double columns[7 * stride];
  alignas(kelvane::cache_line) double roots[num_rows];
  alignas(kelvane::cache_line) double sums[21][group_size] = {};

  Data(std::size_t the_d, support::Random& random) : d(the_d) {
    for (double& w : weights) w = std::max(0.0, random.uniform(-0.2, 2.0));
    for (double& entry : columns) entry = random.uniform(-1.0, 1.0);
    for (std::size_t i = 0; i < num_rows; ++i) r()[i] *= std::pow(10.0, random.uniform(-3.0, 3.0));
  }
  double* r() { return columns + 6 * stride; }
  std::size_t row(std::size_t point, std::size_t k) const {
    return (point / group_size * d + k) * group_size + point % group_size;
  }
  /// All of it, worked on in the order of a refinement.
  void run(const Sight_kernels& kernels, const Robust_loss& loss) {
    EXPECT_TRUE(kernels.lengths(weights, r(), d, num_groups, lengths));
    kernels.add_slopes(loss, weights, lengths, d, num_groups, columns, stride, sums);
    kernels.weigh(loss, weights, lengths, d, num_groups, r(), roots);
    for (std::size_t c = 0; c < 6; ++c) kernels.scale(roots, d * num_points, columns + c * stride);
  }
};

class SightKernels : public support::Every_instruction_set {
 protected:
  const Sight_kernels& kernels() const { return kelvane::sight_kernels(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(All, SightKernels, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(SightKernels, FollowTheFormulasPointByPoint) {
  for (unsigned number = 0; number < 60; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const Robust_loss loss{losses[number % 4], 2.0};
    const Data before(2 + number % 2, which.random);
    Data after = before;
    Data data = before;
    after.run(kernels(), loss);
    double sums[21] = {};
    for (std::size_t i = 0; i < num_points; ++i) {
      double square = 0.0;
      for (std::size_t k = 0; k < data.d; ++k) {
        square += data.weights[data.row(i, k)] * data.r()[data.row(i, k)] * data.r()[data.row(i, k)];
      }
      const double s = std::sqrt(square);
      EXPECT_NEAR(after.lengths[i], s, 1e-12 * s);
      const double root_of_loss = std::sqrt(loss.weight(s));
      double pull[6] = {};
      for (std::size_t k = 0; k < data.d; ++k) {
        const std::size_t row = data.row(i, k);
        const double root = std::sqrt(data.weights[row]) * root_of_loss;
        EXPECT_NEAR(after.r()[row], data.r()[row] * root, 1e-12 * std::abs(data.r()[row]));
        for (std::size_t c = 0; c < 6; ++c) {
          const double entry = data.columns[c * stride + row];
          EXPECT_NEAR(after.columns[c * stride + row], entry * root, 1e-12);
          pull[c] += data.weights[row] * data.r()[row] * entry;
        }
      }
      if (s == 0.0) continue;
      double* sum = sums;
      for (std::size_t a = 0; a < 6; ++a) {
        for (std::size_t b = a; b < 6; ++b) *sum++ -= loss.slope_times_length(s) / (s * s) * pull[a] * pull[b];
      }
    }
    for (std::size_t j = 0; j < 21; ++j) {
      double total = 0.0;
      for (const double sum : after.sums[j]) total += sum;
      EXPECT_NEAR(total, sums[j], 1e-11 * std::max(1.0, std::abs(sums[0])));
    }
  }
}

/// Each residual by the row of its point's matrix; the entries above the diagonal of two rows are not stored.
TEST_P(SightKernels, WhitenPointByPoint) {
  for (const std::size_t d : {2U, 3U}) {
    support::Random random(seed + 2);
    Data data(d, random);
    const Data before = data;
    const std::size_t num_entries = d == 2 ? 3 : 9;
    const std::vector<double> whitening = random.vector_in_cube(num_entries * num_points, 2.0);
    kernels().whiten(whitening.data(), d, num_groups, data.columns);
    for (std::size_t i = 0; i < num_points; ++i) {
      const double* W = &whitening[i / group_size * num_entries * group_size + i % group_size];
      for (std::size_t k = 0; k < d; ++k) {
        double expected = 0.0;
        for (std::size_t j = 0; j < (d == 2 ? k + 1 : d); ++j) {
          expected += W[(d == 2 ? k + j : 3 * k + j) * group_size] * before.columns[before.row(i, j)];
        }
        EXPECT_EQ(data.columns[data.row(i, k)], expected) << i << ", " << k;
      }
    }
    EXPECT_TRUE(std::equal(data.columns + d * num_points, data.columns + 7 * stride, before.columns + d * num_points));
  }
}

TEST_P(SightKernels, AddTheCostsOfAnyNumberOfPoints) {
  for (const Loss kind : losses) {
    const Robust_loss loss{kind, 1.5};
    for (std::size_t n = 0; n <= num_points; ++n) {
      double lengths[num_points];
      for (std::size_t i = 0; i < num_points; ++i) lengths[i] = 0.2 * static_cast<double>(i);
      double sums[group_size] = {};
      kernels().add_costs(loss, lengths, n, sums);
      double expected[group_size] = {};
      for (std::size_t i = 0; i < n; ++i) expected[i % group_size] += loss.cost(lengths[i]);
      for (std::size_t lane = 0; lane < group_size; ++lane) EXPECT_EQ(sums[lane], expected[lane]);
    }
  }
}

TEST_P(SightKernels, SubtractWhatAnyCameraSeesAndNothingInItsPlane) {
  const kelvane::Pixel_lens lens{0.1, 1.25, 320.0, 240.0, 1e6};
  alignas(kelvane::cache_line) double values[2 * num_points];
  double observed[2 * num_points];
  for (std::size_t i = 0; i < 2 * num_points; ++i) {
    values[i] = 10.0 * static_cast<double>(i);
    observed[i] = static_cast<double>(i);
  }
  values[3] = -2e6;
  values[13] = 3e6;
  values[12] = std::numeric_limits<double>::quiet_NaN();
  values[20] = std::numeric_limits<double>::infinity();
  double before[2 * num_points];
  std::copy_n(values, 2 * num_points, before);
  kernels().subtract_pixels(observed, num_groups, lens, values);
  for (std::size_t g = 0; g < num_groups; ++g) {
    for (std::size_t lane = 0; lane < group_size; ++lane) {
      const std::size_t u = 2 * g * group_size + lane;
      const std::size_t v = u + group_size;
      const bool is_in_plane = u == 3 || v == 12 || v == 13 || u == 20;
      EXPECT_EQ(std::isnan(values[u]), is_in_plane);
      EXPECT_EQ(std::isnan(values[v]), is_in_plane);
      if (is_in_plane) continue;
      EXPECT_EQ(values[u], observed[u] - (before[u] + 0.1 * before[v] + 320.0));
      EXPECT_EQ(values[v], observed[v] - (1.25 * before[v] + 240.0));
    }
  }
}

TEST_P(SightKernels, TellWhereSquaresAreNotToBeTrusted) {
  double weights[2 * group_size];
  double residuals[2 * group_size] = {};
  double lengths[group_size];
  std::fill_n(weights, 2 * group_size, 1.0);
  EXPECT_TRUE(kernels().lengths(weights, residuals, 2, 1, lengths));
  for (const double bad :
       {1e151, 1e200, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    for (std::size_t i = 0; i < 2 * group_size; ++i) {
      residuals[i] = bad;
      EXPECT_FALSE(kernels().lengths(weights, residuals, 2, 1, lengths));
      residuals[i] = 0.0;
    }
  }
}

TEST_P(SightKernels, GiveTheBitsOfTheSmallestSet) {
  for (unsigned number = 0; number < 60; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const Robust_loss loss{losses[number % 4], 0.7};
    Data data(2 + number % 2, which.random);
    Data smallest = data;
    data.run(kernels(), loss);
    smallest.run(kelvane::sight_kernels(kelvane::Instruction_set::sse2), loss);
    EXPECT_TRUE(std::equal(data.columns, data.columns + 7 * stride, smallest.columns));
    EXPECT_TRUE(std::equal(data.lengths, data.lengths + num_points, smallest.lengths));
    EXPECT_TRUE(std::equal(&data.sums[0][0], &data.sums[0][0] + 21 * group_size, &smallest.sums[0][0]));
  }
}

}  // namespace
