// SPDX-License-Identifier: BSD-3-Clause
// Models with rigs and frames, whose poses count in place of those of the images.
#include <cmath>

#include "support/read_model.h"

namespace {

using kelvane::Colmap_model;
using kelvane::Colmap_pose;
using support::Files;
using support::message_of_model;
using support::model_of;
using support::small_model_with_frames;
using support::with;

void expect_pose(const Colmap_pose& pose, const std::vector<double>& expected) {
  for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(pose.q[i], expected[i], 1e-15) << i;
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(pose.t[i], expected[4 + i], 1e-14) << i;
}

TEST(ColmapFrames, GiveTheImagesTheirPoses) {
  const Colmap_model model = model_of(small_model_with_frames());
  EXPECT_TRUE(model.has_frames());
  expect_pose(model.images[0].pose, {0.8, 0.6, 0, 0, 4, 5, 6});
  expect_pose(model.images[1].pose, {0, 1, 0, 0, 7, 8, 9});
  EXPECT_EQ(model.images[1].frame, 1U);
}

/// x -> sensor_from_rig (rig_from_world x), each by the matrix of its quaternion.
std::vector<double> mapped(const Colmap_pose& pose, const std::vector<double>& x) {
  const double length =
      std::sqrt(pose.q[0] * pose.q[0] + pose.q[1] * pose.q[1] + pose.q[2] * pose.q[2] + pose.q[3] * pose.q[3]);
  const double w = pose.q[0] / length, a = pose.q[1] / length, b = pose.q[2] / length, c = pose.q[3] / length;
  const double R[3][3] = {{1 - 2 * (b * b + c * c), 2 * (a * b - w * c), 2 * (a * c + w * b)},
                          {2 * (a * b + w * c), 1 - 2 * (a * a + c * c), 2 * (b * c - w * a)},
                          {2 * (a * c - w * b), 2 * (b * c + w * a), 1 - 2 * (a * a + b * b)}};
  std::vector<double> y(3);
  for (std::size_t i = 0; i < 3; ++i) y[i] = R[i][0] * x[0] + R[i][1] * x[1] + R[i][2] * x[2] + pose.t[i];
  return y;
}

TEST(ColmapFrames, GoOnThroughTheRig) {
  Files files = small_model_with_frames();
  files["rigs.txt"] = "1 2 CAMERA 1 CAMERA 5 1 0.5 0.1 -0.7 0.4 0.3 0.2 -0.1\n";
  files["frames.txt"] = "11 1 0.8 0.3 -0.2 0.1 4 5 6 2 CAMERA 1 3 CAMERA 5 4\n";
  const Colmap_model model = model_of(files);
  const Colmap_pose rig = {{0.8, 0.3, -0.2, 0.1}, {4, 5, 6}};
  const Colmap_pose sensor = {{0.5, 0.1, -0.7, 0.4}, {0.3, 0.2, -0.1}};
  const std::vector<double> x = {0.7, -1.3, 2.1};
  const std::vector<double> expected = mapped(sensor, mapped(rig, x));
  const std::vector<double> found = mapped(model.images[1].pose, x);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(found[i], expected[i], 1e-14);
  expect_pose(model.images[0].pose, {0.8, 0.3, -0.2, 0.1, 4, 5, 6});
}

struct Broken {
  const char *file, *piece, *other, *message;
};

TEST(ColmapFrames, TellWhereTheyAreBroken) {
  const Broken list[] = {
      {"rigs.txt", "2 1 CAMERA 5", "1 1 CAMERA 5", "rigs.txt, line 3, column 1: there are two rigs 1."},
      {"rigs.txt", "2 1 CAMERA 5", "2 1 LIDAR 5",
       "rigs.txt, line 3, column 5: 'LIDAR' is no kind of sensor; there are CAMERA and IMU."},
      {"rigs.txt", "2 1 CAMERA 5", "2 1 CAMERA", "rigs.txt, line 3, column 11: the line of a rig ends after 3 words."},
      {"rigs.txt", "2 1 CAMERA 5", "2 1 CAMERA 5 6",
       "rigs.txt, line 3, column 15: the line of a rig ends after 5 words."},
      {"rigs.txt", "2 1 CAMERA 5", "2 1 CAMERA 4", "frames.txt, line 2, column 22: camera 5 is not in rig 2."},
      {"rigs.txt", "2 1 CAMERA 5", "2 2 CAMERA 1 CAMERA 5 0",
       "frames.txt, line 2, column 22: camera 5 has no pose in rig 2."},
      {"rigs.txt", "2 1 CAMERA 5", "2 2 CAMERA 1 CAMERA 5 2",
       "rigs.txt, line 3, column 23: '2' is not a whole number from 0 to 1."},
      {"rigs.txt", "2 1 CAMERA 5", "2 2 CAMERA 1 CAMERA 5 1 0 0 0 0 1 2 3",
       "rigs.txt, line 3, column 25: the quaternion of sensor 5 has the length 0."},
      {"frames.txt", "12 2 ", "11 2 ", "frames.txt, line 2, column 1: there are two frames 11."},
      {"frames.txt", "12 2 ", "12 3 ", "frames.txt, line 2, column 1: frame 12 has the rig 3, which is not in rigs."},
      {"frames.txt", "CAMERA 5 4", "CAMERA 5 9",
       "frames.txt, line 2, column 22: frame 12 has the image 9, which is not in images."},
      {"frames.txt", "CAMERA 5 4", "CAMERA 5 3",
       "frames.txt, line 2, column 22: frame 12 has the image 3, which another one has too."},
      {"frames.txt", "CAMERA 5 4", "CAMERA 1 4",
       "frames.txt, line 2, column 22: frame 12 has the image 4 of camera 1; its camera is 5."},
      {"frames.txt", "1 CAMERA 5 4", "0", "images.txt, line 4, column 1: image 4 is in no frame."},
      {"frames.txt", "1 CAMERA 5 4", "2 CAMERA 5 4",
       "frames.txt, line 2, column 32: the line of a frame ends after 13 words."},
      {"frames.txt", "0 1 0 0 7", "0 0 0 0 7",
       "frames.txt, line 2, column 6: the quaternion of frame 12 has the length 0."},
      {"frames.txt", "0 1 0 0 7", "0 1 0 0 7x", "frames.txt, line 2, column 14: '7x' is not a number."},
  };
  for (const Broken& broken : list) {
    EXPECT_EQ(message_of_model(with(small_model_with_frames(), broken.file, broken.piece, broken.other)),
              broken.message)
        << broken.other;
  }
  EXPECT_EQ(message_of_model(small_model_with_frames()), "");
}

}  // namespace
