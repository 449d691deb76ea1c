// SPDX-License-Identifier: BSD-3-Clause
// Poses from camera-frame vectors: the bearing types with a target that holds all three components of every vector.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_opt_func.h"
#include "fw_opt/linear_taylor_solver.h"
#include "support/camera_model.h"
#include "support/cases.h"
#include "support/csv.h"
#include "support/matchers.h"
#include "support/posedata.h"
#include "support/tolerance.h"

namespace {

using support::is_close, support::Matrix3, support::Random, support::Vector3;
using Vector = std::vector<double>;
using Quaternion = std::array<double, 4>;

constexpr std::uint64_t seed = 20241020;

struct Pose {
  Quaternion q;
  Vector3<double> t;

  Matrix3<double> R() const { return support::rotation_of_quaternion(q); }
};

/// Camera-frame vectors of known points, and the pose to start from.
struct Problem {
  std::vector<Vector> points;
  std::vector<Vector3<double>> vectors;
  Pose start;
};

/// The unit axis and the angle between 0 and 2 pi of a unit quaternion.
Vector angle_axis_of(const Quaternion& q) {
  const double sine = std::hypot(q[0], q[1], q[2]);
  return {q[0] / sine, q[1] / sine, q[2] / sine, 2.0 * std::atan2(sine, q[3])};
}

struct Aau_bv {
  using Class = Camera_position_grad_func_aau_bv;
  static constexpr int type = 10;
  static Vector rotation_of(const Pose& pose) { return support::rotation_vector_from(angle_axis_of(pose.q)); }
  static Matrix3<double> matrix(const Vector& x) { return support::rotation_of_vector<double>({x[0], x[1], x[2]}); }
};

struct Aan_bv {
  using Class = Camera_position_grad_func_aan_bv;
  static constexpr int type = 11;
  static Vector rotation_of(const Pose& pose) { return angle_axis_of(pose.q); }
  static Matrix3<double> matrix(const Vector& x) {
    return support::rotation_of_angle_axis<double>({x[0], x[1], x[2], x[3]});
  }
};

struct Qu_bv {
  using Class = Camera_position_grad_func_qu_bv;
  static constexpr int type = 12;
  static Vector rotation_of(const Pose& pose) { return {pose.q.begin(), pose.q.end()}; }
  static Matrix3<double> matrix(const Vector& x) {
    return support::rotation_of_quaternion<double>({x[0], x[1], x[2], x[3]});
  }
};

fw::matrix<double> identity() {
  fw::matrix<double> K(3, 3);
  for (unsigned int i = 0; i < 3; ++i) K[i][i] = 1.0;
  return K;
}

template <typename Model>
Vector search_vector(const Pose& pose) {
  Vector x = Model::rotation_of(pose);
  x.insert(x.end(), pose.t.begin(), pose.t.end());
  return x;
}

/// The refined search vector; the target holds the vectors point by point.
template <typename Model>
Vector refined(const Problem& problem, int num_iterations) {
  const Vector x0 = search_vector<Model>(problem.start);
  Vector target;
  for (const auto& v : problem.vectors) target.insert(target.end(), v.begin(), v.end());
  auto objective = std::make_unique<Camera_position_opt_func>(problem.points, identity(), Model::type);
  fw::Linear_taylor_solver solver;
  solver.set_num_dimensions(static_cast<int>(x0.size()));
  solver.set_num_equations(static_cast<int>(target.size()));
  solver.set_max_iters(num_iterations);
  solver.set_grad_funcs({new typename Model::Class(problem.points, identity(), objective.release())});
  return solver.optimise(x0, target);
}

/// The rotation matrix row by row, then the centre.
Vector flat(const Matrix3<double>& R, const Vector3<double>& t) {
  Vector values;
  for (const auto& row : R) values.insert(values.end(), row.begin(), row.end());
  values.insert(values.end(), t.begin(), t.end());
  return values;
}

template <typename Model>
Vector flat_pose(const Vector& x) {
  const std::size_t n_r = x.size() - 3;
  return flat(Model::matrix(x), {x[n_r], x[n_r + 1], x[n_r + 2]});
}

Vector3<double> camera_frame_vector(const Pose& pose, const Vector& X) {
  return support::camera_frame_point(pose.R(), pose.t, X);
}

/// The pose turned by 3 degrees about a random axis and moved by 5 % of `distance`.
Pose displaced(const Pose& pose, double distance, Random& random) {
  Vector turn = random.direction(3);
  turn.push_back(3.0 * support::pi / 180.0);
  const Vector dq = support::quaternion_from(turn);
  const Vector dt = support::scaled(random.direction(3), 3, 0.05 * distance);
  return {support::product<double>({dq[0], dq[1], dq[2], dq[3]}, pose.q),
          {pose.t[0] + dt[0], pose.t[1] + dt[1], pose.t[2] + dt[2]}};
}

/// 6 to 30 points about a place 2 to 10 units from the camera, anywhere round it, and exact vectors.
Problem random_problem(const Pose& truth, Random& random) {
  const double distance = random.uniform(2.0, 10.0);
  const Vector way = support::scaled(random.direction(3), 3, distance);
  Problem problem{{}, {}, displaced(truth, distance, random)};
  const auto num_points = static_cast<std::size_t>(random.uniform(6.0, 31.0));
  while (problem.points.size() < num_points) {
    const Vector d = random.vector_in_cube(3, 1.5);
    problem.points.push_back({truth.t[0] + way[0] + d[0], truth.t[1] + way[1] + d[1], truth.t[2] + way[2] + d[2]});
    problem.vectors.push_back(camera_frame_vector(truth, problem.points.back()));
  }
  return problem;
}

/// An angle at which all three representations are far from the places where they end, 0 and 2 pi.
Pose random_pose(Random& random) {
  Vector a = random.direction(3);
  a.push_back(random.uniform(0.3, support::pi));
  const Vector q = support::quaternion_from(a);
  const Vector t = random.vector_in_cube(3, 5.0);
  return {{q[0], q[1], q[2], q[3]}, {t[0], t[1], t[2]}};
}

template <typename Model>
class BearingRefinement : public testing::Test {};

struct Names {
  template <typename Model>
  static std::string GetName(int /*index*/) {
    return Model::type == 10 ? "AauBv" : Model::type == 11 ? "AanBv" : "QuBv";
  }
};
using All = testing::Types<Aau_bv, Aan_bv, Qu_bv>;
TYPED_TEST_SUITE(BearingRefinement, All, Names);

TYPED_TEST(BearingRefinement, RecoversThePoseOfExactVectors) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    SCOPED_TRACE(testing::Message() << "case " << number << " of seed " << seed);
    Random random(seed + number);
    const Pose truth = random_pose(random);
    const Problem problem = random_problem(truth, random);
    EXPECT_TRUE(
        is_close(flat_pose<TypeParam>(refined<TypeParam>(problem, 10)), flat(truth.R(), truth.t), tolerance::solved));
  }
}

/// Minimises sum |X - t - R y|^2 over rotations R and centres t (Kabsch 1976): with H the sum of (y - mean y)(X - mean
/// X)' = U S V', R = V diag(1, 1, det(V U')) U'.
Vector closed_form_pose(const Problem& problem) {
  const auto n = static_cast<double>(problem.points.size());
  cv::Vec3d mean_X;
  cv::Vec3d mean_y;
  for (std::size_t i = 0; i < problem.points.size(); ++i) {
    mean_X += cv::Vec3d(problem.points[i].data()) / n;
    mean_y += cv::Vec3d(problem.vectors[i].data()) / n;
  }
  cv::Matx33d H = cv::Matx33d::zeros();
  for (std::size_t i = 0; i < problem.points.size(); ++i) {
    H += (cv::Vec3d(problem.vectors[i].data()) - mean_y) * (cv::Vec3d(problem.points[i].data()) - mean_X).t();
  }
  cv::Matx31d singular_values;
  cv::Matx33d U;
  cv::Matx33d Vt;
  cv::SVD::compute(H, singular_values, U, Vt);
  const double sign = cv::determinant(Vt.t() * U.t()) < 0.0 ? -1.0 : 1.0;
  const cv::Matx33d R = Vt.t() * cv::Matx33d::diag({1.0, 1.0, sign}) * U.t();
  const cv::Vec3d t = mean_X - R * mean_y;
  Vector values(R.val, R.val + 9);
  values.insert(values.end(), t.val, t.val + 3);
  return values;
}

TEST(ClosedFormPose, IsThatOfExactVectors) {
  for (std::uint64_t number = 0; number < 50; ++number) {
    Random random(seed + number);
    const Pose truth = random_pose(random);
    EXPECT_TRUE(
        is_close(closed_form_pose(random_problem(truth, random)), flat(truth.R(), truth.t), tolerance::identity));
  }
}

const std::filesystem::path omni_folder = support::folder_of_set("omni");

/// A row of a pose file: columns 9 to 12 hold the quaternion, 13 to 15 the centre.
Pose pose_of(const Vector& row) { return {{row[8], row[9], row[10], row[11]}, {row[12], row[13], row[14]}}; }

/// Measured bearings, each as long as the reference pose says its point is away.
Problem measured_problem(const Vector& reference_row, const Vector& start_row) {
  const std::string number = std::to_string(static_cast<int>(reference_row[0]));
  Problem problem{{}, {}, pose_of(start_row)};
  for (const Vector& row : support::read_csv(omni_folder / ("obs_0" + number + ".csv"))) {
    problem.points.emplace_back(row.begin(), row.begin() + 3);
    const auto p = camera_frame_vector(pose_of(reference_row), problem.points.back());
    const double depth = std::hypot(p[0], p[1], p[2]);
    problem.vectors.push_back({depth * row[3], depth * row[4], depth * row[5]});
  }
  return problem;
}

TYPED_TEST(BearingRefinement, IsTheClosedFormAlignmentOfMeasuredBearings) {
  const auto references = support::read_csv(omni_folder / "pose_optimal_chord.csv");
  const auto starts = support::read_csv(omni_folder / "pose_start.csv");
  const auto problems = support::read_csv(omni_folder / "problems.csv");
  ASSERT_GE(problems.size(), 2U);
  ASSERT_EQ(references.size(), problems.size());
  ASSERT_EQ(starts.size(), problems.size());
  for (std::size_t i = 0; i < references.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "view " << references[i][0]);
    const Problem problem = measured_problem(references[i], starts[i]);
    ASSERT_EQ(problem.points.size(), 54U);
    EXPECT_TRUE(
        is_close(flat_pose<TypeParam>(refined<TypeParam>(problem, 20)), closed_form_pose(problem), tolerance::solved));
  }
}

}  // namespace
