// SPDX-License-Identifier: BSD-3-Clause
// The loops over points of the literal reference.
#include "benchmarks/literal_functions.h"

#include "benchmarks/pose.h"

namespace bench {
namespace {

using Projection = cv::Matx34d;

double dot(const Projection& P, int row, const std::vector<double>& X) {
  return P(row, 0) * X[0] + P(row, 1) * X[1] + P(row, 2) * X[2] + P(row, 3);
}

/// K R' [I | -t]
Projection projection(const cv::Matx33d& K, const cv::Matx33d& R, const double* t) {
  const cv::Matx33d M = K * R.t();
  const cv::Vec3d last = -(M * cv::Vec3d(t));
  return {M(0, 0), M(0, 1), M(0, 2), last[0], M(1, 0), M(1, 1), M(1, 2), last[1], M(2, 0), M(2, 1), M(2, 2), last[2]};
}

/// J <- d(pixels) / d(other) d(other) / d(rotation vector), the translation passing through
void write_carried_rows(const Literal_rows<4>& other, const Literal_rotation& rotation,
                        const Literal_conversion& conversion, const double* t, cv::Mat J) {
  cv::Mat inner(J.rows, 7, CV_64F);
  other.write_pixel_rows(rotation, t, inner.ptr<double>());
  cv::Mat chain = cv::Mat::zeros(7, 6, CV_64F);
  cv::Mat(conversion.derivative).copyTo(chain(cv::Rect(0, 0, 3, 4)));
  cv::setIdentity(chain(cv::Rect(3, 4, 3, 3)));
  const cv::Mat carried = inner * chain;
  carried.copyTo(J);
}

}  // namespace

std::vector<double> Literal_objective::operator()(const std::vector<double>& x) const {
  const Pose pose = pose_of(type, x);
  const Projection P = projection(K, pose.R, pose.t.val);
  const bool is_bearing = type == 10;
  std::vector<double> values;
  values.reserve(points.size() * (is_bearing ? 3 : 2) * (type == -2 ? 3 : 1));
  for (const auto& X : points) {
    const double w = dot(P, 2, X);
    const double scale = is_bearing ? 1 : 1 / w;
    values.push_back(dot(P, 0, X) * scale);
    values.push_back(dot(P, 1, X) * scale);
    if (is_bearing) values.push_back(w);
  }
  const auto block_size = static_cast<std::ptrdiff_t>(values.size());
  for (int block = 1; type == -2 && block < 3; ++block) {
    values.insert(values.end(), values.begin(), values.begin() + block_size);
  }
  return values;
}

template <int n_r>
void Literal_rows<n_r>::write_pixel_rows(const Literal_rotation& rotation, const double* t, double* row) const {
  const Projection P = projection(K, rotation.R, t);
  Projection dP[4];
  for (int j = 0; j < n_r; ++j) dP[j] = projection(K, rotation.dR[j], t);
  for (const auto& X : points) {
    const double inverse_w = 1 / dot(P, 2, X);
    for (int i = 0; i < 2; ++i, row += n_r + 3) {
      const double value = dot(P, i, X) * inverse_w;
      for (int j = 0; j < n_r; ++j) row[j] = (dot(dP[j], i, X) - value * dot(dP[j], 2, X)) * inverse_w;
      for (int j = 0; j < 3; ++j) row[n_r + j] = (value * P(2, j) - P(i, j)) * inverse_w;
    }
  }
}

template <int n_r>
void Literal_rows<n_r>::write_bearing_rows(const Literal_rotation& rotation, const double* t, double* row) const {
  const Projection P = projection(K, rotation.R, t);
  Projection dP[4];
  for (int j = 0; j < n_r; ++j) dP[j] = projection(K, rotation.dR[j], t);
  for (const auto& X : points) {
    for (int i = 0; i < 3; ++i, row += n_r + 3) {
      for (int j = 0; j < n_r; ++j) row[j] = dot(dP[j], i, X);
      for (int j = 0; j < 3; ++j) row[n_r + j] = -P(i, j);
    }
  }
}

Literal_jacobian::Literal_jacobian(const Points& points, const cv::Matx33d& K, int the_type)
    : type(the_type),
      of_vector{type == 0 || type == 10 || type == -2 ? points : Points(), K},
      of_axis{type == 1 || type == -2 ? points : Points(), K},
      of_quaternion{type == 2 || type == -2 ? points : Points(), K} {}

void Literal_jacobian::operator()(const std::vector<double>& x, cv::Mat& J) const {
  const double* r = x.data();
  const double* t = r + x.size() - 3;
  double* rows = J.ptr<double>();
  switch (type) {
    case 0:
      return of_vector.write_pixel_rows(rotation_of_vector(r), t, rows);
    case 1:
      return of_axis.write_pixel_rows(rotation_of_angle_axis(r), t, rows);
    case 2:
      return of_quaternion.write_pixel_rows(rotation_of_quaternion(r), t, rows);
    case 10:
      return of_vector.write_bearing_rows(rotation_of_vector(r), t, rows);
    default:
      return write_hybrid_rows(x, J);
  }
}

void Literal_jacobian::write_hybrid_rows(const std::vector<double>& x, cv::Mat& J) const {
  const int n = J.rows / 3;
  const double* t = x.data() + 3;
  const Literal_conversion q = vector_to_quaternion(x.data());
  const Literal_conversion a = vector_to_angle_axis(x.data());
  of_vector.write_pixel_rows(rotation_of_vector(x.data()), t, J.ptr<double>());
  write_carried_rows(of_quaternion, rotation_of_quaternion(q.value.val), q, t, J.rowRange(n, 2 * n));
  write_carried_rows(of_axis, rotation_of_angle_axis(a.value.val), a, t, J.rowRange(2 * n, 3 * n));
}

}  // namespace bench
