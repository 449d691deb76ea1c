// SPDX-License-Identifier: BSD-3-Clause
// Intrinsics from matrices of any size, and which of them Jacobians can differentiate.
#include "camera_pose/intrinsics.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

/// A matrix of the numbers 1, 2, ... row by row.
fw::matrix<double> counting_matrix(int num_rows, int num_columns) {
  fw::matrix<double> result(num_rows, num_columns);
  double next = 1.0;
  for (unsigned int i = 0; i < static_cast<unsigned int>(num_rows); ++i) {
    for (unsigned int j = 0; j < static_cast<unsigned int>(num_columns); ++j) result[i][j] = next++;
  }
  return result;
}

TEST(Intrinsics, AreTheUpperLeftEntriesOfAMatrixAndZeroWhereItHasNone) {
  for (int num_rows = 0; num_rows <= 5; ++num_rows) {
    for (int num_columns = 0; num_columns <= 5; ++num_columns) {
      const fw::matrix<double> matrix = counting_matrix(num_rows, num_columns);
      const Intrinsics intrinsics(matrix);
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
          const double expected = i < num_rows && j < num_columns ? i * num_columns + j + 1.0 : 0.0;
          EXPECT_EQ(intrinsics.K[i][j], expected) << num_rows << " by " << num_columns << ": " << i << ", " << j;
        }
      }
    }
  }
}

TEST(Intrinsics, ComeBackAsAMatrix) {
  const Intrinsics intrinsics(counting_matrix(3, 3));
  EXPECT_TRUE(Intrinsics(intrinsics.matrix()) == intrinsics);
  EXPECT_EQ(intrinsics.matrix().get_dim1(), 3);
  EXPECT_EQ(intrinsics.matrix().get_dim2(), 3);
}

TEST(Intrinsics, PutFocalLengthAndPrincipalPointWhereTheyBelong) {
  const Intrinsics intrinsics(500.0, 320.0, 240.0);
  const double expected[] = {500.0, 0.0, 320.0, 0.0, 500.0, 240.0, 0.0, 0.0, 1.0};
  EXPECT_TRUE(std::equal(expected, expected + 9, &intrinsics.K[0][0]));
}

TEST(Intrinsics, DifferInEveryEntry) {
  const Intrinsics intrinsics(500.0, 320.0, 240.0);
  EXPECT_TRUE(intrinsics == Intrinsics(500.0, 320.0, 240.0));
  for (int k = 0; k < 9; ++k) {
    Intrinsics other = intrinsics;
    (&other.K[0][0])[k] += 0.25;
    EXPECT_FALSE(other == intrinsics) << "entry " << k;
  }
}

TEST(Intrinsics, AreSimpleWithOneFocalLengthAndNothingElseThanThePrincipalPoint) {
  const bool may_change[] = {false, false, true, false, false, true, false, false, false};
  const Intrinsics intrinsics(500.0, 320.0, 240.0);
  EXPECT_TRUE(intrinsics.is_simple());
  for (int k = 0; k < 9; ++k) {
    Intrinsics other = intrinsics;
    (&other.K[0][0])[k] += 0.25;
    EXPECT_EQ(other.is_simple(), may_change[k]) << "entry " << k;
  }
}

}  // namespace
