// SPDX-License-Identifier: BSD-3-Clause
// Steps where the rank is lost or nearly so, against a reference of more digits and against OpenCV on the whole matrix.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <opencv2/core.hpp>
#include <vector>

#include "camera_pose/pose_system.h"
#include "contract/problem.h"
#include "contract/refinement.h"
#include "support/reference_scenes.h"

namespace {

using reference::Call;
using reference::Real;
using support::Random;

constexpr std::uint64_t seed = 140014;
constexpr double eps = std::numeric_limits<double>::epsilon();
constexpr double longest = 10.0;          // of the reference's step
constexpr double heavy = 1e8;             // weight
constexpr double plain_condition = 1e13;  // beyond, the limit below which a singular value counts as zero is near

double length(const std::vector<double>& v) {
  long double sum = 0.0L;
  for (const double entry : v) sum += static_cast<long double>(entry) * entry;
  return static_cast<double>(std::sqrt(sum));
}

/// One linear problem and its steps.
struct Steps {
  reference::Matrix J;
  reference::Vector b;
  reference::Least_squares expected;
  std::vector<double> own, opencv;

  explicit Steps(const Call& call) {
    const reference::Problem problem = reference::problem_of(call, {});
    const reference::Vector values = reference::weighted(reference::predict(problem, problem.x0), problem);
    J = reference::weighted_jacobian(problem, problem.x0, values);
    b = reference::weighted(problem.target, problem);
    for (std::size_t i = 0; i < b.size(); ++i) b[i] -= values[i];
    expected = reference::least_squares(J, b);
    own = own_step(call);
    opencv = opencv_step();
  }

  double distance_from_expected(const std::vector<double>& step) const {
    std::vector<double> difference;
    for (std::size_t d = 0; d < step.size(); ++d) {
      difference.push_back(static_cast<double>(step[d] - expected.solution[d]));
    }
    return length(difference);
  }

  double expected_length() const { return length({expected.solution.begin(), expected.solution.end()}); }

  /// What the rounding of J, b and a backward stable solution may do: 20 eps (k + k^2 r / (s d)) of the step d.
  double bound() const {
    Real squared_residual = 0.0L;
    Real squared_norm = 0.0L;
    for (std::size_t i = 0; i < J.size(); ++i) {
      const Real residual = reference::dot(J[i], expected.solution) - b[i];
      squared_residual += residual * residual;
      squared_norm += reference::dot(J[i], J[i]);
    }
    if (squared_norm == 0.0L) return 0.0;
    const Real k = expected.condition;
    return static_cast<double>(20.0L * eps *
                               (k * expected_length() + k * k * std::sqrt(squared_residual / squared_norm)));
  }

 private:
  static std::vector<double> own_step(const Call& call) {
    const double one_iteration[] = {0, 0, -1e30, 0};
    const kelvane::Rotation_type& type = *kelvane::find_rotation_type(call.type.value());
    const kelvane::contract::Problem problem({&type, static_cast<int>(call.points.size() / 3), call.parameters.data(),
                                              call.points.data(), call.observations.data(), one_iteration,
                                              call.weights.empty() ? nullptr : call.weights.data()});
    kelvane::Pose_system system(problem.equations(true));
    system.linearise(problem.x0.data(), true);
    std::vector<double> dx(problem.x0.size());
    system.step(dx.data());
    return dx;
  }

  std::vector<double> opencv_step() const {
    cv::Mat matrix(static_cast<int>(J.size()), static_cast<int>(J[0].size()), CV_64F);
    cv::Mat right_hand_side(matrix.rows, 1, CV_64F);
    for (int i = 0; i < matrix.rows; ++i) {
      const auto row = static_cast<std::size_t>(i);
      right_hand_side.at<double>(i) = static_cast<double>(b[row]);
      for (int c = 0; c < matrix.cols; ++c)
        matrix.at<double>(i, c) = static_cast<double>(J[row][static_cast<std::size_t>(c)]);
    }
    cv::Mat dx;
    cv::solve(matrix, right_hand_side, dx, cv::DECOMP_SVD);
    return {dx.ptr<double>(), dx.ptr<double>() + matrix.cols};
  }
};

/// How much nearer to the reference a test's steps are than OpenCV's: the mean of the logarithms.
class Comparison {
 public:
  ~Comparison() {
    if (count_ == 0) return;
    testing::Test::RecordProperty("mean_log10_of_distance_over_opencv", std::to_string(sum_ / count_));
    EXPECT_LE(sum_ / count_, 0.3) << "on the average OpenCV is nearer to the reference by more than a bit";
  }
  void add(double own, double opencv) {
    sum_ += std::log10((own + 1e-17) / (opencv + 1e-17));
    ++count_;
  }

 private:
  double sum_ = 0.0;
  int count_ = 0;
};

/// How many eps times condition times length a step may be off where OpenCV's is nearer: OpenCV is given J from more
/// digits, and here its rows are made of doubles. None where pixels have the condition from a heavy weight, which no
/// rounding of rows follows. Of bearings with heavy equations the Jacobi rotations of OpenCV keep up to four digits
/// more where points are few: there the condition counts.
double num_roundings(const Call& call, const Steps& steps) {
  const bool has_heavy = std::count(call.weights.begin(), call.weights.end(), heavy) > 0;
  if (has_heavy && !reference::rotation_kind(*call.type).is_bearing) return 0.0;
  return steps.expected.rank == steps.own.size() ? 10.0 : 30.0;
}

/// Every step by itself: within a digit of OpenCV's distance, or within that of rounding.
void expect_as_near_as_opencv(const Call& call, const Steps& steps) {
  const double rounding =
      num_roundings(call, steps) * eps * static_cast<double>(steps.expected.condition) * steps.expected_length();
  const double opencv = steps.distance_from_expected(steps.opencv);
  if (!std::isfinite(opencv)) return;
  EXPECT_LE(steps.distance_from_expected(steps.own), std::max(10.0 * opencv, rounding))
      << "rank " << steps.expected.rank << ", condition " << static_cast<double>(steps.expected.condition);
}

/// Whatever the rank: no long step. Where the reference has no doubt about it: the step itself.
void expect_sound(const Call& call, bool is_rank_plain, Comparison& comparison) {
  const Steps steps(call);
  ASSERT_LE(length(steps.own), longest * steps.expected_length()) << "rank " << steps.expected.rank;
  if (!is_rank_plain || steps.expected.condition > plain_condition) return;
  const double distance = steps.distance_from_expected(steps.own);
  EXPECT_LE(distance, steps.bound()) << "rank " << steps.expected.rank << ", condition "
                                     << static_cast<double>(steps.expected.condition);
  expect_as_near_as_opencv(call, steps);
  comparison.add(distance, steps.distance_from_expected(steps.opencv));
}

Call random_call(int type, std::size_t num_points, Random& random) {
  Call call = reference::random_call(type, num_points, random);
  call.stopping = {0, 0, -1e30, 0};
  return call;
}

double* centre(Call& call) { return &call.parameters[reference::rotation_kind(*call.type).rotation_size()]; }

struct Situation {
  const char* name;
  std::function<void(Call&)> arrange;
};

const std::vector<Situation> situations = {
    {"all points equal",
     [](Call& call) {
       for (std::size_t i = 3; i < call.points.size(); ++i) call.points[i] = call.points[i % 3];
     }},
    {"on a line through the centre",
     [](Call& call) {
       const double* t = centre(call);
       const double ray[] = {call.points[0] - t[0], call.points[1] - t[1], call.points[2] - t[2]};
       for (std::size_t i = 0; i < call.points.size(); ++i) {
         const double along = static_cast<double>(i / 3) / static_cast<double>(call.points.size() / 3);
         call.points[i] = t[i % 3] + ray[i % 3] * (1.0 + 0.5 * along);
       }
     }},
    {"weighted to nothing", [](Call& call) { call.weights.assign(reference::num_equations(call), 0.0); }},
    {"four equations left",
     [](Call& call) {
       call.weights.assign(reference::num_equations(call), 0.0);
       for (std::size_t i = 0; i < 4; ++i) call.weights[i] = 1.0;
     }},
    {"two equations of weight 1e8", [](Call& call) {
       call.weights.assign(reference::num_equations(call), 1.0);
       call.weights[0] = call.weights[3] = heavy;
     }}};

class DegenerateSteps : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Types, DegenerateSteps, testing::Values(0, 1, 2, 10, 11, 12, -1, -2, -3));

#ifdef KELVANE_SANITIZED
const std::vector<std::size_t> sizes = {4, 30};
#else
const std::vector<std::size_t> sizes = {4, 30, 3000};
#endif

TEST_P(DegenerateSteps, AreThoseOfTheReferenceWhateverIsLost) {
  Comparison comparison;
  for (const Situation& situation : situations) {
    for (const std::size_t num_points : sizes) {
      const std::uint64_t num_scenes = num_points > 100 ? 1 : 10;
      for (std::uint64_t number = 0; number < num_scenes; ++number) {
        SCOPED_TRACE(testing::Message() << situation.name << ", " << num_points << " points, scene " << number);
        Random random(seed + 1000 * number + num_points);
        Call call = random_call(GetParam(), num_points, random);
        situation.arrange(call);
        expect_sound(call, true, comparison);
      }
    }
  }
}

class StepsNearAFullTurn : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Types, StepsNearAFullTurn, testing::Values(0, 10, -2, 1, 11, -3));

TEST_P(StepsNearAFullTurn, AreNoLongerThanThoseOfTheReference) {
  Comparison comparison;
  for (const double turns : {1.0, 2.0}) {
    for (const double distance : {0.0, 4e-16, 1e-15, 1e-14, 1e-12, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-4, 1e-2}) {
      for (const std::size_t num_points : {4U, 30U, 400U}) {
        SCOPED_TRACE(testing::Message() << turns << " turns and " << distance << ", " << num_points << " points");
        Random random(seed + num_points);
        const reference::Rotation_kind kind = reference::rotation_kind(GetParam());
        std::vector<double> a = random.direction(3);
        a.push_back(2.0 * support::pi * turns * (1.0 + distance));
        Call call = reference::random_call(GetParam(), reference::rotation_entries(kind, a), num_points, random,
                                           {0.0, 0.05, 0.5});
        call.stopping = {0, 0, -1e30, 0};
        expect_sound(call, distance == 0.0 || distance > 1e-13, comparison);
      }
    }
  }
}

}  // namespace
