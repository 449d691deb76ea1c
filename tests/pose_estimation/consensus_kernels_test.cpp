// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points that agree with a pose: their formula, point by point, and the same bits from every
// instruction set.
#include "pose_estimation/consensus_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "support/cases.h"
#include "support/instruction_sets.h"

namespace {

using kelvane::Consensus_kernels, kelvane::group_size, kelvane::numbers_of_match;
using support::Random;

constexpr std::size_t num_groups = 5;
constexpr std::size_t num_points = num_groups * group_size;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr unsigned seed = 19003;

/// Random points and directions and a random motion, with a few numbers that are none.
struct Data {
  std::vector<double> groups = std::vector<double>(num_groups * numbers_of_match * group_size);
  double A[3][3], b[3];

  explicit Data(Random& random) {
    for (double& number : groups) number = random.uniform(-1.0, 1.0);
    for (auto& row : A) {
      for (double& entry : row) entry = random.uniform(-1.0, 1.0);
    }
    for (double& entry : b) entry = random.uniform(-1.0, 1.0);
    for (std::size_t m = 0; m < numbers_of_match; ++m) number(3, m) = 0.0;  // what fills up a group
    number(10, 7) = nan;
    number(17, 0) = infinity;
  }
  double& number(std::size_t point, std::size_t m) {
    return groups[(point / group_size * numbers_of_match + m) * group_size + point % group_size];
  }
  double square(std::size_t point) {
    double p[3], seen[3] = {};
    for (int i = 0; i < 3; ++i) {
      p[i] = A[i][0] * number(point, 0) + A[i][1] * number(point, 1) + A[i][2] * number(point, 2) + b[i];
    }
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t i = 0; i < 3; ++i) seen[row] += number(point, 3 + 3 * row + i) * p[i];
    }
    return seen[0] > 0.0 ? (seen[1] * seen[1] + seen[2] * seen[2]) / (seen[0] * seen[0]) : infinity;
  }
  std::vector<double> squares(const Consensus_kernels& kernels) const {
    std::vector<double> values(num_points);
    kernels.squares(groups.data(), num_groups, A, b, values.data());
    return values;
  }
  std::vector<double> gains(const Consensus_kernels& kernels, double before) const {
    std::vector<double> sums(group_size, before);
    kernels.add_gains(groups.data(), num_groups, A, b, sums.data());
    return sums;
  }
};

class ConsensusKernels : public support::Every_instruction_set {
 protected:
  const Consensus_kernels& kernels() const { return kelvane::consensus_kernels(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(All, ConsensusKernels, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(ConsensusKernels, FollowTheFormulaPointByPoint) {
  Random random(seed);
  std::size_t num_behind = 0, num_near = 0;
  for (int round = 0; round < 200; ++round) {
    Data data(random);
    const std::vector<double> squares = data.squares(kernels());
    double gains[group_size] = {};
    for (std::size_t i = 0; i < num_points; ++i) {
      const double expected = data.square(i);
      if (std::isnan(expected)) {
        EXPECT_FALSE(squares[i] < 1.0);
        continue;
      }
      if (std::isinf(expected)) {
        EXPECT_EQ(squares[i], infinity);
      } else {
        EXPECT_NEAR(squares[i], expected, 1e-10 * expected);
      }
      gains[i % group_size] += std::max(0.0, 1.0 - expected);
      num_behind += std::isinf(expected) ? 1U : 0U;
      num_near += expected < 1.0 ? 1U : 0U;
    }
    const std::vector<double> sums = data.gains(kernels(), 2.0);
    for (std::size_t lane = 0; lane < group_size; ++lane) EXPECT_NEAR(sums[lane], 2.0 + gains[lane], 1e-10);
  }
  EXPECT_GT(num_behind, 1000U);
  EXPECT_GT(num_near, 1000U);
}

TEST_P(ConsensusKernels, GiveTheBitsOfTheSmallestSet) {
  Random random(seed + 1);
  const Consensus_kernels& smallest = kelvane::consensus_kernels(kelvane::Instruction_set::sse2);
  for (int round = 0; round < 200; ++round) {
    const Data data(random);
    EXPECT_EQ(data.gains(kernels(), 0.5), data.gains(smallest, 0.5));
    const std::vector<double> ours = data.squares(kernels()), theirs = data.squares(smallest);
    for (std::size_t i = 0; i < num_points; ++i) {
      EXPECT_TRUE(ours[i] == theirs[i] || (std::isnan(ours[i]) && std::isnan(theirs[i]))) << i;
    }
  }
}

}  // namespace
