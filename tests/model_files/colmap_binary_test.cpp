// SPDX-License-Identifier: BSD-3-Clause
// Binary models: the same as their texts, and what is told of broken ones.
#include <cstring>
#include <limits>

#include "support/read_model.h"

namespace {

using kelvane::Colmap_model;
using support::binary_of;
using support::Bytes;
using support::Files;
using support::message_of_model;
using support::model_of;
using support::small_model;
using support::small_model_with_frames;

void expect_same(const Colmap_model& a, const Colmap_model& b) {
  ASSERT_EQ(a.cameras.size(), b.cameras.size());
  for (std::size_t i = 0; i < a.cameras.size(); ++i) {
    EXPECT_EQ(a.cameras[i].id, b.cameras[i].id);
    EXPECT_EQ(a.cameras[i].model, b.cameras[i].model);
    EXPECT_EQ(a.cameras[i].height, b.cameras[i].height);
    EXPECT_EQ(a.cameras[i].parameters, b.cameras[i].parameters);
  }
  ASSERT_EQ(a.images.size(), b.images.size());
  for (std::size_t i = 0; i < a.images.size(); ++i) {
    EXPECT_EQ(a.images[i].name, b.images[i].name);
    EXPECT_EQ(a.images[i].pixels, b.images[i].pixels);
    EXPECT_EQ(a.images[i].points, b.images[i].points);
    for (int k = 0; k < 4; ++k) EXPECT_EQ(a.images[i].pose.q[k], b.images[i].pose.q[k]);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(a.images[i].pose.t[k], b.images[i].pose.t[k]);
  }
  EXPECT_EQ(a.point_ids, b.point_ids);
  EXPECT_EQ(a.positions, b.positions);
  EXPECT_EQ(a.frames.size(), b.frames.size());
}

TEST(ColmapBinary, IsTheSameAsItsText) {
  expect_same(model_of(small_model()), model_of(binary_of(small_model())));
  expect_same(model_of(small_model_with_frames()), model_of(binary_of(small_model_with_frames())));
}

/// Every beginning of every file is refused, and so is a byte behind its end.
TEST(ColmapBinary, RefusesEveryOtherLength) {
  const Files good = binary_of(small_model_with_frames());
  for (const auto& [name, bytes] : good) {
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      Files files = good;
      files[name] = bytes.substr(0, size);
      const std::string message = message_of_model(files);
      EXPECT_EQ(message.substr(0, name.size() + 7), name + ", byte ") << size;
      EXPECT_EQ(message.find("follow"), std::string::npos) << size << ": read beyond the end";
    }
    Files files = good;
    files[name] += 'x';
    const std::size_t count = static_cast<unsigned char>(bytes[0]);
    EXPECT_EQ(message_of_model(files), name + ", byte " + std::to_string(bytes.size()) +
                                           ": 1 bytes follow the last of " + std::to_string(count) + " records.");
  }
}

template <typename T>
Files with_value(const std::string& name, std::size_t offset, T value) {
  Files files = binary_of(small_model_with_frames());
  std::memcpy(&files.at(name)[offset], &value, sizeof value);
  return files;
}

/// Of records and of lists in them: told before any room is made for so many.
TEST(ColmapBinary, RefusesCountsBeyondTheFile) {
  constexpr std::uint64_t many = 1ULL << 60U;
  for (const char* name : {"cameras.bin", "images.bin", "points3D.bin", "rigs.bin", "frames.bin"}) {
    for (const std::uint64_t count : {many, static_cast<std::uint64_t>(-1), std::uint64_t{1000}}) {
      EXPECT_EQ(message_of_model(with_value(name, 0, count)), std::string(name) + ", byte 0: " + std::to_string(count) +
                                                                  " are announced, for which the file is too short.");
    }
  }
  const std::size_t pixels = 8 + 4 + 56 + 4 + 8;  // behind the first image's name
  EXPECT_EQ(message_of_model(with_value("images.bin", pixels, many)),
            "images.bin, byte 80: 1152921504606846976 are announced, for which the file is too short.");
  EXPECT_EQ(message_of_model(with_value("points3D.bin", 8 + 43, many)),
            "points3D.bin, byte 51: 1152921504606846976 are announced, for which the file is too short.");
  EXPECT_EQ(message_of_model(with_value<std::uint32_t>("frames.bin", 8 + 64, 4000000000U)),
            "frames.bin, byte 72: 4000000000 are announced, for which the file is too short.");
  EXPECT_EQ(message_of_model(with_value<std::uint32_t>("rigs.bin", 12, 4000000000U)),
            "rigs.bin, byte 12: 4000000000 are announced, for which the file is too short.");
}

TEST(ColmapBinary, RefusesNumbersThatAreNoMeasurements) {
  const std::size_t focal = 8 + 4 + 4 + 16;
  const auto message = [&](double value) { return message_of_model(with_value("cameras.bin", focal, value)); };
  EXPECT_EQ(message(1e-310), "cameras.bin, byte 32: this number is below 2.2e-308: too small for a measurement.");
  EXPECT_EQ(message(std::numeric_limits<double>::quiet_NaN()), "cameras.bin, byte 32: this number is not finite.");
  EXPECT_EQ(message(-std::numeric_limits<double>::infinity()), "cameras.bin, byte 32: this number is not finite.");
  EXPECT_EQ(message(-3), "cameras.bin, byte 32: the focal length is -3; it must be above 0.");
  EXPECT_EQ(message(3), "");
  EXPECT_EQ(message_of_model(with_value("points3D.bin", 8 + 35, std::numeric_limits<double>::infinity())),
            "points3D.bin, byte 43: this number is not finite.");
}

TEST(ColmapBinary, RefusesIdsThatAreNotThere) {
  EXPECT_EQ(message_of_model(with_value<std::int32_t>("cameras.bin", 12, 18)),
            "cameras.bin, byte 12: camera 1 has the model number 18; the known ones end at 17.");
  EXPECT_EQ(message_of_model(with_value<std::int32_t>("cameras.bin", 12, -1)),
            "cameras.bin, byte 12: camera 1 has the model number -1; the known ones end at 17.");
  EXPECT_EQ(message_of_model(with_value<std::uint32_t>("cameras.bin", 8, 5)),
            "cameras.bin, byte 56: there are two cameras 5.");
  EXPECT_EQ(message_of_model(with_value<std::uint32_t>("images.bin", 68, 7)),
            "images.bin, byte 68: image 3 has the camera 7, which is not in cameras.bin.");
  EXPECT_EQ(message_of_model(with_value<std::uint64_t>("images.bin", 88 + 24 + 16, 77)),
            "images.bin, byte 128: image 3 has the point 77, which is not in points3D.bin.");
  EXPECT_EQ(message_of_model(with_value<std::uint64_t>("points3D.bin", 8 + 51 + 8, 6)),
            "points3D.bin, byte 67: there are two points 6.");
  EXPECT_EQ(message_of_model(with_value<std::uint32_t>("points3D.bin", 8 + 51, 9)),
            "points3D.bin, byte 59: point 6 is seen by the image 9, which is not in images.");
  EXPECT_EQ(message_of_model(with_value<std::int32_t>("rigs.bin", 16, 2)),
            "rigs.bin, byte 16: '2' is no kind of sensor; there are CAMERA and IMU.");
}

TEST(ColmapBinary, RefusesANameWithoutAnEnd) {
  Files files = binary_of(small_model());
  std::string& bytes = files["images.bin"];
  bytes.resize(8 + 73 + 100);
  for (std::size_t i = 72; i < bytes.size(); ++i) bytes[i] = 'x';
  bytes[0] = 1;
  EXPECT_EQ(message_of_model(files), "images.bin, byte 72: the name that begins here has no end.");
  bytes[72] = '\0';
  EXPECT_EQ(message_of_model(files), "images.bin, byte 72: image 3 has no name.");
}

}  // namespace
