// SPDX-License-Identifier: BSD-3-Clause
// The fields of COLMAP's files where texts and binary files differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "model_files/binary_source.h"
#include "model_files/camera_models.h"
#include "model_files/colmap_model.h"
#include "model_files/paths.h"
#include "model_files/text_source.h"

namespace kelvane::colmap {

inline void expect(Text_source& source, const char* sentence) { source.expect(sentence); }
inline void expect(Binary_source& /*source*/, const char* /*sentence*/) {}
inline void end_record(Text_source& source) { source.end_record(); }
inline void end_record(Binary_source& /*source*/) {}

/// All that is left, of which only the text knows.
inline void skip_numbers(Text_source& source) {
  while (source.has_more()) static_cast<void>(source.number());
}
inline void skip_numbers(Binary_source& /*source*/) {}

/// A list of as many elements as stand in front of it in a binary file, to the end of the line in a text.
class List {
 public:
  List(Text_source& /*source*/, std::size_t /*bytes_each*/) {}
  List(Binary_source& source, std::size_t bytes_each) : left_(source.list_of(bytes_each)) {}
  bool has_more(Text_source& source) const { return source.has_more(); }
  bool has_more(Binary_source& /*source*/) { return left_ > 0 && left_-- > 0; }

 private:
  std::uint64_t left_ = 0;
};

/// The length of a list that both forms tell.
inline std::uint64_t short_list_of(Text_source& source, std::size_t /*bytes_each*/) { return source.whole(UINT32_MAX); }
inline std::uint64_t short_list_of(Binary_source& source, std::size_t bytes_each) {
  return source.short_list_of(bytes_each);
}

inline std::string name_of_image(Text_source& source) { return source.rest_of_line(); }
inline std::string name_of_image(Binary_source& source) { return source.text(); }

inline bool begin_pixels(Text_source& source) { return source.next_line(); }
inline bool begin_pixels(Binary_source& /*source*/) { return true; }

inline void read_color(Text_source& source) { static_cast<void>(source.whole(255)); }
inline void read_color(Binary_source& source) { static_cast<void>(source.id<std::uint8_t>()); }

/// -1 or the largest number: no point.
inline std::uint64_t read_seen_point(Text_source& source) {
  return source.skip_minus_one() ? Colmap_image::no_point : source.id<std::uint64_t>();
}
inline std::uint64_t read_seen_point(Binary_source& source) { return source.id<std::uint64_t>(); }

inline bool read_flag(Text_source& source) { return source.whole(1) == 1; }
inline bool read_flag(Binary_source& source) {
  const std::size_t start = source.offset();
  const auto flag = source.id<std::uint8_t>();
  if (flag > 1) source.fail(start, "this byte must be 0 or 1.");
  return flag == 1;
}

inline Sensor_kind read_sensor_kind(Text_source& source) {
  const std::size_t start = source.offset();
  const std::string word = source.word();
  if (word == "CAMERA") return Sensor_kind::camera;
  if (word == "IMU") return Sensor_kind::imu;
  source.fail(start, "'" + shown(word) + "' is no kind of sensor; there are CAMERA and IMU.");
}
inline Sensor_kind read_sensor_kind(Binary_source& source) {
  const std::size_t start = source.offset();
  const auto number = source.id<std::int32_t>();
  if (number != 0 && number != 1) {
    source.fail(start, "'" + std::to_string(number) + "' is no kind of sensor; there are CAMERA and IMU.");
  }
  return static_cast<Sensor_kind>(number);
}

inline void read_camera_kind(Text_source& source, Colmap_camera& camera) {
  const std::string shape = "camera " + std::to_string(camera.id) + " has no model.";
  expect(source, shape.c_str());
  camera.model = source.word();
  camera.kind = camera_kind_of(camera.model);
}
inline void read_camera_kind(Binary_source& source, Colmap_camera& camera) {
  const std::size_t start = source.offset();
  camera.kind = source.id<std::int32_t>();
  if (camera.kind < 0 || camera.kind >= num_camera_kinds) {
    source.fail(start, "camera " + std::to_string(camera.id) + " has the model number " + std::to_string(camera.kind) +
                           "; the known ones end at " + std::to_string(num_camera_kinds - 1) + ".");
  }
  camera.model = camera_kinds[camera.kind].name;
}

}  // namespace kelvane::colmap
