// SPDX-License-Identifier: BSD-3-Clause
// Results for measured problems that were found by another route: kelvane_refine of version 0.1, in Octave, which made
// its steps by the module and knew of no twist. refined.csv holds what converged there.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "support/refined_problems.h"
#include "support/tolerance.h"

namespace {

using kelvane::Refine_options;
using kelvane::Refine_result;
using support::Refined_problem;

constexpr double same_covariance = 1e-6;  // of the variances: their noise follows the pose
constexpr double scale_of_weights = 1.5;  // pixels; and the same in directions
constexpr double scale_of_directions = 0.003;

/// A row of refined.csv.
struct Reference {
  bool sees_directions;
  int id, variant;
  Refine_options options;
  double loss_scale, noise_sigma, before, after;
  std::vector<double> pose, covariance;

  explicit Reference(const std::vector<double>& row)
      : sees_directions(row.at(0) != 0.0),
        id(static_cast<int>(row[1])),
        variant(static_cast<int>(row[2])),
        loss_scale(row[5]),
        noise_sigma(row[6]),
        before(row[7]),
        after(row[8]),
        pose(&row[9], &row[15]),
        covariance(&row.at(15), &row.at(35) + 1) {
    options.loss = static_cast<kelvane::Loss>(static_cast<int>(row[3]));
    options.loss_scale = row[4];
    if (variant == 2) options.noise_sigma = (sees_directions ? scale_of_directions : scale_of_weights) / 3.0;
  }
  std::string set() const { return id == 0 || id == 4 ? "bal_adjusted" : id >= 6 ? "omni" : "chessboard"; }
};

/// With a weight for each equation and, for pixels, with unequal focal lengths and skew.
void bend(Refined_problem& problem) {
  for (std::size_t i = 0; i < problem.observations.size(); ++i) {
    problem.weights.push_back(1.0 + static_cast<double>(i % 5) / 4.0);
  }
  if (problem.camera.sees_directions) return;
  for (std::size_t i = 0; i < problem.observations.size(); i += 2) {
    problem.observations[i] = 1.1 * problem.observations[i] + 0.05 * problem.observations[i + 1];
    problem.observations[i + 1] *= 0.9;
  }
  const auto [sees, fx, skew, cx, fy, cy, lens] = problem.camera;
  problem.camera =
      kelvane::pixel_camera({{1.1 * fx, 0.05 * fy, 1.1 * cx + 0.05 * cy}, {0, 0.9 * fy, 0.9 * cy}, {0, 0, 1}});
}

/// From the camera to the middle of the points: the unit of its place.
double distance_of(const Refined_problem& problem, const Refine_result& result) {
  double between[3] = {-result.pose.centre[0], -result.pose.centre[1], -result.pose.centre[2]};
  const auto n = static_cast<double>(problem.points.size() / 3);
  for (std::size_t i = 0; i < problem.points.size(); ++i) between[i % 3] += problem.points[i] / n;
  return std::hypot(between[0], between[1], between[2]);
}

void expect_same(const Refine_result& result, const Reference& reference, double distance) {
  const auto found = rotation_vector_of(result.pose, kelvane::Pose_frame::world_from_camera);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(found.r[i], reference.pose[i], tolerance::solved);
    EXPECT_NEAR(found.s[i], reference.pose[3 + i], tolerance::solved * distance);
  }
  EXPECT_NEAR(result.before.robust / reference.before, 1.0, tolerance::solved);
  EXPECT_NEAR(result.after.robust / reference.after, 1.0, tolerance::solved);
  EXPECT_NEAR(result.noise_sigma / reference.noise_sigma, 1.0, same_covariance);
  std::size_t k = 0;
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = i; j < 6; ++j) {
      const double size = std::sqrt(result.covariance[i][i] * result.covariance[j][j]);
      EXPECT_NEAR(result.covariance[i][j], reference.covariance[k++], same_covariance * size);
    }
  }
}

TEST(Reference, AgreesWithAnotherRoute) {
  const std::filesystem::path project = KELVANE_PROJECT_FOLDER;
  const auto rows = support::read_csv(project / "tests/pose_refinement/refined.csv");
  EXPECT_GE(rows.size(), 100U);
  for (const auto& row : rows) {
    Reference reference(row);
    SCOPED_TRACE(reference.set() + " " + std::to_string(reference.id) + ", directions " + std::to_string(row[0]) +
                 ", variant " + std::to_string(reference.variant) + ", loss " + std::to_string(row[3]));
    Refined_problem problem = support::measured_problem(reference.set(), reference.id, reference.sees_directions);
    if (reference.variant == 2) bend(problem);
    if (reference.options.loss != kelvane::Loss::none && reference.options.loss_scale == 0.0) {
      // Which scale the loss ends with depends on the way, a little: it comes down in steps of 5 % or more.
      constexpr double two_steps = 0.1;
      const Refine_result result = refine(problem.view(), reference.options);
      EXPECT_GT(static_cast<int>(result.exit), 0) << result.message;
      EXPECT_NEAR(result.loss_scale / reference.loss_scale, 1.0, two_steps);
      reference.options.loss_scale = reference.loss_scale;
      problem.start = result.pose;  // before.robust is then another
      reference.before = refine(problem.view(), reference.options).before.robust;
    }
    const Refine_result result = refine(problem.view(), reference.options);
    EXPECT_GT(static_cast<int>(result.exit), 0) << result.message;
    expect_same(result, reference, distance_of(problem, result));
  }
}

}  // namespace
