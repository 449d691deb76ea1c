// SPDX-License-Identifier: BSD-3-Clause
// Size checks of the blocks of a hybrid Jacobian, then their copies.
#include "camera_pose/hybrid_blocks.h"

#include "fw_tools/Opencv_io.h"

namespace hybrid {

void Size_check::operator()(const cv::Mat& product, const cv::Mat& destination) const {
  if (product.size() == destination.size()) return;
  raise(site, label + fw::size_text(destination.size()) + " but input was " + fw::size_text(product.size()));
}

int copy_blocks(const cv::Mat& block_2, const Size_check& check_2, const cv::Mat& block_3, const Size_check* check_3,
                cv::Mat& J, int start) {
  const int n = block_2.rows;
  cv::Mat rows_2 = J.rowRange(start + n, start + 2 * n);
  cv::Mat rows_3 = J.rowRange(start + 2 * n, start + 3 * n);
  check_2(block_2, rows_2);
  if (check_3 != nullptr) (*check_3)(block_3, rows_3);
  block_2.copyTo(rows_2);
  block_3.copyTo(rows_3);
  return 3 * n;
}

}  // namespace hybrid
