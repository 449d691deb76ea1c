// SPDX-License-Identifier: BSD-3-Clause
// The kernels of point_kernels.h for one vector width; included once by the source of each variant.
#pragma once

#include "camera_pose/point_kernels.h"
#include "fw_tools/vector_lanes.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

[[gnu::always_inline]] inline std::size_t size_of_group(std::size_t points_left) {
  return points_left < num_lanes ? points_left : num_lanes;
}

/// Several points next to each other.
template <int width>
struct Points {
  V<width> X, Y, Z;
};

template <int width>
[[gnu::always_inline]] inline Points<width> load_points(const double* points) {
  return {load<width>(points), load<width>(points + num_lanes), load<width>(points + 2 * num_lanes)};
}

/// row (X, Y, Z, 1)'
template <int width>
[[gnu::always_inline]] inline V<width> dot(const double (&row)[4], const Points<width>& p) {
  return row[0] * p.X + row[1] * p.Y + row[2] * p.Z + row[3];
}

/// row (X, Y, Z)'
template <int width>
[[gnu::always_inline]] inline V<width> dot(const double (&row)[3], const Points<width>& p) {
  return row[0] * p.X + row[1] * p.Y + row[2] * p.Z;
}

template <int width>
void predict_pixels(const double* points, std::size_t num_points, const double (&P)[3][4], double* values) {
  for (std::size_t left = num_points; left > 0;
       left -= size_of_group(left), points += 3 * num_lanes, values += 2 * num_lanes) {
    const Mask mask(size_of_group(left));
    for (std::size_t part = 0; part < num_lanes; part += width) {
      const auto p = load_points<width>(points + part);
      const V<width> w = dot<width>(P[2], p);
      store<width>(values + part, mask.of<width>(dot<width>(P[0], p) / w, part));
      store<width>(values + num_lanes + part, mask.of<width>(dot<width>(P[1], p) / w, part));
    }
  }
}

template <int width>
void predict_bearings(const double* points, std::size_t num_points, const double (&P)[3][4], double* values) {
  for (std::size_t left = num_points; left > 0;
       left -= size_of_group(left), points += 3 * num_lanes, values += 3 * num_lanes) {
    const Mask mask(size_of_group(left));
    for (std::size_t part = 0; part < num_lanes; part += width) {
      const auto p = load_points<width>(points + part);
      for (std::size_t i = 0; i < 3; ++i) {
        store<width>(values + i * num_lanes + part, mask.of<width>(dot<width>(P[i], p), part));
      }
    }
  }
}

/// X - t
template <int width>
[[gnu::always_inline]] inline Points<width> relative_to_centre(const double* points, const double (&t)[3]) {
  const auto p = load_points<width>(points);
  return {p.X - t[0], p.Y - t[1], p.Z - t[2]};
}

template <int width, std::size_t n_r>
void pixel_rows(const double* points, std::size_t num_points, const Projection<n_r>& projection, double* columns,
                std::size_t stride) {
  const auto& M = projection.M;
  for (std::size_t left = num_points; left > 0;
       left -= size_of_group(left), points += 3 * num_lanes, columns += 2 * num_lanes) {
    const Mask mask(size_of_group(left));
    for (std::size_t part = 0; part < num_lanes; part += width) {
      const auto d = relative_to_centre<width>(points + part, projection.t);
      const V<width> inverse_w = 1.0 / dot<width>(M[2], d);
      const V<width> u = dot<width>(M[0], d) * inverse_w;
      const V<width> v = dot<width>(M[1], d) * inverse_w;
      const V<width> factor = mask.of<width>(inverse_w, part);
      double* du = columns + part;
      double* dv = du + num_lanes;
#pragma GCC unroll 4
      for (std::size_t j = 0; j < n_r; ++j, du += stride, dv += stride) {
        const auto& dM = projection.dM[j];
        const V<width> dw = dot<width>(dM[2], d);
        store<width>(du, (dot<width>(dM[0], d) - u * dw) * factor);
        store<width>(dv, (dot<width>(dM[1], d) - v * dw) * factor);
      }
#pragma GCC unroll 3
      for (std::size_t j = 0; j < 3; ++j, du += stride, dv += stride) {  // d(M (X - t))/dt_j is minus column j of M
        store<width>(du, (u * M[2][j] - M[0][j]) * factor);
        store<width>(dv, (v * M[2][j] - M[1][j]) * factor);
      }
      store<width>(du, mask.of<width>(u, part));
      store<width>(dv, mask.of<width>(v, part));
    }
  }
}

template <int width, std::size_t n_r>
void bearing_rows(const double* points, std::size_t num_points, const Projection<n_r>& projection, double* columns,
                  std::size_t stride) {
  for (std::size_t left = num_points; left > 0;
       left -= size_of_group(left), points += 3 * num_lanes, columns += 3 * num_lanes) {
    const Mask mask(size_of_group(left));
    for (std::size_t part = 0; part < num_lanes; part += width) {
      const auto d = relative_to_centre<width>(points + part, projection.t);
      for (std::size_t i = 0; i < 3; ++i) {
        double* row = columns + i * num_lanes + part;
        for (std::size_t j = 0; j < n_r; ++j, row += stride) {
          store<width>(row, mask.of<width>(dot<width>(projection.dM[j][i], d), part));
        }
        for (std::size_t j = 0; j < 3; ++j, row += stride) {
          store<width>(row, mask.of<width>(V<width>{} - projection.M[i][j], part));
        }
        store<width>(row, mask.of<width>(dot<width>(projection.M[i], d), part));
      }
    }
  }
}

template <int width>
constexpr Point_kernels point_kernels_of_width = {predict_pixels<width>,  predict_bearings<width>,
                                                  pixel_rows<width, 3>,   pixel_rows<width, 4>,
                                                  bearing_rows<width, 3>, bearing_rows<width, 4>};

}  // namespace
