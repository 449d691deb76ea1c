// SPDX-License-Identifier: BSD-3-Clause
// The kernels have the same bits on every processor and system, as long as no sine is involved, whose last bit is the C
// library's. The fingerprints are those of an x86 under Linux; who changes the arithmetic of a kernel writes in the new
// one.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <limits>
#include <sstream>

#include "camera_pose/point_kernel_scene.h"
#include "least_squares/block.h"
#include "least_squares/reduction_kernels.h"
#include "pose_estimation/consensus_kernels.h"
#include "pose_refinement/lens_kernels.h"
#include "pose_refinement/sight_kernels.h"
#include "support/reference_lens.h"

namespace {

using kelvane::best_instruction_set, kelvane::Block, kelvane::group_size;
using support::Random;

constexpr std::uint64_t seed = 20260;
constexpr std::size_t num_groups = 3;
constexpr std::size_t num_points = num_groups * group_size;
const support::Matrix3<double> rotation = {
    {{2. / 3, -1. / 3, 2. / 3}, {2. / 3, 2. / 3, -1. / 3}, {-1. / 3, 2. / 3, 2. / 3}}};

/// Of all bits in their order (Fowler, Noll, Vo: FNV-1a). Processors differ in the sign of the NaN that they make, so
/// all NaN count as one.
class Fingerprint {
 public:
  void add(const double* numbers, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
      std::uint64_t bits = 0x7FF8000000000000U;
      if (!std::isnan(numbers[i])) std::memcpy(&bits, &numbers[i], sizeof bits);
      for (unsigned shift = 0; shift < 64; shift += 8) value_ = (value_ ^ (bits >> shift & 0xFFU)) * 0x100000001B3U;
    }
  }
  template <typename Numbers>
  void add(const Numbers& numbers) {
    add(std::data(numbers), std::size(numbers));
  }
  std::string text() const {
    std::ostringstream text;
    text << std::hex << std::setw(16) << std::setfill('0') << value_;
    return text.str();
  }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325U;
};

std::vector<double> random_numbers(std::size_t size, Random& random) { return random.vector_in_cube(size, 1.0); }

TEST(KernelsOnEveryMachine, PredictAndDifferentiatePoints) {
  using namespace point_kernels;
  Random random(seed);
  Fingerprint found;
  for (std::size_t n = 1; n <= max_points; ++n) {
    Scene scene(n, 3 + n % 2, random, rotation);
    if (n % 5 == 0) scene.points[2] = std::numeric_limits<double>::infinity();
    for (const bool is_bearing : {false, true}) {
      for (const Kernel kernel : {Kernel::twist, Kernel::parameters, Kernel::differences, Kernel::prediction}) {
        found.add(output_of(best_instruction_set(), scene, kernel, is_bearing).memory);
      }
    }
  }
  EXPECT_EQ(found.text(), "83326f3b0b94b19c");
}

TEST(KernelsOnEveryMachine, ReduceSystems) {
  Random random(seed);
  Fingerprint found;
  for (std::size_t n = 1; n <= 12; ++n) {
    kelvane::Aligned_buffer<1> memory;
    const std::size_t num_rows = num_points * n;
    memory.resize((n + 1) * num_rows);
    for (std::size_t i = 0; i < (n + 1) * num_rows; ++i) memory.data()[i] = random.uniform(-1.0, 1.0);
    std::vector<double> triangle(n * (n + 1));
    std::vector<double> scratch(2 * (n + 1));
    kelvane::reduction_kernels(best_instruction_set())
        .reduce(memory.data(), num_rows, num_rows, n, triangle.data(), scratch.data());
    found.add(triangle);
  }
  EXPECT_EQ(found.text(), "95366d439d548854");
}

TEST(KernelsOnEveryMachine, WeighResiduals) {
  const kelvane::Sight_kernels& kernels = kelvane::sight_kernels(best_instruction_set());
  Random random(seed);
  Fingerprint found;
  for (const auto kind : {kelvane::Loss::none, kelvane::Loss::huber, kelvane::Loss::cauchy, kelvane::Loss::tukey}) {
    for (const std::size_t d : {2U, 3U}) {
      const kelvane::Robust_loss loss{kind, 0.7};
      const std::size_t num_rows = d * num_points;
      alignas(kelvane::cache_line) double columns[7 * 3 * num_points];
      alignas(kelvane::cache_line) double roots[3 * num_points] = {};
      alignas(kelvane::cache_line) double sums[21][group_size] = {};
      double lengths[num_points];
      std::vector<double> weights = random_numbers(num_rows, random);
      for (double& weight : weights) weight = std::abs(weight);
      for (double& entry : columns) entry = random.uniform(-1.0, 1.0);
      double* const r = columns + 6 * num_rows;
      kernels.whiten(random_numbers(9 * num_points, random).data(), d, num_groups, r);
      EXPECT_TRUE(kernels.lengths(weights.data(), r, d, num_groups, lengths));
      kernels.add_slopes(loss, weights.data(), lengths, d, num_groups, columns, num_rows, sums);
      kernels.weigh(loss, weights.data(), lengths, d, num_groups, r, roots);
      for (std::size_t c = 0; c < 6; ++c) kernels.scale(roots, num_rows, columns + c * num_rows);
      found.add(columns, 7 * num_rows);
      found.add(lengths);
      found.add(sums[0], 21 * group_size);
    }
  }
  EXPECT_EQ(found.text(), "32a5f45d8ff615ae");
}

/// Of lenses whose numbers are taken as they are: a tilt and a stretched field of view take sines.
TEST(KernelsOnEveryMachine, LookThroughLenses) {
  Random random(seed);
  Fingerprint found;
  for (const kelvane::Lens_model& model : kelvane::lens_models()) {
    const kelvane::Lens lens = make_lens(model, support::random_parameters(model, random));
    const std::vector<double> points = random_numbers(3 * num_points, random);
    const std::vector<double> observed = random_numbers(2 * num_points, random);
    if (lens.is_tilted || lens.stretch != 1.0) continue;
    double R[3][3];
    for (std::size_t i = 0; i < 9; ++i) R[i / 3][i % 3] = rotation[i / 3][i % 3];
    const double t[3] = {0.3, -0.2, 0.1};
    Block block;
    block.resize(6);
    kelvane::lens_kernels(best_instruction_set())
        .rows(points.data(), num_points, kelvane::make_camera({1.0, 0.0, 0.0}, R, t), lens, observed.data(),
              block.column(0), block.stride());
    for (std::size_t c = 0; c < 7; ++c) found.add(block.column(c), 2 * num_points);
  }
  EXPECT_EQ(found.text(), "baccb187988b5482");
}

TEST(KernelsOnEveryMachine, CountWhatAgrees) {
  const kelvane::Consensus_kernels& kernels = kelvane::consensus_kernels(best_instruction_set());
  Random random(seed);
  Fingerprint found;
  for (int round = 0; round < 50; ++round) {
    const std::vector<double> groups = random_numbers(kelvane::numbers_of_match * num_points, random);
    double A[3][3];
    double b[3];
    for (std::size_t i = 0; i < 9; ++i) A[i / 3][i % 3] = random.uniform(-1.0, 1.0);
    for (double& entry : b) entry = random.uniform(-1.0, 1.0);
    double squares[num_points];
    double gains[group_size] = {};
    kernels.squares(groups.data(), num_groups, A, b, squares);
    kernels.add_gains(groups.data(), num_groups, A, b, gains);
    found.add(squares);
    found.add(gains);
  }
  EXPECT_EQ(found.text(), "88cd6034a98609e4");
}

}  // namespace
