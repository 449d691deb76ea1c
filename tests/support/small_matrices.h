// SPDX-License-Identifier: BSD-3-Clause
// Products, norms and orthogonal directions, without the arithmetic of cv::Mat.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

namespace support {

/// A B, each entry summed with extra digits.
inline cv::Mat product_of(const cv::Mat& A, const cv::Mat& B) {
  CV_Assert(A.cols == B.rows);
  cv::Mat result(A.rows, B.cols, CV_64F);
  for (int i = 0; i < A.rows; ++i) {
    for (int j = 0; j < B.cols; ++j) {
      long double sum = 0.0L;
      for (int k = 0; k < A.cols; ++k) {
        sum += static_cast<long double>(A.at<double>(i, k)) * static_cast<long double>(B.at<double>(k, j));
      }
      result.at<double>(i, j) = static_cast<double>(sum);
    }
  }
  return result;
}

/// The vector as a matrix of one column, with its own data.
inline cv::Mat column_of(const std::vector<double>& v) { return cv::Mat(v, true); }

/// The absolute value of the largest entry; 0 for a matrix without entries.
inline double largest_entry(const cv::Mat& m) {
  double largest = 0.0;
  for (int i = 0; i < m.rows; ++i) {
    for (int j = 0; j < m.cols; ++j) largest = std::max(largest, std::abs(m.at<double>(i, j)));
  }
  return largest;
}

/// An orthonormal basis, in columns, of the directions orthogonal to v: a Householder reflection takes v to an axis,
/// and the images of the other axes are the basis.
inline cv::Mat orthogonal_directions(const std::vector<double>& v) {
  double squared_length = 0.0;
  for (const double entry : v) squared_length += entry * entry;
  std::vector<double> h = v;
  h[0] += std::copysign(std::sqrt(squared_length), v[0]);
  double squared_h = 0.0;
  for (const double entry : h) squared_h += entry * entry;
  cv::Mat basis(static_cast<int>(v.size()), static_cast<int>(v.size()) - 1, CV_64F);
  for (int i = 0; i < basis.rows; ++i) {
    for (int j = 0; j < basis.cols; ++j) {
      const double reflected = 2.0 * h[static_cast<std::size_t>(i)] * h[static_cast<std::size_t>(j + 1)] / squared_h;
      basis.at<double>(i, j) = (i == j + 1 ? 1.0 : 0.0) - reflected;
    }
  }
  return basis;
}

}  // namespace support
