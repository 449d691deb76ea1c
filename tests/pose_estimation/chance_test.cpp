// SPDX-License-Identifier: BSD-3-Clause
// How many points agree by mere chance, against the formula itself and against chance.
#include "pose_estimation/chance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "pose_estimation/three_points.h"
#include "support/estimated_scenes.h"
#include "support/long_run.h"

namespace {

using kelvane::consensus, kelvane::Consensus;
using support::Random;

constexpr std::uint64_t seed = 19005;
constexpr double infinity = std::numeric_limits<double>::infinity();

/// n choose k.
double log10_binomial(double n, double k) {
  return (std::lgamma(n + 1.0) - std::lgamma(k + 1.0) - std::lgamma(n - k + 1.0)) / std::log(10.0);
}

/// 4 (n - 3) (n choose k) (k choose 3) p^(k - 3) with the probability p of the worst of the k nearest: the least.
double least_log10(std::vector<double> squares, double chance) {
  const auto n = static_cast<double>(squares.size());
  std::sort(squares.begin(), squares.end());
  double least = 0.0;
  for (std::size_t i = 3; i < squares.size() && squares[i] < 1.0; ++i) {
    const double k = static_cast<double>(i) + 1.0;
    const double p = std::min(1.0, chance * std::max(squares[i], 1e-20));
    least = std::min(
        least, std::log10(4.0 * (n - 3.0)) + log10_binomial(n, k) + log10_binomial(k, 3.0) + (k - 3.0) * std::log10(p));
  }
  return least;
}

std::vector<double> random_squares(Random& random, std::size_t n, double part_near) {
  std::vector<double> squares;
  for (std::size_t i = 0; i < n; ++i) {
    squares.push_back(random.uniform(0.0, 1.0) < part_near ? random.magnitude(-22.0, 0.5) : random.magnitude(0.0, 4.0));
    if (random.uniform(0.0, 1.0) < 0.1) squares.back() = infinity;
  }
  return squares;
}

TEST(Chance, IsThatOfTheFormula) {
  Random random(seed);
  int num_found = 0;
  for (int round = 0; round < 2000; ++round) {
    const auto n = static_cast<std::size_t>(random.magnitude(0.61, 3.5));
    const std::vector<double> squares = random_squares(random, n, random.uniform(0.0, 1.0));
    const double chance = random.magnitude(-6.0, 0.3);
    const double expected = least_log10(squares, chance);
    const Consensus found = consensus(squares, chance);
    EXPECT_NEAR(found.log10_chance, expected, 1e-9 * std::max(1.0, -expected)) << n << " points";
    num_found += found.log10_chance < 0.0 ? 1 : 0;
    EXPECT_EQ(found.log10_chance<0.0, found.square> 0.0);
  }
  EXPECT_GT(num_found, 1000);
}

TEST(Chance, OfFewerThanFourIsCertain) {
  for (std::size_t n = 0; n < 4; ++n) EXPECT_EQ(consensus(std::vector<double>(n, 0.0), 1e-6).log10_chance, 0.0);
  EXPECT_EQ(consensus({0.0, 0.0, 0.0, 1.0, infinity, 7.0}, 1e-9).log10_chance, 0.0);
  EXPECT_LT(consensus({0.0, 0.0, 0.0, 0.9, infinity, 7.0}, 1e-9).log10_chance, -3.0);
}

TEST(Chance, IsNotRaisedByMoreThatAgreeOrBySmallerErrors) {
  Random random(seed + 1);
  for (int round = 0; round < 1000; ++round) {
    std::vector<double> squares = random_squares(random, 4 + static_cast<std::size_t>(round) % 60, 0.6);
    const double chance = random.magnitude(-5.0, -1.0);
    double last = consensus(squares, chance).log10_chance;
    for (int step = 0; step < 20; ++step) {
      const auto which = static_cast<std::size_t>(random.uniform(0.0, static_cast<double>(squares.size())));
      squares[which] = std::isinf(squares[which]) ? 0.5 : squares[which] * random.uniform(0.0, 1.0);
      const double now = consensus(squares, chance).log10_chance;
      EXPECT_LE(now, last + 1e-12 * std::abs(last));
      last = now;
    }
  }
}

TEST(Chance, TakesNumbersThatAreNoneForFarAway) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<double> squares = {1e-4, 2e-4, 1e-3, 1e-5, 1e-4, nan, nan, infinity};
  const std::vector<double> expected = {1e-4, 2e-4, 1e-3, 1e-5, 1e-4, 5.0, 5.0, 5.0};
  EXPECT_EQ(consensus(squares, 1e-3).log10_chance, consensus(expected, 1e-3).log10_chance);
}

/// The poses of all triples of points whose observations are spread evenly, with the errors on a picture of 640 by 480:
/// the number of data sets with as good a consensus is below the chance that is told, and not by many orders.
TEST(Chance, IsNoSmallerThanWhatWrongObservationsReach) {
  constexpr double limits[] = {-0.5, -1.0, -2.0, -3.0};
  const int num_sets = support::repetitions(1000, 20000);
  int num_below[4] = {};
  for (int round = 0; round < num_sets; ++round) {
    Random random(seed + 2 + static_cast<std::uint64_t>(round));
    const std::size_t n = 4 + static_cast<std::size_t>(round) % 7;
    const auto camera = kelvane::pixel_camera(600, 320, 240);
    std::vector<double> X, pixels, d;
    for (std::size_t i = 0; i < n; ++i) {
      const std::vector<double> point = random.vector_in_cube(3, 1.0);
      X.insert(X.end(), point.begin(), point.end());
      pixels.insert(pixels.end(), {random.uniform(0.0, 640.0), random.uniform(0.0, 480.0)});
      const double x = (pixels[2 * i] - 320.0) / 600.0, y = (pixels[2 * i + 1] - 240.0) / 600.0,
                   z = std::hypot(x, y, 1.0);
      d.insert(d.end(), {x / z, y / z, 1.0 / z});
    }
    double least = 0.0;
    for (std::size_t a = 0; a < n; ++a) {
      for (std::size_t b = 0; b < a; ++b) {
        for (std::size_t c = 0; c < b; ++c) {
          const std::size_t triple[] = {a, b, c};
          double points[3][3], directions[3][3];
          for (int k = 0; k < 3; ++k) {
            std::copy_n(&X[3 * triple[k]], 3, points[k]);
            std::copy_n(&d[3 * triple[k]], 3, directions[k]);
          }
          kelvane::Pose poses[kelvane::max_poses_of_three_points];
          const int num_poses = poses_of_three_points(points, directions, poses);
          for (int p = 0; p < num_poses; ++p) {
            std::vector<double> squares;
            for (std::size_t i = 0; i < n; ++i) {
              const std::vector<double> seen = support::seen(camera, poses[p], &X[3 * i]);
              squares.push_back((std::pow(seen[0] - pixels[2 * i], 2) + std::pow(seen[1] - pixels[2 * i + 1], 2)) / 64);
            }
            least = std::min(least, consensus(squares, support::pi * 64.0 / (640.0 * 480.0)).log10_chance);
          }
        }
      }
    }
    for (int k = 0; k < 4; ++k) num_below[k] += least < limits[k] ? 1 : 0;
  }
  EXPECT_GT(num_below[0], 0);
  for (int k = 0; k < 4; ++k) {
    const double most = std::pow(10.0, limits[k]) * num_sets;
    EXPECT_LE(num_below[k], most + 3.0 * std::sqrt(most)) << limits[k];
  }
}

}  // namespace
