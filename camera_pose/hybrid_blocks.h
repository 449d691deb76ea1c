// SPDX-License-Identifier: BSD-3-Clause
// Where the blocks of a hybrid Jacobian go, and what is said when they do not fit.
#pragma once

#include <opencv2/core.hpp>

#include "fw_tools/report.h"

namespace site {
inline constexpr fw::Site qu_aau_aan_block_2{
    "kelvane_mex.cpp", 1451,
    "virtual int Camera_position_grad_func_qu_aau_aan::operator()(const std::vector<double>&, cv::Mat&, int) const"};
inline constexpr fw::Site qu_aau_aan{qu_aau_aan_block_2.file, 1457, qu_aau_aan_block_2.signature};
inline constexpr fw::Site aau_qu_aan_block_2{
    "kelvane_mex.cpp", 1543,
    "virtual int Camera_position_grad_func_aau_qu_aan::operator()(const std::vector<double>&, cv::Mat&, int) const"};
inline constexpr fw::Site aau_qu_aan_block_3{aau_qu_aan_block_2.file, 1545, aau_qu_aan_block_2.signature};
inline constexpr fw::Site aau_qu_aan{aau_qu_aan_block_2.file, 1549, aau_qu_aan_block_2.signature};
inline constexpr fw::Site aan_qu_aau_block_2{
    "kelvane_mex.cpp", 1635,
    "virtual int Camera_position_grad_func_aan_qu_aau::operator()(const std::vector<double>&, cv::Mat&, int) const"};
inline constexpr fw::Site aan_qu_aau_block_3{aan_qu_aau_block_2.file, 1637, aan_qu_aau_block_2.signature};
inline constexpr fw::Site aan_qu_aau{aan_qu_aau_block_2.file, 1641, aan_qu_aau_block_2.signature};
}  // namespace site

namespace hybrid {

/// The report of a block that does not fit its rows of J.
struct Size_check {
  const fw::Site& site;
  const char* label;

  /// Raises the label with both sizes unless they are equal.
  void operator()(const cv::Mat& product, const cv::Mat& destination) const;
};

inline constexpr Size_check qu_aau_aan_check_2{site::qu_aau_aan_block_2,
                                               "Size mismatch for aau grads. output roi was "};
inline constexpr Size_check aau_qu_aan_check_2{site::aau_qu_aan_block_2,
                                               "Size mismatch for quat grads. output roi was "};
inline constexpr Size_check aau_qu_aan_check_3{site::aau_qu_aan_block_3,
                                               "Size mismatch for aan grads. output roi was "};
// These labels name other representations than the blocks they guard.
inline constexpr Size_check aan_qu_aau_check_2{site::aan_qu_aau_block_2,
                                               "Size mismatch for aau grads. output roi was "};
inline constexpr Size_check aan_qu_aau_check_3{site::aan_qu_aau_block_3,
                                               "Size mismatch for aan grads. output roi was "};

/// Copies the blocks below block 1, unless a check objects before; returns the number of rows of all three blocks.
int copy_blocks(const cv::Mat& block_2, const Size_check& check_2, const cv::Mat& block_3, const Size_check* check_3,
                cv::Mat& J, int start);

}  // namespace hybrid
