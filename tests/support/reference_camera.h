// SPDX-License-Identifier: BSD-3-Clause
// Predictions and Jacobians of the ten rotation types, for the reference refinement.
#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/reference_rotation.h"

namespace reference {

struct Rotation_kind {
  int type;
  bool is_bearing;
  std::vector<Representation> blocks;  // the first is that of the search vector

  Representation primary() const { return blocks[0]; }
  std::size_t rotation_size() const { return size_of(primary()); }
  std::size_t search_size() const { return rotation_size() + 3; }
  std::size_t rows_per_point() const { return is_bearing ? 3 : 2; }
};

inline Rotation_kind rotation_kind(int type) {
  constexpr auto aau = Representation::rotation_vector;
  constexpr auto aan = Representation::angle_axis;
  constexpr auto qu = Representation::quaternion;
  const std::vector<Rotation_kind> kinds = {{0, false, {aau}},
                                            {1, false, {aan}},
                                            {2, false, {qu}},
                                            {3, false, {Representation::unit_quaternion}},
                                            {10, true, {aau}},
                                            {11, true, {aan}},
                                            {12, true, {qu}},
                                            {-1, false, {qu, aau, aan}},
                                            {-2, false, {aau, qu, aan}},
                                            {-3, false, {aan, qu, aau}}};
  for (const Rotation_kind& kind : kinds) {
    if (kind.type == type) return kind;
  }
  throw std::invalid_argument("no rotation type " + std::to_string(type));
}

/// Points before a camera with K = [f 0 cx; 0 f cy; 0 0 1]. A call cannot give any other K, so the K of the predictions
/// and the simplified one of the Jacobians are the same here.
struct Camera {
  Real f, cx, cy;
  std::vector<std::array<Real, 3>> points;
};

/// K R' (X - t) for each point: its three components, or the first two divided by the third.
template <typename T>
std::vector<T> projected(const Camera& camera, const Rotation<T>& R, const T* t, bool is_bearing) {
  std::vector<T> result;
  for (const auto& X : camera.points) {
    std::array<T, 3> p;
    for (std::size_t j = 0; j < 3; ++j) {
      p[j] = R[0][j] * (X[0] - t[0]) + R[1][j] * (X[1] - t[1]) + R[2][j] * (X[2] - t[2]);
    }
    const T first = camera.f * p[0] + camera.cx * p[2];
    const T second = camera.f * p[1] + camera.cy * p[2];
    if (is_bearing) {
      result.insert(result.end(), {first, second, p[2]});
    } else {
      result.insert(result.end(), {first / p[2], second / p[2]});
    }
  }
  return result;
}

inline Vector repeated(const Vector& block, std::size_t count) {
  Vector stack;
  for (std::size_t k = 0; k < count; ++k) stack.insert(stack.end(), block.begin(), block.end());
  return stack;
}

/// One prediction for each equation: point by point, and a hybrid's block once for each of its representations.
inline Vector predict(const Rotation_kind& kind, const Camera& camera, const Vector& x) {
  const Rotation<Real> R = predicted_rotation(kind.primary(), x);
  return repeated(projected(camera, R, &x[kind.rotation_size()], kind.is_bearing), kind.blocks.size());
}

/// The Jacobian in one representation. A rotation vector, or the vector part of a quaternion that is to be normalised,
/// that is exactly zero has no direction to differentiate along and moves to 1e-9.
inline Matrix block_jacobian(Representation kind, const Camera& camera, Vector x, bool is_bearing) {
  const bool is_guarded = kind == Representation::rotation_vector || kind == Representation::quaternion;
  if (is_guarded && x[0] == 0.0L && x[1] == 0.0L && x[2] == 0.0L) x[0] = x[1] = x[2] = 1e-9L;
  const auto prediction = [&](const std::vector<Complex>& moved) {
    return projected(camera, rotation_of(kind, moved), &moved[size_of(kind)], is_bearing);
  };
  return complex_step_jacobian(prediction, x);
}

inline Matrix product(const Matrix& A, const Matrix& B) {
  const Matrix columns = transposed(B);
  Matrix result;
  for (const Vector& row : A) {
    result.emplace_back();
    for (const Vector& column : columns) result.back().push_back(dot(row, column));
  }
  return result;
}

/// d(other rotation, t) / d(primary rotation, t): the translation is the same in both.
inline Matrix pose_conversion_jacobian(Representation from, const Vector& rotation, Representation to) {
  Matrix D = complex_step_jacobian(
      [&](const std::vector<Complex>& moved) { return conversion_formula(from, moved, to); }, rotation);
  for (Vector& row : D) row.resize(rotation.size() + 3, 0.0L);
  for (std::size_t k = 0; k < 3; ++k) {
    D.emplace_back(rotation.size() + 3, 0.0L);
    D.back()[rotation.size() + k] = 1.0L;
  }
  return D;
}

/// All rows: the primary block, then each further representation's own Jacobian at the converted rotation, carried
/// back to the primary parameters by the chain rule.
inline Matrix jacobian(const Rotation_kind& kind, const Camera& camera, const Vector& x) {
  const auto translation = x.begin() + static_cast<std::ptrdiff_t>(kind.rotation_size());
  const Vector rotation(x.begin(), translation);
  Matrix J = block_jacobian(kind.primary(), camera, x, kind.is_bearing);
  for (std::size_t k = 1; k < kind.blocks.size(); ++k) {
    const Representation other = kind.blocks[k];
    Vector other_x = converted(kind.primary(), rotation, other);
    other_x.insert(other_x.end(), translation, x.end());
    const Matrix block = product(block_jacobian(other, camera, other_x, kind.is_bearing),
                                 pose_conversion_jacobian(kind.primary(), rotation, other));
    J.insert(J.end(), block.begin(), block.end());
  }
  return J;
}

}  // namespace reference
