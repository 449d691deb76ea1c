// SPDX-License-Identifier: BSD-3-Clause
// Intrinsic matrices of any size: the upper left entries count, and those that a matrix does not have are zero.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <vector>

#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_opt_func.h"

namespace {

const std::vector<std::vector<double>> points = {{-1, -1, 6}, {1, -1, 6.2}, {1, 1, 7}};
const std::vector<double> x = {0.1, 0.2, 0.3, 0.2, -0.1, 0.3};

/// What is read behind the end of a short row is then no zero by chance.
void leave_sevens_in_free_memory() {
  std::vector<std::unique_ptr<double[]>> blocks(20);
  for (auto& block : blocks) {
    block.reset(new double[3]);
    std::fill_n(block.get(), 3, 7.0);
  }
}

/// The upper left entries of a matrix whose entries differ, of that size.
fw::matrix<double> intrinsics(int num_rows, int num_columns, double focal_length) {
  const double skew = focal_length == 1.0 ? 0.0 : 3.0;
  const double K[5][5] = {{focal_length, skew, 5.0 * skew, 4, 5},
                          {0.25, focal_length, 7.0 * skew, 6, 7},
                          {0.5, 0.125, 2, 8, 9},
                          {1, 2, 3, 4, 5},
                          {6, 7, 8, 9, 10}};
  leave_sevens_in_free_memory();
  fw::matrix<double> result(num_rows, num_columns);
  for (int i = 0; i < result.get_dim1(); ++i) {
    std::copy_n(K[i], num_columns, result[static_cast<unsigned int>(i)]);
  }
  return result;
}

/// The same as a matrix of three by three.
fw::matrix<double> completed(const fw::matrix<double>& K) {
  fw::matrix<double> result(3, 3);
  for (int i = 0; i < std::min(K.get_dim1(), 3); ++i) {
    const auto row = static_cast<unsigned int>(i);
    std::copy_n(K[row], std::min(K.get_dim2(), 3), result[row]);
  }
  return result;
}

bool are_same_bits(const double* a, const double* b, std::size_t size) {
  return std::memcmp(a, b, size * sizeof(double)) == 0;  // also where the depth is 0 and nothing is a number
}

template <typename Check>
void for_all_sizes(const Check& check) {
  for (int num_rows = 0; num_rows <= 5; ++num_rows) {
    for (int num_columns = 0; num_columns <= 5; ++num_columns) {
      SCOPED_TRACE(testing::Message() << num_rows << " by " << num_columns);
      check(num_rows, num_columns);
    }
  }
}

TEST(IntrinsicsOfAnySize, PredictAsThreeByThree) {
  for_all_sizes([](int num_rows, int num_columns) {
    const fw::matrix<double> K = intrinsics(num_rows, num_columns, 500.0);
    const std::vector<double> pixels = Camera_position_opt_func(points, K, 0)(x);
    const std::vector<double> expected = Camera_position_opt_func(points, completed(K), 0)(x);
    ASSERT_EQ(pixels.size(), expected.size());
    EXPECT_TRUE(are_same_bits(pixels.data(), expected.data(), expected.size()));
  });
}

TEST(IntrinsicsOfAnySize, PassTheCheckOfBearingTypesByTheEntriesThatThereAre) {
  for_all_sizes([](int num_rows, int num_columns) {
    const fw::matrix<double> K = intrinsics(num_rows, num_columns, 1.0);
    const Camera_position_opt_func predict(points, K, 10);
    if (std::min(num_rows, num_columns) < 2) {
      EXPECT_ANY_THROW(predict(x)) << "K(1,1) is zero";
    } else {
      EXPECT_EQ(predict(x), Camera_position_opt_func(points, completed(K), 10)(x));
    }
  });
}

TEST(IntrinsicsOfAnySize, DifferentiateAsThreeByThree) {
  for_all_sizes([](int num_rows, int num_columns) {
    const fw::matrix<double> K = intrinsics(num_rows, num_columns, 500.0);
    cv::Mat J(2 * static_cast<int>(points.size()), 6, CV_64F);
    cv::Mat expected(J.rows, J.cols, CV_64F);
    Camera_position_grad_func_aau(points, K, nullptr)(x, J, 0);
    Camera_position_grad_func_aau(points, completed(K), nullptr)(x, expected, 0);
    EXPECT_TRUE(are_same_bits(J.ptr<double>(), expected.ptr<double>(), J.total()));
    EXPECT_TRUE(cv::checkRange(J)) << "its last row is always 0 0 1";
  });
}

}  // namespace
