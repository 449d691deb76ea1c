// SPDX-License-Identifier: BSD-3-Clause
// Models from bytes in memory, and the sentences about broken ones.
#pragma once

#include <memory>
#include <string>

#include "model_files/colmap_model.h"
#include "support/colmap_forms.h"

namespace support {

/// The file of a name without its ending; null where there is none.
inline std::unique_ptr<kelvane::Model_file> model_file(const Files& files, const std::string& stem) {
  using Kind = kelvane::Model_file::Kind;
  for (const auto& [name, bytes] : files) {
    if (name.substr(0, name.find('.')) != stem) continue;
    const Kind kind = name.substr(name.find('.')) == ".bin" ? Kind::binary : Kind::text;
    return std::make_unique<kelvane::Model_file>(name, kind, bytes.data(), bytes.size());
  }
  return nullptr;
}

inline kelvane::Colmap_model model_of(const Files& files, const kelvane::Chosen_images& chosen = {}) {
  kelvane::Colmap_files opened;
  opened.cameras = model_file(files, "cameras");
  opened.rigs = model_file(files, "rigs");
  opened.frames = model_file(files, "frames");
  opened.images = model_file(files, "images");
  opened.points = model_file(files, "points3D");
  return read_colmap(opened, chosen);
}

/// Of the error, '' without one.
inline std::string message_of_model(const Files& files, const kelvane::Chosen_images& chosen = {}) {
  try {
    model_of(files, chosen);
  } catch (const kelvane::File_error& error) {
    return error.what();
  }
  return {};
}

/// With another text in place of a piece of a file, which must be there.
inline Files with(Files files, const std::string& name, const std::string& piece, const std::string& other) {
  std::string& text = files.at(name);
  text.replace(text.find(piece), piece.size(), other);
  return files;
}

}  // namespace support
