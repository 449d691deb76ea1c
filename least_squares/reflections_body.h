// SPDX-License-Identifier: BSD-3-Clause
// Householder reflections of a few columns, two at a time, for one vector width; see reduction_kernels_body.h.
#pragma once

#include "least_squares/vector_lanes.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

/// A column is left out below this squared length: its square roots would have lost their digits. The caller scales
/// systems whose longest column is anywhere near it, so such a column is zero next to the others.
inline constexpr double smallest_squared_length = 1e-290;

/// The length of what remains of a column decides about its reflection (docs/derivations.md, Eq. 33).
struct Reflection {
  double length = 0.0;
  double inverse_square = 0.0;  // zero: no reflection

  [[gnu::always_inline]] explicit Reflection(double squared_length) {
    if (squared_length < smallest_squared_length) return;
    length = __builtin_sqrt(squared_length);
    inverse_square = 1.0 / squared_length;
  }
};

/// The row of the triangle and the multiples f[k] of column j that are taken from the columns behind it (Eq. 34);
/// s[k] is the product of columns j and k. Without a reflection all is zero, but for a column that is not finite.
[[gnu::always_inline]] inline void apply_to_row(const Reflection& reflection, std::size_t j, std::size_t n,
                                                const double* s, double* row, double* f) {
  row[j] = reflection.length;
#pragma GCC unroll 8
  for (std::size_t k = j + 1; k <= n; ++k) {
    f[k] = s[k] * reflection.inverse_square;
    row[k] = f[k] * reflection.length;
  }
}

/// Sums of products of two columns, j and j + 1, with themselves and those behind them: s[0][k] for k >= j, s[1][k] for
/// k >= j + 1.
template <std::size_t n>
using Products = double[2][n + 1];

/// Adds up products lane by lane.
template <int width, std::size_t n, std::size_t j>
struct Product_sums {
  static constexpr std::size_t count = n + 1 - j;
  static constexpr bool has_second = j + 1 < n;  // column j + 1 belongs to J
  alignas(64) double partial[2][count][group_size];

  [[gnu::always_inline]] void keep(const V<width> (&first)[count], const V<width> (&second)[count], std::size_t part) {
#pragma GCC unroll 8
    for (std::size_t k = 0; k < count; ++k) store<width>(&partial[0][k][part], first[k]);
    if constexpr (has_second) {
#pragma GCC unroll 8
      for (std::size_t k = 1; k < count; ++k) store<width>(&partial[1][k][part], second[k]);
    }
  }

  [[gnu::always_inline]] void finish(Products<n>& s) const {
    sum_up<0>(&s[0][j]);
    if constexpr (has_second) sum_up<1>(&s[1][j + 1]);
  }

 private:
  /// Products with column j from its own on, or with column j + 1.
  template <std::size_t row>
  [[gnu::always_inline]] void sum_up(double* sums) const {
#pragma GCC unroll 8
    for (std::size_t k = row; k + 1 < count; k += 2) sum_two_groups<width>(partial[row][k], sums + (k - row));
    if constexpr ((count - row) % 2 == 1) sums[count - row - 1] = sum_of_lanes(partial[row][count - 1]);
  }
};

/// The products of columns 0 and 1.
template <int width, std::size_t n>
[[gnu::always_inline]] inline void multiply_first(const double* a, std::size_t stride, std::size_t rows,
                                                  Products<n>& s) {
  Product_sums<width, n, 0> sums;
  for (std::size_t part = 0; part < group_size; part += width) {
    V<width> first[n + 1] = {};
    V<width> second[n + 1] = {};
    for (std::size_t i = part; i < rows; i += group_size) {
      const V<width> v = load<width>(a + i);
      const V<width> w = load<width>(a + stride + i);
      first[0] += v * v;
      first[1] += v * w;
      second[1] += w * w;
#pragma GCC unroll 8
      for (std::size_t k = 2; k <= n; ++k) {
        const V<width> value = load<width>(a + k * stride + i);
        first[k] += v * value;
        second[k] += w * value;
      }
    }
    sums.keep(first, second, part);
  }
  sums.finish(s);
}

/// Takes f[k] times column j - 2 and g[k] times what f leaves of column j - 1 from every column k >= j, and on the way
/// multiplies the new columns j and j + 1.
template <int width, std::size_t n, std::size_t j>
[[gnu::always_inline]] inline void update_and_multiply(double* a, std::size_t stride, std::size_t rows, const double* f,
                                                       const double* g, Products<n>& s) {
  using Sums = Product_sums<width, n, j>;
  Sums sums;
  for (std::size_t part = 0; part < group_size; part += width) {
    V<width> first[Sums::count] = {};
    V<width> second[Sums::count] = {};
    for (std::size_t i = part; i < rows; i += group_size) {
      const V<width> v = load<width>(a + (j - 2) * stride + i);
      const V<width> w = load<width>(a + (j - 1) * stride + i) - f[j - 1] * v;
      V<width> value[Sums::count];
#pragma GCC unroll 8
      for (std::size_t k = 0; k < Sums::count; ++k) {
        double* const entry = a + (j + k) * stride + i;
        value[k] = (load<width>(entry) - f[j + k] * v) - g[j + k] * w;
        store<width>(entry, value[k]);
        first[k] += value[0] * value[k];
        if (Sums::has_second && k > 0) second[k] += value[1] * value[k];
      }
    }
    sums.keep(first, second, part);
  }
  sums.finish(s);
}

/// sum of a times b
template <int width>
double product(const double* a, const double* b, std::size_t rows) {
  alignas(64) double partial[group_size];
  for (std::size_t part = 0; part < group_size; part += width) {
    V<width> total = {};
    for (std::size_t i = part; i < rows; i += group_size) total += load<width>(a + i) * load<width>(b + i);
    store<width>(&partial[part], total);
  }
  return sum_of_lanes(partial);
}

/// a -= f b
template <int width>
void subtract_multiple(double* a, double f, const double* b, std::size_t rows) {
  for (std::size_t i = 0; i < rows; i += width) store<width>(a + i, load<width>(a + i) - f * load<width>(b + i));
}

/// Takes column j from all columns behind it, at once, and multiplies what remains of column j + 1.
template <int width, std::size_t n>
void update_at_once(double* a, std::size_t stride, std::size_t rows, std::size_t j, double* f, Products<n>& s) {
  for (std::size_t k = j + 1; k <= n; ++k) {
    subtract_multiple<width>(a + k * stride, f[k], a + j * stride, rows);
    f[k] = 0.0;  // done
  }
  for (std::size_t k = j + 1; k <= n; ++k) s[1][k] = product<width>(a + (j + 1) * stride, a + k * stride, rows);
}

/// Two reflections from one set of products. What remains of column j + 1 behind the first reflection, and its
/// products, follow by subtraction (Eq. 35); where that would cancel more than a digit they are computed anew.
template <int width, std::size_t n, std::size_t j>
[[gnu::always_inline]] inline void eliminate(double* a, std::size_t stride, std::size_t rows, double* triangle,
                                             Products<n>& s) {
  double f[n + 1];
  double* const row = triangle + j * (n + 1);
  apply_to_row(Reflection(s[0][j]), j, n, s[0], row, f);
  if constexpr (j + 1 < n) {
    constexpr double smallest_remainder = 1.0 / 16.0;
    const double remainder = s[1][j + 1] - f[j + 1] * s[0][j + 1];
    if (__builtin_expect(remainder < smallest_remainder * s[1][j + 1], 0)) {
      update_at_once<width, n>(a, stride, rows, j, f, s);
    } else {
      s[1][j + 1] = remainder;
#pragma GCC unroll 8
      for (std::size_t k = j + 2; k <= n; ++k) s[1][k] -= f[j + 1] * s[0][k];
    }
    double g[n + 1];
    apply_to_row(Reflection(s[1][j + 1]), j + 1, n, s[1], row + n + 1, g);
    if constexpr (j + 2 < n) {
      update_and_multiply<width, n, j + 2>(a, stride, rows, f, g, s);
      eliminate<width, n, j + 2>(a, stride, rows, triangle, s);
    }
  }
}

}  // namespace
