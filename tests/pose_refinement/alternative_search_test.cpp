// SPDX-License-Identifier: BSD-3-Clause
// The two minima of a flat target, against a search from many starts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "pose_refinement/motion.h"
#include "support/flat_scenes.h"
#include "support/long_round.h"
#include "support/long_run.h"

namespace {

using kelvane::Pose;
using kelvane::Refine_exit;
using kelvane::Refine_result;
using support::Refined_problem;

/// Sum of squares of pixels or directions, by the model itself.
double cost_of(const Refined_problem& problem, const Pose& pose, std::vector<double>* residuals = nullptr) {
  double cost = 0.0;
  if (residuals != nullptr) residuals->clear();
  for (std::size_t i = 0; i < problem.points.size() / 3; ++i) {
    const std::vector<double> seen = support::seen(problem.camera, pose, &problem.points[3 * i]);
    for (std::size_t k = 0; k < seen.size(); ++k) {
      const double r = problem.observations[seen.size() * i + k] - seen[k];
      cost += r * r;
      if (residuals != nullptr) residuals->push_back(r);
    }
  }
  return cost;
}

/// A damped descent with derivatives by differences, which shares nothing with the refinement.
Pose descended(const Refined_problem& problem, Pose pose) {
  constexpr double h = 1e-6;
  double damping = 1e-3;
  std::vector<double> r;
  double cost = cost_of(problem, pose, &r);
  for (int iteration = 0; iteration < 200 && damping < 1e12; ++iteration) {
    std::vector<std::vector<double>> J;
    for (int c = 0; c < 6; ++c) {
      double twist[6] = {};
      std::vector<double> sides[2];
      twist[c] = h;
      cost_of(problem, moved_by(pose, twist), &sides[0]);
      twist[c] = -h;
      cost_of(problem, moved_by(pose, twist), &sides[1]);
      for (std::size_t i = 0; i < r.size(); ++i) sides[0][i] = (sides[1][i] - sides[0][i]) / (2 * h);
      J.push_back(sides[0]);
    }
    double A[6][7];
    for (std::size_t a = 0; a < 6; ++a) {
      for (std::size_t b = 0; b < 7; ++b) {
        A[a][b] = 0.0;
        for (std::size_t i = 0; i < r.size(); ++i) A[a][b] += J[a][i] * (b < 6 ? J[b][i] : r[i]);
      }
      A[a][a] *= 1.0 + damping;
    }
    for (int p = 0; p < 6; ++p) {  // positive definite: no pivots
      for (int row = 0; row < 6; ++row) {
        if (row == p) continue;
        const double part = A[row][p] / A[p][p];
        for (int c = p; c < 7; ++c) A[row][c] -= part * A[p][c];
      }
    }
    double twist[6];
    double length = 0.0;
    for (int a = 0; a < 6; ++a) {
      twist[a] = A[a][6] / A[a][a];
      length += twist[a] * twist[a];
    }
    const Pose next = moved_by(pose, twist);
    std::vector<double> next_r;
    const double next_cost = cost_of(problem, next, &next_r);
    damping *= next_cost < cost ? 0.1 : 10.0;
    if (!(next_cost < cost)) continue;
    pose = next;
    cost = next_cost;
    r = next_r;
    if (length < 1e-20) break;
  }
  return pose;
}

struct Minimum {
  Pose pose;
  double cost;
};

/// Those with the points in front that descents from all over a half sphere about the target lead to, best first.
std::vector<Minimum> searched(const Refined_problem& problem, double distance, int num_starts,
                              support::Random& random) {
  std::vector<Minimum> minima;
  const std::size_t n = problem.points.size() / 3;
  Pose middle;
  for (std::size_t i = 0; i < 3 * n; ++i) middle.centre[i % 3] += problem.points[i] / static_cast<double>(n);
  for (int k = 0; k < num_starts; ++k) {
    const double tilt = std::acos(random.uniform(0.1, 1.0));
    const double about = random.uniform(0.0, 6.28);
    Pose start = support::pose_at({tilt * std::cos(about), tilt * std::sin(about), 0.0}, {0, 0, 0});
    for (int i = 0; i < 3; ++i) start.centre[i] = middle.centre[i] - distance * start.rotation[i][2];
    const Pose found = descended(problem, start);
    double depth = 0.0;
    for (int i = 0; i < 3; ++i) depth += found.rotation[i][2] * (middle.centre[i] - found.centre[i]);
    const double cost = cost_of(problem, found);
    const bool is_near = length_between(found, middle) < 3.0 * distance;  // others are on their way to far off
    const bool is_known = std::any_of(minima.begin(), minima.end(),
                                      [&](const Minimum& other) { return angle_between(found, other.pose) < 1e-3; });
    if (depth > 0.0 && is_near && !is_known) minima.push_back({found, cost});
  }
  std::sort(minima.begin(), minima.end(), [](const Minimum& a, const Minimum& b) { return a.cost < b.cost; });
  return minima;
}

constexpr std::size_t num_points = 20;

double cost_of_rms(double rms) { return rms * rms * static_cast<double>(num_points); }

/// The refinement's pose is the best of all minima, and its alternative the second one.
TEST(Alternative, IsTheOtherMinimumOfASearch) {
  const int num_scenes = support::is_long_run() ? 1000 : static_cast<int>(support::count_for_round(40));
  const int num_starts = support::is_long_run() ? 200 : 40;
  support::Random random(21);
  int num_with_two = 0;
  int num_ambiguous = 0;
  for (int scene = 0; scene < num_scenes; ++scene) {
    SCOPED_TRACE(scene);
    const bool sees_directions = scene % 4 == 3;
    const double distance = random.uniform(2.0, 20.0);
    const double tilt = random.uniform(0.1, 1.1);
    const double noise = random.uniform(0.1, 1.0) / (sees_directions ? 800.0 : 1.0);
    const Refined_problem problem = support::flat_scene(random, num_points, distance, tilt, noise, sees_directions);
    const std::vector<Minimum> minima = searched(problem, distance, num_starts, random);
    ASSERT_FALSE(minima.empty());
    kelvane::Refine_options options;
    options.noise_sigma = noise;
    const Refine_result found = refine(problem.view(), options);
    EXPECT_LT(angle_between(found.pose, minima[0].pose), 1e-4) << found.message;
    EXPECT_LT(cost_of_rms(found.after.robust), minima[0].cost * (1.0 + 1e-9));
    EXPECT_EQ(found.alternative.has_value(), minima.size() > 1) << minima.size();
    if (minima.size() < 2 || !found.alternative) continue;
    ++num_with_two;
    EXPECT_LT(angle_between(found.alternative->pose, minima[1].pose), 1e-3);
    EXPECT_NEAR(cost_of_rms(found.alternative->rms) / minima[1].cost, 1.0, 1e-6);
    const bool is_doubtful = minima[1].cost - minima[0].cost <= 2.0 * std::log(1000.0) * noise * noise;
    EXPECT_EQ(found.exit == Refine_exit::ambiguous, is_doubtful) << found.message;
    num_ambiguous += is_doubtful ? 1 : 0;
  }
  EXPECT_GT(num_with_two, num_scenes / 2);
  EXPECT_GT(num_ambiguous, num_scenes / 20);
}

/// Boards in photographs, near enough to the camera that most have one minimum.
TEST(Alternative, OfRealBoardsIsThatOfASearch) {
  support::Random random(25);
  const int num_boards = static_cast<int>(support::count_for_round(6));
  for (int id = 1; id <= num_boards; ++id) {
    SCOPED_TRACE(id);
    const Refined_problem problem = support::measured_problem("chessboard", id, false);
    const Refine_result found = refine(problem.view());
    ASSERT_GT(static_cast<int>(found.exit), 0) << found.message;
    const double distance = length_between(found.pose, Pose());
    const std::vector<Minimum> minima = searched(problem, distance, support::is_long_run() ? 200 : 60, random);
    ASSERT_FALSE(minima.empty());
    EXPECT_LT(angle_between(found.pose, minima[0].pose), 1e-7);
    EXPECT_EQ(found.alternative.has_value(), minima.size() > 1);
  }
}

}  // namespace
