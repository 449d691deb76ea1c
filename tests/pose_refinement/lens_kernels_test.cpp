// SPDX-License-Identifier: BSD-3-Clause
// The loops over points behind a lens, of each instruction set.
#include "pose_refinement/lens_kernels.h"

#include <gtest/gtest.h>

#include <cmath>

#include "least_squares/block.h"
#include "support/bits.h"
#include "support/instruction_sets.h"
#include "support/matchers.h"
#include "support/reference_lens.h"

namespace {

using kelvane::Block;
using kelvane::Camera;
using kelvane::Instruction_set;
using kelvane::Lens;
using support::Random;

constexpr std::uint64_t seed = 18011;
constexpr std::size_t most_points = Block::max_rows / 2;

struct Scene {
  Lens lens;
  Camera camera;
  std::vector<double> points = std::vector<double>(3 * most_points);
  std::vector<double> observed = std::vector<double>(2 * most_points);

  explicit Scene(const kelvane::Lens_model& model, Random& random)
      : lens(make_lens(model, support::random_parameters(model, random))) {
    const double R[3][3] = {{2. / 3, -1. / 3, 2. / 3}, {2. / 3, 2. / 3, -1. / 3}, {-1. / 3, 2. / 3, 2. / 3}};
    const double t[3] = {0.3, -0.2, 0.1};
    camera = kelvane::make_camera({1.0, 0.0, 0.0}, R, t);
    for (double& x : points) x = random.uniform(-2, 2);
    points[3] = t[0];  // at the centre
    points[4] = t[1];
    points[5] = t[2];
    for (double& x : observed) x = random.uniform(0, 1000);
  }
};

class LensKernels : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, LensKernels, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(LensKernels, HaveTheBitsOfTheNarrowestAndAgreeWithSinglePoints) {
  Random random(seed);
  for (const auto& model : kelvane::lens_models()) {
    for (std::size_t n : {1U, 7U, 8U, 9U, 61U, 120U}) {
      const Scene scene(model, random);
      Block block;
      Block narrow;
      block.resize(6);
      narrow.resize(6);
      alignas(64) double values[Block::max_rows];
      kelvane::lens_kernels(GetParam())
          .rows(scene.points.data(), n, scene.camera, scene.lens, scene.observed.data(), block.column(0),
                block.stride());
      kelvane::lens_kernels(Instruction_set::sse2)
          .rows(scene.points.data(), n, scene.camera, scene.lens, scene.observed.data(), narrow.column(0),
                narrow.stride());
      kelvane::lens_kernels(GetParam())
          .residuals(scene.points.data(), n, scene.camera, scene.lens, scene.observed.data(), values);
      const std::size_t num_rows = (n + 7) / 8 * 16;
      for (std::size_t c = 0; c < 7; ++c) {
        ASSERT_TRUE(support::have_same_bits(block.column(c), narrow.column(c), num_rows)) << model.name << c;
      }
      ASSERT_TRUE(support::have_same_bits(block.column(6), values, num_rows));
      for (std::size_t i = 0; i < (n + 7) / 8 * 8; ++i) {
        const std::size_t row = i / 8 * 16 + i % 8;
        double p[3] = {};
        for (int k = 0; k < 3; ++k) {
          for (std::size_t j = 0; j < 3; ++j)
            p[k] += scene.camera.rotation[k][j] * (scene.points[3 * i + j] - scene.camera.t[j]);
        }
        double pixel[2] = {scene.observed[row], scene.observed[row + 8]};
        double D[2][3] = {};
        if (i < n) project(scene.lens, p, pixel, D);
        for (std::size_t k = 0; k < 2; ++k) {
          const double left = block.column(6)[row + 8 * k];
          std::vector<double> twist(6);
          std::vector<double> expected(6);
          for (std::size_t c = 0; c < 6; ++c) twist[c] = block.column(c)[row + 8 * k];
          if (std::isnan(pixel[k])) {
            ASSERT_TRUE(std::isnan(left));
          } else {
            ASSERT_NEAR(left, scene.observed[row + 8 * k] - pixel[k], 1e-11 * (1.0 + std::abs(pixel[k])));
            const double* d = D[k];
            expected = {
                -d[0], -d[1], -d[2], d[1] * p[2] - d[2] * p[1], d[2] * p[0] - d[0] * p[2], d[0] * p[1] - d[1] * p[0]};
          }
          ASSERT_TRUE(support::is_close(twist, expected, 1e-11)) << model.name << " " << i;
        }
      }
    }
  }
}

}  // namespace
