// SPDX-License-Identifier: BSD-3-Clause
// From the first positive roots of three polynomials in r (docs/derivations.md, Eqs. 65 and 66).
#include "cameras/fold.h"

#include <cmath>

#include "cameras/polynomial.h"

namespace kelvane {

double fold_radius(const Lens& lens, double limit) {
  const double* n = lens.numerator;
  const double* d = lens.denominator;
  const Polynomial N{1.0, 0.0, n[0], 0.0, n[1], 0.0, n[2], 0.0, n[3]};
  const Polynomial D{1.0, 0.0, d[0], 0.0, d[1], 0.0, d[2]};
  const Polynomial r{0.0, 1.0};
  const double w = std::hypot(lens.tangential[0], lens.tangential[1]);
  const double s_2 = std::hypot(lens.prism[0], lens.prism[2]);
  const double s_4 = std::hypot(lens.prism[1], lens.prism[3]);

  // What the other terms may take from the derivatives of the radial ones, and how far they may move a place.
  const Polynomial taken{0.0, 6.0 * w + 2.0 * s_2, 0.0, 4.0 * s_4};
  const Polynomial moved{0.0, 0.0, 3.0 * w + s_2, 0.0, s_4};

  const Polynomial change = sum(product(derivative(N), D), product(-1.0, product(N, derivative(D))));
  const Polynomial outward = sum(sum(product(N, D), product(r, change)), product(-1.0, product(taken, product(D, D))));
  const Polynomial across = sum(N, product(-1.0, product(taken, D)));
  const double lean = std::hypot(lens.to_pixel[2][0], lens.to_pixel[2][1]);
  const Polynomial depth = sum(product(lens.to_pixel[2][2], D), product(-lean, sum(product(r, N), product(moved, D))));
  // The last one ends before D vanishes.
  for (const Polynomial& condition : {outward, across, depth}) limit = first_root(condition, limit);
  return limit;
}

}  // namespace kelvane
