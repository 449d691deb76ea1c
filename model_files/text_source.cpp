// SPDX-License-Identifier: BSD-3-Clause
// Word by word.
#include "model_files/text_source.h"
#include "model_files/paths.h"

#include <algorithm>
#include <cstring>

namespace kelvane {
namespace {

/// Whether a word stands for a number that is none.
bool is_infinite_or_nan(std::string word) {
  if (!word.empty() && (word[0] == '+' || word[0] == '-')) word.erase(0, 1);
  for (char& c : word) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return word == "nan" || word == "inf" || word == "infinity" || word.rfind("nan(", 0) == 0;
}

}  // namespace

bool Text_source::next_line() {
  if (next_ == file_.end()) return false;
  at_ = next_;
  const auto* line_end = static_cast<const char*>(std::memchr(at_, '\n', static_cast<std::size_t>(file_.end() - at_)));
  end_ = line_end == nullptr ? file_.end() : line_end;
  next_ = line_end == nullptr ? end_ : end_ + 1;
  return true;
}

bool Text_source::next_record(std::size_t /*least_bytes*/) {
  while (next_line()) {
    skip_blanks();
    if (at_ == end_) continue;
    if (*at_ != '#') {
      ++count_;
      return true;
    }
    read_comment();
  }
  return false;
}

/// "# Number of images: 12, ..."
void Text_source::read_comment() {
  constexpr char words[] = "Number of ";
  const char* const found = std::search(at_, end_, std::begin(words), std::end(words) - 1);
  const char* digits = std::find(found, end_, ':');
  if (digits == end_ || announced_) return;
  ++digits;
  while (digits != end_ && is_blank(*digits)) ++digits;
  std::uint64_t value = 0;
  const char* p = digits;
  for (; p != end_ && *p >= '0' && *p <= '9' && p - digits < 18; ++p) {
    value = 10 * value + static_cast<std::uint64_t>(*p - '0');
  }
  if (p == digits) return;
  announced_ = value;
  announced_at_ = static_cast<std::size_t>(digits - file_.bytes());
}

std::string Text_source::wrong_count() const {
  if (!announced_ || *announced_ == count_) return {};
  return file_.place(announced_at_) + ": the comment counts " + std::to_string(*announced_) + "; there are " +
         std::to_string(count_) + ".";
}

void Text_source::end_record() {
  if (!has_more()) return;
  static_cast<void>(number());  // or it tells that this is none
  fail_length();
}

double Text_source::number() {
  skip_blanks();
  const Decimal decimal = read_decimal(at_);
  if (decimal.kind != Decimal::Kind::number || !is_end_of_word(decimal.end)) {
    fail_number(is_end_of_word(decimal.end) ? decimal.kind : Decimal::Kind::malformed);
  }
  at_ = decimal.end;
  return decimal.value;
}

std::uint64_t Text_source::whole(std::uint64_t most) {
  skip_blanks();
  std::uint64_t value = 0;
  const char* p = at_;
  for (; p != end_ && *p >= '0' && *p <= '9'; ++p) {
    const auto digit = static_cast<std::uint64_t>(*p - '0');
    if (digit > most || value > (most - digit) / 10)
      fail_whole("' is not a whole number from 0 to " + std::to_string(most) + ".");
    value = 10 * value + digit;
  }
  if (p == at_ || !is_end_of_word(p)) fail_whole("' is not a whole number from 0 to " + std::to_string(most) + ".");
  at_ = p;
  return value;
}

std::int64_t Text_source::signed_whole() {
  skip_blanks();
  if (at_ == end_ || *at_ != '-') return static_cast<std::int64_t>(whole(INT64_MAX));
  ++at_;
  if (at_ == end_ || *at_ < '0' || *at_ > '9') {
    --at_;
    fail_whole("' is not a whole number of 64 bits.");
  }
  return -static_cast<std::int64_t>(whole(INT64_MAX));
}

std::string Text_source::word() {
  if (!has_more()) fail_length();
  const char* const first = at_;
  while (!is_end_of_word(at_)) ++at_;
  return {first, at_};
}

std::string Text_source::rest_of_line() {
  skip_blanks();
  const char* last = end_;
  while (last != at_ && is_blank(last[-1])) --last;
  std::string rest(at_, last);
  at_ = end_;
  return rest;
}

std::size_t Text_source::words_since_expected() const {
  std::size_t count = 0;
  for (const char* p = counted_from_ == nullptr ? at_ : counted_from_; p < end_; ++p) {
    if (!is_blank(*p) && is_end_of_word(p + 1)) ++count;
  }
  return count;
}

void Text_source::fail_length() {
  std::string sentence = expected_;
  const std::size_t mark = sentence.find("%d");
  if (mark != std::string::npos) sentence.replace(mark, 2, std::to_string(words_since_expected()));
  fail(static_cast<std::size_t>(end_ - file_.bytes()), sentence);
}

void Text_source::fail_number(Decimal::Kind kind) {
  if (!has_more()) fail_length();
  const std::size_t at = offset();
  const std::string wrong = word();
  const std::string quoted = "'" + shown(wrong) + "'";
  if (kind == Decimal::Kind::not_finite || is_infinite_or_nan(wrong)) fail(at, quoted + " is not a finite number.");
  if (kind == Decimal::Kind::too_small) fail(at, quoted + " is below 2.2e-308: too small for a measurement.");
  fail(at, quoted + " is not a number.");
}

void Text_source::fail_whole(const std::string& sentence) {
  if (!has_more()) fail_length();
  const std::size_t at = offset();
  const Decimal decimal = read_decimal(at_);
  if (decimal.kind != Decimal::Kind::number || !is_end_of_word(decimal.end)) {
    fail_number(is_end_of_word(decimal.end) ? decimal.kind : Decimal::Kind::malformed);
  }
  fail(at, "'" + shown(word()) + sentence);
}

std::size_t offset_of_word(const Model_file& file, std::size_t offset, std::size_t n) {
  constexpr char blanks[] = " \t\r\n\v\f";
  const char* p = file.bytes() + offset;
  const auto is_in = [&](char c) { return c != '\0' && std::strchr(blanks, c) != nullptr; };
  for (std::size_t k = 0;; ++k) {
    while (p != file.end() && is_in(*p)) ++p;
    if (k == n || p == file.end()) return static_cast<std::size_t>(p - file.bytes());
    while (p != file.end() && !is_in(*p)) ++p;
  }
}

}  // namespace kelvane
