// SPDX-License-Identifier: BSD-3-Clause
// The kernels over residuals, for a width. Included once by a source for each instruction set, see vector_lanes.h.
#pragma once

#include "least_squares/vector_lanes.h"
#include "pose_refinement/sight_kernels.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

using kelvane::Loss;
using kelvane::Robust_loss;

/// Of the rows of a point, which are group_size apart.
[[gnu::always_inline]] inline std::size_t first_row(std::size_t point, std::size_t d) {
  return point / group_size * d * group_size + point % group_size;
}

template <int width>
[[gnu::always_inline]] inline V<width> everywhere(double value) {
  return V<width>{} + value;
}

template <int width>
[[gnu::always_inline]] inline bool has_any(const V<width>& x) {
  bool found = false;
  for (int lane = 0; lane < width; ++lane) found |= x[lane] != 0.0;
  return found;
}

/// In one loop of its own, which the compiler makes of vectors.
[[gnu::always_inline]] inline void take_roots(double* values, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) values[i] = __builtin_sqrt(values[i]);
}

template <int width>
void subtract_pixels(const double* observed, std::size_t num_groups, const kelvane::Pixel_lens& lens, double* values) {
  const V<width> most = everywhere<width>(lens.in_plane);
  const V<width> nan = everywhere<width>(__builtin_nan(""));
  const V<width> zero = {};
  for (std::size_t point = 0; point < num_groups * group_size; point += width) {
    const std::size_t i = first_row(point, 2);
    const V<width> a = load<width>(values + i);
    const V<width> b = load<width>(values + i + group_size);
    const V<width> off_a = a < zero ? -a : a;
    const V<width> off_b = b < zero ? -b : b;
    const V<width> no_number = (off_a <= most ? zero : nan) + (off_b <= most ? zero : nan);  // NaN is not below
    const V<width> u = load_anywhere<width>(observed + i) - (a + lens.shear * b + lens.cx) + no_number;
    const V<width> v = load_anywhere<width>(observed + i + group_size) - (lens.stretch * b + lens.cy) + no_number;
    store<width>(values + i, u);
    store<width>(values + i + group_size, v);
  }
}

/// By a lower triangle for two coordinates, by all of a matrix for three.
template <int width, std::size_t d>
[[gnu::always_inline]] inline void whiten_coordinates(const double* whitening, std::size_t num_groups, double* column) {
  constexpr std::size_t count = d == 2 ? 3 : d * d;
  for (std::size_t point = 0; point < num_groups * group_size; point += width) {
    double* const rows = column + first_row(point, d);
    const double* W = whitening + first_row(point, count);
    V<width> given[d];
    for (std::size_t k = 0; k < d; ++k) given[k] = load_anywhere<width>(rows + k * group_size);
    for (std::size_t k = 0; k < d; ++k) {
      const std::size_t num_entries = d == 2 ? k + 1 : d;
      V<width> sum = load_anywhere<width>(W) * given[0];
      for (std::size_t j = 1; j < num_entries; ++j) sum += load_anywhere<width>(W + j * group_size) * given[j];
      W += num_entries * group_size;
      store_anywhere<width>(rows + k * group_size, sum);
    }
  }
}

template <int width>
void whiten(const double* whitening, std::size_t d, std::size_t num_groups, double* column) {
  if (d == 2) return whiten_coordinates<width, 2>(whitening, num_groups, column);
  whiten_coordinates<width, 3>(whitening, num_groups, column);
}

template <int width>
bool lengths(const double* weights, const double* residuals, std::size_t d, std::size_t num_groups, double* lengths) {
  constexpr double safe = 1e150;
  const std::size_t num_points = num_groups * group_size;
  for (std::size_t point = 0; point < num_points; point += width) {
    V<width> square = {};
    for (std::size_t k = 0; k < d; ++k) {
      const std::size_t row = first_row(point, d) + k * group_size;
      const V<width> r = load_anywhere<width>(residuals + row);
      square += load_anywhere<width>(weights + row) * (r * r);
    }
    store_anywhere<width>(lengths + point, square);
  }
  take_roots(lengths, num_points);
  bool is_safe = true;  // not so for NaN
  const V<width> most = everywhere<width>(safe);
  for (std::size_t point = 0; point < num_points; point += width) {
    is_safe &= !has_any<width>(load_anywhere<width>(lengths + point) < most ? V<width>{} : most);
  }
  return is_safe;
}

template <int width>
void add_costs(const Robust_loss& loss, const double* lengths, std::size_t num_points, double* sums) {
  Robust_loss::with_kind(loss.kind, [&](auto kind) {
    std::size_t first_left = 0;
    if constexpr (kind() != Loss::cauchy) {  // which needs a logarithm
      first_left = num_points / group_size * group_size;
      for (std::size_t part = 0; part < group_size; part += width) {
        V<width> sum = load_anywhere<width>(sums + part);
        for (std::size_t i = part; i < first_left; i += group_size) {
          const V<width> s = load_anywhere<width>(lengths + i);
          V<width> cost;
          Robust_loss::set_cost<kind()>(s, everywhere<width>(loss.scale), cost);
          sum += cost;
        }
        store_anywhere<width>(sums + part, sum);
      }
    }
    for (std::size_t i = first_left; i < num_points; ++i) {
      double cost;
      Robust_loss::set_cost<kind()>(lengths[i], loss.scale, cost);
      sums[i % group_size] += cost;
    }
  });
}

template <int width>
void weigh(const Robust_loss& loss, const double* weights, const double* lengths, std::size_t d, std::size_t num_groups,
           double* r, double* roots) {
  // The residual of a point almost without weight may be huge. Any factor of a row is as good if the other side is
  // multiplied by what is missing, and this one keeps squares in range.
  const V<width> least_factor = everywhere<width>(1e-40);
  const V<width> zero = {};
  Robust_loss::with_kind(loss.kind, [&](auto kind) {
    for (std::size_t point = 0; point < num_groups * group_size; point += width) {
      const V<width> s = load_anywhere<width>(lengths + point);
      V<width> w;
      Robust_loss::set_weight<kind()>(s, everywhere<width>(loss.scale), w);
      const V<width> factor = w < least_factor ? least_factor : w;
      const V<width> other = w / factor;
      for (std::size_t k = 0; k < d; ++k) {
        const std::size_t row = first_row(point, d) + k * group_size;
        store<width>(roots + row, load_anywhere<width>(weights + row) * factor);
        store<width>(r + row, load<width>(r + row) * other);
      }
    }
  });
  take_roots(roots, num_groups * d * group_size);
  for (std::size_t row = 0; row < num_groups * d * group_size; row += width) {
    const V<width> root = load<width>(roots + row);
    const V<width> value = load<width>(r + row) * root;
    store<width>(r + row, root == zero ? zero : value);
  }
}

template <int width>
void add_slopes(const Robust_loss& loss, const double* weights, const double* lengths, std::size_t d,
                std::size_t num_groups, const double* columns, std::size_t stride, double (*sums)[group_size]) {
  const V<width> zero = {};
  const double* const r = columns + 6 * stride;
  Robust_loss::with_kind(loss.kind, [&](auto kind) {
    if constexpr (kind() == Loss::none) return;
    for (std::size_t point = 0; point < num_groups * group_size; point += width) {
      const V<width> s = load_anywhere<width>(lengths + point);
      V<width> slope;
      Robust_loss::set_slope<kind()>(s, everywhere<width>(loss.scale), slope);
      const V<width> square = s * s;
      const V<width> factor = slope < zero ? (square > zero ? -slope / square : zero) : zero;
      if (!has_any<width>(factor)) continue;
      V<width> pull[6] = {};
      for (std::size_t k = 0; k < d; ++k) {
        const std::size_t row = first_row(point, d) + k * group_size;
        const V<width> weighted = load_anywhere<width>(weights + row) * load<width>(r + row);
        for (std::size_t c = 0; c < 6; ++c) pull[c] += weighted * load<width>(columns + c * stride + row);
      }
      double(*sum)[group_size] = sums;
      for (std::size_t a = 0; a < 6; ++a) {
        const V<width> left = factor == zero ? zero : factor * pull[a];
        for (std::size_t b = a; b < 6; ++b, ++sum) {
          double* const to = *sum + point % group_size;
          const V<width> right = factor == zero ? zero : pull[b];
          store<width>(to, load<width>(to) + left * right);
        }
      }
    }
  });
}

template <int width>
void scale(const double* roots, std::size_t num_rows, double* column) {
  for (std::size_t row = 0; row < num_rows; row += width) {
    store<width>(column + row, load<width>(column + row) * load<width>(roots + row));
  }
}

template <int width>
constexpr kelvane::Sight_kernels sight_kernels_of_width = {whiten<width>,    subtract_pixels<width>, lengths<width>,
                                                           add_costs<width>, weigh<width>,           add_slopes<width>,
                                                           scale<width>};

}  // namespace
