// SPDX-License-Identifier: BSD-3-Clause
// By Newton's steps between bounds.
#include "model_files/radial_lens.h"

#include <algorithm>
#include <cmath>

namespace kelvane {

// The squares of the radii at which 1 + 3 k1 r^2 + 5 k2 r^4 is 0, without cancellation.
Radial_lens::Radial_lens(double k1, double k2) : k1_(k1), k2_(k2) {
  const double discriminant = 9.0 * k1 * k1 - 20.0 * k2;
  if (discriminant < 0.0) return;
  const double q = -0.5 * (3.0 * k1 + std::copysign(std::sqrt(discriminant), k1));
  for (const double square : {q / (5.0 * k2), 1.0 / q}) {
    if (square > 0.0 && std::isfinite(square)) turn_ = std::min(turn_, std::sqrt(square));
  }
}

double Radial_lens::straight(double wanted) const {
  double low = 0.0;
  double high = turn_;
  if (std::isinf(high)) {
    for (high = std::max(1.0, wanted); std::isfinite(high) && moved(high) < wanted;) high *= 2.0;
  }
  if (!(wanted <= moved(high)) || !std::isfinite(wanted)) return std::numeric_limits<double>::quiet_NaN();
  double r = std::min(wanted, high);
  // Mostly four steps; halvings, where a step would leave the branch, end at the last bit of any radius above 1e-30.
  for (int step = 0; step < 150; ++step) {
    const double above = moved(r) - wanted;
    (above < 0.0 ? low : high) = r;
    double next = r - above / slope(r);
    if (!(next >= low && next <= high)) next = 0.5 * (low + high);
    const bool is_still = std::fabs(next - r) <= std::numeric_limits<double>::epsilon() * r;
    r = next;
    if (is_still) break;
  }
  return r;
}

}  // namespace kelvane
