// SPDX-License-Identifier: BSD-3-Clause
// What the files of a COLMAP model say of each other.
#pragma once

#include "model_files/colmap_model.h"
#include "model_files/id_index.h"

namespace kelvane::colmap {

/// The camera of each image; returns which image has an id. Throws File_error where two cameras or images have the same
/// id, or there is no such camera.
Id_index link_images(const Colmap_files& files, Colmap_model& model);
/// The points of the chosen images' pixels, as places in the model in place of ids. Throws likewise.
void link_points(const Colmap_files& files, Colmap_model& model);
/// The frame of each image and its rig, where there are any, and the images' poses by them. Throws likewise.
void link_frames(const Colmap_files& files, const Id_index& images, Colmap_model& model);

}  // namespace kelvane::colmap
