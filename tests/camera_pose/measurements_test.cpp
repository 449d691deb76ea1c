// SPDX-License-Identifier: BSD-3-Clause
// Pieces of the measurements: where they lie, what fills up the last one, and which weights belong to which stack.
#include "camera_pose/measurements.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace {

using kelvane::Measurements;
using kelvane::Piece;

/// size numbers, all different, from `first` on.
std::vector<double> numbers(std::size_t size, double first) {
  std::vector<double> values(size);
  for (std::size_t i = 0; i < size; ++i) values[i] = first + static_cast<double>(i);
  return values;
}

struct Data {
  std::size_t num_points, m, num_stacks;
  std::vector<double> points, observations, weights;
  Measurements measurements;

  Data(std::size_t count, std::size_t observation_size, std::size_t stacks)
      : num_points(count),
        m(observation_size),
        num_stacks(stacks),
        points(numbers(3 * count, 1.0)),
        observations(numbers(m * count, 1e4)),
        weights(numbers(m * count * stacks, 1e6)),
        measurements(points.data(), observations.data(), m, stacks == 0 ? nullptr : weights.data(), stacks, count) {}
};

class Pieces : public testing::TestWithParam<std::size_t> {
 protected:
  const std::size_t m = GetParam();
};
INSTANTIATE_TEST_SUITE_P(PixelsAndBearings, Pieces, testing::Values(2, 3));

TEST_P(Pieces, HoldEveryPointOnceInOrder) {
  for (const std::size_t num_points : {1U, 7U, 8U, 9U, 79U, 80U, 81U, 120U, 121U, 240U, 1000U, 1003U}) {
    for (const std::size_t stacks : {0U, 1U, 3U}) {
      SCOPED_TRACE(testing::Message() << num_points << " points, " << stacks << " stacks of weights");
      const Data data(num_points, m, stacks);
      std::vector<double> points;
      std::vector<double> observations;
      std::vector<std::vector<double>> weights(stacks);
      for (std::size_t i = 0; i < data.measurements.num_pieces(); ++i) {
        const Piece piece = data.measurements.piece(i);
        EXPECT_LE(piece.num_groups() * 8 * m, kelvane::Block::max_rows);
        points.insert(points.end(), piece.points, piece.points + 3 * piece.num_points);
        observations.insert(observations.end(), piece.observations, piece.observations + m * piece.num_points);
        for (std::size_t k = 0; k < 3; ++k) {
          ASSERT_EQ(piece.weights[k] != nullptr, k < stacks);
          if (k >= stacks) continue;
          weights[k].insert(weights[k].end(), piece.weights[k], piece.weights[k] + m * piece.num_points);
        }
      }
      EXPECT_EQ(points, data.points);
      EXPECT_EQ(observations, data.observations);
      std::vector<double> all_weights;
      for (const auto& of_stack : weights) all_weights.insert(all_weights.end(), of_stack.begin(), of_stack.end());
      EXPECT_EQ(all_weights, stacks == 0 ? std::vector<double>() : data.weights);
    }
  }
}

TEST_P(Pieces, AreReadInPlaceWhereGroupsAreWhole) {
  const Data whole(160, m, 1);
  for (std::size_t i = 0; i < whole.measurements.num_pieces(); ++i) {
    const Piece piece = whole.measurements.piece(i);
    EXPECT_GE(piece.points, whole.points.data());
    EXPECT_LE(piece.points + 3 * piece.num_points, whole.points.data() + whole.points.size());
    EXPECT_GE(piece.weights[0], whole.weights.data());
  }
}

TEST_P(Pieces, AreFilledUpWithTheLastPointAndZeros) {
  for (std::size_t num_points = 1; num_points < 250; ++num_points) {
    if (num_points % 8 == 0) continue;
    const Data data(num_points, m, 3);
    const Piece piece = data.measurements.piece(data.measurements.num_pieces() - 1);
    for (std::size_t i = piece.num_points; i < piece.num_groups() * 8; ++i) {
      for (std::size_t c = 0; c < 3; ++c) {
        ASSERT_EQ(piece.points[3 * i + c], data.points[3 * (num_points - 1) + c]) << num_points << " points";
      }
      for (std::size_t c = 0; c < m; ++c) {
        ASSERT_EQ(piece.observations[m * i + c], 0.0) << num_points << " points";
        for (const double* weights : piece.weights) ASSERT_EQ(weights[m * i + c], 0.0) << num_points << " points";
      }
    }
  }
}

TEST_P(Pieces, AreNoneWithoutPoints) { EXPECT_EQ(Data(0, m, 1).measurements.num_pieces(), 0U); }

}  // namespace
