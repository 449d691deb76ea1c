// SPDX-License-Identifier: BSD-3-Clause
// The reports of the rotation conversions.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "fw_tools/rotation.h"
#include "support/failing_allocation.h"
#include "support/foreign_locale.h"
#include "support/matchers.h"

namespace {

using Matrix = fw::matrix<double>;
using Vector = std::vector<double>;
using support::Caught;
using support::caught_by;

constexpr const char* ang_axis_to_rot_vec =
    "const std::vector<_Tp> fw::ang_axis_to_rot_vec(const std::vector<_Tp>&) [with T = double]";
constexpr const char* ang_axis_rad_to_rot_mat =
    "const fw::matrix<T> fw::ang_axis_rad_to_rot_mat(const std::vector<_Tp>&) [with T = double]";
constexpr const char* rot_vec_rad_to_rot_mat =
    "const fw::matrix<T> fw::rot_vec_rad_to_rot_mat(const std::vector<_Tp>&) [with T = double]";
constexpr const char* rot_mat_to_ang_axis_rad =
    "const std::vector<_Tp> fw::rot_mat_to_ang_axis_rad(const fw::matrix<T>&) [with T = double]";
constexpr const char* rot_mat_to_quaternion =
    "std::vector<_Tp> fw::rot_mat_to_quaternion(fw::matrix<T>) [with T = double]";

std::string block(int line, const std::string& signature, const std::string& details, int level = 0) {
  return support::block("fw_tools/rotation.h", line, signature, details, level);
}

TEST(MatrixToQuaternion, RefusesAnythingButThreeByThree) {
  for (const auto& [rows, columns] : std::vector<std::pair<int, int>>{{2, 3}, {3, 2}, {4, 4}, {3, 4}, {4, 3}, {0, 0}}) {
    SCOPED_TRACE(testing::Message() << rows << " by " << columns);
    const Matrix R(rows, columns);
    const Caught caught = caught_by([&] { fw::rot_mat_to_quaternion(R); });
    EXPECT_EQ(caught.text, block(655, rot_mat_to_quaternion,
                                 "Incorrectly sized matrix input. Quaternions only defined for 3d rotations, but "
                                 "matrix had size " +
                                     std::to_string(rows) + " by " + std::to_string(columns)));
    EXPECT_EQ(caught.level, 0);
  }
}

TEST(AngleAxisToRotationVector, RefusesFewerThanTwoElements) {
  for (const std::size_t size : {0U, 1U}) {
    const Caught caught = caught_by([&] { fw::ang_axis_to_rot_vec(Vector(size)); });
    EXPECT_EQ(caught.text, block(382, ang_axis_to_rot_vec, "", 1) +
                               block(374, ang_axis_to_rot_vec,
                                     "input std::vector had size " + std::to_string(size) +
                                         " doesn't seem to be a normalised angle axis std::vector") +
                               "\n");
    EXPECT_EQ(caught.level, 1);
  }
}

std::string wrong_angle_axis(const std::string& size) {
  return block(454, ang_axis_rad_to_rot_mat, "", 1) +
         block(429, ang_axis_rad_to_rot_mat, "Conversion only implemented for 3d rotations. input had size " + size) +
         "\n";
}

TEST(AngleAxisToMatrix, RefusesAnythingButFourElements) {
  for (const std::size_t size : {0U, 3U, 5U}) {
    const Caught caught = caught_by([&] { fw::ang_axis_rad_to_rot_mat(Vector(size)); });
    EXPECT_EQ(caught.text, wrong_angle_axis(std::to_string(size)));
    EXPECT_EQ(caught.level, 1);
  }
}

TEST(AngleAxisToMatrix, ReportsInTheClassicLocale) {
  const support::Foreign_locale foreign;
  EXPECT_EQ(caught_by([] { fw::ang_axis_rad_to_rot_mat(Vector(12345)); }).text, wrong_angle_axis("12345"));
}

TEST(RotationVectorToMatrix, RefusesAnythingButThreeElements) {
  for (const std::size_t size : {0U, 2U, 4U}) {
    const Caught caught = caught_by([&] { fw::rot_vec_rad_to_rot_mat(Vector(size)); });
    EXPECT_EQ(caught.text, block(411, rot_vec_rad_to_rot_mat, "Conversion only implemented for 3d rotations"));
    EXPECT_EQ(caught.level, 0);
  }
}

/// The report of an action whose first allocation fails.
Caught caught_without_memory(const std::function<void()>& action) {
  const support::Failing_allocation failing(0);
  return caught_by(action);
}

TEST(RotationConversions, AddTheirContextWhenMemoryRunsOut) {
  Matrix R(3, 3);
  for (unsigned i = 0; i < 3; ++i) R.set(i, i, 1.0);
  const Vector a{0, 0, 1, 0.5};
  Caught caught = caught_without_memory([&] { fw::rot_mat_to_ang_axis_rad(R); });
  EXPECT_EQ(caught.text, block(598, rot_mat_to_ang_axis_rad, "") + "std::bad_alloc\n");
  EXPECT_EQ(caught.level, 0);
  EXPECT_EQ(caught_without_memory([&] { fw::rot_mat_to_rot_vec_rad(R); }).text,
            block(598, rot_mat_to_ang_axis_rad, "") + "std::bad_alloc\n");
  EXPECT_EQ(caught_without_memory([&] { fw::ang_axis_to_rot_vec(a); }).text,
            block(382, ang_axis_to_rot_vec, "") + "std::bad_alloc\n");
  EXPECT_EQ(caught_without_memory([&] { fw::ang_axis_rad_to_rot_mat(a); }).text,
            block(454, ang_axis_rad_to_rot_mat, "") + "std::bad_alloc\n");
}

}  // namespace
