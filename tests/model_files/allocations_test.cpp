// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out at any place of reading and writing: std::bad_alloc, the old files, and nothing left behind.
#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "mex_host.h"
#include "model_files/bal_model.h"
#include "model_files/write_poses.h"
#include "support/model_folder.h"
#include "support/read_model.h"
#include "trust/failing_memory.h"

namespace {

constexpr long too_many = 10000;

class Allocations : public testing::TestWithParam<trust::Shortage> {};

/// Calls with the allocation number `count` refused, for every count until none is; then it has to succeed.
long refuse_each(trust::Shortage shortage, const std::function<void()>& call) {
  for (long count = 0; count < too_many; ++count) {
    const trust::Failing_memory memory(count, shortage);
    bool is_bad_alloc = false;
    mex_host::is_in_module = true;  // so that what is allocated from here on may fail
    try {
      call();
    } catch (const std::bad_alloc&) {
      is_bad_alloc = true;
    }
    mex_host::is_in_module = false;
    EXPECT_EQ(is_bad_alloc, memory.has_failed()) << "allocation " << count;
    EXPECT_EQ(memory.num_blocks_left(), 0) << "allocation " << count;
    if (!memory.has_failed()) return count;
  }
  return too_many;
}

TEST_P(Allocations, FailWhileAModelIsRead) {
  for (const support::Files& files :
       {support::small_model_with_frames(), support::binary_of(support::small_model_with_frames())}) {
    const support::Model_folder folder(files);
    const std::string path = folder.path();
    const std::string form = kelvane::colmap_form(path);
    const kelvane::Chosen_images chosen = {{"c.jpg"}, {3}};
    EXPECT_GT(refuse_each(GetParam(), [&] { read_colmap(kelvane::open_colmap(path, form, true), chosen); }), 20);
  }
}

TEST_P(Allocations, FailOnTheWayToASentence) {
  const support::Files files = support::with(support::small_model(), "images.txt", "9 9 -1", "9 9 7");
  const support::Model_folder folder(files);
  EXPECT_GT(refuse_each(GetParam(),
                        [&] {
                          try {
                            read_colmap(kelvane::open_colmap(folder.path(), "txt", true));
                          } catch (const kelvane::File_error&) {
                          }
                        }),
            20);
}

TEST_P(Allocations, FailWhileAModelIsWritten) {
  const support::Files files = support::small_model_with_frames();
  const support::Model_folder folder(files);
  const std::vector<kelvane::Named_pose> poses = {{"c.jpg", {{1, 2, 3, 4}, {5, 6, 7}}}};
  const long count = refuse_each(GetParam(), [&] {
    try {
      write_colmap(folder.path(), folder.path(), poses);
    } catch (const std::bad_alloc&) {
      mex_host::is_in_module = false;
      EXPECT_EQ(folder.files(), files);
      throw;
    }
  });
  EXPECT_GT(count, 20);
  EXPECT_NE(folder.files(), files);
}

TEST_P(Allocations, FailInAFileOfBundleAdjustment) {
  const support::Model_folder folder(support::Files{{"a", "1 1 1\n0 0 1 2\n1 2 3 4 5 6 700 0 0\n7 8 9\n"}});
  EXPECT_GT(refuse_each(GetParam(), [&] { kelvane::write_bal(folder.path("b"), folder.path("a"), {{0, {}}}); }), 5);
}

INSTANTIATE_TEST_SUITE_P(Shortages, Allocations, testing::Values(trust::Shortage::once, trust::Shortage::lasting));

}  // namespace
