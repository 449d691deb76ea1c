// SPDX-License-Identifier: BSD-3-Clause
// The Jacobian interface: parameters to the derivatives of one objective.
#pragma once

#include <vector>

#include "fw_opt/opt_func.h"
#include "fw_tools/report.h"

namespace cv {
class Mat;
}

namespace fw {

/// Computes the Jacobian of its base function and carries one weight per equation. The base is owned; neither it nor
/// the weights are carried over by copying or assignment.
class Grad_func {
 public:
  /// Deletes the base function.
  virtual ~Grad_func();

  /// Writes d(output i) / d(x[c]) of the base function at x into row start_row + i, column c of J, unweighted, and
  /// returns the number of rows written. J is num_equations by num_dimensions, CV_64F, and holds rubbish before.
  virtual int operator()(const std::vector<double>& x, cv::Mat& J, int start_row) const = 0;

  /// No base function, no weights.
  Grad_func();
  /// Takes ownership of the base function, which may be null.
  explicit Grad_func(Opt_func* base);
  /// No base function, no weights: nothing is copied.
  Grad_func(const Grad_func& source);
  /// Changes nothing: the base function and the weights of this object stay.
  Grad_func& operator=(const Grad_func& source);

  /// The function that this is the Jacobian of; still owned by this object.
  /// Raises "Tried to access base function for a Grad_func, but none has been set" (fw_opt/grad_func.cpp, 35) when
  /// there is none.
  const Opt_func* base_function() const;

  /// As Opt_func::get_weight, on this object's own weights.
  double get_weight(int i) const;
  /// Sets the weights here and in the base function, if there is one.
  void set_weights(const std::vector<double>& w);
  /// As Opt_func::set_weight, here and in the base function, if there is one.
  void set_weight(int i, double w);

 protected:
  Opt_func* base = nullptr;     ///< owned; null: none
  std::vector<double> weights;  ///< by local equation index; empty: all 1.0
};

namespace site {
inline constexpr Site base_function{"fw_opt/grad_func.cpp", 35,
                                    "const fw::Opt_func* fw::Grad_func::base_function() const"};
}  // namespace site

}  // namespace fw
