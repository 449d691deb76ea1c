// SPDX-License-Identifier: BSD-3-Clause
// The records of COLMAP's files, whose fields come in the same order in texts and in binary files. Each function reads
// a file; next_record() takes the least bytes of a binary record.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

#include "model_files/colmap_fields.h"
#include "model_files/id_index.h"

namespace kelvane::colmap {

/// Seven numbers, and where they stand.
template <typename Source>
Colmap_pose read_pose(Source& source, const char* what, std::uint64_t id, std::size_t& offset) {
  offset = source.offset();
  Colmap_pose pose;
  double largest = 0.0;
  for (double& q : pose.q) {
    q = source.number();
    largest = std::max(largest, std::fabs(q));
  }
  for (double& t : pose.t) t = source.number();
  const auto whose = [&] { return std::string("the quaternion of ") + what + " " + std::to_string(id); };
  if (largest < 1e-10) source.fail(offset, whose() + " has the length 0.");
  if (largest > 1e150) source.fail(offset, whose() + " has no finite length.");
  return pose;
}

template <typename Source>
void read_parameters(Source& source, const Camera_kind& kind, std::vector<double>& parameters) {
  const std::size_t start = source.offset();
  for (int i = 0; i < kind.num_parameters; ++i) parameters.push_back(source.number());
  for (int i = 0; i < kind.num_focal_lengths; ++i) {
    const double focal_length = parameters[static_cast<std::size_t>(i)];
    if (focal_length > 0.0) continue;
    char number[32];
    static_cast<void>(std::snprintf(number, sizeof number, "%g", focal_length));
    source.fail(start, std::string("the focal length is ") + number + "; it must be above 0.");
  }
}

template <typename Source>
void read_cameras(Source& source, Colmap_model& model) {
  while (source.next_record(40)) {
    Colmap_camera camera;
    camera.offset = source.offset();
    expect(source, "a camera has its id, a model, width, height and parameters; here are %d words.");
    camera.id = source.template id<std::uint32_t>();
    read_camera_kind(source, camera);
    const bool is_known = camera.kind != unknown_camera_kind;
    const std::string shape =
        "a camera of model " + shown(camera.model) + " has width, height and " +
        (is_known ? std::to_string(camera_kinds[camera.kind].num_parameters) + " parameters" : "parameters") +
        "; here are %d numbers.";
    expect(source, shape.c_str());
    camera.width = source.template id<std::uint64_t>();
    camera.height = source.template id<std::uint64_t>();
    if (is_known) {
      read_parameters(source, camera_kinds[camera.kind], camera.parameters);
      end_record(source);
    } else {
      skip_numbers(source);
    }
    model.cameras.push_back(std::move(camera));
  }
}

/// Those of one image, kept where it is chosen.
template <typename Source>
void read_pixels(Source& source, Colmap_image& image, std::vector<double>& pixels, std::vector<std::uint64_t>& points) {
  pixels.clear();
  points.clear();
  image.pixels_offset = source.offset();
  const std::string shape =
      "the pixels of image " + std::to_string(image.id) + " come as X, Y and POINT3D_ID; here are %d numbers.";
  expect(source, shape.c_str());
  for (List list(source, 24); list.has_more(source); ++image.num_pixels) {
    const double x = source.number();
    const double y = source.number();
    const std::uint64_t point = read_seen_point(source);
    if (!image.is_chosen) continue;
    pixels.push_back(x);
    pixels.push_back(y);
    points.push_back(point);
  }
  image.pixels.assign(pixels.begin(), pixels.end());
  image.points.assign(points.begin(), points.end());
}

/// is_chosen(image) by its id and name.
template <typename Source, typename Is_chosen>
void read_images(Source& source, Is_chosen& is_chosen, Colmap_model& model) {
  std::vector<double> pixels;
  std::vector<std::uint64_t> points;
  while (source.next_record(73)) {
    Colmap_image image;
    image.offset = source.offset();
    expect(source, "it ends after %d of 9 numbers.");
    image.id = source.template id<std::uint32_t>();
    image.pose = read_pose(source, "image", image.id, image.pose_offset);
    image.camera_offset = source.offset();
    image.camera_id = source.template id<std::uint32_t>();
    const std::size_t name_offset = source.offset();
    image.name = name_of_image(source);
    if (image.name.empty()) source.fail(name_offset, "image " + std::to_string(image.id) + " has no name.");
    if (image.name.find('\0') != std::string::npos) source.fail(name_offset, "there is a zero byte in this name.");
    if (!begin_pixels(source)) source.fail(image.offset, "the line with the pixels of this image is missing.");
    image.is_chosen = is_chosen(image);
    read_pixels(source, image, pixels, points);
    model.images.push_back(std::move(image));
  }
}

/// Of a point: which pixels see it.
template <typename Source>
void check_track(Source& source, const Colmap_model& model, const Id_index& images, std::uint64_t point) {
  for (List track(source, 8); track.has_more(source);) {
    const std::size_t start = source.offset();
    const auto id = source.template id<std::uint32_t>();
    const auto pixel = source.template id<std::uint32_t>();
    const std::size_t k = images[id];
    if (k == Id_index::none) {
      source.fail(start, "point " + std::to_string(point) + " is seen by the image " + std::to_string(id) +
                             ", which is not in images.");
    } else if (pixel >= model.images[k].num_pixels) {
      source.fail(start, "point " + std::to_string(point) + " is seen by the pixel " + std::to_string(pixel) +
                             " of image " + std::to_string(id) + ", which has " +
                             std::to_string(model.images[k].num_pixels) + ".");
    }
  }
}

template <typename Source>
void read_points(Source& source, const Id_index& images, Colmap_model& model) {
  constexpr std::uint64_t largest = 1ULL << 53U;  // up to which doubles count by ones
  while (source.next_record(51)) {
    const std::size_t start = source.offset();
    expect(
        source,
        "a point has its id, X, Y, Z, R, G, B, an error and pairs of IMAGE_ID and POINT2D_IDX; here are %d numbers.");
    const auto id = source.template id<std::uint64_t>();
    if (id > largest) source.fail(start, "the id of a point is above 2^53.");
    model.point_ids.push_back(id);
    for (int i = 0; i < 3; ++i) model.positions.push_back(source.number());
    for (int i = 0; i < 3; ++i) read_color(source);
    static_cast<void>(source.number());  // the error
    check_track(source, model, images, id);
  }
}

template <typename Source>
void read_rigs(Source& source, Colmap_model& model) {
  while (source.next_record(8)) {
    Colmap_rig rig;
    rig.offset = source.offset();
    expect(source, "the line of a rig ends after %d words.");
    rig.id = source.template id<std::uint32_t>();
    std::size_t ignored = 0;
    for (std::uint64_t left = short_list_of(source, 8); left > 0; --left) {
      Colmap_sensor sensor;
      sensor.kind = read_sensor_kind(source);
      sensor.id = source.template id<std::uint32_t>();
      sensor.has_pose = !rig.sensors.empty() && read_flag(source);
      if (sensor.has_pose) sensor.pose = read_pose(source, "sensor", sensor.id, ignored);
      rig.sensors.push_back(sensor);
    }
    end_record(source);
    model.rigs.push_back(std::move(rig));
  }
}

template <typename Source>
void read_frames(Source& source, Colmap_model& model) {
  while (source.next_record(68)) {
    Colmap_frame frame;
    frame.offset = source.offset();
    expect(source, "the line of a frame ends after %d words.");
    frame.id = source.template id<std::uint32_t>();
    frame.rig_id = source.template id<std::uint32_t>();
    frame.pose = read_pose(source, "frame", frame.id, frame.pose_offset);
    for (std::uint64_t left = short_list_of(source, 16); left > 0; --left) {
      Colmap_data data;
      data.offset = source.offset();
      data.kind = read_sensor_kind(source);
      data.sensor_id = source.template id<std::uint32_t>();
      data.id = source.template id<std::uint64_t>();
      frame.data.push_back(data);
    }
    end_record(source);
    model.frames.push_back(std::move(frame));
  }
}

}  // namespace kelvane::colmap
