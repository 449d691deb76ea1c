// SPDX-License-Identifier: BSD-3-Clause
// What is wrong with points or what was seen of them.
#include "pose_refinement/observations.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "pose_refinement/bad_argument.h"

namespace kelvane {
namespace {

[[noreturn, gnu::cold]] void refuse_sizes(const char* name, const std::string& sentence) {
  throw Bad_argument("size", name, sentence);
}

[[noreturn, gnu::cold]] void refuse_infinite_observation(std::size_t number, double value) {
  throw Bad_argument("notFinite", "observations", Bad_argument::Where::entry, number,
                     " is " + text_of(value) + ". NaN is for what was not seen.");
}

[[noreturn, gnu::cold]] void refuse_zero_bearing(std::size_t point, double length) {
  throw Bad_argument("zeroBearing", "observations", Bad_argument::Where::point, point,
                     " has the length " + text_of(length, 2) + ": a bearing needs a direction.");
}

}  // namespace

double length_of_direction(const double* x) {
  const double largest = std::max({std::abs(x[0]), std::abs(x[1]), std::abs(x[2])});
  if (largest == 0.0) return 0.0;
  double square = 0.0;
  for (int k = 0; k < 3; ++k) square += (x[k] / largest) * (x[k] / largest);
  return largest * std::sqrt(square);
}

void set_unit_direction(const double* x, std::size_t point, double* direction) {
  constexpr double least_length = 1e-300;  // from there on it loses digits
  const double length = length_of_direction(x);
  if (length < least_length) refuse_zero_bearing(point, length);
  for (int k = 0; k < 3; ++k) direction[k] = x[k] / length;
}

void check_sizes(const Numbers& points, const Numbers& observations, std::size_t d) {
  if (points.size % 3 != 0) {
    refuse_sizes("points", ": " + std::to_string(points.size) + " numbers are no multiple of 3.");
  }
  const std::size_t n = points.size / 3;
  if (observations.size != d * n) {
    refuse_sizes("observations", " must be " + std::to_string(d * n) + " numbers, " + std::to_string(d) +
                                     " for each of the " + std::to_string(n) + " points; there are " +
                                     std::to_string(observations.size) + ".");
  }
}

void check_entries(const Numbers& points, const Numbers& observations, std::size_t d, std::size_t point) {
  check_finite("points", points.data, 3 * point, 3 * point + 3);
  for (std::size_t j = d * point; j < d * point + d; ++j) {
    if (std::isinf(observations.data[j])) refuse_infinite_observation(j, observations.data[j]);
  }
}

}  // namespace kelvane
