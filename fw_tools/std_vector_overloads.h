// SPDX-License-Identifier: BSD-3-Clause
// Arithmetic and printing of std::vector.
#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

#include "fw_tools/report.h"
#include "fw_tools/scalar_helpers.h"

namespace fw {

namespace site {
inline constexpr Site vector_difference{
    "fw_tools/std_vector_overloads.h", 302,
    "const std::vector<_Tp> fw::operator-(const std::vector<_Tp>&, const std::vector<_Tp>&) [with T = double]"};
}  // namespace site

/// The element-wise difference a - b.
/// Raises "size mismatch ..." (fw_tools/std_vector_overloads.h, 302) when the lengths differ.
template <typename T>
const std::vector<T> operator-(const std::vector<T>& a, const std::vector<T>& b);

/// Writes " Size: ", the length, " { ", each element followed by a blank, and "} ".
template <typename T>
std::ostream& operator<<(std::ostream& stream, const std::vector<T>& values);

/// The sum of the elements, accumulated in double in index order and converted to T (for integers by truncation toward
/// zero); 0 for an empty vector. The total must be representable in T.
template <typename T>
T sum(const std::vector<T>& values);

template <typename T>
const std::vector<T> operator-(const std::vector<T>& a, const std::vector<T>& b) {
  if (a.size() != b.size()) {
    raise(site::vector_difference, text("size mismatch. vec1 had size ", a.size(), " but vec2 had size ", b.size()));
  }
  std::vector<T> difference(a.size());
  for (std::size_t i = 0; i < a.size(); ++i) difference[i] = a[i] - b[i];
  return difference;
}

template <typename T>
std::ostream& operator<<(std::ostream& stream, const std::vector<T>& values) {
  stream << " Size: " << values.size() << " { ";
  for (const T& value : values) stream << value << " ";
  return stream << "} ";
}

template <typename T>
T sum(const std::vector<T>& values) {
  double total = 0.0;
  for (const T& value : values) total += static_cast<double>(value);
  return static_cast<T>(total);
}

}  // namespace fw
