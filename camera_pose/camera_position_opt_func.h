// SPDX-License-Identifier: BSD-3-Clause
// The prediction that a pose refinement compares with the observations.
#pragma once

#include <memory>
#include <vector>

#include "camera_pose/intrinsics.h"
#include "camera_pose/packed_points.h"
#include "camera_pose/rotation_type.h"
#include "fw_opt/opt_func.h"
#include "fw_opt/packed_equations.h"
#include "fw_tools/matrix.h"
#include "fw_tools/report.h"

/// Predicts the observation of every point from a pose.
///
/// The search vector is the rotation (3 entries for types 0, 10 and -2, 4 for the others) followed by the camera centre
/// t in world coordinates; further entries are ignored. R maps the camera frame to the world: a point X has the
/// camera-frame coordinates R' (X - t). Pixel types predict (u, v) through K (docs/derivations.md, Eq. 5), bearing
/// types (10, 11, 12) the camera-frame vector itself, not scaled to unit length; hybrid types (-1, -2, -3) repeat the
/// pixels of all points three times. Within a block the order is point by point.
class Camera_position_opt_func : public fw::Opt_func, private fw::Packed_function {
 public:
  /// Points of 3 coordinates each (world units), K 3 by 3 (pixels). Nothing is checked here.
  Camera_position_opt_func(const std::vector<std::vector<double>>& points, const fw::matrix<double>& K,
                           int rotation_type);
  /// The same with points that others evaluate as well.
  Camera_position_opt_func(std::shared_ptr<const Packed_points> points, const Intrinsics& intrinsics,
                           int rotation_type) noexcept;
  /// Shares the points; takes over no weights.
  Camera_position_opt_func(const Camera_position_opt_func&) = default;
  Camera_position_opt_func& operator=(const Camera_position_opt_func&) = delete;

  /// The predictions at x, which must have at least rotation entries + 3 entries. A point at depth 0 gives infinities
  /// or NaN.
  /// Raises (kelvane_mex.cpp): 1662 for a bearing type when K(0,0), K(1,1), K(0,2) or K(1,2) is further than 0.0001
  /// from the identity's (the other entries are not looked at and enter the prediction), then 1704 for a type that is
  /// none of the ten.
  std::vector<double> operator()(const std::vector<double>& x) const override;

  /// The same predictions in packed order; null for a type that is none of the ten.
  const fw::Packed_function* packed() const override;

  /// Whether it predicts these very points with these intrinsics, which are [f 0 cx; 0 f cy; 0 0 1], as this type.
  bool is_same(const std::shared_ptr<const Packed_points>& these_points, const Intrinsics& these_intrinsics,
               int this_type) const;

 private:
  fw::Packed_layout layout() const override;
  void evaluate(const std::vector<double>& x, fw::Value_sink& sink) const override;

  void check_bearing_intrinsics() const;
  void make_projection_matrix(const double* x, double (&P)[3][4]) const;

  std::shared_ptr<const Packed_points> points;
  Intrinsics intrinsics;
  int rotation_type;
  const Rotation_type* type;  // null: none of the ten
};

namespace site {
inline constexpr fw::Site bearing_intrinsics{
    "kelvane_mex.cpp", 1662,
    "virtual std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>&) const"};
inline constexpr fw::Site unknown_rotation_type{bearing_intrinsics.file, 1704, bearing_intrinsics.signature};
}  // namespace site
