// SPDX-License-Identifier: BSD-3-Clause
// The search for the poses that most points agree with.
#pragma once

#include <vector>

#include "pose_estimation/agreement.h"
#include "pose_estimation/candidates.h"
#include "pose_estimation/triples.h"
#include "pose_refinement/refinement.h"

namespace kelvane {

/// Tries triples in blocks. A block knows what the rounds before its own have found, and nothing of the blocks beside
/// it, so that it does not matter which threads they are on.
class Search {
 public:
  /// All must outlive it.
  Search(const Estimate_problem& problem, const Estimate_options& options, const Matches& matches,
         const Agreement& agreement);

  /// Makes rounds until there have been enough or the deadline has passed, one at least. True when it is over.
  bool run(Deadline deadline);
  void stop() { is_stopped_ = true; }
  const std::vector<Candidate>& found() const { return found_.all(); }
  std::size_t num_trials() const { return num_trials_; }
  Estimate_progress progress() const { return {num_trials_, num_trials_needed(), num_inliers()}; }

  /// The number of trials, whether it was stopped, and the poses that were found.
  std::vector<double> state() const;
  /// Throws Bad_argument where the row is none of these.
  void resume(const double* state, std::size_t size);

 private:
  std::size_t most_trials() const;
  std::size_t num_trials_needed() const;
  std::size_t num_inliers() const { return found_.all().empty() ? 0 : found_.all().front().num_inliers(); }
  void run_round(std::size_t num_blocks);
  Candidate tried(std::size_t first_trial, std::size_t end) const;
  Candidate improved(Candidate candidate) const;
  Candidate refined(const Refine_problem& problem, const Refine_options& options, Candidate candidate) const;
  Candidate at(const Pose& pose) const;

  const Estimate_problem& problem_;
  const Estimate_options& options_;
  const Matches& matches_;
  const Agreement& agreement_;
  Triples triples_;
  Candidates found_;
  std::size_t num_trials_ = 0;
  bool is_stopped_ = false;
};

}  // namespace kelvane
