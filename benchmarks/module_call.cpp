// SPDX-License-Identifier: BSD-3-Clause
// Arrays for the module, and a module that does nothing.
#include "benchmarks/module_call.h"

#include <dlfcn.h>

#include <stdexcept>
#include <utility>

#include "benchmarks/timing.h"

namespace bench {
namespace {

class Module_call final : public Competitor {
 public:
  Module_call(std::vector<mxArray> inputs, decltype(&mexFunction) entry) : call_(std::move(inputs)), entry_(entry) {}
  void refine() override { call_(entry_); }
  std::vector<double> refined() const override { return call_.output().values; }

 private:
  mex_host::Prepared_call call_;
  decltype(&mexFunction) entry_;
};

volatile double sink;

void ask_everything(int /*nlhs*/, mxArray* plhs[], int nrhs, const mxArray* prhs[]) {
  double sum = 0;
  for (int i = 0; i < nrhs; ++i) {
    const mxArray* array = prhs[i];
    const bool is_full = mxIsDouble(array) && !mxIsSparse(array) && !mxIsComplex(array);
    sum += static_cast<double>(mxGetM(array) + mxGetN(array) + mxGetNumberOfElements(array));
    if (is_full) sum += *mxGetPr(array) + mxGetScalar(array);
  }
  sink = sum;
  plhs[0] = mxCreateDoubleMatrix(1, 6, mxREAL);
}

}  // namespace

std::vector<mxArray> module_inputs(const Scene& scene, const Task& task) {
  const int type = task.type;
  using mex_host::real_matrix;
  const auto num_points = static_cast<std::size_t>(scene.num_points);
  const bool is_bearing = type == 10;
  const Intrinsics k = is_bearing ? Intrinsics{1, 0, 0} : scene.intrinsics;
  std::vector<double> camera = search_vector(type, scene.start);
  camera.insert(camera.end(), {k.f, k.cx, k.cy});
  std::vector<mxArray> inputs{
      mex_host::row(std::move(camera)), real_matrix(3, num_points, scene.points),
      is_bearing ? real_matrix(3, num_points, scene.bearings) : real_matrix(2, num_points, scene.pixels)};
  if (type != 0 || task.by_differences) {
    inputs.push_back(mex_host::row({1, 0, -1e30, task.by_differences ? 1.0 : 0.0}));
    inputs.push_back(mex_host::scalar(type));
  }
  return inputs;
}

Entry module_call() {
  return {"kelvane", [](const Scene& scene, const Task& task) {
            return std::make_unique<Module_call>(module_inputs(scene, task), &mexFunction);
          }};
}

Entry other_module_call(const std::string& file) {
  void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = module == nullptr ? nullptr : dlsym(module, "mexFunction");
  if (entry == nullptr) throw std::runtime_error(dlerror());
  const auto function = reinterpret_cast<decltype(&mexFunction)>(entry);
  return {"other", [function](const Scene& scene, const Task& task) {
            return std::make_unique<Module_call>(module_inputs(scene, task), function);
          }};
}

double host_ns() {
  constexpr int num_batches = 101;
  mex_host::Prepared_call call(module_inputs(random_scene(6, 1), {}));
  std::vector<double> ns;
  for (int i = 0; i < num_batches; ++i) ns.push_back(ns_per_call(2000, [&call] { call(&ask_everything); }));
  return median(ns);
}

double growth_per_point(int few, int many) {
  constexpr int num_repetitions = 9;
  mex_host::Prepared_call call_few(module_inputs(random_scene(few, 1), {}));
  mex_host::Prepared_call call_many(module_inputs(random_scene(many, 1), {}));
  std::vector<double> ratios;
  for (int i = 0; i < num_repetitions; ++i) {
    const double ns_few = ns_per_call(many / few, [&call_few] { call_few(); });
    ratios.push_back(ns_per_call(1, [&call_many] { call_many(); }) / ns_few * few / many);
  }
  return median(ratios);
}

}  // namespace bench
