// SPDX-License-Identifier: BSD-3-Clause
// Solutions of small triangles: regular ones, ones of lower rank, and on which side of the limits the rank changes.
#include "fw_opt/triangular_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "fw_opt/row_reduction.h"
#include "support/cases.h"
#include "support/linear_systems.h"
#include "support/reference_svd.h"

namespace {

using support::Case;
using support::Random;

constexpr std::uint64_t seed = 70657;
constexpr double eps = std::numeric_limits<double>::epsilon();

/// Row by row [R | c], with zeros left of the diagonal.
struct Triangle {
  std::size_t n;
  std::vector<double> entries;

  explicit Triangle(std::size_t size) : n(size), entries(n * (n + 1), 0.0) {}
  double& at(std::size_t i, std::size_t j) { return entries[i * (n + 1) + j]; }
  double at(std::size_t i, std::size_t j) const { return entries[i * (n + 1) + j]; }

  std::vector<double> solution(fw::Triangular_system& system, std::size_t num_rows) const {
    std::vector<double> dx(n, -1.5);
    system.solve(entries.data(), fw::squared_norm_of_triangle(entries.data(), n), n, num_rows, dx.data());
    return dx;
  }

  reference::Least_squares reference(std::size_t num_rows) const {
    reference::Matrix R(n, reference::Vector(n));
    reference::Vector c(n);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) R[i][j] = at(i, j);
      c[i] = at(i, n);
    }
    return reference::least_squares(R, c, num_rows);
  }
};

Triangle random_triangle(std::size_t n, Random& random) {
  Triangle triangle(n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i; j <= n; ++j) triangle.at(i, j) = random.uniform(-1.0, 1.0);
    triangle.at(i, i) += std::copysign(1.0, triangle.at(i, i));
  }
  return triangle;
}

/// The triangle of a system with these singular values, b of unit components.
Triangle reduced(std::size_t m, const std::vector<double>& sigma, Random& random) {
  const std::size_t n = sigma.size();
  const auto system = support::system_of(m, sigma, std::vector<double>(n, 1.0), 1.0, random);
  fw::Row_reduction reduction;
  reduction.start(n);
  support::System_rows(system).send(reduction);
  Triangle triangle(n);
  std::copy_n(reduction.triangle(), triangle.entries.size(), triangle.entries.data());
  return triangle;
}

/// Ones, and `smallest` at the given place of the diagonal, so the singular values are known to the last bit. c is 1.
Triangle diagonal(std::size_t n, std::size_t place, double smallest) {
  Triangle triangle(n);
  for (std::size_t i = 0; i < n; ++i) {
    triangle.at(i, i) = i == place ? smallest : 1.0;
    triangle.at(i, n) = 1.0;
  }
  return triangle;
}

TEST(TriangularSystem, OfFullRankHasTheSolutionOfTheReference) {
  fw::Triangular_system system;
  for (std::uint64_t number = 0; number < 2000; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const Triangle triangle = random_triangle(1 + number % 12, which.random);
    const reference::Least_squares expected = triangle.reference(200);
    const std::vector<double> dx = triangle.solution(system, 200);
    EXPECT_LE(support::distance_between(dx, expected.solution),
              20.0 * eps * static_cast<double>(expected.condition) * support::length_of(dx));
  }
}

TEST(TriangularSystem, IsSolvedAlikeOnBothSidesOfTheLargestConditionForSubstitution) {
  fw::Triangular_system system;
  for (std::uint64_t number = 0; number < 600; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const std::size_t n = 2 + number % 9;
    std::vector<double> sigma(n, 1.0);
    sigma[1] = which.random.magnitude(-10.0, -6.0);
    const Triangle triangle = reduced(100, sigma, which.random);
    const reference::Least_squares expected = triangle.reference(100);
    EXPECT_EQ(expected.rank, n);
    const std::vector<double> dx = triangle.solution(system, 100);
    EXPECT_LE(support::distance_between(dx, expected.solution),
              20.0 * eps * static_cast<double>(expected.condition) * support::length_of(dx));
  }
}

TEST(TriangularSystem, OfLowerRankHasTheShortestSolution) {
  fw::Triangular_system system;
  for (std::uint64_t number = 0; number < 600; ++number) {
    Case which(seed + 2, number);
    SCOPED_TRACE(which);
    const std::size_t n = 2 + number % 9;
    const std::size_t rank = 1 + static_cast<std::size_t>(which.random.uniform(0.0, static_cast<double>(n - 1)));
    std::vector<double> sigma(n, 0.0);
    for (std::size_t k = 0; k < rank; ++k) sigma[k] = which.random.magnitude(-3.0, 3.0);
    const std::size_t m = 20 * n;
    const Triangle triangle = reduced(m, sigma, which.random);
    const reference::Least_squares expected = triangle.reference(m);
    EXPECT_EQ(expected.rank, rank);
    const std::vector<double> dx = triangle.solution(system, m);
    EXPECT_LE(support::distance_between(dx, expected.solution),
              20.0 * eps * static_cast<double>(expected.condition) * support::length_of(dx));
  }
}

TEST(TriangularSystem, OfRankExactlyLowerLeavesOutTheColumnsThatVanish) {
  fw::Triangular_system system;
  for (std::size_t n = 1; n <= 10; ++n) {
    for (std::size_t place = 0; place < n; ++place) {
      std::vector<double> expected(n, 1.0);
      expected[place] = 0.0;
      EXPECT_EQ(diagonal(n, place, 0.0).solution(system, 1000), expected);
    }
    EXPECT_EQ(Triangle(n).solution(system, n), std::vector<double>(n, 0.0));
  }
}

/// The step along the smallest singular value for one just above and one just below the limit.
void expect_limit(std::size_t n, std::size_t num_rows, double limit) {
  SCOPED_TRACE(testing::Message() << n << " unknowns, " << num_rows << " rows");
  fw::Triangular_system system;
  for (std::size_t place = 0; place < n; ++place) {
    const double above = limit * (1.0 + 1e-6);
    std::vector<double> expected(n, 1.0);
    expected[place] = 1.0 / above;
    const std::vector<double> dx = diagonal(n, place, above).solution(system, num_rows);
    for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(dx[i], expected[i], 10.0 * eps * expected[i]);
    expected[place] = 0.0;
    EXPECT_EQ(diagonal(n, place, limit * (1.0 - 1e-6)).solution(system, num_rows), expected);
  }
}

TEST(TriangularSystem, CutsAtTwiceTheSumOfTheSingularValuesWhereThereAreFewRows) {
  for (std::size_t n = 2; n <= 10; ++n) {
    const double limit = 2.0 * eps * static_cast<double>(n - 1);
    expect_limit(n, n, std::max(limit, static_cast<double>(n) * eps));
    expect_limit(n, 2 * n - 2, limit);
  }
}

TEST(TriangularSystem, CutsWhereTheRoundingOfManyRowsLies) {
  for (std::size_t n = 2; n <= 10; ++n) {
    for (const std::size_t num_rows : {2 * n - 1, std::size_t{100}, std::size_t{3000}, std::size_t{200000}}) {
      expect_limit(n, num_rows, static_cast<double>(num_rows) * eps);
    }
  }
}

void expect_cut_in_any_direction(std::size_t num_rows) {
  fw::Triangular_system system;
  for (std::uint64_t number = 0; number < 200; ++number) {
    Case which(seed + 3, number);
    SCOPED_TRACE(which);
    const std::size_t n = 2 + number % 9;
    std::vector<double> sigma(n, 1.0);
    const double limit = static_cast<double>(num_rows) * eps;
    sigma[n / 2] = 1.01 * limit;
    EXPECT_GT(support::length_of(reduced(50, sigma, which.random).solution(system, num_rows)), 0.9 / limit);
    sigma[n / 2] = 0.99 * limit;
    EXPECT_LT(support::length_of(reduced(50, sigma, which.random).solution(system, num_rows)), 10.0);
  }
}

// The limit lies far above the rounding of R.
TEST(TriangularSystem, CutsInAnyDirection) { expect_cut_in_any_direction(1'000'000); }

// And here above what back-substitution could do with all its digits.
TEST(TriangularSystem, CutsInAnyDirectionOfABillionRows) { expect_cut_in_any_direction(1'000'000'000); }

TEST(TriangularSystem, IsSeenToBeSingularWhereTheDiagonalDoesNotTell) {
  // Ones on the diagonal and minus ones above it: the entries of the inverse double with every row.
  constexpr std::size_t n = 60;
  Triangle triangle(n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) triangle.at(i, j) = -1.0;
    triangle.at(i, i) = triangle.at(i, n) = 1.0;
  }
  const reference::Least_squares expected = triangle.reference(n);
  EXPECT_EQ(expected.rank, n - 1);
  fw::Triangular_system system;
  const std::vector<double> dx = triangle.solution(system, n);
  EXPECT_LE(support::distance_between(dx, expected.solution),
            20.0 * eps * static_cast<double>(expected.condition) * support::length_of(dx));
}

TEST(TriangularSystem, OfOneUnknownIsDivided) {
  fw::Triangular_system system;
  for (const double r : {3.0, 1e-100, 1e130, -2.0}) {
    Triangle triangle(1);
    triangle.at(0, 0) = r;
    triangle.at(0, 1) = 5.0;
    EXPECT_DOUBLE_EQ(triangle.solution(system, 100)[0], 5.0 / r);
  }
}

}  // namespace
