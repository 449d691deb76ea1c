// SPDX-License-Identifier: BSD-3-Clause
// Decimal numbers to the nearest double and back, whatever the locale.
#pragma once

#include <string>

namespace kelvane {

/// A number at the beginning of a text.
struct Decimal {
  enum class Kind {
    number,
    malformed,   ///< no number begins here, or its exponent has no digits
    not_finite,  ///< beyond the largest double
    too_small    ///< not zero, and below the least double of full precision
  };
  Kind kind;
  double value;
  const char* end;  ///< behind its last character
};

/// [+-] digits [. digits] [e [+-] digits], with a digit before or behind the point. What follows is the caller's to
/// judge; a zero must end the text. Rounded to the nearest double, ties to even.
Decimal read_decimal(const char* text);

/// 17 digits, which read back to the same double.
std::string text_of_decimal(double value);

}  // namespace kelvane
