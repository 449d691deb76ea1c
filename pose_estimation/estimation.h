// SPDX-License-Identifier: BSD-3-Clause
// An estimation in parts: it can be left after each round of trials and taken up again later.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "pose_estimation/final_refinement.h"
#include "pose_estimation/search.h"

namespace kelvane {

/// Throws Bad_argument, which names the option.
void check(const Estimate_options& options);

/// An estimation that can be left and taken up again, with the same bits as in one go.
class Estimation {
 public:
  /// Checks everything and throws Bad_argument. All must outlive it.
  Estimation(const Estimate_problem& problem, const Estimate_options& options, const Words& words = words_of_cpp);

  /// Takes up where an earlier one of the same problem and options was left. Throws Bad_argument where this is no such
  /// state.
  void resume(const double* state, std::size_t size);
  /// Makes rounds of trials until there have been enough or the deadline has passed: at least one. True when it is
  /// over.
  bool run(Deadline deadline);
  /// Plain numbers, with which another one can go on; after run().
  std::vector<double> state() const;
  Estimate_progress progress() const { return search_.progress(); }
  /// As if options.watch had returned true.
  void stop() { search_.stop(); }
  /// What the best poses found so far are refined to; after run().
  Estimate_result result() const;

 private:
  std::vector<Final_pose> refined_poses() const;
  void set_exit(Estimate_result& result) const;

  const Estimate_problem& problem_;
  const Estimate_options& options_;
  const Words& words_;
  Matches matches_;
  Agreement agreement_;
  Search search_;
};

}  // namespace kelvane
