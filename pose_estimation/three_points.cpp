// SPDX-License-Identifier: BSD-3-Clause
// Distances of three points from the camera, and the motion that takes the triangle there.
#include "pose_estimation/three_points.h"

#include <algorithm>
#include <cmath>

#include "pose_estimation/conics.h"

namespace kelvane {
namespace {

using Coordinates = double[3];

double dot(const Coordinates& a, const Coordinates& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

void set_cross(const Coordinates& a, const Coordinates& b, Coordinates& c) {
  for (int i = 0; i < 3; ++i) c[i] = a[(i + 1) % 3] * b[(i + 2) % 3] - a[(i + 2) % 3] * b[(i + 1) % 3];
}

/// The three numbers of a triangle stand at the index of the opposite corner.
struct Seen_triangle {
  double square[3];  // of the sides, 1 the longest
  double cosine[3];  // between the directions

  /// (Eq. 69) for the side opposite of corner k: what is missing to its square.
  double error(const Coordinates& x, int k) const {
    const double a = x[(k + 1) % 3], b = x[(k + 2) % 3];
    return (a * a + b * b - 2.0 * cosine[k] * a * b) - square[k];
  }

  double largest_error(const Coordinates& x) const {
    return std::max({std::abs(error(x, 0)), std::abs(error(x, 1)), std::abs(error(x, 2))});
  }

  /// x'Qx = square of the side k, as what x'Qx / square is for side k less that of side l (Eq. 70).
  void set_cone(int k, int l, double (&Q)[3][3]) const {
    for (auto& row : Q) std::fill_n(row, 3, 0.0);
    add_side(k, square[l], Q);
    add_side(l, -square[k], Q);
  }

  void add_side(int k, double factor, double (&Q)[3][3]) const {
    const int i = (k + 1) % 3, j = (k + 2) % 3;
    Q[i][i] += factor;
    Q[j][j] += factor;
    Q[i][j] -= factor * cosine[k];
    Q[j][i] -= factor * cosine[k];
  }
};

/// One of Newton's steps for Eq. 69 (Eq. 73); false where it does not lead nearer.
bool polish(const Seen_triangle& triangle, Coordinates& x) {
  double J[3][3] = {};
  Coordinates error;
  for (int k = 0; k < 3; ++k) {
    const int i = (k + 1) % 3, j = (k + 2) % 3;
    error[k] = triangle.error(x, k);
    J[i][k] = 2.0 * (x[i] - triangle.cosine[k] * x[j]);  // column by column
    J[j][k] = 2.0 * (x[j] - triangle.cosine[k] * x[i]);
  }
  Coordinates across[3];
  for (int i = 0; i < 3; ++i) set_cross(J[(i + 1) % 3], J[(i + 2) % 3], across[i]);
  const double determinant = dot(J[0], across[0]);
  Coordinates moved;
  for (int i = 0; i < 3; ++i) moved[i] = x[i] - dot(error, across[i]) / determinant;
  if (!(triangle.largest_error(moved) < triangle.largest_error(x))) return false;
  std::copy_n(moved, 3, x);
  return true;
}

/// Unit axes of a triangle as rows: along its first side, in its plane, across it.
void set_axes(const Coordinates (&corners)[3], double (&axes)[3][3]) {
  Coordinates a, b;
  for (int i = 0; i < 3; ++i) a[i] = corners[1][i] - corners[0][i], b[i] = corners[2][i] - corners[0][i];
  set_cross(a, b, axes[2]);
  const double length = std::sqrt(dot(a, a)), area = std::sqrt(dot(axes[2], axes[2]));
  for (int i = 0; i < 3; ++i) axes[0][i] = a[i] / length, axes[2][i] /= area;
  set_cross(axes[2], axes[0], axes[1]);
  const double rounded = std::sqrt(dot(axes[1], axes[1]));  // of a thin triangle the cross product is a little off
  for (double& coordinate : axes[1]) coordinate /= rounded;
  set_cross(axes[0], axes[1], axes[2]);
}

Pose pose_between(const Coordinates (&seen)[3], const Coordinates (&points)[3]) {
  double of_camera[3][3], of_world[3][3];
  set_axes(seen, of_camera);
  set_axes(points, of_world);
  Pose pose;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      pose.rotation[i][j] = 0.0;
      for (int k = 0; k < 3; ++k) pose.rotation[i][j] += of_world[k][i] * of_camera[k][j];
    }
  }
  for (int i = 0; i < 3; ++i) {
    double sum = 0.0;  // the middle of the triangle
    for (int k = 0; k < 3; ++k) sum += points[k][i] - dot(pose.rotation[i], seen[k]);
    pose.centre[i] = sum / 3.0;
  }
  return pose;
}

bool is_on_line(const Coordinates (&points)[3]) {
  constexpr double least_height = 1e-9;  // parts of the longest side
  Coordinates sides[3], normal;
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < 3; ++i) sides[k][i] = points[(k + 2) % 3][i] - points[(k + 1) % 3][i];
  }
  set_cross(sides[0], sides[1], normal);
  const double longest = std::max({dot(sides[0], sides[0]), dot(sides[1], sides[1]), dot(sides[2], sides[2])});
  return !(std::sqrt(dot(normal, normal)) > least_height * longest);
}

/// The triangle from its first corner on, in a unit in which squares neither overflow nor vanish: returns it.
double set_corners(const Coordinates (&points)[3], Coordinates (&corners)[3]) {
  double unit = 0.0;
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < 3; ++i) {
      corners[k][i] = points[k][i] - points[0][i];
      unit = std::max(unit, std::abs(corners[k][i]));
    }
  }
  for (auto& corner : corners) {
    for (double& coordinate : corner) coordinate /= unit;
  }
  return unit;
}

Seen_triangle triangle_of(const Coordinates (&corners)[3], const Coordinates (&directions)[3]) {
  Seen_triangle triangle;
  for (int k = 0; k < 3; ++k) {
    const int i = (k + 1) % 3, j = (k + 2) % 3;
    Coordinates between;
    for (int m = 0; m < 3; ++m) between[m] = corners[j][m] - corners[i][m];
    triangle.square[k] = dot(between, between);
    triangle.cosine[k] = dot(directions[i], directions[j]);
  }
  return triangle;
}

}  // namespace

int poses_of_three_points(const double (&points)[3][3], const double (&directions)[3][3],
                          Pose (&poses)[max_poses_of_three_points]) {
  Coordinates corners[3];
  const double unit = set_corners(points, corners);
  if (is_on_line(corners)) return 0;
  Seen_triangle triangle = triangle_of(corners, directions);
  const int longest = static_cast<int>(std::max_element(triangle.square, triangle.square + 3) - triangle.square);
  const double side = std::sqrt(triangle.square[longest]);
  for (double& square : triangle.square) square /= side * side;
  double A[3][3], B[3][3], rays[max_common_rays][3];
  triangle.set_cone((longest + 1) % 3, longest, A);
  triangle.set_cone((longest + 2) % 3, longest, B);
  const int num_rays = common_rays(A, B, rays);
  int num_poses = 0;
  for (int n = 0; n < num_rays; ++n) {
    Coordinates& x = rays[n];
    const double a = x[(longest + 1) % 3], b = x[(longest + 2) % 3];
    const double size = std::copysign(std::sqrt(a * a + b * b - 2.0 * triangle.cosine[longest] * a * b), x[0]);
    for (double& distance : x) distance /= size;
    if (!(x[0] > 0.0 && x[1] > 0.0 && x[2] > 0.0)) continue;
    for (int i = 0; i < 3 && polish(triangle, x); ++i) continue;
    constexpr double most = 1e-6;
    if (!(triangle.largest_error(x) < most)) continue;
    Coordinates seen[3];
    for (int k = 0; k < 3; ++k) {
      for (int i = 0; i < 3; ++i) seen[k][i] = side * x[k] * directions[k][i];
    }
    Pose& pose = poses[num_poses++] = pose_between(seen, corners);
    for (int i = 0; i < 3; ++i) pose.centre[i] = points[0][i] + unit * pose.centre[i];
  }
  return num_poses;
}

}  // namespace kelvane
