// SPDX-License-Identifier: BSD-3-Clause
// The reduction of equations that come in pairs of rows, for one vector width; see reduction_kernels_body.h.
#pragma once

#include "least_squares/reflections_body.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

/// What is left of pairs of rows behind their first two columns: four of J and one of b.
inline constexpr std::size_t num_others = 4;

/// The products of g with itself and with the rows u and v of the other columns.
template <int width>
[[gnu::always_inline]] inline double multiply_by_shared(const double* g, const double* columns, std::size_t stride,
                                                        std::size_t num_groups, double (&with_u)[num_others + 1],
                                                        double (&with_v)[num_others + 1]) {
  constexpr std::size_t count = num_others + 1;
  alignas(64) double partial[2 * count + 2][group_size];
  for (std::size_t part = 0; part < group_size; part += width) {
    V<width> squares = {};
    V<width> u[count] = {};
    V<width> v[count] = {};
    for (std::size_t i = 0; i < num_groups; ++i) {
      const V<width> shared = load<width>(g + i * group_size + part);
      const double* entry = columns + 2 * i * group_size + part;
      squares += shared * shared;
#pragma GCC unroll 8
      for (std::size_t k = 0; k < count; ++k, entry += stride) {
        u[k] += shared * load<width>(entry);
        v[k] += shared * load<width>(entry + group_size);
      }
    }
#pragma GCC unroll 8
    for (std::size_t k = 0; k < count; ++k) {
      store<width>(&partial[k][part], u[k]);
      store<width>(&partial[count + k][part], v[k]);
    }
    store<width>(&partial[2 * count][part], squares);
    store<width>(&partial[2 * count + 1][part], V<width>{});
  }
  double sums[2 * count + 2];
#pragma GCC unroll 8
  for (std::size_t k = 0; k < 2 * count + 2; k += 2) sum_two_groups<width>(partial[k], sums + k);
  for (std::size_t k = 0; k < count; ++k) {
    with_u[k] = sums[k];
    with_v[k] = sums[count + k];
  }
  return sums[2 * count];
}

/// Takes f_u[k] g from the rows u of the other columns and f_v[k] g from the rows v, and on the way multiplies the new
/// columns 0 and 1 with all.
template <int width>
[[gnu::always_inline]] inline void update_by_shared(const double* g, double* columns, std::size_t stride,
                                                    std::size_t num_groups, const double* f_u, const double* f_v,
                                                    Products<num_others>& s) {
  Product_sums<width, num_others, 0> sums;
  constexpr std::size_t count = num_others + 1;
  for (std::size_t part = 0; part < group_size; part += width) {
    V<width> first[count] = {};
    V<width> second[count] = {};
    for (std::size_t i = 0; i < num_groups; ++i) {
      const V<width> shared = load<width>(g + i * group_size + part);
      double* entry = columns + 2 * i * group_size + part;
      V<width> u[count];
      V<width> v[count];
#pragma GCC unroll 8
      for (std::size_t k = 0; k < count; ++k, entry += stride) {
        u[k] = load<width>(entry) - f_u[k] * shared;
        v[k] = load<width>(entry + group_size) - f_v[k] * shared;
        store<width>(entry, u[k]);
        store<width>(entry + group_size, v[k]);
        first[k] += u[0] * u[k];
        first[k] += v[0] * v[k];
        if (k > 0) second[k] += u[1] * u[k];
        if (k > 0) second[k] += v[1] * v[k];
      }
    }
    sums.keep(first, second, part);
  }
  sums.finish(s);
}

/// The first two columns have no row in common and one length, so their reflections are one (docs/derivations.md, Eq.
/// 50); what they leave is reduced like any other system.
template <int width>
void reduce_pairs(const double* g, double* columns, std::size_t stride, std::size_t num_groups, double* triangle) {
  constexpr std::size_t row_size = num_others + 3;
  double f_u[num_others + 1];
  double f_v[num_others + 1];
  const Reflection reflection(multiply_by_shared<width>(g, columns, stride, num_groups, f_u, f_v));
  triangle[0] = triangle[row_size + 1] = reflection.length;
  triangle[1] = 0.0;
  for (std::size_t k = 0; k <= num_others; ++k) {
    f_u[k] *= reflection.inverse_square;
    f_v[k] *= reflection.inverse_square;
    triangle[k + 2] = f_u[k] * reflection.length;
    triangle[row_size + k + 2] = f_v[k] * reflection.length;
  }

  Products<num_others> s;
  update_by_shared<width>(g, columns, stride, num_groups, f_u, f_v, s);
  double left[num_others * (num_others + 1)] = {};
  eliminate<width, num_others, 0>(columns, stride, 2 * num_groups * group_size, left, s);
  for (std::size_t j = 0; j < num_others; ++j) {
    for (std::size_t k = j; k <= num_others; ++k) {
      triangle[(j + 2) * row_size + k + 2] = left[j * (num_others + 1) + k];
    }
  }
}

}  // namespace
