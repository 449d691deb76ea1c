// SPDX-License-Identifier: BSD-3-Clause
// Losses: what a residual costs, and the weight that stands in for it in a least squares step.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

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
    const double c = scale;
    const double q = s / c;
    constexpr double far = 1e8;  // 1 + q^2 is q^2, and q^2 may overflow
    switch (kind) {
      case Loss::huber:
        return std::min(s, c) * (2.0 * s - std::min(s, c));
      case Loss::cauchy:
        return c * c * (q > far ? 2.0 * std::log(q) : std::log1p(q * q));
      case Loss::tukey: {
        const double p = std::min(q, 1.0) * std::min(q, 1.0);
        return (1.0 - p + p * p / 3.0) * std::min(s, c) * std::min(s, c);
      }
      case Loss::none:
        break;
    }
    return s * s;
  }
  /// cost' / (2 s)
  double weight(double s) const {
    const double q = s / scale;
    const double left = std::max(0.0, 1.0 - q * q);
    return kind == Loss::huber    ? scale / std::max(s, scale)
           : kind == Loss::cauchy ? 1.0 / (1.0 + q * q)
           : kind == Loss::tukey  ? left * left
                                  : 1.0;
  }
  /// The derivative of the weight, times s.
  double slope_times_length(double s) const {
    const double q = s / scale;
    const double w = weight(s);
    return kind == Loss::huber    ? (s > scale ? -w : 0.0)
           : kind == Loss::cauchy ? -2.0 * w * (1.0 - w)
           : kind == Loss::tukey  ? -4.0 * q * q * std::max(0.0, 1.0 - q * q)
                                  : 0.0;
  }
};

/// The noise of one coordinate that explains the median length of residuals, unmoved by a minority of outliers: lengths
/// of normal residuals in two coordinates have the median sqrt(2 log 2) times the noise. The lengths change places.
inline double noise_of_lengths(std::vector<double>& lengths) {
  const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
  std::nth_element(lengths.begin(), middle, lengths.end());
  double median = *middle;
  if (lengths.size() % 2 == 0) median = 0.5 * (median + *std::max_element(lengths.begin(), middle));
  return median / std::sqrt(2.0 * std::log(2.0));
}

}  // namespace kelvane
