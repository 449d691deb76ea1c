// SPDX-License-Identifier: BSD-3-Clause
// The iteration: never uphill, with a scale of the loss that comes down.
#pragma once

#include <optional>
#include <vector>

#include "pose_refinement/descent_system.h"
#include "pose_refinement/pose_cost.h"

namespace kelvane {

/// A pose on the way, in the world of the iteration.
struct Descent_entry {
  Pose pose;
  double cost;
  double scale;  ///< of the loss in the cost
  double turn;   ///< of the step that led here, radians
  double shift;  ///< likewise
};

/// What came of it.
struct Descent_outcome {
  Refine_exit exit = Refine_exit::no_cost;
  Robust_loss loss;  ///< with the scale in the end
  std::vector<Descent_entry> history;
};

/// Iterates until the pose is still.
class Descent {
 public:
  /// All must outlive it.
  Descent(const Observed_points& data, const Camera_rows& rows, const Refine_options& options)
      : options_(options), data_(data), cost_(data, rows), system_(data, rows) {}

  /// From a pose of the world on, behind the entries of an earlier run.
  Descent_outcome run(const Pose& start, const std::vector<Descent_entry>& earlier = {});

 private:
  using Verdict = std::optional<Refine_exit>;  // none: to go on

  bool start_scale(const Pose& start);
  Refine_exit iterate();
  double try_steps(const Steps& steps, Descent_entry& next);
  Verdict verdict(const Descent_entry& before, const Descent_entry& after, double length) const;
  void lower_scale(Descent_entry& entry, Verdict& exit);
  double lowered_scale(const Pose& pose);
  bool append(const Descent_entry& entry);

  const Refine_options& options_;
  const Observed_points& data_;
  Pose_cost cost_;
  Descent_system system_;
  Robust_loss loss_;
  double least_scale_ = 0.0;
  bool is_final_ = true;    // the scale, as long as the pose is not still
  bool is_settled_ = true;  // the scale, whatever comes
  std::vector<double> lengths_;
  std::vector<Descent_entry> history_;
};

}  // namespace kelvane
