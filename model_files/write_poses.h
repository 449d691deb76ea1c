// SPDX-License-Identifier: BSD-3-Clause
// Poses into copies of the files that they came from, which are else the same, byte for byte. Each function throws
// File_error, and leaves all files as they were.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model_files/colmap_model.h"

namespace kelvane {

/// Of the image with this name, camera from world.
struct Named_pose {
  std::string name;  ///< as in the model
  Colmap_pose pose;  ///< camera from world
};

/// The model in a folder with new poses, into another folder or the same, in the form in which it is: where it has
/// frames, into frames and images. Refuses images of a rig with several cameras, names that no image or two have, and a
/// folder in which files of another model would be read with it.
void write_colmap(const std::string& folder, const std::string& model, const std::vector<Named_pose>& poses);

/// Of a camera by its number: rotation vector and translation as in the file.
struct Bal_pose {
  std::size_t camera;  ///< from 0
  double numbers[6];   ///< rotation vector, translation
};

/// A file of Bundle Adjustment in the Large with new poses.
void write_bal(const std::string& target, const std::string& source, const std::vector<Bal_pose>& poses);

}  // namespace kelvane
