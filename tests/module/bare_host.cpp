// SPDX-License-Identifier: BSD-3-Clause
// bare_host MODULE...: loads kelvane_mex or kelvane_engine and refines poses with it, the engine on three threads, in a
// process that has nothing but the C and C++ libraries. Prints the poses to the last bit, and fails where kelvane_mex
// does not find the one that its exact observations were made of.
#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "mex_host.h"
#include "trust/engine_calls.h"
#include "trust/good_call.h"

namespace {

namespace engine = trust::engine;
decltype(&mexFunction) loaded = nullptr;

mex_host::Result answer_of_engine() {
  return mex_host::call(engine::refine_inputs(
      {engine::good_problem(0, 12), engine::good_problem(2, 12), engine::good_problem(3, 12)}, engine::for_ever, 3.0));
}

bool is_near(const std::vector<double>& a, const std::vector<double>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](double x, double y) { return std::fabs(x - y) < 1e-9; });
}

bool refines_with(const char* file) {
  void* module = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  loaded = module == nullptr ? nullptr : reinterpret_cast<decltype(&mexFunction)>(dlsym(module, "mexFunction"));
  if (loaded == nullptr) {
    std::printf("not loaded: %s\n", dlerror());
    return false;
  }
  const bool is_engine = std::strstr(file, "kelvane_engine") != nullptr;
  std::vector<mxArray> inputs = trust::good_inputs(0, 12);
  inputs.resize(3);  // all iterations
  const mex_host::Result result = is_engine ? answer_of_engine() : mex_host::call(inputs);
  dlclose(module);
  if (!result.output) {
    std::printf("%s: %s\n", file, result.message.c_str());
    return false;
  }
  const mxArray& poses = is_engine ? mex_host::field(*result.output, "pose") : *result.output;
  for (const double number : poses.values) std::printf("%a ", number);
  std::printf("%s\n", is_engine ? "by the engine" : "by the module");
  return is_engine || is_near(poses.values, {0, 0, 0, 0, 0, -8});
}

}  // namespace

// The stand-in host calls this one.
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]) { loaded(nlhs, plhs, nrhs, prhs); }

int main(int argc, char** argv) {
  int num_right = 0;
  for (int i = 1; i < argc; ++i) num_right += refines_with(argv[i]) ? 1 : 0;
  return argc > 1 && num_right == argc - 1 ? 0 : 1;
}
