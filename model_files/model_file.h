// SPDX-License-Identifier: BSD-3-Clause
// A file of a model, read whole, and errors that name a place in it.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

namespace kelvane {

/// What is wrong with a file, and where: "FILE, line 3, column 7: ..." or "FILE, byte 24: ...".
class File_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// All bytes of a file, with a zero behind them.
class Model_file {
 public:
  /// How places are told.
  enum class Kind { text, binary };

  /// Throws File_error where it cannot be read, or changes its size meanwhile.
  Model_file(std::string path, Kind kind);
  /// Of bytes that are in memory already.
  Model_file(std::string name, Kind kind, const char* bytes, std::size_t size);

  const std::string& path() const { return path_; }  ///< as it was given
  Kind kind() const { return kind_; }                ///< as it was given
  /// Of a text, behind its byte order mark.
  const char* begin() const { return bytes_.get() + mark_; }
  /// Behind the last byte, where there is a zero.
  const char* end() const { return bytes_.get() + size_; }
  /// All of it, as it is in the file.
  const char* bytes() const { return bytes_.get(); }
  std::size_t size() const { return size_; }  ///< in bytes

  /// "FILE, line 3, column 7" or "FILE, byte 24", from 1 and 0; columns are characters of UTF-8.
  std::string place(std::size_t offset) const;
  /// Throws File_error about the byte at that offset.
  [[noreturn, gnu::cold, gnu::noinline]] void fail(std::size_t offset, const std::string& sentence) const;

 private:
  void find_mark();

  std::string path_;
  Kind kind_;
  std::size_t size_ = 0;
  std::size_t mark_ = 0;  ///< bytes of it
  std::unique_ptr<char[]> bytes_;
};

}  // namespace kelvane
