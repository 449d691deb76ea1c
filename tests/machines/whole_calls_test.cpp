// SPDX-License-Identifier: BSD-3-Clause
// Whole calls give the same result on every processor and system but for the last digits, which come from the C
// library's sines. whole_calls.csv was written under Linux on an x86; a row that fails shows the one to put there.
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "contract/refinement.h"
#include "pose_estimation/estimate.h"
#include "support/fake_input.h"
#include "support/matchers.h"
#include "support/refined_problems.h"

namespace {

using support::Measured_problem, support::Refined_problem;
using Row = std::vector<double>;

constexpr double same_digits = 1e-13;

/// One call of the published function, from the start of a measured problem.
Row refined_by_type(int type, const Measured_problem& problem, const Refined_problem& directions) {
  const kelvane::Rotation_type& row = *kelvane::find_rotation_type(type);
  const auto num_points = static_cast<std::size_t>(problem.num_points);
  const auto d = static_cast<std::size_t>(row.observation_size);
  std::vector<double> camera = problem.start.search_vector(row.representation);
  camera.insert(camera.end(), {d == 3 ? 1.0 : problem.f, d == 3 ? 0.0 : problem.cx, d == 3 ? 0.0 : problem.cy});
  support::Fake_call inputs(type, num_points);
  inputs.with(1, support::fake_row(camera)).with(2, {3, num_points, problem.points});
  inputs.with(3, {d, num_points, d == 3 ? directions.observations : problem.observations});
  inputs.with(4, support::fake_row({0, 0, -1e9, 0})).keep(5);
  return kelvane::contract::refine(inputs.check(), kelvane::contract::Settings(inputs.check()));
}

/// All that is compared, in the order of the file.
std::vector<Row> results() {
  std::vector<Row> rows;
  for (const Measured_problem& problem : support::read_pixel_set(KELVANE_PROJECT_FOLDER "/examples/data/chessboard")) {
    if (problem.id > 2) break;
    const Refined_problem directions = support::measured_problem("chessboard", problem.id, true);
    const Refined_problem pixels = support::measured_problem("chessboard", problem.id, false);
    for (const int type : {0, 1, 2, 3, 10, 11, 12, -1, -2, -3}) {
      rows.push_back(refined_by_type(type, problem, directions));
    }
    for (const Refined_problem* scene : {&pixels, &directions}) {
      for (const auto loss : {kelvane::Loss::none, kelvane::Loss::huber, kelvane::Loss::cauchy, kelvane::Loss::tukey}) {
        kelvane::Refine_options options;
        options.loss = loss;
        options.loss_scale = scene == &pixels ? 0.5 : 0.001;
        rows.push_back(support::numbers_of(refine(scene->view(), options).pose));
      }
      rows.push_back(support::numbers_of(kelvane::estimate({scene->points, scene->observations, scene->camera}).pose));
    }
  }
  return rows;
}

std::string text_of(const Row& row) {
  std::ostringstream text;
  text << std::setprecision(17);
  for (std::size_t i = 0; i < row.size(); ++i) text << (i == 0 ? "" : ",") << row[i];
  return text.str();
}

TEST(WholeCallsOnEveryMachine, AgreeToTheLastDigits) {
  const std::vector<Row> expected = support::read_csv(KELVANE_PROJECT_FOLDER "/tests/machines/whole_calls.csv");
  const std::vector<Row> found = results();
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_TRUE(support::is_close(found[i], expected[i], same_digits)) << "line " << i + 2 << "\n" << text_of(found[i]);
  }
}

}  // namespace
