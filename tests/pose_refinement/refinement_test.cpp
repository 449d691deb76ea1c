// SPDX-License-Identifier: BSD-3-Clause
// A refinement that is left and taken up again is the same as one in one go.
#include "pose_refinement/refinement.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/refined_problems.h"

namespace {

using kelvane::Deadline;
using kelvane::Loss;
using kelvane::Refine_exit;
using kelvane::Refine_options;
using kelvane::Refine_problem;
using kelvane::Refine_result;
using kelvane::Refinement;

constexpr Deadline long_ago = Deadline::min();

struct Watched {
  Refine_result result;
  std::vector<kelvane::Refine_step> steps;  // as options.watch saw them
};

/// In one go, stopped by options.watch after the entry `last`.
Watched in_one_go(const Refine_problem& problem, Refine_options options, std::size_t last = ~std::size_t{0}) {
  Watched watched;
  options.watch = [&](const kelvane::Refine_step& step, std::size_t number) {
    EXPECT_EQ(number, watched.steps.size());
    watched.steps.push_back(step);
    return number == last;
  };
  watched.result = refine(problem, options);
  return watched;
}

/// Left after every entry and taken up again by another object, which `visit` sees as well.
template <typename Visit>
Refine_result in_parts(const Refine_problem& problem, const Refine_options& options, const Visit& visit) {
  std::vector<double> state;
  for (;;) {
    Refinement refinement(problem, options);
    if (!state.empty()) refinement.resume(state.data(), state.size());
    const bool is_over = refinement.run(long_ago);
    if (visit(refinement) || is_over) return refinement.result();
    state = refinement.state();
  }
}

bool have_same_bits(const kelvane::Refine_step& a, const kelvane::Refine_step& b) {
  Refine_result first;
  Refine_result second;
  first.history = {a};
  second.history = {b};
  return support::have_same_bits(first, second);
}

/// Calls test(problem, options) for all losses and cameras, with and without weights, from far off, with few iterations
/// and from behind a flat target.
template <typename Test>
void for_many_problems(const Test& test) {
  for (std::uint64_t seed = 0; seed < 160; ++seed) {
    SCOPED_TRACE(seed);
    support::Random random(seed);
    const bool sees_directions = seed % 2 == 1;
    auto problem = support::random_scene(random, 4 + seed % 40, sees_directions, sees_directions ? 1e-3 : 1.0);
    if (seed % 3 == 0) problem.start = support::pose_at({0.9, -0.9, 0.5}, {1.5, -1.0, -3.0});
    if (seed % 5 == 0) {
      for (std::size_t i = 2; i < problem.points.size(); i += 3) problem.points[i] = 0.0;
      problem.start.centre[2] = 3.5;
    }
    for (std::size_t i = 0; seed % 7 == 0 && i < problem.points.size() / 3; ++i) {
      problem.weights.push_back(random.uniform(0.1, 3.0));
    }
    Refine_options options;
    options.loss = static_cast<Loss>(seed / 2 % 4);
    if (seed % 11 == 0) options.loss_scale = sees_directions ? 1e-3 : 1.0;
    if (seed % 13 == 0) options.max_iterations = static_cast<int>(seed % 6);
    test(problem.view(), options);
  }
}

/// A descent of the mirrored pose begins with half a turn.
bool is_mirrored(const Refine_result& result) {
  for (const auto& step : result.history) {
    if (step.turn > 3.0) return true;
  }
  return false;
}

TEST(Refinement, LeftAfterEveryStepHasTheBitsOfOneGo) {
  int num_mirrored = 0;
  int num_exits[10] = {};
  for_many_problems([&](const Refine_problem& problem, const Refine_options& options) {
    const Watched expected = in_one_go(problem, options);
    std::size_t num_parts = 0;
    const Refine_result result = in_parts(problem, options, [&](const Refinement& refinement) {
      if (refinement.num_iterations() + 1 == num_parts) return false;  // there may be no more steps
      EXPECT_LT(num_parts, expected.steps.size());
      EXPECT_EQ(refinement.num_iterations(), num_parts);
      EXPECT_TRUE(have_same_bits(refinement.last_step(), expected.steps.at(num_parts)));
      ++num_parts;
      return false;
    });
    EXPECT_EQ(num_parts, expected.steps.size());
    EXPECT_TRUE(support::have_same_bits(result, expected.result)) << result.message;
    EXPECT_TRUE(support::have_same_bits(result, refine(problem, options)));
    num_mirrored += is_mirrored(result) ? 1 : 0;
    ++num_exits[static_cast<int>(result.exit) + 6];
  });
  EXPECT_GE(num_mirrored, 4);
  for (const Refine_exit exit : {Refine_exit::step, Refine_exit::max_iterations, Refine_exit::uphill}) {
    EXPECT_GT(num_exits[static_cast<int>(exit) + 6], 0) << static_cast<int>(exit);
  }
}

/// For whoever has another one make the result, in another process perhaps.
TEST(Refinement, ThatIsOverIsTakenUpForItsResult) {
  int num_mirrored = 0;
  int num_exits[10] = {};
  for_many_problems([&](const Refine_problem& problem, const Refine_options& options) {
    for (const bool is_stopped : {false, true}) {
      Refinement refinement(problem, options);
      refinement.run(is_stopped ? long_ago : Deadline::max());
      refinement.stop();
      const Refine_result expected = refinement.result();
      const std::vector<double> state = refinement.state();
      const bool has_other_tilt = state[7] > 0.0;  // at a scale of its own
      for (std::size_t i = 10; i < state.size() && !has_other_tilt; i += 16) {
        EXPECT_EQ(state[i + 13], state[1]) << "a cost to come";
      }
      Refine_options no_more = options;
      no_more.watch = [](const kelvane::Refine_step&, std::size_t) -> bool { throw std::logic_error("an iteration"); };
      Refinement other(problem, no_more);
      other.resume(state.data(), state.size());
      EXPECT_TRUE(other.run(long_ago));
      EXPECT_TRUE(support::have_same_bits(other.result(), expected)) << expected.message;
      EXPECT_EQ(other.state(), state);
      num_mirrored += is_mirrored(expected) ? 1 : 0;
      ++num_exits[static_cast<int>(expected.exit) + 6];
    }
  });
  EXPECT_GE(num_mirrored, 4);
  for (const Refine_exit exit :
       {Refine_exit::step, Refine_exit::max_iterations, Refine_exit::stopped, Refine_exit::uphill}) {
    EXPECT_GT(num_exits[static_cast<int>(exit) + 6], 0) << static_cast<int>(exit);
  }
}

TEST(Refinement, WithoutACostHasNothingToTakeUp) {
  support::Random random(12);
  auto problem = support::random_scene(random, 12, false, 1.0);
  problem.observations[4] = 1e200;
  const Refine_problem view = problem.view();
  const Refine_options options;
  Refinement refinement(view, options);
  EXPECT_TRUE(refinement.run(long_ago));
  EXPECT_EQ(refinement.result().exit, Refine_exit::no_cost);
  EXPECT_TRUE(refinement.state().empty());
}

TEST(Refinement, StopsAsAWatchDoes) {
  for_many_problems([](const Refine_problem& problem, const Refine_options& options) {
    const Watched whole = in_one_go(problem, options);
    const std::size_t num_steps = whole.steps.size();
    for (const std::size_t last : {std::size_t{0}, std::size_t{2}, num_steps - 1}) {
      SCOPED_TRACE(last);
      const Refine_result result = in_parts(problem, options, [last](Refinement& refinement) {
        if (refinement.num_iterations() == last) refinement.stop();
        return refinement.num_iterations() == last;
      });
      EXPECT_TRUE(support::have_same_bits(result, in_one_go(problem, options, last).result)) << result.message;
      if (last + 1 < num_steps || (last + 1 == num_steps && whole.result.exit == Refine_exit::max_iterations)) {
        EXPECT_LE(static_cast<int>(result.exit), static_cast<int>(Refine_exit::stopped)) << result.message;
      } else if (num_steps <= 101 || result.exit != Refine_exit::stopped) {  // or the other tilt has had its last step
        EXPECT_EQ(result.exit, whole.result.exit);                           // it was over anyway
      }
    }
  });
}

TEST(Refinement, TellsWhatItHasFoundSoFar) {
  support::Random random(5);
  const auto problem = support::random_scene(random, 20, false, 1.0);
  const Refine_problem view = problem.view();
  const Refine_options options;
  Refinement refinement(view, options);
  for (std::size_t k = 0; !refinement.run(long_ago); ++k) {
    const Refine_result result = refinement.result();
    EXPECT_EQ(result.exit, Refine_exit::stopped);
    EXPECT_EQ(result.history.size(), k + 1);
    EXPECT_EQ(result.history.back().shift, refinement.last_step().shift);
    EXPECT_TRUE(support::have_same_bits(result, in_one_go(view, options, k).result));
  }
  EXPECT_GT(static_cast<int>(refinement.result().exit), 0);
  EXPECT_TRUE(refinement.run(long_ago));  // it stays over
}

TEST(Refinement, GoesOnUntilTheDeadline) {
  support::Random random(6);
  const auto problem = support::random_scene(random, 20, false, 1.0);
  const Refine_problem view = problem.view();
  Refine_options options;
  Refinement all(view, options);
  EXPECT_TRUE(all.run(Deadline::max()));
  // An iteration that takes until then is the last one.
  const auto soon = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
  options.watch = [soon](const kelvane::Refine_step&, std::size_t number) {
    while (number == 1 && std::chrono::steady_clock::now() < soon) {
    }
    return false;
  };
  Refinement some(view, options);
  EXPECT_FALSE(some.run(soon));
  EXPECT_LE(some.num_iterations(), 1U);
}

}  // namespace
