// SPDX-License-Identifier: BSD-3-Clause
// bare_host MODULE: loads the module and refines a pose with it, in a process that has nothing but the C and C++
// libraries.
#include <dlfcn.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "mex_host.h"

namespace {

decltype(&mexFunction) loaded = nullptr;

struct Scene {
  std::vector<double> points;
  std::vector<double> pixels;
};

/// Seen from (0, 0, -4) by a camera that looks along the world's third axis: f = 500, principal point (320, 240).
Scene seen_from_the_front() {
  Scene scene;
  for (int i = 0; i < 12; ++i) {
    const double X[3] = {std::sin(7.0 * i), std::cos(3.0 * i), std::sin(i) / 2};
    scene.points.insert(scene.points.end(), X, X + 3);
    scene.pixels.push_back(500 * X[0] / (X[2] + 4) + 320);
    scene.pixels.push_back(500 * X[1] / (X[2] + 4) + 240);
  }
  return scene;
}

/// Of the pose that a call returns from that of the scene, or -1 for a report.
double largest_error() {
  const Scene scene = seen_from_the_front();
  const mxArray camera = mex_host::row({0.02, -0.03, 0.01, 0.1, -0.1, -3.9, 500, 320, 240});
  const mex_host::Result result =
      mex_host::call({camera, mex_host::real_matrix(3, 12, scene.points), mex_host::real_matrix(2, 12, scene.pixels)});
  if (!result.output.has_value()) {
    std::printf("%s\n", result.message.c_str());
    return -1;
  }
  const double pose[6] = {0, 0, 0, 0, 0, -4};
  double largest = 0;
  for (std::size_t i = 0; i < 6; ++i) largest = std::fmax(largest, std::fabs(result.output->values.at(i) - pose[i]));
  return largest;
}

}  // namespace

// The stand-in host calls this one.
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]) { loaded(nlhs, plhs, nrhs, prhs); }

int main(int argc, char** argv) {
  void* module = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (module == nullptr) {
    std::printf("not loaded: %s\n", argc == 2 ? dlerror() : "no module is given");
    return 1;
  }
  loaded = reinterpret_cast<decltype(&mexFunction)>(dlsym(module, "mexFunction"));
  const double error = loaded == nullptr ? -1 : largest_error();
  const bool is_right = error >= 0 && error < 1e-9;  // as for every noise-free scene
  std::printf("%s, largest error %.1e\n", is_right ? "refined" : "failed", error);
  dlclose(module);
  return is_right ? 0 : 1;
}
