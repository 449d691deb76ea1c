// SPDX-License-Identifier: BSD-3-Clause
// What a door learns of a mistake, to tell it in its own words.
#include "pose_refinement/bad_argument.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include "pose_refinement/refine.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Bad_argument;
using Where = Bad_argument::Where;
using support::Refined_problem;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// What refine() throws for a good problem after a change.
std::optional<Bad_argument> thrown_for(bool sees_directions, const std::function<void(Refined_problem&)>& change) {
  support::Random random(1);
  Refined_problem problem = support::random_scene(random, 10, sees_directions, 0.0);
  change(problem);
  try {
    refine(problem.view());
  } catch (const Bad_argument& error) {
    return error;
  }
  return {};
}

void expect(const std::optional<Bad_argument>& error, const char* identifier, const char* name, Where where,
            std::size_t number, const char* sentence) {
  ASSERT_TRUE(error.has_value()) << sentence;
  EXPECT_STREQ(error->identifier(), identifier);
  EXPECT_EQ(error->name(), name);
  EXPECT_EQ(error->where(), where);
  EXPECT_EQ(error->number(), number);
  EXPECT_EQ(error->sentence(), sentence);
}

TEST(BadArgument, NamesAnEntry) {
  expect(thrown_for(false, [](auto& p) { p.points[7] = infinity; }), "notFinite", "points", Where::entry, 7,
         " is Inf. All of it must be finite numbers.");
  expect(thrown_for(true, [](auto& p) { p.observations[29] = -infinity; }), "notFinite", "observations", Where::entry,
         29, " is -Inf. NaN is for what was not seen.");
  expect(thrown_for(false, [](auto& p) { p.weights.assign(20, 1.0), p.weights[13] = nan; }), "notFinite", "weights",
         Where::entry, 13, " is NaN. All of it must be finite numbers.");
  expect(thrown_for(false, [](auto& p) { p.weights.assign(10, 1.0), p.weights[8] = nan; }), "notFinite", "weights",
         Where::entry, 8, " is NaN. All of it must be finite numbers.");
  expect(thrown_for(false, [](auto& p) { p.start.rotation[1][2] = nan; }), "notFinite", "pose.rotation", Where::entry,
         5, " is NaN. All of it must be finite numbers.");
}

TEST(BadArgument, NamesAPoint) {
  const auto error = thrown_for(true, [](auto& p) {
    p.observations[9] = p.observations[10] = 0.0;
    p.observations[11] = 3.14e-301;
  });
  expect(error, "zeroBearing", "observations", Where::point, 3,
         " has the length 3.1e-301: a bearing needs a direction.");
  EXPECT_STREQ(error->what(), "observation of point 3 has the length 3.1e-301: a bearing needs a direction.");
  EXPECT_FALSE(thrown_for(true, [](auto& p) {  // too short in each coordinate, but not in all
    p.observations[9] = p.observations[10] = p.observations[11] = 0.9e-10;
  }));
}

TEST(BadArgument, NamesAWhole) {
  expect(thrown_for(false, [](auto& p) { p.weights.assign(20, 1.0), p.weights[13] = -1e-7; }), "negativeWeight",
         "weights", Where::whole, 0, " must not be negative; the least is -1e-07.");
  expect(thrown_for(false, [](auto& p) { p.points.pop_back(); }), "size", "points", Where::whole, 0,
         ": 29 numbers are no multiple of 3.");
  expect(thrown_for(false, [](auto& p) { p.weights.assign(10, 0.0); }), "tooFewPoints", "", Where::whole, 0,
         "Three points with a weight above 0 and an observation are the least that determine a pose; there are 0.");
  expect(thrown_for(false, [](auto& p) { p.camera.fx = 0.0; }), "intrinsics", "", Where::whole, 0,
         "A focal length of 0 sees everything in one place.");
  expect(thrown_for(false, [](auto& p) { p.start.rotation[0][0] += 2e-5 / p.start.rotation[0][0]; }), "notRotation",
         "pose.rotation", Where::whole, 0,
         " is not a rotation: R' * R differs from the identity by 4e-05. A scale must be divided out first.");
  expect(thrown_for(false,
                    [](auto& p) {
                      for (double& entry : p.start.rotation[2]) entry = -entry;
                    }),
         "leftHanded", "pose.rotation", Where::whole, 0,
         " has the determinant -1: it mirrors. Both frames must be right-handed; negate the axis that points the other "
         "way.");
}

}  // namespace
