// SPDX-License-Identifier: BSD-3-Clause
// Which poses are kept.
#include "pose_estimation/candidates.h"

#include <algorithm>
#include <utility>

namespace kelvane {
namespace {

bool are_mostly_common(const std::vector<bool>& a, const std::vector<bool>& b) {
  std::size_t num_common = 0, num_all = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    num_common += a[i] && b[i] ? 1U : 0U;
    num_all += a[i] || b[i] ? 1U : 0U;
  }
  return 2 * num_common > num_all;
}

}  // namespace

std::size_t Candidate::num_inliers() const {
  return static_cast<std::size_t>(std::count(is_inlier.begin(), is_inlier.end(), true));
}

void Candidates::add(Candidate candidate) {
  const auto is_like = [&](const Candidate& other) { return are_mostly_common(other.is_inlier, candidate.is_inlier); };
  const auto is_no_worse = [&](const Candidate& other) { return other.gain >= candidate.gain && is_like(other); };
  if (std::any_of(all_.begin(), all_.end(), is_no_worse)) return;
  all_.erase(std::remove_if(all_.begin(), all_.end(), is_like), all_.end());
  const auto is_better = [](const Candidate& a, const Candidate& b) { return a.gain > b.gain; };
  const auto place = std::upper_bound(all_.begin(), all_.end(), candidate, is_better);
  all_.insert(place, std::move(candidate));
  if (all_.size() > most) all_.pop_back();
}

double Candidates::least_gain() const {
  constexpr double part_of_best = 0.5;
  if (all_.empty()) return 0.0;
  const double least = part_of_best * all_.front().gain;
  return all_.size() < most ? least : std::max(least, all_.back().gain);
}

}  // namespace kelvane
