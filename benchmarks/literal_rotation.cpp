// SPDX-License-Identifier: BSD-3-Clause
// The formulas behind the literal reference.
#include "benchmarks/literal_rotation.h"

#include <cmath>

#include "benchmarks/pose.h"

namespace bench {
namespace {

const cv::Vec3d unit_vectors[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

cv::Matx33d symmetric_product(const cv::Vec3d& v, const cv::Vec3d& w) { return v * w.t() + w * v.t(); }

}  // namespace

Literal_rotation rotation_of_vector(const double* r) {
  const cv::Vec3d v(r[0], r[1], r[2]);
  Literal_rotation rotation;
  const cv::Matx33d& R = rotation.R = rotation_matrix(v);
  for (int j = 0; j < 3; ++j) {
    // dR/dr_j = [r_j r + r x (I - R) e_j]x R / |r|^2, Gallego and Yezzi 2015
    const cv::Vec3d rest = unit_vectors[j] - R * unit_vectors[j];
    rotation.dR[j] = cross_matrix((v[j] * v + v.cross(rest)) * (1 / v.dot(v))) * R;
  }
  return rotation;
}

Literal_rotation rotation_of_angle_axis(const double* a) {
  const cv::Vec3d axis(a[0], a[1], a[2]);
  const double length = cv::norm(axis);
  const cv::Vec3d n = axis * (1 / length);
  const double s = std::sin(a[3]);
  const double c = std::cos(a[3]);
  Literal_rotation rotation;
  rotation.R = c * cv::Matx33d::eye() + s * cross_matrix(n) + (1 - c) * (n * n.t());
  for (int j = 0; j < 3; ++j) {
    const cv::Vec3d dn = (unit_vectors[j] - n * n[j]) * (1 / length);
    rotation.dR[j] = s * cross_matrix(dn) + (1 - c) * symmetric_product(dn, n);
  }
  rotation.dR[3] = -s * cv::Matx33d::eye() + c * cross_matrix(n) + s * (n * n.t());
  return rotation;
}

Literal_rotation rotation_of_quaternion(const double* q) {
  const cv::Vec3d v(q[0], q[1], q[2]);
  const double w = q[3];
  const double k = 1 / (v.dot(v) + w * w);
  Literal_rotation rotation;
  rotation.R = k * ((w * w - v.dot(v)) * cv::Matx33d::eye() + 2 * (v * v.t()) + 2 * w * cross_matrix(v));
  for (int j = 0; j < 3; ++j) {
    const cv::Matx33d dN = -2 * v[j] * cv::Matx33d::eye() + 2 * symmetric_product(unit_vectors[j], v) +
                           2 * w * cross_matrix(unit_vectors[j]);
    rotation.dR[j] = k * (dN - 2 * v[j] * rotation.R);
  }
  rotation.dR[3] = k * (2 * w * cv::Matx33d::eye() + 2 * cross_matrix(v) - 2 * w * rotation.R);
  return rotation;
}

Literal_conversion vector_to_quaternion(const double* r) {
  const cv::Vec3d v(r[0], r[1], r[2]);
  const double angle = cv::norm(v);
  const double s = std::sin(angle / 2);
  const double c = std::cos(angle / 2);
  const double a = s / angle;
  const cv::Matx33d top = a * cv::Matx33d::eye() + ((0.5 * c - a) / (angle * angle)) * (v * v.t());
  Literal_conversion q{{a * v[0], a * v[1], a * v[2], c}, {}};
  for (int j = 0; j < 3; ++j) {
    for (int i = 0; i < 3; ++i) q.derivative(i, j) = top(i, j);
    q.derivative(3, j) = -0.5 * a * v[j];
  }
  return q;
}

Literal_conversion vector_to_angle_axis(const double* r) {
  const cv::Vec3d v(r[0], r[1], r[2]);
  const double angle = cv::norm(v);
  const cv::Vec3d n = v * (1 / angle);
  Literal_conversion a{{n[0], n[1], n[2], angle}, {}};
  for (int j = 0; j < 3; ++j) {
    for (int i = 0; i < 3; ++i) a.derivative(i, j) = ((i == j ? 1 : 0) - n[i] * n[j]) / angle;
    a.derivative(3, j) = n[j];
  }
  return a;
}

}  // namespace bench
