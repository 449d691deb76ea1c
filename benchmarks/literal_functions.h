// SPDX-License-Identifier: BSD-3-Clause
// Prediction and Jacobian of the literal reference, each with its own copy of the points.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "benchmarks/literal_rotation.h"

namespace bench {

using Points = std::vector<std::vector<double>>;

/// Pixels (type 10: camera-frame vectors; type -2: the pixels three times) of all points.
struct Literal_objective {
  Points points;
  cv::Matx33d K;
  int type;

  std::vector<double> operator()(const std::vector<double>& x) const;
};

/// Rows of one representation with n_r rotation entries, n_r + 3 columns each, one after the other.
template <int n_r>
struct Literal_rows {
  Points points;
  cv::Matx33d K;

  void write_pixel_rows(const Literal_rotation& rotation, const double* t, double* row) const;
  void write_bearing_rows(const Literal_rotation& rotation, const double* t, double* row) const;
};

/// The Jacobian of one type; only the representations that the type needs hold points.
struct Literal_jacobian {
  Literal_jacobian(const Points& points, const cv::Matx33d& K, int the_type);
  /// J has a row for each equation.
  void operator()(const std::vector<double>& x, cv::Mat& J) const;

 private:
  void write_hybrid_rows(const std::vector<double>& x, cv::Mat& J) const;

  int type;
  Literal_rows<3> of_vector;
  Literal_rows<4> of_axis;
  Literal_rows<4> of_quaternion;
};

}  // namespace bench
