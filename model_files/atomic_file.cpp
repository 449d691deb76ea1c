// SPDX-License-Identifier: BSD-3-Clause
// By the calls of the system, which tell of a full disk.
#include "model_files/atomic_file.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <utility>

#include "model_files/model_file.h"
#include "model_files/paths.h"

namespace kelvane {
namespace {

constexpr std::size_t size_of_buffer = 1U << 16U;

std::string reason_of(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "the disk is full.";
    case EFBIG:
      return "it would be longer than this process may write.";
    case ENOENT:
    case ENOTDIR:
      return "there is no such folder.";
    case EACCES:
    case EPERM:
    case EROFS:
      return "there is no leave to write there.";
    case ENAMETOOLONG:
      return "its name is too long.";
    default:
      return "the system reports error " + std::to_string(error) + ".";
  }
}

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
  throw File_error(shown_path(path) + " cannot be written: " + reason);
}

/// Those of a file that is there, otherwise what the process gives to new ones.
void keep_permissions(const std::string& target, const Descriptor& part) {
  const Descriptor old(system_calls::open(target, O_PATH | O_CLOEXEC));
  system_calls::Status status{};
  if (!old.is_open() || system_calls::fstat(old.number(), &status) != 0) return;
  if (!S_ISREG(status.st_mode)) refuse(target, "it is no ordinary file.");
  if (system_calls::access(target, W_OK) != 0) refuse(target, reason_of(EACCES));
  static_cast<void>(system_calls::fchmod(part.number(), status.st_mode & 07777U));  // some file systems have none
}

}  // namespace

Atomic_file::Atomic_file(const std::string& target) : target_(real_path(target)) {
  static std::atomic<unsigned> number{0};
  const std::size_t slash = target_.rfind('/');
  folder_ = slash == std::string::npos ? "." : target_.substr(0, slash + 1);
  buffer_.reserve(size_of_buffer);
  do {
    part_ = path_in(folder_, ".kelvane-" + std::to_string(::getpid()) + "-" + std::to_string(number++));
    file_ = Descriptor(system_calls::open(part_, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  } while (!file_.is_open() && errno == EEXIST);
  if (!file_.is_open()) {
    part_.clear();
    fail();
  }
  try {
    keep_permissions(target_, file_);
  } catch (...) {
    remove_part();
    throw;
  }
}

Atomic_file::Atomic_file(Atomic_file&& other) noexcept
    : target_(std::move(other.target_)),
      folder_(std::move(other.folder_)),
      part_(std::move(other.part_)),
      file_(std::move(other.file_)),
      buffer_(std::move(other.buffer_)) {
  other.part_.clear();  // nothing is left for it to remove
}

Atomic_file::~Atomic_file() {
  if (!part_.empty()) remove_part();
}

void Atomic_file::remove_part() {
  static_cast<void>(file_.close());  // Windows removes no open file
  static_cast<void>(system_calls::unlink(part_));
}

void Atomic_file::fail() const { refuse(target_, reason_of(errno)); }

void Atomic_file::write(const char* bytes, std::size_t size) {
  while (size > 0) {
    const std::size_t count = std::min(size, size_of_buffer - buffer_.size());
    buffer_.insert(buffer_.end(), bytes, bytes + count);
    bytes += count;
    size -= count;
    if (buffer_.size() == size_of_buffer) flush();
  }
}

void Atomic_file::flush() {
  for (std::size_t done = 0; done < buffer_.size();) {
    const auto count = system_calls::write(file_.number(), buffer_.data() + done, buffer_.size() - done);
    if (count < 0 && errno != EINTR) fail();
    if (count > 0) done += static_cast<std::size_t>(count);
  }
  buffer_.clear();
}

void Atomic_file::finish() {
  flush();
  if (system_calls::fsync(file_.number()) != 0 && errno != EINVAL) fail();
  if (!file_.close()) fail();
}

void Atomic_file::replace_target() {
  if (system_calls::rename(part_, target_) != 0) fail();
  part_.clear();
  // The new name is on the disk as well; where a folder cannot be opened, in a while.
  const Descriptor folder(system_calls::open(folder_, O_RDONLY | O_CLOEXEC));
  if (folder.is_open()) static_cast<void>(system_calls::fsync(folder.number()));
}

void write_whole(const std::string& path, const std::string& text) {
  Atomic_file file(path);
  file.write(text);
  file.finish();
  file.replace_target();
}

}  // namespace kelvane
