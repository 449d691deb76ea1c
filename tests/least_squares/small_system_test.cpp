// SPDX-License-Identifier: BSD-3-Clause
// Solutions of small triangles: regular ones and ones of lower rank.
#include "least_squares/small_system.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "least_squares/small_triangles.h"

namespace {

using small_triangles::diagonal, small_triangles::eps, small_triangles::random_triangle, small_triangles::reduced;
using small_triangles::Triangle;
using support::Case;

constexpr std::uint64_t seed = 70657;

/// The solution of num_rows rows, to what their rounding allows.
void expect_reference(const Triangle& triangle, std::size_t num_rows, std::size_t rank) {
  const reference::Least_squares expected = triangle.reference(num_rows);
  EXPECT_EQ(expected.rank, rank);
  const std::vector<double> dx = triangle.solution(num_rows);
  EXPECT_LE(support::distance_between(dx, expected.solution),
            20.0 * eps * static_cast<double>(expected.condition) * support::length_of(dx));
}

TEST(SmallSystem, OfFullRankHasTheSolutionOfTheReference) {
  for (std::uint64_t number = 0; number < 2000; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const Triangle triangle = random_triangle(1 + number % 12, which.random);
    expect_reference(triangle, 200, triangle.n);
  }
}

TEST(SmallSystem, IsSolvedAlikeOnBothSidesOfTheLargestConditionForSubstitution) {
  for (std::uint64_t number = 0; number < 600; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const std::size_t n = 2 + number % 9;
    std::vector<double> sigma(n, 1.0);
    sigma[1] = which.random.magnitude(-13.0, -9.0);
    const Triangle triangle = reduced(100, sigma, which.random);
    expect_reference(triangle, 100, n);
  }
}

TEST(SmallSystem, OfLowerRankHasTheShortestSolution) {
  for (std::uint64_t number = 0; number < 600; ++number) {
    Case which(seed + 2, number);
    SCOPED_TRACE(which);
    const std::size_t n = 2 + number % 9;
    const std::size_t rank = 1 + static_cast<std::size_t>(which.random.uniform(0.0, static_cast<double>(n - 1)));
    std::vector<double> sigma(n, 0.0);
    for (std::size_t k = 0; k < rank; ++k) sigma[k] = which.random.magnitude(-3.0, 3.0);
    const std::size_t m = 20 * n;
    const Triangle triangle = reduced(m, sigma, which.random);
    expect_reference(triangle, m, rank);
  }
}

TEST(SmallSystem, OfRankExactlyLowerLeavesOutTheColumnsThatVanish) {
  for (std::size_t n = 1; n <= 10; ++n) {
    for (std::size_t place = 0; place < n; ++place) {
      std::vector<double> expected(n, 1.0);
      expected[place] = 0.0;
      EXPECT_EQ(diagonal(n, place, 0.0).solution(1000), expected);
    }
    EXPECT_EQ(Triangle(n).solution(n), std::vector<double>(n, 0.0));
  }
}

TEST(SmallSystem, IsSeenToBeSingularWhereTheDiagonalDoesNotTell) {
  // Ones on the diagonal and minus ones above it: the entries of the inverse double with every row.
  constexpr std::size_t n = 60;
  Triangle triangle(n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) triangle.at(i, j) = -1.0;
    triangle.at(i, i) = triangle.at(i, n) = 1.0;
  }
  const reference::Least_squares expected = triangle.reference(n);
  EXPECT_EQ(expected.rank, n - 1);
  const std::vector<double> dx = triangle.solution(n);
  EXPECT_LE(support::distance_between(dx, expected.solution),
            20.0 * eps * static_cast<double>(expected.condition) * support::length_of(dx));
}

TEST(SmallSystem, OfOneUnknownIsDivided) {
  for (const double r : {3.0, 1e-100, 1e130, -2.0}) {
    Triangle triangle(1);
    triangle.at(0, 0) = r;
    triangle.at(0, 1) = 5.0;
    EXPECT_DOUBLE_EQ(triangle.solution(100)[0], 5.0 / r);
  }
}

}  // namespace
