// SPDX-License-Identifier: BSD-3-Clause
// Tests of the error type: text, level, copies.
#include "fw_tools/exception_l.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <string>
#include <type_traits>

namespace {

TEST(ExceptionL, KeepsTextAndLevelAsTheyWereGiven) {
  const fw::exception_l error("first line\n\tsecond line\n", 3);
  EXPECT_STREQ(error.what(), "first line\n\tsecond line\n");
  EXPECT_EQ(error.get_level(), 3);
}

TEST(ExceptionL, CopiesTheTextItIsGiven) {
  std::string text = "before";
  const fw::exception_l error(text, 0);
  text = "behind";
  EXPECT_STREQ(error.what(), "before");
}

TEST(ExceptionL, IsCaughtAsAStandardException) {
  const auto raise = [] { throw fw::exception_l("a report", 1); };
  try {
    raise();
    FAIL() << "nothing thrown";
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "a report");
  }
}

TEST(ExceptionL, ACopyKeepsItsTextWhenTheSourceIsGone) {
  auto source = std::make_unique<fw::exception_l>("a text too long for the buffer inside a std::string", 2);
  const fw::exception_l copy(*source);
  fw::exception_l assigned("something else", 0);
  assigned = *source;
  source.reset();
  EXPECT_STREQ(copy.what(), "a text too long for the buffer inside a std::string");
  EXPECT_EQ(copy.get_level(), 2);
  EXPECT_STREQ(assigned.what(), "a text too long for the buffer inside a std::string");
  EXPECT_EQ(assigned.get_level(), 2);
}

TEST(ExceptionL, AssigningToACopyLeavesTheSourceAlone) {
  const fw::exception_l source("source", 1);
  fw::exception_l copy(source);
  copy = fw::exception_l("other", 5);
  EXPECT_STREQ(source.what(), "source");
  EXPECT_EQ(source.get_level(), 1);
}

TEST(ExceptionL, CannotFailWhileItIsCopied) {
  // A copy that throws while an exception is in flight would end the process.
  EXPECT_TRUE(std::is_nothrow_copy_constructible_v<fw::exception_l>);
  EXPECT_TRUE(std::is_nothrow_copy_assignable_v<fw::exception_l>);
}

TEST(ExceptionL, SurvivesBeingStoredAndThrownAgain) {
  std::exception_ptr stored;
  try {
    throw fw::exception_l("stored", 4);
  } catch (...) {
    stored = std::current_exception();
  }
  try {
    std::rethrow_exception(stored);
  } catch (const fw::exception_l& error) {
    EXPECT_STREQ(error.what(), "stored");
    EXPECT_EQ(error.get_level(), 4);
  }
}

}  // namespace
