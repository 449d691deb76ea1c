// SPDX-License-Identifier: BSD-3-Clause
// The steps that lead downhill from a pose.
#pragma once

#include <cstddef>
#include <vector>

#include "least_squares/small_system.h"
#include "least_squares/triangle.h"
#include "pose_refinement/pose_cost.h"

namespace kelvane {

/// Steps as twists (v, omega) of the camera frame, best first.
struct Steps {
  std::size_t count = 0;  ///< none where the equations are not finite
  double twists[2][6];
  double decrease = 0.0;  ///< of the cost by the first one, were the equations linear; 0 where it is not known
};

/// The equations of one pose after the other: J'WJ as a triangle, and beside it what the slope of a loss adds, as both
/// stand in Eq. 42 of docs/derivations.md.
class Descent_system {
 public:
  /// Must outlive it.
  explicit Descent_system(const Refine_input& input)
      : data_(input.data), rows_(input.rows), prior_(input.prior), motion_(input.motion) {}

  /// Makes the equations at a pose, of all points or of those with a mark, and of the prior times a factor.
  void linearise(const Pose& pose, const Robust_loss& loss, const std::vector<unsigned char>* marks = nullptr,
                 double of_prior = 1.0);
  /// Gauss and Newton's step for the loss, where its matrix is positive definite, and that with constant weights.
  Steps steps();
  /// The inverse of J'WJ, 6 by 6, of the y of Free_motion where directions are fixed; false where the points leave a
  /// direction undetermined.
  bool inverse(double (&covariance)[6][6]);
  /// Whether the equations are finite.
  bool is_finite() const;

 private:
  void clear_filling(const Sights& sights);
  void weigh(const Sights& sights, const Robust_loss& loss);
  void sum_up_slopes();
  void whiten(const Sights& sights);
  void absorb_prior(const Pose& pose, double factor);
  void reduce_to_free_motion(const Pose& pose);
  void absorb_rows(const double (*rows)[7], std::size_t num_rows);
  void make_twist(double* solution) const;
  bool newton(double* twist) const;

  const Observed_points& data_;
  const Camera_rows& rows_;
  const Known_pose& prior_;
  const Free_motion& motion_;
  Block block_;
  Triangle triangle_;
  Small_system small_;
  alignas(cache_line) double slope_sums_[21][group_size] = {};  // of the upper half of slopes_
  double slopes_[6][6] = {};                                    // sum of -w'/s (G'Wr)(G'Wr)', upper half
  bool has_slopes_ = false;
  double twists_[6][6] = {};  // T with the twist T y, where directions are fixed
};

}  // namespace kelvane
