// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction in every variant that the processor has: products kept, equal bits, NaN and infinity.
#include "fw_opt/reduction_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "fw_tools/aligned_buffer.h"
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
#ifdef __SANITIZE_ADDRESS__
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
std::vector<double> triangle_of(fw::Instruction_set set, const Linear_system& block) {
  const std::size_t n = block.n();
  const std::size_t stride = block.m() + 8;
  fw::Aligned_buffer memory((n + 1) * stride);
  for (std::size_t c = 0; c <= n; ++c) std::copy_n(block.columns[c].data(), block.m(), memory.data() + c * stride);
  std::vector<double> triangle(n * (n + 1), untouched);
  std::vector<double> scratch(2 * (n + 1));
  fw::reduction_kernels(set).reduce(memory.data(), stride, block.m(), n, triangle.data(), scratch.data());
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
INSTANTIATE_TEST_SUITE_P(All, ReductionKernels, testing::ValuesIn(fw::instruction_sets),
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
    EXPECT_TRUE(support::are_same_bits(triangle_of(GetParam(), block), triangle_of(fw::Instruction_set::sse2, block)));
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

/// Two aligned vectors.
struct Pair {
  fw::Aligned_buffer a, b;
  Pair(std::size_t size, Random& random) : a(size), b(size) {
    for (std::size_t i = 0; i < size; ++i) {
      a[i] = random.uniform(-100.0, 100.0);
      b[i] = random.uniform(-100.0, 100.0);
    }
  }
};

TEST_P(ReductionKernels, SumUpSquaredDifferences) {
  const fw::Reduction_kernels& kernels = fw::reduction_kernels(GetParam());
  for (std::size_t size = 8; size <= 512; size += 8) {
    SCOPED_TRACE(size);
    Random random(seed + size);
    Pair pair(size, random);
    long double expected = 0.0L;
    std::vector<double> differences;
    for (std::size_t i = 0; i < size; ++i) {
      differences.push_back(pair.a[i] - pair.b[i]);
      expected += static_cast<long double>(differences[i]) * differences[i];
    }
    const double distance = kernels.squared_distance(pair.a.data(), pair.b.data(), size);
    // Each of the eight sums has size / 8 terms.
    EXPECT_NEAR(distance, static_cast<double>(expected),
                (4.0 + static_cast<double>(size) / 8.0) * eps * static_cast<double>(expected));
    EXPECT_EQ(distance,
              fw::reduction_kernels(fw::Instruction_set::sse2).squared_distance(pair.a.data(), pair.b.data(), size));
    EXPECT_EQ(distance, kernels.subtract_from(pair.a.data(), pair.b.data(), size));
    EXPECT_TRUE(support::are_same_bits({pair.b.data(), pair.b.data() + size}, differences));
  }
}

}  // namespace
