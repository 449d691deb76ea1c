// SPDX-License-Identifier: BSD-3-Clause
// The projection matrix with its derivatives, and the quotient rule for the rows of one point.
#include "camera_pose/projection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/cases.h"
#include "support/dual.h"
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

std::vector<double> product(const double (&P)[3][4], const std::vector<double>& X) {
  std::vector<double> result;
  for (const auto& row : P) result.push_back(row[0] * X[0] + row[1] * X[1] + row[2] * X[2] + row[3]);
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
  const auto X = which.random.vector_in_cube(3, 5.0);
  const std::vector<double> d = {X[0] - t[0], X[1] - t[1], X[2] - t[2]};
  const Projection<n_r> projection = make_projection(K, model, t.data());
  EXPECT_TRUE(support::is_close(product(projection.P, X), image_of(K, model.R, d), tolerance::identity));
  for (std::size_t j = 0; j < n_r; ++j) {
    EXPECT_TRUE(support::is_close(product(projection.dP[j], X), image_of(K, model.dR[j], d), tolerance::identity))
        << "derivative " << j;
  }
}

TEST(MakeProjection, CarriesPointsIntoTheImageWithEveryDerivative) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    expect_images<3>(number);
    expect_images<4>(number);
  }
}

/// u or v as a dual number in the n_r parameters and t, from images: value and derivative of numerator and depth.
template <std::size_t n_r>
support::Dual<n_r + 3> row_of_image(const Simple_intrinsics& K, const Rotation_model<n_r>& model,
                                    const std::vector<double>& d, std::size_t row) {
  support::Dual<n_r + 3> result = image_of(K, model.R, d)[row];
  for (std::size_t j = 0; j < n_r; ++j) result.derivatives[j] = image_of(K, model.dR[j], d)[row];
  for (std::size_t j = 0; j < 3; ++j) {
    std::vector<double> back = {0.0, 0.0, 0.0};
    back[j] = -1.0;
    result.derivatives[n_r + j] = image_of(K, model.R, back)[row];
  }
  return result;
}

template <std::size_t n_r>
void expect_rows(std::uint64_t number) {
  Case which(seed + 1, number);
  SCOPED_TRACE(which);
  auto model = random_model<n_r>(which.random);
  model.R[2][2] += 3.0;  // looks along the third axis, so the depth below is at least 1
  const Simple_intrinsics K{800.0, 320.0, 240.0};
  const auto t = which.random.vector_in_cube(3, 1.0);
  const std::vector<double> d = {which.random.uniform(-1, 1), which.random.uniform(-1, 1), which.random.uniform(2, 4)};
  const std::vector<double> X = {t[0] + d[0], t[1] + d[1], t[2] + d[2]};

  std::vector<double> rows(2 * (n_r + 3) + 1, -1.5);
  write_pixel_rows(make_projection(K, model, t.data()), X.data(), rows.data());
  EXPECT_EQ(rows.back(), -1.5) << "written past the end";
  rows.pop_back();
  std::vector<double> expected;
  for (const std::size_t row : {0U, 1U}) {
    const auto coordinate = row_of_image(K, model, d, row) / row_of_image(K, model, d, 2);
    expected.insert(expected.end(), coordinate.derivatives.begin(), coordinate.derivatives.end());
  }
  EXPECT_TRUE(support::is_close(rows, expected, tolerance::closed_form));
}

TEST(WritePixelRows, DividesByTheDepthWithTheQuotientRule) {
  for (std::uint64_t number = 0; number < 500; ++number) {
    expect_rows<3>(number);
    expect_rows<4>(number);
  }
}

TEST(WritePixelRows, GivesNothingFiniteAtDepthZero) {
  Random random(seed);
  auto model = random_model<3>(random);
  model.R[0][2] = model.R[1][2] = 0.0;
  const double t[] = {0.0, 0.0, 0.0};
  const double X[] = {1.0, 2.0, 0.0};
  std::vector<double> rows(12, 0.0);
  write_pixel_rows(make_projection(Simple_intrinsics{800.0, 320.0, 240.0}, model, t), X, rows.data());
  for (const double entry : rows) EXPECT_FALSE(std::isfinite(entry));
}

}  // namespace
