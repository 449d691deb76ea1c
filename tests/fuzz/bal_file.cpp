// SPDX-License-Identifier: BSD-3-Clause
// Fuzz target: a file of Bundle Adjustment in the Large is refused with a place in it, or it is whole.
#include <cmath>
#include <string>

#include "fuzz/spoiled_files.h"
#include "fuzz/target.h"
#include "model_files/bal_model.h"
#include "model_files/text_source.h"

namespace {

using kelvane::Bal_model;
using kelvane::Model_file;

void check_model(const Model_file& file, const Bal_model& model) {
  for (const auto& seen : model.observations) {
    fuzz::require(seen.camera < model.cameras.size() && seen.point < model.points.size(),
                  "an observation is of nothing");
    fuzz::require(std::isfinite(seen.pixel[0]) && std::isfinite(seen.pixel[1]), "a pixel is not finite");
  }
  for (std::size_t k = 0; k < model.cameras.size(); ++k) {
    fuzz::require(model.cameras[k][6] > 0.0, "a focal length is not positive");
    for (std::size_t i = 0; i < 9; ++i) {
      const std::size_t offset = kelvane::offset_of_word(file, model.pose_offsets[k], i);
      fuzz::require(kelvane::read_decimal(file.bytes() + offset).value == model.cameras[k][i], "a camera is elsewhere");
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Byte_source bytes(data, size);
  const fuzz::Files files = fuzz::spoiled(
      bytes, {{"", "2 1 2\n0 0 1.5 2\n1 0 3 4\n1 2 3\n4 5 6\n700 0.1 0.2\n-1\t-2 -3 -4 -5 -6 800 0 0\r\n7 8 9"}});
  const std::string& text = files.at("");
  const Model_file file("FILE", Model_file::Kind::text, text.data(), text.size());
  try {
    check_model(file, read_bal(file));
  } catch (const kelvane::File_error& error) {
    const std::string message = error.what();
    fuzz::require(message.find("FILE, line ") == 0 || message.find("FILE is compressed") == 0, "an error has no place");
    for (const char c : message)
      fuzz::require(static_cast<unsigned char>(c) >= 0x20, "an error has a control character");
  }
  return 0;
}
