// SPDX-License-Identifier: BSD-3-Clause
// The kernels of point_kernels.h for one vector width; included once by the source of each variant.
#pragma once

#include "camera_pose/point_kernels.h"
#include "camera_pose/points_body.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

using kelvane::Projection;

template <int width>
void pixel_rows(const double* points, std::size_t num_points, const Camera& camera, double* columns,
                std::size_t stride) {
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    const Pixel<width> pixel(some, camera);
    double* const first = columns + some.template place<2>();
    double* const second = first + stride;
    store<width>(first, pixel.g);
    store<width>(first + group_size, V<width>{});
    store<width>(second, V<width>{});
    store<width>(second + group_size, pixel.g);
    pixel.write_others(second + stride, stride);
  });
}

template <int width>
void pixel_pairs(const double* points, std::size_t num_points, const Camera& camera, double* columns,
                 std::size_t stride) {
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    const Pixel<width> pixel(some, camera);
    store<width>(columns + some.template place<1>(), pixel.g);
    pixel.write_others(columns + stride + some.template place<2>(), stride);
  });
}

template <int width>
void bearing_rows(const double* points, std::size_t num_points, const Camera& camera, double* columns,
                  std::size_t stride) {
  const double f = camera.K.f;
  const double cx = camera.K.cx;
  const double cy = camera.K.cy;
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    Vectors<width> p;
    to_camera_frame<width>(some.X, camera, p);
    for (V<width>& coordinate : p) coordinate = some.masked(coordinate);
    const auto write = [&](std::size_t c, const V<width>& x, const V<width>& y, const V<width>& z) {
      double* const to = columns + c * stride + some.template place<3>();
      store<width>(to, f * x + cx * z);
      store<width>(to + group_size, f * y + cy * z);
      store<width>(to + 2 * group_size, z);
    };
    const V<width> zero = {};
    const V<width> minus_one = some.masked(zero - 1.0);
    write(0, minus_one, zero, zero);
    write(1, zero, minus_one, zero);
    write(2, zero, zero, minus_one);
    write(3, zero, p[2], -p[1]);
    write(4, -p[2], zero, p[0]);
    write(5, p[1], -p[0], zero);
    write(6, p[0], p[1], p[2]);
  });
}

/// The pixel of a point.
struct Pixel_model {
  static constexpr std::size_t size = 2;

  template <int width>
  [[gnu::always_inline]] static void predict(const Points<width>& points, const Camera& camera, V<width> (&y)[size]) {
    const Pixel<width> pixel(points, camera);
    y[0] = pixel.u;
    y[1] = pixel.v;
  }
};

/// K p of a point, undivided.
struct Bearing_model {
  static constexpr std::size_t size = 3;

  template <int width>
  [[gnu::always_inline]] static void predict(const Points<width>& points, const Camera& camera, V<width> (&y)[size]) {
    Vectors<width> p;
    to_camera_frame<width>(points.X, camera, p);
    y[0] = points.masked(camera.K.f * p[0] + camera.K.cx * p[2]);
    y[1] = points.masked(camera.K.f * p[1] + camera.K.cy * p[2]);
    y[2] = points.masked(p[2]);
  }
};

template <int width, typename Model>
void predict(const double* points, std::size_t num_points, const Camera& camera, double* values) {
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    V<width> y[Model::size];
    Model::template predict<width>(some, camera, y);
    double* const to = values + some.template place<Model::size>();
    for (std::size_t k = 0; k < Model::size; ++k) store<width>(to + k * group_size, y[k]);
  });
}

template <int width, typename Model>
void differences(const double* points, std::size_t num_points, const kelvane::Moved_cameras& cameras, double* columns,
                 std::size_t stride) {
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    V<width> y[Model::size];
    Model::template predict<width>(some, cameras.here, y);
    double* to = columns + some.template place<Model::size>();
    for (std::size_t j = 0; j < cameras.n; ++j, to += stride) {
      V<width> moved[Model::size];
      Model::template predict<width>(some, cameras.moved[j], moved);
      for (std::size_t k = 0; k < Model::size; ++k) {
        store<width>(to + k * group_size, (moved[k] - y[k]) * cameras.inverse_step[j]);
      }
    }
    for (std::size_t k = 0; k < Model::size; ++k) store<width>(to + k * group_size, y[k]);
  });
}

template <int width>
void pixel_rows_by_parameters(const double* points, std::size_t num_points, const Projection& projection,
                              double* columns, std::size_t stride) {
  const auto& M = projection.M;
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    Vectors<width> d;
    load_from_centre<width>(some.X, projection.t, d);
    const V<width> inverse_w = 1.0 / dot<width>(M[2], d);
    const V<width> u = dot<width>(M[0], d) * inverse_w;
    const V<width> v = dot<width>(M[1], d) * inverse_w;
    double* du = columns + some.template place<2>();
    double* dv = du + group_size;
    for (std::size_t j = 0; j < projection.n; ++j, du += stride, dv += stride) {
      const auto& dM = projection.dM[j];
      const V<width> dw = dot<width>(dM[2], d);
      store<width>(du, some.masked((dot<width>(dM[0], d) - u * dw) * inverse_w));
      store<width>(dv, some.masked((dot<width>(dM[1], d) - v * dw) * inverse_w));
    }
    for (std::size_t j = 0; j < 3; ++j, du += stride, dv += stride) {  // d(M (X - t))/dt_j is minus column j of M
      store<width>(du, some.masked((u * M[2][j] - M[0][j]) * inverse_w));
      store<width>(dv, some.masked((v * M[2][j] - M[1][j]) * inverse_w));
    }
  });
}

template <int width>
void bearing_rows_by_parameters(const double* points, std::size_t num_points, const Projection& projection,
                                double* columns, std::size_t stride) {
  visit_points<width>(points, num_points, [&](const Points<width>& some) {
    Vectors<width> d;
    load_from_centre<width>(some.X, projection.t, d);
    for (std::size_t i = 0; i < 3; ++i) {
      double* row = columns + some.template place<3>() + i * group_size;
      for (std::size_t j = 0; j < projection.n; ++j, row += stride) {
        store<width>(row, some.masked(dot<width>(projection.dM[j][i], d)));
      }
      for (std::size_t j = 0; j < 3; ++j, row += stride) {
        store<width>(row, some.masked(V<width>{} - projection.M[i][j]));
      }
    }
  });
}

template <int width, std::size_t size>
double subtract(const double* observations, std::size_t num_groups, double* values) {
  alignas(64) double partial[group_size];
  for (std::size_t part = 0; part < group_size; part += width) {
    V<width> total = {};
    for (std::size_t g = 0; g < num_groups; ++g) {
      V<width> observed[size];
      load_items<width>(observations + size * (g * group_size + part), observed);
      for (std::size_t k = 0; k < size; ++k) {
        double* const value = values + (size * g + k) * group_size + part;
        const V<width> left = observed[k] - load<width>(value);
        store<width>(value, left);
        total += left * left;
      }
    }
    store<width>(&partial[part], total);
  }
  return sum_of_lanes(partial);
}

template <int width>
constexpr kelvane::Point_kernels point_kernels_of_width = {pixel_rows<width>,
                                                           bearing_rows<width>,
                                                           pixel_pairs<width>,
                                                           predict<width, Pixel_model>,
                                                           predict<width, Bearing_model>,
                                                           differences<width, Pixel_model>,
                                                           differences<width, Bearing_model>,
                                                           pixel_rows_by_parameters<width>,
                                                           bearing_rows_by_parameters<width>,
                                                           subtract<width, 2>,
                                                           subtract<width, 3>};

}  // namespace
