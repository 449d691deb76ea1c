// SPDX-License-Identifier: BSD-3-Clause
// The system's calls for files, by their names in UTF-8. On POSIX they are those of the same names.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef _WIN32

#include "model_files/system_calls_of_windows.h"

#else

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace kelvane::system_calls {

using Status = struct stat;

inline int open(const std::string& path, int flags, mode_t mode = 0) { return ::open(path.c_str(), flags, mode); }
inline int fstat(int file, Status* status) { return ::fstat(file, status); }
inline int fchmod(int file, mode_t mode) { return ::fchmod(file, mode); }
inline int fsync(int file) { return ::fsync(file); }
inline ssize_t read(int file, void* to, std::size_t size) { return ::read(file, to, size); }
inline ssize_t write(int file, const void* bytes, std::size_t size) { return ::write(file, bytes, size); }
inline int access(const std::string& path, int mode) { return ::access(path.c_str(), mode); }
inline int unlink(const std::string& path) { return ::unlink(path.c_str()); }
inline int rename(const std::string& from, const std::string& to) { return std::rename(from.c_str(), to.c_str()); }
/// Of the heap.
inline char* realpath(const std::string& path) { return ::realpath(path.c_str(), nullptr); }

}  // namespace kelvane::system_calls

#endif
