// SPDX-License-Identifier: BSD-3-Clause
// Poses moved by [w; dt], and what leads from one to another.
#pragma once

#include <cstddef>
#include <vector>

#include "pose_refinement/pose.h"
#include "support/refined_problems.h"

namespace support {

using Motion = std::vector<double>;  // w, dt

inline double product(const double* a, const double* b) {
  double sum = 0.0;
  for (int i = 0; i < 6; ++i) sum += a[i] * b[i];
  return sum;
}

/// A B, or A' B.
inline kelvane::Pose turned(const kelvane::Pose& a, const kelvane::Pose& b, bool transposed = false) {
  kelvane::Pose product;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      product.rotation[i][j] = 0.0;
      for (int k = 0; k < 3; ++k) {
        product.rotation[i][j] += (transposed ? a.rotation[k][i] : a.rotation[i][k]) * b.rotation[k][j];
      }
    }
  }
  return product;
}

inline kelvane::Pose shifted(kelvane::Pose pose, const kelvane::Pose& from, const Motion& x) {
  for (std::size_t i = 0; i < 3; ++i) pose.centre[i] = from.centre[i] + x[3 + i];
  return pose;
}

/// R exp [w]x and t + dt: errors as covariances have them.
inline kelvane::Pose moved_by_error(const kelvane::Pose& pose, const Motion& e) {
  return shifted(turned(pose, pose_at({e[0], e[1], e[2]}, {0, 0, 0})), pose, e);
}

/// exp [w]x R and t + dt: as fixed directions have them.
inline kelvane::Pose moved_in_world(const kelvane::Pose& pose, const Motion& x) {
  return shifted(turned(pose_at({x[0], x[1], x[2]}, {0, 0, 0}), pose), pose, x);
}

/// The error that leads from one pose to another.
inline Motion error_between(const kelvane::Pose& from, const kelvane::Pose& to) {
  const auto w = rotation_vector_of(turned(from, to, true), kelvane::Pose_frame::world_from_camera).r;
  Motion error(w.begin(), w.end());
  for (int i = 0; i < 3; ++i) error.push_back(to.centre[i] - from.centre[i]);
  return error;
}

/// The same about axes of the world: those of the first pose turned.
inline Motion motion_between(const kelvane::Pose& from, const kelvane::Pose& to) {
  const Motion e = error_between(from, to);
  Motion x = e;
  for (std::size_t i = 0; i < 3; ++i) {
    x[i] = from.rotation[i][0] * e[0] + from.rotation[i][1] * e[1] + from.rotation[i][2] * e[2];
  }
  return x;
}

/// Directions for Refine_problem::fixed, six numbers each: axes, and two that are none.
inline Motion axes(const std::vector<int>& which) {
  Motion fixed;
  for (const int axis : which) {
    Motion one(6, 0.0);
    one[static_cast<std::size_t>(axis)] = 1.0;
    fixed.insert(fixed.end(), one.begin(), one.end());
  }
  return fixed;
}
inline const Motion oblique = {0.3, -1, 0.5, 0.2, 0.1, 0, 0, 0.4, 0.1, 1, -0.5, 0.3};

/// x without its parts along such directions.
inline void remove_parts(const Motion& fixed, Motion& x) {
  std::vector<Motion> taken;
  for (std::size_t k = 0; k < fixed.size(); k += 6) {
    Motion f(fixed.begin() + static_cast<long>(k), fixed.begin() + static_cast<long>(k) + 6);
    for (const Motion& other : taken) {
      const double part = product(f.data(), other.data()) / product(other.data(), other.data());
      for (std::size_t i = 0; i < 6; ++i) f[i] -= part * other[i];
    }
    taken.push_back(f);
  }
  for (const Motion& f : taken) {
    const double part = product(x.data(), f.data()) / product(f.data(), f.data());
    for (std::size_t i = 0; i < 6; ++i) x[i] -= part * f[i];
  }
}

}  // namespace support
