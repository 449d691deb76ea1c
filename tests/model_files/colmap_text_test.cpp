// SPDX-License-Identifier: BSD-3-Clause
// Models as text: what is read, and what is told of broken ones.
#include <cmath>

#include "model_files/camera_models.h"
#include "support/read_model.h"

namespace {

using kelvane::Colmap_image;
using kelvane::Colmap_model;
using support::Files;
using support::message_of_model;
using support::model_of;
using support::small_model;
using support::with;

void expect_small_model(const Colmap_model& model) {
  ASSERT_EQ(model.cameras.size(), 2U);
  EXPECT_EQ(model.cameras[1].model, "RADIAL");
  EXPECT_EQ(model.cameras[1].parameters, (std::vector<double>{50, 32, 24, 0.1, 0.02}));
  EXPECT_EQ(model.cameras[1].width, 64U);
  ASSERT_EQ(model.images.size(), 2U);
  const Colmap_image& image = model.images[0];
  EXPECT_EQ(image.id, 3U);
  EXPECT_EQ(image.name, "a b.jpg");
  EXPECT_EQ(image.camera, 0U);
  EXPECT_EQ(std::vector<double>(image.pose.q, image.pose.q + 4), (std::vector<double>{0.6, 0, 0.8, 0}));
  EXPECT_EQ(std::vector<double>(image.pose.t, image.pose.t + 3), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(image.pixels, (std::vector<double>{1.5, 2.25, 9, 9, 3.125, 4}));
  EXPECT_EQ(image.points, (std::vector<std::uint64_t>{1, Colmap_image::no_point, 0}));
  EXPECT_EQ(model.images[1].camera, 1U);
  EXPECT_TRUE(model.images[1].pixels.empty());
  EXPECT_EQ(model.point_ids, (std::vector<std::uint64_t>{6, 8, 9}));
  EXPECT_EQ(model.positions, (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_TRUE(model.warnings.empty());
}

TEST(ColmapText, HoldsWhatIsInTheFiles) { expect_small_model(model_of(small_model())); }

TEST(ColmapText, MayHaveAnyLineEndsBlanksAndComments) {
  for (const char* name : {"cameras.txt", "images.txt", "points3D.txt"}) {
    Files files = small_model();
    std::string windows = "\xEF\xBB\xBF";
    for (const char c : files[name]) windows += c == '\n' ? std::string("\r\n") : std::string(1, c == ' ' ? '\t' : c);
    if (files[name].find("a b.jpg") != std::string::npos) windows.replace(windows.find("a\tb"), 3, "a b");
    files[name] = windows;
    expect_small_model(model_of(files));
    files = small_model();
    files[name] = " \t\n# more\n" + files[name] + "\n  # the end";
    expect_small_model(model_of(files));
  }
  Files files = small_model();
  files["cameras.txt"].pop_back();  // no final line end
  files["points3D.txt"].pop_back();
  expect_small_model(model_of(files));
}

// Images whose last line of pixels has no line end, and names with blanks around them.
TEST(ColmapText, NeedsNoFinalLineEnd) {
  Files files = small_model();
  files["images.txt"] = "  3 0.6 0 0.8 0 1 2 3 1   a b.jpg  \n 1.5 2.25 8 9 9 -1 3.125 4 6";
  EXPECT_EQ(model_of(files).images.at(0).name, "a b.jpg");
  EXPECT_EQ(model_of(files).images[0].points.size(), 3U);
}

struct Broken {
  const char *file, *piece, *other, *message;
};

TEST(ColmapText, TellsWhereItIsBroken) {
  const Broken list[] = {
      {"cameras.txt", "500 320", "500- 320", "cameras.txt, line 2, column 26: '500-' is not a number."},
      {"cameras.txt", "500 320", "640.480.5 320", "cameras.txt, line 2, column 26: '640.480.5' is not a number."},
      {"cameras.txt", "500 320", "--500 320", "cameras.txt, line 2, column 26: '--500' is not a number."},
      {"cameras.txt", "500 320", "-10+5 320", "cameras.txt, line 2, column 26: '-10+5' is not a number."},
      {"cameras.txt", "0.02", "0.02N", "cameras.txt, line 3, column 29: '0.02N' is not a number."},
      {"cameras.txt", "0.02", "1e", "cameras.txt, line 3, column 29: '1e' is not a number."},
      {"cameras.txt", "0.02", "1e+", "cameras.txt, line 3, column 29: '1e+' is not a number."},
      {"cameras.txt", "0.02", "0.02 end", "cameras.txt, line 3, column 34: 'end' is not a number."},
      {"cameras.txt", "0.02", "NaN", "cameras.txt, line 3, column 29: 'NaN' is not a finite number."},
      {"cameras.txt", "0.02", "-inf", "cameras.txt, line 3, column 29: '-inf' is not a finite number."},
      {"cameras.txt", "0.02", "1e400", "cameras.txt, line 3, column 29: '1e400' is not a finite number."},
      {"cameras.txt", "500 320", "1e-310 320",
       "cameras.txt, line 2, column 26: '1e-310' is below 2.2e-308: too small for a measurement."},
      {"cameras.txt", "500 320", "0x1F4 320", "cameras.txt, line 2, column 26: '0x1F4' is not a number."},
      {"cameras.txt", "500 320", "0 320", "cameras.txt, line 2, column 26: the focal length is 0; it must be above 0."},
      {"cameras.txt", "500 320", "\x1B[31m 320", "cameras.txt, line 2, column 26: '?[31m' is not a number."},
      {"cameras.txt", "640 480", "640.5 480",
       "cameras.txt, line 2, column 18: '640.5' is not a whole number from 0 to 18446744073709551615."},
      {"cameras.txt", "1 SIMPLE", "4294967296 SIMPLE",
       "cameras.txt, line 2, column 1: '4294967296' is not a whole number from 0 to 4294967295."},
      {"cameras.txt", "1 SIMPLE", "-1 SIMPLE",
       "cameras.txt, line 2, column 1: '-1' is not a whole number from 0 to 4294967295."},
      {"cameras.txt", "5 RADIAL", "1 RADIAL", "cameras.txt, line 3, column 1: there are two cameras 1."},
      {"cameras.txt", " RADIAL 64 48 50 32 24 0.1 0.02", "", "cameras.txt, line 3, column 2: camera 5 has no model."},
      {"cameras.txt", " 0.02", " 0.02 0.03",
       "cameras.txt, line 3, column 38: a camera of model RADIAL has width, height and 5 parameters; here are 8 "
       "numbers."},
      {"cameras.txt", "RADIAL", "NEW_MODEL 3 x", "cameras.txt, line 3, column 15: 'x' is not a number."},
      {"images.txt", "3 1 a b.jpg", "3 1", "images.txt, line 2, column 22: image 3 has no name."},
      {"images.txt", "3 1 a b.jpg", "3", "images.txt, line 2, column 20: it ends after 8 of 9 numbers."},
      {"images.txt", "3 1 a b.jpg", "3 2 a b.jpg",
       "images.txt, line 2, column 21: image 3 has the camera 2, which is not in cameras.txt."},
      {"images.txt", "c.jpg\n\n", "c.jpg",
       "images.txt, line 4, column 1: the line with the pixels of this image is missing."},
      {"images.txt", "c.jpg\n\n", "c.jpg\n",
       "images.txt, line 4, column 1: the line with the pixels of this image is missing."},
      {"images.txt", "9 9 -1", "9 9", "images.txt, line 3, column 16: '3.125' is not a whole number from 0"},
      {"images.txt", " 4 6\n", " 4\n",
       "images.txt, line 3, column 26: the pixels of image 3 come as X, Y and POINT3D_ID; here are 8 numbers."},
      {"images.txt", "9 9 -1", "9 9 -2", "images.txt, line 3, column 16: '-2' is not a whole number from 0"},
      {"images.txt", "9 9 -1", "9 nan -1", "images.txt, line 3, column 14: 'nan' is not a finite number."},
      {"images.txt", "9 9 -1", "9 9 7",
       "images.txt, line 3, column 16: image 3 has the point 7, which is not in points3D.txt."},
      {"images.txt", "\n4 1", "\n3 1", "images.txt, line 4, column 1: there are two images 3."},
      {"images.txt", "0.6 0 0.8 0", "0 0 0 0",
       "images.txt, line 2, column 3: the quaternion of image 3 has the length 0."},
      {"images.txt", "0.6 0 0.8 0", "0.6 0 1e300 0",
       "images.txt, line 2, column 3: the quaternion of image 3 has no finite length."},
      {"points3D.txt", "8 4 5 6", "6 4 5 6", "points3D.txt, line 2, column 1: there are two points 6."},
      {"points3D.txt", "8 4 5 6", "9007199254740993 4 5 6",
       "points3D.txt, line 2, column 1: the id of a point is above 2^53."},
      {"points3D.txt", "9 9 9", "9 9 256",
       "points3D.txt, line 2, column 13: '256' is not a whole number from 0 to 255."},
      {"points3D.txt", "0.25 3 0", "0.25 3",
       "points3D.txt, line 2, column 21: a point has its id, X, Y, Z, R, G, B, an error and pairs of IMAGE_ID and "
       "POINT2D_IDX; here are 9 numbers."},
      {"points3D.txt", "0.25 3 0", "0.25 2 0",
       "points3D.txt, line 2, column 20: point 8 is seen by the image 2, which is not in images."},
      {"points3D.txt", "0.25 3 0", "0.25 3 3",
       "points3D.txt, line 2, column 20: point 8 is seen by the pixel 3 of image 3, which has 3."},
  };
  for (const Broken& broken : list) {
    const std::string message = message_of_model(with(small_model(), broken.file, broken.piece, broken.other));
    EXPECT_EQ(message.substr(0, std::string(broken.message).size()), broken.message) << broken.other << '\n' << message;
  }
  EXPECT_EQ(message_of_model(small_model()), "");
}

TEST(ColmapText, RefusesAZeroByte) {
  const std::string zero(1, '\0');
  EXPECT_EQ(message_of_model(with(small_model(), "images.txt", "a b.jpg", "a" + zero + "b.jpg")),
            "images.txt, line 2, column 23: there is a zero byte in this name.");
  EXPECT_EQ(message_of_model(with(small_model(), "cameras.txt", "500 320", "500" + zero + " 320")),
            "cameras.txt, line 2, column 26: '500?' is not a number.");
}

TEST(ColmapText, WarnsOfACommentThatCountsOtherwise) {
  const Colmap_model model = model_of(with(small_model(), "images.txt", "images: 2", "images: 12"));
  ASSERT_EQ(model.warnings.size(), 1U);
  EXPECT_EQ(model.warnings[0], "images.txt, line 1, column 21: the comment counts 12; there are 2.");
}

// Its parameters cannot be counted, but they are numbers.
TEST(ColmapText, KeepsACameraOfAnUnknownModel) {
  const Colmap_model model = model_of(with(small_model(), "cameras.txt", "RADIAL", "NEW_MODEL"));
  EXPECT_EQ(model.cameras[1].kind, kelvane::unknown_camera_kind);
  EXPECT_EQ(model.cameras[1].model, "NEW_MODEL");
  EXPECT_EQ(message_of_model(with(small_model(), "cameras.txt", "RADIAL 64 48 50", "NEW_MODEL 64 48 5O")),
            "cameras.txt, line 3, column 19: '5O' is not a number.");
}

TEST(ColmapText, KnowsEveryCameraModel) {
  for (const kelvane::Camera_kind& kind : kelvane::camera_kinds) {
    std::string line = std::string("5 ") + kind.name + " 64 48";
    for (int i = 0; i < kind.num_parameters; ++i) line += " " + std::to_string(i + 1);
    Files files = small_model();
    files["cameras.txt"] = "1 SIMPLE_PINHOLE 640 480 500 320 240\n" + line + "\n";
    EXPECT_EQ(model_of(files).cameras[1].kind, &kind - kelvane::camera_kinds);
    files["cameras.txt"] = "1 SIMPLE_PINHOLE 640 480 500 320 240\n" + line + " 1\n";
    EXPECT_NE(message_of_model(files).find(kind.name), std::string::npos);
  }
}

TEST(ColmapText, KeepsThePixelsOfChosenImages) {
  for (const auto& chosen : {kelvane::Chosen_images{{"c.jpg"}, {}}, kelvane::Chosen_images{{}, {4}}}) {
    const Colmap_model model = model_of(small_model(), chosen);
    EXPECT_FALSE(model.images[0].is_chosen);
    EXPECT_TRUE(model.images[0].pixels.empty());
    EXPECT_EQ(model.images[0].num_pixels, 3U);
    EXPECT_TRUE(model.images[1].is_chosen);
  }
  EXPECT_EQ(message_of_model(small_model(), {{"none\n.jpg"}, {}}), "images.txt has no image 'none?.jpg'.");
  EXPECT_EQ(message_of_model(small_model(), {{}, {7}}), "images.txt has no image 7.");
}

}  // namespace
