// SPDX-License-Identifier: BSD-3-Clause
// What a camera sees of a point in its own frame.
#pragma once

#include <optional>

#include "cameras/lens.h"

namespace kelvane {

/// Pixels u = (fx p_x + skew p_y) / p_z + cx and v = fy p_y / p_z + cy, or the direction p / |p|. Made by the
/// functions below. A lens moves the pixels (cameras/lens.h).
struct Camera_model {
  bool sees_directions = true;    ///< or pixels, by the rest
  double fx = 1;                  ///< focal length along the rows
  double skew = 0;                ///< of the axes
  double cx = 0;                  ///< principal point, to the right
  double fy = 1;                  ///< focal length along the columns
  double cy = 0;                  ///< principal point, down
  std::optional<Lens> lens = {};  ///< what bends rays, with the same numbers in its K; none: a pinhole
};

/// One focal length.
Camera_model pixel_camera(double f, double cx, double cy);
/// One for each axis.
Camera_model pixel_camera(double fx, double fy, double cx, double cy);
/// K = [fx skew cx; 0 fy cy; 0 0 1] or a multiple of it.
Camera_model pixel_camera(const double (&K)[3][3]);
/// Pixels through a lens, of make_lens or lens_of_opencv.
Camera_model lens_camera(const Lens& lens);
/// All round: no intrinsics.
Camera_model direction_camera();

/// Throws std::invalid_argument, with a sentence, where a number is not finite or a focal length is 0.
void check(const Camera_model& camera);

}  // namespace kelvane
