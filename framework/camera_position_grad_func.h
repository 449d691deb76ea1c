// SPDX-License-Identifier: BSD-3-Clause
// Closed-form Jacobians of the pixel and bearing predictions, one class for each rotation representation.
#pragma once

#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

#include "fw_opt/grad_func.h"
#include "fw_tools/matrix.h"

namespace kelvane {
struct Rotation_type;
}

/// What the Jacobians have in common.
///
/// The intrinsic model is K = [f 0 cx; 0 f cy; 0 0 1] with f = K(0,0): K(1,1), the skew K(0,1) and the rest are not
/// read, although the prediction uses the whole K. The base function is never consulted.
///
/// operator()(x, J, start) writes the rows of u_0, v_0, u_1, v_1, ... (bearing classes: of the three components of each
/// camera-frame vector) with one column for each entry of x, starting at *element* `start` of J's data (an offset in
/// doubles, not a row), and returns the number of rows, 2 N (3 N). J must be continuous, CV_64F and large enough; it is
/// not checked, nor is the length of x. Pixel rows follow docs/derivations.md, Eqs. 21 and 22, bearing rows Eq. 23.
class Camera_position_grad_func : public fw::Grad_func {
 public:
  /// Points of 3 coordinates each (world units), K 3 by 3 (pixels); takes ownership of the base function once nothing
  /// can fail any more.
  Camera_position_grad_func(const std::vector<std::vector<double>>& points, const fw::matrix<double>& K,
                            fw::Opt_func* base);
  /// Copies points and K; takes over neither weights nor base function.
  Camera_position_grad_func(const Camera_position_grad_func&) = default;
  /// Copies points and K; weights and base function of this object stay.
  Camera_position_grad_func& operator=(const Camera_position_grad_func& source);

 protected:
  friend class Camera_position_grad_func_hybrid;

  /// Writes the rows of block k of a type, one behind the other; returns their number.
  int write_block(const kelvane::Rotation_type& type, std::size_t k, const std::vector<double>& x, double* out) const;

  std::vector<std::vector<double>> points;  ///< N points, world frame and units
  fw::matrix<double> K;                     ///< as it was given, pixels
};

/// What the classes differ in.
template <int rotation_type>
class Camera_position_grad_func_of : public Camera_position_grad_func {
 public:
  using Camera_position_grad_func::Camera_position_grad_func;
  /// See Camera_position_grad_func.
  int operator()(const std::vector<double>& x, cv::Mat& J, int start) const override;
};

/// Rotation type 0 (docs/derivations.md, Eqs. 8 to 11): columns r1, r2, r3, t1, t2, t3. The Jacobian at r = 0 is the
/// one at r = (1e-9, 1e-9, 1e-9).
class Camera_position_grad_func_aau : public Camera_position_grad_func_of<0> {
 public:
  using Camera_position_grad_func_of::Camera_position_grad_func_of;
};

/// Rotation type 1 (docs/derivations.md, Eqs. 12 to 14): columns a1, a2, a3, angle, t1, t2, t3. A zero axis gives NaN.
class Camera_position_grad_func_aan : public Camera_position_grad_func_of<1> {
 public:
  using Camera_position_grad_func_of::Camera_position_grad_func_of;
};

/// Rotation type 2 (docs/derivations.md, Eqs. 15 and 16): columns q0 to q3 (scalar last), t1, t2, t3. The prediction
/// does not depend on the quaternion's length. A zero vector part is replaced by (1e-9, 1e-9, 1e-9), whatever the
/// scalar part.
class Camera_position_grad_func_qu : public Camera_position_grad_func_of<2> {
 public:
  using Camera_position_grad_func_of::Camera_position_grad_func_of;
};

/// Rotation type 3 (docs/derivations.md, Eqs. 17 and 18): columns as type 2. The quaternion is taken as of unit length,
/// and its entries enter the diagonal of the rotation unsquared, so this is not the derivative of the prediction of
/// type 3.
class Camera_position_grad_func_qn : public Camera_position_grad_func_of<3> {
 public:
  using Camera_position_grad_func_of::Camera_position_grad_func_of;
};

/// Rotation type 10: the columns and the guard of aau, rows of three.
class Camera_position_grad_func_aau_bv : public Camera_position_grad_func_of<10> {
 public:
  using Camera_position_grad_func_of::Camera_position_grad_func_of;
};

/// Rotation type 11: the columns of aan, rows of three.
class Camera_position_grad_func_aan_bv : public Camera_position_grad_func_of<11> {
 public:
  using Camera_position_grad_func_of::Camera_position_grad_func_of;
};

/// Rotation type 12: the columns and the guard of qu, rows of three.
class Camera_position_grad_func_qu_bv : public Camera_position_grad_func_of<12> {
 public:
  using Camera_position_grad_func_of::Camera_position_grad_func_of;
};
