// SPDX-License-Identifier: BSD-3-Clause
// The step of a pose inside the frame of an iterative solver.
#pragma once

#include <vector>

#include "camera_pose/pose_system.h"
#include "fw_opt/solver.h"

namespace kelvane::contract {

/// The iterations of fw::Linear_taylor_solver over one camera model, without its vectors and matrices: the same rules,
/// the same reports.
class Pose_solver final : public fw::Solver {
 public:
  /// The data of the problem must outlive it.
  explicit Pose_solver(const Pose_problem& problem) : problem_(problem), system_(problem) {}

  /// Runs from x0 as Solver::optimise does, towards the observations of the problem.
  std::vector<double> refine(const std::vector<double>& x0);

  void reset() override { is_first_ = true; }
  /// One step; the target is not used, and where another iteration follows, x0 is what x_out was before.
  /// Raises (all inside the context of fw_opt/linear_taylor_solver.cpp, 200): kelvane_mex.cpp, 1662 for a bearing type
  /// whose K is not the identity, then the error of cv::solve for fewer equations than unknowns.
  void inner_optimise(const std::vector<double>& x0, const std::vector<double>& target, std::vector<double>& x_out,
                      double& err, int iter) override;

 private:
  void check() const;

  Pose_problem problem_;
  Pose_system system_;
  bool is_first_ = true;
};

}  // namespace kelvane::contract
