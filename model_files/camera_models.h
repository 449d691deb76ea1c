// SPDX-License-Identifier: BSD-3-Clause
// COLMAP's camera models by name and number.
#pragma once

#include <string>

namespace kelvane {

/// What a camera of a model has.
struct Camera_kind {
  const char* name;
  int num_parameters;
  int num_focal_lengths;  ///< the first of them
};

/// Those of COLMAP 4.2, by their number in binary files.
inline constexpr Camera_kind camera_kinds[] = {{"SIMPLE_PINHOLE", 3, 1},
                                               {"PINHOLE", 4, 2},
                                               {"SIMPLE_RADIAL", 4, 1},
                                               {"RADIAL", 5, 1},
                                               {"OPENCV", 8, 2},
                                               {"OPENCV_FISHEYE", 8, 2},
                                               {"FULL_OPENCV", 12, 2},
                                               {"FOV", 5, 2},
                                               {"SIMPLE_RADIAL_FISHEYE", 4, 1},
                                               {"RADIAL_FISHEYE", 5, 1},
                                               {"THIN_PRISM_FISHEYE", 12, 2},
                                               {"RAD_TAN_THIN_PRISM_FISHEYE", 16, 2},
                                               {"SIMPLE_DIVISION", 4, 1},
                                               {"DIVISION", 5, 2},
                                               {"SIMPLE_FISHEYE", 3, 1},
                                               {"FISHEYE", 4, 2},
                                               {"EUCM", 6, 2},
                                               {"EQUIRECTANGULAR", 2, 0}};
inline constexpr int num_camera_kinds = sizeof camera_kinds / sizeof camera_kinds[0];
inline constexpr int unknown_camera_kind = -1;

/// The number of a name, or unknown_camera_kind.
inline int camera_kind_of(const std::string& name) {
  for (int i = 0; i < num_camera_kinds; ++i) {
    if (name == camera_kinds[i].name) return i;
  }
  return unknown_camera_kind;
}

}  // namespace kelvane
