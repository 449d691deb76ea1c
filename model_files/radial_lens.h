// SPDX-License-Identifier: BSD-3-Clause
// The radial distortion of a lens, removed.
#pragma once

#include <limits>

namespace kelvane {

/// Moves what belongs at a radius r, in units of the focal length, to r (1 + k1 r^2 + k2 r^4).
class Radial_lens {
 public:
  Radial_lens(double k1, double k2);

  bool is_straight() const { return k1_ == 0.0 && k2_ == 0.0; }

  /// The radius that is moved to this one, on the branch that begins at 0. NaN where there is none: the image of a lens
  /// with falling distortion ends where it turns back on itself.
  double straight(double moved) const;

 private:
  double moved(double r) const { return r * (1.0 + r * r * (k1_ + r * r * k2_)); }
  double slope(double r) const { return 1.0 + r * r * (3.0 * k1_ + 5.0 * r * r * k2_); }

  double k1_, k2_;
  double turn_ = std::numeric_limits<double>::infinity();  ///< the least radius at which the moved one no longer grows
};

}  // namespace kelvane
