// SPDX-License-Identifier: BSD-3-Clause
// Vectors of doubles for kernels that are compiled once for each width.
//
// Data is worked on in groups of eight lanes. A kernel of width 2 or 4 goes through a group in several vectors, so
// every result depends on the same lanes in the same order whatever the width. Only kernel sources include this file,
// and everything in it has internal linkage: no function compiled for one processor can stand in for that of another.
#pragma once

#include <cstddef>
#include <utility>

#include "least_squares/instruction_set.h"

// NOLINTNEXTLINE(google-build-namespaces): internal linkage is the point
namespace {

using kelvane::group_size;

template <int width>
struct Vector {
  // NOLINTBEGIN(modernize-use-using): the attributes do not take effect in an alias
  typedef double type __attribute__((vector_size(width * sizeof(double)), may_alias));
  typedef type unaligned __attribute__((aligned(8)));
  typedef long long bits __attribute__((vector_size(width * sizeof(double)), may_alias));
  typedef bits unaligned_bits __attribute__((aligned(8)));
  // NOLINTEND(modernize-use-using)
};

/// One number, for what is done with points one by one.
template <>
struct Vector<1> {
  using type = double;
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

/// p is aligned to nothing but a double.
template <int width>
[[gnu::always_inline]] inline V<width> load_anywhere(const double* p) {
  return *reinterpret_cast<const typename Vector<width>::unaligned*>(p);
}

template <int width>
[[gnu::always_inline]] inline void store_anywhere(double* p, const V<width>& value) {
  *reinterpret_cast<typename Vector<width>::unaligned*>(p) = value;
}

/// Every third entry of a, b, c from entry k on.
template <int width, int k, int... lane>
[[gnu::always_inline]] inline V<width> every_third(const V<width>& a, const V<width>& b, const V<width>& c,
                                                   std::integer_sequence<int, lane...> /*lanes*/) {
  const V<width> of_ab = __builtin_shufflevector(a, b, (3 * lane + k < 2 * width ? 3 * lane + k : -1)...);
  return __builtin_shufflevector(of_ab, c, (3 * lane + k < 2 * width ? lane : 3 * lane + k - width)...);
}

/// Every second entry of a, b from entry k on.
template <int width, int k, int... lane>
[[gnu::always_inline]] inline V<width> every_second(const V<width>& a, const V<width>& b,
                                                    std::integer_sequence<int, lane...> /*lanes*/) {
  return __builtin_shufflevector(a, b, (2 * lane + k)...);
}

/// Takes items of `size` (2 or 3) neighbouring doubles apart: values[k] gets entry k of each of `width` items.
template <int width, std::size_t size>
[[gnu::always_inline]] inline void load_items(const double* p, V<width> (&values)[size]) {
  constexpr auto lanes = std::make_integer_sequence<int, width>();
  const V<width> a = load_anywhere<width>(p);
  const V<width> b = load_anywhere<width>(p + width);
  if constexpr (size == 2) {
    values[0] = every_second<width, 0>(a, b, lanes);
    values[1] = every_second<width, 1>(a, b, lanes);
  } else {
    const V<width> c = load_anywhere<width>(p + std::size_t{2} * width);
    values[0] = every_third<width, 0>(a, b, c, lanes);
    values[1] = every_third<width, 1>(a, b, c, lanes);
    values[2] = every_third<width, 2>(a, b, c, lanes);
  }
}

/// Which places of a group count: the first `size` of them, all from eight on.
class Mask {
 public:
  [[gnu::always_inline]] explicit Mask(std::size_t size)
      : bits_(all_then_none + group_size - (size < group_size ? size : group_size)) {}

  /// The value where the place counts, zero elsewhere, whatever stands there.
  template <int width>
  [[gnu::always_inline]] V<width> of(const V<width>& value, std::size_t part) const {
    using Bits = typename Vector<width>::bits;
    const Bits bits = *reinterpret_cast<const typename Vector<width>::unaligned_bits*>(bits_ + part);
    return reinterpret_cast<V<width>>(reinterpret_cast<Bits>(value) & bits);
  }

 private:
  static constexpr long long all_then_none[2 * group_size] = {-1, -1, -1, -1, -1, -1, -1, -1};
  const long long* bits_;
};

/// The sum of a group, in one order for every width.
[[gnu::always_inline]] inline double sum_of_lanes(const double* p) {
  return ((p[0] + p[4]) + (p[1] + p[5])) + ((p[2] + p[6]) + (p[3] + p[7]));
}

/// The sums of two groups, p and the one behind it, with half the shuffles of two single ones.
template <int width>
[[gnu::always_inline]] inline void sum_two_groups(const double* p, double* sums) {
  const double* q = p + group_size;
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
