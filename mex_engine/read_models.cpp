// SPDX-License-Identifier: BSD-3-Clause
// views = kelvane_engine('read_colmap', folder, images)
// views = kelvane_engine('read_bal', file)
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>

#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/model_views.h"
#include "mex_engine/sentence.h"
#include "model_files/bal_model.h"
#include "model_files/colmap_model.h"
#include "model_files/paths.h"

namespace kelvane::mex_engine {
namespace {

/// A cell of names, or numbers; [] for all.
Chosen_images read_choice(const mxArray* images) {
  Chosen_images chosen;
  if (images == nullptr) return chosen;
  if (mxIsCell(images)) {
    for (std::size_t i = 0; i < num_elements(images); ++i) {
      const std::string name = text_in(element(images, i), "The name of an image");
      if (name.empty()) refuse("images", "The name of an image is empty.");
      chosen.names.push_back(name);
    }
    return chosen;
  }
  const Host_numbers ids(images, "Images");
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const double id = ids.data()[i];
    if (!(id >= 0.0 && id < 4294967296.0) || id != static_cast<double>(static_cast<std::uint32_t>(id))) {
      refuse("images", "Images must be names or whole numbers; " + text_of(id) + " is no id of an image.");
    }
    chosen.ids.push_back(static_cast<std::uint32_t>(id));
  }
  return chosen;
}

Pose camera_pose(const Colmap_pose& pose) {
  return pose_of(Quaternion_pose{{pose.q[1], pose.q[2], pose.q[3], pose.q[0]}, {pose.t[0], pose.t[1], pose.t[2]}},
                 Pose_frame::camera_from_world);
}

/// Of all that fold inside their pictures one warning, with the first in words.
class Folded_cameras {
 public:
  /// subject() is what the sentence calls the camera.
  template <typename Subject>
  void add(const Lens& lens, const Subject& subject) {
    if (count_++ == 0) sentence_ = fold_sentence(subject(), lens);
  }

  void warn(Model_views& views) {
    if (count_ == 0) return;
    if (count_ > 1) sentence_ += " " + text(count_) + " of " + text(views.cameras.size()) + " cameras do.";
    views.warnings.insert(views.warnings.end(), {"fold", sentence_});
  }

 private:
  std::size_t count_ = 0;
  std::string sentence_;
};

/// COLMAP's model of a camera; null where it is none that is known here.
const Lens_model* lens_model_of(const Colmap_camera& camera) {
  for (const Lens_model& model : lens_models()) {
    if (model.is_of_colmap && camera.model == model.name) return &model;
  }
  return nullptr;
}

std::string sentence_of_stopped(const Model_file& file, const Colmap_camera& camera) {
  std::string names;
  for (const Lens_model& model : lens_models()) {
    if (model.is_of_colmap) names += (names.empty() ? "" : ", ") + std::string(model.name);
  }
  return file.place(camera.offset) + ": camera " + text(camera.id) + " has the model " + shown(camera.model) +
         ", which is none of " + names + ". Let COLMAP undistort its images first (image_undistorter).";
}

Pictured_camera pictured(const Lens_model& model, const Model_file& file, const Colmap_camera& camera) {
  const auto width = static_cast<double>(camera.width);
  const auto height = static_cast<double>(camera.height);
  try {
    const Lens lens = make_lens(model, camera.parameters);
    return width > 0.0 && height > 0.0 ? Pictured_camera{lens, {width, height}} : Pictured_camera{lens};
  } catch (const Bad_argument& error) {
    file.fail(camera.offset, "camera " + text(camera.id) + ": " + error.what());
  }
}

constexpr auto no_place = static_cast<std::size_t>(-1);

/// The cameras of the chosen images, each once. Returns where each of the model's is among them.
std::vector<std::size_t> take_cameras(const Model_file& file, const Colmap_model& model, Model_views& views) {
  std::vector<std::size_t> places(model.cameras.size(), no_place);
  Folded_cameras folded;
  for (const Colmap_image& image : model.images) {
    const Colmap_camera& camera = model.cameras[image.camera];
    const Lens_model* lens_model = lens_model_of(camera);
    if (!image.is_chosen || places[image.camera] != no_place || lens_model == nullptr) continue;
    places[image.camera] = views.cameras.size();
    views.cameras.push_back(pictured(*lens_model, file, camera));
    const auto& [lens, size] = views.cameras.back();
    if (size[0] > 0.0 && folds_inside(lens, size[0], size[1])) {
      folded.add(lens, [&] { return file.place(camera.offset) + ": the lens of camera " + text(camera.id); });
    }
  }
  folded.warn(views);
  return places;
}

void put_image_points(const Colmap_model& model, const Colmap_image& image, double* points, double* pixels,
                      double* ids) {
  for (std::size_t i = 0; i < image.points.size(); ++i) {
    if (image.points[i] == Colmap_image::no_point) continue;
    const auto place = static_cast<std::size_t>(image.points[i]);
    points = std::copy_n(&model.positions[3 * place], 3, points);
    pixels = std::copy_n(&image.pixels[2 * i], 2, pixels);
    *ids++ = static_cast<double>(model.point_ids[place]);
  }
}

Model_view view_of(const Colmap_image& image, std::size_t camera) {
  const auto num_idle = std::count(image.points.begin(), image.points.end(), Colmap_image::no_point);
  return {image.name, static_cast<double>(image.id), camera_pose(image.pose),
          image.points.size() - static_cast<std::size_t>(num_idle), camera};
}

Model_views views_of(const Colmap_files& files, const Chosen_images& chosen) {
  const auto model = std::make_shared<const Colmap_model>(read_colmap(files, chosen));
  Model_views views;
  for (const std::string& warning : model->warnings) views.warnings.insert(views.warnings.end(), {"count", warning});
  const std::vector<std::size_t> places = take_cameras(*files.cameras, *model, views);
  std::vector<const Colmap_image*> images;
  std::size_t num_stopped = 0;
  std::string stopped;
  for (const Colmap_image& image : model->images) {
    if (!image.is_chosen) continue;
    const std::size_t camera = places[image.camera];
    if (camera == no_place) {
      if (num_stopped++ == 0) stopped = sentence_of_stopped(*files.cameras, model->cameras[image.camera]);
      continue;
    }
    views.views.push_back(view_of(image, camera));
    images.push_back(&image);
  }
  if (num_stopped > 0) {
    if (images.empty()) refuse("file", stopped);
    stopped += " " + text(num_stopped) + " of " + text(num_stopped + images.size()) + " images are left out.";
    views.warnings.insert(views.warnings.end(), {"cameraModel", stopped});
  }
  views.put_points = [model, images](std::size_t k, double* points, double* pixels, double* ids) {
    put_image_points(*model, *images[k], points, pixels, ids);
  };
  return views;
}

/// Whether the farthest of these pixels, which count from the middle of the picture, lies where it has no ray.
bool folds_inside(const Lens& lens, const std::vector<const Bal_observation*>& seen) {
  const auto radius = [](const Bal_observation* one) { return std::hypot(one->pixel[0], one->pixel[1]); };
  const auto farthest =
      std::max_element(seen.begin(), seen.end(), [&](auto* a, auto* b) { return radius(a) < radius(b); });
  double direction[3];
  return farthest != seen.end() && !unproject(lens, (*farthest)->pixel, direction);
}

Model_views views_of(const Model_file& file) {
  const auto model = std::make_shared<const Bal_model>(read_bal(file));
  const std::size_t n = model->cameras.size();
  std::vector<std::vector<const Bal_observation*>> seen(n);
  for (const Bal_observation& one : model->observations) seen[one.camera].push_back(&one);
  Model_views views;
  Folded_cameras folded;
  for (std::size_t k = 0; k < n; ++k) {
    const auto& c = model->cameras[k];
    const std::string name = "camera " + text(k);
    const Rotation_vector_pose pose{{c[0], c[1], c[2]}, {c[3], c[4], c[5]}};
    views.views.push_back(
        {name, static_cast<double>(k), pose_of(pose, Pose_frame::camera_from_world), seen[k].size(), k});
    views.cameras.push_back({make_lens(lens_model("BAL"), {c[6], c[7], c[8]})});
    const Lens& lens = views.cameras.back().lens;
    if (folds_inside(lens, seen[k])) {
      folded.add(lens, [&] { return file.place(model->pose_offsets[k]) + ": the lens of " + name; });
    }
  }
  folded.warn(views);
  views.put_points = [model, seen = std::move(seen)](std::size_t k, double* points, double* pixels, double* ids) {
    for (const Bal_observation* one : seen[k]) {
      points = std::copy_n(model->points[one->point].data(), 3, points);
      pixels = std::copy_n(one->pixel, 2, pixels);
      *ids++ = one->point;
    }
  };
  return views;
}

}  // namespace

std::unique_ptr<Answer> read_colmap_model(const Inputs& inputs) {
  const std::string folder = text_in(inputs[0], "folder");
  return answer_of(views_of(open_colmap(folder, colmap_form(folder), true), read_choice(inputs[1])));
}

std::unique_ptr<Answer> read_bal_file(const Inputs& inputs) {
  return answer_of(views_of(Model_file(text_in(inputs[0], "file"), Model_file::Kind::text)));
}

}  // namespace kelvane::mex_engine
