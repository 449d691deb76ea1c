// SPDX-License-Identifier: BSD-3-Clause
// A host process whose locale groups digits and writes a decimal comma, for as long as the object lives.
#pragma once

#include <locale>
#include <string>

namespace support {

class Foreign_locale {
 public:
  Foreign_locale() : previous_(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
  ~Foreign_locale() { std::locale::global(previous_); }
  Foreign_locale(const Foreign_locale&) = delete;
  Foreign_locale& operator=(const Foreign_locale&) = delete;

 private:
  struct Punctuation : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale previous_;
};

}  // namespace support
