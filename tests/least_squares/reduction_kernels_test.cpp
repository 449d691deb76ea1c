// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction in every variant that the processor has: products kept, equal bits, NaN and infinity.
#include "least_squares/reduction_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "least_squares/aligned_buffer.h"
#include "support/cases.h"
#include "support/instruction_sets.h"
#include "support/linear_systems.h"

namespace {

using support::Case;
using support::Linear_system;
using support::Random;

constexpr std::uint64_t seed = 70411;
constexpr std::size_t max_unknowns = 12;
constexpr double eps = std::numeric_limits<double>::epsilon();
#ifdef KELVANE_SANITIZED
constexpr std::uint64_t num_blocks = 4 * 7 * max_unknowns;  // each kind at each size, some times over
#else
constexpr std::uint64_t num_blocks = 80 * 7 * max_unknowns;
#endif
constexpr double untouched = -1.5;
constexpr double too_short = 1e-144;  // columns below this length are left out

/// What makes a block hard: nothing; two neighbours, at random, nearly or exactly parallel; columns that vanish or are
/// far smaller than the others.
enum class Kind { plain, nearly_parallel, equal, zero, small, tiny, first_zero };
constexpr std::array kinds = {Kind::plain, Kind::nearly_parallel, Kind::equal, Kind::zero, Kind::small,
                              Kind::tiny,  Kind::first_zero};

Linear_system block_of(Kind kind, std::size_t num_rows, std::size_t n, Random& random) {
  Linear_system block = support::random_system(num_rows, n, random);
  const auto chosen = static_cast<std::size_t>(random.uniform(0.0, static_cast<double>(n)));
  std::vector<double>& column = block.columns[kind == Kind::first_zero ? 0 : chosen];
  const double factor = kind == Kind::zero || kind == Kind::first_zero ? 0.0
                        : kind == Kind::small                          ? random.magnitude(-100.0, -1.0)
                        : kind == Kind::tiny                           ? random.magnitude(-320.0, -100.0)
                                                                       : 1.0;
  for (double& entry : column) entry *= factor;
  if ((kind == Kind::nearly_parallel || kind == Kind::equal) && n > 1) {
    std::vector<double>& neighbour = block.columns[chosen == 0 ? 1 : chosen - 1];
    const double difference = kind == Kind::equal ? 0.0 : random.magnitude(-17.0, 0.0);
    for (std::size_t i = 0; i < num_rows; ++i) column[i] = neighbour[i] + difference * column[i];
  }
  return block;
}

/// The block of a test by its number: all kinds, sizes and row counts in turn.
Linear_system numbered_block(std::uint64_t number, Random& random) {
  const std::size_t n = 1 + number / kinds.size() % max_unknowns;
  const std::size_t num_rows = 8 * (1 + static_cast<std::size_t>(random.uniform(0.0, 32.0)));
  return block_of(kinds[number % kinds.size()], num_rows, n, random);
}

/// The triangle, whose rows were full of `untouched` before.
std::vector<double> triangle_of(kelvane::Instruction_set set, const Linear_system& block) {
  const std::size_t n = block.n();
  const std::size_t stride = block.m() + 8;
  kelvane::Aligned_buffer<1> memory;
  memory.resize((n + 1) * stride);
  for (std::size_t c = 0; c <= n; ++c) std::copy_n(block.columns[c].data(), block.m(), memory.data() + c * stride);
  std::vector<double> triangle(n * (n + 1), untouched);
  std::vector<double> scratch(2 * (n + 1));
  kelvane::reduction_kernels(set).reduce(memory.data(), stride, block.m(), n, triangle.data(), scratch.data());
  return triangle;
}

long double product(const std::vector<double>& a, const std::vector<double>& b) {
  long double sum = 0.0L;
  for (std::size_t i = 0; i < a.size(); ++i) sum += static_cast<long double>(a[i]) * b[i];
  return sum;
}

/// (R'R)_ij for i <= j; with j = n it is (R'c)_i.
long double product_of_triangle(const std::vector<double>& triangle, std::size_t n, std::size_t i, std::size_t j) {
  long double sum = 0.0L;
  for (std::size_t k = 0; k <= i; ++k) {
    sum += static_cast<long double>(triangle[k * (n + 1) + i]) * triangle[k * (n + 1) + j];
  }
  return sum;
}

class ReductionKernels : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, ReductionKernels, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(ReductionKernels, KeepTheProductsOfAllColumns) {
  double worst = 0.0;
  for (std::uint64_t number = 0; number < num_blocks; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const Linear_system block = numbered_block(number, which.random);
    const std::size_t n = block.n();
    const std::vector<double> triangle = triangle_of(GetParam(), block);
    for (std::size_t j = 0; j <= n; ++j) {
      for (std::size_t i = 0; i <= std::min(j, n - 1); ++i) {
        const auto& a = block.columns[i];
        const auto& b = block.columns[j];
        const double difference = static_cast<double>(std::abs(product_of_triangle(triangle, n, i, j) - product(a, b)));
        const double scale = static_cast<double>(std::sqrt(product(a, a) * product(b, b)));
        // What a column that was left out would have contributed does not count.
        const double excess = difference - too_short * std::sqrt(static_cast<double>(block.m()));
        if (excess > 0.0) worst = std::max(worst, excess / (static_cast<double>(n) * eps * scale));
      }
    }
  }
  RecordProperty("worst_of_n_eps", std::to_string(worst));
  EXPECT_LE(worst, 2.0) << "times n eps |a_i| |a_j|";
}

TEST_P(ReductionKernels, HaveADiagonalThatIsNotNegativeAndLeaveTheRestAlone) {
  for (std::uint64_t number = 0; number < num_blocks; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const Linear_system block = numbered_block(number, which.random);
    const std::size_t n = block.n();
    const std::vector<double> triangle = triangle_of(GetParam(), block);
    for (std::size_t j = 0; j < n; ++j) {
      EXPECT_GE(triangle[j * (n + 1) + j], 0.0);
      for (std::size_t k = 0; k < j; ++k) EXPECT_EQ(triangle[j * (n + 1) + k], untouched);
    }
  }
}

TEST_P(ReductionKernels, GiveTheBitsOfTheSmallestSet) {
  for (std::uint64_t number = 0; number < num_blocks; ++number) {
    Case which(seed + 2, number);
    SCOPED_TRACE(which);
    const Linear_system block = numbered_block(number, which.random);
    EXPECT_TRUE(
        support::are_same_bits(triangle_of(GetParam(), block), triangle_of(kelvane::Instruction_set::sse2, block)));
  }
}

TEST_P(ReductionKernels, LeaveSomethingNotFiniteInTheFirstRow) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity}) {
    for (const Kind kind : kinds) {
      for (std::size_t n = 1; n <= max_unknowns; ++n) {
        Random random(seed + n);
        const Linear_system block = block_of(kind, 40, n, random);
        for (std::size_t c = 0; c <= n; ++c) {
          for (const std::size_t row : {0U, 1U, 7U, 8U, 21U, 38U, 39U}) {
            Linear_system broken = block;
            broken.columns[c][row] = bad;
            const std::vector<double> triangle = triangle_of(GetParam(), broken);
            const auto is_not_finite = [](double entry) { return !std::isfinite(entry); };
            EXPECT_TRUE(
                std::any_of(triangle.begin(), triangle.begin() + static_cast<std::ptrdiff_t>(n) + 1, is_not_finite))
                << bad << " at (" << row << ", " << c << ") of a block of kind " << static_cast<int>(kind);
          }
        }
      }
    }
  }
}

/// A system of pairs of rows [g 0 a_u; 0 g a_v] with four other unknowns, one pair behind the other.
Linear_system system_of_pairs(std::size_t num_pairs, Random& random) {
  Linear_system system = support::random_system(2 * num_pairs, 6, random);
  for (std::size_t i = 0; i < num_pairs; ++i) {
    system.columns[1][2 * i + 1] = system.columns[0][2 * i];
    system.columns[0][2 * i + 1] = system.columns[1][2 * i] = 0.0;
  }
  return system;
}

/// The triangle of pairs in groups of eight; entries left of the diagonal are `untouched`.
std::vector<double> triangle_of_pairs(kelvane::Instruction_set set, const Linear_system& system) {
  const std::size_t num_pairs = system.m() / 2;
  const std::size_t stride = 2 * num_pairs + 8;
  kelvane::Aligned_buffer<1> g;
  g.resize(num_pairs);
  kelvane::Aligned_buffer<1> others;
  others.resize(5 * stride);
  for (std::size_t i = 0; i < num_pairs; ++i) {
    g[i] = system.columns[0][2 * i];
    for (std::size_t k = 0; k < 5; ++k) {
      double* const group = others.data() + k * stride + i / 8 * 16 + i % 8;
      group[0] = system.columns[k + 2][2 * i];
      group[8] = system.columns[k + 2][2 * i + 1];
    }
  }
  std::vector<double> triangle(42, untouched);
  kelvane::reduction_kernels(set).reduce_pairs(g.data(), others.data(), stride, num_pairs / 8, triangle.data());
  return triangle;
}

TEST_P(ReductionKernels, KeepTheProductsOfPairs) {
  for (std::uint64_t number = 0; number < 400; ++number) {
    Case which(seed + 3, number);
    SCOPED_TRACE(which);
    const Linear_system system = system_of_pairs(8 * (1 + number % 16), which.random);
    const std::vector<double> triangle = triangle_of_pairs(GetParam(), system);
    EXPECT_EQ(triangle[1], 0.0) << "the first two columns have no row in common";
    for (std::size_t j = 0; j < 7; ++j) {
      for (std::size_t i = 0; i <= std::min<std::size_t>(j, 5); ++i) {
        const auto& a = system.columns[i];
        const auto& b = system.columns[j];
        const double difference = static_cast<double>(std::abs(product_of_triangle(triangle, 6, i, j) - product(a, b)));
        const double scale = static_cast<double>(std::sqrt(product(a, a) * product(b, b)));
        EXPECT_LE(difference, 12.0 * eps * scale) << i << ", " << j;
        if (i < j && j < 6) {
          EXPECT_EQ(triangle[j * 7 + i], untouched);
        }
      }
    }
    EXPECT_TRUE(support::are_same_bits(triangle, triangle_of_pairs(kelvane::Instruction_set::sse2, system)));
  }
}

TEST_P(ReductionKernels, LeaveSomethingNotFiniteInTheFirstRowsOfPairs) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const auto is_not_finite = [](double entry) { return !std::isfinite(entry); };
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity}) {
    for (std::size_t c = 0; c < 7; ++c) {
      for (const std::size_t row : {0U, 1U, 30U, 31U}) {
        Random random(seed);
        Linear_system broken = system_of_pairs(16, random);
        if (c == 1 || (c == 0 && row % 2 == 1)) continue;  // g stands in column 0, rows u
        broken.columns[c][row] = bad;
        const std::vector<double> triangle = triangle_of_pairs(GetParam(), broken);
        EXPECT_TRUE(std::any_of(triangle.begin(), triangle.begin() + 14, is_not_finite)) << bad << " in column " << c;
      }
    }
  }
}

}  // namespace
