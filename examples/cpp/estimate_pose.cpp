// SPDX-License-Identifier: BSD-3-Clause
// Finds the pose of one image without a start, where four of twelve matches are wrong, and names these.
#include <pose_estimation/estimate.h>

#include <cstdio>
#include <vector>

int main() {
  const std::vector<double> points = {-1,   -1,   0,   1,   -1,   0.2,  1,    1,    0,   -1,  1,    0.4,
                                      0.2,  -0.4, 0.9, 0.5, 0.3,  -0.5, -0.5, 0.6,  0.1, 0.3, -0.8, 0.7,
                                      -0.9, 0.2,  0.5, 0.7, -0.3, -0.6, -0.2, -0.7, 0.3, 0.1, 0.8,  -0.4};
  std::vector<double> pixels;
  for (std::size_t i = 0; i < 12; ++i) {  // a camera at (0.1, -0.2, -4) that looks along z, and pixels without noise
    const double* X = &points[3 * i];
    pixels.push_back(320 + 800 * (X[0] - 0.1) / (X[2] + 4));
    pixels.push_back(240 + 800 * (X[1] + 0.2) / (X[2] + 4));
  }
  for (const std::size_t i : {1, 4, 7, 10}) pixels[2 * i] += 40 + 10 * static_cast<double>(i);

  const auto result = kelvane::estimate({points, pixels, kelvane::pixel_camera(800, 320, 240)});
  if (static_cast<int>(result.exit) < 0) {
    std::printf("%s\n", result.message.c_str());
    return 1;
  }
  const double* centre = result.pose.centre;
  std::printf("centre (%.4f, %.4f, %.4f), wrong:", centre[0], centre[1], centre[2]);
  for (std::size_t i = 0; i < 12; ++i) {
    if (!result.is_inlier[i]) std::printf(" %zu", i);
  }
  std::printf("\n");
}
