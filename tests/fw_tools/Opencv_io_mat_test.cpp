// SPDX-License-Identifier: BSD-3-Clause
// Matrices read from streams.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "fw_tools/Opencv_io.h"
#include "support/matchers.h"

namespace {

using fw::operator>>;

cv::Mat fields(const std::vector<std::vector<double>>& rows) {
  cv::Mat m(0, static_cast<int>(rows.front().size()), CV_64F);
  for (const auto& row : rows) m.push_back(cv::Mat(row).t());
  return m;
}

TEST(MatrixReader, ResizesAndReadsRowByRow) {
  std::istringstream stream("2 3 1 2 3 4 5 6");
  cv::Mat m(1, 1, CV_64F, cv::Scalar(9));
  stream >> m;
  EXPECT_TRUE(support::is_close(m, fields({{1, 2, 3}, {4, 5, 6}}), 0.0));
}

TEST(MatrixReader, KeepsResampledElementsThatTheTextDoesNotReach) {
  std::istringstream stream("2 2 1 2");
  cv::Mat m(1, 1, CV_64F, cv::Scalar(9));
  stream >> m;
  EXPECT_TRUE(support::is_close(m, fields({{1, 2}, {9, 9}}), 0.0));
  EXPECT_TRUE(stream.fail());
}

TEST(MatrixReader, ReturnsItsStream) {
  std::istringstream stream("1 1 5");
  cv::Mat m(1, 1, CV_64F, cv::Scalar(9));
  EXPECT_EQ(&(stream >> m), &stream);
}

TEST(MatrixReader, KeepsTheSizeWhereItFits) {
  std::istringstream stream("1 2 -5 1e-3 7");
  cv::Mat m(1, 2, CV_64F, cv::Scalar(9));
  stream >> m;
  EXPECT_TRUE(support::is_close(m, fields({{-5, 1e-3}}), 0.0));
  int rest = 0;
  stream >> rest;
  EXPECT_EQ(rest, 7);
}

TEST(MatrixReader, RefusesOtherElements) {
  const std::string signature = "std::istream& fw::operator>>(std::istream&, cv::Mat&)";
  for (const int type : {CV_32FC1, CV_64FC2, CV_8UC1}) {
    std::istringstream stream("1 1 5");
    cv::Mat m(1, 1, type, cv::Scalar(9));
    const support::Caught caught = support::caught_by([&] { stream >> m; });
    EXPECT_EQ(caught.text,
              support::block("fw_tools/Opencv_io.cpp", 172, signature,
                             "operator>> cv::Mat : mat type was not doubles, instead it was " + std::to_string(type)));
    EXPECT_EQ(caught.level, 0);
  }
  EXPECT_EQ(CV_32FC1, 5);
}

TEST(MatrixReader, PassesOnWhatOpencvRefuses) {
  std::istringstream no_rows("0 3 1 2 3");
  cv::Mat m(1, 1, CV_64F, cv::Scalar(9));
  EXPECT_THROW(no_rows >> m, cv::Exception);
  std::istringstream some("1 1 5");
  cv::Mat empty(0, 0, CV_64F);
  EXPECT_THROW(some >> empty, cv::Exception);
}

}  // namespace
