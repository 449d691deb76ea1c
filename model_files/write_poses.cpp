// SPDX-License-Identifier: BSD-3-Clause
// All files whole beside their targets before the first is replaced.
#include "model_files/write_poses.h"

#include <iterator>
#include <map>
#include <utility>

#include "model_files/bal_model.h"
#include "model_files/edited_copy.h"
#include "model_files/paths.h"

namespace kelvane {
namespace {

using std::to_string;

[[noreturn]] void refuse(const std::string& sentence) { throw File_error(sentence); }

/// Which image has a name.
class Names {
 public:
  explicit Names(const Colmap_model& model) {
    for (std::size_t k = 0; k < model.images.size(); ++k) places_.emplace(model.images[k].name, k);
  }

  std::size_t operator[](const std::string& name) const {
    const auto found = places_.equal_range(name);
    if (found.first == found.second) refuse("The model has no image '" + shown(name) + "'.");
    if (std::next(found.first) != found.second) refuse("The model has two images '" + shown(name) + "'.");
    return found.first->second;
  }

 private:
  std::multimap<std::string, std::size_t> places_;
};

/// A frame can take an image's pose where it is that of its only camera.
void check_frame(const Colmap_image& image, const Colmap_frame& frame, const Colmap_rig& rig) {
  std::string cameras;
  std::size_t num_cameras = 0;
  for (const Colmap_sensor& sensor : rig.sensors) {
    if (sensor.kind != Sensor_kind::camera) continue;
    cameras += (num_cameras++ == 0 ? "" : ", ") + to_string(sensor.id);
  }
  const Colmap_sensor& first = rig.sensors.front();  // one of them is the image's camera
  if (num_cameras == 1 && first.kind == Sensor_kind::camera && frame.data.size() == 1) return;
  refuse("Image '" + shown(image.name) + "' is in frame " + to_string(frame.id) + " of rig " + to_string(rig.id) +
         ", which moves as one (cameras " + cameras + "; the frame has recorded " + to_string(frame.data.size()) +
         "): one image's pose cannot be written.");
}

std::vector<double> numbers_of(const Colmap_pose& pose) {
  std::vector<double> numbers(std::begin(pose.q), std::end(pose.q));
  numbers.insert(numbers.end(), std::begin(pose.t), std::end(pose.t));
  return numbers;
}

struct Edits {
  std::vector<Edit> images, frames;
};

Edits edits_of(const Colmap_model& model, const std::vector<Named_pose>& poses) {
  const Names names(model);
  std::vector<bool> is_done(model.images.size(), false);
  Edits edits;
  for (const Named_pose& named : poses) {
    const std::size_t k = names[named.name];
    const Colmap_image& image = model.images[k];
    if (is_done[k]) refuse("There are two results for image '" + shown(named.name) + "'.");
    is_done[k] = true;
    edits.images.push_back({image.pose_offset, numbers_of(named.pose)});
    if (!model.has_frames()) continue;
    const Colmap_frame& frame = model.frames[image.frame];
    check_frame(image, frame, model.rigs[frame.rig]);
    edits.frames.push_back({frame.pose_offset, numbers_of(named.pose)});
  }
  return edits;
}

/// The written model must be what is read from the folder.
void check_folder(const std::string& folder, const std::string& form, const Colmap_files& files) {
  const auto has = [&](const std::string& name) { return is_there(path_in(folder, name)); };
  if (form == "txt" && has("cameras.bin") && has("images.bin") && has("points3D.bin")) {
    refuse(shown_path(folder) + " holds a binary model, which would be read in place of the text.");
  }
  if ((!files.frames && has("frames." + form)) || (!files.rigs && has("rigs." + form))) {
    refuse(shown_path(folder) + " holds rigs or frames of another model, which would be read with this one.");
  }
}

}  // namespace

void write_colmap(const std::string& folder, const std::string& model, const std::vector<Named_pose>& poses) {
  const std::string form = colmap_form(model);
  const Colmap_files files = open_colmap(model, form, false);
  const Edits edits = edits_of(read_colmap(files), poses);
  std::vector<Atomic_file> written;
  const auto add = [&](const Model_file& file, const std::vector<Edit>& changes) {
    const std::string& path = file.path();
    written.emplace_back(path_in(folder, path.substr(path.rfind('/') + 1)));
    write_edited(file, changes, written.back());
    written.back().finish();
  };
  if (real_path(folder) != real_path(model)) {
    check_folder(folder, form, files);
    add(*files.cameras, {});
    add(Model_file(path_in(model, "points3D." + form), files.images->kind()), {});
    if (files.rigs) add(*files.rigs, {});
  }
  add(*files.images, edits.images);
  if (files.frames) add(*files.frames, edits.frames);  // last: with it the poses count
  for (Atomic_file& file : written) file.replace_target();
}

void write_bal(const std::string& target, const std::string& source, const std::vector<Bal_pose>& poses) {
  const Model_file file(source, Model_file::Kind::text);
  const Bal_model model = read_bal(file);
  std::vector<bool> is_done(model.cameras.size(), false);
  std::vector<Edit> edits;
  for (const Bal_pose& pose : poses) {
    if (pose.camera >= model.cameras.size()) {
      refuse(shown_path(source) + " has no camera " + to_string(pose.camera) + ".");
    } else if (is_done[pose.camera]) {
      refuse("There are two results for camera " + to_string(pose.camera) + ".");
    }
    is_done[pose.camera] = true;
    edits.push_back({model.pose_offsets[pose.camera], {std::begin(pose.numbers), std::end(pose.numbers)}});
  }
  Atomic_file copy(target);
  write_edited(file, std::move(edits), copy);
  copy.finish();
  copy.replace_target();
}

}  // namespace kelvane
