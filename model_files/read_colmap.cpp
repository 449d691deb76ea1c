// SPDX-License-Identifier: BSD-3-Clause
// File by file, then what one of them says of another.
#include <algorithm>
#include <set>

#include "model_files/colmap_model.h"
#include "model_files/colmap_records.h"
#include "model_files/link_colmap.h"
#include "model_files/paths.h"

namespace kelvane {
namespace {

using Kind = Model_file::Kind;

/// read(source) with the source of a file's kind.
template <typename Read>
void with_source(const Model_file& file, Colmap_model& model, const Read& read) {
  if (file.kind() == Kind::binary) {
    Binary_source source(file);
    read(source);
    return;
  }
  Text_source source(file);
  read(source);
  const std::string warning = source.wrong_count();
  if (!warning.empty()) model.warnings.push_back(warning);
}

/// Which images are asked for, and which of them were met.
class Choice {
 public:
  explicit Choice(const Chosen_images& chosen)
      : names_(chosen.names.begin(), chosen.names.end()), ids_(chosen.ids.begin(), chosen.ids.end()) {
    is_all_ = names_.empty() && ids_.empty();
    open_names_ = names_;
    open_ids_ = ids_;
  }

  bool operator()(const Colmap_image& image) {
    if (is_all_) return true;
    const bool is_chosen = names_.count(image.name) > 0 || ids_.count(image.id) > 0;
    open_names_.erase(image.name);
    open_ids_.erase(image.id);
    return is_chosen;
  }

  void check(const std::string& file) const {
    std::string missing;
    if (!open_names_.empty()) missing = "'" + shown(*open_names_.begin()) + "'";
    if (!open_ids_.empty()) missing = std::to_string(*open_ids_.begin());
    if (!missing.empty()) throw File_error(shown_path(file) + " has no image " + missing + ".");
  }

 private:
  std::set<std::string> names_, open_names_;
  std::set<std::uint32_t> ids_, open_ids_;
  bool is_all_ = true;
};

}  // namespace

std::string colmap_form(const std::string& folder) {
  const auto has = [&](const char* name) { return is_there(path_in(folder, name)); };
  if (has("cameras.bin") && has("images.bin") && has("points3D.bin")) return "bin";
  return has("cameras.bin") && !has("cameras.txt") ? "bin" : "txt";
}

Colmap_files open_colmap(const std::string& folder, const std::string& form, bool with_points) {
  const Kind kind = form == "bin" ? Kind::binary : Kind::text;
  const auto path = [&](const char* name) { return path_in(folder, std::string(name) + "." + form); };
  const auto open = [&](const char* name) { return std::make_unique<Model_file>(path(name), kind); };
  const auto open_if_there = [&](const char* name) { return is_there(path(name)) ? open(name) : nullptr; };
  Colmap_files files;
  files.cameras = open("cameras");
  files.rigs = open_if_there("rigs");
  files.frames = open_if_there("frames");
  files.images = open("images");
  if (with_points) files.points = open("points3D");
  return files;
}

Colmap_model read_colmap(const Colmap_files& files, const Chosen_images& chosen) {
  Colmap_model model;
  with_source(*files.cameras, model, [&](auto& source) { colmap::read_cameras(source, model); });
  if (files.rigs) with_source(*files.rigs, model, [&](auto& source) { colmap::read_rigs(source, model); });
  if (files.frames) with_source(*files.frames, model, [&](auto& source) { colmap::read_frames(source, model); });
  Choice choice(chosen);
  with_source(*files.images, model, [&](auto& source) { colmap::read_images(source, choice, model); });
  const Id_index images = colmap::link_images(files, model);
  if (files.points) {
    with_source(*files.points, model, [&](auto& source) { colmap::read_points(source, images, model); });
    colmap::link_points(files, model);
  }
  colmap::link_frames(files, images, model);
  choice.check(files.images->path());
  return model;
}

}  // namespace kelvane
