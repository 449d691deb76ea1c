// SPDX-License-Identifier: BSD-3-Clause
// The kernels of reduction_kernels.h for one vector width; included once by the source of each variant.
#pragma once

#include "least_squares/pair_reduction_body.h"
#include "least_squares/reduction_kernels.h"
#include "least_squares/reflections_body.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

/// As many unknowns as a pose has, unrolled.
template <int width, std::size_t n>
void reduce_fixed(double* columns, std::size_t stride, std::size_t rows, double* triangle) {
  Products<n> s;
  multiply_first<width, n>(columns, stride, rows, s);
  eliminate<width, n, 0>(columns, stride, rows, triangle, s);
}

/// Any number of unknowns, one reflection after the other.
template <int width>
void reduce_any(double* columns, std::size_t stride, std::size_t rows, std::size_t n, double* triangle, double* s,
                double* f) {
  for (std::size_t j = 0; j < n; ++j) {
    const double* v = columns + j * stride;
    for (std::size_t k = j; k <= n; ++k) s[k] = product<width>(v, columns + k * stride, rows);
    apply_to_row(Reflection(s[j]), j, n, s, triangle + j * (n + 1), f);
    for (std::size_t k = j + 1; k <= n; ++k) subtract_multiple<width>(columns + k * stride, f[k], v, rows);
  }
}

template <int width>
void reduce(double* columns, std::size_t stride, std::size_t rows, std::size_t n, double* triangle, double* scratch) {
  if (n == 6) {
    reduce_fixed<width, 6>(columns, stride, rows, triangle);
  } else if (n == 7) {
    reduce_fixed<width, 7>(columns, stride, rows, triangle);
  } else {
    reduce_any<width>(columns, stride, rows, n, triangle, scratch, scratch + n + 1);
  }
}

template <int width>
constexpr kelvane::Reduction_kernels reduction_kernels_of_width = {reduce<width>, reduce_pairs<width>};

}  // namespace
