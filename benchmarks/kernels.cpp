// SPDX-License-Identifier: BSD-3-Clause
// The parts of an iteration, each by itself, in every variant that the processor has.
#include <benchmark/benchmark.h>

#include <utility>
#include <vector>

#include "benchmarks/scene.h"
#include "camera_pose/pose_system.h"

namespace {

using kelvane::Instruction_set;

struct Problem {
  bench::Scene scene;
  std::vector<double> x0;
  kelvane::Measurements data;
  kelvane::Pose_problem equations;

  explicit Problem(int num_points) : Problem(bench::random_scene(num_points, 1)) {}
  /// The points must be where they are to be: the last of them are copied.
  explicit Problem(bench::Scene the_scene)
      : scene(std::move(the_scene)),
        x0(bench::search_vector(0, scene.start)),
        data(scene.points.data(), scene.pixels.data(), 2, nullptr, 1, static_cast<std::size_t>(scene.num_points)),
        equations{kelvane::find_rotation_type(0),
                  {scene.intrinsics.f, scene.intrinsics.cx, scene.intrinsics.cy},
                  &data,
                  nullptr} {}
};

bool skip_unless_available(benchmark::State& state, Instruction_set set) {
  if (kelvane::is_available(set)) return false;
  state.SkipWithError("not on this processor");
  return true;
}

void set_time_per_point(benchmark::State& state) {
  const double num_points = static_cast<double>(state.iterations()) * static_cast<double>(state.range(0));
  state.counters["per_point"] =
      benchmark::Counter(num_points, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// A piece's rows alone.
void rows(benchmark::State& state, Instruction_set set) {
  if (skip_unless_available(state, set)) return;
  const Problem problem(static_cast<int>(state.range(0)));
  kelvane::Pose_rows rows_at(problem.equations, set);
  rows_at.go_to(problem.x0.data(), true);
  kelvane::Block block;
  block.resize(6);
  for (auto _ : state) benchmark::DoNotOptimize(rows_at.make(problem.data.piece(0), 0, block));
  set_time_per_point(state);
}

/// Rows and triangle.
void linearisation(benchmark::State& state, Instruction_set set) {
  if (skip_unless_available(state, set)) return;
  const Problem problem(static_cast<int>(state.range(0)));
  kelvane::Pose_system system(problem.equations, set);
  for (auto _ : state) benchmark::DoNotOptimize(system.linearise(problem.x0.data(), true));
  set_time_per_point(state);
}

void prediction(benchmark::State& state, Instruction_set set) {
  if (skip_unless_available(state, set)) return;
  const Problem problem(static_cast<int>(state.range(0)));
  kelvane::Pose_system system(problem.equations, set);
  for (auto _ : state) benchmark::DoNotOptimize(system.squared_error(problem.x0.data()));
  set_time_per_point(state);
}

Problem problem_of_step(bool is_degenerate) {
  bench::Scene scene = bench::random_scene(100, 1);
  for (std::size_t i = 3; is_degenerate && i < scene.points.size(); ++i) scene.points[i] = scene.points[i - 3];
  return Problem(std::move(scene));
}

/// All points equal, or not: singular values decide about the rank, or need not be asked.
void step(benchmark::State& state, bool is_degenerate) {
  const Problem problem = problem_of_step(is_degenerate);
  kelvane::Pose_system system(problem.equations);
  system.linearise(problem.x0.data(), true);
  double dx[6];
  for (auto _ : state) {
    system.step(dx);
    benchmark::DoNotOptimize(dx);
  }
}

void sizes(benchmark::internal::Benchmark* cases) {
  for (const int num_points : {6, 100, 1000, 100000}) cases->Arg(num_points);
}

}  // namespace

BENCHMARK_CAPTURE(rows, sse2, Instruction_set::sse2)->Arg(120);
BENCHMARK_CAPTURE(rows, avx2, Instruction_set::avx2)->Arg(120);
BENCHMARK_CAPTURE(rows, avx512, Instruction_set::avx512)->Arg(120);
BENCHMARK_CAPTURE(linearisation, sse2, Instruction_set::sse2)->Arg(120);
BENCHMARK_CAPTURE(linearisation, avx2, Instruction_set::avx2)->Arg(120);
BENCHMARK_CAPTURE(linearisation, best, kelvane::best_instruction_set())->Apply(sizes);
BENCHMARK_CAPTURE(prediction, best, kelvane::best_instruction_set())->Apply(sizes);
BENCHMARK_CAPTURE(step, regular, false);
BENCHMARK_CAPTURE(step, degenerate, true);
BENCHMARK_MAIN();
