// SPDX-License-Identifier: BSD-3-Clause
// The records of a text file, one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "model_files/decimal.h"
#include "model_files/model_file.h"

namespace kelvane {

/// A line of words for each record. Blank lines and comments, which begin with #, lie between them. Each reading
/// function throws File_error where something else stands there.
class Text_source {
 public:
  explicit Text_source(const Model_file& file) : file_(file), at_(file.begin()), end_(at_), next_(at_) {}

  /// To the next record, if there is one.
  bool next_record(std::size_t /*least_bytes*/);
  /// To the very next line, whatever it holds; false at the end of the file.
  bool next_line();
  /// What is told where the record ends too early or too late, "%d" for the number of words from here on.
  void expect(const char* sentence) {
    expected_ = sentence;
    counted_from_ = at_;
  }
  /// Nothing is left in the line.
  void end_record();

  /// Before the next word.
  std::size_t offset() {
    skip_blanks();
    return static_cast<std::size_t>(at_ - file_.bytes());
  }
  /// Whether the record goes on.
  bool has_more() {
    skip_blanks();
    return at_ != end_;
  }

  double number();
  /// From 0 on.
  std::uint64_t whole(std::uint64_t most);
  template <typename T>
  T id() {
    return static_cast<T>(whole(static_cast<T>(-1)));
  }
  std::int64_t signed_whole();
  /// Whether the next word is -1, which is then behind.
  bool skip_minus_one() {
    skip_blanks();
    const bool is_it = at_ != end_ && at_[0] == '-' && at_[1] == '1' && is_end_of_word(at_ + 2);
    if (is_it) at_ += 2;
    return is_it;
  }
  /// Up to the next blank; there must be one.
  std::string word();
  /// All of the line but blanks around it.
  std::string rest_of_line();

  /// Number of records so far.
  std::size_t count() const { return count_; }
  /// Where a comment says how many records there are, another number than count(): the sentence about it, or ''.
  std::string wrong_count() const;

  const Model_file& file() const { return file_; }
  [[noreturn]] void fail(std::size_t offset, const std::string& sentence) const { file_.fail(offset, sentence); }

 private:
  static bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }
  void skip_blanks() {
    while (at_ != end_ && is_blank(*at_)) ++at_;
  }
  bool is_end_of_word(const char* p) const { return p == end_ || is_blank(*p); }
  void read_comment();
  std::size_t words_since_expected() const;
  [[noreturn, gnu::cold, gnu::noinline]] void fail_number(Decimal::Kind kind);
  [[noreturn, gnu::cold, gnu::noinline]] void fail_whole(const std::string& sentence);
  [[noreturn, gnu::cold, gnu::noinline]] void fail_length();

  const Model_file& file_;
  const char *at_, *end_, *next_;  ///< in the line, its end, the next line
  const char* expected_ = "the line ends after %d words.";
  const char* counted_from_ = nullptr;
  std::size_t count_ = 0;
  std::optional<std::uint64_t> announced_;
  std::size_t announced_at_ = 0;
};

/// Where the n-th word behind an offset stands, from 0.
std::size_t offset_of_word(const Model_file& file, std::size_t offset, std::size_t n);

}  // namespace kelvane
