// SPDX-License-Identifier: BSD-3-Clause
// bare_host MODULE...: loads kelvane_mex or kelvane_engine and refines poses with it, the engine on three threads, in a
// process that has nothing but the C and C++ libraries. Prints what it finds, the engine's poses to the last bit.
#include <dlfcn.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "mex_host.h"

namespace {

using mex_host::cell;
using mex_host::real_matrix;
using mex_host::row;
using mex_host::scalar;

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

/// Of `count` poses in a row from the expected one; NaN where one is, -1 where there are not as many.
double largest_error(const std::vector<double>& found, std::size_t count, const std::vector<double>& expected) {
  if (found.size() != count * expected.size()) return -1;
  double largest = 0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const double error = std::fabs(found[i] - expected[i % expected.size()]);
    if (!(error <= largest)) largest = error;
  }
  return largest;
}

mex_host::Result called(const std::vector<mxArray>& inputs) {
  mex_host::Result result = mex_host::call(inputs);
  if (!result.output.has_value()) std::printf("%s\n", result.message.c_str());
  return result;
}

/// Of the pose that a call returns, or -1 for an error.
double error_of_module() {
  const Scene scene = seen_from_the_front();
  const mex_host::Result result = called({row({0.02, -0.03, 0.01, 0.1, -0.1, -3.9, 500, 320, 240}),
                                          real_matrix(3, 12, scene.points), real_matrix(2, 12, scene.pixels)});
  return result.output ? largest_error(result.output->values, 1, {0, 0, 0, 0, 0, -4}) : -1;
}

/// The same from four starts, on three threads, without a limit of time.
double error_of_engine() {
  const Scene scene = seen_from_the_front();
  std::vector<mxArray> starts;
  for (int k = 0; k < 4; ++k) starts.push_back(row({0.02 * k, -0.03, 0.01, 0.1, -0.1 * k, -3.9}));
  const auto four = [](const mxArray& array) { return cell({array, array, array, array}); };
  const mex_host::Result result =
      called({mex_host::text("refine"), cell(starts), four(real_matrix(3, 12, scene.points)),
              four(real_matrix(2, 12, scene.pixels)), four(row({500, 320, 240})),
              mex_host::structure({{"PoseForm", mex_host::text("rotation_vector")},
                                   {"PoseFrame", mex_host::text("world_from_camera")}}),
              real_matrix(0, 0, {}), scalar(INFINITY), scalar(3)});
  if (!result.output) return -1;
  const std::vector<double>& poses = mex_host::field(*result.output, "pose").values;
  for (const double number : poses) std::printf("%a ", number);
  std::printf("\n");
  return largest_error(poses, starts.size(), {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, -4});
}

bool refines_with(const char* file) {
  void* module = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    std::printf("not loaded: %s\n", dlerror());
    return false;
  }
  loaded = reinterpret_cast<decltype(&mexFunction)>(dlsym(module, "mexFunction"));
  const bool is_engine = std::strstr(file, "kelvane_engine") != nullptr;
  const double error = loaded == nullptr ? -1 : is_engine ? error_of_engine() : error_of_module();
  const bool is_right = error >= 0 && error < 1e-9;  // as for every noise-free scene
  std::printf("%s, largest error %.1e\n", is_right ? "refined" : "failed", error);
  dlclose(module);
  return is_right;
}

}  // namespace

// The stand-in host calls this one.
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]) { loaded(nlhs, plhs, nrhs, prhs); }

int main(int argc, char** argv) {
  int num_right = 0;
  for (int i = 1; i < argc; ++i) num_right += refines_with(argv[i]) ? 1 : 0;
  return argc > 1 && num_right == argc - 1 ? 0 : 1;
}
