// SPDX-License-Identifier: BSD-3-Clause
// Fuzz target: a model as text or binary, with frames or without, is refused with a place in a file, or it is whole.
#include <cmath>
#include <cstring>
#include <string>

#include "fuzz/spoiled_files.h"
#include "fuzz/target.h"
#include "model_files/text_source.h"
#include "support/colmap_forms.h"
#include "support/read_model.h"

namespace {

using kelvane::Colmap_image;
using kelvane::Colmap_model;

/// The number of a word in a file, or of its eight bytes.
double number_at(const kelvane::Model_file& file, std::size_t offset, std::size_t n) {
  if (file.kind() == kelvane::Model_file::Kind::text) {
    return kelvane::read_decimal(file.bytes() + kelvane::offset_of_word(file, offset, n)).value;
  }
  double value = 0.0;
  std::memcpy(&value, file.bytes() + offset + 8 * n, sizeof value);
  return value;
}

/// A writer would find the seven numbers where the model says that they are.
void check_pose(const kelvane::Model_file& file, std::size_t offset, const kelvane::Colmap_pose& pose) {
  for (std::size_t i = 0; i < 7; ++i) {
    const double number = i < 4 ? pose.q[i] : pose.t[i - 4];
    fuzz::require(std::isfinite(number) && number_at(file, offset, i) == number,
                  "a pose is not where it is said to be");
  }
}

void check_image(const Colmap_model& model, const Colmap_image& image) {
  fuzz::require(image.camera < model.cameras.size(), "an image has no camera");
  fuzz::require(!image.name.empty(), "an image has no name");
  fuzz::require(image.pixels.size() == 2 * image.points.size(), "pixels and points differ in number");
  for (const double number : image.pixels) fuzz::require(std::isfinite(number), "a pixel is not finite");
  for (const std::uint64_t point : image.points) {
    fuzz::require(point == Colmap_image::no_point || point < model.point_ids.size(), "a pixel sees no point");
  }
  fuzz::require(!model.has_frames() || image.frame < model.frames.size(), "an image is in no frame");
}

void check_model(const support::Files& files, const Colmap_model& model) {
  fuzz::require(model.positions.size() == 3 * model.point_ids.size(), "a point has no position");
  for (const double number : model.positions) fuzz::require(std::isfinite(number), "a point is not finite");
  for (const auto& camera : model.cameras) {
    for (const double number : camera.parameters) fuzz::require(std::isfinite(number), "a parameter is not finite");
  }
  const auto images = support::model_file(files, "images");
  for (const Colmap_image& image : model.images) {
    check_image(model, image);
    if (!model.has_frames()) check_pose(*images, image.pose_offset, image.pose);
  }
  const auto frames = support::model_file(files, "frames");
  for (const auto& frame : model.frames) check_pose(*frames, frame.pose_offset, frame.pose);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Byte_source bytes(data, size);
  const std::size_t form = bytes.choice(4);
  const support::Files texts = form < 2 ? support::small_model() : support::small_model_with_frames();
  const support::Files files = fuzz::spoiled(bytes, form % 2 == 0 ? texts : support::binary_of(texts));
  try {
    check_model(files, support::model_of(files));
  } catch (const kelvane::File_error& error) {
    const std::string message = error.what();
    fuzz::require(message.find(form % 2 == 0 ? ".txt, line " : ".bin, byte ") != std::string::npos,
                  "an error has no place");
    for (const char c : message)
      fuzz::require(static_cast<unsigned char>(c) >= 0x20, "an error has a control character");
  }
  return 0;
}
