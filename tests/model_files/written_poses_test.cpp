// SPDX-License-Identifier: BSD-3-Clause
// Poses written back: they, and nothing else, are new.
#include "model_files/write_poses.h"

#include "model_files/paths.h"
#include "support/model_folder.h"
#include "support/read_model.h"

namespace {

using kelvane::Colmap_pose;
using kelvane::File_error;
using kelvane::Named_pose;
using kelvane::write_colmap;
using support::binary_of;
using support::Files;
using support::Model_folder;
using support::small_model;
using support::small_model_with_frames;
using support::with;

const Colmap_pose new_pose = {{0.1, -0.2, 0.3, 1e-9}, {1.5, -2e20, 3}};
const char* const new_text =
    "0.10000000000000001 -0.20000000000000001 0.29999999999999999 1.0000000000000001e-09 1.5 -2e+20 3";

std::string message_of_writing(const Files& files, const std::vector<Named_pose>& poses, const Files& others = {}) {
  const Model_folder model(files);
  const Model_folder folder(others);
  try {
    write_colmap(folder.path(), model.path(), poses);
  } catch (const File_error& error) {
    EXPECT_EQ(folder.files(), others);
    const std::string text = error.what();
    return text.substr(0, folder.path().size()) == folder.path() ? text.substr(folder.path().size()) : text;
  }
  return {};
}

TEST(WriteColmap, ReplacesTheNumbersOfAPoseInAText) {
  Files files = small_model();
  files["images.txt"] = with(files, "images.txt", "0.6 0 0.8 0 1 2 3", "0.6\t0  0.8 0 1 2 3").at("images.txt");
  const Model_folder model(files);
  const Model_folder folder;
  write_colmap(folder.path(), model.path(), {{"a b.jpg", new_pose}});
  Files expected = files;
  std::string text = new_text;
  text[text.find(' ')] = '\t';
  text.insert(text.find(" 0.29"), " ");
  expected["images.txt"] = with(files, "images.txt", "0.6\t0  0.8 0 1 2 3", text).at("images.txt");
  EXPECT_EQ(folder.files(), expected);
}

TEST(WriteColmap, CopiesAModelWithoutResults) {
  for (const Files& files :
       {small_model(), binary_of(small_model()), small_model_with_frames(), binary_of(small_model_with_frames())}) {
    const Model_folder model(files);
    const Model_folder folder;
    write_colmap(folder.path() + "/", model.path(), {});
    EXPECT_EQ(folder.files(), files);
    write_colmap(model.path() + "/.", model.path(), {});
    EXPECT_EQ(model.files(), files);
  }
}

/// The binary file with new poses is that of the text with them, in all bytes.
void check_both_forms(const Files& texts) {
  const Model_folder text(texts);
  const Model_folder binary(binary_of(texts));
  const kelvane::Colmap_model model = support::model_of(texts);
  const std::vector<Named_pose> poses = {{model.images.at(1).name, new_pose},
                                         {model.images.at(0).name, {{1, 2, 3, 4}, {5, 6, 7}}}};
  write_colmap(text.path(), text.path(), poses);
  write_colmap(binary.path(), binary.path(), poses);
  EXPECT_TRUE(binary_of(text.files()) == binary.files());
  EXPECT_FALSE(text.files() == texts);
  const kelvane::Colmap_model read = support::model_of(text.files());
  for (int i = 0; i < 4; ++i) EXPECT_EQ(read.images[1].pose.q[i], new_pose.q[i]);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(read.images[1].pose.t[i], new_pose.t[i]);
}

TEST(WriteColmap, DoesTheSameInBothForms) {
  check_both_forms(small_model());
  check_both_forms(small_model_with_frames());
}

TEST(WriteColmap, DoesTheSameInBothFormsOfARealModel) {
  const std::string sets = std::string(KELVANE_PROJECT_FOLDER) + "/../shared/data/";
  int num_sets = 0;
  for (const char* set : {"castle", "crane"}) {
    const std::string folder = sets + set + "/model_simple_pinhole/";
    if (!kelvane::is_there(folder + "images.txt")) continue;
    ++num_sets;
    Files texts;
    for (const char* name : {"cameras.txt", "images.txt", "points3D.txt"})
      texts[name] = support::bytes_of(folder + name);
    check_both_forms(texts);
  }
  if (num_sets == 0) GTEST_SKIP() << "the whole sets are not here";
}

TEST(WriteColmap, PutsAPoseIntoFrameAndImage) {
  const Model_folder model(small_model_with_frames());
  write_colmap(model.path(), model.path(), {{"a b.jpg", new_pose}});
  const Files expected = with(with(small_model_with_frames(), "images.txt", "0.6 0 0.8 0 1 2 3", new_text),
                              "frames.txt", "0.8 0.6 0 0 4 5 6", new_text);
  EXPECT_EQ(model.files(), expected);
}

TEST(WriteColmap, RefusesImagesOfARigWithSeveralCameras) {
  Files files = small_model_with_frames();
  files["rigs.txt"] = "1 2 CAMERA 1 CAMERA 5 1 0.5 0.1 -0.7 0.4 0.3 0.2 -0.1\n";
  files["frames.txt"] = "11 1 0.8 0.3 -0.2 0.1 4 5 6 2 CAMERA 1 3 CAMERA 5 4\n";
  EXPECT_EQ(message_of_writing(files, {{"c.jpg", new_pose}}),
            "Image 'c.jpg' is in frame 11 of rig 1, which moves as one (cameras 1, 5; the frame has recorded 2): one "
            "image's pose cannot be written.");
  files["frames.txt"] = "11 1 0.8 0.3 -0.2 0.1 4 5 6 1 CAMERA 1 3\n12 1 0.8 0.3 -0.2 0.1 4 5 6 1 CAMERA 5 4\n";
  EXPECT_NE(message_of_writing(files, {{"a b.jpg", new_pose}}), "");
  files["rigs.txt"] = "1 2 IMU 1 CAMERA 1 1 0.5 0.1 -0.7 0.4 0.3 0.2 -0.1\n2 1 CAMERA 5\n";
  files["frames.txt"] = "11 1 0.8 0.3 -0.2 0.1 4 5 6 1 CAMERA 1 3\n12 2 0.8 0.3 -0.2 0.1 4 5 6 1 CAMERA 5 4\n";
  EXPECT_NE(message_of_writing(files, {{"a b.jpg", new_pose}}), "");
  EXPECT_EQ(message_of_writing(files, {{"c.jpg", new_pose}}), "");
}

TEST(WriteColmap, RefusesNamesThatLeaveADoubt) {
  EXPECT_EQ(message_of_writing(small_model(), {{"none", new_pose}}), "The model has no image 'none'.");
  EXPECT_EQ(message_of_writing(small_model(), {{"c.jpg", new_pose}, {"c.jpg", new_pose}}),
            "There are two results for image 'c.jpg'.");
  EXPECT_EQ(message_of_writing(with(small_model(), "images.txt", "a b.jpg", "c.jpg"), {{"c.jpg", new_pose}}),
            "The model has two images 'c.jpg'.");
}

TEST(WriteColmap, RefusesAFolderWithFilesOfAnotherModel) {
  EXPECT_EQ(message_of_writing(small_model(), {}, binary_of(small_model())),
            " holds a binary model, which would be read in place of the text.");
  EXPECT_EQ(message_of_writing(small_model(), {}, {{"frames.txt", ""}}),
            " holds rigs or frames of another model, which would be read with this one.");
  EXPECT_EQ(message_of_writing(small_model(), {}, {{"rigs.txt", ""}}),
            " holds rigs or frames of another model, which would be read with this one.");
  EXPECT_EQ(message_of_writing(small_model(), {}, {{"project.ini", "mine"}}), "");
}

TEST(WriteColmap, PrefersTheBinaryModel) {
  Files files = small_model();
  files.merge(binary_of(small_model()));
  const Model_folder model(files);
  write_colmap(model.path(), model.path(), {{"c.jpg", new_pose}});
  EXPECT_EQ(model.files().at("images.txt"), files.at("images.txt"));
  EXPECT_NE(model.files().at("images.bin"), files.at("images.bin"));
}

}  // namespace
