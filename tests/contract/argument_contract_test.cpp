// SPDX-License-Identifier: BSD-3-Clause
// Every check of a call's arguments: its text, its place in the order, and what it lets pass.
#include "contract/argument_contract.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/fake_input.h"
#include "support/matchers.h"

namespace {

using support::Fake_call;
using support::fake_class;
using support::Fake_input;
using support::fake_row;
using support::fake_shape;

const char* const valid_types =
    "(0=aau, 1=aan, 2=qu, 3=qn,   10=aau-bv, 11=aan-bv, 12=qu-bv,   -1=qu,aau,aan, -2=aau,qu,aan,  -3=aan,qu,aau)";

std::string report(int line, const std::string& details) {
  return support::block("kelvane_mex.cpp", line, "void mexFunction(int, mxArray**, int, const mxArray**)", details);
}

void expect_report(const Fake_call& call, int line, const std::string& details) {
  const support::Caught caught = support::caught_by([&] { call.check(); });
  EXPECT_EQ(caught.text, report(line, details));
  EXPECT_EQ(caught.level, 0);
}

/// What a class check must refuse, whichever input it is.
std::vector<Fake_input> not_real_doubles(const Fake_input& good) {
  std::vector<Fake_input> bad(3, good);
  bad[0].double_class = false;
  bad[1].sparse = true;
  bad[2].complex = true;
  return bad;
}

TEST(NumberOfInputs, PrintsTheUsageWhereThereAreTooFewOrTooMany) {
  for (const std::size_t count : {0U, 2U, 7U}) {
    SCOPED_TRACE(count);
    Fake_call call(0);
    call.inputs.resize(count);
    expect_report(call, 1742,
                  "3 to 6 inputs required. Got " + std::to_string(count) +
                      " Arguments should be: \n"
                      "(1) a vector of 9/10 camera parameters (r1,r2,r3(,r4),t1,t2,t3, k11,k13,k23). The first 6/7 "
                      "constitute the search vector x, ther others are constant intrinsics\n"
                      "(2) a matrix of 3d points\n"
                      "(3) a matrix of 2d points\n"
                      "(4) a vector of stopping criteria (max_iters, min_x_step, min_y_step, use_finite_difference) "
                      "optional(5) a flag indicating rotation type " +
                      valid_types +
                      " optional, default=0\n"
                      "(6) a vector of weights for the various equations (most useful for hybrid representation, or "
                      "confidence of points) optional");
  }
}

TEST(NumberOfInputs, AcceptsThreeToSix) {
  for (const std::size_t count : {3U, 4U, 5U, 6U}) EXPECT_NO_THROW(Fake_call(0).keep(count).check()) << count;
}

TEST(NumberOfInputs, ComesBeforeTheNumberOfOutputs) {
  Fake_call call(0);
  call.keep(2).num_outputs = 0;
  EXPECT_NE(support::caught_by([&] { call.check(); }).text.find("3 to 6 inputs"), std::string::npos);
}

TEST(NumberOfOutputs, MustBeOne) {
  for (const int count : {0, 2}) {
    Fake_call call(0);
    call.num_outputs = count;
    expect_report(call, 1756, "1 output required. Got " + std::to_string(count));
  }
}

TEST(NumberOfOutputs, ComesBeforeTheRotationType) {
  Fake_call call(0);
  call.with(5, fake_row({4})).num_outputs = 0;
  expect_report(call, 1756, "1 output required. Got 0");
}

TEST(RotationTypeInput, MustBeARowOfDoubles) {
  const std::string text = "Double scalar expected as rotation type, got ";
  expect_report(Fake_call(0).with(5, fake_class("cell", 1, 1)), 1764, text + "1 by 1 of cell");
  expect_report(Fake_call(0).with(5, fake_shape(3, 1)), 1764, text + "3 by 1 of double");
  expect_report(Fake_call(0).with(5, fake_shape(1, 0)), 1764, text + "1 by 0 of double");
  expect_report(Fake_call(0).with(5, fake_shape(0, 0)), 1764, text + "0 by 0 of double");
  for (const Fake_input& bad : not_real_doubles(fake_row({0}))) {
    expect_report(Fake_call(0).with(5, bad), 1764, text + "1 by 1 of double");
  }
}

TEST(RotationTypeInput, TakesTheFirstElementOfALongerRow) {
  EXPECT_EQ(Fake_call(2).with(5, fake_row({2, 77, 78})).check().type->id, 2);
}

TEST(RotationTypeInput, IsTruncatedTowardZero) {
  EXPECT_EQ(Fake_call(2).with(5, fake_row({2.7})).check().type->id, 2);
  EXPECT_EQ(Fake_call(-3).with(5, fake_row({-3.5})).check().type->id, -3);
  EXPECT_EQ(Fake_call(0).with(5, fake_row({-0.9})).check().type->id, 0);
}

TEST(RotationTypeInput, MustBeOneOfTheTen) {
  const std::string text = std::string("Rotation type must be from: ") + valid_types + ", got an invalid value of ";
  expect_report(Fake_call(0).with(5, fake_row({4})), 1773, text + "4");
  expect_report(Fake_call(0).with(5, fake_row({13.25})), 1773, text + "13.25");
  expect_report(Fake_call(0).with(5, fake_row({-4})), 1773, text + "-4");
}

TEST(RotationTypeInput, RefusesWhatNoIntHolds) {
  const std::string text = std::string("Rotation type must be from: ") + valid_types + ", got an invalid value of ";
  const double infinity = std::numeric_limits<double>::infinity();
  expect_report(Fake_call(0).with(5, fake_row({std::nan("")})), 1773, text + "nan");
  expect_report(Fake_call(0).with(5, fake_row({1e300})), 1773, text + "1e+300");
  expect_report(Fake_call(0).with(5, fake_row({-infinity})), 1773, text + "-inf");
  expect_report(Fake_call(0).with(5, fake_row({4294967296.0})), 1773, text + "4.29497e+09");  // 2^32 is no 0
  expect_report(Fake_call(0).with(5, fake_row({-2147483649.0})), 1773, text + "-2.14748e+09");
}

TEST(RotationTypeInput, ComesBeforeTheCameraParameters) {
  const Fake_call call = Fake_call(0).with(5, fake_shape(3, 1)).with(1, fake_class("single", 1, 9));
  expect_report(call, 1764, "Double scalar expected as rotation type, got 3 by 1 of double");
}

TEST(RotationTypeInput, IsZeroWhereItIsAbsent) {
  EXPECT_EQ(Fake_call(0).keep(3).check().type->id, 0);
  EXPECT_EQ(Fake_call(0).keep(4).check().type->id, 0);
}

TEST(CameraParameters, MustBeAVectorOfDoublesOfTheRightLength) {
  for (const Fake_input& bad : not_real_doubles(fake_shape(5, 5))) {
    expect_report(Fake_call(0).with(1, bad), 1790, "Input 1 should be an double vector");
  }
  expect_report(Fake_call(0).with(1, fake_shape(3, 3)), 1793,
                "Input 1 should be a vector, instead found sizes of 3 by 3");
  expect_report(Fake_call(0).with(1, fake_shape(0, 0)), 1793,
                "Input 1 should be a vector, instead found sizes of 0 by 0");
  const std::string names = " camera parameters (r1,r2,r3(,r4),t1,t2,t3, k11,k13,k23), instead it had ";
  expect_report(Fake_call(0).with(1, fake_shape(1, 10)), 1797, "Input 1 should be a vector of 9" + names + "10");
  expect_report(Fake_call(2).with(1, fake_shape(9, 1)), 1797, "Input 1 should be a vector of 10" + names + "9");
  expect_report(Fake_call(-2).with(1, fake_shape(1, 0)), 1797, "Input 1 should be a vector of 9" + names + "0");
}

TEST(CameraParameters, ComeBeforeThePoints) {
  expect_report(Fake_call(0).with(1, fake_shape(3, 3)).with(2, fake_class("cell", 1, 1)), 1793,
                "Input 1 should be a vector, instead found sizes of 3 by 3");
}

TEST(Points, MustHaveThreeRows) {
  for (const Fake_input& bad : not_real_doubles(fake_shape(4, 3))) {
    expect_report(Fake_call(0).with(2, bad), 1804, "Input 2 should be an double matrix");
  }
  expect_report(Fake_call(0).with(2, fake_shape(4, 3)), 1807,
                "Input 2 should be a matrix of 3D points, with size N by 3. instead size of 4 by 3 was passed");
}

TEST(Points, MustNotOverflowTheNumberOfEquations) {
  const std::size_t limit = 2147483647 / 6;  // six equations a point for hybrid types
  expect_report(Fake_call(-1).with(2, fake_shape(3, limit + 1)), 1811,
                "Input 2 should have at most 357913941 points for this rotation type, instead 357913942 were passed");
  expect_report(Fake_call(-1).with(2, fake_shape(3, limit)), 1822,
                "Input 3 should be a matrix of observations (pixel/bearing vecs), with size 357913941 by 2. instead "
                "size of 4 by 2 was passed");
}

TEST(Points, ComeBeforeTheObservations) {
  expect_report(Fake_call(0).with(2, fake_shape(4, 3)).with(3, fake_class("cell", 1, 1)), 1807,
                "Input 2 should be a matrix of 3D points, with size N by 3. instead size of 4 by 3 was passed");
}

TEST(Observations, MustMatchPointsAndObservationSize) {
  for (const Fake_input& bad : not_real_doubles(fake_shape(3, 3))) {
    expect_report(Fake_call(0).with(3, bad), 1818, "Input 3 should be an double matrix");
  }
  const std::string text = "Input 3 should be a matrix of observations (pixel/bearing vecs), with size ";
  expect_report(Fake_call(0).with(3, fake_shape(2, 5)), 1822, text + "4 by 2. instead size of 5 by 2 was passed");
  expect_report(Fake_call(0).with(3, fake_shape(3, 4)), 1822, text + "4 by 2. instead size of 4 by 3 was passed");
  expect_report(Fake_call(11).with(3, fake_shape(2, 4)), 1822, text + "4 by 3. instead size of 4 by 2 was passed");
}

TEST(Observations, ComeBeforeTheStoppingCriteria) {
  expect_report(Fake_call(0).with(3, fake_class("cell", 2, 4)).with(4, fake_class("cell", 1, 1)), 1818,
                "Input 3 should be an double matrix");
}

TEST(StoppingCriteria, MustBeAVectorOfFour) {
  for (const Fake_input& bad : not_real_doubles(fake_shape(2, 2))) {
    expect_report(Fake_call(0).with(4, bad), 1831, "Input 4 should be an double vector");
  }
  const std::string text = "Input 4 should be a vector of stopping criteria, with 4 elements. instead size of ";
  expect_report(Fake_call(0).with(4, fake_shape(2, 2)), 1834, text + "2 by 2 was passed");
  expect_report(Fake_call(0).with(4, fake_shape(1, 5)), 1837, text + "1 by 5 was passed");
  expect_report(Fake_call(0).keep(4).with(4, fake_shape(3, 1)), 1837, text + "3 by 1 was passed");
}

TEST(StoppingCriteria, ComeBeforeTheWeights) {
  expect_report(Fake_call(0).with(4, fake_shape(2, 2)).with(6, fake_shape(2, 2)), 1834,
                "Input 4 should be a vector of stopping criteria, with 4 elements. instead size of 2 by 2 was passed");
}

TEST(Weights, AreReportedWithSizeAndClassOfTheRotationType) {
  const std::string text = "Double vector of length 8 expected as weightings, got ";
  expect_report(Fake_call(0).with(6, fake_shape(1, 7)), 1868, text + "1 by 1 of double");
  expect_report(Fake_call(0).with(6, fake_shape(2, 4)), 1868, text + "1 by 1 of double");
  expect_report(Fake_call(0).with(6, fake_class("cell", 1, 8)), 1868, text + "1 by 1 of double");
  expect_report(Fake_call(0).with(5, fake_row({0, 0, 0})).with(6, fake_shape(1, 7)), 1868, text + "1 by 3 of double");
  for (const Fake_input& bad : not_real_doubles(fake_shape(1, 8))) {
    expect_report(Fake_call(0).with(6, bad), 1868, text + "1 by 1 of double");
  }
}

TEST(Weights, MayBeRowOrColumn) {
  EXPECT_NO_THROW(Fake_call(-1).check());
  EXPECT_NO_THROW(Fake_call(-1).with(6, Fake_input(24, 1, std::vector<double>(24, 1.0))).check());
}

}  // namespace
