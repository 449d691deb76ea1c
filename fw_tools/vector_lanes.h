// SPDX-License-Identifier: BSD-3-Clause
// Vectors of doubles for kernels that are compiled once for each width.
//
// Data comes in groups of eight lanes. A kernel of width 2 or 4 goes through a group in several vectors, so every
// result depends on the same lanes in the same order whatever the width. Only kernel sources include this file, and
// everything in it has internal linkage: no function compiled for one processor can stand in for that of another.
#pragma once

#include <cstddef>

// NOLINTNEXTLINE(google-build-namespaces): internal linkage is the point
namespace {

inline constexpr std::size_t num_lanes = 8;

template <int width>
struct Vector {
  // NOLINTBEGIN(modernize-use-using): the attributes do not take effect in an alias
  typedef double type __attribute__((vector_size(width * sizeof(double)), may_alias));
  typedef long long bits __attribute__((vector_size(width * sizeof(double)), may_alias));
  typedef bits unaligned_bits __attribute__((aligned(8)));
  // NOLINTEND(modernize-use-using)
};

template <int width>
using V = typename Vector<width>::type;

/// p is aligned to the vector's size.
template <int width>
[[gnu::always_inline]] inline V<width> load(const double* p) {
  return *reinterpret_cast<const V<width>*>(p);
}

template <int width>
[[gnu::always_inline]] inline void store(double* p, const V<width>& value) {
  *reinterpret_cast<V<width>*>(p) = value;
}

/// Which places of a group count: all of them, or the first `size` of a last group.
class Mask {
 public:
  explicit Mask(std::size_t size) : bits_(all_then_none + num_lanes - size) {}

  /// The value where the place counts, zero elsewhere, whatever stands there.
  template <int width>
  [[gnu::always_inline]] V<width> of(const V<width>& value, std::size_t part) const {
    using Bits = typename Vector<width>::bits;
    const Bits bits = *reinterpret_cast<const typename Vector<width>::unaligned_bits*>(bits_ + part);
    return reinterpret_cast<V<width>>(reinterpret_cast<Bits>(value) & bits);
  }

 private:
  static constexpr long long all_then_none[2 * num_lanes] = {-1, -1, -1, -1, -1, -1, -1, -1};
  const long long* bits_;
};

/// The sum of a group, in one order for every width.
[[gnu::always_inline]] inline double sum_of_lanes(const double* p) {
  return ((p[0] + p[4]) + (p[1] + p[5])) + ((p[2] + p[6]) + (p[3] + p[7]));
}

/// The sums of two groups, p and the one behind it, with half the shuffles of two single ones.
template <int width>
[[gnu::always_inline]] inline void sum_two_groups(const double* p, double* sums) {
  const double* q = p + num_lanes;
  if constexpr (width == 2) {
    const V<2> p_low = load<2>(p) + load<2>(p + 4);
    const V<2> p_high = load<2>(p + 2) + load<2>(p + 6);
    const V<2> q_low = load<2>(q) + load<2>(q + 4);
    const V<2> q_high = load<2>(q + 2) + load<2>(q + 6);
    const V<2> low = __builtin_shufflevector(p_low, q_low, 0, 2) + __builtin_shufflevector(p_low, q_low, 1, 3);
    const V<2> high = __builtin_shufflevector(p_high, q_high, 0, 2) + __builtin_shufflevector(p_high, q_high, 1, 3);
    const V<2> both = low + high;
    sums[0] = both[0];
    sums[1] = both[1];
  } else {
    const V<4> of_p = load<4>(p) + load<4>(p + 4);
    const V<4> of_q = load<4>(q) + load<4>(q + 4);
    const V<4> halves =
        __builtin_shufflevector(of_p, of_q, 0, 4, 2, 6) + __builtin_shufflevector(of_p, of_q, 1, 5, 3, 7);
    sums[0] = halves[0] + halves[2];
    sums[1] = halves[1] + halves[3];
  }
}

}  // namespace
