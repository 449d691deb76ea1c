// SPDX-License-Identifier: BSD-3-Clause
// A permutation of numbers (a Feistel network, walked until it is back in range), and the triple of a number.
#include "pose_estimation/triples.h"

#include <algorithm>
#include <cmath>

#include "pose_estimation/mixed.h"

namespace kelvane {
namespace {

std::uint64_t num_pairs(std::uint64_t n) { return n * (n - 1) / 2; }

/// Two of three neighbours can be divided before they are multiplied, and nothing overflows.
std::uint64_t num_triples(std::uint64_t n) {
  return n < 3 ? 0 : n % 3 == 2 ? num_pairs(n) * ((n - 2) / 3) : num_pairs(n) * (n - 2) / 3;
}

}  // namespace

Triples::Triples(std::size_t n, std::uint64_t seed) : size_(num_triples(std::min(n, most_points))), seed_(mixed(seed)) {
  while (half_bits_ < 32 && (std::uint64_t{1} << (2 * half_bits_)) < size_) ++half_bits_;
}

/// Less than four steps on average, as the network's range is less than four times the size.
std::uint64_t Triples::permuted(std::uint64_t number) const {
  const std::uint64_t mask = (std::uint64_t{1} << half_bits_) - 1;
  do {
    std::uint64_t left = number >> half_bits_, right = number & mask;
    for (std::uint64_t round = 0; round < 4; ++round) {
      const std::uint64_t next = left ^ (mixed(right + (round << 32U) + seed_) & mask);
      left = right;
      right = next;
    }
    number = (left << half_bits_) | right;
  } while (number >= size_);
  return number;
}

/// c > b > a with the number of triples below c, pairs below b and a as the parts of the number.
void Triples::get(std::uint64_t number, std::size_t (&triple)[3]) const {
  std::uint64_t left = permuted(number);
  auto c = static_cast<std::uint64_t>(std::cbrt(6.0 * static_cast<double>(left))) + 2;
  while (num_triples(c) > left) --c;
  left -= num_triples(c);
  auto b = static_cast<std::uint64_t>(std::sqrt(2.0 * static_cast<double>(left))) + 2;
  while (num_pairs(b) > left) --b;
  triple[0] = left - num_pairs(b);
  triple[1] = b;
  triple[2] = c;
}

}  // namespace kelvane
