// SPDX-License-Identifier: BSD-3-Clause
// The parts of an iteration, each by itself.
#include <benchmark/benchmark.h>

#include <memory>

#include "benchmarks/scene.h"
#include "camera_pose/camera_position_grad_func.h"
#include "camera_pose/camera_position_opt_func.h"
#include "fw_opt/linear_taylor_solver.h"

namespace {

/// A scene in the form that the classes' constructors take.
struct Problem {
  explicit Problem(const benchmark::State& state)
      : scene(bench::random_scene(static_cast<int>(state.range(0)), 1)),
        x0(bench::search_vector(0, scene.start)),
        K(3, 3) {
    for (auto X = scene.points.begin(); X != scene.points.end(); X += 3) points.emplace_back(X, X + 3);
    K[0][0] = K[1][1] = scene.intrinsics.f;
    K[0][2] = scene.intrinsics.cx;
    K[1][2] = scene.intrinsics.cy;
    K[2][2] = 1;
  }

  bench::Scene scene;
  std::vector<double> x0;
  std::vector<std::vector<double>> points;
  fw::matrix<double> K;
};

void set_time_per_point(benchmark::State& state) {
  const double num_points = static_cast<double>(state.iterations()) * static_cast<double>(state.range(0));
  state.counters["per_point"] =
      benchmark::Counter(num_points, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void prediction(benchmark::State& state) {
  const Problem problem(state);
  const Camera_position_opt_func objective(problem.points, problem.K, 0);
  for (auto _ : state) benchmark::DoNotOptimize(objective(problem.x0).data());
  set_time_per_point(state);
}

void jacobian(benchmark::State& state) {
  const Problem problem(state);
  const Camera_position_grad_func_aau jacobian_of(problem.points, problem.K, nullptr);
  cv::Mat J(2 * problem.scene.num_points, 6, CV_64F);
  for (auto _ : state) {
    jacobian_of(problem.x0, J, 0);
    benchmark::ClobberMemory();
  }
  set_time_per_point(state);
}

void iteration(benchmark::State& state) {
  const Problem problem(state);
  fw::Linear_taylor_solver solver;
  solver.set_num_dimensions(6);
  solver.set_num_equations(2 * problem.scene.num_points);
  solver.set_max_iters(1);
  solver.set_grad_funcs({new Camera_position_grad_func_aau(
      problem.points, problem.K, new Camera_position_opt_func(problem.points, problem.K, 0))});  // the solver owns both
  for (auto _ : state) benchmark::DoNotOptimize(solver.optimise(problem.x0, problem.scene.pixels).data());
  set_time_per_point(state);
}

void sizes(benchmark::internal::Benchmark* cases) {
  for (const int num_points : {6, 100, 1000, 100000}) cases->Arg(num_points);
}

}  // namespace

BENCHMARK(prediction)->Apply(sizes);
BENCHMARK(jacobian)->Apply(sizes);
BENCHMARK(iteration)->Apply(sizes);

int main(int argc, char** argv) {
  cv::setNumThreads(1);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
