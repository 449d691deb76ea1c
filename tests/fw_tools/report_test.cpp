// SPDX-License-Identifier: BSD-3-Clause
// Tests of the layout of reports: the three lines, their nesting, their locale.
#include "fw_tools/report.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/foreign_locale.h"
#include "support/matchers.h"

namespace {

using support::block;
using support::Caught;
using support::caught_by;

constexpr fw::Site inner{"folder/inner.cpp", 12, "int inner(double) [with T = double]"};
constexpr fw::Site middle{"middle.cpp", 34567, "void middle()"};
constexpr fw::Site outer{"outer.h", 5, "bool outer() const"};

void find_fault() { fw::raise(inner, "value was -3"); }

void pass_through_middle() try { find_fault(); }
FW_ADD_CONTEXT(middle, "while in the middle")

void pass_through_outer() try { pass_through_middle(); }
FW_ADD_CONTEXT(outer, "")

TEST(Report, HasThreeLinesAtThePointOfFault) {
  const Caught caught = caught_by(find_fault);
  EXPECT_EQ(caught.text, "folder/inner.cpp(12)\nint inner(double) [with T = double]\nDetails: value was -3\n");
  EXPECT_EQ(caught.level, 0);
}

TEST(Report, IsWrappedOneTabDeeperByACaller) {
  const Caught caught = caught_by(pass_through_middle);
  EXPECT_EQ(caught.text,
            "\tmiddle.cpp(34567)\n\tvoid middle()\n\tDetails: while in the middle\n"
            "folder/inner.cpp(12)\nint inner(double) [with T = double]\nDetails: value was -3\n\n");
  EXPECT_EQ(caught.level, 1);
}

TEST(Report, ReraisedTwiceBeginsWithTwoTabsAndKeepsTheInnerText) {
  const Caught caught = caught_by(pass_through_outer);
  EXPECT_EQ(caught.text,
            "\t\touter.h(5)\n\t\tbool outer() const\n\t\tDetails: \n"
            "\tmiddle.cpp(34567)\n\tvoid middle()\n\tDetails: while in the middle\n"
            "folder/inner.cpp(12)\nint inner(double) [with T = double]\nDetails: value was -3\n\n\n");
  EXPECT_EQ(caught.level, 2);
}

TEST(Report, OfAnotherLibrarysExceptionHasNoTabsAndLevelZero) {
  const Caught caught =
      caught_by([] { fw::reraise(std::runtime_error("outside\nsecond line"), middle, "some context"); });
  EXPECT_EQ(caught.text, "middle.cpp(34567)\nvoid middle()\nDetails: some context\noutside\nsecond line\n");
  EXPECT_EQ(caught.level, 0);
}

void fail_in_a_library() try { throw std::out_of_range("library"); }
FW_ADD_CONTEXT(middle, "")

void pass_on_a_library_failure() try { fail_in_a_library(); }
FW_ADD_CONTEXT(outer, "")

TEST(Report, OfAnotherLibrarysExceptionIsNestedLikeAnyOther) {
  const Caught caught = caught_by(pass_on_a_library_failure);
  EXPECT_EQ(caught.text, block("outer.h", 5, "bool outer() const", "", 1) +
                             "middle.cpp(34567)\nvoid middle()\nDetails: \nlibrary\n\n");
  EXPECT_EQ(caught.level, 1);
}

TEST(Report, TakesTheLevelFromTheCaughtReport) {
  const Caught caught = caught_by([] { fw::reraise(fw::exception_l("deep\n", 6), outer, "c"); });
  EXPECT_EQ(caught.text, block("outer.h", 5, "bool outer() const", "c", 7) + "deep\n\n");
  EXPECT_EQ(caught.level, 7);
}

TEST(Report, PassesPercentSignsAndEmptyDetailsThrough) {
  EXPECT_EQ(caught_by([] { fw::raise(outer, "100%s %n"); }).text,
            "outer.h(5)\nbool outer() const\nDetails: 100%s %n\n");
  EXPECT_EQ(caught_by([] { fw::raise(outer, ""); }).text, "outer.h(5)\nbool outer() const\nDetails: \n");
}

TEST(Report, IsNeverCutShort) {
  const std::string details(100000, 'x');
  EXPECT_EQ(caught_by([&] { fw::raise(outer, details); }).text, block("outer.h", 5, "bool outer() const", details));
}

TEST(Report, IsWrittenInTheClassicLocaleWhateverTheHostHasSet) {
  const support::Foreign_locale foreign;
  const Caught caught = caught_by(pass_through_outer);
  EXPECT_EQ(caught.text, block("outer.h", 5, "bool outer() const", "", 2) +
                             "\tmiddle.cpp(34567)\n\tvoid middle()\n\tDetails: while in the middle\n"
                             "folder/inner.cpp(12)\nint inner(double) [with T = double]\nDetails: value was -3\n\n\n");
}

TEST(ReportText, JoinsValuesInTheDefaultFormatting) {
  EXPECT_EQ(fw::text("one"), "one");
  EXPECT_EQ(fw::text("a ", 1, ",", 2.5, " ", 1e300, " ", 1.0 / 3.0), "a 1,2.5 1e+300 0.333333");
}

TEST(ReportText, IsWrittenInTheClassicLocaleWhateverTheHostHasSet) {
  const support::Foreign_locale foreign;
  std::ostringstream host_stream;
  host_stream << 1234567 << " " << 0.5;
  ASSERT_EQ(host_stream.str(), "1.234.567 0,5");  // what an ordinary stream would write now
  EXPECT_EQ(fw::text(1234567, " ", 0.5), "1234567 0.5");
  std::ostringstream classic = fw::classic_stream();
  classic << 1234567 << " " << 0.5;
  EXPECT_EQ(classic.str(), "1234567 0.5");
}

}  // namespace
