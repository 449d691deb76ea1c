// SPDX-License-Identifier: BSD-3-Clause
// The objective interface: parameters to predicted values.
#pragma once

#include <vector>

namespace fw {

/// Maps a parameter vector to predicted values, one per equation, and carries one weight per equation.
/// Weights are never carried over by copying or assignment: a copy starts with none.
class Opt_func {
 public:
  virtual ~Opt_func();

  /// The predicted values at x, in the function's own equation order.
  virtual std::vector<double> operator()(const std::vector<double>& x) const = 0;

  /// No weights.
  Opt_func();
  /// No weights: they are not copied.
  Opt_func(const Opt_func& source);
  /// Changes nothing: the weights of this object stay.
  Opt_func& operator=(const Opt_func& source);

  /// The weight of equation i: 1.0 while no weight has been set.
  /// Throws std::out_of_range "vector::_M_range_check" when weights have been set and do not reach i.
  double get_weight(int i) const;
  /// All of them at once, in equation order. Their number is not checked here.
  void set_weights(const std::vector<double>& w);
  /// Sets the weight of equation i. Grows the list up to i when needed; the entries in between weigh 0.0.
  /// Throws std::out_of_range "vector::_M_range_check" when i is negative.
  void set_weight(int i, double w);

 protected:
  std::vector<double> weights;  ///< by local equation index; empty: all 1.0
};

}  // namespace fw
