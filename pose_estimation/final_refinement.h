// SPDX-License-Identifier: BSD-3-Clause
// From a pose that many matches agree with to the least squares of all that belong to it.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "pose_estimation/agreement.h"
#include "pose_estimation/chance.h"
#include "pose_estimation/membership.h"

namespace kelvane {

/// A refined pose.
struct Final_pose {                 // NOLINT(bugprone-exception-escape): moving its vectors throws nothing
  std::vector<std::size_t> chosen;  ///< matches that it is refined from
  Refine_result refined;            ///< of these alone, in their order
  Consensus consensus;              ///< of all matches
  /// The pose with one match more or less, where that is as likely and the pose far away.
  std::optional<Refine_alternative> doubt = {};
  std::optional<std::size_t> decisive = {};  ///< a match on which it hangs alone
};

/// Whether another pose lies beyond three standard deviations of one that is determined.
bool is_far(const Refine_result& refined, const World& world, const Pose& other);

/// Refines a pose and chooses who belongs to it, in turn.
class Final_refinement {
 public:
  /// All must outlive it.
  Final_refinement(const Estimate_problem& problem, const Estimate_options& options, const Matches& matches,
                   const Agreement& agreement);

  /// None where fewer than four matches are near.
  std::optional<Final_pose> run(const Pose& start);

 private:
  /// What a match more or less would make of it.
  struct Change {
    std::size_t match;
    bool is_chosen;        ///< it would be left out
    double odds;           ///< how much more likely the present choice is
    Refine_result result;  ///< with the match at the end, or without
  };

  void settle();
  void set_consensus();
  void set_decisive();
  void weigh_each();
  std::vector<Change> changes() const;
  std::vector<double> leverages_of_chosen() const;
  Change without(std::size_t k) const;
  Change with(std::size_t match) const;
  void accept(const Change& change);
  void choose(const Pose& pose, double most);
  bool has_image(const Pose& users_pose, std::size_t match) const;
  Refine_result refined(const std::vector<std::size_t>& chosen, const Pose& start) const;
  Membership membership(const Refine_result& result) const;
  double sum_of_squares(const Refine_result& result) const;
  double square(const Refine_result& result, std::size_t k) const;
  std::vector<double> squares(const Pose& users_pose) const;

  const Estimate_problem& problem_;
  const Matches& matches_;
  const Agreement& agreement_;
  bool is_said_who_belongs_;            // all that are nearer than the largest error
  static constexpr double most_ = 4.0;  // squared error, else: noise may be found to be larger than was thought
  Final_pose found_;
};

}  // namespace kelvane
