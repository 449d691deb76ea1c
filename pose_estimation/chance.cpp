// SPDX-License-Identifier: BSD-3-Clause
// The number of false alarms of a consensus.
#include "pose_estimation/chance.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kelvane {

Consensus consensus(std::vector<double> squares, double chance) {
  constexpr double least_square = 1e-20;  // exact data are no proof of anything beyond their digits
  constexpr double num_poses = 4.0;       // of three points
  const auto n = static_cast<double>(squares.size());
  if (!(n > 3.0)) return {};
  squares.erase(std::remove_if(squares.begin(), squares.end(), [](double square) { return !(square < 1.0); }),
                squares.end());
  std::sort(squares.begin(), squares.end());
  Consensus least;
  double choices = 1.0;  // logarithm of the ways to choose k of n points, and three of these
  for (std::size_t i = 0; i < squares.size(); ++i) {
    const auto k = static_cast<double>(i + 1);
    choices = i == 0 ? std::log10(n) : choices + std::log10((n - k + 1.0) / k);
    if (k < 4.0) continue;
    const double triples = std::log10(k * (k - 1.0) * (k - 2.0) / 6.0);
    const double inside = std::log10(std::min(1.0, chance * std::max(squares[i], least_square)));
    const double found = std::log10(num_poses * (n - 3.0)) + choices + triples + (k - 3.0) * inside;
    if (found < least.log10_chance) least = {found, squares[i]};
  }
  return least;
}

}  // namespace kelvane
