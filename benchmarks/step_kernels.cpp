// SPDX-License-Identifier: BSD-3-Clause
// Google Benchmark cases of the kernels below an iteration, in every variant that the processor has.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

#include "camera_pose/point_kernels.h"
#include "fw_opt/reduction_kernels.h"
#include "fw_opt/triangular_system.h"
#include "fw_tools/aligned_buffer.h"

namespace {

constexpr std::size_t num_unknowns = 6;
constexpr std::size_t num_rows = 240;  // of a full piece
constexpr std::size_t stride = num_rows + 8;

void fill(fw::Aligned_buffer& buffer) {
  std::mt19937_64 generator(4711);
  std::uniform_real_distribution<double> entry(-1.0, 1.0);
  for (std::size_t i = 0; i < buffer.size(); ++i) buffer[i] = entry(generator);
}

bool skip_unless_available(benchmark::State& state, fw::Instruction_set set) {
  if (fw::is_available(set)) return false;
  state.SkipWithError("not on this processor");
  return true;
}

void rows(benchmark::State& state, fw::Instruction_set set) {
  if (skip_unless_available(state, set)) return;
  fw::Aligned_buffer points(num_rows / 2 * 3);
  fw::Aligned_buffer columns((num_unknowns + 1) * stride);
  fill(points);
  Projection<3> projection{};
  for (int i = 0; i < 3; ++i) {
    projection.M[i][i] = projection.t[2 - i] = i + 3.0;
    for (auto& dM : projection.dM) dM[i][2 - i] = 1.0;
  }
  for (auto _ : state) {
    point_kernels(set).pixel_rows_3(points.data(), num_rows / 2, projection, columns.data(), stride);
    benchmark::ClobberMemory();
  }
}

/// With the copy that puts the rows back, which the reduction uses up.
void reduction(benchmark::State& state, fw::Instruction_set set) {
  if (skip_unless_available(state, set)) return;
  const auto rows_of_piece = static_cast<std::size_t>(state.range(0));
  fw::Aligned_buffer original((num_unknowns + 1) * stride);
  fw::Aligned_buffer columns((num_unknowns + 1) * stride);
  fill(original);
  double triangle[num_unknowns * (num_unknowns + 1)] = {};
  double scratch[2 * (num_unknowns + 1)];
  for (auto _ : state) {
    std::copy_n(original.data(), original.size(), columns.data());
    fw::reduction_kernels(set).reduce(columns.data(), stride, rows_of_piece, num_unknowns, triangle, scratch);
    benchmark::DoNotOptimize(triangle);
  }
}

/// The last diagonal entry tells whether the rank is beyond doubt.
void triangle_solution(benchmark::State& state, double last_diagonal_entry) {
  fw::Aligned_buffer triangle(num_unknowns * (num_unknowns + 1));
  fill(triangle);
  for (std::size_t i = 0; i < num_unknowns; ++i) {
    for (std::size_t j = 0; j < i; ++j) triangle[i * (num_unknowns + 1) + j] = 0.0;
    triangle[i * (num_unknowns + 1) + i] += 3.0;
  }
  triangle[num_unknowns * (num_unknowns + 1) - 2] = last_diagonal_entry;
  fw::Triangular_system system;
  double dx[num_unknowns];
  for (auto _ : state) {
    const double squared_norm = fw::squared_norm_of_triangle(triangle.data(), num_unknowns);
    system.solve(triangle.data(), squared_norm, num_unknowns, num_rows, dx);
    benchmark::DoNotOptimize(dx);
  }
}

using fw::Instruction_set;

}  // namespace

BENCHMARK_CAPTURE(rows, sse2, Instruction_set::sse2);
BENCHMARK_CAPTURE(rows, avx2, Instruction_set::avx2);
BENCHMARK_CAPTURE(rows, avx512, Instruction_set::avx512);
BENCHMARK_CAPTURE(reduction, sse2, Instruction_set::sse2)->Arg(16)->Arg(240);
BENCHMARK_CAPTURE(reduction, avx2, Instruction_set::avx2)->Arg(16)->Arg(240);
BENCHMARK_CAPTURE(reduction, avx512, Instruction_set::avx512)->Arg(16)->Arg(240);
BENCHMARK_CAPTURE(triangle_solution, back_substitution, 3.0);
BENCHMARK_CAPTURE(triangle_solution, singular_values, 1e-15);
