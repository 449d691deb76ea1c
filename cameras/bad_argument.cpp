// SPDX-License-Identifier: BSD-3-Clause
// Sentences in the words of C++.
#include "cameras/bad_argument.h"

#include <cmath>
#include <cstdio>

namespace kelvane {
namespace {

std::string place(const std::string& name, Bad_argument::Where where, std::size_t number) {
  if (where == Bad_argument::Where::whole) return name;
  if (where == Bad_argument::Where::entry) return name + "[" + std::to_string(number) + "]";
  return name.substr(0, name.size() - 1) + " of point " + std::to_string(number);  // one of many: without the s
}

}  // namespace

Bad_argument::Bad_argument(const char* identifier, const std::string& name, const std::string& sentence)
    : Bad_argument(identifier, name, Where::whole, 0, sentence) {}

Bad_argument::Bad_argument(const char* identifier, const std::string& name, Where where, std::size_t number,
                           const std::string& sentence)
    : std::invalid_argument(place(name, where, number) + sentence),
      identifier_(identifier),
      name_(name),
      where_(where),
      number_(number),
      sentence_(sentence) {}

std::string text_of(double value, int num_digits) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0.0 ? "Inf" : "-Inf";
  char digits[32];
  static_cast<void>(std::snprintf(digits, sizeof digits, "%.*g", num_digits, value));
  return digits;
}

void refuse_not_finite(const char* name, std::size_t number, double value) {
  throw Bad_argument("notFinite", name, Bad_argument::Where::entry, number,
                     " is " + text_of(value) + ". All of it must be finite numbers.");
}

}  // namespace kelvane
