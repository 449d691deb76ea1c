// SPDX-License-Identifier: BSD-3-Clause
// All triples of points, each once, in an order drawn by lot.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kelvane {

/// Triple number h is the same whoever asks, so that any part of the order can be worked on by itself.
class Triples {
 public:
  static constexpr std::size_t most_points = std::size_t{1} << 20U;  ///< more triples than anybody tries

  /// Of the first points of n >= 3, all up to most_points.
  Triples(std::size_t n, std::uint64_t seed);

  std::uint64_t size() const { return size_; }
  /// number: below size().
  void get(std::uint64_t number, std::size_t (&triple)[3]) const;

 private:
  std::uint64_t permuted(std::uint64_t number) const;

  std::uint64_t size_, seed_;
  unsigned half_bits_ = 1;
};

}  // namespace kelvane
