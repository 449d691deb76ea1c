// SPDX-License-Identifier: BSD-3-Clause
// Losses: what a residual costs, and the weight that stands in for it in a least squares step.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include "pose_refinement/refine.h"

namespace kelvane {

/// A loss at a scale c, the length from which a residual counts less than its square.
struct Robust_loss {
  Loss kind = Loss::none;
  double scale = std::numeric_limits<double>::infinity();

  /// c over the noise of both coordinates with which 95 % of the information is kept (docs/derivations.md, Eq. 45).
  double tuning() const {
    return kind == Loss::huber    ? 1.50114
           : kind == Loss::cauchy ? 2.54864
           : kind == Loss::tukey  ? 5.12299
                                  : std::numeric_limits<double>::infinity();
  }
  /// What a residual of length s costs.
  double cost(double s) const {
    double cost = 0.0;
    with_kind(kind, [&](auto k) { set_cost<k()>(s, scale, cost); });
    return cost;
  }
  /// cost' / (2 s)
  double weight(double s) const {
    double weight = 0.0;
    with_kind(kind, [&](auto k) { set_weight<k()>(s, scale, weight); });
    return weight;
  }
  /// The derivative of the weight, times s.
  double slope_times_length(double s) const {
    double slope = 0.0;
    with_kind(kind, [&](auto k) { set_slope<k()>(s, scale, slope); });
    return slope;
  }

  /// Calls visit with the loss as a constant of the compiler.
  template <typename Visit>
  [[gnu::always_inline]] static void with_kind(Loss kind, const Visit& visit) {
    switch (kind) {
      case Loss::none:
        return visit(std::integral_constant<Loss, Loss::none>());
      case Loss::huber:
        return visit(std::integral_constant<Loss, Loss::huber>());
      case Loss::cauchy:
        return visit(std::integral_constant<Loss, Loss::cauchy>());
      case Loss::tukey:
        return visit(std::integral_constant<Loss, Loss::tukey>());
    }
  }

  // The formulas, of one length or of a vector of them. They are compiled for several processors: always inside their
  // loops, without a function of a library that might end up in one of them for all, and without vectors by value,
  // which processors pass in different ways.

  /// Not for Cauchy's loss of a vector.
  template <Loss kind, typename T>
  [[gnu::always_inline]] static void set_cost(const T& s, const T& c, T& cost) {
    constexpr double far = 1e8;  // 1 + q^2 is q^2, and q^2 may overflow
    const T least = c < s ? c : s;
    const T q = s / c;
    if constexpr (kind == Loss::none) {
      cost = s * s;
    } else if constexpr (kind == Loss::huber) {
      cost = least * (2.0 * s - least);
    } else if constexpr (kind == Loss::cauchy) {
      cost = c * c * (q > far ? 2.0 * std::log(q) : std::log1p(q * q));
    } else {
      const T one = T{} + 1.0;
      const T part = one < q ? one : q;
      const T p = part * part;
      cost = (1.0 - p + p * p / 3.0) * least * least;
    }
  }

  template <Loss kind, typename T>
  [[gnu::always_inline]] static void set_weight(const T& s, const T& c, T& weight) {
    const T zero = {};
    const T q = s / c;
    if constexpr (kind == Loss::none) {
      weight = zero + 1.0;
    } else if constexpr (kind == Loss::huber) {
      weight = c / (s < c ? c : s);
    } else if constexpr (kind == Loss::cauchy) {
      weight = 1.0 / (1.0 + q * q);
    } else {
      const T left = 1.0 - q * q;
      const T some = zero < left ? left : zero;
      weight = some * some;
    }
  }

  /// Times s.
  template <Loss kind, typename T>
  [[gnu::always_inline]] static void set_slope(const T& s, const T& c, T& slope) {
    const T zero = {};
    const T q = s / c;
    T w;
    set_weight<kind>(s, c, w);
    if constexpr (kind == Loss::none) {
      slope = zero;
    } else if constexpr (kind == Loss::huber) {
      slope = c < s ? -w : zero;
    } else if constexpr (kind == Loss::cauchy) {
      slope = -2.0 * w * (1.0 - w);
    } else {
      const T left = 1.0 - q * q;
      slope = -4.0 * q * q * (zero < left ? left : zero);
    }
  }
};

/// The noise of one coordinate that explains the median length of residuals, unmoved by a minority of outliers: lengths
/// of normal residuals in two coordinates have the median sqrt(2 log 2) times the noise. Of three points all are
/// needed, and the largest stands for the median. The lengths change places.
inline double noise_of_lengths(std::vector<double>& lengths) {
  const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() == 3 ? 2 : lengths.size() / 2);
  std::nth_element(lengths.begin(), middle, lengths.end());
  double median = *middle;
  if (lengths.size() % 2 == 0) median = 0.5 * (median + *std::max_element(lengths.begin(), middle));
  return median / std::sqrt(2.0 * std::log(2.0));
}

}  // namespace kelvane
