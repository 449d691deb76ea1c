// SPDX-License-Identifier: BSD-3-Clause
// Jacobians that stack the same pixel equations three times, each block derived through another representation.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "framework/camera_position_grad_func.h"

/// What the hybrid Jacobians have in common.
///
/// All three blocks have the columns of the first representation, that of x. Block 1 is its own Jacobian; in blocks 2
/// and 3 the rotation is that of the other two, differentiated by the first by the chain rule (docs/derivations.md, Eq.
/// 31).
///
/// operator()(x, J, start) fills rows start to start + 6 N - 1 of J and returns 6 N; only a start of 0 is to be relied
/// on. Without points it returns 0 and writes nothing. Where a representation Jacobian is not finite blocks 2 and
/// 3 are not either: types -1 and -2 without a rotation, type -1 at a scalar part of 1 or more in size, type -3 at a
/// zero axis.
class Camera_position_grad_func_hybrid : public fw::Grad_func {
 public:
  /// Points of 3 coordinates each (world units), K 3 by 3 (pixels); takes ownership of the base function once nothing
  /// can fail any more.
  Camera_position_grad_func_hybrid(const std::vector<std::vector<double>>& points, const fw::matrix<double>& K,
                                   fw::Opt_func* base);
  /// Copies points and K; takes over neither weights nor base function.
  Camera_position_grad_func_hybrid(const Camera_position_grad_func_hybrid&) = default;
  /// Copies points and K; weights and base function of this object stay.
  Camera_position_grad_func_hybrid& operator=(const Camera_position_grad_func_hybrid&) = default;

 protected:
  /// The report when block 2 or 3 does not fit its rows of J; without words there is none.
  struct Size_report {
    fw::Site site{};              ///< where the report says that it was made
    const char* words = nullptr;  ///< its beginning; the two sizes follow
  };
  /// All of operator(), for the blocks of a rotation type.
  int write_blocks(int rotation_type, const Size_report (&reports)[2], const std::vector<double>& x, cv::Mat& J,
                   int start) const;

  Camera_position_grad_func_aau aau;  ///< of rotation vectors alone
  Camera_position_grad_func_aan aan;  ///< of axis and angle alone
  Camera_position_grad_func_qu qu;    ///< of quaternions alone
};

/// Rotation type -1: columns of qu; blocks qu, aau, aan.
/// Raises (kelvane_mex.cpp, all inside the context of line 1457): 1451 when J's columns do not fit block 2; block 3 is
/// copied unchecked.
class Camera_position_grad_func_qu_aau_aan : public Camera_position_grad_func_hybrid {
 public:
  using Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid;
  /// See Camera_position_grad_func_hybrid.
  int operator()(const std::vector<double>& x, cv::Mat& J, int start) const override;
};

/// Rotation type -2: columns of aau; blocks aau, qu, aan.
/// Raises (kelvane_mex.cpp, all inside the context of line 1549): 1543 when J's columns do not fit block 2, 1545
/// block 3.
class Camera_position_grad_func_aau_qu_aan : public Camera_position_grad_func_hybrid {
 public:
  using Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid;
  /// See Camera_position_grad_func_hybrid.
  int operator()(const std::vector<double>& x, cv::Mat& J, int start) const override;
};

/// Rotation type -3: columns of aan; blocks aan, qu, aau.
/// Raises (kelvane_mex.cpp, all inside the context of line 1641): 1635 when J's columns do not fit block 2, 1637 block
/// 3; their texts name aau and aan although the blocks are qu and aau.
class Camera_position_grad_func_aan_qu_aau : public Camera_position_grad_func_hybrid {
 public:
  using Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid;
  /// See Camera_position_grad_func_hybrid.
  int operator()(const std::vector<double>& x, cv::Mat& J, int start) const override;
};
