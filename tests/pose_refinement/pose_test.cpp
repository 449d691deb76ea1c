// SPDX-License-Identifier: BSD-3-Clause
// Forms of a pose and of a camera, there and back.
#include "pose_refinement/pose.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "pose_refinement/camera_model.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/refined_problems.h"
#include "support/tolerance.h"

namespace {

using kelvane::Pose;
using kelvane::Pose_frame;
using support::numbers_of;

constexpr Pose_frame both_frames[] = {Pose_frame::world_from_camera, Pose_frame::camera_from_world};

TEST(Pose, ComesBackFromEveryForm) {
  for (std::uint64_t number = 0; number < 400; ++number) {
    support::Case one(11, number);
    SCOPED_TRACE(testing::PrintToString(one.number));
    const std::vector<double> a = support::random_angle_axis(one.regime, one.random);
    const std::vector<double> r = support::rotation_vector_from(a);
    const std::vector<double> s = one.random.vector_in_cube(3, 10.0);
    for (const Pose_frame frame : both_frames) {
      const Pose pose = pose_of(kelvane::Rotation_vector_pose{{r[0], r[1], r[2]}, {s[0], s[1], s[2]}}, frame);
      const std::vector<double> expected = numbers_of(pose);
      for (const Pose_frame other : both_frames) {
        EXPECT_TRUE(support::is_close(numbers_of(pose_of(rotation_vector_of(pose, other), other)), expected,
                                      tolerance::identity_near_pi));
        EXPECT_TRUE(
            support::is_close(numbers_of(pose_of(quaternion_of(pose, other), other)), expected, tolerance::identity));
        EXPECT_TRUE(
            support::is_close(numbers_of(pose_of(matrix_of(pose, other), other)), expected, tolerance::identity));
      }
      EXPECT_GE(quaternion_of(pose, frame).q[3], 0.0);
    }
  }
}

/// A quarter turn about z: the camera's x axis is the world's y.
TEST(Pose, MapsAsItSays) {
  const double half = std::sqrt(0.5);
  const kelvane::Quaternion_pose quarter{{0, 0, half, half}, {1, 2, 3}};
  const Pose from_camera = pose_of(quarter, Pose_frame::world_from_camera);
  EXPECT_TRUE(support::is_close(numbers_of(from_camera), std::vector<double>{0, -1, 0, 1, 0, 0, 0, 0, 1, 1, 2, 3},
                                tolerance::identity));
  const Pose from_world = pose_of(quarter, Pose_frame::camera_from_world);
  EXPECT_TRUE(support::is_close(numbers_of(from_world), std::vector<double>{0, 1, 0, -1, 0, 0, 0, 0, 1, -2, 1, -3},
                                tolerance::identity));
}

TEST(Pose, RefusesWhatIsNoRotation) {
  const auto told = [](const auto& form) {
    return support::caught_by([&] { pose_of(form, Pose_frame::world_from_camera); }).text;
  };
  EXPECT_EQ(told(kelvane::Quaternion_pose{}),
            "A quaternion of length 0 is no rotation; without a turn it is 1 and three zeros.");
  EXPECT_EQ(told(kelvane::Rotation_vector_pose{{0, NAN, 0}, {}}),
            "the rotation vector[1] is NaN. All of it must be finite numbers.");
  EXPECT_EQ(told(kelvane::Rotation_vector_pose{{}, {0, 0, INFINITY}}),
            "the translation[2] is Inf. All of it must be finite numbers.");
  EXPECT_NE(told(kelvane::Matrix_pose{}).find("is not a rotation"), std::string::npos);
}

/// Six printed digits are enough, and the rotation next to them is taken.
TEST(Pose, BecomesARotation) {
  Pose pose = pose_of(kelvane::Rotation_vector_pose{{0.4, -1.2, 2.0}, {}}, Pose_frame::world_from_camera);
  const std::vector<double> expected = numbers_of(pose);
  for (auto& row : pose.rotation) {
    for (double& entry : row) entry = std::round(entry * 1e6) / 1e6;
  }
  pose = checked(pose);
  EXPECT_TRUE(support::is_close(numbers_of(pose), expected, 1e-6));
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double product = 0.0;
      for (const auto& row : pose.rotation) product += row[i] * row[j];
      EXPECT_NEAR(product, i == j ? 1.0 : 0.0, tolerance::identity);
    }
  }
}

TEST(CameraModel, IsMadeFromEveryForm) {
  const auto numbers = [](const kelvane::Camera_model& c) {
    return std::vector<double>{c.fx, c.skew, c.cx, c.fy, c.cy, c.sees_directions ? 1.0 : 0.0};
  };
  EXPECT_EQ(numbers(kelvane::pixel_camera(500, 320, 240)), (std::vector<double>{500, 0, 320, 500, 240, 0}));
  EXPECT_EQ(numbers(kelvane::pixel_camera(500, 510, 320, 240)), (std::vector<double>{500, 0, 320, 510, 240, 0}));
  EXPECT_EQ(numbers(kelvane::pixel_camera({{1000, 4, 640}, {0, 1020, 480}, {0, 0, 2}})),
            (std::vector<double>{500, 2, 320, 510, 240, 0}));
  EXPECT_EQ(numbers(kelvane::direction_camera())[5], 1.0);
  EXPECT_EQ(support::caught_by([] { kelvane::pixel_camera(0, 1, 1); }).text,
            "A focal length of 0 sees everything in one place.");
  EXPECT_EQ(
      support::caught_by([] {
        kelvane::pixel_camera({{500, 0, 0}, {0, 500, 0}, {320, 240, 1}});
      }).text,
      "K looks transposed: the principal point is in the last row. MATLAB's IntrinsicMatrix has it there; hand over "
      "its transpose.");
  EXPECT_EQ(support::caught_by([] {
              kelvane::pixel_camera({{500, 0, 320}, {1, 500, 240}, {0, 0, 1}});
            }).text,
            "K must be upper triangular, and its last entry other than 0.");
}

}  // namespace
