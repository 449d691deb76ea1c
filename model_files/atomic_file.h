// SPDX-License-Identifier: BSD-3-Clause
// Files that are written whole or not at all.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model_files/descriptor.h"

namespace kelvane {

/// A file under a name of its own beside its target, which it replaces at the end. A link is followed, and the new file
/// has the old one's permissions. Each function throws File_error, and the target is as it was.
class Atomic_file {
 public:
  explicit Atomic_file(const std::string& target);
  Atomic_file(Atomic_file&& other) noexcept;
  Atomic_file& operator=(Atomic_file&& other) = delete;
  Atomic_file(const Atomic_file&) = delete;
  Atomic_file& operator=(const Atomic_file&) = delete;
  /// Removes what has not replaced its target.
  ~Atomic_file();

  void write(const char* bytes, std::size_t size);
  void write(const std::string& text) { write(text.data(), text.size()); }
  /// Waits until all of it is on the disk.
  void finish();
  /// Takes the target's place.
  void replace_target();

 private:
  void flush();
  void remove_part();
  [[noreturn]] void fail() const;

  std::string target_, folder_, part_;
  Descriptor file_;
  std::vector<char> buffer_;
};

/// A file with this text.
void write_whole(const std::string& path, const std::string& text);

}  // namespace kelvane
