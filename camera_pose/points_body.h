// SPDX-License-Identifier: BSD-3-Clause
// Points of a vector width in the camera frame, and their pixels; see point_kernels_body.h.
#pragma once

#include "camera_pose/camera.h"
#include "least_squares/vector_lanes.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

using kelvane::Camera;

/// Several points next to each other, or vectors.
template <int width>
using Vectors = V<width>[3];

/// row (x, y, z)'
template <int width>
[[gnu::always_inline]] inline V<width> dot(const double (&row)[3], const Vectors<width>& x) {
  return row[0] * x[0] + row[1] * x[1] + row[2] * x[2];
}

/// X - t
template <int width>
[[gnu::always_inline]] inline void load_from_centre(const double* points, const double (&t)[3], Vectors<width>& d) {
  load_items<width>(points, d);
  for (int i = 0; i < 3; ++i) d[i] -= t[i];
}

/// p = R' (X - t)
template <int width>
[[gnu::always_inline]] inline void to_camera_frame(const double* points, const Camera& camera, Vectors<width>& p) {
  Vectors<width> d;
  load_from_centre<width>(points, camera.t, d);
  for (int i = 0; i < 3; ++i) p[i] = dot<width>(camera.rotation[i], d);
}

/// The next points of a piece: where they lie, the number of the first, and which of them are points at all.
template <int width>
struct Points {
  const double* X;
  std::size_t group, part;
  Mask mask;

  /// Zero where there is no point.
  [[gnu::always_inline]] V<width> masked(const V<width>& value) const { return mask.of<width>(value, part); }
  /// The place of the first of num_outputs outputs, which are group_size apart.
  template <std::size_t num_outputs>
  [[gnu::always_inline]] std::size_t place() const {
    return num_outputs * group * group_size + part;
  }
};

/// Calls visit(points of a vector) for all of them.
template <int width, typename Visit>
[[gnu::always_inline]] inline void visit_points(const double* points, std::size_t num_points, const Visit& visit) {
  for (std::size_t group = 0; group * group_size < num_points; ++group) {
    const Mask mask(num_points - group * group_size);
    for (std::size_t part = 0; part < group_size; part += width) {
      visit(Points<width>{points + 3 * (group * group_size + part), group, part, mask});
    }
  }
}

/// A pixel with its derivatives by a twist, each of which is needed once or twice (docs/derivations.md, Eq. 48).
template <int width>
struct Pixel {
  V<width> u, v, g, z_u, z_v, fa, fb, fab, faa, fbb;

  /// With a = p_x / p_z and b = p_y / p_z.
  [[gnu::always_inline]] Pixel(const Points<width>& points, const Camera& camera) {
    Vectors<width> p;
    to_camera_frame<width>(points.X, camera, p);
    const V<width> zero = {};
    const V<width> f = points.masked(zero + camera.K.f);
    const V<width> inverse = points.masked(1.0 / p[2]);
    const V<width> a = p[0] * inverse;
    const V<width> b = p[1] * inverse;
    fa = f * a;
    fb = f * b;
    u = points.masked(fa + camera.K.cx);
    v = points.masked(fb + camera.K.cy);
    g = -(f * inverse);
    z_u = fa * inverse;
    z_v = fb * inverse;
    fab = fa * b;
    faa = -(f + fa * a);
    fbb = f + fb * b;
  }

  /// The columns of v_z and omega, and the prediction.
  [[gnu::always_inline]] void write_others(double* columns, std::size_t stride) const {
    const auto write = [&](std::size_t c, const V<width>& of_u, const V<width>& of_v) {
      store<width>(columns + c * stride, of_u);
      store<width>(columns + c * stride + group_size, of_v);
    };
    write(0, z_u, z_v);
    write(1, fab, fbb);
    write(2, faa, -fab);
    write(3, fb, -fa);
    write(4, u, v);
  }
};

}  // namespace
