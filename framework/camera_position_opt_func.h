// SPDX-License-Identifier: BSD-3-Clause
// The prediction that a pose refinement compares with the observations.
#pragma once

#include <vector>

#include "fw_opt/opt_func.h"
#include "fw_tools/matrix.h"

/// Predicts the observation of every point from a pose.
///
/// The search vector is the rotation (3 entries for types 0, 10 and -2, 4 for the others) followed by the camera centre
/// t in world coordinates; further entries are ignored. R maps the camera frame to the world: a point X has the
/// camera-frame coordinates R' (X - t). Pixel types predict (u, v) through K (docs/derivations.md, Eq. 5), bearing
/// types (10, 11, 12) the camera-frame vector itself, not scaled to unit length; hybrid types (-1, -2, -3) repeat the
/// pixels of all points three times. Within a block the order is point by point.
class Camera_position_opt_func : public fw::Opt_func {
 public:
  /// Points of 3 coordinates each (world units), K 3 by 3 (pixels). Nothing is checked here.
  Camera_position_opt_func(const std::vector<std::vector<double>>& points, const fw::matrix<double>& K,
                           int rotation_type);
  /// Copies points, K and type; takes over no weights.
  Camera_position_opt_func(const Camera_position_opt_func&) = default;
  /// Copies points, K and type; the weights of this object stay.
  Camera_position_opt_func& operator=(const Camera_position_opt_func& source);

  /// The predictions at x, which must have at least rotation entries + 3 entries. A point at depth 0 gives infinities
  /// or NaN.
  /// Raises (kelvane_mex.cpp): 1662 for a bearing type when K(0,0), K(1,1), K(0,2) or K(1,2) is further than 0.0001
  /// from the identity's (the other entries are not looked at and enter the prediction), then 1704 for a type that is
  /// none of the ten.
  std::vector<double> operator()(const std::vector<double>& x) const override;

 private:
  std::vector<std::vector<double>> points;
  fw::matrix<double> K;
  int rotation_type;
};
