// SPDX-License-Identifier: BSD-3-Clause
// What comes nearest to the calls of POSIX.
#pragma once

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

namespace kelvane {

inline constexpr int O_CLOEXEC = _O_NOINHERIT | _O_BINARY;  // all files are bytes
inline constexpr int O_NONBLOCK = 0;                        // nothing waits there
inline constexpr int O_NOCTTY = 0;
inline constexpr int O_PATH = 0;
inline constexpr int EDQUOT = INT_MAX;  // there is no such error

namespace system_calls {

using Status = struct _stat64;

/// Empty, the name of nothing, where the bytes are no UTF-8.
inline std::filesystem::path name(const std::string& path) {
  try {
    return std::filesystem::u8path(path);
  } catch (const std::filesystem::filesystem_error&) {
    return {};
  }
}

inline unsigned in_one_call(std::size_t size) { return static_cast<unsigned>(std::min<std::size_t>(size, INT_MAX)); }

inline int open(const std::string& path, int flags, int mode = 0) { return ::_wopen(name(path).c_str(), flags, mode); }
inline int fstat(int file, Status* status) { return ::_fstat64(file, status); }
inline int fchmod(int /*file*/, unsigned /*mode*/) { return 0; }
inline int fsync(int file) { return ::_commit(file); }
inline int read(int file, void* to, std::size_t size) { return ::_read(file, to, in_one_call(size)); }
inline int write(int file, const void* bytes, std::size_t size) { return ::_write(file, bytes, in_one_call(size)); }
inline int access(const std::string& path, int mode) { return ::_waccess(name(path).c_str(), mode); }
inline int unlink(const std::string& path) { return ::_wunlink(name(path).c_str()); }

inline int rename(const std::string& from, const std::string& to) {
  std::error_code error;
  std::filesystem::rename(name(from), name(to), error);
  if (error) errno = error.default_error_condition().value();
  return error ? -1 : 0;
}

/// With slashes, and also of what is not there.
inline char* realpath(const std::string& path) {
  std::error_code error;
  const auto real = std::filesystem::weakly_canonical(name(path), error);
  return error ? nullptr : ::_strdup(real.generic_u8string().c_str());
}

}  // namespace system_calls
}  // namespace kelvane
