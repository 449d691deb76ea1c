// SPDX-License-Identifier: BSD-3-Clause
// Files that are whole or as they were, on every system.
#include "model_files/atomic_file.h"

#include "model_files/model_file.h"
#include "support/model_folder.h"

namespace {

using kelvane::Atomic_file;
using support::Files;
using support::Model_folder;

std::string long_text() { return std::string(300000, 'x') + "end"; }

TEST(AtomicFile, HoldsAllThatWasWritten) {
  const Model_folder folder;
  kelvane::write_whole(folder.path("a"), long_text());
  EXPECT_EQ(folder.files(), (Files{{"a", long_text()}}));
  kelvane::write_whole(folder.path("a"), "");
  EXPECT_EQ(folder.files(), (Files{{"a", ""}}));
}

TEST(AtomicFile, LeavesTheOldOneUntilTheEnd) {
  const Model_folder folder(support::Files{{"a", "old"}});
  {
    Atomic_file file(folder.path("a"));
    file.write(long_text());
    file.finish();
    EXPECT_EQ(support::bytes_of(folder.path("a")), "old");
  }
  EXPECT_EQ(folder.files(), (Files{{"a", "old"}}));  // nothing beside it either
}

TEST(AtomicFile, HasItsNameInUtf8) {
  const Model_folder folder;
  const std::string name = "\xC3\xA4\xE2\x82\xAC";
  for (const std::string text : {"one", "two"}) {
    kelvane::write_whole(folder.path(name), text);
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::u8path(folder.path(name))));
    EXPECT_EQ(kelvane::Model_file(folder.path(name), kelvane::Model_file::Kind::text).begin(), text);
  }
}

}  // namespace
