// SPDX-License-Identifier: BSD-3-Clause
// The module and the engine as contestants.
#include <dlfcn.h>

#include <stdexcept>

#include "benchmarks/race.h"
#include "mex_host.h"

namespace bench {

decltype(&mexFunction) loaded_module(const std::string& file) {
  void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = module == nullptr ? nullptr : dlsym(module, "mexFunction");
  if (entry == nullptr) throw std::runtime_error(dlerror());
  return reinterpret_cast<decltype(&mexFunction)>(entry);
}

Contestant module_call(const std::string& name, decltype(&mexFunction) entry, const Scene& scene) {
  constexpr auto frame = kelvane::Pose_frame::world_from_camera;
  const Parameters x = parameters_of(scene.start, frame);
  std::vector<double> camera(x.begin(), x.end());
  camera.insert(camera.end(), {Scene::f, Scene::cx, Scene::cy});
  std::vector<mxArray> inputs{mex_host::row(camera), mex_host::real_matrix(3, scene.size(), scene.all.points),
                              mex_host::real_matrix(2, scene.size(), scene.all.pixels)};
  auto call = std::make_shared<mex_host::Prepared_call>(std::move(inputs));
  return {name, [=] { (*call)(entry); },
          [=] { return pose_of(&call->output().values[0], &call->output().values[3], frame); }};
}

Contestant engine(const Scene& scene, const Method& method) {
  kelvane::Refine_options options;
  options.loss = method.loss_scale > 0 ? kelvane::Loss::huber : kelvane::Loss::none;
  options.loss_scale = method.loss_scale;
  options.max_iterations = method.max_iterations;
  options.step_tolerance = method.step_tolerance;
  const auto found = std::make_shared<kelvane::Pose>();
  return {"kelvane::refine", [=, problem = scene.problem()] { *found = refine(problem, options).pose; },
          [=] { return *found; }};
}

}  // namespace bench
