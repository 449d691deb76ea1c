// SPDX-License-Identifier: BSD-3-Clause
// Whether a match belongs to a pose.
#pragma once

#include <cstddef>

namespace kelvane {

/// What some chosen matches say of the noise, and how likely wrong ones are among them.
struct Membership {
  double num_matches;     ///< all
  double chance;          ///< see Matches
  double num_chosen;      ///< that the pose was refined from, 4 or more
  double sum_of_squares;  ///< of their residuals, in units of the largest error

  /// The variance of a coordinate and its degrees of freedom: as if two residuals more had been seen, of a sixteenth of
  /// the largest error. Few points alone tell little of the noise, and sometimes next to none.
  double variance() const;
  double freedom() const;

  /// How much more likely another match is right than wrong (docs/derivations.md, Eq. 76). `growth` is what the sum of
  /// squares grows by where the pose is refined with it, `lever` how many times its residual is as long without.
  double odds(double growth, double lever) const;
  /// The squared residual at which, by its length alone, it would be as likely wrong as right.
  double limit() const;
};

}  // namespace kelvane
