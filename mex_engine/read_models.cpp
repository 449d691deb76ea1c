// SPDX-License-Identifier: BSD-3-Clause
// views = kelvane_engine('read_colmap', folder, images)
// views = kelvane_engine('read_bal', file)
#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/model_views.h"
#include "mex_engine/sentence.h"
#include "mex_engine/straightener.h"
#include "model_files/bal_model.h"
#include "model_files/camera_models.h"
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

/// Whether it is one whose distortion can be removed: the first four of COLMAP's.
bool put_camera(const Colmap_camera& camera, Model_view& view, double (&radial)[2]) {
  const std::vector<double>& p = camera.parameters;
  constexpr int last = 3;
  if (camera.kind == unknown_camera_kind || camera.kind > last) return false;
  const std::size_t num_focal = camera_kinds[camera.kind].num_focal_lengths == 2 ? 2 : 1;
  const double K[] = {p[0], p[num_focal - 1], p[num_focal], p[num_focal + 1]};
  std::copy_n(K, 4, view.K);
  std::copy(p.begin() + static_cast<std::ptrdiff_t>(num_focal + 2), p.end(), radial);
  view.image_size[0] = static_cast<double>(camera.width);
  view.image_size[1] = static_cast<double>(camera.height);
  return true;
}

std::string sentence_of_stopped(const Model_file& file, const Colmap_camera& camera) {
  return file.place(camera.offset) + ": camera " + text(camera.id) + " has the model " + shown(camera.model) +
         ". Only SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL and RADIAL can be read; for the others let COLMAP undistort "
         "the "
         "images first (image_undistorter).";
}

/// Its pixels without distortion, and those left out without a point.
void straighten(Colmap_image& image, const double (&radial)[2], Model_view& view, std::vector<std::string>& warnings) {
  Straightener straightener(view, radial);
  for (std::size_t i = 0; i < image.points.size(); ++i) {
    if (image.points[i] == Colmap_image::no_point) continue;
    if (straightener.straighten(&image.pixels[2 * i])) {
      ++view.num_points;
    } else {
      image.points[i] = Colmap_image::no_point;
    }
  }
  straightener.warn(warnings);
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

Model_views views_of(const Colmap_files& files, const Chosen_images& chosen) {
  const auto model = std::make_shared<Colmap_model>(read_colmap(files, chosen));
  Model_views views;
  views.has_image_sizes = true;
  for (const std::string& warning : model->warnings) views.warnings.insert(views.warnings.end(), {"count", warning});
  std::vector<const Colmap_image*> images;
  std::size_t num_stopped = 0;
  std::string stopped;
  for (Colmap_image& image : model->images) {
    if (!image.is_chosen) continue;
    const Colmap_camera& camera = model->cameras[image.camera];
    Model_view view;
    double radial[2] = {0.0, 0.0};
    if (!put_camera(camera, view, radial)) {
      if (num_stopped++ == 0) stopped = sentence_of_stopped(*files.cameras, camera);
      continue;
    }
    view.name = image.name;
    view.id = image.id;
    view.pose = camera_pose(image.pose);
    straighten(image, radial, view, views.warnings);
    views.views.push_back(view);
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

/// Its camera looks along -z with y up; ours along z with y down.
Pose turned(const double (&camera)[6]) {
  const Pose given = pose_of(Rotation_vector_pose{{camera[0], camera[1], camera[2]}, {camera[3], camera[4], camera[5]}},
                             Pose_frame::camera_from_world);
  Pose pose = given;
  for (auto& row : pose.rotation) {
    row[1] = -row[1];
    row[2] = -row[2];
  }
  return pose;
}

/// The observations of each camera in their order, with pixels y down and without distortion.
struct Bal_views {
  Bal_model model;
  std::vector<std::vector<Bal_observation>> seen;
};

Model_views views_of(Bal_model given) {
  const auto bal = std::make_shared<Bal_views>();
  bal->model = std::move(given);
  bal->seen.resize(bal->model.cameras.size());
  for (const Bal_observation& seen : bal->model.observations) bal->seen[seen.camera].push_back(seen);
  Model_views views;
  for (std::size_t k = 0; k < bal->model.cameras.size(); ++k) {
    const auto& c = bal->model.cameras[k];
    Model_view view;
    view.name = "camera " + text(k);
    view.id = static_cast<double>(k);
    view.pose = turned({c[0], c[1], c[2], c[3], c[4], c[5]});
    view.K[0] = view.K[1] = c[6];
    Straightener straightener(view, {c[7], c[8]});
    std::vector<Bal_observation>& own = bal->seen[k];
    own.erase(std::remove_if(own.begin(), own.end(),
                             [&](Bal_observation& seen) {
                               seen.pixel[1] = -seen.pixel[1];
                               return !straightener.straighten(seen.pixel);
                             }),
              own.end());
    view.num_points = own.size();
    straightener.warn(views.warnings);
    views.views.push_back(view);
  }
  views.put_points = [bal](std::size_t k, double* points, double* pixels, double* ids) {
    for (const Bal_observation& seen : bal->seen[k]) {
      points = std::copy_n(bal->model.points[seen.point].data(), 3, points);
      pixels = std::copy_n(seen.pixel, 2, pixels);
      *ids++ = seen.point;
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
  return answer_of(views_of(read_bal(Model_file(text_in(inputs[0], "file"), Model_file::Kind::text))));
}

}  // namespace kelvane::mex_engine
