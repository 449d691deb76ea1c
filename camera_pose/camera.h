// SPDX-License-Identifier: BSD-3-Clause
// What is constant over the points of one evaluation.
#pragma once

#include <cstddef>

#include "rotations/rotation_models.h"

namespace kelvane {

/// K = [f 0 cx; 0 f cy; 0 0 1].
struct Intrinsics {
  double f;   ///< focal length of both axes, pixels
  double cx;  ///< principal point, pixels to the right
  double cy;  ///< principal point, pixels down
};

/// A camera in its place: a point X has the camera-frame coordinates p = R' (X - t).
struct Camera {
  double rotation[3][3];  ///< R', row by row
  double t[3];            ///< camera centre, world frame and units
  Intrinsics K;
};

/// R: camera to world; t: 3 world coordinates.
inline Camera make_camera(const Intrinsics& K, const double (&R)[3][3], const double* t) {
  Camera camera;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) camera.rotation[i][j] = R[j][i];
    camera.t[i] = t[i];
  }
  camera.K = K;
  return camera;
}

/// A camera, and where it is after a step in each entry of the search vector alone.
struct Moved_cameras {
  std::size_t n;  ///< 6 or 7
  Camera here;
  Camera moved[7];
  double inverse_step[7];  ///< one over the step in the units of the entry
};

/// M = K R' and its derivatives by the n rotation parameters, and the camera centre t: a point X has the numerators and
/// the depth M (X - t) (docs/derivations.md, Eqs. 19 and 20).
struct Projection {
  std::size_t n;       ///< 3 or 4
  double M[3][3];      ///< K R', pixels
  double dM[4][3][3];  ///< dM[j] = dM / dr_j; those from n on are rubbish
  double t[3];         ///< camera centre, world frame and units
};

/// t: 3 world coordinates (docs/derivations.md, Eq. 19).
inline Projection make_projection(const Intrinsics& K, const Rotation_model& rotation, const double* t) {
  const auto project = [&K](const double(&R)[3][3], double(&out)[3][3]) {  // K R'
    for (int j = 0; j < 3; ++j) {
      out[0][j] = K.f * R[j][0] + K.cx * R[j][2];
      out[1][j] = K.f * R[j][1] + K.cy * R[j][2];
      out[2][j] = R[j][2];
    }
  };
  Projection projection;
  projection.n = rotation.n;
  project(rotation.R, projection.M);
  for (std::size_t j = 0; j < rotation.n; ++j) project(rotation.dR[j], projection.dM[j]);
  for (std::size_t j = 0; j < 3; ++j) projection.t[j] = t[j];
  return projection;
}

}  // namespace kelvane
