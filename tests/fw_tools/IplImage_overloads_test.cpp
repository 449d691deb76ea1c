// SPDX-License-Identifier: BSD-3-Clause
// Tests of checked element access: addresses, refusals, the order of the checks.
#include "fw_tools/IplImage_overloads.h"

#include <gtest/gtest.h>

#include <limits>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "support/foreign_locale.h"
#include "support/matchers.h"

namespace {

using fw::get_pix;

std::string report(int line, const std::string& details) {
  return support::block("fw_tools/IplImage_overloads.h", line,
                        "T& fw::get_pix(cv::Mat&, int, int, int) [with T = double]", details);
}

void expect_refused(cv::Mat image, int x, int y, int channel, int line, const std::string& details) {
  SCOPED_TRACE(testing::Message() << "column " << x << ", row " << y << ", channel " << channel);
  const support::Caught caught = support::caught_by([&] { get_pix<double>(image, x, y, channel); });
  EXPECT_EQ(caught.text, report(line, details));
  EXPECT_EQ(caught.level, 0);
}

std::string position_details(const std::string& position, const std::string& size) {
  return "get_pix(): Pixel lookup at (" + position + ") but image dimensions are (" + size + ")";
}

TEST(GetPix, RefersToTheMatrixsOwnData) {
  cv::Mat column(3, 1, CV_64F, cv::Scalar(0));
  get_pix<double>(column, 0, 2, 0) = 5.0;
  EXPECT_EQ(column.at<double>(2, 0), 5.0);
  EXPECT_EQ(&get_pix<double>(column, 0, 2, 0), column.ptr<double>(2));
}

TEST(GetPix, TakesTheColumnBeforeTheRow) {
  cv::Mat image = (cv::Mat_<double>(2, 3) << 0, 1, 2, 10, 11, 12);
  EXPECT_EQ(get_pix<double>(image, 2, 1, 0), 12.0);
  EXPECT_EQ(get_pix<double>(image, 1, 0, 0), 1.0);
}

TEST(GetPix, AddressesEveryChannelOfUpToFour) {
  for (int channels = 1; channels <= 4; ++channels) {
    cv::Mat image(5, 7, CV_MAKETYPE(CV_64F, channels));
    for (int channel = 0; channel < channels; ++channel) {
      const unsigned char* expected = image.data + 3 * image.step[0] + 8 * (4 * channels + channel);
      EXPECT_EQ(reinterpret_cast<unsigned char*>(&get_pix<double>(image, 4, 3, channel)), expected);
    }
  }
}

TEST(GetPix, FollowsTheRowStrideOfAView) {
  cv::Mat whole(6, 8, CV_64FC3);
  cv::Mat view = whole(cv::Range(1, 5), cv::Range(2, 6));
  ASSERT_FALSE(view.isContinuous());
  EXPECT_EQ(&get_pix<double>(view, 1, 2, 2), &get_pix<double>(whole, 3, 3, 2));
  EXPECT_EQ(reinterpret_cast<unsigned char*>(&get_pix<double>(view, 1, 2, 2)),
            view.data + 2 * view.step[0] + 24 * 1 + 16);
}

TEST(GetPix, RefusesPositionsOutsideTheMatrix) {
  const cv::Mat column(3, 1, CV_64F);
  expect_refused(column, 1, 0, 0, 177, position_details("1,0", "1,3"));
  expect_refused(column, 0, 3, 0, 177, position_details("0,3", "1,3"));
  expect_refused(column, -1, 0, 0, 177, position_details("-1,0", "1,3"));
  expect_refused(column, 0, -1, 0, 177, position_details("0,-1", "1,3"));
  expect_refused(column, std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 0, 177,
                 position_details("2147483647,-2147483648", "1,3"));
  expect_refused(cv::Mat(), 0, 0, 0, 177, position_details("0,0", "0,0"));
}

TEST(GetPix, RefusesChannelsThatAreNotThere) {
  const cv::Mat image(2, 2, CV_64FC3);
  expect_refused(image, 1, 1, 3, 181, "get_pix(): Pixel lookup from channel 3 but image only has 3 channels.");
  expect_refused(image, 1, 1, -1, 181, "get_pix(): Pixel lookup from channel -1 but image only has 3 channels.");
}

TEST(GetPix, RefusesOtherElementTypes) {
  struct Type {
    int depth, line, size;
  };
  for (const Type type : {Type{CV_8U, 188, 1}, Type{CV_8S, 188, 1}, Type{CV_16U, 192, 2}, Type{CV_16S, 192, 2},
                          Type{CV_32S, 196, 4}, Type{CV_32F, 196, 4}}) {
    expect_refused(cv::Mat(2, 2, CV_MAKETYPE(type.depth, 1)), 0, 0, 0, type.line,
                   "Template parameter had size of 8 bytes, but image depth specified " + std::to_string(type.size));
  }
  expect_refused(cv::Mat(2, 2, CV_MAKETYPE(7, 1)), 0, 0, 0, 202, "Image had unrecognised depth flag 7");
}

TEST(GetPix, RefusesMoreThanFourChannels) {
  const cv::Mat image(2, 2, CV_MAKETYPE(CV_64F, 5));
  const std::string details = "get_pix<template> : number of image channels was not 1-4, value was : 5";
  expect_refused(image, 0, 0, 0, 219, details);
  expect_refused(image, 1, 1, 4, 219, details);
}

TEST(GetPix, ChecksThePositionThenTheChannelThenTheTypeThenTheNumberOfChannels) {
  const cv::Mat five_floats(2, 2, CV_MAKETYPE(CV_32F, 5));
  expect_refused(five_floats, 2, 0, 5, 177, position_details("2,0", "2,2"));
  expect_refused(five_floats, 0, 0, 5, 181, "get_pix(): Pixel lookup from channel 5 but image only has 5 channels.");
  expect_refused(five_floats, 0, 0, 4, 196, "Template parameter had size of 8 bytes, but image depth specified 4");
  const cv::Mat five_doubles(2, 2, CV_MAKETYPE(CV_64F, 5));
  expect_refused(five_doubles, 0, -1, 0, 177, position_details("0,-1", "2,2"));
  expect_refused(five_doubles, 0, 0, 5, 181, "get_pix(): Pixel lookup from channel 5 but image only has 5 channels.");
  const cv::Mat bytes(3, 1, CV_8U);
  expect_refused(bytes, 1, 0, 0, 177, position_details("1,0", "1,3"));
  expect_refused(bytes, 0, 0, 1, 181, "get_pix(): Pixel lookup from channel 1 but image only has 1 channels.");
}

TEST(GetPix, ReportsInTheClassicLocale) {
  const support::Foreign_locale foreign;
  expect_refused(cv::Mat(1, 1, CV_64F), 12345, 0, 0, 177, position_details("12345,0", "1,1"));
}

TEST(GetPixOfAColumn, IsTheFirstElementOfTheRow) {
  cv::Mat image = (cv::Mat_<double>(3, 2) << 0, 1, 10, 11, 20, 21);
  EXPECT_EQ(&get_pix<double>(image, 2), &get_pix<double>(image, 0, 2, 0));
  EXPECT_EQ(get_pix<double>(image, 1), 10.0);
}

TEST(GetPixOfAColumn, RefusesWhatTheFullLookupRefuses) {
  const auto text_from = [](cv::Mat image, int y) {
    return support::caught_by([&] { get_pix<double>(image, y); }).text;
  };
  EXPECT_EQ(text_from(cv::Mat(3, 1, CV_64F), 3), report(177, position_details("0,3", "1,3")));
  EXPECT_EQ(text_from(cv::Mat(3, 1, CV_64F), -1), report(177, position_details("0,-1", "1,3")));
  EXPECT_EQ(text_from(cv::Mat(), 0), report(177, position_details("0,0", "0,0")));
  EXPECT_EQ(text_from(cv::Mat(3, 1, CV_32F), 3), report(177, position_details("0,3", "1,3")));
  EXPECT_EQ(text_from(cv::Mat(3, 1, CV_32F), 2),
            report(196, "Template parameter had size of 8 bytes, but image depth specified 4"));
}

}  // namespace
