// SPDX-License-Identifier: BSD-3-Clause
// What is done with all residuals of a pose, in a variant for each instruction set.
#pragma once

#include <cstddef>

#include "least_squares/instruction_set.h"
#include "pose_refinement/robust_loss.h"

namespace kelvane {

/// From fx p_x / p_z and fx p_y / p_z to pixels.
struct Pixel_lens {
  double shear, stretch;  ///< skew and fy, in units of fx
  double cx, cy;
  double in_plane;  ///< from there on only rounding decides what is seen
};

/// Residuals r and weights are whole groups of d coordinates, laid out as the rows of a block are; lengths one for each
/// point.
struct Sight_kernels {
  /// Multiplies each point's d residuals, or one column of their derivatives, by its d by d matrix (d = 2: the three
  /// entries of its lower triangle), of which each entry takes a row.
  void (*whiten)(const double* whitening, std::size_t d, std::size_t num_groups, double* column);
  /// Turns what the kernels over points predict with the focal length fx into observed minus seen, or NaN in the plane
  /// of the camera centre.
  void (*subtract_pixels)(const double* observed, std::size_t num_groups, const Pixel_lens& lens, double* values);
  /// The root of the sum of weight times square; false where one of them is NaN or so large that squares may be wrong.
  bool (*lengths)(const double* weights, const double* residuals, std::size_t d, std::size_t num_groups,
                  double* lengths);
  /// Adds what num_points residuals of these lengths cost to eight sums, which do not wait for each other; the first
  /// goes to sum 0.
  void (*add_costs)(const Robust_loss& loss, const double* lengths, std::size_t num_points, double* sums);
  /// The roots of weight times loss, of which no factor is below what keeps squares in range, and r multiplied by them
  /// and by what the loss lacks (docs/derivations.md, Eq. 54); zero where there is no weight.
  void (*weigh)(const Robust_loss& loss, const double* weights, const double* lengths, std::size_t d,
                std::size_t num_groups, double* r, double* roots);
  /// Adds what the slope of the loss takes from J'WJ, -w'/s (G'Wr)(G'Wr)' of each point, to the upper half of a
  /// symmetric matrix, each entry in eight sums. G and r are the seven columns.
  void (*add_slopes)(const Robust_loss& loss, const double* weights, const double* lengths, std::size_t d,
                     std::size_t num_groups, const double* columns, std::size_t stride, double (*sums)[group_size]);
  /// Multiplies a column by the roots.
  void (*scale)(const double* roots, std::size_t num_rows, double* column);
};

/// The set must be available.
const Sight_kernels& sight_kernels(Instruction_set set);

}  // namespace kelvane
