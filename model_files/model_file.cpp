// SPDX-License-Identifier: BSD-3-Clause
// Read by the calls of the system: a stream would stop short in silence.
#include "model_files/model_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "model_files/descriptor.h"
#include "model_files/paths.h"

namespace kelvane {
namespace {

/// Up to `size` bytes, fewer only where the file ends.
std::size_t read_some(const Descriptor& file, char* to, std::size_t size, const std::string& path) {
  std::size_t done = 0;
  while (done < size) {
    const auto count = system_calls::read(file.number(), to + done, size - done);
    if (count == 0) break;
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      throw File_error(shown_path(path) + " cannot be read: the device reports an error.");
    }
  }
  return done;
}

}  // namespace

Model_file::Model_file(std::string path, Kind kind) : path_(std::move(path)), kind_(kind) {
  const Descriptor file = Descriptor::for_reading(path_);
  system_calls::Status status{};
  if (!file.is_open() || system_calls::fstat(file.number(), &status) != 0) {
    throw File_error(shown_path(path_) + " cannot be read: there is no such file, or no leave to open it.");
  }
  if (!S_ISREG(status.st_mode)) throw File_error(shown_path(path_) + " cannot be read: it is no ordinary file.");
  size_ = static_cast<std::size_t>(status.st_size);
  bytes_.reset(new char[size_ + 1]);
  if (read_some(file, bytes_.get(), size_, path_) < size_) {
    throw File_error(shown_path(path_) + " became shorter while it was read.");
  }
  char more = 0;
  if (read_some(file, &more, 1, path_) > 0) throw File_error(shown_path(path_) + " became longer while it was read.");
  find_mark();
}

Model_file::Model_file(std::string name, Kind kind, const char* bytes, std::size_t size)
    : path_(std::move(name)), kind_(kind), size_(size), bytes_(new char[size + 1]) {
  std::copy_n(bytes, size, bytes_.get());
  find_mark();
}

void Model_file::find_mark() {
  bytes_[size_] = '\0';
  if (kind_ == Kind::text && size_ >= 3 && std::memcmp(bytes_.get(), "\xEF\xBB\xBF", 3) == 0) mark_ = 3;
}

std::string Model_file::place(std::size_t offset) const {
  const std::string name = shown_path(path_);
  if (kind_ == Kind::binary) return name + ", byte " + std::to_string(offset);
  const char* const at = bytes_.get() + std::min(offset, size_);
  const char* line = begin();
  std::size_t number = 1;
  for (const char* c = line; c < at; ++c) {
    if (*c != '\n') continue;
    ++number;
    line = c + 1;
  }
  const auto column = 1 + std::count_if(line, std::max(line, at), [](char c) { return !is_continuation(c); });
  return name + ", line " + std::to_string(number) + ", column " + std::to_string(column);
}

void Model_file::fail(std::size_t offset, const std::string& sentence) const {
  throw File_error(place(offset) + ": " + sentence);
}

}  // namespace kelvane
