// SPDX-License-Identifier: BSD-3-Clause
// Polynomials in the cross matrix of w.
#include "pose_refinement/turns.h"

#include <cmath>

#include "pose_refinement/pose.h"

namespace kelvane {
namespace {

constexpr double short_turn = 0.02;  // below it three terms of a series are exact to rounding

/// I + a [w]x + b [w]x^2
void set_polynomial(const double* w, double a, double b, double (&J)[3][3]) {
  const double square = w[0] * w[0] + w[1] * w[1] + w[2] * w[2];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) J[i][j] = b * w[i] * w[j] + (i == j ? 1.0 - b * square : 0.0);
    J[i][(i + 1) % 3] -= a * w[(i + 2) % 3];
    J[i][(i + 2) % 3] += a * w[(i + 1) % 3];
  }
}

double angle_of(const double* w) { return std::sqrt(w[0] * w[0] + w[1] * w[1] + w[2] * w[2]); }

}  // namespace

void turn_between(const double (&from)[3][3], const double (&to)[3][3], double* w) {
  Pose turn;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      turn.rotation[i][j] = from[0][i] * to[0][j] + from[1][i] * to[1][j] + from[2][i] * to[2][j];
    }
  }
  const auto r = rotation_vector_of(turn, Pose_frame::world_from_camera).r;
  for (std::size_t i = 0; i < 3; ++i) w[i] = r[i];
}

void left_jacobian(const double* w, double (&J)[3][3]) {
  const double angle = angle_of(w);
  const double square = angle * angle;
  const double half = angle == 0.0 ? 0.5 : std::sin(angle / 2.0) / angle;
  const double b = angle < short_turn ? 1.0 / 6.0 - square / 120.0 + square * square / 5040.0
                                      : (angle - std::sin(angle)) / (square * angle);
  set_polynomial(w, 2.0 * half * half, b, J);
}

void inverse_left_jacobian(const double* w, double (&J)[3][3]) {
  const double angle = angle_of(w);
  const double square = angle * angle;
  const double half = angle / 2.0;
  const double b = angle < short_turn ? 1.0 / 12.0 + square / 720.0 + square * square / 30240.0
                                      : (1.0 - half / std::tan(half)) / square;
  set_polynomial(w, -0.5, b, J);
}

}  // namespace kelvane
