// SPDX-License-Identifier: BSD-3-Clause
// All triples of points, each once and in an order without order.
#include "pose_estimation/triples.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

namespace {

using kelvane::Triples;
using Triple = std::array<std::size_t, 3>;

Triple triple_of(const Triples& triples, std::uint64_t number) {
  std::size_t triple[3];
  triples.get(number, triple);
  return {triple[0], triple[1], triple[2]};
}

std::vector<Triple> first_of(const Triples& triples, std::uint64_t count) {
  std::vector<Triple> first;
  for (std::uint64_t number = 0; number < count; ++number) first.push_back(triple_of(triples, number));
  return first;
}

std::uint64_t num_triples(std::uint64_t n) {
  return static_cast<std::uint64_t>(static_cast<__uint128_t>(n) * (n - 1) * (n - 2) / 6);
}

TEST(Triples, AreAllThereOnce) {
  for (std::size_t n = 3; n <= 40; ++n) {
    for (const std::uint64_t seed : {0U, 1U, 77U}) {
      const Triples triples(n, seed);
      ASSERT_EQ(triples.size(), num_triples(n));
      std::set<Triple> all;
      for (const Triple& triple : first_of(triples, triples.size())) {
        EXPECT_LT(triple[0], triple[1]);
        EXPECT_LT(triple[1], triple[2]);
        EXPECT_LT(triple[2], n);
        all.insert(triple);
      }
      EXPECT_EQ(all.size(), triples.size()) << n << " points, seed " << seed;
    }
  }
}

TEST(Triples, OfManyPointsAreInRange) {
  const std::size_t most = Triples::most_points;
  for (const std::size_t n : {std::size_t{1000}, std::size_t{99999}, most - 1, most, most + 1, std::size_t{1} << 40U}) {
    const Triples triples(n, 5);
    ASSERT_EQ(triples.size(), num_triples(std::min(n, most)));
    std::set<Triple> all;
    for (std::uint64_t k = 0; k < 20000; ++k) {
      const Triple triple = triple_of(triples, k < 10000 ? k : triples.size() - 1 - (k - 10000));
      EXPECT_LT(triple[0], triple[1]);
      EXPECT_LT(triple[1], triple[2]);
      EXPECT_LT(triple[2], std::min(n, most));
      all.insert(triple);
    }
    EXPECT_EQ(all.size(), 20000U) << n;
  }
}

TEST(Triples, OfAnotherSeedComeInAnotherOrder) {
  const auto first = first_of(Triples(100, 1), 1000);
  EXPECT_EQ(first, first_of(Triples(100, 1), 1000));
  for (const std::uint64_t seed : {0U, 2U, 3U}) {
    const auto other = first_of(Triples(100, seed), 1000);
    int num_equal = 0;
    for (std::size_t k = 0; k < 1000; ++k) num_equal += first[k] == other[k] ? 1 : 0;
    EXPECT_LT(num_equal, 5) << seed;  // 161,700 triples: one in 160 rounds
  }
}

/// Of 1,000 triples of n points a point is in 3,000 / n, with the scatter of lots.
TEST(Triples, HaveEachPointInItsShare) {
  for (const std::size_t n : {20U, 100U, 300U}) {
    const double p = 3.0 / static_cast<double>(n);
    for (const std::uint64_t seed : {0U, 1U, 2U, 3U}) {
      std::vector<double> of_point(n);
      for (const Triple& triple : first_of(Triples(n, seed), 1000)) {
        for (const std::size_t i : triple) of_point[i] += 1.0;
      }
      double square = 0.0;
      for (const double count : of_point) {
        EXPECT_NEAR(count, 1000.0 * p, 5.0 * std::sqrt(1000.0 * p)) << n << " points, seed " << seed;
        square += (count - 1000.0 * p) * (count - 1000.0 * p) / (1000.0 * p * (1.0 - p));
      }
      const double degrees = static_cast<double>(n) - 1.0;
      EXPECT_NEAR(square, degrees, 4.0 * std::sqrt(2.0 * degrees)) << n << " points, seed " << seed;
    }
  }
}

}  // namespace
