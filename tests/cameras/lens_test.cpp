// SPDX-License-Identifier: BSD-3-Clause
// Pixels and their derivatives, of every model next to its definition.
#include "cameras/lens.h"

// The widest vectors are made of narrower ones here.
#pragma GCC diagnostic ignored "-Wpsabi"

#include <gtest/gtest.h>

#include <cmath>

#include "cameras/lens_body.h"
#include "support/matchers.h"
#include "support/reference_lens.h"
#include "support/tolerance.h"

namespace {

using kelvane::Lens;
using kelvane::Lens_model;
using support::Dual;
using support::Random;

constexpr std::uint64_t seed = 18001;

class LensOfModel : public testing::TestWithParam<Lens_model> {
 protected:
  Lens random_lens() { return make_lens(GetParam(), support::random_parameters(GetParam(), random_)); }

  Random random_{seed};
};

INSTANTIATE_TEST_SUITE_P(All, LensOfModel, testing::ValuesIn(kelvane::lens_models()), support::name_of_model);

std::vector<double> given(const Lens& lens) { return {lens.given, lens.given + lens.model->num_parameters()}; }

TEST_P(LensOfModel, HasThePixelsAndDerivativesOfItsDefinition) {
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(i);
    const Lens lens = random_lens();
    const auto direction = support::seen_direction(lens, random_, 0.95);
    if (lens.model->plane == kelvane::Lens_plane::field_of_view && direction[2] <= 0.05) continue;  // not defined
    const double distance = random_.magnitude(-3, 3);
    const std::vector<double> p{distance * direction[0], distance * direction[1], distance * direction[2]};
    const auto [x, y, z] = support::variables<3>(p);
    const auto expected = support::pixel_by_definition(GetParam().name, given(lens), x, y, z);
    double pixel[2];
    double jacobian[2][3];
    project(lens, p.data(), pixel, jacobian);
    std::vector<double> derivatives;
    std::vector<double> derivatives_of_definition;
    for (std::size_t row = 0; row < 2; ++row) {
      derivatives.insert(derivatives.end(), jacobian[row], jacobian[row] + 3);
      for (std::size_t k = 0; k < 3; ++k) derivatives_of_definition.push_back(distance * expected[row].derivatives[k]);
    }
    for (double& entry : derivatives) entry *= distance;
    ASSERT_TRUE(support::is_close(std::vector<double>{pixel[0], pixel[1]},
                                  std::vector<double>{expected[0].value, expected[1].value}, tolerance::closed_form));
    ASSERT_TRUE(support::is_close(derivatives, derivatives_of_definition, tolerance::closed_form));
  }
}

template <int width>
std::vector<double> bits_of(const std::vector<double>& points, const Lens& lens) {
  std::vector<double> all;
  for (std::size_t i = 0; i + width <= points.size() / 3; i += width) {
    V<width> p[3] = {};
    for (std::size_t lane = 0; lane < width; ++lane) {
      for (std::size_t k = 0; k < 3; ++k) reinterpret_cast<double*>(&p[k])[lane] = points[3 * (i + lane) + k];
    }
    const Place_on_plane<width> place(p, lens);
    const Lens_pixel<width> seen(place.a, place.b, lens);
    V<width> du[3];
    V<width> dv[3];
    place.chain(seen.u_a, seen.u_b, lens, du);
    place.chain(seen.v_a, seen.v_b, lens, dv);
    for (std::size_t lane = 0; lane < width; ++lane) {
      const V<width>* const values[] = {&seen.u, &seen.v, &du[0], &du[1], &du[2], &dv[0], &dv[1], &dv[2]};
      for (const V<width>* value : values) {
        all.push_back(reinterpret_cast<const double*>(value)[lane]);
      }
    }
  }
  return all;
}

TEST_P(LensOfModel, HasTheSameBitsAtEveryWidth) {
  for (int i = 0; i < 20; ++i) {
    const Lens lens = random_lens();
    std::vector<double> points = random_.vector_in_cube(3 * 64, 2.0);
    points[3] = points[4] = 0.0;              // on the axis
    points[6] = points[7] = points[8] = 0.0;  // at the centre
    points[9] = std::nan("");
    const std::vector<double> one = bits_of<1>(points, lens);
    for (const std::vector<double>& others :
         {bits_of<2>(points, lens), bits_of<4>(points, lens), bits_of<8>(points, lens)}) {
      ASSERT_EQ(one.size(), others.size());
      for (std::size_t k = 0; k < one.size(); ++k) {
        ASSERT_TRUE(one[k] == others[k] || (std::isnan(one[k]) && std::isnan(others[k]))) << one[k] << " " << others[k];
      }
    }
  }
}

TEST_P(LensOfModel, SeesTheAxisAtItsPrincipalPointWhateverTheUnit) {
  for (const double unit : {1e-200, 1e-3, 1.0, 1e5, 1e200}) {
    const Lens lens = random_lens();
    const double p[3] = {0.0, 0.0, lens.forward * unit};
    double pixel[2];
    double jacobian[2][3];
    project(lens, p, pixel, jacobian);
    double near[2];
    const double q[3] = {1e-9 * unit, -2e-9 * unit, lens.forward * unit};
    project(lens, q, near, nullptr);
    for (int k = 0; k < 2; ++k) {
      EXPECT_NEAR(pixel[k], lens.K[k][2], 1e-12 * lens.K[k][2]);
      EXPECT_NEAR(near[k] - pixel[k], 1e-9 * unit * (jacobian[k][0] - 2.0 * jacobian[k][1]), 1e-11);
    }
  }
}

TEST_P(LensOfModel, HasNoImageFromItsFoldOn) {
  for (int i = 0; i < 200; ++i) {
    const Lens lens = random_lens();
    const double fold = largest_angle(lens);
    for (const double part : {0.999999, 1.000001}) {
      const double angle = fold * part;
      if (angle > 3.14 || (!lens.is_angular && angle > 1.57)) continue;  // there it ends without a fold
      const double turn = random_.uniform(-3, 3);
      const double p[3] = {std::sin(angle) * std::cos(turn), std::sin(angle) * std::sin(turn),
                           lens.forward * std::cos(angle)};
      double pixel[2];
      project(lens, p, pixel);
      EXPECT_EQ(std::isnan(pixel[0]), part > 1.0) << part;
      EXPECT_EQ(std::isnan(pixel[1]), part > 1.0);
    }
  }
}

TEST_P(LensOfModel, HasNoImageOfTheCentreAndOfNoNumbers) {
  const Lens lens = random_lens();
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::nan("");
  const std::vector<std::array<double, 3>> points{{0, 0, 0},   {nan, 0, 1}, {0, nan, 1},
                                                  {0, 0, nan}, {inf, 0, 1}, {inf, 1, inf}};
  for (const auto& p : points) {
    double pixel[2];
    project(lens, p.data(), pixel);
    EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1])) << p[0] << " " << p[1] << " " << p[2];
  }
  if (lens.is_angular) return;
  const double in_plane[3] = {1.0, 2.0, 0.0};
  double pixel[2];
  project(lens, in_plane, pixel);
  EXPECT_TRUE(std::isnan(pixel[0]));
}

TEST(AngleToAxis, IsThatOfTheStandardLibrary) {
  Random random(seed);
  for (int i = 0; i < 100000; ++i) {
    const double y = random.magnitude(-8, 8);
    const double z = random.magnitude(-2, 2) * (i % 2 == 0 ? 1.0 : -1.0);
    const double expected = std::atan2(y, z);
    ASSERT_NEAR(angle_to_axis<1>(y, z), expected, 3e-16 * expected) << y << " " << z;
  }
  EXPECT_EQ(angle_to_axis<1>(0.0, 1.0), 0.0);
  EXPECT_DOUBLE_EQ(angle_to_axis<1>(1.0, 0.0), std::acos(0.0));
  EXPECT_DOUBLE_EQ(angle_to_axis<1>(0.0, -1.0), std::acos(-1.0));
}

}  // namespace
