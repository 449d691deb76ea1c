// SPDX-License-Identifier: BSD-3-Clause
// The checks of a camera's numbers.
#include "pose_refinement/camera_model.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace kelvane {

void check(const Camera_model& camera) {
  const char* names[] = {"fx", "skew", "cx", "fy", "cy"};
  const double values[] = {camera.fx, camera.skew, camera.cx, camera.fy, camera.cy};
  for (int i = 0; i < 5; ++i) {
    if (!std::isfinite(values[i])) {
      throw std::invalid_argument(std::string("camera.") + names[i] + " is not finite. All of it must be numbers.");
    }
  }
  if (camera.fx == 0.0 || camera.fy == 0.0) {
    throw std::invalid_argument("camera: a focal length of 0 sees everything in one place.");
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
    throw std::invalid_argument("K looks transposed: the principal point is in the last row. Hand over its transpose.");
  }
  if (K[2][2] == 0.0 || K[1][0] != 0.0 || K[2][0] != 0.0 || K[2][1] != 0.0) {
    throw std::invalid_argument("K must be upper triangular with K[2][2] other than 0.");
  }
  const double k = K[2][2];
  const Camera_model camera{false, K[0][0] / k, K[0][1] / k, K[0][2] / k, K[1][1] / k, K[1][2] / k};
  check(camera);
  return camera;
}

Camera_model direction_camera() { return {}; }

}  // namespace kelvane
