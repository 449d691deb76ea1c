// SPDX-License-Identifier: BSD-3-Clause
// Singular values of small matrices against those of more digits, and what they are made of.
#include "least_squares/singular_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "support/cases.h"
#include "support/linear_systems.h"
#include "support/reference_svd.h"

namespace {

using support::Case;
using support::Linear_system;

constexpr std::uint64_t seed = 71171;
constexpr double eps = std::numeric_limits<double>::epsilon();

struct Decomposed {
  kelvane::Singular_values values;

  explicit Decomposed(const Linear_system& system) {
    std::vector<double> rows;
    for (std::size_t i = 0; i < system.m(); ++i) {
      for (const auto& column : system.columns) rows.push_back(column[i]);
    }
    values.decompose(rows.data(), system.m(), system.n());
  }

  std::vector<double> sorted() const {
    std::vector<double> sigma;
    for (std::size_t i = 0; i < values.n(); ++i) sigma.push_back(values.sigma(i));
    std::sort(sigma.begin(), sigma.end());
    return sigma;
  }
};

std::vector<double> sorted_reference(const Linear_system& system) {
  reference::Matrix A = reference::transposed(system.rows());
  reference::Matrix V = reference::identity(system.n());
  reference::orthogonalise(A, V);
  std::vector<double> sigma;
  for (const auto& column : A) sigma.push_back(static_cast<double>(std::sqrt(reference::dot(column, column))));
  std::sort(sigma.begin(), sigma.end());
  return sigma;
}

TEST(SingularValues, AreThoseOfTheReferenceToTheLastDigitsOfTheColumns) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const std::size_t n = 1 + number % 9;
    Linear_system system = support::random_system(1 + number / 9 % 9, n, which.random);
    // Columns of very different size do not cost the small ones their digits.
    for (std::size_t c = 0; c < n; ++c) {
      const double size = number % 2 == 0 ? 1.0 : which.random.magnitude(-12.0, 0.0);
      for (double& entry : system.columns[c]) entry *= size;
    }
    const std::vector<double> expected = sorted_reference(system);
    const std::vector<double> actual = Decomposed(system).sorted();
    for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-13 * expected.back());
    if (system.m() < n) continue;  // the others are zero but for rounding
    EXPECT_NEAR(actual[0], expected[0], 1e-11 * expected[0]);
  }
}

TEST(SingularValues, PutTheMatrixTogetherAgain) {
  for (std::uint64_t number = 0; number < 500; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const std::size_t n = 2 + number % 8;
    const Linear_system system = support::random_system(n, n, which.random);
    const Decomposed decomposed(system);
    const kelvane::Singular_values& values = decomposed.values;
    // |A v_i| = sigma_i, V is orthogonal, and U'c has the length of c.
    double length = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
      std::vector<double> image(n, 0.0);
      for (std::size_t c = 0; c < n; ++c) support::add(image, values.v(i)[c], system.columns[c]);
      EXPECT_NEAR(support::length_of(image), values.sigma(i), 100.0 * eps * values.largest());
      length = std::hypot(length, values.component(i));
      for (std::size_t j = 0; j < n; ++j) {
        double product = 0.0;
        for (std::size_t c = 0; c < n; ++c) product += values.v(i)[c] * values.v(j)[c];
        EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 100.0 * eps);
      }
    }
    EXPECT_NEAR(length, support::length_of(system.columns.back()), 1e-12 * length);
  }
}

TEST(SingularValues, OfAMatrixOfZerosAreZeros) {
  Linear_system system{support::Columns(5, std::vector<double>(3, 0.0))};
  const Decomposed decomposed(system);
  EXPECT_EQ(decomposed.sorted(), std::vector<double>(4, 0.0));
  EXPECT_EQ(decomposed.values.largest(), 0.0);
  EXPECT_EQ(decomposed.values.usual_limit(), 0.0);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(decomposed.values.component(i), 0.0);
}

TEST(SingularValues, OfEqualColumnsAreOne) {
  for (std::size_t n = 2; n <= 9; ++n) {
    const Linear_system system{support::Columns(n + 1, std::vector<double>(n, 0.25))};
    const std::vector<double> sigma = Decomposed(system).sorted();
    EXPECT_NEAR(sigma.back(), 0.25 * static_cast<double>(n), 1e-14);
    for (std::size_t i = 0; i + 1 < n; ++i) EXPECT_LE(sigma[i], 4.0 * eps);
  }
}

}  // namespace
