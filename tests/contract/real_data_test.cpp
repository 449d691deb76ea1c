// SPDX-License-Identifier: BSD-3-Clause
// Measured problems, refined call by call from their stored starts to their stored optima.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <tuple>

#include "camera_pose/pose_system.h"
#include "contract/problem.h"
#include "contract/refinement.h"
#include "support/camera_model.h"
#include "support/fake_input.h"
#include "support/posedata.h"

namespace {

using kelvane::contract::Problem;
using support::Measured_problem;

constexpr int max_calls = 50;
constexpr double settled_below = 1e-10;  // radians, and distances to the mean point
constexpr double reached_below =
    1e-8;  // the same; the last digits wander, as the best point is chosen by a rounded sum
constexpr double rms_tolerance = 1e-9;  // relative
// The length of a quaternion or an axis is free, and every step is orthogonal to it, so it grows by the squares of the
// steps only. At a small angle a step turns the axis far. A step along the null space goes up by nine digits and more.
constexpr double longest_expected = 10.0;

struct Pose {
  support::Matrix3<double> R;
  support::Vector3<double> t;
};

Pose pose_of(kelvane::Representation representation, const std::vector<double>& x) {
  const support::Vector3<double> t = {x[x.size() - 3], x[x.size() - 2], x[x.size() - 1]};
  switch (representation) {
    case kelvane::Representation::rotation_vector:
      return {support::rotation_of_vector<double>({x[0], x[1], x[2]}), t};
    case kelvane::Representation::angle_axis:
      return {support::rotation_of_angle_axis<double>({x[0], x[1], x[2], x[3]}), t};
    case kelvane::Representation::quaternion:
      break;
  }
  return {support::rotation_of_quaternion<double>({x[0], x[1], x[2], x[3]}), t};
}

struct Deviation {
  double angle_rad;
  double offset;  // in distances to the mean point

  bool is_below(double limit) const { return angle_rad < limit && offset < limit; }
};

Deviation deviation(const Pose& a, const Pose& b, double distance) {
  double sum = 0.0;  // |A - B|^2 = 8 sin^2 of half the angle between them
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t k = 0; k < 3; ++k) sum += std::pow(a.R[i][k] - b.R[i][k], 2);
  }
  return {2.0 * std::asin(std::fmin(1.0, std::sqrt(sum / 8.0))),
          std::hypot(a.t[0] - b.t[0], a.t[1] - b.t[1], a.t[2] - b.t[2]) / distance};
}

/// The length that is free in the representation, or 1 where none is.
double free_length(kelvane::Representation representation, const std::vector<double>& x) {
  const double axis_length = std::hypot(x[0], x[1], x[2]);
  if (representation == kelvane::Representation::rotation_vector) return 1.0;
  return representation == kelvane::Representation::angle_axis ? axis_length : std::hypot(axis_length, x[3]);
}

/// The inputs of a call as a user makes it: type 0 with three, the others with stopping criteria and the type.
support::Fake_call inputs_of_call(const Measured_problem& problem, int type, const std::vector<double>& x) {
  const auto num_points = static_cast<std::size_t>(problem.num_points);
  std::vector<double> camera = x;
  camera.insert(camera.end(), {problem.f, problem.cx, problem.cy});
  support::Fake_call inputs(type, num_points);
  inputs.with(1, support::fake_row(camera)).with(2, {3, num_points, problem.points});
  inputs.with(3, {2, num_points, problem.observations}).with(4, support::fake_row({0, 0, -1e9, 0}));
  return inputs.keep(type == 0 ? 3 : 5);
}

bool has_finite_error(const Problem& problem, const std::vector<double>& x) {
  return std::isfinite(kelvane::Pose_system(problem.equations(true)).squared_error(x.data()));
}

/// Calls repeated from the start until the pose settles.
struct Trial {
  int num_calls = 0;
  bool is_settled = false;
  double longest = 0.0;  // greatest free length after any call
  double rms = 0.0;
  bool has_finite_errors = true;  // after every call, by the module's own prediction
  Deviation from_optimum{};

  Trial(const Measured_problem& problem, int type) {
    const kelvane::Representation representation = kelvane::find_rotation_type(type)->representation;
    const double distance = problem.distance();
    std::vector<double> x = problem.start.search_vector(representation);
    Pose pose = pose_of(representation, x);
    while (!is_settled && num_calls < max_calls) {
      const support::Fake_call inputs = inputs_of_call(problem, type, x);
      const Problem containers(inputs.check());
      x = kelvane::contract::refine(inputs.check(), kelvane::contract::Settings(inputs.check()));
      ++num_calls;
      has_finite_errors = has_finite_errors && has_finite_error(containers, x);
      const Pose next = pose_of(representation, x);
      is_settled = deviation(next, pose, distance).is_below(settled_below);
      pose = next;
      longest = std::fmax(longest, free_length(representation, x));
    }
    const auto& optimum = problem.optimum.search_vector(kelvane::Representation::quaternion);
    from_optimum = deviation(pose, pose_of(kelvane::Representation::quaternion, optimum), distance);
    rms = problem.rms(pose.R, pose.t);
  }

  double relative_rms(const Measured_problem& problem) const { return rms / problem.optimum.rms - 1.0; }
  bool has_reached_optimum(const Measured_problem& problem) const {
    return is_settled && from_optimum.is_below(reached_below) && std::abs(relative_rms(problem)) < rms_tolerance;
  }
};

std::string row(const Measured_problem& problem, const Trial& trial) {
  std::ostringstream text;
  text << std::setw(4) << problem.id << std::setw(7) << problem.num_points << std::setw(6) << trial.num_calls
       << std::setprecision(2) << std::setw(10) << trial.longest << std::setw(10) << trial.from_optimum.angle_rad
       << std::setw(10) << trial.from_optimum.offset << std::setw(10) << trial.relative_rms(problem)
       << std::setprecision(8) << std::setw(14) << trial.rms << "  "
       << (trial.has_reached_optimum(problem) ? "reached"
           : trial.is_settled                 ? "settled elsewhere"
                                              : "not settled");
  return text.str();
}

constexpr const char* heading = "  id      N calls    length     angle    offset   rms rel.           rms";

class RealData : public testing::TestWithParam<std::tuple<const char*, int>> {
 protected:
  const std::string set = std::get<0>(GetParam());
  const int type = std::get<1>(GetParam());
  const std::filesystem::path folder = support::folder_of_set(set);

  void SetUp() override {
    if (folder.empty()) GTEST_SKIP() << "the problems of " << set << " are not here: tests/data/README.md";
    std::cout << set << ", rotation type " << type << "\n" << heading << "\n";
  }

  /// Runs one problem and leaves its row in the output and in the report.
  Trial trial(const Measured_problem& problem) const {
    const Trial result(problem, type);
    std::cout << row(problem, result) << std::endl;
    RecordProperty(set + "_" + std::to_string(problem.id) + "_type_" + std::to_string(type), row(problem, result));
    return result;
  }

  std::vector<Measured_problem> problems() const {
    auto all = support::read_pixel_set(folder);
#if defined(KELVANE_SANITIZED)  // the rest takes long and differs in its numbers only
    if (all.size() > 2) all.erase(all.begin() + 2, all.end());
#endif
    return all;
  }
};

TEST(RealDataSets, ThatComeWithTheProjectAreAlwaysThere) {
  for (const char* set : {"bal_adjusted", "chessboard", "omni"})
    EXPECT_FALSE(support::folder_of_set(set).empty()) << set;
}

constexpr auto name_of = [](const auto& parameter) {
  return std::string(std::get<0>(parameter.param)) + "_type" + std::to_string(std::get<1>(parameter.param));
};

class RealDataExactJacobian : public RealData {};
INSTANTIATE_TEST_SUITE_P(Sets, RealDataExactJacobian,
                         testing::Combine(testing::Values("chessboard", "bal", "bal_adjusted", "castle"),
                                          testing::Values(0, 1, 2)),
                         name_of);

TEST_P(RealDataExactJacobian, LeadsToTheOptimum) {
  const auto all = problems();
  ASSERT_GE(all.size(), 2U);
  for (const Measured_problem& problem : all) {
    SCOPED_TRACE("problem " + std::to_string(problem.id));
    const Trial result = trial(problem);
    EXPECT_LT(result.longest, longest_expected);
    EXPECT_TRUE(result.has_finite_errors);
    EXPECT_TRUE(result.has_reached_optimum(problem));
  }
}

/// The Jacobian of type 3 is not the derivative of its prediction, so the iteration has no reason to end anywhere.
class RealDataUnitQuaternion : public RealData {};
INSTANTIATE_TEST_SUITE_P(Sets, RealDataUnitQuaternion,
                         testing::Combine(testing::Values("chessboard", "bal", "bal_adjusted", "castle"),
                                          testing::Values(3)),
                         name_of);

TEST_P(RealDataUnitQuaternion, NeverReturnsAPoseWithoutAFiniteError) {
  const auto all = problems();
  ASSERT_GE(all.size(), 2U);
  for (const Measured_problem& problem : all) {
    SCOPED_TRACE("problem " + std::to_string(problem.id));
    EXPECT_TRUE(trial(problem).has_finite_errors);
  }
}

}  // namespace
