// SPDX-License-Identifier: BSD-3-Clause
// The running triangle: many pieces give what one gives, memory serves again, and extreme sizes are noticed.
#include "least_squares/triangle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "support/cases.h"
#include "support/instruction_sets.h"
#include "support/linear_systems.h"
#include "support/matchers.h"
#include "support/reference_svd.h"

namespace {

using support::Case;
using support::Linear_system;
using support::Random;

constexpr std::uint64_t seed = 70533;
constexpr std::size_t max_rows = kelvane::Block::max_rows;
constexpr double rounding = 1e-13;  // of systems of condition below 100, relative to the largest entry

std::vector<double> triangle_of(kelvane::Triangle& triangle, const Linear_system& system, std::size_t piece) {
  kelvane::Block block;
  block.resize(system.n());
  triangle.start(system.n());
  support::visit_blocks(system, piece, block, [&](std::size_t num_rows) { triangle.absorb(block, num_rows); });
  return {triangle.entries(), triangle.entries() + system.n() * (system.n() + 1)};
}

/// The x of least |R x - c|.
reference::Least_squares minimiser(const std::vector<double>& triangle, std::size_t n) {
  reference::Matrix R(n, reference::Vector(n));
  reference::Vector c(n);
  for (std::size_t i = 0; i < n; ++i) {
    std::copy_n(triangle.data() + i * (n + 1), n, R[i].data());
    c[i] = triangle[i * (n + 1) + n];
  }
  return reference::least_squares(R, c);
}

class RunningTriangle : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, RunningTriangle, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(RunningTriangle, OfManyPiecesIsThatOfOne) {
  kelvane::Triangle triangle(GetParam());
  for (std::uint64_t number = 0; number < 200; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const std::size_t n = 1 + number % 20;
    const auto m = static_cast<std::size_t>(which.random.uniform(3.0 * static_cast<double>(n), max_rows + 1.0));
    const Linear_system system = support::random_system(m, n, which.random);
    const std::vector<double> whole = triangle_of(triangle, system, max_rows);
    for (std::size_t piece = 8; piece < m; piece += 24) {
      EXPECT_TRUE(support::is_close(triangle_of(triangle, system, piece), whole, rounding)) << "pieces of " << piece;
    }
  }
}

TEST_P(RunningTriangle, HasTheSolutionOfTheWholeSystem) {
  kelvane::Triangle triangle(GetParam());
  for (std::uint64_t number = 0; number < 40; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const std::size_t n = 1 + number % 12;
    const Linear_system system = support::random_system(100 + 50 * number, n, which.random);
    const auto expected = reference::least_squares(system.rows(), system.right_hand_side());
    for (const std::size_t piece : {8U, 16U, 120U, 232U, 240U}) {
      const auto actual = minimiser(triangle_of(triangle, system, piece), n);
      for (std::size_t i = 0; i < n; ++i) {
        EXPECT_NEAR(static_cast<double>(actual.solution[i]), static_cast<double>(expected.solution[i]), rounding);
      }
    }
  }
}

TEST_P(RunningTriangle, UsesItsMemoryAgainWithoutATrace) {
  kelvane::Triangle triangle(GetParam());
  Random random(seed + 2);
  for (const std::size_t n : {7U, 3U, 20U, 6U, 9U, 1U, 20U, 7U}) {
    SCOPED_TRACE(n);
    const Linear_system system = support::random_system(700, n, random);
    kelvane::Triangle fresh(GetParam());
    EXPECT_TRUE(support::are_same_bits(triangle_of(triangle, system, 200), triangle_of(fresh, system, 200)));
  }
}

/// The same system as single rows and as pairs, some groups of 8 pairs at a time.
struct Pairs {
  std::vector<double> by_rows, by_pairs;

  Pairs(kelvane::Instruction_set set, std::size_t num_groups, std::size_t groups_per_block, Random& random) {
    kelvane::Block rows;
    kelvane::Block pairs;
    kelvane::Triangle triangle_of_rows(set);
    kelvane::Triangle triangle_of_pairs(set);
    for (kelvane::Block* block : {&rows, &pairs}) block->resize(6);
    for (kelvane::Triangle* triangle : {&triangle_of_rows, &triangle_of_pairs}) triangle->start(6);
    for (std::size_t first = 0; first < num_groups; first += groups_per_block) {
      const std::size_t count = std::min(groups_per_block, num_groups - first);
      for (std::size_t i = 0; i < 8 * count; ++i) {
        const std::size_t u = i / 8 * 16 + i % 8;
        const std::size_t v = u + 8;
        rows.column(0)[u] = rows.column(1)[v] = pairs.column(0)[i] = random.uniform(0.5, 1.0);
        rows.column(0)[v] = rows.column(1)[u] = 0.0;
        for (std::size_t c = 2; c < 7; ++c) {
          for (const std::size_t row : {u, v}) {
            rows.column(c)[row] = pairs.column(c - 1)[row] = random.uniform(-1.0, 1.0);
          }
        }
      }
      triangle_of_rows.absorb(rows, 16 * count);
      triangle_of_pairs.absorb_pairs(pairs, count);
    }
    by_rows.assign(triangle_of_rows.entries(), triangle_of_rows.entries() + 42);
    by_pairs.assign(triangle_of_pairs.entries(), triangle_of_pairs.entries() + 42);
  }
};

TEST_P(RunningTriangle, OfPairsIsThatOfTheirRows) {
  for (std::size_t num_groups = 1; num_groups <= 40; ++num_groups) {
    for (const std::size_t groups_per_block : {1U, 4U, 15U}) {
      Random random(seed + num_groups);
      const Pairs pairs(GetParam(), num_groups, groups_per_block, random);
      EXPECT_TRUE(support::is_close(pairs.by_pairs, pairs.by_rows, rounding)) << num_groups << " groups";
    }
  }
}

TEST(BlockMemory, IsAlignedAndHasRoomForItsRowsAndATriangle) {
  kelvane::Block block;
  for (std::size_t n = 1; n <= 40; ++n) {
    block.resize(n);
    EXPECT_GE(block.rows_above(), std::max<std::size_t>(n, 16));
    EXPECT_GE(block.stride(), block.rows_above() + max_rows);
    for (std::size_t c = 0; c <= n; ++c) {
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.column(c)) % kelvane::cache_line, 0U) << c << " of " << n;
      EXPECT_EQ(block.column(c), block.column(0) + c * block.stride());
    }
  }
}

}  // namespace
