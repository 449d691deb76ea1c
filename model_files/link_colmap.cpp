// SPDX-License-Identifier: BSD-3-Clause
// Ids to places.
#include "model_files/link_colmap.h"

#include <cmath>
#include <string>

#include "model_files/text_source.h"

namespace kelvane::colmap {
namespace {

using std::to_string;

/// By the ids of records; throws where two have the same.
template <typename Record>
Id_index index_of(const std::vector<Record>& records, const Model_file& file, const char* what) {
  Id_index index(records.size(), [&](std::size_t i) { return records[i].id; });
  const std::size_t k = index.first_repeated();
  if (k != Id_index::none) {
    file.fail(records[k].offset, std::string("there are two ") + what + " " + to_string(records[k].id) + ".");
  }
  return index;
}

std::string name_of(const Model_file& file) { return file.path().substr(file.path().rfind('/') + 1); }

/// Where the pixel of an image tells its point.
std::size_t offset_of_point(const Model_file& file, const Colmap_image& image, std::size_t pixel) {
  if (file.kind() == Model_file::Kind::binary) return image.pixels_offset + 8 + 24 * pixel + 16;
  return offset_of_word(file, image.pixels_offset, 3 * pixel + 2);
}

/// Where the n-th point begins.
std::size_t offset_of_record(const Model_file& file, std::size_t n) {
  if (file.kind() == Model_file::Kind::text) {
    Text_source source(file);
    for (std::size_t i = 0; i <= n; ++i) source.next_record(0);
    return source.offset();
  }
  const char* at = file.begin() + 8;
  for (std::size_t i = 0; i < n; ++i) {
    std::uint64_t length = 0;
    std::copy_n(at + 43, sizeof length, reinterpret_cast<char*>(&length));
    at += 51 + 8 * length;
  }
  return static_cast<std::size_t>(at - file.bytes());
}

Colmap_pose unit(Colmap_pose pose) {
  const double* q = pose.q;
  const double length = std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3]));
  for (double& entry : pose.q) entry /= length;
  return pose;
}

/// First b, then a.
Colmap_pose product(const Colmap_pose& first, const Colmap_pose& second) {
  const Colmap_pose a = unit(second);
  const Colmap_pose b = unit(first);
  const double *p = a.q, *q = b.q, *v = b.t;
  Colmap_pose c;
  c.q[0] = p[0] * q[0] - p[1] * q[1] - p[2] * q[2] - p[3] * q[3];
  c.q[1] = p[0] * q[1] + p[1] * q[0] + p[2] * q[3] - p[3] * q[2];
  c.q[2] = p[0] * q[2] - p[1] * q[3] + p[2] * q[0] + p[3] * q[1];
  c.q[3] = p[0] * q[3] + p[1] * q[2] - p[2] * q[1] + p[3] * q[0];
  // v + 2 w (u x v) + 2 u x (u x v)
  const double d[3] = {2 * (p[2] * v[2] - p[3] * v[1]), 2 * (p[3] * v[0] - p[1] * v[2]),
                       2 * (p[1] * v[1] - p[2] * v[0])};
  c.t[0] = a.t[0] + v[0] + p[0] * d[0] + p[2] * d[2] - p[3] * d[1];
  c.t[1] = a.t[1] + v[1] + p[0] * d[1] + p[3] * d[0] - p[1] * d[2];
  c.t[2] = a.t[2] + v[2] + p[0] * d[2] + p[1] * d[1] - p[2] * d[0];
  return c;
}

constexpr std::size_t no_frame = static_cast<std::size_t>(-1);

/// The image that a frame holds, with its pose.
void link_data(const Colmap_files& files, const Colmap_frame& frame, const Colmap_data& data, Colmap_image& image,
               const Colmap_rig& rig) {
  const std::string who = "frame " + to_string(frame.id);
  if (image.frame != no_frame) {
    files.frames->fail(data.offset, who + " has the image " + to_string(image.id) + ", which another one has too.");
  } else if (image.camera_id != data.sensor_id) {
    files.frames->fail(data.offset, who + " has the image " + to_string(image.id) + " of camera " +
                                        to_string(data.sensor_id) + "; its camera is " + to_string(image.camera_id) +
                                        ".");
  }
  for (const Colmap_sensor& sensor : rig.sensors) {
    if (sensor.kind != Sensor_kind::camera || sensor.id != data.sensor_id) continue;
    const bool is_first = &sensor == &rig.sensors.front();
    if (!is_first && !sensor.has_pose) {
      files.frames->fail(data.offset,
                         "camera " + to_string(sensor.id) + " has no pose in rig " + to_string(rig.id) + ".");
    }
    image.pose = is_first ? frame.pose : product(frame.pose, sensor.pose);
    return;
  }
  files.frames->fail(data.offset, "camera " + to_string(data.sensor_id) + " is not in rig " + to_string(rig.id) + ".");
}

}  // namespace

Id_index link_images(const Colmap_files& files, Colmap_model& model) {
  const Id_index cameras = index_of(model.cameras, *files.cameras, "cameras");
  for (Colmap_image& image : model.images) {
    image.camera = cameras[image.camera_id];
    if (image.camera != Id_index::none) continue;
    files.images->fail(image.camera_offset, "image " + to_string(image.id) + " has the camera " +
                                                to_string(image.camera_id) + ", which is not in " +
                                                name_of(*files.cameras) + ".");
  }
  return index_of(model.images, *files.images, "images");
}

void link_points(const Colmap_files& files, Colmap_model& model) {
  const Id_index points(model.point_ids.size(), [&](std::size_t i) { return model.point_ids[i]; });
  const std::size_t k = points.first_repeated();
  if (k != Id_index::none) {
    files.points->fail(offset_of_record(*files.points, k),
                       "there are two points " + to_string(model.point_ids[k]) + ".");
  }
  for (Colmap_image& image : model.images) {
    for (std::size_t i = 0; i < image.points.size(); ++i) {
      std::uint64_t& point = image.points[i];
      if (point == Colmap_image::no_point) continue;
      const std::size_t found = points[point];
      if (found == Id_index::none) {
        files.images->fail(offset_of_point(*files.images, image, i),
                           "image " + to_string(image.id) + " has the point " + to_string(point) +
                               ", which is not in " + name_of(*files.points) + ".");
      }
      point = found;
    }
  }
}

void link_frames(const Colmap_files& files, const Id_index& images, Colmap_model& model) {
  if (!model.has_frames()) return;
  const Id_index rigs = files.rigs ? index_of(model.rigs, *files.rigs, "rigs") : Id_index();
  if (files.frames) index_of(model.frames, *files.frames, "frames");
  for (Colmap_image& image : model.images) image.frame = no_frame;
  for (std::size_t f = 0; f < model.frames.size(); ++f) {
    Colmap_frame& frame = model.frames[f];
    frame.rig = rigs[frame.rig_id];
    const std::string who = "frame " + to_string(frame.id);
    if (frame.rig == Id_index::none) {
      files.frames->fail(frame.offset, who + " has the rig " + to_string(frame.rig_id) + ", which is not in rigs.");
    }
    for (const Colmap_data& data : frame.data) {
      if (data.kind != Sensor_kind::camera) continue;
      const std::size_t k = images[data.id];
      if (k == Id_index::none) {
        files.frames->fail(data.offset, who + " has the image " + to_string(data.id) + ", which is not in images.");
      }
      link_data(files, frame, data, model.images[k], model.rigs[frame.rig]);
      model.images[k].frame = f;
    }
  }
  for (const Colmap_image& image : model.images) {
    if (image.frame == no_frame) files.images->fail(image.offset, "image " + to_string(image.id) + " is in no frame.");
  }
}

}  // namespace kelvane::colmap
