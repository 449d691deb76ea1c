// SPDX-License-Identifier: BSD-3-Clause
// A file as a whole, and places in it.
#include "model_files/model_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "support/model_folder.h"

namespace {

std::function<void()> before_reading;  // what somebody else does meanwhile

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the names that the linker gives to a function and its double
extern "C" {
ssize_t __real_read(int file, void* to, size_t size);
ssize_t __wrap_read(int file, void* to, size_t size);
ssize_t __wrap_read(int file, void* to, size_t size) {
  if (before_reading) before_reading();
  before_reading = nullptr;
  return __real_read(file, to, size);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using kelvane::File_error;
using kelvane::Model_file;
using support::Model_folder;

std::string message_of(const std::function<void()>& call) {
  try {
    call();
  } catch (const File_error& error) {
    return error.what();
  }
  return {};
}

std::string message_of_reading(const std::string& path) {
  return message_of([&] { Model_file(path, Model_file::Kind::text); });
}

TEST(ModelFile, HoldsAllBytes) {
  const std::string bytes("a\0b\n", 4);
  const Model_folder folder(support::Files{{"file", bytes}});
  const Model_file file(folder.path("file"), Model_file::Kind::binary);
  EXPECT_EQ(std::string(file.begin(), file.end()), bytes);
  EXPECT_EQ(*file.end(), '\0');
}

TEST(ModelFile, SkipsTheMarkOfATextOnly) {
  const Model_folder folder(support::Files{{"file", "\xEF\xBB\xBFx"}});
  const Model_file text(folder.path("file"), Model_file::Kind::text);
  EXPECT_EQ(std::string(text.begin(), text.end()), "x");
  EXPECT_EQ(text.size(), 4U);
  EXPECT_EQ(text.place(3), folder.path("file") + ", line 1, column 1");
  const Model_file binary(folder.path("file"), Model_file::Kind::binary);
  EXPECT_EQ(binary.end() - binary.begin(), 4);
}

TEST(ModelFile, RefusesAFileThatShrinksOrGrowsMeanwhile) {
  const Model_folder folder(support::Files{{"file", std::string(1000, 'x')}});
  before_reading = [&] { ASSERT_EQ(::truncate(folder.path("file").c_str(), 999), 0); };
  EXPECT_EQ(message_of_reading(folder.path("file")), folder.path("file") + " became shorter while it was read.");
  before_reading = [&] { folder.write("file", std::string(1001, 'x')); };
  EXPECT_EQ(message_of_reading(folder.path("file")), folder.path("file") + " became longer while it was read.");
  EXPECT_EQ(message_of_reading(folder.path("file")), "");
}

TEST(ModelFile, RefusesWhatIsNoFile) {
  const Model_folder folder;
  EXPECT_EQ(message_of_reading(folder.path("none")),
            folder.path("none") + " cannot be read: there is no such file, or no leave to open it.");
  EXPECT_EQ(message_of_reading(folder.path()), folder.path() + " cannot be read: it is no ordinary file.");
  ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);  // nobody writes: it must not wait
  EXPECT_EQ(message_of_reading(folder.path("pipe")), folder.path("pipe") + " cannot be read: it is no ordinary file.");
  EXPECT_EQ(message_of_reading("/dev/zero"), "/dev/zero cannot be read: it is no ordinary file.");
}

TEST(ModelFile, CountsLinesAndCharacters) {
  const std::string bytes = "ab\n\xC3\xA4\xE2\x82\xAC z\n";
  const Model_file file("FILE", Model_file::Kind::text, bytes.data(), bytes.size());
  EXPECT_EQ(file.place(0), "FILE, line 1, column 1");
  EXPECT_EQ(file.place(2), "FILE, line 1, column 3");
  EXPECT_EQ(file.place(3), "FILE, line 2, column 1");
  EXPECT_EQ(file.place(bytes.find('z')), "FILE, line 2, column 4");
  EXPECT_EQ(file.place(bytes.size()), "FILE, line 3, column 1");
  EXPECT_EQ(message_of([&] { file.fail(2, "no."); }), "FILE, line 1, column 3: no.");
  const Model_file binary("FILE", Model_file::Kind::binary, bytes.data(), bytes.size());
  EXPECT_EQ(message_of([&] { binary.fail(7, "no."); }), "FILE, byte 7: no.");
}

}  // namespace
