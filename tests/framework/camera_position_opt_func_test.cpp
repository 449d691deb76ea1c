// SPDX-License-Identifier: BSD-3-Clause
// The prediction of all ten rotation types, and what it refuses.
#include "framework/camera_position_opt_func.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <limits>
#include <string>

#include "camera_pose/rotation_type.h"
#include "support/camera_model.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

constexpr std::uint64_t seed = 31415;
constexpr const char* signature =
    "virtual std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>&) const";
const std::vector<double> identity_vector = {0, 0, 0};
const std::vector<double> no_turn = {0, 0, 0, 0, 0, 0};

fw::matrix<double> intrinsics(double f, double cx, double cy) {
  fw::matrix<double> K(3, 3);
  K[0][0] = K[1][1] = f;
  K[0][2] = cx;
  K[1][2] = cy;
  K[2][2] = 1.0;
  return K;
}

fw::matrix<double> identity() { return intrinsics(1.0, 0.0, 0.0); }

std::string unknown_type_report() {
  return support::block("kelvane_mex.cpp", 1704, signature, "Uknown rotation type!");
}

std::string intrinsics_report(const std::string& printed_K) {
  return support::block("kelvane_mex.cpp", 1662, signature,
                        "For bearing vectors, expected k to be identity, instead got " + printed_K);
}

support::Caught failure(const fw::matrix<double>& K, int type, const std::vector<std::vector<double>>& points = {}) {
  const Camera_position_opt_func predict(points, K, type);  // construction checks nothing
  return support::caught_by([&] { predict({0, 0, 0, 0, 0, 0, 0}); });
}

/// K R' (X - t) from the independent model, divided by its depth or not, repeated for each representation.
std::vector<double> expected_prediction(const kelvane::Rotation_type& type, const support::Matrix3<double>& R,
                                        const support::Vector3<double>& t, const fw::matrix<double>& K,
                                        const std::vector<std::vector<double>>& points) {
  std::vector<double> out;
  for (int r = 0; r < type.num_representations; ++r) {
    for (const auto& X : points) {
      const auto p = support::camera_frame_point(R, t, X);
      std::vector<double> image(3);
      for (unsigned i = 0; i < 3; ++i) image[i] = K.get(i, 0) * p[0] + K.get(i, 1) * p[1] + K.get(i, 2) * p[2];
      if (type.is_bearing()) {
        out.insert(out.end(), image.begin(), image.end());
      } else {
        out.insert(out.end(), {image[0] / image[2], image[1] / image[2]});
      }
    }
  }
  return out;
}

class CameraPositionOptFunc : public testing::TestWithParam<int> {
 protected:
  const kelvane::Rotation_type& type = *kelvane::find_rotation_type(GetParam());

  std::vector<double> rotation_entries(const std::vector<double>& unit_angle_axis, double length) const {
    switch (type.representation) {
      case kelvane::Representation::rotation_vector:
        return support::rotation_vector_from(unit_angle_axis);
      case kelvane::Representation::angle_axis:
        return support::scaled(unit_angle_axis, 3, length);
      case kelvane::Representation::quaternion:
        break;
    }
    return support::scaled(support::quaternion_from(unit_angle_axis), 4, length);
  }
};
INSTANTIATE_TEST_SUITE_P(AllTypes, CameraPositionOptFunc, testing::Values(0, 1, 2, 3, 10, 11, 12, -1, -2, -3),
                         [](const auto& parameter) {
                           std::string name = kelvane::find_rotation_type(parameter.param)->name;
                           for (char& c : name) c = std::isalpha(static_cast<unsigned char>(c)) != 0 ? c : 'X';
                           return name;
                         });

TEST_P(CameraPositionOptFunc, ProjectsEveryPointThroughPoseAndIntrinsics) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    support::Case which(seed, number);
    SCOPED_TRACE(which);
    const auto unit = support::random_angle_axis(which.regime, which.random);
    const auto v = support::rotation_vector_from(unit);
    const auto R = support::rotation_of_vector<double>({v[0], v[1], v[2]});
    const auto t = which.random.vector_in_cube(3, 2.0);
    // All of K counts. A bearing type is held to four of its entries, but only to a tolerance.
    fw::matrix<double> K = type.is_bearing() ? intrinsics(1.00005, -5e-5, 5e-5) : intrinsics(700.0, 320.0, 240.0);
    K[1][1] *= type.is_bearing() ? 1.00002 : 1.5;
    K[0][1] = 0.3;
    K[2][2] = 1.25;
    std::vector<std::vector<double>> points;
    for (int i = 0; i < 4; ++i) points.push_back(random_point(which.random, t, {R[0][2], R[1][2], R[2][2]}));
    auto x = rotation_entries(unit, which.random.uniform(0.5, 2.0));
    x.insert(x.end(), t.begin(), t.end());
    const Camera_position_opt_func predict(points, K, GetParam());
    ASSERT_TRUE(support::is_close(predict(x), expected_prediction(type, R, {t[0], t[1], t[2]}, K, points),
                                  tolerance::identity));
  }
}

TEST_P(CameraPositionOptFunc, GivesEveryRepresentationTheSameBlock) {
  const Camera_position_opt_func predict({{1, 2, 5}, {-1, 0, 4}, {0.5, 0.25, 3}}, identity(), GetParam());
  auto x = rotation_entries({0.6, 0.0, 0.8, 0.3}, 1.0);
  x.insert(x.end(), {0.1, 0.2, 0.3});
  const std::vector<double> out = predict(x);
  const std::size_t block_size = 3 * static_cast<std::size_t>(type.observation_size);
  ASSERT_EQ(out.size(), block_size * (GetParam() < 0 ? 3 : 1));
  for (std::size_t i = 0; i < out.size(); ++i) EXPECT_EQ(out[i], out[i % block_size]) << i;
}

TEST_P(CameraPositionOptFunc, IgnoresEntriesBeyondTheCentreAndCoordinatesBeyondTheThird) {
  auto x = rotation_entries({0.6, 0.0, 0.8, 0.3}, 1.0);
  x.insert(x.end(), {0.1, 0.2, 0.3});
  ASSERT_EQ(x.size(), static_cast<std::size_t>(type.num_dimensions()));
  auto longer = x;
  longer.push_back(1e6);
  const Camera_position_opt_func predict({{1, 2, 5}}, identity(), GetParam());
  const Camera_position_opt_func with_more_coordinates({{1, 2, 5, 9}}, identity(), GetParam());
  EXPECT_EQ(predict(longer), predict(x));
  EXPECT_EQ(with_more_coordinates(x), predict(x));
}

TEST_P(CameraPositionOptFunc, PredictsNothingForNoPoints) {
  auto x = rotation_entries({0.6, 0.0, 0.8, 0.3}, 1.0);
  x.insert(x.end(), {0.1, 0.2, 0.3});
  EXPECT_EQ(Camera_position_opt_func({}, identity(), GetParam())(x), std::vector<double>());
}

TEST_P(CameraPositionOptFunc, DividesByADepthOfZeroWithoutAnError) {
  auto x = rotation_entries({0, 0, 1, 0}, 1.0);
  x.insert(x.end(), {0, 0, 0});
  const auto out = Camera_position_opt_func({{1, -2, 0}, {0, 0, 0}}, identity(), GetParam())(x);
  if (type.is_bearing()) {
    EXPECT_EQ(out, (std::vector<double>{1, -2, 0, 0, 0, 0}));
  } else {
    EXPECT_EQ(out[0], std::numeric_limits<double>::infinity());
    EXPECT_EQ(out[1], -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(out[2]) && std::isnan(out[3]));
  }
}

TEST_P(CameraPositionOptFunc, DoesNotWeighItsPredictions) {
  auto x = rotation_entries({0.6, 0.0, 0.8, 0.3}, 1.0);
  x.insert(x.end(), {0.1, 0.2, 0.3});
  Camera_position_opt_func predict({{1, 2, 5}}, identity(), GetParam());
  const auto unweighted = predict(x);
  predict.set_weights(std::vector<double>(unweighted.size(), 3.0));
  EXPECT_EQ(predict(x), unweighted);
}

TEST(CameraPositionOptFuncBearings, AreNotScaledToUnitLength) {
  const Camera_position_opt_func predict({{3, 0, 4}}, identity(), 10);
  EXPECT_EQ(predict(no_turn), (std::vector<double>{3, 0, 4}));
}

TEST(CameraPositionOptFuncBearings, AreScaledByAnUncheckedThirdRow) {
  fw::matrix<double> K = identity();
  K[2][2] = 5.0;
  EXPECT_EQ(Camera_position_opt_func({{1, 2, 3}}, K, 10)(no_turn), (std::vector<double>{1, 2, 15}));
}

TEST(CameraPositionOptFuncBearings, TakeInAnUncheckedSkew) {
  fw::matrix<double> K = identity();
  K[0][1] = 3.0;
  EXPECT_EQ(Camera_position_opt_func({{1, 2, 3}}, K, 11)({0, 0, 1, 0, 0, 0, 0}), (std::vector<double>{7, 2, 3}));
}

TEST(CameraPositionOptFuncBearings, RefuseEachOfFourEntriesBeyondTheTolerance) {
  struct Entry {
    unsigned row, column;
    double expected;
  };
  for (const int type : {10, 11, 12}) {
    for (const Entry& entry : {Entry{0, 0, 1.0}, Entry{1, 1, 1.0}, Entry{0, 2, 0.0}, Entry{1, 2, 0.0}}) {
      SCOPED_TRACE(testing::Message() << "type " << type << ", entry " << entry.row << ", " << entry.column);
      for (const double sign : {-1.0, 1.0}) {
        fw::matrix<double> K = identity();
        K[entry.row][entry.column] = entry.expected + sign * 0.00009;
        EXPECT_EQ(failure(K, type).level, -2);
        K[entry.row][entry.column] = entry.expected + sign * 0.00011;
        EXPECT_EQ(failure(K, type).text, intrinsics_report(fw::text(K)));
      }
      fw::matrix<double> K = identity();
      K[entry.row][entry.column] = std::numeric_limits<double>::quiet_NaN();
      EXPECT_EQ(failure(K, type).level, 0);
    }
  }
}

TEST(CameraPositionOptFuncBearings, PrintTheWholeMatrixThatTheyRefuse) {
  fw::matrix<double> K = intrinsics(700.5, 320.0, 240.25);
  K[0][1] = -1e-7;
  const support::Caught caught = failure(K, 12);
  EXPECT_EQ(caught.text, intrinsics_report("3\t3\n700.5\t-1e-07\t320\t\n0\t700.5\t240.25\t\n0\t0\t1\t\n"));
  EXPECT_EQ(caught.level, 0);
}

TEST(CameraPositionOptFuncBearings, CheckTheIntrinsicsWithoutPointsToo) {
  EXPECT_EQ(failure(intrinsics(2.0, 0.0, 0.0), 10).text, intrinsics_report("3\t3\n2\t0\t0\t\n0\t2\t0\t\n0\t0\t1\t\n"));
}

TEST(CameraPositionOptFuncTypes, RefuseAllButTheTen) {
  for (const int type : {4, 5, 6, 7, 8, 9, 13, 100, -4, std::numeric_limits<int>::min()}) {
    SCOPED_TRACE(type);
    const support::Caught caught = failure(identity(), type, {{1, 2, 3}});
    EXPECT_EQ(caught.text, unknown_type_report());
    EXPECT_EQ(caught.level, 0);
    EXPECT_EQ(failure(identity(), type).text, unknown_type_report());  // without points too
  }
}

TEST(CameraPositionOptFuncTypes, AreCheckedAfterTheIntrinsicsOfBearingTypesOnly) {
  const fw::matrix<double> K = intrinsics(700.0, 320.0, 240.0);
  for (const int type : {10, 11, 12}) {
    EXPECT_EQ(failure(K, type).text, intrinsics_report("3\t3\n700\t0\t320\t\n0\t700\t240\t\n0\t0\t1\t\n"));
  }
  for (const int type : {7, 9, 13}) EXPECT_EQ(failure(K, type).text, unknown_type_report());
}

TEST(CameraPositionOptFuncCopies, KeepTheirOwnPointsAndIntrinsicsButNoWeights) {
  std::vector<std::vector<double>> points = {{1, 2, 4}};
  fw::matrix<double> K = identity();
  Camera_position_opt_func predict(points, K, 0);
  points[0][0] = 100.0;
  K[0][0] = 100.0;
  EXPECT_EQ(predict(no_turn), (std::vector<double>{0.25, 0.5}));
  predict.set_weight(0, 7.0);
  const Camera_position_opt_func copy(predict);
  EXPECT_EQ(copy(no_turn), (std::vector<double>{0.25, 0.5}));
  EXPECT_EQ(copy.get_weight(0), 1.0);
}

}  // namespace
