// SPDX-License-Identifier: BSD-3-Clause
// The loop over points that agree with a pose, for a width. Included once by a source for each instruction set, see
// vector_lanes.h.
#pragma once

#include "least_squares/vector_lanes.h"
#include "pose_estimation/consensus_kernels.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

using kelvane::numbers_of_match;

template <int width>
[[gnu::always_inline]] inline V<width> product(const double* group, const V<width> (&p)[3]) {
  return load_anywhere<width>(group) * p[0] + load_anywhere<width>(group + group_size) * p[1] +
         load_anywhere<width>(group + 2 * group_size) * p[2];
}

/// Not below any number where the point has no place in front.
template <int width>
[[gnu::always_inline]] inline V<width> square(const double* group, const double (&A)[3][3], const double (&b)[3]) {
  V<width> p[3];
  const V<width> X = load_anywhere<width>(group);
  const V<width> Y = load_anywhere<width>(group + group_size);
  const V<width> Z = load_anywhere<width>(group + 2 * group_size);
  for (int i = 0; i < 3; ++i) p[i] = A[i][0] * X + A[i][1] * Y + A[i][2] * Z + b[i];
  const V<width> w = product<width>(group + 3 * group_size, p);
  const V<width> u = product<width>(group + 6 * group_size, p);
  const V<width> v = product<width>(group + 9 * group_size, p);
  const V<width> infinity = V<width>{} + __builtin_inf();
  return w > V<width>{} ? (u * u + v * v) / (w * w) : infinity;
}

template <int width>
void add_gains(const double* groups, std::size_t num_groups, const double (&A)[3][3], const double (&b)[3],
               double* sums) {
  const V<width> zero = {};
  for (std::size_t part = 0; part < group_size; part += width) {
    V<width> sum = load_anywhere<width>(sums + part);
    const double* group = groups + part;
    for (std::size_t i = 0; i < num_groups; ++i, group += numbers_of_match * group_size) {
      const V<width> gain = 1.0 - square<width>(group, A, b);
      sum += gain > zero ? gain : zero;
    }
    store_anywhere<width>(sums + part, sum);
  }
}

template <int width>
void squares(const double* groups, std::size_t num_groups, const double (&A)[3][3], const double (&b)[3],
             double* values) {
  for (std::size_t i = 0; i < num_groups; ++i, groups += numbers_of_match * group_size) {
    for (std::size_t part = 0; part < group_size; part += width) {
      store_anywhere<width>(values + i * group_size + part, square<width>(groups + part, A, b));
    }
  }
}

template <int width>
constexpr kelvane::Consensus_kernels consensus_kernels_of_width = {add_gains<width>, squares<width>};

}  // namespace
