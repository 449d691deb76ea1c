// SPDX-License-Identifier: BSD-3-Clause
// The checks of a call's arguments, in their published order.
#pragma once

#include <cstddef>

#include "camera_pose/rotation_type.h"

/// One call of the module, from its arguments to the refined pose.
namespace kelvane::contract {

/// One input as the host presents it. data() and scalar() are asked only of arrays that is_double() has claimed: a host
/// may abort when asked for the data of, say, a function handle.
class Input {
 public:
  virtual bool is_double() const = 0;          ///< whether the elements are of the class double
  virtual bool is_sparse() const = 0;          ///< whether it is stored without its zeros
  virtual bool is_complex() const = 0;         ///< whether it has an imaginary part
  virtual std::size_t rows() const = 0;        ///< the first dimension
  virtual std::size_t columns() const = 0;     ///< of an N-dimensional array: all but the first dimension multiplied
  virtual std::size_t elements() const = 0;    ///< all dimensions multiplied
  virtual const char* class_name() const = 0;  ///< as reports give it
  virtual const double* data() const = 0;      ///< column-major
  virtual double scalar() const = 0;           ///< the first element

 protected:
  ~Input() = default;
};

constexpr int max_inputs = 6;  ///< of a call

/// The inputs of an accepted call. The arrays still belong to the host and are column-major; absent ones are null. A
/// caller in C++ may fill it in by hand and has to see to the sizes himself: nothing checks them again.
struct Arguments {
  const Rotation_type* type;        ///< from find_rotation_type()
  int num_points;                   ///< N
  const double* camera_parameters;  ///< rotation (3 or 4), t1, t2, t3 (world units), k11, k13, k23 (pixels)
  const double* points;             ///< 3 by N, world frame and units
  const double* observations;       ///< 2 by N pixels, or 3 by N camera-frame vectors
  const double* stopping_criteria;  ///< max_iters, min_x_step, min_y_step, use_finite_difference; may be null
  const double* weights;            ///< num_equations(); may be null

  /// All of them: 2 N or 3 N, three times as many for a hybrid type.
  int num_equations() const { return num_points * type->observation_size * type->num_representations; }
};

/// Checks a call of num_outputs outputs and num_inputs inputs; `inputs` must hold the first min(num_inputs,
/// max_inputs). Raises a report of kelvane_mex.cpp for the first violation, in the order of the sites in
/// argument_contract.cpp.
Arguments check_arguments(int num_outputs, int num_inputs, const Input* const* inputs);

}  // namespace kelvane::contract
