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

/// Where a descent stands: all that its next iteration depends on.
struct Descent_state {
  Robust_loss loss;          ///< with the scale so far
  double least_scale = 0.0;  ///< below which it does not come
  bool is_final = true;      ///< no further lowering of the scale until the pose is still
  bool is_settled = true;    ///< it never changes again
  std::vector<Descent_entry> history = {};
  std::optional<Refine_exit> exit = {};  ///< none: to go on
};

/// Iterates, one step at a time, until the pose is still.
class Descent {
 public:
  /// Must outlive it.
  explicit Descent(const Refine_input& input)
      : options_(input.options), motion_(input.motion), cost_(input), system_(input) {}

  /// Evaluates a pose of the world, from which iterations go on, behind the entries that there are.
  void begin(const Pose& start, Descent_state& state);
  /// After begin(): with the scale of another descent, which may come down further.
  void continue_with(double scale, Descent_state& state);
  /// Makes one iteration, with one more entry; `exit` says whether it is the last one.
  void iterate(Descent_state& state);

  Pose_cost& cost() { return cost_; }

 private:
  using Verdict = std::optional<Refine_exit>;  // none: to go on
  struct Trial {
    double length;      // of the first whole step
    bool is_cut_short;  // because further on there is no cost
  };

  bool start_scale(const Pose& start, Descent_state& state);
  Trial try_steps(const Steps& steps, const Robust_loss& loss, Descent_entry& next);
  Verdict verdict(const Descent_entry& before, const Descent_entry& after, const Trial& trial) const;
  void lower_scale(Descent_entry& entry, Descent_state& state);
  double lowered_scale(const Pose& pose, const Descent_state& state);

  const Refine_options& options_;
  const Free_motion& motion_;
  Pose_cost cost_;
  Descent_system system_;
  std::vector<double> lengths_;
};

}  // namespace kelvane
