// SPDX-License-Identifier: BSD-3-Clause
// Tests of vector difference, printing and sum.
#include "fw_tools/std_vector_overloads.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "support/foreign_locale.h"
#include "support/matchers.h"

namespace {

using fw::operator-;
using fw::operator<<;
using Vector = std::vector<double>;

support::Caught caught_from_sizes(std::size_t size_a, std::size_t size_b) {
  return support::caught_by([=] { static_cast<void>(Vector(size_a) - Vector(size_b)); });
}

std::string size_mismatch(const std::string& details) {
  return support::block("fw_tools/std_vector_overloads.h", 302,
                        "const std::vector<_Tp> fw::operator-(const std::vector<_Tp>&, const std::vector<_Tp>&) [with "
                        "T = double]",
                        details);
}

TEST(VectorDifference, IsElementWise) {
  EXPECT_EQ((Vector{1.0, 2.5, -3.0} - Vector{0.5, 3.0, -3.0}), (Vector{0.5, -0.5, 0.0}));
}

TEST(VectorDifference, OfEmptyVectorsIsEmpty) { EXPECT_EQ((Vector{} - Vector{}), Vector{}); }

TEST(VectorDifference, RefusesDifferentSizes) {
  const support::Caught caught = caught_from_sizes(3, 2);
  EXPECT_EQ(caught.text, size_mismatch("size mismatch. vec1 had size 3 but vec2 had size 2"));
  EXPECT_EQ(caught.level, 0);
  EXPECT_EQ(caught_from_sizes(0, 1).text, size_mismatch("size mismatch. vec1 had size 0 but vec2 had size 1"));
}

TEST(VectorDifference, ReportsSizesInTheClassicLocale) {
  const support::Foreign_locale foreign;
  EXPECT_EQ(caught_from_sizes(12345, 1000).text,
            size_mismatch("size mismatch. vec1 had size 12345 but vec2 had size 1000"));
}

TEST(VectorPrinting, GivesSizeAndElements) {
  std::ostringstream stream;
  stream << Vector{1.0, -2.5, 1.0 / 3.0, 1e20};
  EXPECT_EQ(stream.str(), " Size: 4 { 1 -2.5 0.333333 1e+20 } ");
}

TEST(VectorPrinting, OfAnEmptyVectorKeepsTheBraces) {
  std::ostringstream stream;
  stream << Vector{};
  EXPECT_EQ(stream.str(), " Size: 0 { } ");
}

TEST(VectorPrinting, UsesTheStreamsFormatAndLeavesItAsItWas) {
  std::ostringstream stream;
  stream << std::fixed << std::setprecision(2) << Vector{1.0, 0.125} << 2.0;
  EXPECT_EQ(stream.str(), " Size: 2 { 1.00 0.12 } 2.00");
}

TEST(VectorPrinting, ReturnsItsStream) {
  std::ostringstream stream;
  EXPECT_EQ(&(stream << Vector{1.0}), &stream);
}

TEST(Sum, AddsIntegers) {
  EXPECT_EQ(fw::sum(std::vector<int>{1, 2, -7}), -4);
  EXPECT_EQ(fw::sum(std::vector<int>{}), 0);
}

TEST(Sum, AccumulatesInDoubleSoThatPartialSumsMayLeaveTheRangeOfInt) {
  constexpr int largest = std::numeric_limits<int>::max();
  EXPECT_EQ(fw::sum(std::vector<int>{largest, largest, -largest}), largest);
}

TEST(Sum, AddsInIndexOrder) {
  EXPECT_EQ(fw::sum(Vector{1e16, 1.0, -1e16}), 0.0);
  EXPECT_EQ(fw::sum(Vector{1e16, -1e16, 1.0}), 1.0);
}

}  // namespace
