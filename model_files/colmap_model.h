// SPDX-License-Identifier: BSD-3-Clause
// A COLMAP model: what is in its files, and where the poses stand there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model_files/model_file.h"

namespace kelvane {

/// Maps b's coordinates into a's: x_a = R(q) x_b + t, q as it stands in the file, of any length but 0.
struct Colmap_pose {
  double q[4] = {1, 0, 0, 0};  ///< w, x, y, z
  double t[3] = {0, 0, 0};     ///< of a's frame and unit
};

/// Intrinsics.
struct Colmap_camera {
  std::uint32_t id = 0;            ///< CAMERA_ID
  int kind = 0;                    ///< in camera_kinds, or unknown_camera_kind
  std::string model;               ///< its name
  std::uint64_t width = 0;         ///< pixels
  std::uint64_t height = 0;        ///< pixels
  std::vector<double> parameters;  ///< as many and in such an order as the model has them
  std::size_t offset = 0;          ///< in the file, for errors
};

/// One photograph.
struct Colmap_image {
  /// That a pixel without a point sees.
  static constexpr std::uint64_t no_point = static_cast<std::uint64_t>(-1);

  std::uint32_t id = 0;               ///< IMAGE_ID
  std::uint32_t camera_id = 0;        ///< CAMERA_ID
  std::size_t camera = 0;             ///< in Colmap_model::cameras
  std::string name;                   ///< of its file
  Colmap_pose pose;                   ///< camera from world; of its frame where the model has frames
  bool is_chosen = true;              ///< otherwise its pixels are checked, but not kept
  std::uint64_t num_pixels = 0;       ///< chosen or not
  std::vector<double> pixels;         ///< two for each
  std::vector<std::uint64_t> points;  ///< that each pixel sees, in Colmap_model::point_ids, or no_point
  std::size_t frame = 0;              ///< in Colmap_model::frames, where there are any
  std::size_t offset = 0;             ///< in the file, for errors
  std::size_t pose_offset = 0;        ///< of the first of its seven numbers
  std::size_t camera_offset = 0;      ///< of the camera's id
  std::size_t pixels_offset = 0;      ///< of the first pixel in a text, of their number in a binary file
};

/// What a rig is made of, by COLMAP's numbers.
enum class Sensor_kind : std::int32_t { camera = 0, imu = 1 };

/// One of a rig. The first is the one that the rig's pose is of.
struct Colmap_sensor {
  Sensor_kind kind = Sensor_kind::camera;  ///< of which the id counts
  std::uint32_t id = 0;                    ///< of a camera its CAMERA_ID
  bool has_pose = false;                   ///< never of the first
  Colmap_pose pose;                        ///< sensor from rig
};

/// Sensors that move as one.
struct Colmap_rig {
  std::uint32_t id = 0;                ///< RIG_ID
  std::vector<Colmap_sensor> sensors;  ///< the first is the reference
  std::size_t offset = 0;              ///< in the file, for errors
};

/// What a sensor has recorded: the image of a camera.
struct Colmap_data {
  Sensor_kind kind = Sensor_kind::camera;  ///< of the sensor
  std::uint32_t sensor_id = 0;             ///< of a camera its CAMERA_ID
  std::uint64_t id = 0;                    ///< of an image its IMAGE_ID
  std::size_t offset = 0;                  ///< in the file, for errors
};

/// A rig at one time.
struct Colmap_frame {
  std::uint32_t id = 0;           ///< FRAME_ID
  std::uint32_t rig_id = 0;       ///< RIG_ID
  std::size_t rig = 0;            ///< in Colmap_model::rigs
  Colmap_pose pose;               ///< rig from world
  std::vector<Colmap_data> data;  ///< of all sensors
  std::size_t offset = 0;         ///< in the file, for errors
  std::size_t pose_offset = 0;    ///< of the first of its seven numbers
};

/// All that is in the files.
struct Colmap_model {
  std::vector<Colmap_camera> cameras;    ///< in the file's order
  std::vector<Colmap_image> images;      ///< in the file's order
  std::vector<std::uint64_t> point_ids;  ///< POINT3D_ID of each point
  std::vector<double> positions;         ///< three for each point
  std::vector<Colmap_rig> rigs;          ///< in the file's order
  std::vector<Colmap_frame> frames;      ///< in the file's order
  std::vector<std::string> warnings;     ///< sentences about what is odd, but COLMAP accepts

  /// From COLMAP 3.12 on, poses are those of frames.
  bool has_frames() const { return !rigs.empty() || !frames.empty(); }
};

/// The files of a model. rigs and frames may be missing, and so may points where only poses are looked at.
struct Colmap_files {
  std::unique_ptr<Model_file> cameras;  ///< cameras.txt or cameras.bin
  std::unique_ptr<Model_file> rigs;     ///< rigs, or null
  std::unique_ptr<Model_file> frames;   ///< frames, or null
  std::unique_ptr<Model_file> images;   ///< images
  std::unique_ptr<Model_file> points;   ///< points3D, or null
};

/// Images of a model, by name or id; all of them where neither is told.
struct Chosen_images {
  std::vector<std::string> names;  ///< as in the model
  std::vector<std::uint32_t> ids;  ///< IMAGE_IDs
};

/// "bin" or "txt": as COLMAP does, binary where there are both.
std::string colmap_form(const std::string& folder);
/// Opens and reads the files of a folder. Throws File_error.
Colmap_files open_colmap(const std::string& folder, const std::string& form, bool with_points);
/// Reads all of them, with every id that one of them names in another. Throws File_error.
Colmap_model read_colmap(const Colmap_files& files, const Chosen_images& chosen = {});

}  // namespace kelvane
