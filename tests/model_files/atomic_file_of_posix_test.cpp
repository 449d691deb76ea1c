// SPDX-License-Identifier: BSD-3-Clause
// Files that are whole or as they were: with permissions and links, on a full disk, at a limit, after a kill.
#include "model_files/atomic_file.h"

#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <set>

#include "model_files/model_file.h"
#include "model_files/write_poses.h"
#include "support/model_folder.h"
#include "support/read_model.h"

namespace {

using kelvane::Atomic_file;
using kelvane::File_error;
using support::Files;
using support::Model_folder;

std::string message_of_writing(const std::string& path, const std::string& text) {
  try {
    kelvane::write_whole(path, text);
  } catch (const File_error& error) {
    return error.what();
  }
  return {};
}

std::string long_text() { return std::string(300000, 'x') + "end"; }

TEST(AtomicFileOfPosix, KeepsPermissionsAndFollowsLinks) {
  const Model_folder folder(support::Files{{"a", "old"}});
  ASSERT_EQ(::chmod(folder.path("a").c_str(), 0640), 0);
  ASSERT_EQ(::symlink("a", folder.path("link").c_str()), 0);
  kelvane::write_whole(folder.path("link"), "new");
  EXPECT_EQ(support::bytes_of(folder.path("a")), "new");
  struct stat status {};
  ASSERT_EQ(::lstat(folder.path("link").c_str(), &status), 0);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
  ASSERT_EQ(::stat(folder.path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST(AtomicFileOfPosix, RefusesWhatCannotBeReplaced) {
  const Model_folder folder;
  EXPECT_EQ(message_of_writing(folder.path("none/a"), ""),
            folder.path("none/a") + " cannot be written: there is no such folder.");
  EXPECT_EQ(message_of_writing(folder.path(), ""), folder.path() + " cannot be written: it is no ordinary file.");
  ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(message_of_writing(folder.path("pipe"), ""),
            folder.path("pipe") + " cannot be written: it is no ordinary file.");
  const std::string name(300, 'x');
  EXPECT_EQ(message_of_writing(folder.path(name), ""), folder.path(name) + " cannot be written: its name is too long.");
  ASSERT_EQ(::unlink(folder.path("pipe").c_str()), 0);
  EXPECT_TRUE(folder.files().empty());
}

/// In a child, whose limits and signals are its own.
template <typename Do>
int status_of_child(const Do& run) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(run() ? 0 : 1);
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status;
}

TEST(AtomicFileOfPosix, LeavesTheOldOneAtTheLimitOfAProcess) {
  const Model_folder folder(support::Files{{"a", "old"}});
  EXPECT_EQ(status_of_child([&] {
              std::signal(SIGXFSZ, SIG_IGN);
              const rlimit limit = {100000, 100000};
              ::setrlimit(RLIMIT_FSIZE, &limit);
              return message_of_writing(folder.path("a"), long_text()) ==
                     folder.path("a") + " cannot be written: it would be longer than this process may write.";
            }),
            0);
  EXPECT_EQ(folder.files(), (Files{{"a", "old"}}));
}

TEST(AtomicFileOfPosix, LeavesTheOldOneWhenTheProcessIsKilled) {
  const Model_folder folder(support::Files{{"a", "old"}});
  const int status = status_of_child([&] {
    Atomic_file file(folder.path("a"));
    file.write(long_text());
    return ::raise(SIGKILL) != 0;
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(support::bytes_of(folder.path("a")), "old");
}

/// A model on a disk that its copy does not fit beside: every file of it is as it was.
TEST(AtomicFileOfPosix, LeavesAWholeModelOnAFullDisk) {
  const Model_folder disk;
  if (::mount("tmpfs", disk.path().c_str(), "tmpfs", 0, "size=64k") != 0) GTEST_SKIP() << "no leave to mount a disk";
  Files files = support::small_model_with_frames();
  files["images.txt"] += "# " + std::string(20000, 'x') + "\n";
  for (const auto& [name, bytes] : files) disk.write(name, bytes);
  const std::vector<kelvane::Named_pose> poses = {{"c.jpg", {{1, 2, 3, 4}, {5, 6, 7}}}};
  std::set<std::string> full;
  for (std::size_t size = 4096; size < 65536; size += 4096) {
    for (const auto& [name, bytes] : files) disk.write(name, bytes);
    try {
      disk.write("filler", std::string(size, 'x'));
      write_colmap(disk.path(), disk.path(), poses);
    } catch (const File_error& error) {
      full.insert(error.what());
      files["filler"] = std::string(size, 'x');
      EXPECT_EQ(disk.files(), files);
      files.erase("filler");
    } catch (const std::runtime_error&) {  // no room for the filler
    }
  }
  // The second file does not fit, then the first does not.
  EXPECT_EQ(full, (std::set<std::string>{disk.path("frames.txt") + " cannot be written: the disk is full.",
                                         disk.path("images.txt") + " cannot be written: the disk is full."}));
  EXPECT_EQ(::umount(disk.path().c_str()), 0);
}

}  // namespace
