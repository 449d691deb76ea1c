// SPDX-License-Identifier: BSD-3-Clause
// Two cones meet where the planes of a degenerate cone of their pencil meet one of them (Richter-Gebert 2011, 11.4).
#include "pose_estimation/conics.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelvane {
namespace {

struct Cubic {
  double a, b, c;  // x^3 + a x^2 + b x + c

  double at(double x) const { return ((x + a) * x + b) * x + c; }
  double slope(double x) const { return (3.0 * x + 2.0 * a) * x + b; }
};

/// Newton's steps from x on, which must lie beyond all roots or near one, until they turn back.
double root_from(const Cubic& f, double x) {
  constexpr int most_steps = 60;
  double last = std::abs(f.at(x));
  for (int i = 0; i < most_steps; ++i) {
    const double next = x - f.at(x) / f.slope(x);
    const double value = std::abs(f.at(next));
    if (!(value < last)) break;
    x = next;
    last = value;
  }
  return x;
}

/// Newton's steps come down to the outermost root on the side of the inflection point where the curve is convex.
int roots_of(const Cubic& f, double (&roots)[3]) {
  const double inflection = -f.a / 3.0;
  const double p = f.b - f.a * f.a / 3.0;
  const double q = f.at(inflection);
  const double reach = 2.0 * std::max(std::sqrt(std::abs(p)), std::cbrt(std::abs(q)));  // no root is further from there
  roots[0] = root_from(f, q < 0.0 ? inflection + reach : inflection - reach);
  const double half_sum = -0.5 * (f.a + roots[0]);
  const double square = half_sum * half_sum - (f.b - 2.0 * half_sum * roots[0]);  // of half the others' difference
  if (!(square >= 0.0)) return 1;
  roots[1] = root_from(f, half_sum + std::sqrt(square));
  roots[2] = root_from(f, half_sum - std::sqrt(square));
  return 3;
}

void set_adjugate(const double (&A)[3][3], double (&adjugate)[3][3]) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int r = (j + 1) % 3, s = (j + 2) % 3, u = (i + 1) % 3, v = (i + 2) % 3;
      adjugate[i][j] = A[r][u] * A[s][v] - A[r][v] * A[s][u];
    }
  }
}

double product_trace(const double (&A)[3][3], const double (&B)[3][3]) {
  double sum = 0.0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) sum += A[i][j] * B[j][i];
  }
  return sum;
}

/// gh' + hg' of two planes, up to a factor, and how far the planes are from falling together: the largest of the
/// squares of the cross product, negative where they are not real (Eq. 72).
struct Degenerate {
  double D[3][3];
  double minus_adjugate[3][3];
  int largest = 0;

  Degenerate(const double (&A)[3][3], const double (&B)[3][3], double factor_of_B) {
    double most = 0.0;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        D[i][j] = A[i][j] + factor_of_B * B[i][j];
        most = std::max(most, std::abs(D[i][j]));
      }
    }
    for (auto& row : D) {
      for (double& entry : row) entry /= most;
    }
    set_adjugate(D, minus_adjugate);
    for (auto& row : minus_adjugate) {
      for (double& entry : row) entry = -entry;
    }
    for (int i = 1; i < 3; ++i) largest = minus_adjugate[i][i] > minus_adjugate[largest][largest] ? i : largest;
  }

  double opening() const { return minus_adjugate[largest][largest]; }

  void set_planes(double (&g)[3], double (&h)[3]) const {
    const double root = std::sqrt(opening());
    double p[3];
    for (int i = 0; i < 3; ++i) p[i] = minus_adjugate[i][largest] / root;
    const double C[3][3] = {{D[0][0], D[0][1] - p[2], D[0][2] + p[1]},
                            {D[1][0] + p[2], D[1][1], D[1][2] - p[0]},
                            {D[2][0] - p[1], D[2][1] + p[0], D[2][2]}};
    int r = 0, c = 0;
    for (int k = 1; k < 9; ++k) {
      if (std::abs(C[k / 3][k % 3]) > std::abs(C[r][c])) r = k / 3, c = k % 3;
    }
    for (int i = 0; i < 3; ++i) g[i] = C[r][i], h[i] = C[i][c];
  }
};

/// The rays of a plane through the origin, by its normal, on a cone.
int rays_of_plane(const double (&normal)[3], const double (&Q)[3][3], double (*rays)[3]) {
  int k = 0;
  for (int i = 1; i < 3; ++i) k = std::abs(normal[i]) > std::abs(normal[k]) ? i : k;
  const int i = (k + 1) % 3, j = (k + 2) % 3;
  const double wi = -normal[i] / normal[k], wj = -normal[j] / normal[k];
  const double a = Q[i][i] + 2.0 * Q[i][k] * wi + Q[k][k] * wi * wi;
  const double b = Q[i][j] + Q[i][k] * wj + Q[j][k] * wi + Q[k][k] * wi * wj;
  const double c = Q[j][j] + 2.0 * Q[j][k] * wj + Q[k][k] * wj * wj;
  const double square = b * b - a * c;
  if (!(square >= 0.0)) return 0;
  const double s = -(b + std::copysign(std::sqrt(square), b));
  const double both[2][2] = {{s, a}, {c, s}};  // x_i : x_j
  for (int n = 0; n < 2; ++n) {
    rays[n][i] = both[n][0];
    rays[n][j] = both[n][1];
    rays[n][k] = wi * both[n][0] + wj * both[n][1];
  }
  return 2;
}

}  // namespace

int common_rays(const double (&given_A)[3][3], const double (&given_B)[3][3], double (&rays)[max_common_rays][3]) {
  double adjugate_A[3][3], adjugate_B[3][3];
  set_adjugate(given_A, adjugate_A);
  set_adjugate(given_B, adjugate_B);
  double first = product_trace(given_A, adjugate_A) / 3.0, second = product_trace(adjugate_A, given_B);
  double third = product_trace(given_A, adjugate_B), fourth = product_trace(given_B, adjugate_B) / 3.0;
  const bool is_turned = std::abs(first) > std::abs(fourth);  // so that no root is far away
  const auto& A = is_turned ? given_B : given_A;
  const auto& B = is_turned ? given_A : given_B;
  if (is_turned) std::swap(first, fourth), std::swap(second, third);
  double roots[3] = {};
  const int num_roots = fourth == 0.0 ? 1 : roots_of({third / fourth, second / fourth, first / fourth}, roots);
  Degenerate best(A, B, roots[0]);
  for (int i = 1; i < num_roots; ++i) {
    const Degenerate other(A, B, roots[i]);
    if (other.opening() > best.opening()) best = other;
  }
  if (!(best.opening() > 0.0)) return 0;
  double g[3], h[3];
  best.set_planes(g, h);
  const int num_rays = rays_of_plane(g, B, rays);
  return num_rays + rays_of_plane(h, B, rays + num_rays);
}

}  // namespace kelvane
