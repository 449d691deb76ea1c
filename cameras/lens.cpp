// SPDX-License-Identifier: BSD-3-Clause
// Single points through a lens.
#include "cameras/lens.h"

#include <cmath>

#include "cameras/lens_body.h"

namespace kelvane {
namespace {

/// The angle that a distance from the axis on the plane stands for, of a field of view stretched.
double angle_of(const Lens& lens, double radius) {
  return lens.is_angular ? lens.omega * radius : std::atan2(radius, 1.0);
}

}  // namespace

void project(const Lens& lens, const double* point, double* pixel, double (*jacobian)[3]) {
  const double p[3] = {point[0], point[1], point[2]};
  const Place_on_plane<1> place(p, lens);
  const Lens_pixel<1> seen(place.a, place.b, lens);
  pixel[0] = seen.u;
  pixel[1] = seen.v;
  if (jacobian == nullptr) return;
  place.chain(seen.u_a, seen.u_b, lens, jacobian[0]);
  place.chain(seen.v_a, seen.v_b, lens, jacobian[1]);
}

double largest_angle(const Lens& lens) {
  const double angle = angle_of(lens, lens.fold);
  if (!lens.is_angular || lens.model->plane == Lens_plane::fisheye) return angle;
  return std::atan2(std::abs(std::sin(angle)) / lens.stretch, std::cos(angle));  // of a stretched field of view
}

double fold_in_pixels(const Lens& lens) {
  const Moved_place<1> moved(lens.fold, 0.0, lens);
  return std::abs(lens.K[0][0]) * std::hypot(moved.x, moved.y);
}

bool folds_inside(const Lens& lens, double width, double height) {
  const bool is_centred = lens.model->looks_back;  // of BAL
  for (const double u : {0.0, width}) {
    for (const double v : {0.0, height}) {
      const double corner[2] = {is_centred ? u - 0.5 * width : u, is_centred ? v - 0.5 * height : v};
      double direction[3];
      if (!unproject(lens, corner, direction)) return true;
    }
  }
  return false;
}

void ideal_pixel(const Lens& lens, const double* direction, double* pixel) {
  const double z = lens.forward * direction[2];
  const double inverse = z > 0.0 ? 1.0 / z : __builtin_nan("");
  const double a = direction[0] * inverse;
  const double b = direction[1] * inverse;
  pixel[0] = lens.K[0][0] * a + lens.K[0][1] * b + lens.K[0][2];
  pixel[1] = lens.K[1][1] * b + lens.K[1][2];
}

void ideal_direction(const Lens& lens, const double* pixel, double* direction) {
  const double b = (pixel[1] - lens.K[1][2]) / lens.K[1][1];
  direction[0] = (pixel[0] - lens.K[0][2] - lens.K[0][1] * b) / lens.K[0][0];
  direction[1] = b;
  direction[2] = lens.forward;
}

}  // namespace kelvane
