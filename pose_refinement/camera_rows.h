// SPDX-License-Identifier: BSD-3-Clause
// Residuals of some points, and how they change with the pose.
#pragma once

#include "camera_pose/point_kernels.h"
#include "pose_refinement/lens_kernels.h"
#include "pose_refinement/observed_points.h"
#include "pose_refinement/sight_kernels.h"

namespace kelvane {

/// For one camera; results lie as the rows of a block do.
class Camera_rows {
 public:
  explicit Camera_rows(const Camera_model& camera, Instruction_set set = best_instruction_set());

  /// Observed minus seen; NaN for a pixel whose depth is nothing but the rounding of the point's coordinates, or that
  /// a lens has no image of.
  void residuals(const Sights& sights, const Pose& pose, double* values) const;
  /// The same in column 6 of a block for six unknowns, with the derivatives of what is seen by a twist (v, omega) of
  /// the camera frame in the columns before (docs/derivations.md, Eqs. 48 and 53).
  void linearise(const Sights& sights, const Pose& pose, Block& block) const;
  /// Depths p_z of the points, or -p_z of a camera that looks down -z.
  void depths(const Sights& sights, const Pose& pose, double* depths) const;
  /// Above 0 where the camera faces a point: its depth, or 1 of a camera that sees behind itself.
  void facing(const Sights& sights, const Pose& pose, double* values) const;
  const Camera_model& camera() const { return camera_; }
  /// Of the same instruction set.
  const Sight_kernels& sight_kernels() const { return *sight_kernels_; }

 private:
  void bend_rows(const Sights& sights, Block& block) const;

  Camera_model camera_;
  Pixel_lens lens_;
  const Point_kernels* kernels_;
  const Sight_kernels* sight_kernels_;
  const Lens_kernels* lens_kernels_;
};

}  // namespace kelvane
