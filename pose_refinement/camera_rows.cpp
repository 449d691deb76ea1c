// SPDX-License-Identifier: BSD-3-Clause
// From the rows of a camera with one focal length to those of any other.
#include "pose_refinement/camera_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kelvane {
namespace {

/// With the focal length f and the principal point 0.
Camera placed(const Pose& pose, double f = 1.0) { return make_camera({f, 0.0, 0.0}, pose.rotation, pose.centre); }

/// From the camera-frame points p to e = p / |p|; returns 1 / |p|. Zero where there is no point.
void split_lengths(double* p, double* inverse) {
  for (std::size_t lane = 0; lane < group_size; ++lane) {
    double* x = p + lane;
    const double square = x[0] * x[0] + x[8] * x[8] + x[16] * x[16];
    inverse[lane] = 1.0 / std::sqrt(square);
    for (std::size_t k = 0; k < 24; k += 8) x[k] *= inverse[lane];
  }
}

}  // namespace

Camera_rows::Camera_rows(const Camera_model& camera, Instruction_set set)
    : camera_(camera),
      lens_{camera.skew / camera.fx, camera.fy / camera.fx, camera.cx, camera.cy, 1e13 * std::abs(camera.fx)},
      kernels_(&point_kernels(set)),
      sight_kernels_(&kelvane::sight_kernels(set)),
      lens_kernels_(&kelvane::lens_kernels(set)) {}

void Camera_rows::residuals(const Sights& sights, const Pose& pose, double* values) const {
  if (camera_.lens) {
    return lens_kernels_->residuals(sights.points, sights.num_points, placed(pose), *camera_.lens, sights.observed,
                                    values);
  }
  if (!camera_.sees_directions) {
    kernels_->predict_pixels(sights.points, sights.num_points, placed(pose, camera_.fx), values);
    return sight_kernels_->subtract_pixels(sights.observed, sights.num_groups(), lens_, values);
  }
  kernels_->predict_bearings(sights.points, sights.num_groups() * group_size, placed(pose), values);
  double inverse[group_size];
  for (std::size_t g = 0; g < sights.num_groups(); ++g) split_lengths(values + 3 * group_size * g, inverse);
  for (std::size_t i = 0; i < sights.num_rows(); ++i) values[i] = sights.observed[i] - values[i];
}

void Camera_rows::bend_rows(const Sights& sights, Block& block) const {
  if (lens_.stretch == 1.0 && lens_.shear == 0.0) return;
  for (std::size_t c = 0; c < 6; ++c) {
    for (double* u = block.column(c); u < block.column(c) + sights.num_rows(); u += 2 * group_size) {
      for (std::size_t lane = 0; lane < group_size; ++lane) {
        u[lane] += lens_.shear * u[lane + group_size];
        u[lane + group_size] *= lens_.stretch;
      }
    }
  }
}

void Camera_rows::linearise(const Sights& sights, const Pose& pose, Block& block) const {
  block.resize(6);
  double* const values = block.column(6);
  if (camera_.lens) {
    return lens_kernels_->rows(sights.points, sights.num_points, placed(pose), *camera_.lens, sights.observed,
                               block.column(0), block.stride());
  }
  if (!camera_.sees_directions) {
    kernels_->pixel_rows(sights.points, sights.num_points, placed(pose, camera_.fx), block.column(0), block.stride());
    bend_rows(sights, block);
    return sight_kernels_->subtract_pixels(sights.observed, sights.num_groups(), lens_, values);
  }
  kernels_->predict_bearings(sights.points, sights.num_groups() * group_size, placed(pose), values);
  for (std::size_t g = 0; g < sights.num_groups(); ++g) {
    double inverse[group_size];
    const std::size_t first = 3 * group_size * g;
    split_lengths(values + first, inverse);
    for (std::size_t lane = 0; lane < group_size; ++lane) {
      const std::size_t rows[] = {first + lane, first + lane + group_size, first + lane + 2 * group_size};
      const double e[] = {values[rows[0]], values[rows[1]], values[rows[2]]};
      for (std::size_t k = 0; k < 3; ++k) {
        for (std::size_t c = 0; c < 3; ++c) {
          block.column(c)[rows[k]] = (e[k] * e[c] - (k == c ? 1.0 : 0.0)) * inverse[lane];
        }
        block.column(3 + k)[rows[k]] = 0.0;
        block.column(3 + k)[rows[(k + 1) % 3]] = e[(k + 2) % 3];
        block.column(3 + k)[rows[(k + 2) % 3]] = -e[(k + 1) % 3];
        values[rows[k]] = sights.observed[rows[k]] - e[k];
      }
    }
  }
}

void Camera_rows::depths(const Sights& sights, const Pose& pose, double* depths) const {
  alignas(cache_line) double p[3 * Sights::most_points];
  point_kernels(best_instruction_set()).predict_bearings(sights.points, sights.num_points, placed(pose), p);
  const double forward = camera_.lens ? camera_.lens->forward : 1.0;
  for (std::size_t i = 0; i < sights.num_points; ++i)
    depths[i] = forward * p[(i / group_size * 3 + 2) * group_size + i % group_size];
}

void Camera_rows::facing(const Sights& sights, const Pose& pose, double* values) const {
  if (camera_.lens && camera_.lens->is_angular) {
    std::fill_n(values, sights.num_points, 1.0);
  } else {
    depths(sights, pose, values);
  }
}

}  // namespace kelvane
