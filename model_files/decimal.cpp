// SPDX-License-Identifier: BSD-3-Clause
// Up to 19 digits by one division of whole numbers, which is exact before it is rounded; the rest by the C library.
#include "model_files/decimal.h"

#include <locale.h>

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace kelvane {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr int most_digits = 19;  // that a 64-bit number holds, whichever they are
constexpr std::uint64_t powers[most_digits + 1] = {1ULL,
                                                   10ULL,
                                                   100ULL,
                                                   1000ULL,
                                                   10000ULL,
                                                   100000ULL,
                                                   1000000ULL,
                                                   10000000ULL,
                                                   100000000ULL,
                                                   1000000000ULL,
                                                   10000000000ULL,
                                                   100000000000ULL,
                                                   1000000000000ULL,
                                                   10000000000000ULL,
                                                   100000000000000ULL,
                                                   1000000000000000ULL,
                                                   10000000000000000ULL,
                                                   100000000000000000ULL,
                                                   1000000000000000000ULL,
                                                   10000000000000000000ULL};
constexpr std::uint64_t largest_exact = 1ULL << DBL_MANT_DIG;
constexpr int farthest_exponent = 100000;  // beyond it nothing changes any more

/// What is written: (-1)^is_negative digits 10^exponent.
struct Written {
  bool is_negative = false;
  std::uint64_t digits = 0;
  int num_digits = 0;  ///< without zeros in front
  int num_read = 0;    ///< with them
  int exponent = 0;

  void add(char c, bool is_fraction) {
    ++num_read;
    if (c != '0' || num_digits > 0) ++num_digits;
    if (num_digits <= most_digits) digits = 10 * digits + static_cast<std::uint64_t>(c - '0');
    exponent -= is_fraction ? 1 : 0;
  }
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Behind the exponent's digits; null where there are none.
const char* read_exponent(const char* p, int& exponent) {
  const bool is_negative = *p == '-';
  if (*p == '-' || *p == '+') ++p;
  if (!is_digit(*p)) return nullptr;
  int value = 0;
  for (; is_digit(*p); ++p) {
    if (value < farthest_exponent) value = 10 * value + (*p - '0');
  }
  exponent += is_negative ? -value : value;
  return p;
}

/// Behind the number; null where it is none.
const char* read_written(const char* p, Written& written) {
  written.is_negative = *p == '-';
  if (*p == '-' || *p == '+') ++p;
  for (; is_digit(*p); ++p) written.add(*p, false);
  if (*p == '.') {
    for (++p; is_digit(*p); ++p) written.add(*p, true);
  }
  if (written.num_read == 0) return nullptr;
  return *p == 'e' || *p == 'E' ? read_exponent(p + 1, written.exponent) : p;
}

/// digits / 10^n rounded once, with n of at most 19. The quotient has 62 or 63 bits, more than a double by at least
/// nine: its last bit stands for the remainder, and the conversion rounds it to the nearest.
double quotient(std::uint64_t digits, int n) {
  const int shift = __builtin_clzll(digits);
  const int shift_of_power = __builtin_clzll(powers[n]);
  const Wide dividend = static_cast<Wide>(digits << shift) << 62U;
  const std::uint64_t divisor = powers[n] << shift_of_power;
  const auto whole = static_cast<std::uint64_t>(dividend / divisor);
  const bool has_rest = static_cast<Wide>(whole) * divisor != dividend;
  return std::ldexp(static_cast<double>(whole | (has_rest ? 1U : 0U)), shift_of_power - shift - 62);
}

#ifdef _WIN32  // its C library has no locales beside the program's, and the C++ library is linked in

double by_library(const Written& written, const char* text, const char* end) {
  double value = written.num_digits + written.exponent > 0 ? HUGE_VAL : 0.0;  // what is out of range is left alone
  text += *text == '-' || *text == '+' ? 1 : 0;
  std::from_chars(text, end, value);
  return value;
}

#else

/// Of the language C, whatever the program's. Its decimal point is a point.
locale_t plain_locale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

double by_library(const Written& /*written*/, const char* text, const char* /*end*/) {
  return std::fabs(strtod_l(text, nullptr, plain_locale()));
}

#endif

double magnitude(const Written& written, const char* text, const char* end) {
  const int n = -written.exponent;
  if (written.num_digits <= most_digits) {
    if (written.digits == 0) return 0.0;
    // Two exact doubles and one operation: Clinger 1990. Elsewhere than in double precision it would round twice.
    if (FLT_EVAL_METHOD == 0 && written.digits <= largest_exact && n >= 0 && n <= most_digits) {
      return static_cast<double>(written.digits) / static_cast<double>(powers[n]);
    }
    if (n >= 0 && n <= most_digits) return quotient(written.digits, n);
  }
  return by_library(written, text, end);
}

}  // namespace

Decimal read_decimal(const char* text) {
  Written written;
  const char* const end = read_written(text, written);
  if (end == nullptr) return {Decimal::Kind::malformed, 0.0, text};
  const double value = magnitude(written, text, end);
  auto kind = Decimal::Kind::number;
  if (value > DBL_MAX) kind = Decimal::Kind::not_finite;
  if (value < DBL_MIN && written.num_digits > 0) kind = Decimal::Kind::too_small;
  return {kind, written.is_negative ? -value : value, end};
}

std::string text_of_decimal(double value) {
  char digits[32];
#ifdef _WIN32
  return {digits, std::to_chars(digits, std::end(digits), value, std::chars_format::general, 17).ptr};
#else
  const locale_t before = uselocale(plain_locale());
  const int size = std::snprintf(digits, sizeof digits, "%.17g", value);
  uselocale(before);
  return {digits, static_cast<std::size_t>(size)};
#endif
}

}  // namespace kelvane
