// SPDX-License-Identifier: BSD-3-Clause
// Jacobians that stack the same pixel equations three times, each block derived through another representation.
#pragma once

#include <cstddef>
#include <memory>
#include <opencv2/core.hpp>
#include <vector>

#include "camera_pose/camera_position_grad_func.h"
#include "camera_pose/hybrid_blocks.h"
#include "fw_opt/grad_func.h"
#include "fw_tools/matrix.h"

/// What the hybrid Jacobians have in common.
///
/// All three blocks have the columns of the first representation, that of x. Block 1 is its own Jacobian; blocks 2 and
/// 3 are those of the other two, carried over by the chain rule (docs/derivations.md, Eq. 31).
///
/// operator()(x, J, start) fills rows start to start + 6 N - 1 of J and returns 6 N; only a start of 0 is to be relied
/// on. Without points it returns 0 and writes nothing. Where a representation Jacobian is not finite blocks 2 and
/// 3 are not either: types -1 and -2 without a rotation, type -1 at a scalar part of 1 or more in size, type -3 at a
/// zero axis.
class Camera_position_grad_func_hybrid : public fw::Grad_func, private fw::Packed_jacobian {
 public:
  /// Points of 3 coordinates each (world units), K 3 by 3 (pixels); takes ownership of the base function once nothing
  /// can fail any more.
  Camera_position_grad_func_hybrid(const std::vector<std::vector<double>>& points, const fw::matrix<double>& K,
                                   fw::Opt_func* base);
  /// The same with points that others evaluate as well.
  Camera_position_grad_func_hybrid(const std::shared_ptr<const Packed_points>& points, const Intrinsics& intrinsics,
                                   fw::Opt_func* base) noexcept;
  /// Shares the points; takes over neither weights nor base function.
  Camera_position_grad_func_hybrid(const Camera_position_grad_func_hybrid&) = default;
  Camera_position_grad_func_hybrid& operator=(const Camera_position_grad_func_hybrid&) = delete;

  /// The same Jacobian in packed order, with the chain rule applied to the projection instead of every row.
  const fw::Packed_jacobian* packed() const override { return this; }

 protected:
  /// N items of 2 outputs, stacked three times.
  fw::Packed_layout layout() const override { return {points->size(), 2, 3}; }
  /// Gives the sink the 6 N rows of three projections that are differentiated by the same n_r + 3 entries.
  template <std::size_t n_r>
  void write_blocks(const Projection<n_r>& block_1, const Projection<n_r>& block_2, const Projection<n_r>& block_3,
                    fw::Row_sink& sink) const;

  std::shared_ptr<const Packed_points> points;  ///< N points, world frame and units
  Camera_position_grad_func_aau aau;            ///< the block through rotation vectors
  Camera_position_grad_func_aan aan;            ///< the block through axis and angle
  Camera_position_grad_func_qu qu;              ///< the block through quaternions
};

/// Rotation type -1: columns of qu; blocks qu, aau, aan.
/// Raises (kelvane_mex.cpp, all inside the context of line 1457): 1451 when J's columns do not fit block 2; block 3 is
/// copied unchecked.
class Camera_position_grad_func_qu_aau_aan : public Camera_position_grad_func_hybrid {
 public:
  using Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid;
  int operator()(const std::vector<double>& x, cv::Mat& J, int start) const override;

 private:
  int num_columns() const override { return 7; }
  void linearise(const std::vector<double>& x, fw::Row_sink& sink) const override;
};

/// Rotation type -2: columns of aau; blocks aau, qu, aan.
/// Raises (kelvane_mex.cpp, all inside the context of line 1549): 1543 when J's columns do not fit block 2, 1545
/// block 3.
class Camera_position_grad_func_aau_qu_aan : public Camera_position_grad_func_hybrid {
 public:
  using Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid;
  int operator()(const std::vector<double>& x, cv::Mat& J, int start) const override;

 private:
  int num_columns() const override { return 6; }
  void linearise(const std::vector<double>& x, fw::Row_sink& sink) const override;
};

/// Rotation type -3: columns of aan; blocks aan, qu, aau.
/// Raises (kelvane_mex.cpp, all inside the context of line 1641): 1635 when J's columns do not fit block 2, 1637 block
/// 3; their texts name aau and aan although the blocks are qu and aau.
class Camera_position_grad_func_aan_qu_aau : public Camera_position_grad_func_hybrid {
 public:
  using Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid;
  int operator()(const std::vector<double>& x, cv::Mat& J, int start) const override;

 private:
  int num_columns() const override { return 7; }
  void linearise(const std::vector<double>& x, fw::Row_sink& sink) const override;
};
