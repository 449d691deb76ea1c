// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out at any place of an estimation: std::bad_alloc and nothing left behind.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <vector>

#include "mex_host.h"
#include "pose_estimation/estimation.h"
#include "support/estimated_scenes.h"
#include "trust/failing_memory.h"

namespace {

using kelvane::Deadline, kelvane::Estimate_options, kelvane::Estimate_result;
using support::Estimated_scene, support::Shape;

constexpr long too_many = 20000;

Estimated_scene few_points(bool sees_directions) {
  support::Random random(3);
  return random_scene(random, support::camera_of_scene(sees_directions), Shape::volume, 12, 4, 1e-3);
}

class Allocations : public testing::TestWithParam<trust::Shortage> {
 protected:
  /// Calls with the allocation number `count` refused, for every count until none is.
  template <typename Call>
  void refuse_each(const Call& call) {
    call();  // what stays from the first time on
    long count = 0;
    int num_done_without = 0;  // a stable sort does with no memory of its own
    for (; count < too_many; ++count) {
      const trust::Failing_memory memory(count, GetParam());
      mex_host::is_in_module = true;  // so that what is allocated from here on may fail
      bool is_bad_alloc = false;
      try {
        call();
      } catch (const std::bad_alloc&) {
        is_bad_alloc = true;
      }
      mex_host::is_in_module = false;
      EXPECT_EQ(memory.num_blocks_left(), 0) << "allocation " << count;
      if (!memory.has_failed()) break;
      num_done_without += is_bad_alloc ? 0 : 1;
    }
    EXPECT_LE(num_done_without, 1);
    EXPECT_GT(count, 50);
    EXPECT_LT(count, too_many);
  }
};

TEST_P(Allocations, FailInAnEstimate) {
  for (const bool sees_directions : {false, true}) {
    const Estimated_scene scene = few_points(sees_directions);
    for (const unsigned num_threads : {1U, 2U}) {
      Estimate_options options;
      options.num_threads = num_threads;
      refuse_each([&] {
        const Estimate_result result = estimate(scene.view(), options);
        EXPECT_GT(static_cast<int>(result.exit), 0);
      });
    }
  }
}

TEST_P(Allocations, FailInAnEstimationThatIsLeft) {
  const Estimated_scene scene = few_points(false);
  const auto problem = scene.view();
  const Estimate_options options;
  refuse_each([&] {
    kelvane::Estimation first(problem, options);
    first.run(Deadline::min());
    const std::vector<double> state = first.state();
    kelvane::Estimation second(problem, options);
    second.resume(state.data(), state.size());
    second.run(Deadline::max());
    EXPECT_GT(static_cast<int>(second.result().exit), 0);
  });
}

TEST_P(Allocations, FailOnTheWayToASentence) {
  Estimated_scene scene = few_points(false);
  scene.points[3] = 1.0 / 0.0;
  for (long count = 0; count < 20; ++count) {
    const trust::Failing_memory memory(count, GetParam());
    mex_host::is_in_module = true;
    EXPECT_THROW(estimate(scene.view()), std::exception);
    mex_host::is_in_module = false;
    EXPECT_EQ(memory.num_blocks_left(), 0) << "allocation " << count;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Allocations, testing::Values(trust::Shortage::once, trust::Shortage::lasting));

}  // namespace
