// SPDX-License-Identifier: BSD-3-Clause
// The projection of a pose with its derivatives, by its own parameters and by others.
#include "camera_pose/projection.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/cases.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using support::Case;
using support::Random;

constexpr std::uint64_t seed = 60601;

void fill(Random& random, double (&m)[3][3]) {
  for (auto& row : m) {
    for (double& entry : row) entry = random.uniform(-1.0, 1.0);
  }
}

/// Any R and any derivatives: the projection is linear in them, so they need not belong to a rotation.
template <std::size_t n_r>
Rotation_model<n_r> random_model(Random& random) {
  Rotation_model<n_r> model;
  fill(random, model.R);
  for (auto& dR : model.dR) fill(random, dR);
  return model;
}

/// K R' (X - t)
std::vector<double> image_of(const Simple_intrinsics& K, const double (&R)[3][3], const std::vector<double>& d) {
  double p[3];
  for (int j = 0; j < 3; ++j) p[j] = R[0][j] * d[0] + R[1][j] * d[1] + R[2][j] * d[2];
  return {K.f * p[0] + K.cx * p[2], K.f * p[1] + K.cy * p[2], p[2]};
}

std::vector<double> product(const double (&M)[3][3], const std::vector<double>& d) {
  std::vector<double> result;
  for (const auto& row : M) result.push_back(row[0] * d[0] + row[1] * d[1] + row[2] * d[2]);
  return result;
}

template <std::size_t n_r>
void expect_images(std::uint64_t number) {
  Case which(seed, number);
  SCOPED_TRACE(which);
  const auto model = random_model<n_r>(which.random);
  const auto intrinsics = support::random_intrinsics(which.random);
  const Simple_intrinsics K{intrinsics.f, intrinsics.cx, intrinsics.cy};
  const auto t = which.random.vector_in_cube(3, 2.0);
  const auto d = which.random.vector_in_cube(3, 5.0);
  const Projection<n_r> projection = make_projection(K, model, t.data());
  EXPECT_EQ(std::vector<double>(projection.t, projection.t + 3), t);
  EXPECT_TRUE(support::is_close(product(projection.M, d), image_of(K, model.R, d), tolerance::identity));
  for (std::size_t j = 0; j < n_r; ++j) {
    EXPECT_TRUE(support::is_close(product(projection.dM[j], d), image_of(K, model.dR[j], d), tolerance::identity))
        << "derivative " << j;
  }
}

TEST(MakeProjection, CarriesPointsIntoTheImageWithEveryDerivative) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    expect_images<3>(number);
    expect_images<4>(number);
  }
}

template <std::size_t n_other, std::size_t n_r>
void expect_chain_rule(std::uint64_t number) {
  Case which(seed + 1, number);
  SCOPED_TRACE(which);
  const auto model = random_model<n_r>(which.random);
  double F[n_r][n_other];
  for (auto& row : F) {
    for (double& entry : row) entry = which.random.uniform(-1.0, 1.0);
  }
  const Simple_intrinsics K{800.0, 320.0, 240.0};
  const auto t = which.random.vector_in_cube(3, 2.0);
  const auto d = which.random.vector_in_cube(3, 5.0);
  const auto carried = carry_over(make_projection(K, model, t.data()), F);
  EXPECT_EQ(std::vector<double>(carried.t, carried.t + 3), t);
  EXPECT_EQ(product(carried.M, d), product(make_projection(K, model, t.data()).M, d));
  for (std::size_t j = 0; j < n_other; ++j) {
    std::vector<double> expected(3, 0.0);  // sum_i d(image) / d(parameter i) F_ij
    for (std::size_t i = 0; i < n_r; ++i) {
      const auto image = image_of(K, model.dR[i], d);
      for (std::size_t row = 0; row < 3; ++row) expected[row] += image[row] * F[i][j];
    }
    EXPECT_TRUE(support::is_close(product(carried.dM[j], d), expected, tolerance::identity)) << "parameter " << j;
  }
}

TEST(CarryOver, DifferentiatesByOtherParameters) {
  for (std::uint64_t number = 0; number < 100; ++number) {
    expect_chain_rule<3, 4>(number);
    expect_chain_rule<4, 3>(number);
    expect_chain_rule<4, 4>(number);
  }
}

}  // namespace
