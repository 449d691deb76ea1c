// SPDX-License-Identifier: BSD-3-Clause
// Forward differences as a call makes them, to the last bit of its step.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "camera_pose/point_kernels.h"
#include "contract/problem.h"
#include "contract/refinement.h"
#include "least_squares/small_system.h"
#include "least_squares/triangle.h"
#include "support/cases.h"
#include "support/fake_input.h"

namespace {

using kelvane::contract::Arguments;
using support::Case;

constexpr std::uint64_t seed = 271828;
constexpr std::uint64_t num_cases = 400;
constexpr std::size_t num_points = 8;  // a whole group, so that the rows are all there are

/// A call in finite-difference mode: points before a camera close to the world's axes, and observations that no pose
/// explains.
support::Fake_call random_call(int type, Case& which) {
  const kelvane::Rotation_type& row = *kelvane::find_rotation_type(type);
  std::vector<double> camera = which.random.vector_in_cube(static_cast<std::size_t>(row.num_dimensions()), 0.5);
  if (row.rotation_size() == 4) camera[3] += 1.0;
  for (const double k : row.is_bearing() ? std::vector<double>{1, 0, 0} : std::vector<double>{700, 320, 240}) {
    camera.push_back(k);
  }
  std::vector<double> points;
  std::vector<double> observations;
  for (std::size_t i = 0; i < num_points; ++i) {
    for (const double range : {2.0, 2.0}) points.push_back(which.random.uniform(-range, range));
    points.push_back(which.random.uniform(6.0, 9.0));
    for (int k = 0; k < row.observation_size; ++k) observations.push_back(which.random.uniform(-2.0, 2.0));
  }
  support::Fake_call call(type);
  call.with(1, support::fake_row(camera)).with(2, {3, num_points, points});
  call.with(3, {static_cast<std::size_t>(row.observation_size), num_points, observations});
  return call.with(4, support::fake_row({1, 0, -1e9, 1})).keep(5);
}

/// The published steps.
std::vector<double> steps_of(const kelvane::Rotation_type& type) {
  const bool is_quaternion = type.id == 2 || type.id == 3 || type.id == 12 || type.id == -1;
  std::vector<double> h(static_cast<std::size_t>(type.rotation_size()), is_quaternion ? 0.314 : 0.0314);
  h.insert(h.end(), 3, 0.01);
  return h;
}

/// (f(x + h e_d) - f(x)) / h, column by column, and y - f(x).
struct Differences {
  kelvane::Pose_problem equations;
  kelvane::Piece piece;
  std::vector<double> x0, b;
  std::vector<std::vector<double>> columns;
  bool keeps_a_rounding = false;  // an entry is not what it was when the next one is moved

  /// Each entry is restored by subtraction, or to the bit that it had.
  explicit Differences(const kelvane::contract::Problem& problem, bool by_subtraction = true)
      : equations(problem.equations(false)), piece(equations.data->piece(0)), x0(problem.x0) {
    const std::vector<double> here = prediction(x0);
    const std::size_t m = equations.data->observation_size();
    for (std::size_t row = 0; row < here.size(); ++row)
      b.push_back(piece.observations[m * (row % 8) + row / 8] - here[row]);
    const std::vector<double> h = steps_of(*equations.type);
    std::vector<double> x = x0;
    for (std::size_t d = 0; d < h.size(); ++d) {
      x[d] += h[d];
      columns.push_back(prediction(x));
      for (std::size_t i = 0; i < here.size(); ++i) columns[d][i] = (columns[d][i] - here[i]) * (1.0 / h[d]);
      x[d] = by_subtraction ? x[d] - h[d] : x0[d];
      keeps_a_rounding = keeps_a_rounding || (d + 1 < h.size() && x[d] != x0[d]);
    }
  }

  /// Output by output, the points of each next to each other.
  std::vector<double> prediction(const std::vector<double>& x) const {
    double R[3][3];
    kelvane::predicted_rotation(equations.type->representation, x.data(), R);
    const kelvane::Camera camera = make_camera(equations.intrinsics, R, &x[x.size() - 3]);
    const kelvane::Point_kernels& kernels = kelvane::point_kernels(kelvane::best_instruction_set());
    alignas(kelvane::cache_line) double values[3 * num_points];
    (equations.type->is_bearing() ? kernels.predict_bearings : kernels.predict_pixels)(piece.points, num_points, camera,
                                                                                       values);
    return {values, values + num_points * equations.data->observation_size()};
  }

  /// x0 + dx, the same rows for every block of the type.
  std::vector<double> stepped() const {
    const std::size_t n = columns.size();
    kelvane::Block block;
    block.resize(n);
    kelvane::Triangle triangle;
    triangle.start(n);
    for (std::size_t k = 0; k < equations.num_stacks(); ++k) {
      for (std::size_t c = 0; c < n; ++c) std::copy(columns[c].begin(), columns[c].end(), block.column(c));
      std::copy(b.begin(), b.end(), block.column(n));
      triangle.absorb(block, b.size());
    }
    std::vector<double> x(n);
    kelvane::Small_system().solve_shortest(triangle.entries(), n, b.size() * equations.num_stacks(),
                                           kelvane::Small_system::Units::each, x.data());
    for (std::size_t d = 0; d < n; ++d) x[d] = x0[d] + x[d];
    return x;
  }
};

std::vector<double> refined(const Arguments& arguments) {
  kelvane::contract::Settings settings(arguments);
  settings.max_iters = 1;
  return kelvane::contract::refine(arguments, settings);
}

class DifferenceRows : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(AllTypes, DifferenceRows, testing::Values(0, 1, 2, 3, 10, 11, 12, -1, -2, -3));

TEST_P(DifferenceRows, MakeTheStepThatTheFormulaMakes) {
  for (std::uint64_t number = 0; number < num_cases; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const support::Fake_call call = random_call(GetParam(), which);
    const kelvane::contract::Problem problem(call.check());
    ASSERT_EQ(refined(call.check()), Differences(problem).stepped());
  }
}

TEST_P(DifferenceRows, RestoreEachEntryBySubtraction) {
  int num_told_apart = 0;
  for (std::uint64_t number = 0; number < num_cases; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const support::Fake_call call = random_call(GetParam(), which);
    const kelvane::contract::Problem problem(call.check());
    const Differences by_subtraction(problem);
    if (!by_subtraction.keeps_a_rounding) continue;
    if (Differences(problem, false).stepped() == by_subtraction.stepped()) continue;
    ++num_told_apart;
    EXPECT_NE(refined(call.check()), Differences(problem, false).stepped());
  }
  EXPECT_GT(num_told_apart, 5);
}

TEST_P(DifferenceRows, WouldShowASingleBitInTheStep) {
  int num_seen = 0;
  int num_entries = 0;
  for (std::uint64_t number = 0; number < 5; ++number) {
    Case which(seed, number);
    const support::Fake_call call = random_call(GetParam(), which);
    const kelvane::contract::Problem problem(call.check());
    Differences differed(problem);
    const std::vector<double> expected = differed.stepped();
    for (std::vector<double>& column : differed.columns) {
      for (double& entry : column) {
        const double kept = std::exchange(entry, std::nextafter(entry, std::numeric_limits<double>::infinity()));
        num_seen += differed.stepped() != expected ? 1 : 0;
        ++num_entries;
        entry = kept;
      }
    }
  }
  EXPECT_GT(num_seen, num_entries / 2) << "of " << num_entries << " entries";
}

}  // namespace
