// SPDX-License-Identifier: BSD-3-Clause
// A basis by Gram and Schmidt, which keeps zeros where axes are fixed, and the exponential of what it spans.
#include "pose_refinement/free_motion.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/motion.h"
#include "pose_refinement/turns.h"
#include "rotations/conversions.h"

namespace kelvane {
namespace {

double product(const double* a, const double* b) {
  double sum = 0.0;
  for (int i = 0; i < 6; ++i) sum += a[i] * b[i];
  return sum;
}

double length_of_motion(const double* x) { return std::sqrt(product(x, x)); }

void divide(double* x, double by) {
  for (int i = 0; i < 6; ++i) x[i] /= by;
}

/// Twice, as once leaves rounding.
void remove_parts(const double (&taken)[6][6], std::size_t num_taken, double* x) {
  for (int pass = 0; pass < 2; ++pass) {
    for (std::size_t k = 0; k < num_taken; ++k) {
      const double part = product(taken[k], x);
      for (int i = 0; i < 6; ++i) x[i] -= part * taken[k][i];
    }
  }
}

}  // namespace

Free_motion::Free_motion(const Numbers& fixed, const Pose& start, const World& world) : start_(start) {
  constexpr double least_part = 1e-10;  // of a direction that the ones before do not span
  if (fixed.size % 6 != 0) {
    throw Bad_argument("size", "fixed",
                       " must be 6 numbers for each direction; there are " + std::to_string(fixed.size) + ".");
  }
  check_finite("fixed", fixed.data, 0, fixed.size);
  double taken[6][6] = {};
  std::size_t num_taken = 0;
  for (const double* given = fixed.data; given != fixed.data + fixed.size; given += 6) {
    double x[6];
    // A condition on dt in the caller's units is one on dt times the unit in those of the data.
    for (int i = 0; i < 6; ++i) x[i] = given[i] * (i < 3 ? 1.0 : world.unit);
    const double largest =
        std::abs(*std::max_element(x, x + 6, [](double a, double b) { return std::abs(a) < std::abs(b); }));
    if (!(largest > 0.0)) throw Bad_argument("zeroDirection", "fixed", ": a direction of length 0 fixes nothing.");
    divide(x, largest);
    divide(x, length_of_motion(x));
    remove_parts(taken, num_taken, x);
    if (!(length_of_motion(x) > least_part)) continue;
    divide(x, length_of_motion(x));
    std::copy_n(x, 6, taken[num_taken++]);
    if (num_taken == 6)
      throw Bad_argument("fixed", "fixed", " leaves nothing to refine: all six directions are fixed.");
  }
  num_free_ = 6 - num_taken;
  if (!is_whole()) add_across(taken, num_taken);
}

/// Of the axes each time the one that is most across the others.
void Free_motion::add_across(double (&taken)[6][6], std::size_t num_taken) {
  for (std::size_t j = 0; j < num_free_; ++j) {
    double best[6] = {};
    for (int axis = 0; axis < 6; ++axis) {
      double x[6] = {};
      x[axis] = 1.0;
      remove_parts(taken, num_taken, x);
      if (length_of_motion(x) > length_of_motion(best) * (1.0 + 1e-9)) std::copy_n(x, 6, best);
    }
    divide(best, length_of_motion(best));
    std::copy_n(best, 6, taken[num_taken++]);
    std::copy_n(best, 6, S_[j]);
  }
}

void Free_motion::set_parameters(const Pose& pose, double* y) const {
  double w[3];
  double x[6];
  turn_between(start_.rotation, pose.rotation, w);
  for (int i = 0; i < 3; ++i) {  // to axes of the world
    x[i] = start_.rotation[i][0] * w[0] + start_.rotation[i][1] * w[1] + start_.rotation[i][2] * w[2];
    x[3 + i] = pose.centre[i] - start_.centre[i];
  }
  take_nearest_turn(x);
  for (std::size_t j = 0; j < num_free_; ++j) y[j] = product(S_[j], x);
}

/// A turn is also one by 2 pi less or more: the one that leaves the least across the directions that are free. Where
/// that makes no difference it stays within half a turn.
void Free_motion::take_nearest_turn(double* x) const {
  const double angle = std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]);
  if (angle == 0.0) return;
  const auto rest_at = [&](double factor) {
    double rest[6] = {factor * x[0], factor * x[1], factor * x[2], x[3], x[4], x[5]};
    remove_parts(S_, num_free_, rest);
    return length_of_motion(rest);
  };
  const double usual = rest_at(1.0);
  double best = 1.0;
  double least = usual - 1e-9 * (angle + usual);
  for (const double turns : {-1.0, 1.0}) {
    const double factor = 1.0 + turns * 2.0 * rotations::pi / angle;
    const double rest = rest_at(factor);
    if (!(rest < least)) continue;
    least = rest;
    best = factor;
  }
  for (int i = 0; i < 3; ++i) x[i] *= best;
}

/// x = S y
void Free_motion::set_motion(const double* y, double* x) const {
  std::fill_n(x, 6, 0.0);
  for (std::size_t j = 0; j < num_free_; ++j) {
    for (int i = 0; i < 6; ++i) x[i] += y[j] * S_[j][i];
  }
}

Pose Free_motion::pose_at(const double* y) const {
  double x[6];
  double turn[3][3];
  set_motion(y, x);
  rotations::rot_vec_rad_to_rot_mat(x, turn);
  Pose pose;
  const auto& R = start_.rotation;
  for (int i = 0; i < 3; ++i) {
    pose.centre[i] = start_.centre[i] + x[3 + i];
    for (int j = 0; j < 3; ++j) {
      pose.rotation[i][j] = turn[i][0] * R[0][j] + turn[i][1] * R[1][j] + turn[i][2] * R[2][j];
    }
  }
  make_orthogonal(pose.rotation);
  return pose;
}

Pose Free_motion::nearest(const Pose& pose) const {
  if (is_whole()) return pose;
  double y[6];
  set_parameters(pose, y);
  return pose_at(y);
}

Pose Free_motion::moved_by(const Pose& pose, const double* twist) const {
  if (is_whole()) return kelvane::moved_by(pose, twist);
  double y[6];
  double w[6];
  double x[6];
  double J[3][3];
  set_parameters(pose, y);
  set_motion(y, w);
  inverse_left_jacobian(w, J);
  const auto& R = pose.rotation;
  double turn[3];
  for (int i = 0; i < 3; ++i) {
    x[3 + i] = R[i][0] * twist[0] + R[i][1] * twist[1] + R[i][2] * twist[2];
    turn[i] = R[i][0] * twist[3] + R[i][1] * twist[4] + R[i][2] * twist[5];
  }
  for (int i = 0; i < 3; ++i) x[i] = J[i][0] * turn[0] + J[i][1] * turn[1] + J[i][2] * turn[2];
  for (std::size_t j = 0; j < num_free_; ++j) y[j] += product(S_[j], x);
  return pose_at(y);
}

void Free_motion::errors(const Pose& pose, double (&T)[6][6]) const {
  const auto& R = pose.rotation;
  for (auto& row : T) std::fill_n(row, 6, 0.0);
  if (is_whole()) {
    for (int i = 0; i < 3; ++i) {
      T[i][3 + i] = 1.0;
      for (int j = 0; j < 3; ++j) T[3 + i][j] = R[i][j];
    }
    return;
  }
  double y[6];
  double w[6];
  double J[3][3];
  set_parameters(pose, y);
  set_motion(y, w);
  left_jacobian(w, J);
  for (std::size_t j = 0; j < num_free_; ++j) {
    double turn[3];
    for (int i = 0; i < 3; ++i) turn[i] = J[i][0] * S_[j][0] + J[i][1] * S_[j][1] + J[i][2] * S_[j][2];
    for (int i = 0; i < 3; ++i) {
      T[i][j] = R[0][i] * turn[0] + R[1][i] * turn[1] + R[2][i] * turn[2];
      T[3 + i][j] = S_[j][3 + i];
    }
  }
}

void Free_motion::twists(const Pose& pose, double (&T)[6][6]) const {
  double E[6][6];
  errors(pose, E);
  const auto& R = pose.rotation;
  for (int i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 6; ++j) {
      T[i][j] = R[0][i] * E[3][j] + R[1][i] * E[4][j] + R[2][i] * E[5][j];
      T[3 + i][j] = E[i][j];
    }
  }
}

void Free_motion::restore(const Pose& start, Pose& pose) const {
  if (is_whole()) return;
  bool turns = false;
  bool shifts[3] = {};
  for (std::size_t j = 0; j < num_free_; ++j) {
    for (int i = 0; i < 3; ++i) {
      turns = turns || S_[j][i] != 0.0;
      shifts[i] = shifts[i] || S_[j][3 + i] != 0.0;
    }
  }
  if (!turns) std::copy_n(&start.rotation[0][0], 9, &pose.rotation[0][0]);
  for (int i = 0; i < 3; ++i) {
    if (!shifts[i]) pose.centre[i] = start.centre[i];
  }
}

}  // namespace kelvane
