// SPDX-License-Identifier: BSD-3-Clause
// The random refinement problems that all competitors are given.
#pragma once

#include <vector>

#include "benchmarks/pose.h"

namespace bench {

/// The intrinsics of every scene, in pixels.
struct Intrinsics {
  double f = 800;
  double cx = 320;
  double cy = 240;
};

/// Points in front of a camera, what it saw of them, and a pose to start from: off by 1 degree, and by 1 % of the
/// distance to the points.
struct Scene {
  int num_points = 0;
  Intrinsics intrinsics;
  std::vector<double> points;    // 3 x N, column by column, world
  std::vector<double> pixels;    // 2 x N, with a noise of 0.5 pixels in each coordinate
  std::vector<double> bearings;  // 3 x N, unit vectors in the camera frame through these pixels
  Pose start;
};

/// The same scene for the same arguments.
Scene random_scene(int num_points, unsigned seed);

/// Root mean square distance in the image between the pixels and the points seen from the pose.
double pixel_rms(const Scene& scene, const Pose& pose);

/// The same for a search vector in the equations of `type`. Those of type 10 compare camera-frame vectors, component by
/// component, with the target as the module fills it: the first two rows of the bearings, then zeros.
double equation_rms(const Scene& scene, int type, const std::vector<double>& x);

}  // namespace bench
