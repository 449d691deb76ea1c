// SPDX-License-Identifier: BSD-3-Clause
// The kernels of lens_kernels.h for one vector width; included once by the source of each variant.
#pragma once

#include "camera_pose/points_body.h"
#include "cameras/lens_body.h"
#include "pose_refinement/lens_kernels.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

/// Two rows from `row` on, group_size apart.
template <int width>
[[gnu::always_inline]] inline void subtract_seen(const Points<width>& some, const Lens_pixel<width>& seen,
                                                 const double* observed, double* values) {
  const std::size_t row = some.template place<2>();
  store<width>(values + row, some.masked(load_anywhere<width>(observed + row) - seen.u));
  const std::size_t next = row + group_size;
  store<width>(values + next, some.masked(load_anywhere<width>(observed + next) - seen.v));
}

template <int width>
void residuals(const double* points, std::size_t num_points, const Camera& camera, const Lens& given,
               const double* observed, double* values) {
  const Lens lens = given;  // which no store can change
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    Vectors<width> p;
    to_camera_frame<width>(some.X, camera, p);
    const Place_on_plane<width> place(p, lens);
    subtract_seen<width>(some, Lens_pixel<width>(place.a, place.b, lens), observed, values);
  });
}

template <int width>
void rows(const double* points, std::size_t num_points, const Camera& camera, const Lens& given, const double* observed,
          double* columns, std::size_t stride) {
  const Lens lens = given;  // which no store can change
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    Vectors<width> p;
    to_camera_frame<width>(some.X, camera, p);
    const Place_on_plane<width> place(p, lens);
    const Lens_pixel<width> seen(place.a, place.b, lens);
    subtract_seen<width>(some, seen, observed, columns + 6 * stride);
    const V<width> zero = {};
    const auto has_image = seen.u - seen.u == zero;
    double* to = columns + some.template place<2>();
    const auto write = [&](const V<width>& by_a, const V<width>& by_b) {
      V<width> d[3];  // by the point
      place.chain(by_a, by_b, lens, d);
      for (V<width>& entry : d) entry = some.masked(has_image ? entry : zero);
      for (std::size_t k = 0; k < 3; ++k) store<width>(to + k * stride, -d[k]);
      store<width>(to + 3 * stride, d[1] * p[2] - d[2] * p[1]);
      store<width>(to + 4 * stride, d[2] * p[0] - d[0] * p[2]);
      store<width>(to + 5 * stride, d[0] * p[1] - d[1] * p[0]);
      to += group_size;
    };
    write(seen.u_a, seen.u_b);
    write(seen.v_a, seen.v_b);
  });
}

template <int width>
constexpr kelvane::Lens_kernels lens_kernels_of_width = {residuals<width>, rows<width>};

}  // namespace
