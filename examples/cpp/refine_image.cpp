// SPDX-License-Identifier: BSD-3-Clause
// Refines the pose of one image, whatever a few wrong pixels say, and prints it with its uncertainty.
#include <pose_refinement/refine.h>

#include <cmath>
#include <cstdio>
#include <vector>

int main() {
  const std::vector<double> points = {-1, -1, 0, 1,   -1,  0.2,  1,    1,   0,   -1,  1,    0.4,  // X, Y, Z of each
                                      0,  0,  1, 0.5, 0.3, -0.5, -0.5, 0.6, 0.1, 0.3, -0.8, 0.7};
  const std::vector<double> pixels = {148.7, 128.7, 536.7, 121.4, 562.1, 522.4, 174.8, 504.1,  // u, v of each
                                      353.9, 311.8, 465.6, 392.7, 700.0, 20.0,  399.2, 176.5};
  const auto frame = kelvane::Pose_frame::world_from_camera;
  const kelvane::Pose start = pose_of(kelvane::Rotation_vector_pose{{0.02, -0.03, 0.01}, {0.2, -0.1, -3.8}}, frame);

  kelvane::Refine_options options;
  options.loss = kelvane::Loss::huber;  // the last but one pixel is an outlier
  const auto result = kelvane::refine({start, points, pixels, kelvane::pixel_camera(800, 320, 240)}, options);

  std::printf("%s RMS of %zu inliers: %.2f pixels\n", result.message.c_str(), result.num_inliers, result.after.inliers);
  const auto [r, t] = rotation_vector_of(result.pose, frame);
  const auto sigma = [&](int i) { return std::sqrt(result.covariance[i][i]); };
  for (int i = 0; i < 3; ++i) std::printf("%9.5f +- %.5f   %9.5f +- %.5f\n", r[i], sigma(i), t[i], sigma(3 + i));
}
