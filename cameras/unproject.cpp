// SPDX-License-Identifier: BSD-3-Clause
// From a pixel back through the lens: by a bracketed iteration where it is radial, by a damped one in two dimensions
// otherwise (docs/derivations.md, Eq. 67).
#include <algorithm>
#include <cmath>
#include <limits>

#include "cameras/lens.h"
#include "cameras/lens_body.h"

namespace kelvane {
namespace {

constexpr double no_number = std::numeric_limits<double>::quiet_NaN();
constexpr int most_iterations = 200;  // a bisection over all magnitudes takes fewer

struct Place {
  double a, b;
};

double radial_at(const Lens& lens, double r) {
  const double s = r * r;
  const double* n = lens.numerator;
  const double* d = lens.denominator;
  return r * (1.0 + s * (n[0] + s * (n[1] + s * (n[2] + s * n[3])))) / (1.0 + s * (d[0] + s * (d[1] + s * d[2])));
}

double radial_slope_at(const Lens& lens, double r) {
  Lens radial = lens;
  radial.is_radial = true;
  return Moved_place<1>(r, 0.0, radial).x_a;
}

/// The radius below the fold that the radial terms move to `moved`; NaN where there is none. They rise up to there, to
/// a pole perhaps, next to which rounding decides their sign.
double radius_before(const Lens& lens, double moved) {
  constexpr double nearly = 1.0 - 1e-9;  // whether the end is near enough is for who looks at the pixel
  constexpr double inside = 1.0 - 1e-15;
  double low = 0.0;
  double high = std::min(lens.fold, std::max(1.0, moved));
  while (high < lens.fold && radial_at(lens, high) < moved) {
    low = high;
    high = std::min(lens.fold, 4.0 * high);
  }
  const double end = radial_at(lens, high);
  if (end >= 0.0 && end < nearly * moved) return no_number;
  double r = moved < high ? moved : low + 0.5 * (high - low);
  double last_step = high - low;
  for (int i = 0; i < most_iterations; ++i) {
    const double off = radial_at(lens, r) - moved;
    if (off == 0.0) break;
    (off > 0.0 ? high : low) = r;
    double next = r - off / radial_slope_at(lens, r);
    const bool is_good = next > low && next < high && std::abs(next - r) < 0.5 * std::abs(last_step);
    if (!is_good) next = low + 0.5 * (high - low);
    if (next == r) break;
    last_step = next - r;
    r = next;
  }
  return std::min(r, inside * lens.fold);
}

/// Newton's steps, halved until they lead nearer and stay on the disc, from a place on it.
Place place_before(const Lens& lens, const Place& moved, Place at) {
  Moved_place<1> seen(at.a, at.b, lens);
  double off = std::hypot(moved.a - seen.x, moved.b - seen.y);
  for (int i = 0; i < most_iterations && off > 0.0; ++i) {
    const double determinant = seen.x_a * seen.y_b - seen.x_b * seen.y_a;
    const double x = moved.a - seen.x;
    const double y = moved.b - seen.y;
    const double step_a = (seen.y_b * x - seen.x_b * y) / determinant;
    const double step_b = (seen.x_a * y - seen.y_a * x) / determinant;
    double part = 1.0;
    bool is_nearer = false;
    for (; part > 1e-12 && !is_nearer; part *= 0.5) {
      const Place next{at.a + part * step_a, at.b + part * step_b};
      if (!(std::hypot(next.a, next.b) < lens.fold)) continue;
      const Moved_place<1> there(next.a, next.b, lens);
      const double off_there = std::hypot(moved.a - there.x, moved.b - there.y);
      if (!(off_there < off)) continue;
      is_nearer = true;
      at = next;
      seen = there;
      off = off_there;
    }
    if (!is_nearer) break;
  }
  return at;
}

/// How far from the middle the lens moves anything at most: to the pole, if there is one.
double reach(const Lens& lens) {
  const double s = lens.fold * lens.fold;
  const double w = std::hypot(lens.tangential[0], lens.tangential[1]);
  const double s_2 = std::hypot(lens.prism[0], lens.prism[2]);
  const double s_4 = std::hypot(lens.prism[1], lens.prism[3]);
  return std::abs(radial_at(lens, lens.fold)) + s * (3.0 * w + s_2 + s * s_4);
}

/// The place on the plane that the lens moves to another one, if any is.
Place place_before(const Lens& lens, const Place& moved) {
  if (!lens.is_bent) return moved;
  const double distance = std::hypot(moved.a, moved.b);
  const double radius = radius_before(lens, distance);
  const double factor = distance > 0.0 ? radius / distance : 1.0;
  const Place radial{factor * moved.a, factor * moved.b};
  if (lens.is_radial) return radial;
  if (distance > (1.0 + 1e-9) * reach(lens)) return {no_number, no_number};  // which many steps would find out
  return place_before(lens, moved, std::hypot(radial.a, radial.b) < lens.fold ? radial : Place{0.0, 0.0});
}

/// Where the sensor has a pixel: the inverse of Eq. 64.
Place place_on_sensor(const Lens& lens, const double* pixel) {
  const auto& G = lens.to_pixel;
  double p[3];
  for (int i = 0; i < 3; ++i) {  // by the adjugate
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    const auto cofactor = [&](int row) {
      const int next = (row + 1) % 3;
      const int last = (row + 2) % 3;
      return G[next][j] * G[last][k] - G[next][k] * G[last][j];
    };
    p[i] = cofactor(0) * pixel[0] + cofactor(1) * pixel[1] + cofactor(2);
  }
  return {p[0] / p[2], p[1] / p[2]};
}

void set_direction(const Lens& lens, const Place& place, double* direction) {
  const double radius = std::hypot(place.a, place.b);
  const double angle = lens.omega * radius;
  double across = 1.0;
  double along = 1.0;
  if (lens.is_angular) {
    across = radius > 0.0 ? std::sin(angle) / (lens.stretch * radius) : lens.omega / lens.stretch;
    along = std::cos(angle);
  }
  const double x = across * place.a;
  const double y = across * place.b;
  const double length = std::hypot(std::hypot(x, y), along);
  direction[0] = x / length;
  direction[1] = y / length;
  direction[2] = lens.forward * along / length;
}

}  // namespace

bool unproject(const Lens& lens, const double* pixel, double* direction) {
  const Place place = place_before(lens, place_on_sensor(lens, pixel));
  const Lens_pixel<1> again(place.a, place.b, lens);
  const double rounding = 8.0 * std::numeric_limits<double>::epsilon() * (std::abs(pixel[0]) + std::abs(pixel[1]));
  const double off = std::hypot(again.u - pixel[0], again.v - pixel[1]);
  if (off <= 1e-10 + rounding) {
    set_direction(lens, place, direction);
    return true;
  }
  for (int i = 0; i < 3; ++i) direction[i] = no_number;
  return false;
}

}  // namespace kelvane
