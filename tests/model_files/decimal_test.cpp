// SPDX-License-Identifier: BSD-3-Clause
// Every number to the nearest double, by the C library as the judge.
#include "model_files/decimal.h"

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

#include "support/long_round.h"
#include "support/model_folder.h"

namespace {

using kelvane::Decimal;
using Kind = Decimal::Kind;

std::uint64_t bits_of(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

/// Like strtod's, which takes the same syntax and more, and to the end of the text.
void expect_nearest(const std::string& text) {
  const Decimal read = kelvane::read_decimal(text.c_str());
  const double value = std::strtod(text.c_str(), nullptr);
  ASSERT_EQ(*read.end, '\0') << text;
  ASSERT_EQ(bits_of(read.value), bits_of(value)) << text;
  const bool has_digits = text.substr(0, text.find_first_of("eE")).find_first_of("123456789") != std::string::npos;
  const Kind kind = std::isinf(value)                                                     ? Kind::not_finite
                    : has_digits && std::fabs(value) < std::numeric_limits<double>::min() ? Kind::too_small
                                                                                          : Kind::number;
  ASSERT_EQ(read.kind, kind) << text;
}

class Random {
 public:
  int up_to(int most) { return static_cast<int>(engine_() % static_cast<unsigned>(most + 1)); }
  std::string digits(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += static_cast<char>('0' + up_to(9));
    return text;
  }
  std::uint64_t bits() { return engine_(); }

 private:
  std::mt19937_64 engine_{20261122};
};

TEST(ReadDecimal, AgreesWithTheLibraryOnRandomTexts) {
  Random random;
  for (std::uint64_t i = 0; i < support::count_for_round(1000000); ++i) {
    std::string text = random.up_to(2) == 0 ? "-" : "";
    text += random.digits(1 + random.up_to(9)) + "." + random.digits(random.up_to(18));
    if (random.up_to(4) == 0) text += "e" + std::to_string(random.up_to(60) - 30);
    if (random.up_to(40) == 0) text += "E+" + std::to_string(random.up_to(330));
    if (text.find('e') != std::string::npos && text.find('E') != std::string::npos) continue;
    expect_nearest(text);
  }
}

TEST(ReadDecimal, ReadsWhatIsWrittenToTheSameBits) {
  Random random;
  for (std::uint64_t i = 0; i < support::count_for_round(1000000); ++i) {
    std::uint64_t bits = random.bits();
    if (i % 2 == 0) bits = (bits & 0x800FFFFFFFFFFFFFULL) | (1023ULL - 30 + static_cast<unsigned>(i) % 60) << 52U;
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isnormal(value)) continue;
    const std::string text = kelvane::text_of_decimal(value);
    const Decimal read = kelvane::read_decimal(text.c_str());
    ASSERT_EQ(bits_of(read.value), bits) << text;
    ASSERT_EQ(*read.end, '\0') << text;
  }
}

// Between two doubles, and one digit beside: what is cut off decides.
TEST(ReadDecimal, RoundsHalfwayCases) {
  for (const char* text : {"9007199254740993",
                           "9007199254740993.0",
                           "9007199254740992.5",
                           "9007199254740995",
                           "9007199254740993.00000000000000000000001",
                           "4503599627370496.5",
                           "4503599627370497.5",
                           "4503599627370497.4999999",
                           "4503599627370497.5000001",
                           "0.50000000000000005551115123125782702",
                           "1.00000000000000011102230246251565404",
                           "1.000000000000000111",
                           "18446744073709551615",
                           "18446744073709551616",
                           "1844674407370955161.5",
                           "0.1844674407370955161",
                           "9999999999999999999",
                           "0.9999999999999999999",
                           "5e-324",
                           "2.2250738585072011e-308",
                           "2.2250738585072014e-308",
                           "1.7976931348623157e308",
                           "1.7976931348623159e308",
                           "1e400",
                           "1e-400",
                           "1e22",
                           "1e23",
                           "1e-22",
                           "123456789012345678e-25",
                           "0.00011120266840749639",
                           "0",
                           "-0",
                           "0e5",
                           "0.0e-999",
                           "00000000000000000000000001.5",
                           "0.00000000000000000000000000000000000000001",
                           "7e-10",
                           "1e999999999999"}) {
    expect_nearest(text);
  }
  for (std::uint64_t m = (1ULL << 53U) - 2000; m < (1ULL << 53U) + 2000; ++m) {
    for (const char* tail : {"", ".5", ".25", ".4999"}) expect_nearest(std::to_string(m) + tail);
  }
}

TEST(ReadDecimal, TakesNumbersOnly) {
  for (const char* text :
       {"", "-", "+", ".", "-.", "e5", "1e", "1e+", "1E-", "--5", "+-5", "x", "nan", "inf", " 1", ",5"}) {
    EXPECT_EQ(kelvane::read_decimal(text).kind, Kind::malformed) << text;
  }
  for (const char* text : {"1.", ".5", "+1", "-1.5e+3", "1E5"}) {
    const Decimal read = kelvane::read_decimal(text);
    EXPECT_EQ(read.kind, Kind::number) << text;
    EXPECT_EQ(read.value, std::strtod(text, nullptr)) << text;
  }
}

TEST(ReadDecimal, StopsBehindTheNumber) {
  for (const char* text : {"500-", "640.480.5", "-10+5", "0x10", "1,5", "1_000", "1e5e5", "1d5", "12 "}) {
    EXPECT_NE(*kelvane::read_decimal(text).end, '\0') << text;
  }
  EXPECT_STREQ(kelvane::read_decimal("640.480.5").end, ".5");
}

/// Takes a locale with a decimal comma, made in a folder where the system has none; false where that fails.
bool take_decimal_comma(const support::Model_folder& folder) {
#ifdef _WIN32
  static_cast<void>(folder);
  return std::setlocale(LC_ALL, "German") != nullptr;
#else
  const std::string make = "localedef -i de_DE -f UTF-8 " + folder.path("comma.UTF-8") + " >/dev/null 2>&1";
  const bool is_made = std::system(make.c_str()) == 0;
  ::setenv("LOCPATH", folder.path().c_str(), 1);
  return is_made && std::setlocale(LC_ALL, "comma.UTF-8") != nullptr;
#endif
}

TEST(ReadDecimal, DoesNotDependOnTheLocale) {
  const support::Model_folder folder;
  if (!take_decimal_comma(folder)) GTEST_SKIP() << "no locale with a comma";
  char comma[16];
  std::snprintf(comma, sizeof comma, "%.1f", 0.5);
  EXPECT_STREQ(comma, "0,5");
  EXPECT_EQ(kelvane::read_decimal("1.25").value, 1.25);
  EXPECT_EQ(kelvane::read_decimal("1.25e-40").value, 125e-42);
  EXPECT_EQ(kelvane::read_decimal("1.00000000000000000000000001").value, 1.0);
  EXPECT_EQ(kelvane::text_of_decimal(0.5), "0.5");
  std::snprintf(comma, sizeof comma, "%.1f", 0.5);
  EXPECT_STREQ(comma, "0,5");  // as it was
  std::setlocale(LC_ALL, "C");
}

}  // namespace
