// SPDX-License-Identifier: BSD-3-Clause
// The covariance that is told with everything that may be known, against the scatter of many refinements.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "support/motions.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Loss;
using kelvane::Pose;
using kelvane::Refine_result;
using support::Refined_problem;

constexpr int num_rounds = 2000;
constexpr double part = 0.05;  // 3 standard deviations of what 2,000 rounds tell of a standard deviation
constexpr std::size_t num_points = 40;

struct Case {
  std::string name;
  bool sees_directions;
  Loss loss;
  bool has_covariances, has_prior;
  std::vector<double> fixed;
};

/// L with the noise L n, its first d rows and columns; n of unit size.
std::vector<double> noise_root(support::Random& random, std::size_t d, double size) {
  std::vector<double> L(d * d, 0.0);
  for (std::size_t i = 0; i < d; ++i) {
    for (std::size_t j = 0; j <= i; ++j)
      L[d * i + j] = size * (i == j ? random.uniform(0.3, 2.0) : random.uniform(-1, 1));
  }
  return L;
}

std::vector<double> squared(const std::vector<double>& L, std::size_t d) {
  std::vector<double> C(d * d, 0.0);
  for (std::size_t i = 0; i < d; ++i) {
    for (std::size_t j = 0; j < d; ++j) {
      for (std::size_t k = 0; k < d; ++k) C[d * i + j] += L[d * i + k] * L[d * j + k];
    }
  }
  return C;
}

std::vector<double> drawn(const std::vector<double>& L, std::size_t d, support::Random& random) {
  std::vector<double> n(d);
  std::vector<double> noise(d, 0.0);
  for (double& entry : n) entry = support::normal(random);
  for (std::size_t i = 0; i < d; ++i) {
    for (std::size_t j = 0; j < d; ++j) noise[i] += L[d * i + j] * n[j];
  }
  return noise;
}

/// From which the truth can be reached.
Pose start_for(const std::vector<double>& fixed) {
  support::Motion x = {0.5, 0.2, -0.4, 0.3, -0.2, 0.4};
  support::remove_parts(fixed, x);
  for (double& entry : x) entry = -entry;
  return support::moved_in_world(support::pose_of_scene, x);
}

class KnownCovariance : public testing::TestWithParam<Case> {};

TEST_P(KnownCovariance, IsTheScatterOfRefinements) {
  const Case& given = GetParam();
  const std::size_t d = given.sees_directions ? 3 : 2;
  const double size = given.sees_directions ? 1e-3 : 1.0;
  support::Random random(91);
  const Refined_problem exact = support::random_scene(random, num_points, given.sees_directions, 0.0);
  std::vector<std::vector<double>> roots;
  std::vector<double> covariances;
  for (std::size_t i = 0; i < num_points; ++i) {
    std::vector<double> L = noise_root(random, d, size);
    if (!given.has_covariances) {
      std::fill(L.begin(), L.end(), 0.0);
      for (std::size_t k = 0; k < d; ++k) L[(d + 1) * k] = size;
    }
    roots.push_back(L);
    const std::vector<double> C = squared(L, d);
    covariances.insert(covariances.end(), C.begin(), C.end());
  }
  const std::vector<double> prior_root = noise_root(random, 6, 4e-3);
  const std::vector<double> of_prior = squared(prior_root, 6);
  kelvane::Refine_options options;
  options.loss = given.loss;
  if (!given.has_covariances) options.noise_sigma = size;
  double scatter[6][6] = {};
  double told[6][6] = {};
  for (int round = 0; round < num_rounds; ++round) {
    Refined_problem problem = exact;
    for (std::size_t i = 0; i < num_points; ++i) {
      const std::vector<double> noise = drawn(roots[i], d, random);
      for (std::size_t k = 0; k < d; ++k) problem.observations[d * i + k] += noise[k];
    }
    problem.start = start_for(given.fixed);
    kelvane::Refine_problem view = problem.view();
    if (given.has_covariances) view.covariances = covariances;
    if (given.has_prior) {
      view.prior.pose = support::moved_by_error(support::pose_of_scene, drawn(prior_root, 6, random));
      view.prior.covariance = of_prior;
    }
    view.fixed = given.fixed;
    const Refine_result result = refine(view, options);
    ASSERT_GT(static_cast<int>(result.exit), 0) << result.message;
    const std::vector<double> error = support::error_between(support::pose_of_scene, result.pose);
    for (std::size_t i = 0; i < 6; ++i) {
      for (std::size_t j = 0; j < 6; ++j) {
        scatter[i][j] += error[i] * error[j] / num_rounds;
        told[i][j] += result.covariance[i][j] / num_rounds;
      }
    }
  }
  for (int i = 0; i < 6; ++i) {
    if (told[i][i] == 0.0) {
      EXPECT_LT(scatter[i][i], 1e-28) << i;
      continue;
    }
    EXPECT_NEAR(std::sqrt(scatter[i][i] / told[i][i]), 1.0, part) << i;
    for (int j = 0; j < i; ++j) {
      const double both = std::sqrt(told[i][i] * told[j][j]);
      if (both == 0.0) continue;
      EXPECT_NEAR(scatter[i][j] / both, told[i][j] / both, 2.0 * part) << i << ", " << j;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, KnownCovariance,
    testing::Values(Case{"PixelCovariances", false, Loss::none, true, false, {}},
                    Case{"PixelCovariancesHuber", false, Loss::huber, true, false, {}},
                    Case{"DirectionCovariances", true, Loss::none, true, false, {}},
                    Case{"DirectionCovariancesTukey", true, Loss::tukey, true, false, {}},
                    Case{"Prior", false, Loss::none, false, true, {}},
                    Case{"PriorHuber", false, Loss::huber, false, true, {}},
                    Case{"PriorOfDirections", true, Loss::none, false, true, {}},
                    Case{"PriorAndCovariancesCauchy", false, Loss::cauchy, true, true, {}},
                    Case{"CentreFixed", false, Loss::none, false, false, support::axes({3, 4, 5})},
                    Case{"HeightFixed", false, Loss::huber, false, false, support::axes({5})},
                    Case{"GravityFixed", false, Loss::none, true, false, support::axes({0, 1})},
                    Case{"RotationFixedOfDirections", true, Loss::none, false, false, support::axes({0, 1, 2})},
                    Case{"PriorTukeyOfDirections", true, Loss::tukey, false, true, {}},
                    Case{"PriorCauchyOfDirectionsWithSomeFixed", true, Loss::cauchy, false, true, support::oblique},
                    Case{"PriorHuberWithSomeFixed", false, Loss::huber, true, true, support::oblique},
                    Case{"TukeyCentreFixed", false, Loss::tukey, true, false, support::axes({3, 4, 5})},
                    Case{"PriorWithSomeFixed", false, Loss::none, true, true, support::oblique}),
    [](const auto& one) { return one.param.name; });

}  // namespace
