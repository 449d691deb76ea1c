// SPDX-License-Identifier: BSD-3-Clause
// The checks of a camera's numbers.
#include "pose_refinement/camera_model.h"

#include <cmath>
#include <string>

#include "pose_refinement/bad_argument.h"

namespace kelvane {

void check(const Camera_model& camera) {
  const char* names[] = {"fx", "skew", "cx", "fy", "cy"};
  const double values[] = {camera.fx, camera.skew, camera.cx, camera.fy, camera.cy};
  for (int i = 0; i < 5; ++i) {
    if (!std::isfinite(values[i])) {
      throw Bad_argument("notFinite", std::string("camera.") + names[i],
                         " is " + text_of(values[i]) + ". All of it must be finite numbers.");
    }
  }
  if (camera.fx == 0.0 || camera.fy == 0.0) {
    throw Bad_argument("intrinsics", "", "A focal length of 0 sees everything in one place.");
  }
}

Camera_model pixel_camera(double f, double cx, double cy) { return pixel_camera(f, f, cx, cy); }

Camera_model pixel_camera(double fx, double fy, double cx, double cy) {
  const Camera_model camera{false, fx, 0.0, cx, fy, cy};
  check(camera);
  return camera;
}

Camera_model pixel_camera(const double (&K)[3][3]) {
  if (K[0][2] == 0.0 && K[1][2] == 0.0 && (K[2][0] != 0.0 || K[2][1] != 0.0)) {
    throw Bad_argument(
        "transposedK", "K",
        " looks transposed: the principal point is in the last row. MATLAB's IntrinsicMatrix has it there; "
        "hand over its transpose.");
  }
  if (K[2][2] == 0.0 || K[1][0] != 0.0 || K[2][0] != 0.0 || K[2][1] != 0.0) {
    throw Bad_argument("intrinsics", "K", " must be upper triangular, and its last entry other than 0.");
  }
  const double k = K[2][2];
  const Camera_model camera{false, K[0][0] / k, K[0][1] / k, K[0][2] / k, K[1][1] / k, K[1][2] / k};
  check(camera);
  return camera;
}

Camera_model lens_camera(const Lens& lens) {
  const auto& K = lens.K;
  Camera_model camera{false, K[0][0], K[0][1], K[0][2], K[1][1], K[1][2]};
  check(camera);
  if (!is_pinhole(lens)) camera.lens = lens;
  return camera;
}

Camera_model direction_camera() { return {}; }

}  // namespace kelvane
