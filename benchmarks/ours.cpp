// SPDX-License-Identifier: BSD-3-Clause
// The module and the engine as contestants.
#include <dlfcn.h>

#include <stdexcept>

#include "benchmarks/peers.h"
#include "mex_host.h"

namespace bench {
namespace {

constexpr auto frame = kelvane::Pose_frame::world_from_camera;

std::vector<double> search_vector(const kelvane::Pose& pose) {
  const auto [r, t] = rotation_vector_of(pose, frame);
  return {r[0], r[1], r[2], t[0], t[1], t[2]};
}

kelvane::Pose pose_of(const std::vector<double>& x) {
  return pose_of(kelvane::Rotation_vector_pose{{x[0], x[1], x[2]}, {x[3], x[4], x[5]}}, frame);
}

}  // namespace

decltype(&mexFunction) loaded_module(const std::string& file) {
  void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = module == nullptr ? nullptr : dlsym(module, "mexFunction");
  if (entry == nullptr) throw std::runtime_error(dlerror());
  return reinterpret_cast<decltype(&mexFunction)>(entry);
}

Contestant module_call(const std::string& name, decltype(&mexFunction) entry, const Scene& scene) {
  std::vector<double> camera = search_vector(scene.start);
  camera.insert(camera.end(), {Scene::f, Scene::cx, Scene::cy});
  std::vector<mxArray> inputs{mex_host::row(camera), mex_host::real_matrix(3, scene.size(), scene.all.points),
                              mex_host::real_matrix(2, scene.size(), scene.all.pixels)};
  auto call = std::make_shared<mex_host::Prepared_call>(std::move(inputs));
  return {name, [=] { (*call)(entry); }, [=] { return pose_of(call->output().values); }};
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
