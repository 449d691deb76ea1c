// SPDX-License-Identifier: BSD-3-Clause
// Small triangles whose rank and solution are known.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "least_squares/small_system.h"
#include "least_squares/triangle.h"
#include "support/cases.h"
#include "support/linear_systems.h"
#include "support/reference_svd.h"

namespace small_triangles {

using support::Random;
using Units = kelvane::Small_system::Units;

constexpr double eps = std::numeric_limits<double>::epsilon();

/// Row by row [R | c], with zeros left of the diagonal.
struct Triangle {
  std::size_t n;
  std::vector<double> entries;

  explicit Triangle(std::size_t size) : n(size), entries(n * (n + 1), 0.0) {}
  double& at(std::size_t i, std::size_t j) { return entries[i * (n + 1) + j]; }
  double at(std::size_t i, std::size_t j) const { return entries[i * (n + 1) + j]; }

  std::vector<double> solution(std::size_t num_rows, Units units = Units::each) const {
    std::vector<double> dx(n, -1.5);
    kelvane::Small_system().solve_shortest(entries.data(), n, num_rows, units, dx.data());
    return dx;
  }

  reference::Least_squares reference(std::size_t num_rows) const {
    reference::Matrix R(n, reference::Vector(n));
    reference::Vector c(n);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) R[i][j] = at(i, j);
      c[i] = at(i, n);
    }
    return reference::least_squares(R, c, num_rows);
  }
};

inline Triangle random_triangle(std::size_t n, Random& random) {
  Triangle triangle(n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i; j <= n; ++j) triangle.at(i, j) = random.uniform(-1.0, 1.0);
    triangle.at(i, i) += std::copysign(1.0, triangle.at(i, i));
  }
  return triangle;
}

/// The triangle of a system with these singular values, b of unit components.
inline Triangle reduced(std::size_t m, const std::vector<double>& sigma, Random& random) {
  const std::size_t n = sigma.size();
  const auto system = support::system_of(m, sigma, std::vector<double>(n, 1.0), 1.0, random);
  kelvane::Block block;
  block.resize(n);
  kelvane::Triangle reduced;
  reduced.start(n);
  support::visit_blocks(system, 240, block, [&](std::size_t num_rows) { reduced.absorb(block, num_rows); });
  Triangle triangle(n);
  std::copy_n(reduced.entries(), triangle.entries.size(), triangle.entries.data());
  return triangle;
}

/// Ones, and `smallest` at the given place of the diagonal, so the singular values are known to the last bit. c is 1.
inline Triangle diagonal(std::size_t n, std::size_t place, double smallest) {
  Triangle triangle(n);
  for (std::size_t i = 0; i < n; ++i) {
    triangle.at(i, i) = i == place ? smallest : 1.0;
    triangle.at(i, n) = 1.0;
  }
  return triangle;
}

}  // namespace small_triangles
