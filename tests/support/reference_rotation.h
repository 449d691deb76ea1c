// SPDX-License-Identifier: BSD-3-Clause
// Rotations, conversions between their representations and derivatives by a complex step, for the reference refinement.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <vector>

#include "support/reference_svd.h"

namespace reference {

using Complex = std::complex<Real>;
template <typename T>
using Rotation = std::array<std::array<T, 3>, 3>;

enum class Representation { rotation_vector, angle_axis, quaternion, unit_quaternion };

inline std::size_t size_of(Representation kind) { return kind == Representation::rotation_vector ? 3 : 4; }

/// The derivatives of f, rows by outputs: f(x + i h e_j) = f(x) + i h df/dx_j + O(h^2), without any difference, so h
/// can be small enough for the rest to vanish.
template <typename Function>
Matrix complex_step_jacobian(const Function& f, const Vector& x) {
  constexpr Real h = 1e-200L;
  Matrix columns;
  for (std::size_t j = 0; j < x.size(); ++j) {
    std::vector<Complex> moved(x.begin(), x.end());
    moved[j] += Complex(0.0L, h);
    columns.emplace_back();
    for (const Complex& output : f(moved)) columns.back().push_back(output.imag() / h);
  }
  return transposed(columns);
}

template <typename T>
T length(const std::vector<T>& v, std::size_t count) {
  T sum = 0.0L;
  for (std::size_t i = 0; i < count; ++i) sum += v[i] * v[i];
  return std::sqrt(sum);
}

/// cos I + (1 - cos) a a' + sin [a]x about the axis a as it is
template <typename T>
Rotation<T> rotation_about(const T& x, const T& y, const T& z, const T& angle) {
  const T c = std::cos(angle);
  const T s = std::sin(angle);
  const T half_sine = std::sin(angle * 0.5L);
  const T k = 2.0L * half_sine * half_sine;
  return {{{c + k * x * x, k * x * y - s * z, k * x * z + s * y},
           {k * x * y + s * z, c + k * y * y, k * y * z - s * x},
           {k * x * z - s * y, k * y * z + s * x, c + k * z * z}}};
}

/// The rotation that the Jacobians differentiate. That of type qn has unsquared entries on its diagonal.
template <typename T>
Rotation<T> rotation_of(Representation kind, const std::vector<T>& x) {
  if (kind == Representation::rotation_vector || kind == Representation::angle_axis) {
    const T norm = length(x, 3);
    return rotation_about<T>(x[0] / norm, x[1] / norm, x[2] / norm, kind == Representation::angle_axis ? x[3] : norm);
  }
  const T a = x[0], b = x[1], c = x[2], d = x[3];
  Rotation<T> R = {{{a * a - b * b - c * c + d * d, 2.0L * (a * b - c * d), 2.0L * (a * c + b * d)},
                    {2.0L * (a * b + c * d), b * b - a * a - c * c + d * d, 2.0L * (b * c - a * d)},
                    {2.0L * (a * c - b * d), 2.0L * (b * c + a * d), c * c - a * a - b * b + d * d}}};
  if (kind == Representation::unit_quaternion) {
    R[0][0] = 1.0L - 2.0L * b - 2.0L * c;
    R[1][1] = 1.0L - 2.0L * a - 2.0L * c;
    R[2][2] = 1.0L - 2.0L * a - 2.0L * b;
    return R;
  }
  for (auto& row : R) {
    for (T& entry : row) entry /= a * a + b * b + c * c + d * d;
  }
  return R;
}

/// The rotation that the predictions use: no rotation for the zero vector, an axis of squared length up to 1e-16 shrunk
/// by 1e-16 instead of normalised, and qn like any other quaternion.
inline Rotation<Real> predicted_rotation(Representation kind, const Vector& x) {
  const Rotation<Real> no_rotation = {{{1.0L, 0.0L, 0.0L}, {0.0L, 1.0L, 0.0L}, {0.0L, 0.0L, 1.0L}}};
  const Real norm = length(x, 3);
  if (kind == Representation::rotation_vector) return norm == 0.0L ? no_rotation : rotation_of(kind, x);
  if (kind != Representation::angle_axis) return rotation_of(Representation::quaternion, x);
  if (norm * norm > 1e-16L) return rotation_of(kind, x);
  return rotation_about(x[0] * 1e-16L, x[1] * 1e-16L, x[2] * 1e-16L, x[3]);
}

inline Vector angle_axis_of(const Rotation<Real>& R) {
  const Real trace = R[0][0] + R[1][1] + R[2][2];
  if (std::abs(trace - 3.0L) <= 1e-12L) return {0.0L, 1.0L, 0.0L, 0.0L};
  if (std::abs(trace + 1.0L) > 1e-12L) {
    const Real angle = std::acos((trace - 1.0L) / 2.0L);
    const Real d = 2.0L * std::sin(angle);
    return {(R[2][1] - R[1][2]) / d, (R[0][2] - R[2][0]) / d, (R[1][0] - R[0][1]) / d, angle};
  }
  Vector half_turn;
  for (std::size_t i = 0; i < 3; ++i) {
    const Real magnitude = std::sqrt(std::max((1.0L + R[i][i]) / 2.0L, 0.0L));
    half_turn.push_back(magnitude <= 1e-12L ? 0.0L : magnitude);
  }
  // Of the three signs only that of y z is looked at, and a minus goes to the first entry.
  if (R[1][2] < -1e-12L) half_turn[0] = -half_turn[0];
  half_turn.push_back(std::acos(-1.0L));
  return half_turn;
}

/// The quaternion of unit length whose largest entry, chosen by trace and diagonal, is positive.
inline Vector quaternion_of(const Rotation<Real>& R) {
  const Real trace = R[0][0] + R[1][1] + R[2][2];
  if (trace > 0.0L) {
    const Real w = std::sqrt(1.0L + trace) / 2.0L;
    return {(R[2][1] - R[1][2]) / (4.0L * w), (R[0][2] - R[2][0]) / (4.0L * w), (R[1][0] - R[0][1]) / (4.0L * w), w};
  }
  std::size_t i = R[1][1] > R[2][2] ? 1 : 2;
  if (R[0][0] > R[1][1] && R[0][0] > R[2][2]) i = 0;
  const std::size_t j = (i + 1) % 3;
  const std::size_t k = (i + 2) % 3;
  Vector q(4);
  q[i] = std::sqrt(1.0L + R[i][i] - R[j][j] - R[k][k]) / 2.0L;
  q[j] = (R[i][j] + R[j][i]) / (4.0L * q[i]);
  q[k] = (R[i][k] + R[k][i]) / (4.0L * q[i]);
  q[3] = (R[k][j] - R[j][k]) / (4.0L * q[i]);
  return q;
}

/// The value of a rotation in another representation; vector and angle-axis turn into each other without a matrix.
inline Vector converted(Representation from, const Vector& x, Representation to) {
  if (to == Representation::quaternion) return quaternion_of(predicted_rotation(from, x));
  const Real norm = length(x, 3);
  if (from == Representation::rotation_vector) {
    return norm == 0.0L ? Vector(4, 0.0L) : Vector{x[0] / norm, x[1] / norm, x[2] / norm, norm};
  }
  const Vector a = from == Representation::quaternion ? angle_axis_of(predicted_rotation(from, x)) : x;
  if (to == Representation::angle_axis) return a;
  const Real squared = a[0] * a[0] + a[1] * a[1] + a[2] * a[2];
  const Real scale = squared > 1e-16L ? 1.0L / std::sqrt(squared) : 1e-16L;
  return {a[0] * scale * a[3], a[1] * scale * a[3], a[2] * scale * a[3]};
}

/// acos to first order in the imaginary part
inline Complex arc_cosine(const Complex& w) {
  return {std::acos(w.real()), -w.imag() / std::sqrt(1.0L - w.real() * w.real())};
}

/// The formula that the representation Jacobians differentiate. A quaternion has the angle 2 acos w and the axis v /
/// |v|, as if it were of unit length; the axis of an angle-axis is taken as it is.
inline std::vector<Complex> conversion_formula(Representation from, const std::vector<Complex>& x, Representation to) {
  std::vector<Complex> axis(x.begin(), x.begin() + 3);
  Complex angle;
  if (from == Representation::angle_axis) {
    angle = x[3];
  } else {
    const Complex norm = length(x, 3);
    angle = from == Representation::quaternion ? 2.0L * arc_cosine(x[3]) : norm;
    for (Complex& entry : axis) entry /= norm;
  }
  const Complex factor = to == Representation::rotation_vector ? angle
                         : to == Representation::quaternion    ? std::sin(angle / 2.0L)
                                                               : Complex(1.0L);
  for (Complex& entry : axis) entry *= factor;
  if (to == Representation::quaternion) axis.push_back(std::cos(angle / 2.0L));
  if (to == Representation::angle_axis) axis.push_back(angle);
  return axis;
}

}  // namespace reference
