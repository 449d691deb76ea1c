// SPDX-License-Identifier: BSD-3-Clause
// Placement of the blocks of a hybrid Jacobian; the reports of third blocks, which no Jacobian class can reach.
#include "camera_pose/hybrid_blocks.h"

#include <gtest/gtest.h>

#include <string>

#include "support/matchers.h"

namespace {

cv::Mat filled(int rows, int columns, double value) { return cv::Mat(rows, columns, CV_64F, cv::Scalar(value)); }

std::string signature(const char* name) {
  return std::string("virtual int Camera_position_grad_func_") + name +
         "::operator()(const std::vector<double>&, cv::Mat&, int) const";
}

TEST(HybridBlocks, AreCopiedBelowTheFirst) {
  cv::Mat J = filled(6, 3, 1.0);
  EXPECT_EQ(hybrid::copy_blocks(filled(2, 3, 2.0), hybrid::aau_qu_aan_check_2, filled(2, 3, 3.0),
                                &hybrid::aau_qu_aan_check_3, J, 0),
            6);
  EXPECT_TRUE(support::is_close(J.rowRange(0, 2), filled(2, 3, 1.0), 0.0));
  EXPECT_TRUE(support::is_close(J.rowRange(2, 4), filled(2, 3, 2.0), 0.0));
  EXPECT_TRUE(support::is_close(J.rowRange(4, 6), filled(2, 3, 3.0), 0.0));
}

/// A third block of another width than J.
support::Caught caught_at_block_3(const hybrid::Size_check& check_2, const hybrid::Size_check& check_3, cv::Mat& J) {
  return support::caught_by(
      [&] { hybrid::copy_blocks(filled(2, 3, 2.0), check_2, filled(2, 4, 3.0), &check_3, J, 0); });
}

TEST(HybridBlocks, ReportAThirdBlockOfAnotherSizeBeforeAnyCopy) {
  cv::Mat J = filled(6, 3, 1.0);
  const std::string details = "Size mismatch for aan grads. output roi was (3,2) but input was (4,2)";
  EXPECT_EQ(caught_at_block_3(hybrid::aau_qu_aan_check_2, hybrid::aau_qu_aan_check_3, J).text,
            support::block("kelvane_mex.cpp", 1545, signature("aau_qu_aan"), details));
  EXPECT_EQ(caught_at_block_3(hybrid::aan_qu_aau_check_2, hybrid::aan_qu_aau_check_3, J).text,
            support::block("kelvane_mex.cpp", 1637, signature("aan_qu_aau"), details));
  EXPECT_TRUE(support::is_close(J, filled(6, 3, 1.0), 0.0));
}

TEST(HybridBlocks, ReportTheSecondBeforeTheThird) {
  cv::Mat J = filled(6, 5, 1.0);
  EXPECT_EQ(caught_at_block_3(hybrid::aau_qu_aan_check_2, hybrid::aau_qu_aan_check_3, J).text,
            support::block("kelvane_mex.cpp", 1543, signature("aau_qu_aan"),
                           "Size mismatch for quat grads. output roi was (5,2) but input was (3,2)"));
}

}  // namespace
